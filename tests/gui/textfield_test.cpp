// SPDX-License-Identifier: Zlib
#include <keltra/textfield.h>

#include <string>

#include "tests/gui/gui_fixture.h"
#include "tests/support/held_clock.h"

namespace keltra::test {
namespace {

using ::testing::ElementsAre;

class TextFieldTest : public GuiTest {
   protected:
    void SetUp() override {
        GuiTest::SetUp();
        KELTRA::timer = vnfNewTimer(1.0f);
        field.setFont(font);
        field.setSizes(200, 20);
        field.clear();
        GlRecorder::clear();
    }
    void TearDown() override {
        vnfFreeTimer(KELTRA::timer);
        KELTRA::timer = -1;
        GuiTest::TearDown();
    }

    void type(const std::string &keys) {
        for (char key : keys) EXPECT_TRUE(field.manageKey(key));
    }
    /// One frame of so many milliseconds with the key 0; true when the caret was drawn.
    bool caretAfter(long milliseconds) {
        HeldClock::passMilliseconds(milliseconds);
        vnfAdjournTimer(KELTRA::timer);
        field.manageKey(0);
        GlRecorder::clear();
        EXPECT_TRUE(field.render(nullptr));
        return glyphsDrawn() == 1;
    }

    const HeldClock clock;
    KTTEXTFIELD field;
};

TEST_F(TextFieldTest, StartsWithItsDefaults) {
    const KTTEXTFIELD fresh;
    EXPECT_EQ(fresh.getName(), "[textfield " + std::to_string(fresh.getId()) + "]");
    EXPECT_EQ(fresh.getCaption(), "[button " + std::to_string(fresh.getId()) + "]")
        << "the button's own caption";
    EXPECT_EQ(fresh.getType(), unsigned(KT_TEXTFIELD));
    EXPECT_EQ(fresh.getThickness(), 1u);
    EXPECT_TRUE(fresh.getCheckStatus());
    EXPECT_FALSE(fresh.focused);
    EXPECT_EQ(fresh.caretTimer, 0.0f);
    EXPECT_EQ(fresh.font, nullptr);
}

TEST_F(TextFieldTest, KeysAreAppendedAndBackspaceTakesThemBack) {
    type("ab c");
    EXPECT_STREQ(field.getCaption(), "ab c");
    type("\b\bd");
    EXPECT_STREQ(field.getCaption(), "abd");
    type("\b\b\b\b\b");
    EXPECT_STREQ(field.getCaption(), "");
}

TEST_F(TextFieldTest, OtherKeysAreIgnored) {
    for (int key = 0; key < 256; ++key) {
        field.clear();
        EXPECT_TRUE(field.manageKey(static_cast<char>(key)));
        EXPECT_EQ(std::string(field.getCaption()).size(), key >= 32 && key <= 127 ? 1u : 0u) << key;
    }
}

TEST_F(TextFieldTest, WithoutAFontItTakesNoKeys) {
    field.setFont(nullptr);
    EXPECT_FALSE(field.manageKey('a'));
    EXPECT_STREQ(field.getCaption(), "");
    EXPECT_FALSE(field.focused);
    EXPECT_TRUE(field.render(nullptr));
}

TEST_F(TextFieldTest, TextFitsUpToTheWidthLessOneCharacter) {
    font->setCharSizeX(8);
    field.setSizes(64, 20);
    type("1234567");
    EXPECT_EQ(font->stringLength(field.getCaption()), 56u);
    type("89");
    EXPECT_STREQ(field.getCaption(), "12345678") << "at 56 pixels one more still came in, at 64 none";
    field.clear();
    font->setKerning('W', 1);
    type("1234567W8");
    EXPECT_STREQ(field.getCaption(), "12345678") << "56 + 1 exceeds 56";
}

TEST_F(TextFieldTest, HoldsAtMost255Characters) {
    font->setCharSizeX(0);
    type(std::string(300, 'x'));
    EXPECT_EQ(std::string(field.getCaption()), std::string(255, 'x'));
    font->setCharSizeX(16);
    field.setSizes(-100, 20);
    field.clear();
    type("x");
    EXPECT_STREQ(field.getCaption(), "");
}

TEST_F(TextFieldTest, TheCaretBlinksWithAPeriodOfASecond) {
    // 0.1 s a frame: the timer is 0, 0.1, 0.2, ... when the frames are drawn.
    std::string caret;
    for (int frame = 0; frame < 22; ++frame) caret += caretAfter(125) ? '|' : '.';
    // At 0, 1/8, 2/8 it is hidden, from 3/8 to 7/8 it shows; at 1 the timer is 0 again.
    EXPECT_EQ(caret, "...|||||...|||||...|||");
}

TEST_F(TextFieldTest, TheCaretGoesInTheFirstFrameWithoutInput) {
    for (int frame = 0; frame < 4; ++frame) caretAfter(125);
    EXPECT_TRUE(caretAfter(125));
    EXPECT_FALSE(field.focused);
    const float timer = field.caretTimer;
    GlRecorder::clear();
    field.render(nullptr);
    EXPECT_EQ(glyphsDrawn(), 0);
    EXPECT_EQ(field.caretTimer, timer) << "the caret rests while there is no focus";
}

TEST_F(TextFieldTest, WithoutARunningEngineTheCaretTimerStaysInRange) {
    vnfFreeTimer(KELTRA::timer);
    KELTRA::timer = -1;
    for (int frame = 0; frame < 5; ++frame) {
        field.manageKey(0);
        field.render(nullptr);
        EXPECT_EQ(field.caretTimer, 0.0f);
    }
    field.caretTimer = nan();
    field.manageKey(0);
    field.render(nullptr);
    EXPECT_EQ(field.caretTimer, 0.0f);
}

// The button shows the caption and the field draws it once more.
TEST_F(TextFieldTest, TextIsDrawnByTheButtonAndByTheField) {
    type("abc");
    field.render(nullptr);
    EXPECT_EQ(strings(), 2);
    EXPECT_EQ(glyphsDrawn(), 6);
    EXPECT_THAT(textPlace(), ElementsAre(1, 1));
    field.setClickedStatus(true);
    field.render(nullptr);
    EXPECT_THAT(textPlace(), ElementsAre(2, 2));
    field.setCaption("1234567890ab");  // 192 pixels of 200
    GlRecorder::clear();
    field.render(nullptr);
    EXPECT_EQ(strings(), 1) << "within one character of the edge only the button draws";
}

TEST_F(TextFieldTest, TheInnerFrameLooksSunken) {
    field.setThickness(2);
    field.setColor(0.5f, 0.5f, 0.5f, 1.0f);
    field.render(nullptr);
    const std::vector<Quad> drawn = quads();
    ASSERT_EQ(drawn.size(), 1u + 2 * 16);
    EXPECT_EQ(GlRecorder::count("glTranslatex", {2 * 65536, 2 * 65536, 0}), 1);
    const Quad *inner = &drawn[17];
    EXPECT_THAT(inner[0].corners, ElementsAre(1, 0, 195, 1));
    EXPECT_THAT(inner[2].corners, ElementsAre(1, 16, 195, 15));
    const float factors[8] = {0.7f, 0.7f, 1.3f, 1.3f, 0.4f, 1.0f, 1.0f, 1.6f};
    for (int piece = 0; piece < 8; ++piece) EXPECT_NEAR(inner[piece].color[0], 0.5f * factors[piece], 1e-4f);
    EXPECT_EQ(field.sizeX, 200);
    EXPECT_EQ(field.sizeY, 20);
    EXPECT_EQ(GlRecorder::count("glDisable", {GL_SCISSOR_TEST}),
              GlRecorder::count("glEnable", {GL_SCISSOR_TEST}));
}

TEST_F(TextFieldTest, IsClippedToItsWindowThroughout) {
    KTWINDOW window;
    field.link(&window);
    field.setCaption("abc");
    field.render(nullptr);
    bool clipped = false;
    int drawnUnclipped = 0;
    for (const Call &call : GlRecorder::calls()) {
        if (call.name == "glEnable" && call.arguments[0] == GL_SCISSOR_TEST) clipped = true;
        if (call.name == "glDisable" && call.arguments[0] == GL_SCISSOR_TEST) clipped = false;
        if (call.name.rfind("glDraw", 0) == 0 && !clipped) ++drawnUnclipped;
    }
    EXPECT_EQ(drawnUnclipped, 0);
    EXPECT_FALSE(KTOPENGL::scissor);
}

TEST_F(TextFieldTest, AHiddenFieldDrawsNothing) {
    field.setCaption("abc");
    field.setDisplayStatus(false);
    field.manageKey(0);
    EXPECT_TRUE(field.render(nullptr));
    EXPECT_TRUE(quads().empty());
    EXPECT_EQ(strings(), 0);
    EXPECT_FALSE(field.focused);
}

TEST_F(TextFieldTest, ACopyCarriesTheCaret) {
    type("abc");
    field.caretTimer = 0.5f;
    KTTEXTFIELD copy(field), assigned;
    assigned = field;
    EXPECT_TRUE(copy.focused && assigned.focused);
    EXPECT_EQ(copy.caretTimer + assigned.caretTimer, 1.0f);
    EXPECT_STREQ(assigned.getCaption(), "abc");
}

}  // namespace
}  // namespace keltra::test
