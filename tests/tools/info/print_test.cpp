// SPDX-License-Identifier: Zlib
#include "tools/info/print.h"

#include <gmock/gmock.h>

#include "tests/formats/tga_bytes.h"
#include "tests/scene/scene_parts.h"
#include "tools/formats/kte_writer.h"

namespace keltra::test {
namespace {

using info::FileKind;
using info::FileReport;
using info::printable;
using ::testing::HasSubstr;

TEST(Printable, KeepsTextAndEscapesTheRest) {
    EXPECT_EQ(printable("stone wall"), "stone wall");
    EXPECT_EQ(printable("caf\xC3\xA9 \xE6\xB0\xB4 \xF0\x9F\x98\x80"),
              "caf\xC3\xA9 \xE6\xB0\xB4 \xF0\x9F\x98\x80");
    EXPECT_EQ(printable("a\nb\x1b[2J\x7f"), "a\\x0ab\\x1b[2J\\x7f");
    EXPECT_EQ(printable("\xC2\x9B"), "\\xc2\\x9b") << "a control character of eight bits";
    EXPECT_EQ(printable("\xE2\x80\xAE\xE2\x80\xA8"), "\\xe2\\x80\\xae\\xe2\\x80\\xa8")
        << "turns the line, or breaks it";
    EXPECT_EQ(printable("\xFF\xC3(\xC0\xAF"), "\\xff\\xc3(\\xc0\\xaf");
    EXPECT_EQ(printable("\xED\xA0\x80"), "\\xed\\xa0\\x80") << "half a surrogate pair";
    EXPECT_EQ(printable("\xF4\x90\x80\x80\xE2\x82"), "\\xf4\\x90\\x80\\x80\\xe2\\x82");
    EXPECT_EQ(printable(std::string("a\0b", 3)), "a\\x00b");
}

FileReport reportOf(FileKind kind, const Bytes &bytes) {
    FileReport report;
    report.file = "folder/it";
    report.inspection = info::inspect(kind, bytes.data(), bytes.size());
    return report;
}

TEST(VerdictLine, IsOneLine) {
    FileReport report = reportOf(FileKind::kTexture, uncompressedTga(2, 2, 24));
    EXPECT_EQ(info::verdictLine(report), "folder/it: good\n");
    report = reportOf(FileKind::kTexture, tgaHeader(kUncompressed, 2, 2, 8));
    EXPECT_EQ(info::verdictLine(report), "folder/it: 0x10: bits a pixel: neither 24 nor 32\n");
    report = reportOf(FileKind::kInterface, {'<', 'r', '/', '>'});
    EXPECT_EQ(info::verdictLine(report),
              "folder/it: 0x0 (line 1, column 1): root: the document has no element of this name\n");
    report.error = "is a folder";
    report.file = "a\nb";
    EXPECT_EQ(info::verdictLine(report), "a\\x0ab: is a folder\n");
}

TEST(Table, IndentsTheTreeAndAlignsItsColumns) {
    const formats::Scene scene = sceneOf(plainNode("root", {boneNode("hip", {0, 1, 0}), lightNode("lamp")}));
    const std::string text =
        info::table(reportOf(FileKind::kScene, formats::writeKte(scene, formats::KteVersion::k16a)));
    EXPECT_THAT(text, HasSubstr("folder/it: kte\n  version: 1.6a\n  totals: materials 0, nodes 3,"));
    EXPECT_THAT(text, HasSubstr("  materials: none\n"));
    EXPECT_THAT(text, HasSubstr("\n    root    node   0 0 0"));
    EXPECT_THAT(text, HasSubstr("\n      hip   mesh   0 1 0"));
    EXPECT_THAT(text, HasSubstr("\n      lamp  light  "));
}

TEST(Table, CutsLongTextsBetweenCharacters) {
    std::string name;
    for (int i = 0; i < 100; ++i) name += "\xC3\xA9";
    const std::string text = info::table(
        reportOf(FileKind::kScene, formats::writeKte(sceneOf(plainNode(name)), formats::KteVersion::k16a)));
    std::string kept;
    for (int i = 0; i < 45; ++i) kept += "\xC3\xA9";
    EXPECT_THAT(text, HasSubstr("    " + kept + "...  node"));
}

TEST(Json, IsValidWhateverTheNamesAre) {
    const formats::Scene scene = sceneOf(plainNode("a\xFF\"\n\xC3\xA9"));
    FileReport report = reportOf(FileKind::kScene, formats::writeKte(scene, formats::KteVersion::k16a));
    report.file = "b\xFE";
    const std::string text = info::jsonText({report}, false);
    const nlohmann::json document = nlohmann::json::parse(text);
    EXPECT_EQ(document["files"][0]["contents"]["nodes"][0]["name"], "a\xEF\xBF\xBD\"\n\xC3\xA9");
    EXPECT_EQ(document["files"][0]["file"], "b\xEF\xBF\xBD");
    EXPECT_TRUE(
        std::all_of(text.begin(), text.end(), [](char c) { return c == '\n' || (c >= ' ' && c < 127); }));
}

TEST(Json, HoldsVerdictsOnlyWhenAsked) {
    FileReport bad = reportOf(FileKind::kInterface, {'<', 'r', '/', '>'}), none;
    none.error = "is a folder";
    const nlohmann::json document = nlohmann::json::parse(info::jsonText({bad, none}, true));
    EXPECT_EQ(document["files"][0]["good"], false);
    EXPECT_EQ(document["files"][0]["kind"], "gui");
    EXPECT_EQ(document["files"][0]["fault"]["field"], "root");
    EXPECT_EQ(document["files"][0]["fault"]["line"], 1);
    EXPECT_FALSE(document["files"][0].contains("contents"));
    EXPECT_EQ(document["files"][1]["error"], "is a folder");
    EXPECT_EQ(nlohmann::json::parse(info::jsonText({}, false))["files"].size(), 0u);
}

}  // namespace
}  // namespace keltra::test
