// SPDX-License-Identifier: Zlib
#include <gtest/gtest.h>
#include <keltra/keltra.h>

#include <cstdint>
#include <limits>
#include <map>
#include <regex>

#include "formats/anim_record.h"
#include "formats/limits.h"
#include "tests/docs/document.h"
#include "tests/support/gl_recorder.h"
#include "tests/support/temp_file.h"

namespace keltra::test {
namespace {

std::string number(unsigned long long value) { return std::to_string(value); }

// Documents group long numbers, and may group those of four digits.
std::string ungrouped(const std::string &text) {
    return std::regex_replace(text, std::regex("([0-9]),([0-9]{3})"), "$1$2");
}

constexpr unsigned kLargest16 = std::numeric_limits<decltype(KTMESH::numberOfVertices)>::max();
constexpr unsigned kText = kNameSize - 1;
static_assert(sizeof(KTNODE::name) - 1 == kText && sizeof(KTSETTINGS::RECORD::title) - 1 == kText &&
                  sizeof(KTSETTINGS::RECORD::ktePath) - 1 == kText &&
                  sizeof(KTANIM::boneNames[0]) - 1 == kText && sizeof(KTLABEL::text) - 1 == kText &&
                  sizeof(KTBUTTON::caption) - 1 == kText,
              "one row says it of all");

// --- limits without accessible constants: each is provoked

unsigned ancestorsOfFinalMatrix() {
    const GlRecorder::Stub stub;
    unsigned count = 0;
    KTNODE *node = new KTNODE;
    node->setPosition(1.0f, 0.0f, 0.0f);
    for (; node->getFinalMatrix(nullptr).m[12] != 0.0f; ++count) {
        KTNODE *child = new KTNODE;
        child->setPosition(1.0f, 0.0f, 0.0f);
        child->link(node);
        node = child;
    }
    KTNODE::cleanUp();
    return count - 1;
}

int matrixPushes() {
    const GlRecorder::Stub stub;
    GlRecorder::clear();
    KT_glMatrixMode(GL_MODELVIEW);
    for (int i = 0; i < 100; ++i) KT_glPushMatrix();
    for (int i = 0; i < 100; ++i) KT_glPopMatrix();
    return GlRecorder::count("glPushMatrix");
}

std::size_t settingsLine() {
    const TempFolder folder;
    vnfParser parser;
    char line[256];
    vnfOpenParser(&parser, folder.write("long.txt", std::string(1000, 'x') + "\n").c_str());
    vnfReadLine(&parser, line);
    vnfCloseParser(&parser);
    return std::string(line).size();
}

std::size_t logMessage() {
    const TempFolder folder;
    vnfOpenLog(folder.path("log.txt").c_str());
    vnfLog("%s", std::string(3000, '~').c_str());
    vnfCloseLog();
    vnfOpenLog(nullptr);
    std::size_t count = 0;
    for (std::uint8_t byte : readFile(folder.path("log.txt"))) count += byte == '~';
    return count;
}

int timers() {
    int count = 0;
    while (vnfNewTimer(1.0f) >= 0) ++count;
    for (int i = 0; i < count; ++i) vnfFreeTimer(i);
    return count;
}

unsigned identifiers() {
    unsigned largest = 0;
    while (const unsigned id = vnfNewId()) largest = id;
    vnfOpenLog(nullptr);
    return largest;
}

std::string sides(unsigned side) { return number(side) + " x " + number(side) + " pixels"; }

TEST(LimitsTest, TheTableOfLimitsIsThatOfTheEngine) {
    const std::string xml = number(kMaxXmlBytes >> 20) + " MiB, " + number(kMaxXmlNesting) + " levels, " +
                            number(kMaxXmlAttributes) + " attributes of an element, " + number(kMaxXmlTags) +
                            " tags";
    const std::map<std::string, std::string> limits = {
        {"nesting of a tree", number(kMaxTreeDepth) + " levels"},
        {"ancestors in `getFinalMatrix`", number(ancestorsOfFinalMatrix())},
        {"entries of the render list", number(KTELEMENT::maxElements) + ", or fewer by the settings"},
        {"lights of one object", number(KTELEMENT::nearestLights) + ", the nearest"},
        {"skinned meshes a frame", number(KTMESH::maxSkins)},
        {"bones that a skin can use", number(KTMESH::maxBones)},
        {"vertices, texture coordinates, triangles of a mesh", number(kLargest16) + " each"},
        {"texture slots of a material, texture channels", number(KTMATERIAL::levels)},
        {"texture", sides(KTTEXTURE::maxSize)},
        {"video memory budget", "8 MiB"},  // tested with a running engine in budget_test.cpp
        {"pushes on a matrix stack", number(static_cast<unsigned>(matrixPushes()))},
        {"names", number(kText) + " characters"},
        {"paths, titles, bone names set in code", number(kText) + " characters"},
        {"lines of a settings file", number(settingsLine()) + " characters"},
        {"a message to the log", number(logMessage()) + " characters"},
        {"timers", number(static_cast<unsigned>(timers()))},
        {"identifiers", number(identifiers())},
        {"table of off-screen targets", number(KTOPENGL::fbos)},
        {"an animation", number(KTANIM::maxBones) + " bones, " + number(KTANIM::maxFrames) + " frames"},
        {"glyphs of a batch", number(KTFONT::maxGlyphs)},
        {"a text that is drawn", number(KTFONT::maxCharacters - 1) + " characters"},
        {"text of a label, a caption, a field", number(kText) + " characters"},
        {"text of a window", number(KTWINDOW::textSize - 1) + " characters"},
        {"particles of one emitter, of all",
         number(KTEMITTER::maxParticles) + ", " + number(KTEMITTER::poolSize)},
        {"picture of a film", sides(KTVIDEO::maxSize)},
        {"interface and emitter files", xml},
        {"objects of an interface file", number(kGuiObjects)},
    };
    const auto rows = readDocument("docs/limits.md").table("# Limits");
    EXPECT_EQ(rows.size(), limits.size());
    for (const auto &row : rows) {
        ASSERT_TRUE(limits.count(row[0])) << row[0];
        EXPECT_EQ(ungrouped(row[1]), limits.at(row[0])) << row[0];
    }
}

TEST(LimitsTest, PagesNameTheSameLimits) {
    const std::string nesting = number(kMaxXmlNesting) + " elements within each other";
    const std::string attributes = number(kMaxXmlAttributes) + " attributes in an element";
    const std::string tags = number(kMaxXmlTags) + " tags", bones = number(KTMESH::maxBones);
    const std::string bytes = number(kMaxXmlBytes >> 20) + " MiB";
    const std::string pool = number(KTEMITTER::poolSize) + " particles", texture = sides(KTTEXTURE::maxSize);
    const std::string skins = number(KTMESH::maxSkins), animBones = number(KTANIM::maxBones);
    const std::string frames = number(KTANIM::maxFrames), particles = number(KTEMITTER::maxParticles);
    const double animMegabytes = static_cast<double>(sizeof(KTANIM)) / 1e6;
    const std::map<std::string, std::vector<std::string>> phrases = {
        {"docs/formats/kte.md",
         {"at most " + number(kNameSize) + " bytes with it",
          "deeper than " + number(kMaxTreeDepth) + " levels", "or bone " + bones + " or beyond",
          "zero among " + number(kNameSize) + " bytes"}},
        {"docs/formats/kta.md",
         {"u16, at most " + animBones, "u16, at most " + frames, "at most " + number(kText) + " characters",
          "F x B x " + number(kKeyframeSize), std::string("`") + kAnimMagic + "`"}},
        {"docs/formats/tga.md", {"up to " + texture, "1 to " + number(KTTEXTURE::maxSize)}},
        {"docs/formats/gui.md",
         {bytes + "; " + nesting, attributes + "; " + tags, "Beyond " + number(kGuiObjects) + " objects",
          "up to " + number(KTWINDOW::textSize - 1) + " characters", "a label is cut at " + number(kText)}},
        {"docs/formats/emitter.md",
         {bytes + ", " + nesting + ", " + attributes + ", " + tags, pool + ", up to " + particles + " each",
          "0 to " + particles + "; more are cut"}},
        {"docs/formats/settings.md",
         {"anything outside 1 to " + number(KTELEMENT::maxElements) + " is " + number(KTELEMENT::maxElements),
          "Lines hold " + number(kText) + " characters"}},
        {"docs/characters.md",
         {bones + " bones take part in a skin, " + animBones + " in an animation",
          "A frame has " + skins + " slots",
          "grid of " + frames + " frames (and one more) by " + animBones + " bones",
          "about " + number(static_cast<unsigned>(animMegabytes)) + "." +
              number(static_cast<unsigned>(animMegabytes * 10) % 10) + " MB"}},
        {"docs/first_character.md",
         {bones + " bones of a skin, " + animBones + " of an animation file",
          number(kLargest16) + " vertices a mesh", skins + " skins a frame", frames + " frames a file"}},
        {"docs/frame.md",
         {skins + " slots of " + bones, "batch of " + number(KTFONT::maxGlyphs) + " glyphs",
          pool + " and the arrays that draw " + particles}},
        {"docs/text.md",
         {"after " + number(KTFONT::maxCharacters - 1) + " characters",
          "batch of " + number(KTFONT::maxGlyphs)}},
        {"docs/video.md",
         {"at most " + sides(KTVIDEO::maxSize), number(sizeof(KTVIDEOSTREAM::buffer)) + " bytes"}},
    };
    for (const auto &[path, wanted] : phrases) {
        const std::string text = ungrouped(readDocument(path).text());
        for (const std::string &phrase : wanted)
            EXPECT_NE(text.find(phrase), std::string::npos) << path << ": " << phrase;
    }
}

}  // namespace
}  // namespace keltra::test
