// SPDX-License-Identifier: Zlib
#include "formats/tga.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <memory>
#include <random>

#include "tests/formats/tga_bytes.h"
#include "tests/support/same_verdict.h"

namespace keltra::test {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;

constexpr std::uint8_t kGuard = 0xA5;

// Decodes as the loader does; nothing for a refused file. The file is in a block of exactly its size and the
// target is between guards, so that reads and writes past the end are detected.
struct Decoded {
    bool done = false;
    TgaImage image = {};
    Bytes pixels;
};

Decoded decode(const Bytes &bytes) {
    Decoded result;
    std::unique_ptr<std::uint8_t[]> file(new std::uint8_t[bytes.size()]);
    std::copy(bytes.begin(), bytes.end(), file.get());
    const bool parsed = parseTga(file.get(), bytes.size(), result.image);
    if (!parsed) {
        expectSameVerdict("tga", bytes, false);
        return result;
    }
    Bytes target(result.image.bytes() + 64, kGuard);
    result.done = decodeTga(result.image, target.data() + 32);
    expectSameVerdict("tga", bytes, result.done || result.image.kind == TgaKind::kOther);
    const auto begin = target.begin() + 32, end = target.end() - 32;
    EXPECT_THAT(Bytes(target.begin(), begin), Each(kGuard));
    EXPECT_THAT(Bytes(end, target.end()), Each(kGuard));
    result.pixels.assign(begin, end);
    return result;
}

bool parses(const Bytes &bytes) {
    TgaImage image;
    const bool parsed = parseTga(bytes.data(), bytes.size(), image);
    if (!parsed) expectSameVerdict("tga", bytes, false);
    return parsed;
}

TEST(TgaTest, ReadsUncompressed24Bits) {
    const Decoded read = decode(joined(tgaHeader(kUncompressed, 2, 1, 24), {1, 2, 3, 4, 5, 6}));
    ASSERT_TRUE(read.done);
    EXPECT_EQ(read.image.kind, TgaKind::kUncompressed);
    EXPECT_EQ(read.image.sizeX, 2u);
    EXPECT_EQ(read.image.sizeY, 1u);
    EXPECT_EQ(read.image.bytesPerPixel, 3u);
    EXPECT_THAT(read.pixels, ElementsAre(3, 2, 1, 6, 5, 4));
}

TEST(TgaTest, ReadsUncompressed32Bits) {
    const Decoded read = decode(joined(tgaHeader(kUncompressed, 1, 2, 32), {1, 2, 3, 4, 5, 6, 7, 8}));
    ASSERT_TRUE(read.done);
    EXPECT_EQ(read.image.bytesPerPixel, 4u);
    EXPECT_THAT(read.pixels, ElementsAre(3, 2, 1, 4, 7, 6, 5, 8));
}

TEST(TgaTest, ConvertsEveryPixelOfLongerRows) {
    for (unsigned bits : {24u, 32u})
        for (unsigned sizeX : {1u, 3u, 4u, 15u, 16u, 17u, 63u, 128u}) {
            const Decoded read = decode(uncompressedTga(sizeX, 5, bits));
            ASSERT_TRUE(read.done);
            EXPECT_EQ(read.pixels, exchanged(numbered(sizeX * 5 * bits / 8), bits / 8))
                << sizeX << "x" << bits;
        }
}

// Kernels take several pixels at a time, and what is left over one by one.
TEST(TgaTest, ConvertsRowsOfEveryLength) {
    for (unsigned bits : {24u, 32u}) {
        for (unsigned width = 1; width <= 70; ++width) {
            const Bytes file = uncompressedTga(width, 1, bits);
            const Bytes expected = exchanged(Bytes(file.begin() + 18, file.end()), bits / 8);
            const Decoded read = decode(file);
            EXPECT_EQ(read.pixels, expected) << bits << " bits, width " << width;
            Bytes inPlace(file.begin() + 18, file.end());
            inPlace.resize(inPlace.size() + 16, kGuard);
            decodeTgaInPlace(read.image, inPlace.data());
            EXPECT_THAT(Bytes(inPlace.end() - 16, inPlace.end()), Each(kGuard));
            inPlace.resize(inPlace.size() - 16);
            EXPECT_EQ(inPlace, expected) << bits << " bits, width " << width;
        }
    }
}

TEST(TgaTest, MixesRunsAndRawPackets24Bits) {
    const Decoded read = decode(
        joined(tgaHeader(kRunLength, 3, 2, 24), {0x82, 1, 2, 3, 0x01, 4, 5, 6, 7, 8, 9, 0x80, 10, 11, 12}));
    ASSERT_TRUE(read.done);
    EXPECT_EQ(read.image.kind, TgaKind::kRunLength);
    EXPECT_THAT(read.pixels, ElementsAre(3, 2, 1, 3, 2, 1, 3, 2, 1, 6, 5, 4, 9, 8, 7, 12, 11, 10));
}

TEST(TgaTest, MixesRunsAndRawPackets32Bits) {
    const Decoded read = decode(
        joined(tgaHeader(kRunLength, 2, 2, 32), {0x00, 1, 2, 3, 4, 0x81, 5, 6, 7, 8, 0x00, 9, 10, 11, 12}));
    ASSERT_TRUE(read.done);
    EXPECT_THAT(read.pixels, ElementsAre(3, 2, 1, 4, 7, 6, 5, 8, 7, 6, 5, 8, 11, 10, 9, 12));
}

TEST(TgaTest, LongestRunRepeatsItsPixel128Times) {
    const Decoded read = decode(joined(tgaHeader(kRunLength, 129, 1, 24), {0xFF, 1, 2, 3, 0x00, 4, 5, 6}));
    ASSERT_TRUE(read.done);
    for (unsigned i = 0; i < 128; ++i) EXPECT_EQ(read.pixels[3 * i], 3) << i;
    EXPECT_EQ(read.pixels[3 * 128], 6);
}

TEST(TgaTest, LongestRawPacketCopies128Pixels) {
    const Bytes pixels = numbered(128 * 4);
    const Bytes data = joined(joined({0x7F}, pixels), {0x00, 1, 2, 3, 4});
    const Decoded read = decode(joined(tgaHeader(kRunLength, 129, 1, 32), data));
    ASSERT_TRUE(read.done);
    EXPECT_EQ(read.pixels, joined(exchanged(pixels, 4), {3, 2, 1, 4}));
}

TEST(TgaTest, PacketsMayCrossRows) {
    const Decoded read = decode(joined(tgaHeader(kRunLength, 2, 2, 24), {0x82, 1, 1, 1, 0x00, 2, 2, 2}));
    ASSERT_TRUE(read.done);
    EXPECT_THAT(read.pixels, ElementsAre(1, 1, 1, 1, 1, 1, 1, 1, 1, 2, 2, 2));
}

TEST(TgaTest, OverrunningRunIsCut) {
    for (unsigned bits : {24u, 32u}) {
        const Decoded read = decode(joined(tgaHeader(kRunLength, 3, 1, bits), {0xFF, 9, 9, 9, 9}));
        ASSERT_TRUE(read.done) << bits;
        EXPECT_THAT(read.pixels, Each(9));
    }
}

TEST(TgaTest, OverrunningRawPacketIsCut) {
    for (unsigned bits : {24u, 32u}) {
        const Bytes pixels = numbered(3 * bits / 8);
        const Bytes rest = {7, 7, 7, 7, 7, 7, 7, 7, 7, 7};
        const Bytes header = tgaHeader(kRunLength, 3, 1, bits);
        const Bytes expected = exchanged(pixels, bits / 8);

        const Decoded withRest = decode(joined(header, joined(joined({0x7F}, pixels), rest)));
        ASSERT_TRUE(withRest.done);
        EXPECT_EQ(withRest.pixels, expected);

        const Decoded without = decode(joined(header, joined({0x7F}, pixels)));
        ASSERT_TRUE(without.done) << "only the pixels that are used need to be there";
        EXPECT_EQ(without.pixels, expected);
    }
}

TEST(TgaTest, RefusesEveryTruncation) {
    const Bytes files[] = {
        uncompressedTga(3, 2, 24),
        uncompressedTga(3, 2, 32),
        joined(tgaHeader(kRunLength, 3, 2, 24), {0x82, 1, 2, 3, 0x01, 4, 5, 6, 7, 8, 9, 0x80, 10, 11, 12}),
        joined(tgaHeader(kRunLength, 2, 2, 32), {0x00, 1, 2, 3, 4, 0x81, 5, 6, 7, 8, 0x00, 9, 10, 11, 12}),
    };
    for (const Bytes &file : files) {
        ASSERT_TRUE(decode(file).done);
        for (std::size_t size = 0; size < file.size(); ++size)
            EXPECT_FALSE(decode(Bytes(file.begin(), file.begin() + size)).done)
                << size << " of " << file.size();
    }
}

TEST(TgaTest, IgnoresWhatFollowsTheImage) {
    const Decoded read = decode(joined(uncompressedTga(2, 2, 24), numbered(1000)));
    ASSERT_TRUE(read.done);
    EXPECT_EQ(read.pixels, exchanged(numbered(12), 3));
}

TEST(TgaTest, DescriptorOf16OrMoreTurnsThePicture) {
    struct {
        std::uint8_t descriptor;
        bool turned;
    } const table[] = {{0x00, false}, {0x08, false}, {0x0F, false}, {0x10, true},
                       {0x20, true},  {0x28, true},  {0x40, true},  {0xFF, true}};
    const Bytes pixels = numbered(2 * 3 * 3);
    const Bytes upright = exchanged(pixels, 3);
    Bytes turned(upright.begin() + 12, upright.end());
    turned.insert(turned.end(), upright.begin() + 6, upright.begin() + 12);
    turned.insert(turned.end(), upright.begin(), upright.begin() + 6);
    for (const auto &row : table) {
        const Decoded read = decode(joined(tgaHeader(kUncompressed, 2, 3, 24, row.descriptor), pixels));
        ASSERT_TRUE(read.done);
        EXPECT_EQ(read.pixels, row.turned ? turned : upright) << unsigned{row.descriptor};
    }
}

TEST(TgaTest, TurnsRunLengthPicturesOfOneAndTwoRows) {
    const Decoded one = decode(joined(tgaHeader(kRunLength, 2, 1, 24, 0x20), {0x81, 1, 2, 3}));
    ASSERT_TRUE(one.done);
    EXPECT_THAT(one.pixels, ElementsAre(3, 2, 1, 3, 2, 1));
    const Decoded two = decode(joined(tgaHeader(kRunLength, 1, 2, 32, 0x20), {0x01, 1, 2, 3, 4, 5, 6, 7, 8}));
    ASSERT_TRUE(two.done);
    EXPECT_THAT(two.pixels, ElementsAre(7, 6, 5, 8, 3, 2, 1, 4));
}

TEST(TgaTest, LimitsSizes) {
    EXPECT_TRUE(parses(uncompressedTga(512, 512, 32)));
    EXPECT_TRUE(parses(uncompressedTga(512, 1, 24)));
    EXPECT_TRUE(parses(uncompressedTga(300, 200, 24)));
    EXPECT_FALSE(parses(uncompressedTga(513, 1, 24)));
    EXPECT_FALSE(parses(uncompressedTga(1, 513, 24)));
    for (std::uint8_t kind : {kUncompressed, kRunLength}) {
        const Bytes data(4096, 0xFF);
        EXPECT_FALSE(parses(joined(tgaHeader(kind, 0, 4, 24), data)));
        EXPECT_FALSE(parses(joined(tgaHeader(kind, 4, 0, 24), data)));
        EXPECT_FALSE(parses(joined(tgaHeader(kind, 0xFFFF, 0xFFFF, 32), data)));
    }
}

TEST(TgaTest, TakesOnly24And32Bits) {
    for (unsigned bits = 0; bits < 256; ++bits)
        EXPECT_EQ(parses(joined(tgaHeader(kUncompressed, 2, 2, bits), Bytes(1024))), bits == 24 || bits == 32)
            << bits;
}

// `parseTga` must not accept a header alone, since its callers then allocate the image.
TEST(TgaTest, RefusesDataThatCannotHoldTheImage) {
    EXPECT_FALSE(parses(joined(tgaHeader(kUncompressed, 512, 512, 32), Bytes(100))));
    EXPECT_FALSE(parses(joined(tgaHeader(kRunLength, 512, 512, 24), Bytes(2048 * 4 - 1))));
    EXPECT_TRUE(parses(joined(tgaHeader(kRunLength, 512, 512, 24), Bytes(2048 * 4))));
    EXPECT_FALSE(parses(joined(tgaHeader(kRunLength, 1, 1, 32), Bytes(4))));
    EXPECT_TRUE(parses(joined(tgaHeader(kRunLength, 1, 1, 32), Bytes(5))));
}

TEST(TgaTest, DecodesNothingOfDataThatHasBecomeTooShort) {
    const Bytes bytes = joined(tgaHeader(kUncompressed, 2, 1, 24), {1, 2, 3, 4, 5, 6});
    TgaImage image;
    ASSERT_TRUE(parseTga(bytes.data(), bytes.size(), image));
    --image.dataSize;
    Bytes target(image.bytes(), kGuard);
    EXPECT_FALSE(decodeTga(image, target.data()));
    EXPECT_THAT(target, Each(kGuard));
}

TEST(TgaTest, AnyOtherTemplateHasNoPixels) {
    for (unsigned offset = 0; offset < 12; ++offset)
        for (std::uint8_t kind : {kUncompressed, kRunLength}) {
            Bytes file = joined(tgaHeader(kind, 2, 2, 24), Bytes(64));
            file[offset] ^= 1;
            const Decoded read = decode(file);
            EXPECT_EQ(read.image.kind, TgaKind::kOther) << offset;
            EXPECT_EQ(read.image.sizeX, 2u);
            EXPECT_FALSE(read.done);
        }
    EXPECT_TRUE(parses(tgaHeader(1, 512, 512, 32))) << "no data is asked for";
}

TEST(TgaTest, DepthAndSizeAreCheckedWhateverTheTemplate) {
    EXPECT_FALSE(parses(joined(tgaHeader(1, 2, 2, 8), Bytes(64))));
    EXPECT_FALSE(parses(joined(tgaHeader(1, 0, 2, 24), Bytes(64))));
    EXPECT_FALSE(parses(joined(tgaHeader(1, 2, 513, 24), Bytes(64))));
}

TEST(TgaTest, SurvivesRandomPackets) {
    std::mt19937 random(1);
    unsigned done = 0;
    for (unsigned round = 0; round < 2000; ++round) {
        Bytes file = tgaHeader(kRunLength, random() % 40 + 1, random() % 40 + 1, random() % 2 ? 24 : 32,
                               static_cast<std::uint8_t>(random()));
        const std::size_t size = random() % 2000;
        for (std::size_t i = 0; i < size; ++i) file.push_back(static_cast<std::uint8_t>(random()));
        done += decode(file).done;
    }
    EXPECT_GT(done, 100u);
    EXPECT_LT(done, 2000u);
}

}  // namespace
}  // namespace keltra::test
