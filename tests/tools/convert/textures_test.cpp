// SPDX-License-Identifier: Zlib
#include "tools/convert/textures.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/support/temp_file.h"
#include "tests/tools/convert/support/material_scene.h"
#include "tests/tools/convert/support/pictures.h"

namespace keltra::convert {
namespace {

using formats::Image;
using formats::Rgba;
using test::difference;
using test::dropped;
using test::encode;
using test::engineReads;
using test::mentions;
using test::plain;
using test::sample;

class TexturesTest : public testing::Test {
   protected:
    TexturesTest() {
        scene.options.model = folder.path("hero.obj");
        scene.options.name = "hero";
    }
    void put(const std::string &name, const Image &image, const char *format = "png") {
        std::filesystem::create_directories(std::filesystem::path(folder.path(name)).parent_path());
        folder.write(name, encode(image, format));
    }
    aiMaterial &textured(const std::string &path, aiTextureType type = aiTextureType_DIFFUSE) {
        aiMaterial &material = scene.add();
        test::setTexture(material, type, path);
        return material;
    }
    Image read(const Materials &made, std::size_t index = 0) {
        return engineReads(made.textures.at(index).bytes);
    }

    test::TempFolder folder;
    test::MaterialScene scene;
};

TEST_F(TexturesTest, TheEngineReadsThePictureAsItIs) {
    put("skin.png", sample(16, 8));
    textured("skin.png");
    const Materials made = scene.convert();
    ASSERT_EQ(made.textures.size(), 1u);
    EXPECT_EQ(made.textures[0].name, "hero_skin_d.tga");
    EXPECT_EQ(made.materials[0].texture, "hero_skin_d.tga");
    EXPECT_EQ(made.textures[0].bytes[16], 24);
    EXPECT_LT(made.textures[0].bytes[17], 16);  // rows from the bottom up
    EXPECT_EQ(difference(read(made), sample(16, 8)), 0);
    const TextureReport &line = scene.report.textures.at(0);
    EXPECT_EQ(line.file, "hero_skin_d.tga");
    EXPECT_EQ(line.source, "skin.png");
    EXPECT_EQ(line.width, 16u);
    EXPECT_EQ(line.height, 8u);
    EXPECT_EQ(line.bits, 24u);
    EXPECT_FALSE(line.missing);
    EXPECT_EQ(scene.report.textureMemory, 16u * 8 * 4);
    EXPECT_TRUE(scene.report.warnings.empty());
    EXPECT_TRUE(scene.report.notes.empty());
}

TEST_F(TexturesTest, EveryPixelOfAnEmbeddedPictureArrives) {
    scene.embed(sample(4, 4));
    scene.embed(encode(sample(8, 2), "png"), "png");
    textured("*0");
    textured("*1");
    const Materials made = scene.convert();
    EXPECT_EQ(difference(read(made, 0), sample(4, 4)), 0);
    EXPECT_EQ(difference(read(made, 1), sample(8, 2)), 0);
    EXPECT_EQ(made.textures[1].name, "hero_texture1_d.tga");
    EXPECT_EQ(scene.report.textures[0].source, "*0");
}

TEST_F(TexturesTest, SizesBecomePowersOfTwo) {
    const unsigned cases[][4] = {{1, 1, 1, 1}, {513, 3, 512, 4}, {4000, 1, 512, 1}, {100, 90, 128, 64}};
    for (const auto &size : cases) put("p" + std::to_string(size[0]) + ".png", sample(size[0], size[1]));
    for (const auto &size : cases) textured("p" + std::to_string(size[0]) + ".png");
    const Materials made = scene.convert();
    ASSERT_EQ(made.textures.size(), 4u);
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(read(made, i).width, cases[i][2]);
        EXPECT_EQ(read(made, i).height, cases[i][3]);
    }
}

TEST_F(TexturesTest, SizesStayBelowWhatIsAskedAndWhatTheEngineLoads) {
    put("wide.png", sample(1024, 64));
    textured("wide.png");
    const unsigned asked[][2] = {{64, 64}, {100, 64}, {1, 1}, {0, 1}, {512, 512}, {4096, 512}};
    for (const auto &size : asked) {
        scene.options.maxTexture = size[0];
        EXPECT_EQ(read(scene.convert()).width, size[1]);
    }
}

TEST_F(TexturesTest, RunLengthsAreUsedWhereTheyAreShorter) {
    put("plain.png", plain(64, 64, {9, 8, 7, 255}));
    Image noise(16, 16);
    for (std::size_t i = 0; i < noise.pixels.size(); ++i)
        noise.pixels[i] = {static_cast<std::uint8_t>(i * 97), static_cast<std::uint8_t>(i * 31), 5, 255};
    put("noise.png", noise);
    textured("plain.png");
    textured("noise.png");
    const Materials made = scene.convert();
    EXPECT_EQ(made.textures[0].bytes[2], 10);
    EXPECT_LT(made.textures[0].bytes.size(), 64u * 64);
    EXPECT_EQ(made.textures[1].bytes[2], 2);
    EXPECT_EQ(difference(read(made, 0), plain(64, 64, {9, 8, 7, 255})), 0);
    EXPECT_EQ(difference(read(made, 1), noise), 0);
}

TEST_F(TexturesTest, OnePictureIsWrittenOnce) {
    put("skin.png", sample(4, 4));
    scene.embed(encode(sample(4, 4), "bmp"), "bmp");
    textured("skin.png");
    textured("skin.png");
    textured("*0");
    const Materials made = scene.convert();
    ASSERT_EQ(made.textures.size(), 1u);
    for (const formats::Material &material : made.materials) EXPECT_EQ(material.texture, "hero_skin_d.tga");
    EXPECT_EQ(scene.report.textures.size(), 1u);
    EXPECT_EQ(scene.report.textureMemory, 4u * 4 * 4);
}

TEST_F(TexturesTest, FilesAreCalledDifferentlyOnAnyFileSystem) {
    put("a/skin.png", plain(2, 2, {1, 1, 1, 255}));
    put("b/Skin.png", plain(2, 2, {2, 2, 2, 255}));
    put("b/skin_n.png", plain(2, 2, {3, 3, 3, 255}));
    put(std::string(200, 'x') + ".png", plain(2, 2, {4, 4, 4, 255}));
    textured("a/skin.png");
    textured("b/Skin.png");
    textured("b/skin_n.png");
    textured(std::string(200, 'x') + ".png");
    const Materials made = scene.convert();
    ASSERT_EQ(made.textures.size(), 4u);
    EXPECT_EQ(made.textures[0].name, "hero_skin_d.tga");
    EXPECT_EQ(made.textures[1].name, "hero_Skin.2_d.tga");
    EXPECT_EQ(made.textures[2].name, "hero_skin_n_d.tga");
    EXPECT_EQ(made.textures[3].name, "hero_" + std::string(64, 'x') + "_d.tga");
}

TEST_F(TexturesTest, ACheckerStandsInForWhatIsMissing) {
    folder.write("words.png", "just words");
    std::filesystem::create_directory(folder.path("folder.png"));
    for (const char *path : {"art\\lost.png", "words.png", "folder.png", "*3", "caf\xE9\n.png"})
        textured(path);
    const Materials made = scene.convert();
    ASSERT_EQ(made.textures.size(), 5u);
    EXPECT_EQ(made.textures[0].name, "hero_lost_d.tga");
    for (std::size_t i = 0; i < 5; ++i) {
        EXPECT_EQ(difference(read(made, i), checker()), 0);
        EXPECT_EQ(made.materials[i].texture, made.textures[i].name);
        EXPECT_EQ(made.materials[i].transparency, 1.0f);
        EXPECT_TRUE(scene.report.textures[i].missing);
    }
    const std::vector<std::string> &warnings = scene.report.warnings;
    EXPECT_TRUE(mentions(warnings, "texture art\\lost.png is missing; a checkerboard replaces it"));
    EXPECT_TRUE(mentions(warnings,
                         "texture words.png cannot be read: it is not a picture of a known format; "
                         "a checkerboard replaces it"));
    EXPECT_TRUE(mentions(warnings, "texture folder.png cannot be read: it is not a regular file"));
    EXPECT_TRUE(mentions(warnings, "texture *3 is missing"));
    EXPECT_TRUE(mentions(warnings, "texture caf__.png is missing"));
    EXPECT_EQ(warnings.size(), 5u);
}

TEST_F(TexturesTest, AMissingTextureIsSaidOnce) {
    textured("lost.png");
    textured("lost.png", aiTextureType_BASE_COLOR);
    test::setAlphaMode(textured("lost.png"), "BLEND");
    const Materials made = scene.convert();
    EXPECT_EQ(scene.report.warnings.size(), 1u);
    EXPECT_EQ(made.materials[2].transparency, 1.0f);
    scene.options.maxTexture = 16;
    EXPECT_EQ(read(scene.convert()).width, 16u);
}

TEST_F(TexturesTest, AnotherFileIsNotedAndDamageWarnedOf) {
    put("skin.png", sample(4, 4));
    test::Bytes bytes = encode(plain(64, 64, {200, 100, 50, 255}), "jpeg");
    bytes.resize(bytes.size() - 40);
    folder.write("torn.jpg", bytes);
    textured("D:\\art\\skin.tga");
    textured("D:\\art\\skin.tga");
    textured("torn.jpg");
    const Materials made = scene.convert();
    EXPECT_EQ(made.textures.size(), 2u);
    EXPECT_EQ(scene.report.notes,
              std::vector<std::string>{"texture D:\\art\\skin.tga is read from skin.png"});
    ASSERT_EQ(scene.report.warnings.size(), 1u);
    EXPECT_TRUE(mentions(scene.report.warnings, "texture torn.jpg is damaged and was read in part: "));
}

// Alpha

Image halfSeen() {
    Image image = sample(8, 8);
    for (unsigned y = 0; y < 8; ++y)
        for (unsigned x = 0; x < 4; ++x) image.at(x, y).a = 100;
    return image;
}

TEST_F(TexturesTest, AlphaThatNobodyAsksForIsDropped) {
    put("skin.png", halfSeen());
    textured("skin.png");
    test::setAlphaMode(textured("skin.png"), "OPAQUE");
    const Materials made = scene.convert();
    ASSERT_EQ(made.textures.size(), 1u);
    EXPECT_EQ(made.textures[0].bytes[16], 24);
    EXPECT_EQ(difference(read(made), sample(8, 8)), 0);
    EXPECT_EQ(made.materials[0].transparency, 1.0f);
    EXPECT_EQ(scene.report.notes.size(), 1u);
    EXPECT_TRUE(mentions(scene.report.notes, "the alpha of texture skin.png is dropped"));
}

TEST_F(TexturesTest, AlphaThatIsAskedForIsKeptAndBlended) {
    put("skin.png", halfSeen());
    test::setAlphaMode(textured("skin.png"), "BLEND");
    test::setInteger(textured("skin.png"), _AI_MATKEY_TEXFLAGS_BASE, aiTextureFlags_UseAlpha,
                     aiTextureType_DIFFUSE);
    aiMaterial &faint = textured("skin.png");
    test::setAlphaMode(faint, "BLEND");
    test::setFloat(faint, "$mat.opacity", 0.5f);
    const Materials made = scene.convert();
    ASSERT_EQ(made.textures.size(), 1u);
    EXPECT_EQ(made.textures[0].bytes[16], 32);
    EXPECT_EQ(scene.report.textures[0].bits, 32u);
    EXPECT_EQ(difference(read(made), halfSeen()), 0);
    EXPECT_EQ(made.materials[0].transparency, 254.0f / 255.0f);
    EXPECT_EQ(made.materials[1].transparency, 254.0f / 255.0f);
    EXPECT_EQ(made.materials[2].transparency, 0.5f);
}

TEST_F(TexturesTest, AlphaCanBeIgnoredExpressly) {
    put("skin.png", halfSeen());
    aiMaterial &material = textured("skin.png");
    test::setAlphaMode(material, "BLEND");
    test::setInteger(material, _AI_MATKEY_TEXFLAGS_BASE, aiTextureFlags_IgnoreAlpha, aiTextureType_DIFFUSE);
    const Materials made = scene.convert();
    EXPECT_EQ(made.textures[0].bytes[16], 24);
    EXPECT_EQ(made.materials[0].transparency, 1.0f);
}

TEST_F(TexturesTest, AlphaThatHidesNothingOrEverythingIsDropped) {
    put("full.png", sample(8, 8));
    put("blank.tga", sample(8, 8, 0), "tga");
    test::setAlphaMode(textured("full.png"), "BLEND");
    test::setAlphaMode(textured("blank.tga"), "BLEND");
    const Materials made = scene.convert();
    ASSERT_EQ(made.textures.size(), 1u);  // and so they are the same
    EXPECT_EQ(made.textures[0].bytes[16], 24);
    EXPECT_EQ(difference(read(made), sample(8, 8)), 0);
    EXPECT_EQ(made.materials[0].transparency, 1.0f);
    EXPECT_EQ(made.materials[1].transparency, 1.0f);
}

TEST_F(TexturesTest, AMaskIsCutWhereTheModelSays) {
    Image leaf = sample(8, 8);
    for (unsigned x = 0; x < 8; ++x) leaf.at(x, 0).a = static_cast<std::uint8_t>(x * 36);
    put("leaf.png", leaf);
    aiMaterial &half = textured("leaf.png");
    test::setAlphaMode(half, "MASK");
    aiMaterial &scaled = textured("leaf.png");
    test::setAlphaMode(scaled, "MASK");
    test::setFloat(scaled, "$mat.gltf.alphaCutoff", 0.25f);
    test::setFloat(scaled, "$mat.opacity", 0.5f);
    aiMaterial &none = textured("leaf.png");
    test::setAlphaMode(none, "MASK");
    test::setFloat(none, "$mat.opacity", 0.0f);
    const Materials made = scene.convert();
    ASSERT_EQ(made.textures.size(), 2u);
    EXPECT_EQ(made.materials[0].texture, made.materials[1].texture);  // 0.25 / 0.5 is the same cut
    const Image cut = read(made);
    for (unsigned x = 0; x < 8; ++x) EXPECT_EQ(cut.at(x, 0).a, x * 36 >= 128 ? 255 : 0);
    EXPECT_EQ(made.materials[1].transparency, 254.0f / 255.0f);
    for (const Rgba pixel : read(made, 1).pixels) EXPECT_EQ(pixel.a, 0);
}

TEST_F(TexturesTest, HiddenPixelsTakeTheColourBesideThem) {
    Image leaf = plain(16, 16, {0, 0, 0, 0});
    for (unsigned y = 4; y < 12; ++y)
        for (unsigned x = 4; x < 12; ++x) leaf.at(x, y) = {40, 200, 60, 255};
    put("leaf.png", leaf);
    test::setAlphaMode(textured("leaf.png"), "MASK");
    for (const Rgba pixel : read(scene.convert()).pixels) {
        EXPECT_EQ(pixel.r, 40);
        EXPECT_EQ(pixel.g, 200);
    }
}

TEST_F(TexturesTest, AnOpacityMapBecomesTheAlpha) {
    put("skin.png", sample(8, 8));
    put("holes.png", plain(4, 4, {64, 64, 64, 255}));
    put("veil.png", plain(4, 4, {255, 255, 255, 200}));
    for (const char *opacity : {"holes.png", "veil.png", "holes.png"})
        test::setTexture(textured("skin.png"), aiTextureType_OPACITY, opacity);
    test::setInteger(textured("skin.png"), _AI_MATKEY_TEXFLAGS_BASE, aiTextureFlags_Invert,
                     aiTextureType_OPACITY);
    aiMaterial &inverted = textured("skin.png");
    test::setTexture(inverted, aiTextureType_OPACITY, "holes.png");
    test::setInteger(inverted, _AI_MATKEY_TEXFLAGS_BASE, aiTextureFlags_Invert, aiTextureType_OPACITY);
    const Materials made = scene.convert();
    ASSERT_EQ(made.textures.size(), 4u);
    EXPECT_EQ(difference(read(made, 0), sample(8, 8, 64)), 0);
    EXPECT_EQ(difference(read(made, 1), sample(8, 8, 200)), 0);
    EXPECT_EQ(difference(read(made, 3), sample(8, 8, 191)), 0);
    EXPECT_EQ(made.materials[0].texture, made.materials[2].texture);
    EXPECT_EQ(made.materials[0].transparency, 254.0f / 255.0f);
    EXPECT_EQ(made.materials[3].transparency, 1.0f);  // a flag of a map that is not there
}

TEST_F(TexturesTest, AnOpacityMapMayBeFinerThanThePicture) {
    put("skin.png", plain(2, 2, {10, 20, 30, 255}));
    Image fence = plain(16, 4, {255, 255, 255, 255});
    for (unsigned x = 0; x < 8; ++x) fence.at(x, 0) = {0, 0, 0, 255};
    put("fence.png", fence);
    test::setTexture(textured("skin.png"), aiTextureType_OPACITY, "fence.png");
    const Image result = read(scene.convert());
    ASSERT_EQ(result.width, 16u);
    ASSERT_EQ(result.height, 4u);
    EXPECT_EQ(result.at(0, 0), (Rgba{10, 20, 30, 0}));
    EXPECT_EQ(result.at(15, 0), (Rgba{10, 20, 30, 255}));
}

TEST_F(TexturesTest, ThePictureAsItsOwnOpacityMeansItsAlpha) {
    put("skin.png", halfSeen());
    put("solid.png", sample(8, 8));
    test::setTexture(textured("skin.png"), aiTextureType_OPACITY, "skin.png");
    test::setTexture(textured("solid.png"), aiTextureType_OPACITY, "solid.png");
    const Materials made = scene.convert();
    EXPECT_EQ(difference(read(made, 0), halfSeen()), 0);
    EXPECT_EQ(difference(read(made, 1), sample(8, 8)), 0);
    EXPECT_EQ(made.materials[1].transparency, 1.0f);
}

TEST_F(TexturesTest, AnOpacityMapAloneMakesAWhiteTexture) {
    put("holes.png", plain(4, 4, {64, 64, 64, 255}));
    aiMaterial &material = scene.add();
    test::setTexture(material, aiTextureType_OPACITY, "holes.png");
    test::setInteger(material, _AI_MATKEY_UVWSRC_BASE, 1, aiTextureType_OPACITY);
    test::setTexture(scene.add(), aiTextureType_OPACITY, "lost.png");
    const Materials made = scene.convert();
    ASSERT_EQ(made.textures.size(), 1u);
    EXPECT_EQ(made.textures[0].name, "hero_holes_d.tga");
    EXPECT_EQ(difference(read(made), plain(4, 4, {255, 255, 255, 64})), 0);
    EXPECT_EQ(made.uvChannel[0], 1u);
    EXPECT_EQ(made.materials[1].texture, "[none]");
    EXPECT_TRUE(mentions(scene.report.warnings, "texture lost.png is missing; the opacity map is ignored"));
}

TEST_F(TexturesTest, AnOpacityMapOfOtherCoordinatesIsDropped) {
    put("skin.png", sample(4, 4));
    put("holes.png", plain(4, 4, {64, 64, 64, 255}));
    aiMaterial &material = textured("skin.png");
    test::setTexture(material, aiTextureType_OPACITY, "holes.png");
    test::setInteger(material, _AI_MATKEY_UVWSRC_BASE, 1, aiTextureType_OPACITY);
    const Materials made = scene.convert();
    EXPECT_EQ(made.textures[0].bytes[16], 24);
    EXPECT_EQ(dropped(scene.report, "opacity maps"), 1u);
}

TEST_F(TexturesTest, PicturesAreHalvedToFitTheBudget) {
    put("large.png", sample(64, 64));
    put("wide.png", sample(64, 32));
    put("small.png", plain(8, 8, {1, 2, 3, 128}));
    for (const char *name : {"large.png", "wide.png"}) textured(name);
    test::setAlphaMode(textured("small.png"), "BLEND");
    scene.options.fit = true;
    scene.options.budget.textures = 32 * 32 * 4 + 32 * 16 * 4 + 8 * 8 * 4;
    const Materials made = scene.convert();
    EXPECT_EQ(read(made, 0).width, 32u);
    EXPECT_EQ(read(made, 0).height, 32u);
    EXPECT_EQ(read(made, 1).width, 32u);
    EXPECT_EQ(read(made, 1).height, 16u);
    EXPECT_EQ(read(made, 2).width, 8u);
    EXPECT_EQ(scene.report.textures[0].width, 32u);
    EXPECT_EQ(scene.report.textureMemory, scene.options.budget.textures);
    scene.options.budget.textures = 1;  // not below a few pixels
    scene.convert();
    EXPECT_GT(scene.report.textureMemory, 0u);
    scene.options.fit = false;
    EXPECT_EQ(read(scene.convert(), 0).width, 64u);
}

TEST_F(TexturesTest, NamesThatAreNotThoseOfFilesGiveNoChecker) {
    put("shaded.png", sample(4, 4));
    for (const char *path : {"Material.002", "models/quadDamage", "shaded"}) textured(path);
    const Materials made = scene.convert();
    ASSERT_EQ(made.textures.size(), 1u);
    EXPECT_EQ(made.materials[0].texture, formats::Material().texture);
    EXPECT_EQ(made.materials[1].texture, formats::Material().texture);
    EXPECT_EQ(made.materials[2].texture, "hero_shaded_d.tga");  // another extension will do
    EXPECT_EQ(scene.report.missing, 2u);
    EXPECT_TRUE(mentions(scene.report.warnings,
                         "texture Material.002 is missing; it is no name of a file, and the material has"));
}

}  // namespace
}  // namespace keltra::convert
