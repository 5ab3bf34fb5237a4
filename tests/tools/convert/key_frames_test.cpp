// SPDX-License-Identifier: Zlib
// Models that move by key frames of all vertices.

#include <gtest/gtest.h>

#include <cstring>

#include "tests/tools/convert/support/convert_fixture.h"
#include "tools/convert/md3_file.h"

namespace keltra::test {
namespace {

template <class T>
void put(std::string &bytes, T value) {
    bytes.append(reinterpret_cast<const char *>(&value), sizeof value);
}

/// An MD2 file with a triangle that rises by a unit in each frame.
std::string md2(const std::vector<std::string> &frames) {
    const std::int32_t frameSize = 40 + 3 * 4, count = static_cast<std::int32_t>(frames.size());
    const std::int32_t uvsAt = 68, trianglesAt = uvsAt + 12, framesAt = trianglesAt + 12;
    std::string bytes = "IDP2";
    for (const std::int32_t value : {8, 64, 64, frameSize, 0, 3, 3, 1, 0, count, 68, uvsAt, trianglesAt,
                                     framesAt, framesAt + frameSize * count, framesAt + frameSize * count})
        put(bytes, value);
    for (int i = 0; i < 6; ++i) put(bytes, std::int16_t(i * 8));
    for (const std::uint16_t index : {0, 1, 2, 0, 1, 2}) put(bytes, index);
    for (std::int32_t f = 0; f < count; ++f) {
        for (const float scale : {1.0f, 1.0f, 1.0f}) put(bytes, scale);
        for (const float at : {0.0f, 0.0f, static_cast<float>(f)}) put(bytes, at);
        char name[16] = {};
        std::strncpy(name, frames[static_cast<std::size_t>(f)].c_str(), sizeof name - 1);
        bytes.append(name, sizeof name);
        const std::uint8_t corners[] = {0, 0, 0, 0, 2, 0, 0, 0, 0, 2, 0, 0};
        bytes.append(reinterpret_cast<const char *>(corners), sizeof corners);
    }
    // The importer takes a list that ends with the file for one beyond it.
    return bytes + std::string(64, '\0');
}

std::string padded(const std::string &text, std::size_t size) {
    std::string bytes = text;
    bytes.resize(size, '\0');
    return bytes;
}

/// A surface of an MD3 file: that many triangles side by side, which rise by a unit in each frame.
std::string md3Surface(const std::string &name, std::int32_t triangles, std::int32_t frames) {
    const std::int32_t vertices = 3 * triangles;
    const std::int32_t shadersAt = 108 + 12 * triangles, uvsAt = shadersAt + 68,
                       verticesAt = uvsAt + 8 * vertices;
    std::string bytes = "IDP3" + padded(name, 64);
    for (const std::int32_t value : {0, frames, 1, vertices, triangles, 108, shadersAt, uvsAt, verticesAt,
                                     verticesAt + 8 * vertices * frames})
        put(bytes, value);
    for (std::int32_t i = 0; i < vertices; ++i) put(bytes, i);
    bytes += padded("stone.tga", 68);
    for (std::int32_t i = 0; i < vertices; ++i)
        for (const float uv : {0.5f * static_cast<float>(i % 3), static_cast<float>(i % 2)}) put(bytes, uv);
    for (std::int32_t f = 0; f < frames; ++f) {
        for (std::int32_t i = 0; i < vertices; ++i) {
            const std::int32_t corner = i % 3;
            for (const std::int32_t at : {i / 3 + (corner == 1), std::int32_t{corner == 2}, f})
                put(bytes, static_cast<std::int16_t>(64 * at));
            put(bytes, std::int16_t(0));  // its normal
        }
    }
    return bytes;
}

/// An MD3 file with a surface for each number of triangles.
std::string md3(const std::vector<std::int32_t> &triangles, const std::vector<std::string> &frames) {
    const std::int32_t count = static_cast<std::int32_t>(frames.size()), surfacesAt = 108 + 56 * count;
    std::string surfaces;
    for (std::size_t s = 0; s < triangles.size(); ++s)
        surfaces += md3Surface("part" + std::to_string(s), triangles[s], count);
    std::string bytes = "IDP3";
    put(bytes, std::int32_t(15));
    bytes += padded("model", 64);
    for (const std::int32_t value :
         {0, count, 0, static_cast<std::int32_t>(triangles.size()), 0, 108, surfacesAt, surfacesAt,
          surfacesAt + static_cast<std::int32_t>(surfaces.size())})
        put(bytes, value);
    for (const std::string &name : frames) {
        for (const float value : {-1.0f, -1.0f, -1.0f, 9.0f, 9.0f, 9.0f, 0.0f, 0.0f, 0.0f, 9.0f})
            put(bytes, value);
        bytes += padded(name, 16);
    }
    return bytes + surfaces;
}

class KeyFramesTest : public ConvertTest {
   protected:
    const std::string text = md2({"stand01", "stand02", "stand03", "run1", "run2", "jump"});

