// SPDX-License-Identifier: Zlib
#include <gmock/gmock.h>

#include "tests/support/temp_file.h"
#include "tests/tools/info/sentences.h"
#include "tools/info/inspect.h"

namespace keltra::test {
namespace {

using info::FileKind;
using info::Inspection;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

Inspection inspectText(FileKind kind, const std::string &text, const std::string &folder = "") {
    return info::inspect(kind, text.data(), text.size(), folder);
}

TEST(InspectSettings, ValuesAreThoseThatTheEngineTakes) {
    const Inspection result = inspectText(
        FileKind::kSettings, "KELTRA_windowX = 320 # wide\nKELTRA_landscape=256\nKELTRA_title = \"a b\"\n");
    ASSERT_TRUE(result.good);
    EXPECT_EQ(result.fields["settings"].dump(),
              "[{\"key\":\"KELTRA_windowX\",\"value\":320},{\"key\":\"KELTRA_landscape\",\"value\":false},"
              "{\"key\":\"KELTRA_title\",\"value\":\"ab\"}]");
    EXPECT_THAT(result.notes, IsEmpty());
}

TEST(InspectSettings, NotesLinesThatCountForNothing) {
    const Inspection result = inspectText(
        FileKind::kSettings,
        "KELTRA_windowX=1\n\n# KELTRA_x\r\nKELTRA_windowX=2\nKELTRA_gamma = 3\nKELTRA_ktePath=data/\n");
    EXPECT_TRUE(result.good);
    EXPECT_THAT(
        sentencesOf(result),
        ElementsAre("it, line 4: `KELTRA_windowX` is there again: the first one counts",
                    "it, line 5: `KELTRA_gamma`: unknown key",
                    "it, line 6: `KELTRA_ktePath`: found `data/`, expected a text between two quotes"));
    EXPECT_THAT(result.notes, IsEmpty());
}

TEST(InspectSettings, AnythingIsASettingsFile) {
    EXPECT_TRUE(inspectText(FileKind::kSettings, "").good);
    EXPECT_TRUE(inspectText(FileKind::kSettings, std::string("\0\xff\0", 3)).good);
    const Inspection large = inspectText(FileKind::kSettings, std::string((16u << 20) + 1, 'x'));
    EXPECT_TRUE(large.good);
    EXPECT_THAT(large.notes, Contains(HasSubstr("16 MiB")));
}

TEST(InspectSettings, FaultsAreLimited) {
    std::string text;
    for (int i = 0; i < 1000; ++i) text += "unknown" + std::to_string(i) + "\n";
    const Inspection result = inspectText(FileKind::kSettings, text);
    EXPECT_THAT(result.faults, SizeIs(100));
    EXPECT_THAT(result.notes, ElementsAre("more faults are left out"));
}

TEST(InspectKerning, ListsCharactersAndUnknownLines) {
    const Inspection result = inspectText(
        FileKind::kKerning,
        "KELTRA_kerning_A = 300\nKELTRA_kerning_b=-4\nKELTRA_kerning_S=2\nKELTRA_kerning_SPACE = 9\nodd\n");
    ASSERT_TRUE(result.good);
    EXPECT_EQ(result.fields["characters"].dump(),
              "[{\"character\":\"A\",\"kerning\":44},{\"character\":\"S\",\"kerning\":2},"
              "{\"character\":\"b\",\"kerning\":-4},{\"character\":\" \",\"kerning\":9}]");
    EXPECT_THAT(sentencesOf(result),
                ElementsAre("it, line 1: `KELTRA_kerning_A`: found `300`, expected -128 to 127",
                            "it, line 5: `odd`: the line cannot be read, expected a key, `=` and a value"));
    EXPECT_THAT(result.notes, IsEmpty());
}

TEST(InspectKerning, AnEmptyFileIsRefused) {
    const Inspection result = inspectText(FileKind::kKerning, "");
    EXPECT_FALSE(result.good);
    EXPECT_EQ(result.flaw.field, "text");
    EXPECT_EQ(result.flaw.line, 1u);
}

TEST(InspectInterface, ListsTheTreeAndWhatIsNotKnown) {
    const TempFolder folder;
    const Inspection result =
        inspectText(FileKind::kInterface,
                    "<root><window id='3'><name value='w' shade='1'/><size width='1'/><blob/>"
                    "<texture value='t.tga'/></window></root>",
                    folder.prefix());
    ASSERT_TRUE(result.good);
    EXPECT_EQ(result.fields["totals"]["objects"], 1);
    EXPECT_EQ(result.fields["totals"]["properties"], 3);
    EXPECT_EQ(result.fields["elements"][1]["level"], 1);
    EXPECT_EQ(result.fields["elements"][1]["attributes"]["value"], "w");
    EXPECT_EQ(result.fields["elements"][3]["kind"], "unknown");
    EXPECT_THAT(sentencesOf(result),
                ElementsAre("it, line 1: `id`: unknown attribute of `window`",
                            "it, line 1: `shade`: unknown attribute of `name`",
                            "it, line 1: `size`: attribute `height` is missing",
                            "it, line 1: `blob`: unknown element of `window`",
                            folder.path("t.tga") + " (needed by it, line 1): the file does not exist"));
    EXPECT_THAT(result.notes, IsEmpty());
}

TEST(InspectInterface, EveryKnownPropertyIsQuiet) {
    const Inspection result = inspectText(FileKind::kInterface,
                                          "<root><font><name value='f'/><texture value='t'/><kerning "
                                          "value='k'/></font><window/><button><title value='t'/>"
                                          "<position x='1' y='2'/><size width='1' height='1'/><usefont "
                                          "ref='f'/><color r='1' g='1' b='1' a='1'/>"
                                          "<kind value='switch'/></button><text/><label><write "
                                          "value='t'/></label><box/><vslider/><hslider/></root>");
    EXPECT_TRUE(result.good);
    EXPECT_EQ(result.fields["totals"]["objects"], 8);
    EXPECT_THAT(result.notes, IsEmpty());
}

TEST(InspectInterface, PlacesFaultsByLineAndColumn) {
    const struct {
        const char *text, *field;
        std::size_t offset, line, column;
    } cases[] = {
        {"<root>\r\n  <box>\r\n </bax>\n</root>", "end tag", 18, 3, 2},
        {"\xEF\xBB\xBF<root>\n<a b=\"1/></root>", "tag", 10, 2, 1},
        {"<rot/>", "root", 0, 1, 1},
        {"", "document", 0, 1, 1},
    };
    for (const auto &[text, field, offset, line, column] : cases) {
        const Inspection result = inspectText(FileKind::kInterface, text);
        EXPECT_FALSE(result.good) << text;
        EXPECT_EQ(result.flaw.field, field) << text;
        EXPECT_EQ(result.flaw.offset, offset) << text;
        EXPECT_EQ(result.flaw.line, line) << text;
        EXPECT_EQ(result.flaw.column, column) << text;
    }
}

TEST(InspectInterface, PlacesFaultsBehindBytesBeyondAscii) {
    const Inspection result =
        inspectText(FileKind::kInterface, "<root><a v='\xEF\xBB\xC3\xEF'/>\n</rot></root>");
    EXPECT_FALSE(result.good);
    EXPECT_EQ(result.flaw.line, 2u);
    EXPECT_EQ(result.flaw.column, 1u);
}

TEST(InspectInterface, NamesTheLimits) {
    std::string deep, wide = "<root ";
    for (int i = 0; i < 65; ++i) deep += "<box>";
    for (int i = 0; i < 65; ++i) wide += "a" + std::to_string(i) + "='' ";
    EXPECT_EQ(inspectText(FileKind::kInterface, deep).flaw.reason, "nests deeper than 64 elements");
    EXPECT_EQ(inspectText(FileKind::kInterface, deep).flaw.offset, 64u * 5);
    EXPECT_EQ(inspectText(FileKind::kInterface, wide + "/>").flaw.reason, "has more than 64 attributes");
    EXPECT_EQ(inspectText(FileKind::kInterface, std::string("<root/>\0", 8)).flaw.reason,
              "holds a zero byte");
    EXPECT_EQ(inspectText(FileKind::kInterface, std::string((4u << 20) + 1, ' ')).flaw.reason,
              "is larger than 4 MiB");
}

TEST(InspectEmitter, ValuesAreThoseThatTheEngineTakes) {
    const Inspection result = inspectText(FileKind::kEmitter,
                                          "<emitter><maxEnergy value='-3'/><radius value='x'/><gravity x='1' "
                                          "z='0.1'/><emitterSize x='2' y='3'/>"
                                          "<texture value='t.tga'/><type value='99999999999'/></emitter>");
    ASSERT_TRUE(result.good);
    EXPECT_EQ(result.fields["settings"].dump(),
              "[{\"setting\":\"maxEnergy\",\"value\":0},{\"setting\":\"radius\",\"value\":0.0},"
              "{\"setting\":\"gravity\",\"value\":[1.0,null,0.1]},{\"setting\":\"emitterSize\",\"value\":[2."
              "0,3.0]},"
              "{\"setting\":\"texture\",\"value\":\"t.tga\"},{\"setting\":\"type\",\"value\":2147483647}]");
    EXPECT_THAT(result.notes, IsEmpty());
}

TEST(InspectEmitter, NotesWhatIsSkipped) {
    const Inspection result = inspectText(FileKind::kEmitter,
                                          "<emitter><wind/><blendingSrc value='768'/><blendingDst "
                                          "value='1'/><type value='1' x='2'/></emitter>");
    EXPECT_THAT(
        sentencesOf(result),
        ElementsAre("it, line 1: `wind`: unknown element of `emitter`",
                    "it, line 1: `blendingSrc value`: found `768`, expected a blend factor of that side",
                    "it, line 1: `x`: unknown attribute of `type`"));
    EXPECT_THAT(sentencesOf(inspectText(FileKind::kEmitter, "<root/>")),
                ElementsAre("it, line 1: `root`: unknown root element; did you mean `emitter`?"));
}

}  // namespace
}  // namespace keltra::test
