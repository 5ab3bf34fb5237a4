// SPDX-License-Identifier: Zlib
#include <keltra/button.h>

#include <string>

#include "tests/gui/gui_fixture.h"

namespace keltra::test {
namespace {

using ::testing::ElementsAre;

class ButtonTest : public GuiTest {
   protected:
    KTBUTTON button;
};

TEST_F(ButtonTest, StartsWithItsDefaults) {
    const std::string name = "[button " + std::to_string(button.getId()) + "]";
    EXPECT_EQ(button.getName(), name);
    EXPECT_EQ(button.getCaption(), name);
    EXPECT_EQ(button.getType(), unsigned(KT_BUTTON));
    EXPECT_EQ(button.getEventType(), KT_BUTTON_NORMAL);
    EXPECT_EQ(button.font, nullptr);
    EXPECT_TRUE(button.getCheckStatus());
    const R3XVECTOR4D color = button.getColor();
    EXPECT_TRUE(color.x == 0.8f && color.y == 0.3f && color.z == 0.0f && color.w == 0.9f);
}

TEST_F(ButtonTest, CaptionsOf256CharactersAreRefused) {
    button.setCaption("old");
    button.setCaption(std::string(256, 'c').c_str());
    button.setCaption(nullptr);
    EXPECT_STREQ(button.getCaption(), "old");
    button.setCaption(std::string(255, 'c').c_str());
    EXPECT_EQ(button.getCaption(), std::string(255, 'c'));
}

TEST_F(ButtonTest, TheCaptionSinksWithTheBevel) {
    button.setFont(font);
    button.setCaption("abc");
    draw({&button});
    EXPECT_EQ(strings(), 1);
    EXPECT_EQ(glyphsDrawn(), 3);
    EXPECT_THAT(textPlace(), ElementsAre(1, 1));
    button.setClickedStatus(true);
    draw({&button});
    EXPECT_THAT(textPlace(), ElementsAre(2, 2));
}

TEST_F(ButtonTest, ACaptionMustBeNarrowerThanTheButton) {
    button.setFont(font);
    button.setCaption("1234");
    button.setSizes(65, 20);
    button.render(nullptr);
    EXPECT_EQ(glyphsDrawn(), 4);
    button.setSizes(64, 20);
    GlRecorder::clear();
    button.render(nullptr);
    EXPECT_EQ(strings(), 0) << "neither the caption nor '[...]' fits";
    button.setCaption("123456");
    button.setSizes(81, 20);
    GlRecorder::clear();
    button.render(nullptr);
    EXPECT_EQ(glyphsDrawn(), 5) << "'[...]'";
    EXPECT_THAT(textPlace(), ElementsAre(1, 1));
    button.setSizes(-1, 20);
    GlRecorder::clear();
    button.render(nullptr);
    EXPECT_EQ(strings(), 0);
}

TEST_F(ButtonTest, AnEmptyCaptionAndNoFontDrawTheBoxOnly) {
    button.setFont(font);
    button.setCaption("");
    button.render(nullptr);
    button.setFont(nullptr);
    button.setCaption("text");
    button.render(nullptr);
    EXPECT_EQ(strings(), 0);
    EXPECT_EQ(quads().size(), 2 * 25u);
}

TEST_F(ButtonTest, TheScissorGoesOnAndOffForTheCaption) {
    button.setFont(font);
    button.setCaption("abc");
    button.render(nullptr);
    EXPECT_EQ(GlRecorder::count("glEnable", {GL_SCISSOR_TEST}), 1);
    EXPECT_EQ(GlRecorder::count("glDisable", {GL_SCISSOR_TEST}), 1);
    EXPECT_FALSE(KTOPENGL::scissor);
    GlRecorder::clear();
    button.setScissorStatus(false);
    button.render(nullptr);
    EXPECT_EQ(GlRecorder::count("glEnable", {GL_SCISSOR_TEST}), 0);
    EXPECT_TRUE(scissors().empty());
}

TEST_F(ButtonTest, AHiddenButtonDrawsNothingAndSaysTrue) {
    button.setFont(font);
    button.setDisplayStatus(false);
    EXPECT_TRUE(button.render(nullptr));
    EXPECT_TRUE(quads().empty());
    EXPECT_EQ(strings(), 0);
}

TEST_F(ButtonTest, ACopyCarriesCaptionFontAndKind) {
    button.setFont(font);
    button.setCaption("abc");
    button.setEventType(KT_BUTTON_SWITCH);
    KTBUTTON copy(button), assigned;
    assigned = button;
    for (const KTBUTTON *other : {&copy, &assigned}) {
        EXPECT_STREQ(other->getCaption(), "abc");
        EXPECT_EQ(other->font, font);
        EXPECT_EQ(other->getEventType(), KT_BUTTON_SWITCH);
    }
    KTFONT::cleanUp();
    EXPECT_EQ(button.font, nullptr);
    EXPECT_EQ(copy.font, nullptr);
    EXPECT_EQ(assigned.font, nullptr);
}

}  // namespace
}  // namespace keltra::test
