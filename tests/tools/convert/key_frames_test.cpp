// SPDX-License-Identifier: Zlib
// Models that move by key frames of all vertices.

#include "tests/tools/convert/support/convert_fixture.h"

#include <gtest/gtest.h>

#include <cstring>

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

TEST_F(KeyFramesTest, AModelOfOneFrameLosesNothing) {
    const Made made = make("still.md2", md2({"only"}));
    EXPECT_FALSE(mentions(made.report(), "key frames"));
}

}  // namespace
}  // namespace keltra::test
