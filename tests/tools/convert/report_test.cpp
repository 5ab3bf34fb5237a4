// SPDX-License-Identifier: Zlib
#include <gmock/gmock.h>

#include <cmath>

#include "tools/convert/plain_text.h"
#include "tools/convert/report_json.h"
#include "tools/convert/report_text.h"

namespace keltra::convert {
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;

Outcome fullOutcome() {
    Outcome outcome;
    outcome.converted = true;
    outcome.files = {"hero_skin_d.tga", "hero_walk.kta", "hero.kte"};
    Report &report = outcome.report;
    report.sceneFile = "hero.kte";
    report.nodes = 24;
    report.meshes = 2;
    report.skins = 1;
    report.bones = 20;
    report.lights = 3;
    report.materials = 4;
    report.vertices = 1512;
    report.triangles = 1002804;
    report.scale = 0.01;
    report.size = 3.25;
    report.clips = {{"Armature|walk", "hero_walk.kta", 32, 20, 1.28, true},
                    {"stand", "hero_stand.kta", 1, 1, 0.04, false}};
    report.textures = {{"hero_skin_d.tga", "textures/skin.png", 256, 128, 24, false},
                       {"hero_x_d.tga", "x.png", 64, 64, 32, true}};
    report.textureMemory = 147456;
    report.drop("cameras", 1, "cameras are made in code");
    report.drop("morph targets", 1200, "the engine has none");
    report.change("pictures", 2, "their sides become powers of two");
    report.miss("texture x.png is missing; a checkerboard replaces it");
    report.note("two bones were called \"hip\"");
    return outcome;
}

TEST(ReportText, IsShortAndAligned) {
    EXPECT_EQ(textOf("hero.fbx", "out", fullOutcome()),
              "hero.fbx -> out/\n"
              "  scene     hero.kte\n"
              "            24 nodes, 2 meshes, 1 skin, 20 bones, 3 lights, 4 materials\n"
              "            1,512 vertices, 1,002,804 triangles; 3.25 units across, lengths times 0.01\n"
              "  clips     hero_walk.kta   32 frames  20 bones  1.28 s  with positions\n"
              "            hero_stand.kta    1 frame    1 bone  0.04 s\n"
              "  textures  hero_skin_d.tga  256 x 128  24 bits  from textures/skin.png\n"
              "            hero_x_d.tga       64 x 64  32 bits  checkerboard for x.png\n"
              "  memory    0.14 of 8 MiB of textures\n"
              "  dropped   cameras (1): cameras are made in code\n"
              "            morph targets (1,200): the engine has none\n"
              "  changed   pictures (2): their sides become powers of two\n"
              "  warnings  texture x.png is missing; a checkerboard replaces it\n"
              "  notes     two bones were called \"hip\"\n"
              "  in all    1,201 dropped, 3 changed, 1 missing, 1 warning\n");
}

TEST(ReportText, LeavesOutWhatIsNotThere) {
    Outcome outcome;
    outcome.converted = true;
    outcome.report.sceneFile = "a.kte";
    outcome.report.nodes = 1;
    EXPECT_EQ(textOf("a.obj", "", outcome),
              "a.obj: dry run, nothing is written\n"
              "  scene     a.kte\n"
              "            1 node\n"
              "            0 vertices, 0 triangles; 0 units across\n"
              "  in all    nothing was dropped, changed or missing\n");
}

TEST(ReportText, DoesNotDoubleTheSlashOfAFolder) {
    EXPECT_EQ(textOf("a", "b/", fullOutcome()).substr(0, 9), "a -> b/\n ");
}

TEST(ReportText, NamesCannotBreakLines) {
    Outcome outcome = fullOutcome();
    outcome.report.warn("a\nb");
    outcome.report.drop("c\r", 1, "d\x1b[2J");
    outcome.report.textures[0].source = "\xff";
    const std::string text = textOf("e\n", "f\n", outcome);
    EXPECT_THAT(text, HasSubstr("a\\nb"));
    EXPECT_THAT(text, HasSubstr("c\\r (1): d\\x1b[2J"));
    EXPECT_THAT(text, HasSubstr("from \\xff\n"));
    EXPECT_THAT(text, HasSubstr("e\\n -> f\\n/\n"));
    EXPECT_THAT(text, Not(HasSubstr("\x1b")));
}

TEST(ReportText, OfAStrictFailureSaysThatNothingIsWritten) {
    Outcome outcome = fullOutcome();
    outcome.converted = false;
    outcome.strict = true;
    EXPECT_EQ(textOf("hero.fbx", "out", outcome).substr(0, 30), "hero.fbx: nothing is written\n ");
}

TEST(Printable, KeepsTextAndEscapesTheRest) {
    EXPECT_EQ(printable("a b\\c \"d\" é € 😀"), "a b\\c \"d\" é € 😀");
    EXPECT_EQ(printable(std::string("\0\x01\x7f", 3)), "\\x00\\x01\\x7f");
    EXPECT_EQ(printable("\xc2\x85"), "\\xc2\\x85");           // a control character that begins a line
    EXPECT_EQ(printable("\xc0\x80"), "\\xc0\\x80");           // overlong
    EXPECT_EQ(printable("\xe0\x80\xaf"), "\\xe0\\x80\\xaf");  // overlong
    EXPECT_EQ(printable("\xed\xa0\x80"), "\\xed\\xa0\\x80");  // surrogate
    EXPECT_EQ(printable("\xf4\x90\x80\x80"), "\\xf4\\x90\\x80\\x80");
    EXPECT_EQ(printable("\xe2\x82"), "\\xe2\\x82");  // cut
    EXPECT_EQ(printable("\xe2\x82z"), "\\xe2\\x82z");
    EXPECT_EQ(printable(""), "");
}

TEST(ReportJson, HoldsEverything) {
    const std::string text = documentOf("hero.fbx", "out", fullOutcome());
    EXPECT_THAT(text, EndsWith("}\n"));
    const Json json = Json::parse(text);
    EXPECT_EQ(json["model"], "hero.fbx");
    EXPECT_EQ(json["converted"], true);
    EXPECT_EQ(json["folder"], "out");
    EXPECT_EQ(json["files"].size(), 3u);
    EXPECT_EQ(json["files"][2], "hero.kte");
    EXPECT_EQ(json["scene"].dump(),
              R"({"file":"hero.kte","nodes":24,"meshes":2,"skins":1,"bones":20,"lights":3,"materials":4,)"
              R"("vertices":1512,"triangles":1002804,"scale":0.01,"size":3.25})");
    EXPECT_EQ(json["clips"][0].dump(),
              R"({"name":"Armature|walk","file":"hero_walk.kta","frames":32,"bones":20,"seconds":1.28,)"
              R"("moves":true})");
    EXPECT_EQ(json["textures"][1].dump(),
              R"({"file":"hero_x_d.tga","source":"x.png","width":64,"height":64,"bits":32,"missing":true})");
    EXPECT_EQ(json["textureMemory"], 147456);
    EXPECT_EQ(json["textureBudget"], 8388608);
    EXPECT_EQ(json["dropped"][1].dump(),
              R"({"what":"morph targets","count":1200,"why":"the engine has none"})");
    EXPECT_EQ(json["changed"][0].dump(),
              R"({"what":"pictures","count":2,"why":"their sides become powers of two"})");
    EXPECT_EQ(json["warnings"].size(), 1u);
    EXPECT_EQ(json["notes"].size(), 1u);
    EXPECT_EQ(json["total"].dump(), R"({"dropped":1201,"changed":3,"missing":1,"warnings":1})");
}

TEST(ReportJson, ListsAreThereWhenEmpty) {
    Outcome outcome;
    outcome.converted = true;
    const Json json = Json::parse(documentOf("a", "", outcome));
    for (const char *list :
         {"files", "clips", "textures", "dropped", "changed", "warnings", "notes", "inputs"})
        EXPECT_TRUE(json[list].is_array()) << list;
    EXPECT_FALSE(json.contains("folder"));
}

TEST(ReportJson, OfARefusalIsItsReason) {
    Outcome outcome;
    outcome.reason = "no";
    EXPECT_EQ(Json::parse(documentOf("a.fbx", "out", outcome)).dump(),
              R"({"model":"a.fbx","converted":false,"reason":"no"})");
}

TEST(ReportJson, OfAStrictFailureHoldsTheReport) {
    Outcome outcome = fullOutcome();
    outcome.converted = false;
    outcome.strict = true;
    outcome.reason = "--strict: 1 missing";
    const Outcome back = outcomeOf(outcomeJson(outcome));
    EXPECT_FALSE(back.converted);
    EXPECT_TRUE(back.strict);
    EXPECT_EQ(back.reason, outcome.reason);
    EXPECT_EQ(back.report.missing, 1u);
}

TEST(ReportJson, IsUtf8WhateverTheNamesAre) {
    Outcome outcome = fullOutcome();
    outcome.report.textures[0].source = "a\xff/b\n";
    const Json json = Json::parse(documentOf("\xc0\x80.obj", "o\xed\xa0\x80", outcome));
    EXPECT_EQ(json["textures"][0]["source"], "a\xef\xbf\xbd/b\n");
}

TEST(ReportJson, AnOutcomeComesBackWhole) {
    Outcome outcome = fullOutcome();
    outcome.report.textures[0].source = "a\xff";
    const Json json = outcomeJson(outcome);
    const Outcome back = outcomeOf(Json::from_cbor(Json::to_cbor(json)));
    EXPECT_TRUE(back.converted);
    EXPECT_EQ(outcomeJson(back), json);
    EXPECT_EQ(back.report.textures[0].source, "a\xff");
    EXPECT_EQ(back.report.triangles, 1002804u);
    EXPECT_EQ(back.report.clips[1].name, "stand");
}

TEST(ReportJson, WhatIsNoOutcomeThrows) {
    for (const char *text : {"null", "[]", "{}", R"({"converted":1})", R"({"converted":true})",
                             R"({"converted":false})", R"({"converted":true,"files":[]})"})
        EXPECT_THROW(outcomeOf(Json::parse(text)), Json::exception) << text;
}

}  // namespace
}  // namespace keltra::convert
