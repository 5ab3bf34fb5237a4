// SPDX-License-Identifier: Zlib
#include "tools/convert/materials.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "tests/support/temp_file.h"
#include "tests/tools/convert/support/material_scene.h"
#include "tests/tools/convert/support/pictures.h"

namespace keltra::convert {
namespace {

using formats::Color;
using test::dropped;
using test::mentions;
using test::setColour;
using test::setFloat;
using test::setInteger;
using test::setTexture;

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinite = std::numeric_limits<float>::infinity();
constexpr char kDiffuse[] = "$clr.diffuse", kSpecular[] = "$clr.specular", kEmissive[] = "$clr.emissive";
constexpr char kBase[] = "$clr.base", kShininess[] = "$mat.shininess", kOpacity[] = "$mat.opacity";

::testing::AssertionResult is(Color c, float r, float g, float b) {
    const float error = std::max({std::fabs(c.r - r), std::fabs(c.g - g), std::fabs(c.b - b)});
    if (error < 1e-4f && c.a == 1.0f) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << c.r << ", " << c.g << ", " << c.b << ", " << c.a;
}

void expectColours(const formats::Material &made, Color diffuse, Color ambient, Color specular,
                   Color emission) {
    EXPECT_TRUE(is(made.diffuse, diffuse.r, diffuse.g, diffuse.b));
    EXPECT_TRUE(is(made.ambient, ambient.r, ambient.g, ambient.b));
    EXPECT_TRUE(is(made.specular, specular.r, specular.g, specular.b));
    EXPECT_TRUE(is(made.emission, emission.r, emission.g, emission.b));
}

class MaterialsTest : public testing::Test {
   protected:
    MaterialsTest() {
        scene.options.model = folder.path("hero.obj");
        scene.options.name = "hero";
        folder.write("skin.png", test::encode(test::sample(4, 4), "png"));
        folder.write("lamp.png", test::encode(test::sample(8, 8), "png"));
        folder.write("normals.png", test::encode(test::plain(4, 4, {128, 128, 255, 255}), "png"));
    }
    formats::Material only() { return scene.convert().materials.at(0); }

