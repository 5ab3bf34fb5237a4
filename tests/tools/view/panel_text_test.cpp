// SPDX-License-Identifier: Zlib
#include "tools/view/panel_text.h"

#include <gtest/gtest.h>

using namespace keltra::view;

namespace {

// Letters of seven pixels; escapes move, as in the font.
unsigned sevenEach(const std::string &text) { return 7 * static_cast<unsigned>(text.size()); }

}  // namespace

TEST(PanelText, KeepsWhatTheFontHasAndDropsEscapes) {
    EXPECT_EQ(plainText("Walk (fast) #2"), "Walk (fast) #2");
    EXPECT_EQ(plainText("a\tb\nc"), "a?b?c");
    EXPECT_EQ(plainText("^c8000red"), "?c8000red");
    EXPECT_EQ(plainText("Z\xc3\xbcrich"), "Z?rich");
    EXPECT_EQ(plainText("\xe6\xad\xa9\xe3\x81\x8f"), "??") << "one for each character";
    EXPECT_EQ(plainText(""), "");
}

TEST(PanelText, CutsWhatIsTooLong) {
    EXPECT_EQ(cutText("walk", 28, sevenEach), "walk");
    EXPECT_EQ(cutText("walking", 28, sevenEach), "wa..");
    EXPECT_EQ(cutText("walking", 48, sevenEach), "walk..");
    EXPECT_EQ(cutText("walking", 14, sevenEach), "..");
    EXPECT_EQ(cutText("walking", 3, sevenEach), "");
    EXPECT_EQ(cutText("", 0, sevenEach), "");
}

TEST(PanelText, CentresInAButton) {
    EXPECT_EQ(centredText("Play", 58, 19, sevenEach), "^x0014^y0000Play");
    EXPECT_EQ(centredText("Play", 58, 24, sevenEach), "^x0014^y0003Play");
    EXPECT_EQ(centredText("Playing all day", 58, 19, sevenEach), "^x0003^y0000Playi..");
    EXPECT_EQ(centredText("x", 2, 10, sevenEach), "^x0000^y-004") << "a button too small for a letter";
}

TEST(PanelText, ShowsSwitchesAsBoxes) {
    EXPECT_EQ(switchText(true, "wire"), "[x] wire");
    EXPECT_EQ(switchText(false, "wire"), "[ ] wire");
}

TEST(PanelText, CountsFramesFromOne) {
    EXPECT_EQ(frameText(0, 24), "1 / 24");
    EXPECT_EQ(frameText(23, 24), "24 / 24");
    EXPECT_EQ(frameText(0, 0), "-");
}

TEST(PanelText, WritesTheFigures) {
    Figures figures{16.66, 59.94, 31, 12, 1234567, 1000, 1258291, 8388608};
    EXPECT_EQ(timeText(figures), "16.7 ms  60 fps");
    EXPECT_EQ(sceneText(figures), "31 nodes  12 drawn  1,234,567 triangles");
    EXPECT_EQ(driverText(figures), "1,000 GL calls  1.2 of 8 MiB textures");
    figures.triangles = 1;
    EXPECT_EQ(sceneText(figures), "31 nodes  12 drawn  1 triangle");
}

TEST(PanelText, ACountOfMemoryThatWrappedIsNone) {
    Figures figures;
    figures.textureBytes = 0xffff0000u;
    figures.textureBudget = 8388608;
    EXPECT_EQ(driverText(figures), "0 GL calls  0.0 of 8 MiB textures");
}
