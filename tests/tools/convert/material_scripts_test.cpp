// SPDX-License-Identifier: Zlib
#include "tools/convert/material_scripts.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/support/temp_file.h"
#include "tests/tools/convert/support/material_scene.h"
#include "tests/tools/convert/support/pictures.h"

namespace keltra::convert {
namespace {

using formats::Image;
using test::dropped;
using test::encode;
using test::mentions;

std::map<std::string, ScriptedMaterial> parsed(const std::string &text) {
    std::map<std::string, ScriptedMaterial> materials;
    readMaterialScript(text, "a.shader", materials);
    return materials;
}

TEST(MaterialScriptsTest, TheFirstLayerWithAPictureCounts) {
    const auto materials = parsed(
        "// map nothing\n"
        "Models/Box.tga\n{\n  cull disable // both\n  qer_editorimage no.tga\n"
        "  {\n map $lightmap\n }\n  {\n MAP textures\\a.tga\n blendFunc GL_SRC_ALPHA "
        "GL_ONE_MINUS_SRC_ALPHA\n }\n"
        "  { map b.tga }\n}\n"
        "flame { { animMap 10 f1.tga f2.tga\nblendfunc add\n} }\n"
        "glow\n{\n{\nclampmap g.tga\nblendFunc GL_ONE GL_ONE\n}\n}\n"
        "chrome\n{\n{\nmap c.tga\ntcGen environment\n}\n}\n"
        "leaf\n{\n{\nmap l.tga\nalphaFunc GE128\n}\n}\n"
        "empty\n{\n}\n");
    ASSERT_EQ(materials.size(), 5u);
    const ScriptedMaterial &box = materials.at("models/box");
    EXPECT_EQ(box.picture, "textures\\a.tga");
    EXPECT_TRUE(box.seeThrough);
    EXPECT_FALSE(box.additive || box.reflection);
    EXPECT_EQ(materials.at("flame").picture, "f1.tga");
    EXPECT_TRUE(materials.at("flame").additive);
    EXPECT_TRUE(materials.at("glow").additive);
    EXPECT_TRUE(materials.at("chrome").reflection);
    EXPECT_TRUE(materials.at("leaf").seeThrough);
}

TEST(MaterialScriptsTest, DamagedScriptsEndWhereTheyEnd) {
    EXPECT_TRUE(parsed("").empty());
    EXPECT_TRUE(parsed("}}}} { { {\nmap").empty());
    EXPECT_TRUE(parsed("a { { map }").empty());
    EXPECT_TRUE(parsed("a\n{\n{\nmap $x\n").empty());
    EXPECT_EQ(parsed("} a\n{\n{\nmap x.tga\n}\n").at("a").picture, "x.tga");
    EXPECT_TRUE(parsed(std::string(3, '\0') + "{{{{\n\"\"").empty());
}

class MaterialScriptsSceneTest : public testing::Test {
   protected:
    MaterialScriptsSceneTest() {
        std::filesystem::create_directories(folder.path("game/models"));
        std::filesystem::create_directories(folder.path("game/scripts"));
        scene.options.model = folder.path("game/models/gun.md3");
        scene.options.name = "gun";
        scene.options.folders = {folder.path("game")};
        Image half = test::plain(4, 4, {200, 0, 0, 128});
        half.pixels[0].a = 255;
        std::filesystem::create_directories(folder.path("game/textures"));
        folder.write("game/textures/red.png", encode(half, "png"));
        folder.write("game/scripts/guns.shader",
                     std::string("textures/metal\n{\n{\nmap textures/red.tga\nblendfunc blend\n}\n}\n"
                                 "bolt\n{\n{\nmap textures/red.tga\nblendfunc add\n}\n}\n"
                                 "lost\n{\n{\nmap textures/none.tga\n}\n}\n"
                                 "a/same\n{\n{\nmap textures/red.tga\n}\n}\n"
                                 "b/same\n{\n{\nmap textures/red.tga\n}\n}\n"));
    }
    TextureReport made(const std::string &name) {
        test::setTexture(scene.add(), aiTextureType_DIFFUSE, name);
        materials = scene.convert();
        return scene.report.textures.empty() ? TextureReport() : scene.report.textures.at(0);
    }

    test::TempFolder folder;
    test::MaterialScene scene;
    Materials materials;
};

TEST_F(MaterialScriptsSceneTest, APictureIsFoundThroughTheScript) {
    const TextureReport line = made("metal.tga");
    EXPECT_FALSE(line.missing);
    EXPECT_EQ(line.bits, 32u) << "the script says that its alpha counts";
    EXPECT_LT(materials.materials[0].transparency, 1.0f);
    EXPECT_TRUE(mentions(scene.report.notes, "guns.shader"));
    EXPECT_EQ(scene.report.missing, 0u);
    EXPECT_EQ(scene.report.inputs.size(), 2u) << "the picture and the script";
}

TEST_F(MaterialScriptsSceneTest, WhatTheEngineCannotShowIsCounted) {
    EXPECT_EQ(made("bolt").bits, 24u);
    EXPECT_EQ(dropped(scene.report, "additive blending"), 1u);
}

TEST_F(MaterialScriptsSceneTest, WhatIsNotFoundIsMissingAsBefore) {
    for (const char *name : {"lost.tga", "same.tga", "other.tga"}) {
        scene.report = {};
        test::MaterialScene fresh;
        fresh.options = scene.options;
        test::setTexture(fresh.add(), aiTextureType_DIFFUSE, name);
        fresh.convert();
        ASSERT_EQ(fresh.report.textures.size(), 1u) << name;
        EXPECT_TRUE(fresh.report.textures[0].missing) << name;
        EXPECT_EQ(fresh.report.missing, 1u) << name;
    }
}

}  // namespace
}  // namespace keltra::convert