    test::TempFolder folder;
    test::MaterialScene scene;
};

TEST_F(MaterialsTest, AreNamedAfterModelAndMaterialEachOnce) {
    for (const char *name : {"skin", "skin", "", "caf\xE9\n", "Skin"}) scene.add(name);
    scene.add(std::string(400, 'x'));
    const Materials made = scene.convert();
    const char *expected[] = {"hero.skin", "hero.skin.2", "hero.material", "hero.caf__", "hero.Skin"};
    for (int i = 0; i < 5; ++i) EXPECT_EQ(made.materials[i].name, expected[i]);
    EXPECT_EQ(made.materials[5].name.size(), 255u);
    EXPECT_EQ(scene.report.materials, 6u);
    EXPECT_EQ(made.uvChannel.size(), 6u);
}

// White is all of 16.16's 1, not a step below it.
TEST_F(MaterialsTest, WhiteStaysWhite) {
    const aiColor4D white(1, 1, 1, 1);
    scene.add("paper").AddProperty(&white, 1, kBase, 0, 0);
    EXPECT_EQ(only().diffuse.r, 1.0f);
}

TEST_F(MaterialsTest, NoneAreMadeOfNone) {
    const Materials made = scene.convert();
    EXPECT_TRUE(made.materials.empty());
    EXPECT_TRUE(made.textures.empty());
    EXPECT_EQ(scene.report.textureMemory, 0u);
}

TEST_F(MaterialsTest, AnEmptyOneIsGreyAndDull) {
    scene.add("plain");
    const formats::Material made = only();
    expectColours(made, {0.6f, 0.6f, 0.6f}, {0.45f, 0.45f, 0.45f}, {}, {});
    EXPECT_EQ(made.transparency, 1.0f);
    EXPECT_EQ(made.shininess, 0.0f);
    EXPECT_EQ(made.texture, "[none]");
    EXPECT_EQ(made.shader, "[none]");
}

TEST_F(MaterialsTest, PhongColoursAreTakenOver) {
    aiMaterial &material = scene.add();
    setColour(material, kDiffuse, {0.2f, 0.4f, 0.8f});
    setColour(material, "$clr.ambient", {1, 1, 1});  // what it says is nonsense in most files
    setColour(material, kSpecular, {0.5f, 1.0f, 0.25f});
    setColour(material, kEmissive, {0.1f, 0, 0.2f});
    setFloat(material, "$mat.shinpercent", 0.5f);
    setFloat(material, kShininess, 40);
    const formats::Material made = only();
    expectColours(made, {0.2f, 0.4f, 0.8f}, {0.15f, 0.3f, 0.6f}, {0.25f, 0.5f, 0.125f}, {0.1f, 0, 0.2f});
    EXPECT_EQ(made.shininess, 40.0f);
}

TEST_F(MaterialsTest, BlackStaysBlackWithoutATexture) {
    setColour(scene.add(), kDiffuse, {0, 0, 0});
    EXPECT_TRUE(is(only().diffuse, 0, 0, 0));
}

TEST_F(MaterialsTest, ColoursOutOfRangeAndNoNumbersAreClamped) {
    aiMaterial &material = scene.add();
    setColour(material, kDiffuse, {kInfinite, -kInfinite, -3});
    setColour(material, kSpecular, {kNan, 1, 1});
    setColour(material, kEmissive, {3.14f, 0.5f, kNan});
    setFloat(material, kShininess, kInfinite);
    setFloat(material, kOpacity, kNan);
    scene.add();
    setColour(scene.add(), kDiffuse, {1, kNan, 1});
    const Materials all = scene.convert();
    const formats::Material &made = all.materials[0];
    EXPECT_TRUE(is(made.diffuse, 1, 0, 0));
    EXPECT_TRUE(is(made.specular, 0, 0, 0));
    EXPECT_TRUE(is(made.emission, 0, 0, 0));
    EXPECT_EQ(made.shininess, 0.0f);
    EXPECT_EQ(made.transparency, 1.0f);
    EXPECT_TRUE(is(all.materials[2].diffuse, 0.6f, 0.6f, 0.6f));
}

TEST_F(MaterialsTest, ShininessFitsTheGlsRange) {
    const float cases[][2] = {{0, 0},     {0.25f, 32},      {1, 1},  {128, 128},
                              {400, 128}, {kInfinite, 128}, {-5, 0}, {kNan, 0}};
    for (const auto &shininess : cases) {
        aiMaterial &material = scene.add();
        setColour(material, kSpecular, {1, 1, 1});
        setFloat(material, kShininess, shininess[0]);
    }
    const Materials made = scene.convert();
    for (std::size_t i = 0; i < made.materials.size(); ++i) {
        EXPECT_EQ(made.materials[i].shininess, cases[i][1]) << cases[i][0];
        // Without an exponent a highlight would cover everything.
        EXPECT_TRUE(is(made.materials[i].specular, cases[i][1] > 0, cases[i][1] > 0, cases[i][1] > 0));
    }
}

TEST_F(MaterialsTest, PhysicalColoursAreThoseOfTheScreen) {
    aiMaterial &material = scene.add();
    setColour(material, kBase, {0.5f, 0.0f, 1.0f});
    setColour(material, kDiffuse, {0.1f, 0.1f, 0.1f});
    setColour(material, kEmissive, {0.5f, 0, 0});
    const formats::Material made = only();
    EXPECT_TRUE(is(made.diffuse, 0.735357f, 0, 1));
    EXPECT_TRUE(is(made.emission, 0.735357f, 0, 0));
}

TEST_F(MaterialsTest, RoughSurfacesAreDullSmoothOnesAndMetalsShine) {
    const float cases[][2] = {{0, 1}, {0, 0.5f}, {0, 0.1f}, {1, 0.5f}, {-3, kInfinite}};
    for (const auto &factors : cases) {
        aiMaterial &material = scene.add();
        setColour(material, kBase, {1, 0, 0});
        setFloat(material, "$mat.metallicFactor", factors[0]);
        setFloat(material, "$mat.roughnessFactor", factors[1]);
    }
    const Materials made = scene.convert();
    EXPECT_TRUE(is(made.materials[0].specular, 0, 0, 0));
    EXPECT_EQ(made.materials[0].shininess, 0.0f);
    EXPECT_TRUE(is(made.materials[1].specular, 0.125f, 0.125f, 0.125f));
    EXPECT_NEAR(made.materials[1].shininess, 30.0f, 0.01f);
    EXPECT_EQ(made.materials[2].shininess, 128.0f);
    EXPECT_TRUE(is(made.materials[3].specular, 0.5f, 0, 0));
    EXPECT_TRUE(is(made.materials[3].diffuse, 1, 0, 0));  // no mirror image: a metal keeps its colour
    EXPECT_TRUE(is(made.materials[4].specular, 0, 0, 0));
}

TEST_F(MaterialsTest, MapsOfMetalAndRoughnessHalveTheirFactors) {
    aiMaterial &material = scene.add();
    setColour(material, kBase, {1, 1, 1});
    setFloat(material, "$mat.metallicFactor", 1);
    setFloat(material, "$mat.roughnessFactor", 1);
    setTexture(material, aiTextureType_METALNESS, "mr.png");
    setTexture(material, aiTextureType_DIFFUSE_ROUGHNESS, "mr.png");
    setTexture(material, aiTextureType_UNKNOWN, "mr.png");
    const formats::Material made = only();
    EXPECT_TRUE(is(made.specular, 0.3125f, 0.3125f, 0.3125f));
    EXPECT_NEAR(made.shininess, 30.0f, 0.01f);
    EXPECT_EQ(dropped(scene.report, "metalness and roughness maps"), 1u);
    EXPECT_EQ(scene.report.dropped.size(), 1u);
}

TEST_F(MaterialsTest, GlossIsTheOppositeOfRoughness) {
    aiMaterial &material = scene.add();
    setColour(material, kBase, {1, 1, 1});
    setColour(material, kDiffuse, {1, 0, 0});
    setColour(material, kSpecular, {1, 1, 0});
    setFloat(material, "$mat.glossinessFactor", 0.5f);
    const formats::Material made = only();
    EXPECT_TRUE(is(made.diffuse, 1, 0, 0));
    EXPECT_TRUE(is(made.specular, 1, 1, 0));
    EXPECT_NEAR(made.shininess, 30.0f, 0.01f);
}

TEST_F(MaterialsTest, UnlitSurfacesShineByThemselves) {
    aiMaterial &material = scene.add();
    setColour(material, kDiffuse, {0.2f, 0.4f, 0.8f});
    setInteger(material, "$mat.shadingm", aiShadingMode_NoShading);
    setTexture(material, aiTextureType_DIFFUSE, "skin.png");
    const formats::Material made = only();
    EXPECT_TRUE(is(made.emission, 0.2f, 0.4f, 0.8f));
    EXPECT_TRUE(is(made.diffuse, 0, 0, 0));
    EXPECT_TRUE(is(made.ambient, 0, 0, 0));
    EXPECT_EQ(made.texture, "hero_skin_d.tga");
}

TEST_F(MaterialsTest, ATextureOnBlackOrNothingIsShownOnWhite) {
    setTexture(scene.add("none"), aiTextureType_DIFFUSE, "skin.png");
    aiMaterial &black = scene.add("black");
    setTexture(black, aiTextureType_DIFFUSE, "skin.png");
    setColour(black, kDiffuse, {0, 0, 0});
    aiMaterial &shining = scene.add("shining");
    setTexture(shining, aiTextureType_DIFFUSE, "skin.png");
    setColour(shining, kDiffuse, {0, 0, 0});
    setColour(shining, kEmissive, {1, 1, 1});
    const Materials made = scene.convert();
    EXPECT_TRUE(is(made.materials[0].diffuse, 1, 1, 1));
    EXPECT_TRUE(is(made.materials[1].diffuse, 1, 1, 1));
    EXPECT_TRUE(is(made.materials[1].ambient, 0.75f, 0.75f, 0.75f));
    EXPECT_TRUE(is(made.materials[2].diffuse, 0, 0, 0));  // it shows by its own light
    EXPECT_EQ(scene.report.notes,
              std::vector<std::string>{"the diffuse colour of material hero.black is black, which "
                                       "hides its texture; white is used"});
}

TEST_F(MaterialsTest, OpacityIsOneOrBlended) {
    const float cases[][2] = {{1, 1}, {0.5f, 0.5f}, {0.9999f, 1}, {0.99f, 0.99f},
                              {7, 1}, {0, 1},       {-1, 1},      {0.01f, 0.01f}};
    for (const auto &opacity : cases) setFloat(scene.add(), kOpacity, opacity[0]);
    const Materials made = scene.convert();
    for (std::size_t i = 0; i < made.materials.size(); ++i)
        EXPECT_EQ(made.materials[i].transparency, cases[i][1]) << cases[i][0];
    EXPECT_EQ(scene.report.notes.size(), 2u);
    EXPECT_TRUE(mentions(scene.report.notes, "is invisible in the model; it was made opaque"));
}

TEST_F(MaterialsTest, WhereTheModelSaysHowItBlendsItsOpacityIsTakenAtItsWord) {
    const char *const modes[] = {"OPAQUE", "BLEND", "MASK", "MASK"};
    const float opacities[] = {0.3f, 0, 0.4f, 0.6f}, expected[] = {1, 0, 0, 1};
    for (int i = 0; i < 4; ++i) {
        aiMaterial &material = scene.add();
        test::setAlphaMode(material, modes[i]);
        setFloat(material, kOpacity, opacities[i]);
    }
    aiMaterial &glass = scene.add();
    test::setAlphaMode(glass, "OPAQUE");
    setFloat(glass, "$mat.transmission.factor", 1);
    const Materials made = scene.convert();
    for (int i = 0; i < 4; ++i) EXPECT_EQ(made.materials[i].transparency, expected[i]) << i;
    EXPECT_EQ(made.materials[4].transparency, 0.25f);
    EXPECT_TRUE(scene.report.notes.empty());
}

TEST_F(MaterialsTest, TheBaseTextureAndItsCoordinatesAreChosen) {
    aiMaterial &material = scene.add();
    setTexture(material, aiTextureType_DIFFUSE, "lamp.png");
    setTexture(material, aiTextureType_BASE_COLOR, "skin.png");
    setInteger(material, _AI_MATKEY_UVWSRC_BASE, 2, aiTextureType_BASE_COLOR);
    setTexture(scene.add(), aiTextureType_AMBIENT, "skin.png");
    aiMaterial &odd = scene.add();
    setTexture(odd, aiTextureType_DIFFUSE, "lamp.png", 1);
    setTexture(odd, aiTextureType_DIFFUSE, "skin.png", 0);
    setInteger(odd, _AI_MATKEY_UVWSRC_BASE, 900, aiTextureType_DIFFUSE);
    const Materials made = scene.convert();
    for (const formats::Material &one : made.materials) EXPECT_EQ(one.texture, "hero_skin_d.tga");
    EXPECT_EQ(made.uvChannel, (std::vector<unsigned>{2, 0, 0}));
    EXPECT_EQ(dropped(scene.report, "further texture layers"), 2u);
}

TEST_F(MaterialsTest, ALayerOfAnyNumberIsReadAtOnce) {
    setTexture(scene.add(), aiTextureType_DIFFUSE, "skin.png", 4294967294u);
    setTexture(scene.add(), static_cast<aiTextureType>(4000), "lamp.png");
    setTexture(scene.add(), aiTextureType_DIFFUSE, "");
    const Materials made = scene.convert();
    EXPECT_EQ(made.materials[0].texture, "hero_skin_d.tga");
    EXPECT_EQ(made.materials[1].texture, "[none]");
    EXPECT_EQ(made.materials[2].texture, "[none]");
    EXPECT_EQ(dropped(scene.report, "maps of unknown purpose"), 1u);
}

TEST_F(MaterialsTest, APictureOfEmissionShowsOnlyWhereNothingElseDoes) {
    aiMaterial &lamp = scene.add();
    setColour(lamp, kDiffuse, {0, 0, 0});
    setColour(lamp, kEmissive, {1, 0.5f, 0.25f});
    setTexture(lamp, aiTextureType_EMISSIVE, "lamp.png");
    aiMaterial &wall = scene.add();
    setColour(wall, kDiffuse, {0.5f, 0.5f, 0.5f});
    setColour(wall, kEmissive, {1, 1, 1});
    setTexture(wall, aiTextureType_EMISSIVE, "lamp.png");
    aiMaterial &both = scene.add();
    setColour(both, kEmissive, {1, 1, 1});
    setTexture(both, aiTextureType_DIFFUSE, "skin.png");
    setTexture(both, aiTextureType_EMISSIVE, "skin.png");
    const Materials made = scene.convert();
    EXPECT_EQ(made.materials[0].texture, "hero_lamp_d.tga");
    EXPECT_TRUE(is(made.materials[0].emission, 1, 0.5f, 0.25f));
    EXPECT_TRUE(is(made.materials[0].diffuse, 0, 0, 0));
    EXPECT_EQ(made.materials[1].texture, "[none]");
    EXPECT_TRUE(is(made.materials[1].emission, 0, 0, 0));  // or the whole wall would shine
    EXPECT_TRUE(is(made.materials[1].diffuse, 0.5f, 0.5f, 0.5f));
    EXPECT_TRUE(is(made.materials[2].emission, 1, 1, 1));
    EXPECT_EQ(dropped(scene.report, "emission maps"), 1u);
}

TEST_F(MaterialsTest, EveryOtherMapIsReported) {
    aiMaterial &material = scene.add();
    setTexture(material, aiTextureType_DIFFUSE, "skin.png");
    setTexture(material, aiTextureType_AMBIENT, "skin.png");  // the same picture is no loss
    const std::pair<aiTextureType, const char *> maps[] = {
        {aiTextureType_SPECULAR, "specular maps"},
        {aiTextureType_SHININESS, "shininess maps"},
        {aiTextureType_NORMALS, "normal maps"},
        {aiTextureType_HEIGHT, "bump maps"},
        {aiTextureType_DISPLACEMENT, "displacement maps"},
        {aiTextureType_LIGHTMAP, "light and occlusion maps"},
        {aiTextureType_REFLECTION, "reflection maps"},
        {aiTextureType_CLEARCOAT, "coat and sheen maps"},
        {aiTextureType_TRANSMISSION, "transmission maps"},
        {aiTextureType_UNKNOWN, "maps of unknown purpose"}};
    for (const auto &map : maps) setTexture(material, map.first, std::string(map.second) + ".png");
    const Materials made = scene.convert();
    for (const auto &map : maps) EXPECT_EQ(dropped(scene.report, map.second), 1u) << map.second;
    EXPECT_EQ(scene.report.dropped.size(), std::size(maps));
    EXPECT_EQ(made.textures.size(), 1u);
    EXPECT_TRUE(scene.report.warnings.empty());  // nobody looks for their files
}

TEST_F(MaterialsTest, WhatTheFileCannotSayIsReported) {
    aiMaterial &material = scene.add();
    setTexture(material, aiTextureType_DIFFUSE, "skin.png");
    setInteger(material, _AI_MATKEY_MAPPINGMODE_V_BASE, aiTextureMapMode_Mirror, aiTextureType_DIFFUSE);
    setInteger(material, "$mat.blend", aiBlendMode_Additive);
    aiMaterial &repeating = scene.add();
    setTexture(repeating, aiTextureType_DIFFUSE, "skin.png");
    setInteger(repeating, _AI_MATKEY_MAPPINGMODE_U_BASE, aiTextureMapMode_Wrap, aiTextureType_DIFFUSE);
    scene.convert();
    EXPECT_EQ(dropped(scene.report, "clamped or mirrored textures"), 1u);
    EXPECT_EQ(dropped(scene.report, "additive blending"), 1u);
}

// Normal maps and the report as a whole

TEST_F(MaterialsTest, NormalMapsAreWrittenBesideTheirTexturesIfAsked) {
    scene.options.normalMaps = true;
    folder.write("bumps.png", test::encode(test::sample(4, 4), "png"));
    for (const char *bump : {"normals.png", "bumps.png"}) {
        aiMaterial &material = scene.add();
        setTexture(material, aiTextureType_DIFFUSE, "skin.png");
        setTexture(material, aiTextureType_HEIGHT, bump);
    }
    setTexture(scene.add(), aiTextureType_NORMALS, "normals.png");
    aiMaterial &lost = scene.add();
    setTexture(lost, aiTextureType_DIFFUSE, "lamp.png");
    setTexture(lost, aiTextureType_NORMALS, "lost.png");
    const Materials made = scene.convert();
    ASSERT_EQ(made.textures.size(), 4u);
    EXPECT_EQ(made.textures[0].name, "hero_skin_d.tga");
    EXPECT_EQ(made.textures[1].name, "hero_skin_n.tga");
    EXPECT_EQ(made.textures[2].name, "hero_skin.2_d.tga");  // the same picture, but without normals
    EXPECT_EQ(made.textures[3].name, "hero_lamp_d.tga");
    EXPECT_EQ(
        test::difference(test::engineReads(made.textures[1].bytes), test::plain(4, 4, {128, 128, 255, 255})),
        0);
    EXPECT_EQ(made.materials[0].texture, "hero_skin_d.tga");
    EXPECT_EQ(made.materials[1].texture, "hero_skin.2_d.tga");
    EXPECT_EQ(scene.report.textureMemory, 4u * 4 * 4 * 3 + 8u * 8 * 4);
    EXPECT_TRUE(mentions(scene.report.warnings, "normal maps are written"));
    EXPECT_TRUE(mentions(scene.report.warnings, "texture lost.png is missing; it is left out"));
    EXPECT_EQ(dropped(scene.report, "normal maps"), 1u);
    EXPECT_EQ(dropped(scene.report, "bump maps"), 1u);
}

TEST_F(MaterialsTest, ProgressGoesUpToOne) {
    for (int i = 0; i < 4; ++i) setTexture(scene.add(), aiTextureType_DIFFUSE, "skin.png");
    std::vector<double> done;
    scene.progress = [&](const char *what, double part) {
        EXPECT_STREQ(what, "textures");
        done.push_back(part);
    };
    scene.convert();
    EXPECT_EQ(done, (std::vector<double>{0.25, 0.5, 0.75, 1.0}));
}

TEST_F(MaterialsTest, TextureMemoryBeyondTheEnginesIsWarnedOf) {
    for (unsigned i = 0; i < 9; ++i) {
        const formats::Rgba colour = {static_cast<std::uint8_t>(i * 20), 0, 0, 255};
        scene.embed(test::plain(512, 512, colour));
    }
    for (int count = 1; count <= 9; ++count) {
        setTexture(scene.add(), aiTextureType_DIFFUSE, "*" + std::to_string(count - 1));
        scene.convert();
        EXPECT_EQ(scene.report.textureMemory, std::uint64_t{1048576} * count);
        EXPECT_EQ(mentions(scene.report.notes, "MiB; mipmapped, the engine counts"), count > 4 && count <= 8);
        EXPECT_EQ(mentions(scene.report.warnings, "take 9.0 MiB of the engine's 8.0 MiB"), count == 9);
    }
}

TEST_F(MaterialsTest, GeneratedPicturesAreDroppedAndNotTakenForFiles) {
    setTexture(scene.add(), aiTextureType_DIFFUSE, "Procedural,num=0,type=Clouds");
    const Materials made = scene.convert();
    EXPECT_TRUE(made.textures.empty());
    EXPECT_EQ(made.materials[0].texture, formats::Material().texture);
    EXPECT_EQ(dropped(scene.report, "generated pictures"), 1u);
    EXPECT_EQ(scene.report.missing, 0u);
}

}  // namespace
}  // namespace keltra::convert
