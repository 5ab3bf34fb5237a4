// SPDX-License-Identifier: Zlib
// What is printed for people: the table of each kind of file, and of values that are hard to print.

#include <gmock/gmock.h>

#include <string>

#include "tests/formats/tga_bytes.h"
#include "tools/formats/kta_writer.h"
#include "tools/info/print.h"

namespace keltra::test {
namespace {

using info::Fields;
using info::FileKind;
using info::FileReport;
using ::testing::EndsWith;
using ::testing::HasSubstr;

FileReport inspectFile(FileKind kind, const void *bytes, std::size_t size) {
    FileReport report;
    report.file = "it";
    report.inspection = info::inspect(kind, bytes, size);
    return report;
}

std::string tableOf(FileKind kind, const std::string &text) {
    return info::table(inspectFile(kind, text.data(), text.size()));
}

/// The table of one field with that value.
std::string tableOf(const Fields &value) {
    FileReport report;
    report.file = "it";
    report.inspection.kind = FileKind::kScene;
    report.inspection.good = true;
    report.inspection.fields["someValue"] = value;
    const std::string text = info::table(report), beginning = "it: kte\n  some value";
    EXPECT_EQ(text.substr(0, beginning.size()), beginning);
    return text.substr(std::min(text.size(), beginning.size()));
}

TEST(InfoTable, OfSettingsListsKeysAndValues) {
    EXPECT_EQ(
        tableOf(FileKind::kSettings, "KELTRA_windowX = 320\nKELTRA_title = \"demo\"\nKELTRA_landscape = 1\n"),
        "it: settings\n"
        "  bytes: 64\n"
        "  settings\n"
        "    key               value\n"
        "    KELTRA_windowX    320\n"
        "    KELTRA_landscape  yes\n"
        "    KELTRA_title      demo\n");
}

TEST(InfoTable, OfKerningListsCharacters) {
    EXPECT_EQ(tableOf(FileKind::kKerning, "KELTRA_kerning_A = 3\nKELTRA_kerning_b = -2\n"),
              "it: kerning\n"
              "  bytes: 43\n"
              "  characters\n"
              "    character  kerning\n"
              "    A          3\n"
              "    b          -2\n");
}

TEST(InfoTable, OfAnInterfaceIndentsElements) {
    EXPECT_EQ(tableOf(FileKind::kInterface,
                      "<root><box><name value='a'/></box><box><position x='1' y='2'/></box></root>"),
              "it: gui\n"
              "  totals: objects 2, properties 2, bytes 75\n"
              "  elements\n"
              "    element     kind      attributes\n"
              "    box         object\n"
              "      name      property  value=\"a\"\n"
              "    box         object\n"
              "      position  property  x=\"1\" y=\"2\"\n");
}

TEST(InfoTable, OfAnEmitterListsSettingsAndMissingComponents) {
    EXPECT_EQ(tableOf(FileKind::kEmitter,
                      "<emitter><radius value='0.25'/><gravity x='1' z='-3'/><maxEnergy/></emitter>"),
              "it: emitter\n"
              "  bytes: 76\n"
              "  settings\n"
              "    setting    value\n"
              "    radius     0.25\n"
              "    gravity    1 - -3\n"
              "    maxEnergy  -\n"
              "  warning: it, line 1: `gravity`: attribute `y` is missing\n"
              "  warning: it, line 1: `maxEnergy`: attribute `value` is missing\n");
}

TEST(InfoTable, OfATextureIsOneFieldPerLine) {
    const Bytes bytes = uncompressedTga(2, 2, 32);
    EXPECT_EQ(info::table(inspectFile(FileKind::kTexture, bytes.data(), bytes.size())),
              "it: tga\n"
              "  encoding: uncompressed\n"
              "  width: 2\n"
              "  height: 2\n"
              "  bits per pixel: 32\n"
              "  first row: bottom\n"
              "  bytes: 34\n"
              "  pixel bytes: 16\n"
              "  texture memory: 16\n");
}

TEST(InfoTable, OfAnAnimationJoinsFramesToRanges) {
    formats::Animation animation;
    animation.bones = {"hip"};
    for (int frame = 0; frame < 9; ++frame) {
        formats::Keyframe keyframe;
        keyframe.rotation.y = static_cast<float>(frame);
        keyframe.set = frame != 4 && frame != 6;
        animation.frames.push_back({keyframe});
    }
    const Bytes bytes = formats::writeKta(animation);
    const std::string text = info::table(inspectFile(FileKind::kAnimation, bytes.data(), bytes.size()));
    EXPECT_THAT(text, HasSubstr("it: kta\n  totals: bones 1, frames 9, bytes 248\n"));
    EXPECT_THAT(text, HasSubstr("  frames set: 0-3, 5, 7-8\n"));
    EXPECT_THAT(text, HasSubstr("name  rotates  least rotation  most rotation  translates"));
    EXPECT_THAT(text, HasSubstr("hip   yes      0 0 0           0 8 0          no"));
}

TEST(InfoTable, ValuesOfEveryTypeAreReadable) {
    EXPECT_EQ(tableOf(nullptr), ": -\n");
    EXPECT_EQ(tableOf(true), ": yes\n");
    EXPECT_EQ(tableOf(false), ": no\n");
    EXPECT_EQ(tableOf(-12), ": -12\n");
    EXPECT_EQ(tableOf(0.1), ": 0.1\n");
    EXPECT_EQ(tableOf(1234567.0), ": 1.23457e+06\n");
    EXPECT_EQ(tableOf("a\nb"), ": a\\x0ab\n");
    EXPECT_EQ(tableOf(Fields::array()), ": none\n");
    EXPECT_EQ(tableOf(Fields({1.5, nullptr, "nan"})), ": 1.5 - nan\n");
    EXPECT_EQ(tableOf(Fields({1u, 2u, 3u})), ": 1-3\n");
    EXPECT_EQ(tableOf(Fields({5u})), ": 5\n");
    EXPECT_EQ(tableOf(Fields({{"oneThing", 1}, {"other", "x"}})), ": one thing 1, other x\n");
}

TEST(InfoTable, ColumnsAreThoseOfAllRows) {
    const Fields rows = {{{"name", "a"}, {"x", 1}}, {{"name", "bc"}, {"longColumn", 2}}, {{"name", "d"}}};
    EXPECT_EQ(tableOf(rows),
              "\n"
              "    name  x  long column\n"
              "    a     1\n"
              "    bc       2\n"
              "    d\n");
}

TEST(InfoTable, WidthsCountCharactersNotBytes) {
    const Fields rows = {{{"name", "\xC3\xA9\xC3\xA9"}, {"x", 1}}, {{"name", "ab"}, {"x", 2}}};
    EXPECT_EQ(tableOf(rows),
              "\n"
              "    name  x\n"
              "    \xC3\xA9\xC3\xA9    1\n"
              "    ab    2\n");
}

TEST(InfoTable, CellsOfFortyEightCharactersStayWhole) {
    const Fields whole = {{{"name", std::string(48, 'n')}}}, cut = {{{"name", std::string(49, 'n')}}};
    EXPECT_THAT(tableOf(whole), EndsWith("    " + std::string(48, 'n') + "\n"));
    EXPECT_THAT(tableOf(cut), EndsWith("    " + std::string(45, 'n') + "...\n"));
}

TEST(InfoTable, NotesComeLastAndAreOneLineEach) {
    FileReport report;
    report.file = "a\tb";
    report.inspection.kind = FileKind::kKerning;
    report.inspection.good = true;
    report.inspection.notes = {"first", "second\nline"};
    EXPECT_EQ(info::table(report), "a\\x09b: kerning\n  note: first\n  note: second\\x0aline\n");
}

}  // namespace
}  // namespace keltra::test
