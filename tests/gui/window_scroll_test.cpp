// SPDX-License-Identifier: Zlib
#include <keltra/window.h>

#include <climits>

#include "tests/gui/window_fixture.h"

namespace keltra::test {
namespace {

TEST_F(WindowTest, TheScrollBarShowsWhenTheTextIsHigher) {
    fill(8);  // 128 pixels: not higher than the window
    window.updateScroll();
    EXPECT_EQ(window.contentHeight, 128);
    EXPECT_FALSE(window.scrollBar->getDisplayStatus());
    fill(16);
    window.updateScroll();
    EXPECT_EQ(window.contentHeight, 256);
    EXPECT_TRUE(window.scrollBar->getDisplayStatus() && window.scrollBar->getCursor()->getDisplayStatus());
    EXPECT_EQ(window.scrollBar->getCursor()->sizeY, 48) << "half of the track";
    fill(200);
    window.updateScroll();
    EXPECT_EQ(window.scrollBar->getCursor()->sizeY, 8) << "never shorter";
    EXPECT_EQ(window.scrollBar->getValue(), 0.0f) << "the cursor's centre stays";
}

TEST_F(WindowTest, ScrollingMovesTextAndChildren) {
    KTBUTTON button;
    KTWINDOW inner;
    KTNODE group;
    button.setPosition(0.0f, 10.0f);
    for (KTNODE *child : {static_cast<KTNODE *>(&button), static_cast<KTNODE *>(&inner), &group})
        child->link(&window);
    fill(16);
    window.render(nullptr);
    window.scrollBar->setValue(0.5f);
    window.render(nullptr);
    EXPECT_EQ(window.getScrollLine(), 64);
    EXPECT_EQ(button.position.y, -54.0f);
    EXPECT_EQ(group.position.y, -64.0f);
    EXPECT_EQ(inner.position.y, 19.0f) << "windows do not scroll";
    EXPECT_EQ(window.scrollBar->position.y, 16.0f);
    EXPECT_EQ(textPlace()[1], 0) << "the text follows in the next frame";
    window.render(nullptr);
    EXPECT_EQ(textPlace()[1], -64);
    EXPECT_EQ(button.position.y, -54.0f) << "moved once";
    window.scrollBar->setValue(0.0f);
    window.render(nullptr);
    EXPECT_EQ(button.position.y, 10.0f);
}

TEST_F(WindowTest, ContentsThatFitAreScrolledBack) {
    KTBUTTON button;
    button.setPosition(0.0f, 10.0f);
    button.link(&window);
    fill(16);
    window.render(nullptr);
    window.scrollBar->setValue(1.0f);
    window.render(nullptr);
    EXPECT_EQ(button.position.y, -118.0f);
    window.clear();
    window.render(nullptr);
    EXPECT_EQ(window.getScrollLine(), 0);
    EXPECT_EQ(button.position.y, 10.0f);
}

TEST_F(WindowTest, ChildrenMakeTheContentsHigher) {
    KTBUTTON button;
    button.link(&window);
    button.setPosition(0.0f, 150.0f);  // its bottom is at 214
    window.updateScroll();
    EXPECT_EQ(window.contentHeight, 214);
    KTLABEL label;
    label.setPosition(0.0f, 300.0f);
    label.link(&window);
    window.updateScroll();
    EXPECT_EQ(window.contentHeight, 316) << "a label counts as 16 pixels";
    KTWINDOW inner;
    inner.setPosition(0.0f, 900.0f);
    inner.link(&window);
    window.updateScroll();
    EXPECT_EQ(window.contentHeight, 316) << "a window counts nothing";
}

TEST_F(WindowTest, AScrolledOffsetAddsItsHundredthAsSlack) {
    KTBUTTON button;
    button.link(&window);
    button.setPosition(0.0f, 300.0f);
    window.previousScroll = window.scrollLine = 200;
    window.updateScroll();
    EXPECT_EQ(window.contentHeight, 2 + 64 + 200 + 300);
    button.unlink();
    KTLABEL label;
    label.link(&window);
    label.setPosition(0.0f, 300.0f);
    window.updateScroll();
    EXPECT_EQ(window.contentHeight, 2 + 200 + 300 + 16);
}

// A label is measured with this frame's offset, anything else with that of the frame before.
TEST_F(WindowTest, LabelsAndOthersAreMeasuredWithDifferentOffsets) {
    KTLABEL label;
    label.link(&window);
    label.setPosition(0.0f, 100.0f);
    window.lineCount = 150;
    window.scrollLine = 50;
    window.updateScroll();
    EXPECT_EQ(window.contentHeight, 116) << "50 + 100 + 16 exceeds 150";
    label.unlink();
    label.setPosition(0.0f, 100.0f);
    KTBOX box;
    box.setSizes(16, 16);
    box.setPosition(0.0f, 100.0f);
    box.link(&window);
    window.scrollLine = 50;
    window.previousScroll = 0;
    window.updateScroll();
    EXPECT_EQ(window.contentHeight, 150) << "16 + 100 + 0 does not";
}

TEST_F(WindowTest, OddContentsStayDefined) {
    KTBUTTON button;
    KTLABEL label;
    button.link(&window);
    label.link(&window);
    fill(3);
    for (float place : {nan(), 1e30f, -1e30f, 1e9f}) {
        button.setPosition(place, place);
        label.setPosition(place, place);
        for (int scroll : {INT_MIN, 0, INT_MAX}) {
            window.previousScroll = scroll;
            window.sizeY = scroll;
            EXPECT_TRUE(window.render(nullptr));
        }
    }
}

}  // namespace
}  // namespace keltra::test
