// SPDX-License-Identifier: Zlib
#include <gmock/gmock.h>

#include <functional>

#include "tests/formats/tga_bytes.h"
#include "tests/scene/scene_parts.h"
#include "tests/support/temp_file.h"
#include "tests/tools/info/inspections.h"
#include "tests/tools/info/sentences.h"
#include "tools/formats/kta_writer.h"
#include "tools/formats/kte_writer.h"
#include "tools/info/inspect.h"

namespace keltra::test {
namespace {

using info::FileKind;
using info::Inspection;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

formats::Scene skinnedScene() {
    formats::Scene scene =
        sceneOf(plainNode("root", {lightNode("lamp"), skinNode("skin", {"hip", "knee"}, 5, "stone"),
                                   boneNode("hip", {0, 1, 0}, {boneNode("knee")})}));
    scene.materials.push_back({"stone", "stone_d.tga", "lava"});
    return scene;
}

TEST(InspectScene, CountsWhatIsInTheFile) {
    const Inspection result = inspectScene(skinnedScene());
    ASSERT_TRUE(result.good);
    const info::Fields &totals = result.fields["totals"];
    EXPECT_EQ(totals["nodes"], 5);
    EXPECT_EQ(totals["meshes"], 3);
    EXPECT_EQ(totals["lights"], 1);
    EXPECT_EQ(totals["skins"], 1);
    EXPECT_EQ(totals["bones"], 2);
    EXPECT_EQ(totals["depth"], 3);
    EXPECT_EQ(totals["vertices"], 5);
    EXPECT_EQ(totals["triangles"], 3);
    EXPECT_EQ(result.fields["version"], "1.6a");
    EXPECT_THAT(result.notes, IsEmpty());
}

TEST(InspectScene, ListsMaterialsAndTheTree) {
    const Inspection result = inspectScene(skinnedScene());
    EXPECT_EQ(result.fields["materials"][0]["texture"], "stone_d.tga");
    EXPECT_EQ(result.fields["materials"][0]["shader"], "lava");
    const info::Fields &nodes = result.fields["nodes"];
    ASSERT_EQ(nodes.size(), 5u);
    EXPECT_EQ(nodes[0]["type"], "node");
    EXPECT_EQ(nodes[1]["light"], "point");
    EXPECT_EQ(nodes[2]["material"], "stone");
    EXPECT_EQ(nodes[2]["boneNames"], info::Fields({"hip", "knee"}));
    EXPECT_EQ(nodes[3]["position"], info::Fields({0.0, 1.0, 0.0}));
    EXPECT_EQ(nodes[4]["level"], 2);
}

TEST(InspectScene, ReadsTheOlderVersion) {
    const Inspection result =
        inspectBytes(FileKind::kScene, formats::writeKte(skinnedScene(), formats::KteVersion::k15a));
    EXPECT_TRUE(result.good);
    EXPECT_EQ(result.fields["version"], "1.5a");
}

TEST(InspectScene, NotesWhatIsTakenButUnusual) {
    const struct {
        const char *note;
        std::function<void(formats::Scene &)> change;
    } cases[] = {
        {"it: `elbow`: unknown bone of mesh `",
         [](formats::Scene &s) { s.root.children[1].mesh.boneNames[1] = "elbow"; }},
        {"the bone \"lamp\" is no mesh",
         [](formats::Scene &s) { s.root.children[1].mesh.boneNames[1] = "lamp"; }},
        {"it: `moss`: unknown material of mesh `",
         [](formats::Scene &s) { s.root.children[1].mesh.material = "moss"; }},
        {"1 node without a name", [](formats::Scene &s) { s.root.children[0].name = ""; }},
        {"material[1] has no name", [](formats::Scene &s) { s.materials.push_back({""}); }},
        {"more than one material \"stone\"", [](formats::Scene &s) { s.materials.push_back({"stone"}); }},
        {"17 skinned meshes; a frame draws 16",
         [](formats::Scene &s) {
             for (int i = 0; i < 16; ++i) s.root.children.push_back(s.root.children[1]);
         }},
    };
    for (const auto &[note, change] : cases) {
        formats::Scene scene = skinnedScene();
        change(scene);
        const Inspection result = inspectScene(scene);
        EXPECT_TRUE(result.good) << note;
        std::vector<std::string> told = sentencesOf(result);
        told.insert(told.end(), result.notes.begin(), result.notes.end());
        EXPECT_THAT(told, Contains(HasSubstr(note)));
    }
}

// The GL holds 32 matrices; the engine draws deeper trees all the same.
TEST(InspectScene, TakesDeepTreesWithoutANote) {
    formats::Scene scene = skinnedScene();
    const std::size_t notes = inspectScene(scene).notes.size();
    for (int i = 0; i < 30; ++i) {
        formats::Node above = plainNode("above");
        above.children.push_back(std::move(scene.root));
        scene.root = std::move(above);
    }
    const Inspection result = inspectScene(scene);
    EXPECT_EQ(result.fields["totals"]["depth"], 33);
    EXPECT_EQ(result.notes.size(), notes);
}

TEST(InspectScene, NotesBytesBehindTheTree) {
    Bytes bytes = formats::writeKte(skinnedScene(), formats::KteVersion::k16a);
    bytes.resize(bytes.size() + 7);
    EXPECT_THAT(inspectBytes(FileKind::kScene, bytes).notes, Contains("7 bytes after the tree, not read"));
}

TEST(InspectScene, LooksForTexturesBesideTheFile) {
    const TempFolder folder;
    EXPECT_THAT(sentencesOf(inspectScene(skinnedScene(), folder.prefix())),
                ElementsAre(folder.path("stone_d.tga") + " (needed by it): the file does not exist"));
    folder.write("stone_d.tga", uncompressedTga(2, 2, 24));
    EXPECT_THAT(inspectScene(skinnedScene(), folder.prefix()).faults, IsEmpty());
}

TEST(InspectScene, NamesTheRecordOfAFault) {
    formats::Marks marks;
    const Bytes whole = formats::writeKte(skinnedScene(), formats::KteVersion::k16a, &marks);
    const std::size_t faces = formats::findMark(marks, "node[2].faces")->offset;
    Bytes bytes = whole;
    bytes[faces + 1] = 0xff;
    Inspection result = inspectBytes(FileKind::kScene, bytes);
    EXPECT_FALSE(result.good);
    EXPECT_EQ(result.flaw.offset, faces);
    EXPECT_EQ(result.flaw.field, "node[2].faces");
    EXPECT_EQ(result.flaw.reason, "vertex index out of range");
    EXPECT_EQ(result.fields["nodes"].size(), 2u) << "what comes before is told";
    bytes = whole;
    bytes.resize(100);
    EXPECT_EQ(inspectBytes(FileKind::kScene, bytes).flaw.field.substr(0, 12), "material[0].");
    bytes.resize(3);
    EXPECT_EQ(inspectBytes(FileKind::kScene, bytes).flaw.field, "magic");
}

TEST(InspectScene, KeepsFloatsShortAndNamesThoseThatAreNone) {
    formats::Scene scene = skinnedScene();
    scene.root.position = {0.1f, std::numeric_limits<float>::quiet_NaN(),
                           -std::numeric_limits<float>::infinity()};
    EXPECT_EQ(inspectScene(scene).fields["nodes"][0]["position"].dump(), "[0.1,\"nan\",\"-inf\"]");
}

formats::Animation walk() {
    formats::Animation animation;
    animation.bones = {"hip", "knee"};
    for (int frame = 0; frame < 4; ++frame) {
        formats::Keyframe moving, still;
        moving.rotation = {10.0f * static_cast<float>(frame), 0.0f, -5.0f};
        moving.set = frame != 2;
        still.set = false;
        animation.frames.push_back({moving, still});
    }
    return animation;
}

TEST(InspectAnimation, TellsWhichBonesMoveAndHowFar) {
    const Inspection result = inspectBytes(FileKind::kAnimation, formats::writeKta(walk()));
    ASSERT_TRUE(result.good);
    EXPECT_EQ(result.fields["totals"]["frames"], 4);
    EXPECT_EQ(result.fields["framesSet"], info::Fields({0, 1, 3}));
    const info::Fields &hip = result.fields["bones"][0], &knee = result.fields["bones"][1];
    EXPECT_EQ(hip["rotates"], true);
    EXPECT_EQ(hip["translates"], false);
    EXPECT_EQ(hip["keyframesSet"], 3);
    EXPECT_EQ(hip["leastRotation"], info::Fields({0.0, 0.0, -5.0}));
    EXPECT_EQ(hip["mostRotation"], info::Fields({30.0, 0.0, -5.0}));
    EXPECT_EQ(knee["rotates"], false);
    EXPECT_THAT(result.notes, IsEmpty());
}

TEST(InspectAnimation, NotesOddities) {
    formats::Animation animation = walk();
    animation.bones[1] = "";
    animation.frames[0][0].position.x = std::numeric_limits<float>::quiet_NaN();
    Bytes bytes = formats::writeKta(animation);
    bytes.push_back(0);
    const Inspection result = inspectBytes(FileKind::kAnimation, bytes);
    EXPECT_TRUE(result.good);
    EXPECT_THAT(result.notes, Contains("1 byte after the last keyframe, not read"));
    EXPECT_THAT(result.notes, Contains(HasSubstr("\"hip\" has values that are no numbers")));
    EXPECT_THAT(result.notes, Contains("bone[1] has no name"));
    animation.frames.clear();
    EXPECT_THAT(inspectBytes(FileKind::kAnimation, formats::writeKta(animation)).notes,
                Contains(StartsWith("there are no frames")));
}

TEST(InspectAnimation, NamesTheBoneOfAFault) {
    formats::Animation animation = walk();
    animation.bones[1] = std::string(300, 'n');
    Inspection result = inspectBytes(FileKind::kAnimation, formats::writeKta(animation));
    EXPECT_EQ(result.flaw.field, "bone[1].name");
    EXPECT_EQ(result.flaw.offset, 23u);
    Bytes bytes = formats::writeKta(walk());
    bytes.pop_back();
    result = inspectBytes(FileKind::kAnimation, bytes);
    EXPECT_EQ(result.flaw.field, "keyframes");
    EXPECT_EQ(result.flaw.offset, 28u);
    bytes[15] = 129;
    EXPECT_EQ(inspectBytes(FileKind::kAnimation, bytes).flaw.field, "bone count");
    bytes[15] = 2;
    bytes[18] = 5;
    EXPECT_EQ(inspectBytes(FileKind::kAnimation, bytes).flaw.offset, 17u);
    bytes[3] = 'X';
    EXPECT_EQ(inspectBytes(FileKind::kAnimation, bytes).flaw.field, "magic");
}

TEST(InspectTexture, TellsSizeDepthAndMemory) {
    const Inspection result = inspectBytes(FileKind::kTexture, uncompressedTga(8, 4, 24, 0x20));
    ASSERT_TRUE(result.good);
    EXPECT_EQ(result.fields["encoding"], "uncompressed");
    EXPECT_EQ(result.fields["width"], 8);
    EXPECT_EQ(result.fields["height"], 4);
    EXPECT_EQ(result.fields["bitsPerPixel"], 24);
    EXPECT_EQ(result.fields["firstRow"], "top");
    EXPECT_EQ(result.fields["textureMemory"], 128);
    EXPECT_THAT(result.notes, IsEmpty());
}

TEST(InspectTexture, AnotherKindIsGoodAndSaidToHaveNoPixels) {
    const Inspection result = inspectBytes(FileKind::kTexture, joined(tgaHeader(1, 8, 4, 24), Bytes(99)));
    EXPECT_TRUE(result.good);
    EXPECT_EQ(result.fields["encoding"], "other");
    EXPECT_EQ(result.fields["pixelBytes"], 0);
    EXPECT_THAT(sentencesOf(result), Contains(HasSubstr("no pixels are loaded")));
}

TEST(InspectTexture, NamesWhatIsWrong) {
    const Bytes packets = {0x80, 1, 2, 3, 0x80, 1};
    const struct {
        Bytes bytes;
        const char *field;
        std::size_t offset;
    } cases[] = {
        {Bytes(5), "header", 5},
        {uncompressedTga(4, 4, 16), "bits a pixel", 16},
        {uncompressedTga(513, 1, 24), "width", 12},
        {tgaHeader(kUncompressed, 4, 0, 24), "height", 14},
        {tgaHeader(kUncompressed, 4, 4, 24), "pixels", 18},
        {joined(tgaHeader(kRunLength, 4, 1, 24), packets), "pixels of a packet", 23},
        {joined(tgaHeader(kRunLength, 4, 1, 24), {0x80, 1, 2, 3}), "packet", 22},
    };
    for (const auto &[bytes, field, offset] : cases) {
        const Inspection result = inspectBytes(FileKind::kTexture, bytes);
        EXPECT_FALSE(result.good) << field;
        EXPECT_EQ(result.flaw.field, field);
        EXPECT_EQ(result.flaw.offset, offset);
    }
}

#ifdef KELTRA_TEST_FILMS
TEST(InspectVideo, TellsWhatTheSequenceHeaderSays) {
    const Inspection result = inspectBytes(FileKind::kVideo, readFile(KELTRA_TEST_FILMS "/wide.m1v"));
    ASSERT_TRUE(result.good);
    EXPECT_EQ(result.fields["width"], 64);
    EXPECT_EQ(result.fields["height"], 48);
    EXPECT_EQ(result.fields["picturesASecond"], 25.0);
    EXPECT_EQ(result.fields["pictures"], 50);
    EXPECT_EQ(result.fields["seconds"], 2.0);
    EXPECT_EQ(result.fields["pixelAspect"], 1.0);
}

TEST(InspectVideo, NamesWhyNothingIsShown) {
    Bytes film = readFile(KELTRA_TEST_FILMS "/wide.m1v");
    film.resize(20);
    EXPECT_EQ(inspectBytes(FileKind::kVideo, film).flaw.field, "pictures");
    film[4] = 0xff;
    EXPECT_THAT(inspectBytes(FileKind::kVideo, film).flaw.reason, HasSubstr("larger than 512"));
    EXPECT_EQ(inspectBytes(FileKind::kVideo, {0, 0, 1, 0xBA, 0, 0}).flaw.field, "start code");
    EXPECT_EQ(inspectBytes(FileKind::kVideo, {1, 2, 3}).flaw.reason, "there is none");
    EXPECT_EQ(inspectBytes(FileKind::kVideo, {}).flaw.reason, "there is none");
}
#endif

}  // namespace
}  // namespace keltra::test
