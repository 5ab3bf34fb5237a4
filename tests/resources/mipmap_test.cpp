// SPDX-License-Identifier: Zlib
#include "resources/mipmap.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <memory>
#include <vector>

#include "tests/formats/tga_bytes.h"

namespace keltra::test {
namespace {

using ::testing::ElementsAre;

// The next level, made beside the previous one.
Bytes halved(const Bytes &image, unsigned sizeX, unsigned sizeY, unsigned channels) {
    const unsigned newX = std::max(sizeX / 2, 1u), newY = std::max(sizeY / 2, 1u);
    auto at = [&](unsigned x, unsigned y, unsigned channel) {
        x = std::min(x, sizeX - 1);
        y = std::min(y, sizeY - 1);
        return unsigned{image[(y * sizeX + x) * channels + channel]};
    };
    Bytes result;
    for (unsigned y = 0; y < newY; ++y)
        for (unsigned x = 0; x < newX; ++x)
            for (unsigned c = 0; c < channels; ++c)
                result.push_back(
                    static_cast<std::uint8_t>((at(2 * x, 2 * y, c) + at(2 * x + 1, 2 * y, c) +
                                               at(2 * x, 2 * y + 1, c) + at(2 * x + 1, 2 * y + 1, c)) >>
                                              2));
    return result;
}

TEST(MipmapTest, CountsLevelsAboveTheFirst) {
    EXPECT_EQ(mipmapLevels(1, 1), 0u);
    EXPECT_EQ(mipmapLevels(2, 1), 1u);
    EXPECT_EQ(mipmapLevels(1, 3), 1u);
    EXPECT_EQ(mipmapLevels(4, 4), 2u);
    EXPECT_EQ(mipmapLevels(300, 200), 8u);
    EXPECT_EQ(mipmapLevels(64, 511), 8u);
    EXPECT_EQ(mipmapLevels(512, 512), 9u);
    EXPECT_EQ(mipmapLevels(0, 0), 0u);
}

TEST(MipmapTest, MeansAreTruncated) {
    Bytes rgb = {1, 0, 255, 2, 0, 255, 2, 0, 255, 2, 3, 254};
    unsigned sizeX = 2, sizeY = 2;
    halveImage(rgb.data(), sizeX, sizeY, 3);
    EXPECT_EQ(sizeX, 1u);
    EXPECT_EQ(sizeY, 1u);
    EXPECT_THAT(Bytes(rgb.begin(), rgb.begin() + 3), ElementsAre(1, 0, 254));

    Bytes rgba = {1, 0, 255, 255, 2, 0, 255, 255, 2, 0, 255, 255, 2, 3, 254, 255};
    sizeX = sizeY = 2;
    halveImage(rgba.data(), sizeX, sizeY, 4);
    EXPECT_THAT(Bytes(rgba.begin(), rgba.begin() + 4), ElementsAre(1, 0, 254, 255));
}

TEST(MipmapTest, LastColumnAndRowOfAnOddSideAreLeftOut) {
    Bytes image(3 * 3 * 3, 200);
    for (unsigned y = 0; y < 2; ++y)
        for (unsigned i = 0; i < 6; ++i) image[y * 9 + i] = 10;
    unsigned sizeX = 3, sizeY = 3;
    halveImage(image.data(), sizeX, sizeY, 3);
    EXPECT_EQ(sizeX, 1u);
    EXPECT_EQ(sizeY, 1u);
    EXPECT_THAT(Bytes(image.begin(), image.begin() + 3), ElementsAre(10, 10, 10));
}

TEST(MipmapTest, SideOfOnePixelIsReadTwice) {
    Bytes column = {10, 20, 30, 21, 31, 41};
    unsigned sizeX = 1, sizeY = 2;
    halveImage(column.data(), sizeX, sizeY, 3);
    EXPECT_EQ(sizeX, 1u);
    EXPECT_EQ(sizeY, 1u);
    EXPECT_THAT(Bytes(column.begin(), column.begin() + 3), ElementsAre(15, 25, 35));
}

// The buffer is exactly as large as the image: the sanitizer sees a read beyond it.
TEST(MipmapTest, WholeChainIsMadeInPlace) {
    const std::vector<std::pair<unsigned, unsigned>> sizes = {
        {1, 1},     {1, 8},  {8, 1},  {1, 7},  {7, 1},   {2, 3},    {5, 5},   {16, 16},
        {300, 200}, {37, 2}, {3, 64}, {64, 3}, {512, 1}, {511, 13}, {128, 64}};
    for (auto [width, height] : sizes)
        for (unsigned channels : {3u, 4u}) {
            Bytes expected = numbered(width * height * channels);
            std::unique_ptr<std::uint8_t[]> buffer(new std::uint8_t[expected.size()]);
            std::copy(expected.begin(), expected.end(), buffer.get());
            unsigned sizeX = width, sizeY = height;
            for (unsigned level = mipmapLevels(width, height); level; --level) {
                expected = halved(expected, sizeX, sizeY, channels);
                halveImage(buffer.get(), sizeX, sizeY, channels);
                ASSERT_EQ(expected.size(), sizeX * sizeY * channels);
                ASSERT_TRUE(std::equal(expected.begin(), expected.end(), buffer.get()))
                    << width << "x" << height << "x" << channels << " at " << sizeX << "x" << sizeY;
            }
            EXPECT_EQ(sizeX, 1u);
            EXPECT_EQ(sizeY, 1u);
        }
}

TEST(MipmapTest, LeavesTheRestOfTheBufferAlone) {
    Bytes image = numbered(4 * 4 * 4);
    const Bytes before = image;
    unsigned sizeX = 4, sizeY = 4;
    halveImage(image.data(), sizeX, sizeY, 4);
    EXPECT_TRUE(std::equal(before.begin() + 16, before.end(), image.begin() + 16));
}

TEST(MipmapTest, EmptyImageIsLeftAlone) {
    unsigned sizeX = 0, sizeY = 8;
    halveImage(nullptr, sizeX, sizeY, 3);
    EXPECT_EQ(sizeX, 0u);
    EXPECT_EQ(sizeY, 4u);
}

}  // namespace
}  // namespace keltra::test
