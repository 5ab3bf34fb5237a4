// SPDX-License-Identifier: Zlib
// What is noted of a file that is only unusual, and how much of that is kept.

#include <gmock/gmock.h>

#include <algorithm>
#include <cstring>

#include "tests/formats/tga_bytes.h"
#include "tests/scene/scene_parts.h"
#include "tests/tools/info/inspections.h"
#include "tests/tools/info/sentences.h"
#include "tools/formats/kta_writer.h"
#include "tools/formats/kte_writer.h"
#include "tools/info/inspect.h"

namespace keltra::test {
namespace {

using info::FileKind;
using info::Inspection;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

/// An animation of that many bones without names: each has a note.
Inspection inspectNameless(unsigned bones) {
    formats::Animation animation;
    animation.bones.resize(bones);
    animation.frames.push_back(std::vector<formats::Keyframe>(bones));
    return inspectBytes(FileKind::kAnimation, formats::writeKta(animation));
}

TEST(InfoNotes, AHundredAreKept) {
    EXPECT_THAT(inspectNameless(99).notes, SizeIs(99));
    const Inspection hundred = inspectNameless(100);
    EXPECT_THAT(hundred.notes, SizeIs(100));
    EXPECT_THAT(hundred.notes, Each(EndsWith("has no name"))) << "none is left out";
    for (const unsigned bones : {101u, 128u}) {
        const Inspection more = inspectNameless(bones);
        ASSERT_THAT(more.notes, SizeIs(101));
        EXPECT_EQ(more.notes[99], "bone[99] has no name");
        EXPECT_EQ(more.notes[100], "more notes are left out");
    }
}

TEST(InfoNotes, LongNamesAreCutBetweenCharacters) {
    formats::Scene scene = sceneOf(plainNode("root"));
    std::string name = "x";
    for (int i = 0; i < 60; ++i) name += "\xC3\xA9";
    scene.materials = {{name}, {name}};
    std::string kept = "x";
    for (int i = 0; i < 49; ++i) kept += "\xC3\xA9";
    EXPECT_THAT(inspectScene(scene).notes,
                ElementsAre("there is more than one material \"" + kept + "...\"; the first counts"));
    scene.materials = {{std::string(100, 'n')}, {std::string(100, 'n')}};
    EXPECT_THAT(inspectScene(scene).notes, ElementsAre(HasSubstr("\"" + std::string(100, 'n') + "\"")));
    scene.materials = {{std::string(101, '\xA9')}, {std::string(101, '\xA9')}};
    EXPECT_THAT(inspectScene(scene).notes, ElementsAre(HasSubstr("...\"; the first counts")));
}

TEST(InfoNotes, NodesBeyondTheIdentifiersAreCountedAndNotListed) {
    formats::Scene scene = sceneOf(plainNode("root", {plainNode("a"), plainNode("b")}));
    scene.root.children[0].children.assign(40000, plainNode("leaf"));
    scene.root.children[1].children.assign(25533, plainNode("leaf"));
    const Inspection more = inspectScene(scene);
    EXPECT_TRUE(more.good);
    EXPECT_EQ(more.fields["totals"]["nodes"], 65536);
    EXPECT_EQ(more.fields["nodes"].size(), 65535u);
    EXPECT_THAT(more.notes,
                ElementsAre("only the first 65535 nodes are listed, and there are no identifiers for more"));
}

TEST(InfoNotes, LightsAreNamedByTheirKinds) {
    formats::Scene scene = sceneOf(plainNode("root"));
    for (const formats::LightType type :
         {formats::LightType::kPoint, formats::LightType::kSpot, formats::LightType::kDirectional}) {
        formats::Node light = lightNode("lamp");
        light.light.type = type;
        scene.root.children.push_back(light);
    }
    const info::Fields nodes = inspectScene(scene).fields["nodes"];
    EXPECT_EQ(nodes[1]["light"], "point");
    EXPECT_EQ(nodes[2]["light"], "spot");
    EXPECT_EQ(nodes[3]["light"], "directional");
}

TEST(InfoNotes, BytesBehindAPictureAreCounted) {
    Bytes bytes = uncompressedTga(2, 2, 24);
    EXPECT_THAT(inspectBytes(FileKind::kTexture, bytes).notes, IsEmpty());
    bytes.push_back(0);
    EXPECT_THAT(inspectBytes(FileKind::kTexture, bytes).notes,
                ElementsAre("1 byte after the image, not read"));
    bytes.resize(bytes.size() + 25);
    EXPECT_THAT(inspectBytes(FileKind::kTexture, bytes).notes,
                ElementsAre("26 bytes after the image, not read"));
}

TEST(InfoNotes, ObjectsBeyondTheLimitAreToldOf) {
    std::string text = "<root>\n";
    for (int i = 0; i < 8192; ++i) text += "<box/>";
    const auto inspected = [](const std::string &whole) {
        return info::inspect(FileKind::kInterface, whole.data(), whole.size());
    };
    EXPECT_THAT(inspected(text + "</root>").faults, IsEmpty());
    const Inspection more = inspected(text + "\n<box/><box/></root>");
    EXPECT_TRUE(more.good);
    EXPECT_EQ(more.fields["totals"]["objects"], 8194);
    EXPECT_THAT(sentencesOf(more),
                ElementsAre(HasSubstr("line 3: objects: more than 8192, the others are left out")))
        << "once for all of them";
}

TEST(InfoNotes, LinesEndWithEitherCharacterOrBoth) {
    const struct {
        const char *text;
        std::size_t line, column;
    } cases[] = {
        {"<root>\r\r <a>\r</b></root>", 4, 1},
        {"<root>\n\r\n <a></b></root>", 3, 5},
        {"<root>\r", 2, 1},
    };
    for (const auto &[text, line, column] : cases) {
        const Inspection result = info::inspect(FileKind::kInterface, text, std::strlen(text));
        EXPECT_FALSE(result.good) << text;
        EXPECT_EQ(result.flaw.line, line) << text;
        EXPECT_EQ(result.flaw.column, column) << text;
    }
}

#ifdef KELTRA_TEST_FILMS
TEST(InfoNotes, FilmsWithoutAnEndCodeOrOfOddSizes) {
    Bytes film = readFile(KELTRA_TEST_FILMS "/small.m1v");
    const auto hasNote = [&film](const char *text) {
        const std::vector<std::string> notes = inspectBytes(FileKind::kVideo, film).notes;
        return std::any_of(notes.begin(), notes.end(),
                           [text](const std::string &note) { return note.find(text) != std::string::npos; });
    };
    ASSERT_GT(film.size(), 12u);
    const Bytes endCode = {0, 0, 1, 0xB7};
    if (!std::equal(endCode.begin(), endCode.end(), film.end() - 4))
        film.insert(film.end(), endCode.begin(), endCode.end());
    EXPECT_FALSE(hasNote("end code"));
    EXPECT_FALSE(hasNote("no multiple of 16"));
    film.resize(film.size() - 4);
    EXPECT_TRUE(hasNote("without an end code"));
    film[4] = 0x01;  // 30 pixels wide
    film[5] = static_cast<unsigned char>(0xE0 | (film[5] & 0x0f));
    const Inspection odd = inspectBytes(FileKind::kVideo, film);
    ASSERT_TRUE(odd.good);
    EXPECT_EQ(odd.fields["width"], 30);
    EXPECT_TRUE(hasNote("the size is no multiple of 16"));
    film[8] = film[9] = 0xff;  // the bit rate of a film that has none
    film[10] |= 0xc0;
    EXPECT_TRUE(hasNote("the bit rate varies"));
    EXPECT_TRUE(inspectBytes(FileKind::kVideo, film).fields["bitsASecond"].is_null());
}
#endif

}  // namespace
}  // namespace keltra::test
