// SPDX-License-Identifier: Zlib
#include <keltra/label.h>

#include <climits>
#include <string>

#include "tests/gui/gui_fixture.h"

namespace keltra::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class LabelTest : public GuiTest {
   protected:
    KTLABEL label;
};

TEST_F(LabelTest, StartsEmpty) {
    EXPECT_EQ(label.getName(), "[label " + std::to_string(label.getId()) + "]");
    EXPECT_EQ(label.getType(), unsigned(KT_LABEL));
    EXPECT_STREQ(label.text, "");
    EXPECT_EQ(label.font, nullptr);
    EXPECT_FALSE(label.getCheckStatus());
}

TEST_F(LabelTest, WithoutAFontItTakesNoText) {
    EXPECT_FALSE(label.write("text"));
    EXPECT_STREQ(label.text, "");
    label.setFont(font);
    EXPECT_TRUE(label.write("old"));
    EXPECT_FALSE(label.write(nullptr));
    label.setFont(nullptr);
    EXPECT_FALSE(label.write("new"));
    EXPECT_STREQ(label.text, "old");
}

TEST_F(LabelTest, FormatsItsTextAndReplacesIt) {
    label.setFont(font);
    EXPECT_TRUE(label.write("%d of %s%%", 7, "9"));
    EXPECT_STREQ(label.text, "7 of 9%");
    EXPECT_TRUE(label.write(""));
    EXPECT_STREQ(label.text, "");
}

TEST_F(LabelTest, LongTextEndsInsideTheArray) {
    label.setFont(font);
    EXPECT_TRUE(label.write("%s", std::string(5000, 'x').c_str()));
    EXPECT_EQ(std::string(label.text), std::string(255, 'x'));
    font->setCharSizeX(100000);  // every character takes a line of its own
    EXPECT_TRUE(label.write("%s", std::string(255, 'y').c_str()));
    EXPECT_EQ(std::string(label.text).size(), 255u);
    font->setCharSizeX(UINT_MAX);
    EXPECT_TRUE(label.write("%s", std::string(255, ' ').c_str()));
}

TEST_F(LabelTest, DrawsItsTextOnly) {
    label.setFont(font);
    label.write("three");
    EXPECT_TRUE(label.render(nullptr));
    EXPECT_EQ(strings(), 1);
    EXPECT_EQ(glyphsDrawn(), 5);
    EXPECT_THAT(quads(), IsEmpty());
    EXPECT_THAT(textPlace(), ElementsAre(0, 0));
    EXPECT_THAT(scissors(), IsEmpty()) << "without a window nothing is clipped, and no rectangle is set";
    EXPECT_EQ(GlRecorder::count("glEnable", {GL_SCISSOR_TEST}), 0);
}

TEST_F(LabelTest, TextIsNoFormat) {
    label.setFont(font);
    label.write("%s", "%s%n%d");
    label.render(nullptr);
    EXPECT_EQ(glyphsDrawn(), 6);
}

TEST_F(LabelTest, IsClippedToItsWindow) {
    KTWINDOW window;
    window.setPosition(20.0f, 30.0f);
    label.link(&window);
    label.setFont(font);
    label.write("text");
    label.render(nullptr);
    EXPECT_THAT(scissors(), ElementsAre(ElementsAre(20, 320 - 30 - 128, 128, 128)));
    EXPECT_EQ(GlRecorder::count("glEnable", {GL_SCISSOR_TEST}), 1);
    EXPECT_EQ(GlRecorder::count("glDisable", {GL_SCISSOR_TEST}), 1);
    GlRecorder::clear();
    label.setScissorStatus(false);
    label.render(nullptr);
    EXPECT_THAT(scissors(), IsEmpty());
    EXPECT_EQ(strings(), 1);
}

TEST_F(LabelTest, AHiddenLabelDrawsNothing) {
    label.setFont(font);
    label.write("text");
    label.setDisplayStatus(false);
    EXPECT_TRUE(label.render(nullptr));
    EXPECT_EQ(strings(), 0);
}

TEST_F(LabelTest, ADestroyedFontIsForgotten) {
    label.setFont(font);
    label.write("text");
    KTLABEL copy(label);
    EXPECT_STREQ(copy.text, "text");
    delete font;
    EXPECT_EQ(label.font, nullptr);
    EXPECT_EQ(copy.font, nullptr);
    EXPECT_TRUE(label.render(nullptr));
    EXPECT_EQ(strings(), 0);
}

}  // namespace
}  // namespace keltra::test
