// SPDX-License-Identifier: Zlib
// keltra-info --check --strict: the verdict on files that the engine takes, of every kind.

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <filesystem>

#include "tests/formats/tga_bytes.h"
#include "tests/scene/scene_parts.h"
#include "tests/tools/info/info_program.h"
#include "tools/formats/kta_writer.h"
#include "tools/formats/kte_writer.h"

namespace keltra::test {
namespace {

class StrictTest : public InfoProgramTest {
   protected:
    void writeScene(const char *name, const std::string &texture, const std::string &material = "stone") {
        formats::Scene scene = sceneOf(plainNode("root", {stripNode("wall", 4, material)}));
        scene.materials.push_back({"stone", texture, "[none]"});
        folder.write(name, formats::writeKte(scene, formats::KteVersion::k16a));
    }
    /// Good without --strict, and with it bad for what `lines` say.
    void expectFaulty(const std::string &arguments, const std::string &lines) {
        EXPECT_EQ(run("--check " + arguments).status, 0) << arguments;
        const Result result = run("--check --strict " + arguments);
        EXPECT_EQ(result.status, 1) << arguments;
        EXPECT_EQ(result.output, lines);
        EXPECT_EQ(result.errors, "");
    }
};

TEST_F(StrictTest, TellsWhatIsMissingOrUnknown) {
    folder.write("good.tga", uncompressedTga(2, 2, 24));
    folder.write("bad.tga", uncompressedTga(2, 2, 16));
    folder.write("desk.xml", "<root>\n<box>\n<colour r='1'/>\n<texture value='wood.tga'/>\n</box></root>");
    EXPECT_EQ(run("--check desk.xml").output, "desk.xml: good\n");
    EXPECT_EQ(run("--check desk.xml").status, 0);
    const Result result = run("--check --strict good.tga bad.tga missing.tga desk.xml");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output,
              "good.tga: good\n"
              "bad.tga, byte 16: bits a pixel: neither 24 nor 32 (found 16)\n"
              "missing.tga: No such file or directory\n"
              "desk.xml, line 3: `colour`: unknown element of `box`; did you mean `color`?\n"
              "./wood.tga (needed by desk.xml, line 4): the file does not exist\n");
    EXPECT_EQ(run("--check --strict good.tga").status, 0);
    EXPECT_EQ(run("--strict good.tga").status, 2) << "it is a way to check";
    const nlohmann::json document = nlohmann::json::parse(run("--json --check --strict desk.xml").output);
    EXPECT_EQ(document["files"][0]["good"], true);
    EXPECT_EQ(document["files"][0]["faults"][0]["line"], 3);
    EXPECT_EQ(document["files"][0]["faults"][0]["expected"], "color");
}

TEST_F(StrictTest, FilesWithoutFaultsAreGood) {
    folder.write("stone.tga", uncompressedTga(2, 2, 24));
    writeScene("scene.kte", "stone.tga");
    formats::Animation animation;
    animation.bones = {"hip"};
    animation.frames.push_back({formats::Keyframe()});
    folder.write("walk.kta", formats::writeKta(animation));
    folder.write("user.cfg", "KELTRA_windowX = 320\n");
    folder.write("font.txt", "KELTRA_kerning_A = 3\n");
    folder.write("page.xml", "<root><box><texture value='stone.tga'/></box></root>");
    folder.write("rain.xml", "<emitter><radius value='1'/><texture value='stone.tga'/></emitter>");
    const Result result =
        run("--check --strict stone.tga scene.kte walk.kta user.cfg font.txt page.xml rain.xml");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output,
              "stone.tga: good\nscene.kte: good\nwalk.kta: good\nuser.cfg: good\nfont.txt: good\n"
              "page.xml: good\nrain.xml: good\n");
}

TEST_F(StrictTest, ScenesLackTexturesAndMaterials) {
    writeScene("scene.kte", "gone.tga", "stoned");
    expectFaulty("scene.kte",
                 "./gone.tga (needed by scene.kte): the file does not exist\n"
                 "scene.kte: `stoned`: unknown material of mesh `wall`; did you mean `stone`?\n");
}

TEST_F(StrictTest, WhatIsNamedIsLookedForBesideTheFile) {
    std::filesystem::create_directories(folder.path("art/stone.tga"));
    folder.write("stone.tga", uncompressedTga(2, 2, 24));
    writeScene("art/scene.kte", "stone.tga");
    expectFaulty("art/scene.kte", "art/stone.tga (needed by art/scene.kte): not a regular file\n");
    std::filesystem::remove(folder.path("art/stone.tga"));
    std::filesystem::rename(folder.path("stone.tga"), folder.path("art/stone.tga"));
    EXPECT_EQ(run("--check --strict art/scene.kte").status, 0);
}

TEST_F(StrictTest, TextsHaveKeysThatAreNotKnown) {
    folder.write("user.cfg", "KELTRA_windowX = 320\nKELTRA_windoY = 240\n");
    expectFaulty("user.cfg",
                 "user.cfg, line 2: `KELTRA_windoY`: unknown key; did you mean `KELTRA_windowY`?\n");
    folder.write("font.txt", "KELTRA_kerning_A = 3\nKELTRA_kerning_B = 200\n");
    expectFaulty("font.txt", "font.txt, line 2: `KELTRA_kerning_B`: found `200`, expected -128 to 127\n");
}

TEST_F(StrictTest, EmittersHaveSettingsThatAreNotKnownAndLackTextures) {
    folder.write("rain.xml", "<emitter>\n<radios value='1'/>\n<texture value='drop.tga'/>\n</emitter>");
    expectFaulty("rain.xml",
                 "rain.xml, line 2: `radios`: unknown element of `emitter`; did you mean `radius`?\n"
                 "./drop.tga (needed by rain.xml, line 3): the file does not exist\n");
}

TEST_F(StrictTest, ATextureOfAnotherKindHasNoPixels) {
    folder.write("grey.tga", joined(tgaHeader(3, 2, 2, 24), Bytes(12)));
    const Result result = run("--check --strict grey.tga");
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.output, ::testing::HasSubstr("no pixels are loaded"));
}

TEST_F(StrictTest, AnEmptyFileHasAFault) {
    folder.write("empty.cfg", "");
    EXPECT_EQ(run("--check empty.cfg").output, "empty.cfg: good\n");
    const Result result = run("--check --strict empty.cfg");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output, "empty.cfg: the file is empty\n");
}

TEST_F(StrictTest, FilesOfNoKindAreBad) {
    folder.write("notes.txt", "nonsense");
    const Result result = run("--check --strict notes.txt");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output, "notes.txt, byte 0: kind: not a file of the engine\n");
}

TEST_F(StrictTest, WhatIsOnlyUnusualIsGood) {
    formats::Scene scene = sceneOf(plainNode("root", {plainNode("")}));
    Bytes bytes = formats::writeKte(scene, formats::KteVersion::k16a);
    bytes.resize(bytes.size() + 3);
    folder.write("scene.kte", bytes);
    EXPECT_THAT(run("scene.kte").output,
                ::testing::HasSubstr("\n  note: 3 bytes after the tree, not read\n"));
    EXPECT_EQ(run("--check --strict scene.kte").status, 0);
}

}  // namespace
}  // namespace keltra::test
