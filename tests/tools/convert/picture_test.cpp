// SPDX-License-Identifier: Zlib
#include "tools/convert/picture.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <iterator>

#include "tests/tools/convert/support/pictures.h"
#include "tools/convert/textures.h"

namespace keltra::convert {
namespace {

using formats::Image;
using formats::Rgba;
using test::Bytes;
using test::difference;
using test::encode;
using test::plain;
using test::sample;

Image read(const Bytes &bytes, const std::string &extension = "") {
    std::string remark;
    return readPicture(bytes.data(), bytes.size(), extension, remark);
}

Bytes text(const std::string &text) { return Bytes(text.begin(), text.end()); }

// Why a picture is refused; "read" when it is not.
std::string refusal(const Bytes &bytes, const std::string &extension = "", double seconds = 60.0) {
    std::string remark;
    try {
        readPicture(bytes.data(), bytes.size(), extension, remark, seconds);
    } catch (const PictureFault &fault) {
        EXPECT_FALSE(fault.missing);
        return fault.what();
    }
    return "read";
}

class LosslessFormat : public testing::TestWithParam<const char *> {};

TEST_P(LosslessFormat, ComesOutAsItWentIn) {
    const Image image = sample(7, 5);
    EXPECT_EQ(difference(read(encode(image, GetParam()), GetParam()), image), 0);
}
INSTANTIATE_TEST_SUITE_P(Pictures, LosslessFormat,
                         testing::Values("png", "bmp", "tga", "gif", "tiff", "psd", "pcx", "ppm", "pam",
                                         "sgi"));

class LossyFormat : public testing::TestWithParam<const char *> {};

TEST_P(LossyFormat, ComesOutMuchAsItWentIn) {
    const Image image = plain(8, 8, {200, 100, 50, 255});
    EXPECT_LE(difference(read(encode(image, GetParam())), image), 6);
}
INSTANTIATE_TEST_SUITE_P(Pictures, LossyFormat, testing::Values("jpeg", "dds", "webp"));

TEST(ReadPicture, AmountsOfLightBecomeShadesOfTheScreen) {
    const Image image = plain(8, 8, {200, 100, 50, 255});
    const auto light = [](Magick::Image &picture) { picture.colorSpace(MagickCore::RGBColorspace); };
    EXPECT_LE(difference(read(encode(image, "hdr", light)), image), 2);
}

TEST(ReadPicture, KeepsAlpha) {
    Image image = sample(4, 4);
    image.at(1, 2).a = 0;
    image.at(3, 3).a = 77;
    EXPECT_EQ(difference(read(encode(image, "png")), image), 0);
    EXPECT_EQ(difference(read(encode(image, "tga"), "tga"), image), 0);
}

TEST(ReadPicture, GreyKeepsItsShades) {
    for (const int shade : {0, 1, 64, 128, 254, 255}) {
        const std::uint8_t grey = static_cast<std::uint8_t>(shade);
        const Image image = plain(3, 3, {grey, grey, grey, 255});
        const auto toGrey = [](Magick::Image &picture) { picture.type(MagickCore::GrayscaleType); };
        EXPECT_LE(difference(read(encode(image, "png", toGrey)), image), 1) << shade;
        EXPECT_LE(difference(read(encode(image, "jpeg", toGrey)), image), 1) << shade;
    }
    EXPECT_EQ(difference(read(text("P2 2 1 255 128 7\n")),
                         [] {
                             Image image = plain(2, 1, {128, 128, 128, 255});
                             image.at(1, 0) = {7, 7, 7, 255};
                             return image;
                         }()),
              0);
}

TEST(ReadPicture, PaletteSixteenBitsAndInkBecomePlainColours) {
    const Image image = plain(4, 4, {200, 100, 50, 255});
    const auto palette = [](Magick::Image &picture) { picture.type(MagickCore::PaletteType); };
    const auto deep = [](Magick::Image &picture) { picture.depth(16); };
    const auto ink = [](Magick::Image &picture) { picture.colorSpace(MagickCore::CMYKColorspace); };
    EXPECT_EQ(difference(read(encode(image, "png", palette)), image), 0);
    EXPECT_EQ(difference(read(encode(image, "png", deep)), image), 0);
    EXPECT_LE(difference(read(encode(image, "tiff", ink)), image), 2);
    EXPECT_LE(difference(read(encode(image, "jpeg", ink)), image), 8);
}

TEST(ReadPicture, TakesTheFirstFrame) {
    Bytes film;
    for (const Rgba colour : {Rgba{255, 0, 0, 255}, Rgba{0, 255, 0, 255}}) {
        const Bytes frame = encode(plain(2, 2, colour), "pam");
        film.insert(film.end(), frame.begin(), frame.end());
    }
    EXPECT_EQ(difference(read(film), plain(2, 2, {255, 0, 0, 255})), 0);
}

TEST(ReadPicture, TheBytesTellTheFormatNotTheExtension) {
    const Image image = sample(4, 3);
    EXPECT_EQ(difference(read(encode(image, "png"), "jpg"), image), 0);
    EXPECT_EQ(difference(read(encode(image, "png"), "tga"), image), 0);
    EXPECT_EQ(difference(read(encode(image, "bmp"), "svg"), image), 0);
}

TEST(ReadPicture, ATargaNeedsItsExtensionOrItsFooter) {
    const Image image = sample(4, 3);
    const Bytes bare = formats::writeTga(image, {});
    EXPECT_EQ(difference(read(bare, "tga"), image), 0);
    EXPECT_EQ(refusal(bare, "xyz"), "it is not a picture of a known format");
    Bytes marked = bare;
    const std::string footer(8, '\0');
    marked.insert(marked.end(), footer.begin(), footer.end());
    const Bytes name = text("TRUEVISION-XFILE.");
    marked.insert(marked.end(), name.begin(), name.end());
    marked.push_back(0);
    EXPECT_EQ(difference(read(marked, "xyz"), image), 0);
}

TEST(WritePicture, IsPackedWhereThatSavesMoreThanASixteenth) {
    constexpr std::uint8_t kUncompressed = 2, kRunLength = 10;
    Image image(64, 8);
    for (unsigned x = 0; x < 64; ++x)
        for (unsigned y = 0; y < 8; ++y) image.at(x, y) = {static_cast<std::uint8_t>(x), 0, 0, 255};
    EXPECT_EQ(targa(image, false)[2], kUncompressed);
    // A packed row has 193 bytes, and 26 fewer with ten equal pixels; in four rows that is a sixteenth of
    // 1,536.
    for (unsigned x = 0; x < 10; ++x)
        for (unsigned y = 0; y < 4; ++y) image.at(x, y).r = 9;
    EXPECT_EQ(targa(image, false)[2], kUncompressed);
    for (unsigned x = 0; x < 10; ++x)
        for (unsigned y = 4; y < 8; ++y) image.at(x, y).r = 9;
    EXPECT_EQ(targa(image, false)[2], kRunLength);
    EXPECT_EQ(difference(read(targa(image, false), "tga"), image), 0);
    EXPECT_EQ(difference(read(targa(image, true), "tga"), image), 0);
}

TEST(ReadPicture, TargasOfEveryKindAreUpright) {
    const Image image = sample(4, 3);
    for (const unsigned bits : {24u, 32u})
        for (const bool runLength : {false, true})
            for (const bool topDown : {false, true})
                EXPECT_EQ(
                    difference(read(formats::writeTga(image, {runLength, bits, topDown}), "tga"), image), 0);
    Bytes rightToLeft = formats::writeTga(image, {});
    rightToLeft[17] |= 0x10;
    EXPECT_EQ(read(rightToLeft, "tga").at(0, 1), image.at(3, 1));
    // Two columns, two rows: grey, then a palette of red and green.
    const Bytes grey = {0, 0, 3, 0, 0, 0, 0, 0, 0, 0, 0, 0, 2, 0, 2, 0, 8, 0, 1, 100, 200, 255};
    EXPECT_EQ(read(grey, "tga").at(1, 1), (Rgba{100, 100, 100, 255}));
    const Bytes palette = {0, 1, 1, 0, 0, 2, 0,   24, 0,   0, 0, 0, 2, 0,
                           2, 0, 8, 0, 0, 0, 255, 0,  255, 0, 1, 0, 0, 0};
    EXPECT_EQ(read(palette, "tga").at(0, 1), (Rgba{0, 255, 0, 255}));
    EXPECT_EQ(read(palette, "tga").at(1, 1), (Rgba{255, 0, 0, 255}));
}

TEST(ReadPicture, TheAttitudeOfACameraTurnsNothing) {
    const auto turned = [](Magick::Image &picture) {
        picture.orientation(MagickCore::BottomRightOrientation);
    };
    EXPECT_EQ(difference(read(encode(sample(4, 3), "tiff", turned)), sample(4, 3)), 0);
}

TEST(ReadPicture, RefusesWhatIsNoPlainPicture) {
    const Bytes drawings[] = {
        text("<?xml version=\"1.0\"?><svg xmlns=\"http://www.w3.org/2000/svg\" width=\"9\" height=\"9\"/>"),
        text("<image><read filename=\"/etc/hostname\"/></image>"),
        text("push graphic-context\nviewbox 0 0 9 9\nimage over 0,0 0,0 '/etc/hostname'\npop "
             "graphic-context\n"),
        text("%PDF-1.4\n1 0 obj\n"),
        text("%!PS-Adobe-3.0\n"),
        text("id=ImageMagick version=1.0\nclass=DirectClass\ncolumns=1\nrows=1\n\f\n:\x1A\1\1\1"),
        text("# ImageMagick pixel enumeration: 1,1,255,rgb\n0,0: (255,0,0)\n"),
        text("/* XPM */ static char *x[] = {\"1 1 1 1\", \"a c red\", \"a\"};"),
        text("just words"),
    };
    for (const Bytes &drawing : drawings) {
        for (const char *extension : {"", "svg", "msl", "mvg", "txt", "pdf", "png"})
            EXPECT_EQ(refusal(drawing, extension), "it is not a picture of a known format") << extension;
        EXPECT_NE(refusal(drawing, "tga"), "read");
    }
    EXPECT_EQ(refusal({}, "png"), "it is empty");
}

TEST(ReadPicture, RefusesSizesByTheHeaderAlone) {
    Bytes targa = formats::writeTga(sample(1, 1), {});
    const auto sized = [&](unsigned width, unsigned height) {
        targa[12] = width & 0xFF, targa[13] = width >> 8 & 0xFF;
        targa[14] = height & 0xFF, targa[15] = height >> 8 & 0xFF;
        return refusal(targa, "tga");
    };
    EXPECT_EQ(sized(16384, 4097), "it is too large, 16384 x 4097 pixels");
    EXPECT_NE(sized(16385, 1), "read");
    EXPECT_NE(sized(1, 65535), "read");
    EXPECT_NE(sized(0, 1), "read");
    for (const char *header :
         {"P5 0 5 255\n", "P5 16385 1 255\n", "P5 16384 16384 255\n", "P5 99999999 99999999 255\n"})
        EXPECT_NE(refusal(text(header)), "read") << header;
}

TEST(ReadPicture, GivesUpAfterItsTime) {
    EXPECT_EQ(refusal(encode(sample(64, 64), "png"), "", 0.0), "it takes too long to decode");
}

TEST(ReadPicture, SaysWhatIsWrongInOneLine) {
    Bytes bytes = encode(sample(8, 8), "png");
    bytes.resize(20);
    const std::string reason = refusal(bytes);
    EXPECT_NE(reason, "read");
    EXPECT_EQ(reason.find('\n'), std::string::npos);
    EXPECT_EQ(reason.find(".c/"), std::string::npos) << reason;
}

TEST(ReadPicture, RemarksOnDamageThatItReadsOver) {
    Bytes bytes = encode(plain(64, 64, {200, 100, 50, 255}), "jpeg");
    bytes.resize(bytes.size() - 40);
    std::string remark;
    const Image image = readPicture(bytes.data(), bytes.size(), "", remark);
    EXPECT_EQ(image.width, 64u);
    EXPECT_NE(remark, "");
    const Bytes whole = encode(sample(8, 8), "jpeg");
    readPicture(whole.data(), whole.size(), "", remark);
    EXPECT_EQ(remark, "");
}

class DamagedPicture : public testing::TestWithParam<const char *> {};

TEST_P(DamagedPicture, EveryTruncationIsReadOrRefused) {
    const Bytes whole = encode(sample(8, 8), GetParam());
    ASSERT_EQ(refusal(whole, GetParam()), "read");
    unsigned refused = 0;
    for (std::size_t size = 0; size < whole.size(); ++size) {
        const Bytes part(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
        try {
            const Image image = read(part, GetParam());
            EXPECT_EQ(image.pixels.size(), std::size_t{image.width} * image.height);
        } catch (const PictureFault &) {
            ++refused;
        }
    }
    EXPECT_GT(refused, 4u);
}

TEST_P(DamagedPicture, EveryChangedByteIsReadOrRefused) {
    const Bytes whole = encode(sample(8, 8), GetParam());
    for (std::size_t at = 0; at < whole.size(); ++at) {
        Bytes changed = whole;
        changed[at] ^= 0xFF;
        try {
            const Image image = read(changed, GetParam());
            EXPECT_LE(image.pixels.size(), kMaxPicturePixels);
        } catch (const PictureFault &fault) {
            EXPECT_NE(std::string(fault.what()), "");
        }
    }
}
INSTANTIATE_TEST_SUITE_P(Pictures, DamagedPicture,
                         testing::Values("png", "jpeg", "bmp", "tga", "gif", "pcx", "ppm"));

TEST(NearestPower, IsNearestInRatioAndNeverBeyondTheMost) {
    const unsigned cases[][2] = {{1, 1},     {2, 2},     {3, 4},     {5, 4},      {6, 8},
                                 {11, 8},    {12, 16},   {90, 64},   {91, 128},   {300, 256},
                                 {363, 512}, {512, 512}, {513, 512}, {4000, 512}, {16384, 512}};
    for (const auto &sides : cases) EXPECT_EQ(nearestPower(sides[0], 512), sides[1]) << sides[0];
    EXPECT_EQ(nearestPower(4000, 1), 1u);
    EXPECT_EQ(nearestPower(100, 16), 16u);
    EXPECT_EQ(nearestPower(4000000000u, 512), 512u);
}

TEST(Resized, KeepsAPictureOfThatSizeAsItIs) {
    const Image image = sample(8, 4, 99);
    EXPECT_EQ(difference(resized(image, 8, 4, true), image), 0);
    EXPECT_EQ(difference(resized(image, 8, 4, false), sample(8, 4)), 0);
}

TEST(Resized, KeepsTopAndLeftWhereTheyAre) {
    Image image = plain(32, 32, {0, 0, 255, 255});
    for (unsigned y = 0; y < 16; ++y)
        for (unsigned x = 0; x < 16; ++x) image.at(x, y) = {255, 0, 0, 255};
    const Image small = resized(image, 4, 8, false);
    ASSERT_EQ(small.width, 4u);
    ASSERT_EQ(small.height, 8u);
    EXPECT_GT(small.at(0, 0).r, 250);
    EXPECT_LT(small.at(3, 0).r, 5);
    EXPECT_LT(small.at(0, 7).r, 5);
    EXPECT_GT(small.at(3, 7).b, 250);
}

TEST(Resized, LeavesNoThreadsBehind) {
    read(encode(sample(256, 256), "png"));
    resized(sample(300, 300), 512, 64, true);
    using Tasks = std::filesystem::directory_iterator;
    EXPECT_EQ(std::distance(Tasks("/proc/self/task"), Tasks()), 1);
}

TEST(Resized, HiddenColoursDoNotReachTheEdges) {
    // White on black that cannot be seen.
    Image image = plain(64, 64, {0, 0, 0, 0});
    for (unsigned y = 0; y < 64; ++y)
        for (unsigned x = 0; x < 21; ++x) image.at(x, y) = {255, 255, 255, 255};
    unsigned edges = 0;
    for (const Rgba pixel : resized(image, 16, 16, true).pixels) {
        if (pixel.a == 0) continue;
        edges += pixel.a < 255;
        EXPECT_GE(pixel.r, 250);
    }
    EXPECT_GT(edges, 0u);
}

TEST(Resized, WithoutAlphaHiddenColoursCount) {
    const Image small = resized(plain(8, 8, {10, 200, 30, 0}), 2, 2, false);
    EXPECT_EQ(difference(small, plain(2, 2, {10, 200, 30, 255})), 0);
}

TEST(SpreadColours, FillsWhatIsHiddenWithItsNearestColour) {
    Image image = plain(8, 1, {0, 0, 0, 0});
    image.at(1, 0) = {255, 0, 0, 255};
    image.at(4, 0) = {0, 0, 255, 128};
    spreadColours(image);
    EXPECT_EQ(image.at(2, 0), (Rgba{255, 0, 0, 0}));
    EXPECT_EQ(image.at(3, 0), (Rgba{0, 0, 255, 0}));
    EXPECT_EQ(image.at(7, 0), (Rgba{255, 0, 0, 0}));  // over the edge, for it repeats
    EXPECT_EQ(image.at(4, 0), (Rgba{0, 0, 255, 128}));
}

TEST(SpreadColours, LeavesAPictureWithoutColoursAlone) {
    Image image = plain(4, 4, {1, 2, 3, 0});
    spreadColours(image);
    EXPECT_EQ(difference(image, plain(4, 4, {1, 2, 3, 0})), 0);
    Image nothing;
    spreadColours(nothing);
    EXPECT_TRUE(nothing.pixels.empty());
}

TEST(LooksLikeNormals, TellsNormalsFromHeights) {
    EXPECT_TRUE(looksLikeNormals(plain(4, 4, {128, 128, 255, 255})));
    EXPECT_FALSE(looksLikeNormals(plain(4, 4, {128, 128, 128, 255})));
    EXPECT_FALSE(looksLikeNormals(plain(4, 4, {255, 255, 255, 255})));
    EXPECT_FALSE(looksLikeNormals(plain(4, 4, {0, 0, 255, 255})));
    EXPECT_FALSE(looksLikeNormals(Image()));
}

TEST(Checker, IsMagentaAndBlackInSquaresOfEight) {
    const Image image = checker();
    EXPECT_EQ(image.width, 64u);
    EXPECT_EQ(image.height, 64u);
    EXPECT_EQ(image.at(7, 7), (Rgba{255, 0, 255, 255}));
    EXPECT_EQ(image.at(8, 7), (Rgba{0, 0, 0, 255}));
    EXPECT_EQ(image.at(8, 8), (Rgba{255, 0, 255, 255}));
}

}  // namespace
}  // namespace keltra::convert
