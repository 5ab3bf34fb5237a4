// SPDX-License-Identifier: Zlib
#include "tools/formats/tga_writer.h"

#include <gtest/gtest.h>

namespace keltra::formats {
namespace {

using Bytes = std::vector<std::uint8_t>;

// Two columns, two rows: red and green over blue and half-transparent white.
Image fourPixels() {
    Image image(2, 2);
    image.at(0, 0) = {255, 1, 2, 255};
    image.at(1, 0) = {3, 254, 4, 255};
    image.at(0, 1) = {5, 6, 253, 255};
    image.at(1, 1) = {252, 251, 250, 128};
    return image;
}

Image row(std::initializer_list<int> grays) {
    Image image(static_cast<unsigned>(grays.size()), 1);
    unsigned x = 0;
    for (int gray : grays) {
        const std::uint8_t value = static_cast<std::uint8_t>(gray);
        image.at(x++, 0) = {value, value, value, 255};
    }
    return image;
}

Bytes pixelBytes(const Bytes &file) { return Bytes(file.begin() + 18, file.end()); }

TEST(TgaWriter, RawTwentyFourBitsBottomUp) {
    const Bytes expected = {0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 2, 0, 2, 0, 24, 0,
                            // bottom row first, blue green red
                            253, 6, 5, 250, 251, 252, 2, 1, 255, 4, 254, 3};
    EXPECT_EQ(writeTga(fourPixels(), {false, 24, false}), expected);
}

TEST(TgaWriter, RawThirtyTwoBitsTopDown) {
    const Bytes expected = {0,    0, 2, 0,   0,   0, 0,   0, 0,   0,   0, 0, 2,   0,   2,   0,   32,
                            0x28, 2, 1, 255, 255, 4, 254, 3, 255, 253, 6, 5, 255, 250, 251, 252, 128};
    EXPECT_EQ(writeTga(fourPixels(), {false, 32, true}), expected);
}

TEST(TgaWriter, DescriptorHoldsAlphaBitsAndOrigin) {
    EXPECT_EQ(writeTga(fourPixels(), {false, 24, false})[17], 0x00);
    EXPECT_EQ(writeTga(fourPixels(), {false, 24, true})[17], 0x20);
    EXPECT_EQ(writeTga(fourPixels(), {false, 32, false})[17], 0x08);
    EXPECT_EQ(writeTga(fourPixels(), {false, 32, true})[17], 0x28);
}

TEST(TgaWriter, SizesAreLittleEndian) {
    const Bytes file = writeTga(Image(300, 2), {false, 24, false});
    EXPECT_EQ(file[12], 44);
    EXPECT_EQ(file[13], 1);
    EXPECT_EQ(file[14], 2);
    EXPECT_EQ(file[15], 0);
    EXPECT_EQ(file.size(), 18u + 300 * 2 * 3);
}

TEST(TgaWriter, RunLengthPacksRunsAndStretches) {
    const Bytes file = writeTga(row({7, 7, 7, 1, 2, 9, 9}), {true, 24, false});
    EXPECT_EQ(file[2], 10);
    const Bytes expected = {0x82, 7, 7, 7, 0x01, 1, 1, 1, 2, 2, 2, 0x81, 9, 9, 9};
    EXPECT_EQ(pixelBytes(file), expected);
}

TEST(TgaWriter, LongestRunIsOneHundredTwentyEight) {
    Image image(130, 1);
    const Bytes expected = {0xFF, 0, 0, 0, 0x81, 0, 0, 0};
    EXPECT_EQ(pixelBytes(writeTga(image, {true, 24, false})), expected);
}

TEST(TgaWriter, LongestStretchIsOneHundredTwentyEight) {
    Image image(130, 1);
    for (unsigned x = 0; x < 130; ++x) image.at(x, 0) = {static_cast<std::uint8_t>(x), 0, 0, 255};
    const Bytes pixels = pixelBytes(writeTga(image, {true, 24, false}));
    EXPECT_EQ(pixels.size(), 2 + 130u * 3);
    EXPECT_EQ(pixels[0], 0x7F);
    EXPECT_EQ(pixels[1 + 128 * 3], 0x01);
}

TEST(TgaWriter, PacketsEndWithTheirRow) {
    const Bytes expected = {0x82, 0, 0, 0, 0x82, 0, 0, 0};
    EXPECT_EQ(pixelBytes(writeTga(Image(3, 2), {true, 24, false})), expected);
}

TEST(TgaWriter, AlphaEndsARunOnlyWhereItIsStored) {
    Image image = row({5, 5});
    image.at(1, 0).a = 0;
    const Bytes without = {0x81, 5, 5, 5};
    const Bytes with = {0x01, 5, 5, 5, 255, 5, 5, 5, 0};
    EXPECT_EQ(pixelBytes(writeTga(image, {true, 24, false})), without);
    EXPECT_EQ(pixelBytes(writeTga(image, {true, 32, false})), with);
}

}  // namespace
}  // namespace keltra::formats
