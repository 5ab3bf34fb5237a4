// SPDX-License-Identifier: Zlib
// Inter-Quake Models, made here byte by byte.

#include "tools/convert/iqm.h"

#include <assimp/scene.h>
#include <gtest/gtest.h>

#include <cstring>
#include <random>

#include "tests/tools/convert/support/convert_fixture.h"

namespace keltra::test {
namespace {

/// Writes the format's records one after the other.
struct IqmBuilder {
    std::string text = std::string(1, '\0'), body;
    std::uint32_t header[27] = {2};

    std::uint32_t name(const std::string &value) {
        const auto at = static_cast<std::uint32_t>(text.size());
        text += value + '\0';
        return at;
    }
    template <class T>
    static std::string bytes(const std::vector<T> &values) {
        return {reinterpret_cast<const char *>(values.data()), values.size() * sizeof(T)};
    }
    /// Appends the data and returns its place in the file.
    std::uint32_t put(const std::string &data) {
        while (body.size() % 4) body += '\0';
        const auto at = static_cast<std::uint32_t>(124 + body.size());
        body += data;
        return at;
    }
    /// `field` is the place of the list's count among the header's numbers; its offset follows.
    void list(unsigned field, std::size_t count, const std::string &data) {
        header[field] = static_cast<std::uint32_t>(count);
        header[field + 1] = put(data);
    }
    std::string file() {
        list(3, text.size(), text);
        header[1] = static_cast<std::uint32_t>(124 + body.size());
        return std::string("INTERQUAKEMODEL", 16) +
               std::string(reinterpret_cast<const char *>(header), sizeof header) + body;
    }
};

enum : unsigned {
    kMeshes = 5,
    kArrays = 7,
    kTriangles = 10,
    kJoints = 13,
    kPoses = 15,
    kAnims = 17,
    kFrames = 19
};

constexpr float kElbow = 2.0f;  // above the shoulder
constexpr unsigned kFrameCount = 11;
constexpr double kRate = 25.0;
constexpr float kStep = 0.001f;

std::string floats(const std::vector<float> &values) { return IqmBuilder::bytes(values); }

/// A triangle at the shoulder and one at the elbow; Z is up.
void addMesh(IqmBuilder &iqm) {
    const std::vector<float> places = {0, 0, 0, 1, 0, 0, 0, 1, 0.5f, 0, 0, 2, 1, 0, 2, 0, 0, 3};
    const std::vector<float> normals = {0, 0, 1, 0, 0, 1, 0, 0, 1, 0, -1, 0, 0, -1, 0, 0, -1, 0};
    const std::vector<std::uint8_t> joints = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,
                                              1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0};
    std::vector<std::uint8_t> weights;
    for (int v = 0; v < 6; ++v) weights.insert(weights.end(), {255, 0, 0, 0});
    const std::vector<std::uint32_t> arrays = {0, 0, 7, 3, iqm.put(floats(places)),
                                               2, 0, 7, 3, iqm.put(floats(normals)),
                                               4, 0, 1, 4, iqm.put(IqmBuilder::bytes(joints)),
                                               5, 0, 1, 4, iqm.put(IqmBuilder::bytes(weights))};
    iqm.header[kArrays] = 4;
    iqm.header[kArrays + 1] = 6;
    iqm.header[kArrays + 2] = iqm.put(IqmBuilder::bytes(arrays));
    iqm.list(kMeshes, 1,
             IqmBuilder::bytes<std::uint32_t>({iqm.name("body"), iqm.name("skin.png"), 0, 6, 0, 2}));
    iqm.list(kTriangles, 2, IqmBuilder::bytes<std::uint32_t>({0, 2, 1, 3, 5, 4}));
}

void addJoints(IqmBuilder &iqm) {
    std::string records;
    const std::pair<const char *, float> joints[] = {{"shoulder", 0.0f}, {"elbow", kElbow}};
    int parent = -1;
    for (const auto &[name, z] : joints) {
        const std::vector<std::uint32_t> head = {iqm.name(name), static_cast<std::uint32_t>(parent++)};
        records += IqmBuilder::bytes(head) + floats({0, 0, z, 0, 0, 0, 1, 1, 1, 1});
    }
    iqm.list(kJoints, 2, records);
}

/// The elbow turns about X by an angle that grows, with quarter turns at the end, and the shoulder rises.
double angleAt(unsigned frame) { return 1.5707963 * frame / (kFrameCount - 1); }
double heightAt(unsigned frame) { return 0.1 * frame; }

void addAnimation(IqmBuilder &iqm) {
    // The shoulder's Z; the elbow's rotation about X and its W.
    std::string poses;
    poses += IqmBuilder::bytes<std::uint32_t>({0xffffffffu, 1u << 2}) +
             floats({0, 0, 0, 0, 0, 0, 1, 1, 1, 1}) + floats({0, 0, kStep, 0, 0, 0, 0, 0, 0, 0});
    poses += IqmBuilder::bytes<std::uint32_t>({0, 1u << 3 | 1u << 6}) +
             floats({0, 0, kElbow, 0, 0, 0, 0, 1, 1, 1}) +
             floats({0, 0, 0, kStep / 50, 0, 0, kStep / 50, 0, 0, 0});
    iqm.list(kPoses, 2, poses);
    std::vector<std::uint16_t> frames;
    for (unsigned f = 0; f < kFrameCount; ++f) {
        frames.push_back(static_cast<std::uint16_t>(std::lround(heightAt(f) / kStep)));
        frames.push_back(static_cast<std::uint16_t>(std::lround(std::sin(angleAt(f) / 2) / kStep * 50)));
        frames.push_back(static_cast<std::uint16_t>(std::lround(std::cos(angleAt(f) / 2) / kStep * 50)));
    }
    iqm.header[kFrames] = kFrameCount;
    iqm.header[kFrames + 1] = 3;
    iqm.header[kFrames + 2] = iqm.put(IqmBuilder::bytes(frames));
    const float rate = static_cast<float>(kRate);
    std::uint32_t rateBits;
    std::memcpy(&rateBits, &rate, sizeof rateBits);
    iqm.list(kAnims, 1, IqmBuilder::bytes<std::uint32_t>({iqm.name("bend"), 0, kFrameCount, rateBits, 0}));
}

std::string model(bool hasMesh, bool hasClip) {
    IqmBuilder iqm;
    if (hasMesh) addMesh(iqm), addJoints(iqm);
    if (hasClip) addAnimation(iqm);
    return iqm.file();
}

class IqmTest : public ConvertTest {
   protected:
    static bool isRead(const std::string &bytes) {
        try {
            return convert::readIqm({bytes.begin(), bytes.end()}, {}) != nullptr;
        } catch (const convert::Refusal &) {
            return false;
        }
    }

