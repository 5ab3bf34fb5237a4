// SPDX-License-Identifier: Zlib
#include "tools/formats/kta_writer.h"

#include <gtest/gtest.h>

namespace keltra::formats {
namespace {

TEST(KtaWriter, WritesTheLayoutByteForByte) {
    Animation animation;
    animation.bones = {"a", ""};
    animation.frames = {{{{1.0f, 2.0f, -1.0f}, {0.5f, 0.0f, 0.0f}, true}, {{}, {}, false}}};
    const std::vector<uint8_t> bytes = writeKta(animation);
    std::vector<uint8_t> expected = {'K', 'T', 'A', ' ', 'f', 'i', 'l', 'e', ' ', 'v', '1', '.',
                                     '6', 'a', 26,  2,   0,   1,   0,   'a', 0,   0,   0,   0,
                                     128, 63,  0,   0,   0,   64,  0,   0,   128, 191};
    const uint8_t position[] = {0, 0, 0, 63, 0, 0, 0, 0, 0, 0, 0, 0, 1};
    expected.insert(expected.end(), position, position + sizeof(position));
    expected.insert(expected.end(), kKtaKeyframeSize, 0);
    EXPECT_EQ(bytes, expected);
}

TEST(KtaWriter, CountsAreTheSizesOfTheLists) {
    Animation animation;
    animation.bones.assign(300, "b");
    animation.frames.resize(513);
    const std::vector<uint8_t> bytes = writeKta(animation);
    EXPECT_EQ(bytes[kKtaBoneCountOffset] + 256 * bytes[kKtaBoneCountOffset + 1], 300);
    EXPECT_EQ(bytes[kKtaFrameCountOffset] + 256 * bytes[kKtaFrameCountOffset + 1], 513);
    EXPECT_EQ(bytes.size(), kKtaNamesOffset + 300 * 2);
}

}  // namespace
}  // namespace keltra::formats