    double heightOf(unsigned frame) {
        const Made made =
            make("model.md2", text, [frame](convert::Options &options) { options.frame = frame; });
        const std::vector<Point> corners = shapeOf(poseWithoutWindow(made.root())).corners;
        return corners.empty() ? -1.0 : corners[0].y;
    }
};

TEST_F(KeyFramesTest, OneIsConvertedAndTheOthersAreNamed) {
    const Made made = make("model.md2", text);
    EXPECT_TRUE(mentions(made.report(), "key frames"));
    EXPECT_TRUE(mentions(made.report(), "stand 0-2, run 3-4, jump 5"));
    EXPECT_EQ(made.report().tally().dropped, 5u);
}

TEST_F(KeyFramesTest, AnotherCanBeChosen) {
    EXPECT_NEAR(heightOf(0), 0.0, 1e-3);
    EXPECT_NEAR(heightOf(3), 3.0, 1e-3);
    EXPECT_NEAR(heightOf(5), 5.0, 1e-3);
}

TEST_F(KeyFramesTest, OneBeyondTheLastIsRefused) {
    const std::string path = folder.write("model.md2", text);
    try {
        convertFile(path, [](convert::Options &options) { options.frame = 6; });
        ADD_FAILURE() << "it is converted";
    } catch (const convert::Refusal &refusal) {
        EXPECT_STREQ(refusal.what(), "it has no key frame 6: the last is 5");
    }
}

TEST_F(KeyFramesTest, SurfacesOfAnMd3FileStandAsTheFrameSays) {
    const std::string file = md3({2, 1}, {"walk1", "walk2", "die1"});
    for (unsigned frame : {0u, 2u}) {
        const Made made = make("m.md3", file, [frame](convert::Options &options) { options.frame = frame; });
        EXPECT_EQ(made.report().triangles, 3u);
        EXPECT_EQ(made.report().meshes, 2u);
        EXPECT_TRUE(mentions(made.report(), "walk 0-1, die 2"));
        for (const Point &corner : shapeOf(poseWithoutWindow(made.root())).corners)
            EXPECT_NEAR(corner.y, double(frame), 1e-3);
    }
}

// The importer crashes on all of these but the first one.
TEST_F(KeyFramesTest, EmptySurfacesAreLeftOut) {
    const std::vector<std::vector<std::int32_t>> lists = {
        {0, 2, 1}, {2, 1, 0}, {2, 0, 1}, {0, 2, 0, 0, 1, 0}};
    for (const std::vector<std::int32_t> &triangles : lists) {
        const Made made = make("m.md3", md3(triangles, {"only"}));
        EXPECT_EQ(made.report().triangles, 3u);
        EXPECT_EQ(made.report().meshes, 2u);
    }
    EXPECT_NE(refusal("m.md3", md3({0, 0}, {"only"})), "");
}

TEST_F(KeyFramesTest, EveryTruncationWithAnEmptySurfaceIsReadOrRefused) {
    const std::string whole = md3({1, 0}, {"only"});
    EXPECT_FALSE(convert::readableMd3(whole, 0).empty());
    for (std::size_t size = 0; size < whole.size(); ++size)
        EXPECT_EQ(convert::readableMd3(whole.substr(0, size), 0), "") << size;
    for (std::size_t at : {84u, 100u, 104u}) {
        std::string damaged = whole;
        damaged.replace(at, 4, "\xff\xff\xff\xff");
        const std::string result = convert::readableMd3(damaged, 0);
        EXPECT_LE(result.size(), whole.size()) << at;
    }
}

TEST_F(KeyFramesTest, AModelOfOneFrameLosesNothing) {
    const Made made = make("still.md2", md2({"only"}));
    EXPECT_FALSE(mentions(made.report(), "key frames"));
}

}  // namespace
}  // namespace keltra::test