    /// In the engine Y is up: (x, y, z) of the file is (x, z, -y).
    static Point upright(double x, double y, double z) { return {x, z, -y}; }

    static void expectBends(const Made &made) {
        ASSERT_NE(made.root(), nullptr);
        ASSERT_EQ(made.report().clips.size(), 1u);
        ASSERT_EQ(made.report().clips[0].frames, kFrameCount);
        KTANIM *animation = made.loaded->animation(made.report().clips[0].file);
        ASSERT_NE(animation, nullptr);
        for (unsigned f = 0; f < kFrameCount; ++f) {
            ASSERT_TRUE(animation->apply(f, made.root()));
            const std::vector<Point> corners = shapeOf(poseWithoutWindow(made.root())).corners;
            const double up = heightAt(f), c = std::cos(angleAt(f)), s = std::sin(angleAt(f));
            const Point expected[] = {upright(0, 0, up),       upright(1, 0, up),
                                      upright(0, 1, 0.5 + up), upright(0, 0, 2 + up),
                                      upright(1, 0, 2 + up),   upright(0, -s, 2 + up + c)};
            ASSERT_EQ(corners.size(), 6u);
            for (const Point &at : expected) {
                double least = 1e9;
                for (const Point &corner : corners) least = std::min(least, length(corner - at));
                EXPECT_LT(least, 2e-3) << "frame " << f;
            }
        }
    }
};

TEST_F(IqmTest, AModelFollowsItsAnimation) {
    const Made made = make("arm.iqm", model(true, true));
    expectBends(made);
    EXPECT_EQ(made.report().clips[0].name, "bend");
    EXPECT_EQ(made.report().bones, 2u);
    EXPECT_EQ(made.report().skins, 1u);
    expectNormalsAgree(poseWithoutWindow(made.root()));
}

TEST_F(IqmTest, AFileOfAnimationsIsForTheJointsOfTheModel) {
    const std::string clip = folder.write("arm_bend.iqm", model(false, true));
    const Made made = make("arm.iqm", model(true, false), [&clip](convert::Options &options) {
        options.clips = {clip};
        options.name = "arm";
    });
    expectBends(made);
    EXPECT_EQ(made.report().clips[0].file, "arm_bend.kta");
}

TEST_F(IqmTest, AFileOfAnimationsAloneHasASkeleton) {
    const Made made = make("bend.iqm", model(false, true));
    ASSERT_NE(made.root(), nullptr);
    ASSERT_EQ(made.report().clips.size(), 1u);
    EXPECT_EQ(made.report().clips[0].bones, 2u);
}

TEST_F(IqmTest, AFileThatEndsEarlyIsRefusedOrReadAsFarAsItGoes) {
    const std::string whole = model(true, true);
    for (std::size_t size = 1; size < whole.size(); ++size) {
        EXPECT_FALSE(isRead(whole.substr(0, size)) && size < 1000) << size;
        if (size % 100 == 0) {
            EXPECT_EQ(refusal("cut.iqm", whole.substr(0, size)).find_first_of("\r\n"), std::string::npos);
        }
    }
}

TEST_F(IqmTest, NumbersOfAnyValueAreSafe) {
    const std::string whole = model(true, true);
    const std::uint32_t values[] = {0, 1, 2, 7, 0x7fffffff, 0x80000000, 0xffffffff, 0x7f800000, 0x10000};
    unsigned converted = 0;
    for (std::size_t at = 16; at + 4 <= whole.size(); at += 4) {
        for (const std::uint32_t value : values) {
            std::string damaged = whole;
            std::memcpy(&damaged[at], &value, sizeof value);
            converted += isRead(damaged);
        }
    }
    EXPECT_GT(converted, 0u);
}

TEST_F(IqmTest, RandomBytesAreSafe) {
    const std::string whole = model(true, true);
    std::mt19937 random(1);
    for (int run = 0; run < 4000; ++run) {
        std::string damaged = whole;
        for (int k = 0; k < 4; ++k)
            damaged[16 + random() % (whole.size() - 16)] = static_cast<char>(random());
        // What the reader accepts goes through the converter as well.
        if (isRead(damaged) && run % 1000 == 0) refusal("damaged.iqm", damaged);
    }
}

TEST_F(IqmTest, AnotherVersionIsRefused) {
    std::string old = model(true, true);
    old[16] = 1;
    EXPECT_NE(refusal("old.iqm", old).find("version 1"), std::string::npos);
}

}  // namespace
}  // namespace keltra::test
