// SPDX-License-Identifier: Zlib
#include <climits>

#include "tests/gui/gui_fixture.h"

namespace keltra::test {
namespace {

using ::testing::ElementsAre;

class GuiEventsTest : public GuiTest {
   protected:
    GuiEventsTest() {
        button.setPosition(10.0f, 10.0f);
        other.setPosition(150.0f, 10.0f);
    }

    KTBUTTON button, other;
};

TEST_F(GuiEventsTest, WithoutAListNothingIsFound) {
    EXPECT_EQ(point(20, 20, 1), 0u);
    EXPECT_FALSE(over);
}

TEST_F(GuiEventsTest, TheIdentifierMayBeLeftOut) {
    list({&button});
    EXPECT_TRUE(KTELEMENT::manageGUIEvents(0, 20, 20, 1, 0, nullptr));
    EXPECT_FALSE(KTELEMENT::manageGUIEvents(0, 20, 20, 0, 0, nullptr));
    button.setEventType(KT_BUTTON_SWITCH);
    EXPECT_TRUE(KTELEMENT::manageGUIEvents(0, 20, 20, 1, 0, nullptr));
    EXPECT_TRUE(button.isClicked());
}

TEST_F(GuiEventsTest, ANormalButtonReportsOnRelease) {
    list({&button});
    EXPECT_EQ(point(20, 20, 0), 0u);
    EXPECT_TRUE(over) << "the pointer is over it";
    EXPECT_EQ(point(20, 20, 1), 0u);
    EXPECT_TRUE(over);
    EXPECT_TRUE(button.isClicked());
    EXPECT_EQ(point(21, 20, 1), 0u);
    EXPECT_EQ(point(21, 20, 0), button.getId());
    EXPECT_FALSE(button.isClicked());
    EXPECT_FALSE(over) << "a release picks nothing";
    EXPECT_EQ(point(21, 20, 0), 0u);
}

TEST_F(GuiEventsTest, SlidingOffCancelsAPress) {
    list({&button, &other});
    point(20, 20, 1);
    point(120, 120, 1);
    EXPECT_FALSE(button.isClicked());
    EXPECT_TRUE(over) << "it is still held";
    EXPECT_EQ(point(120, 120, 0), 0u);

    point(120, 120, 0);
    point(20, 20, 1);
    point(160, 20, 1);
    EXPECT_FALSE(other.isClicked()) << "the button that was pressed stays the target";
    point(20, 20, 1);
    EXPECT_TRUE(button.isClicked()) << "and back on it";
    EXPECT_EQ(point(20, 20, 0), button.getId());
}

TEST_F(GuiEventsTest, APressBesideEveryWidgetPicksNoneOnItsWay) {
    list({&button});
    EXPECT_EQ(point(120, 120, 1), 0u);
    EXPECT_FALSE(over);
    EXPECT_EQ(point(20, 20, 1), 0u);
    EXPECT_FALSE(over);
    EXPECT_FALSE(button.isClicked());
    EXPECT_EQ(point(20, 20, 0), 0u);
    point(20, 20, 1);
    EXPECT_TRUE(button.isClicked());
}

TEST_F(GuiEventsTest, AnInvertedButtonReportsOncePerPress) {
    button.setEventType(KT_BUTTON_INVERTED);
    list({&button});
    EXPECT_EQ(point(20, 20, 1), button.getId());
    EXPECT_EQ(point(20, 20, 1), 0u);
    EXPECT_EQ(point(21, 20, 1), 0u);
    EXPECT_EQ(point(20, 20, 0), 0u);
    EXPECT_EQ(point(20, 20, 1), button.getId());
}

TEST_F(GuiEventsTest, ASwitchHeldForSeveralFramesTogglesOnce) {
    button.setEventType(KT_BUTTON_SWITCH);
    list({&button});
    EXPECT_EQ(point(20, 20, 1), button.getId());
    EXPECT_TRUE(button.isClicked());
    for (int frame = 0; frame < 3; ++frame) EXPECT_EQ(point(20, 20, 1), 0u);
    EXPECT_TRUE(button.isClicked());
    EXPECT_EQ(point(20, 20, 0), 0u);
    EXPECT_TRUE(button.isClicked()) << "it stays on";
    point(20, 20, 0);
    EXPECT_EQ(point(20, 20, 1), button.getId());
    EXPECT_FALSE(button.isClicked());
}

TEST_F(GuiEventsTest, TheForemostWidgetIsPicked) {
    other.setPosition(40.0f, 40.0f);
    list({&button, &other});
    point(50, 50, 1);
    EXPECT_TRUE(other.isClicked());
    EXPECT_FALSE(button.isClicked());
    point(50, 50, 0);
    button.setForemost();
    point(50, 50, 0);
    point(50, 50, 1);
    EXPECT_TRUE(button.isClicked());
    point(50, 50, 0);
    button.setDisplayStatus(false);
    point(50, 50, 1);
    EXPECT_TRUE(other.isClicked()) << "a hidden one is not found";
}

TEST_F(GuiEventsTest, TheFirstOfEqualStampsIsPickedAndNoneWithoutAStamp) {
    other.setPosition(10.0f, 10.0f);
    other.foremostTimeStamp = button.foremostTimeStamp;
    list({&button, &other});
    point(20, 20, 1);
    EXPECT_TRUE(button.isClicked());
    EXPECT_FALSE(other.isClicked());
    point(20, 20, 0);
    button.foremostTimeStamp = 0;
    other.foremostTimeStamp = -5;
    point(20, 20, 1);
    EXPECT_FALSE(over);
}

TEST_F(GuiEventsTest, NodesOfOtherKindsAreNotSearched) {
    KTLIGHT light;
    KTHELPER helper;
    KTNODE slice(button);
    list({&light, &helper, &slice});
    EXPECT_EQ(point(20, 20, 1), 0u);
    EXPECT_FALSE(over);
}

// --- dragging

TEST_F(GuiEventsTest, AMovableBoxIsDraggedWithinItsLimits) {
    KTBOX box;
    box.setCheckStatus(true);
    box.setStaticStatus(false);
    box.setPosition(30.0f, 30.5f);
    box.setLimits(0, 0, 100, 100);
    box.setLimitStatus(true);
    list({&box});
    point(40, 40, 1);
    EXPECT_EQ(box.position.x, 30.0f) << "a press does not move it";
    point(60, 42, 1);
    EXPECT_EQ(box.position.x, 36.0f);
    EXPECT_EQ(box.position.y, 32.5f);
    EXPECT_TRUE(box.isClicked());
    point(500, 500, 1);
    EXPECT_TRUE(box.isClicked()) << "wherever the pointer is";
    EXPECT_EQ(box.position.x, 36.0f);
    box.setLimitStatus(false);
    point(400, 500, 1);
    EXPECT_EQ(box.position.x, -64.0f);
    EXPECT_EQ(point(400, 500, 0), 0u);
    EXPECT_FALSE(box.isClicked());
}

TEST_F(GuiEventsTest, AStaticBoxStays) {
    list({&button});
    point(20, 20, 1);
    point(30, 30, 1);
    EXPECT_EQ(button.position.x, 10.0f);
}

TEST_F(GuiEventsTest, PointersOfAnySizeStayDefined) {
    button.setStaticStatus(false);
    list({&button});
    for (bool landscape : {false, true}) {
        KTSETTINGS::landscape = landscape;
        point(20, 20, 1);
        for (int x : {INT_MIN, INT_MAX, 0, INT_MIN}) point(x, x, INT_MIN);
        point(0, INT_MAX, 0);
        button.setPosition(nan(), 10.0f);
    }
}

// --- windows

class WindowEventsTest : public GuiEventsTest {
   protected:
    WindowEventsTest() {
        window.setPosition(20.0f, 40.0f);
        second.setPosition(80.0f, 60.0f);
        window.setCaption("a");
        second.setCaption("b");
    }
    void show() { list({&window, &second}); }

    KTWINDOW window, second;
};

TEST_F(WindowEventsTest, AClickOnTheTitleFoldsAndUnfolds) {
    show();
    point(25, 30, 1);
    EXPECT_TRUE(window.getTitleBar()->isClicked());
    EXPECT_EQ(point(25, 30, 0), 0u);
    EXPECT_TRUE(window.isMinimized());
    EXPECT_STREQ(window.getTitleBar()->getCaption(), "[+] a");
    show();
    point(25, 60, 1);
    EXPECT_FALSE(over) << "the folded body is not there";
    point(25, 60, 0);
    point(25, 30, 1);
    point(25, 30, 0);
    EXPECT_FALSE(window.isMinimized());
    EXPECT_STREQ(window.getTitleBar()->getCaption(), "a");
}

TEST_F(WindowEventsTest, AFoldedBodyThatIsStillInTheListIsSkipped) {
    show();
    window.minmaximize();
    point(25, 60, 1);
    EXPECT_FALSE(over);
}

TEST_F(WindowEventsTest, DraggingTheTitleMovesTheWindowAndDoesNotFold) {
    show();
    point(25, 30, 1);
    point(35, 25, 1);
    EXPECT_EQ(window.position.x, 30.0f);
    EXPECT_EQ(window.position.y, 35.0f);
    EXPECT_EQ(window.getTitleBar()->position.x, 0.0f);
    point(35, 25, 0);
    EXPECT_FALSE(window.isMinimized());
    point(35, 25, 0);
    point(35, 25, 1);
    point(35, 25, 0);
    EXPECT_TRUE(window.isMinimized()) << "a later click folds again";
}

TEST_F(WindowEventsTest, ATitleReleasedOutsideDoesNotFold) {
    show();
    point(25, 30, 1);
    window.getTitleBar()->setStaticStatus(true);
    point(200, 300, 0);
    EXPECT_FALSE(window.isMinimized());
}

TEST_F(WindowEventsTest, TheTitlesLimitsClampTheWindow) {
    KTBUTTON &title = *window.getTitleBar();
    title.setLimits(-10, -19, 200, 100);
    title.setLimitStatus(true);
    show();
    point(25, 30, 1);
    point(15, 5, 1);
    EXPECT_EQ(window.position.x, 10.0f);
    EXPECT_EQ(window.position.y, 40.0f) << "the title stands at its upper limit";
}

TEST_F(WindowEventsTest, APressBringsAWindowToTheFront) {
    KTBUTTON inside;
    inside.setPosition(80.0f, 60.0f);  // under the second window
    inside.link(&window);
    second.setForemost();
    show();
    point(110, 110, 1);
    EXPECT_TRUE(second.isClicked());
    point(110, 110, 0);
    point(30, 60, 1);  // the first window's body
    EXPECT_GT(window.getForemostTimeStamp(), second.getForemostTimeStamp());
    EXPECT_GT(inside.getForemostTimeStamp(), second.scrollBar->getForemostTimeStamp());
    EXPECT_GT(inside.getForemostTimeStamp(), window.getForemostTimeStamp());
    point(30, 60, 0);
    show();
    EXPECT_EQ(KTELEMENT::elementPointer[0]->getNode(), &second) << "drawn first now";
    point(110, 110, 1);
    EXPECT_TRUE(inside.isClicked());
    EXPECT_EQ(point(110, 110, 0), inside.getId());
    point(180, 50, 1);  // the second window's title
    EXPECT_GT(second.getForemostTimeStamp(), inside.getForemostTimeStamp());
}

TEST_F(WindowEventsTest, AWindowIsDraggedByItsBodyToo) {
    show();
    point(30, 70, 1);
    point(33, 77, 1);
    EXPECT_EQ(window.position.x, 23.0f);
    EXPECT_EQ(window.position.y, 47.0f);
}

TEST_F(WindowEventsTest, ATitleWithoutAWindowMovesItself) {
    KTBUTTON title;
    title.setEventType(KT_BUTTON_TITLE);
    title.setStaticStatus(false);
    list({&title});
    point(5, 5, 1);
    point(9, 5, 1);
    EXPECT_EQ(title.position.x, 4.0f);
    point(9, 5, 0);
    point(9, 5, 1);
    EXPECT_EQ(point(9, 5, 0), 0u);
}

TEST_F(WindowEventsTest, TheScrollBarScrollsByDragging) {
    window.setFont(font);
    for (int i = 0; i < 16; ++i) window.write("a\n");
    window.format();
    draw({&window});
    point(142, 57, 1);  // the cursor's upper end: its centre is at 56
    EXPECT_TRUE(window.scrollBar->getCursor()->isClicked());
    point(142, 57 + 48, 1);
    EXPECT_FLOAT_EQ(window.scrollBar->getValue(), 0.5f);
    draw({&window});
    EXPECT_EQ(window.getScrollLine(), 64);
}

// --- focus

class FocusTest : public GuiEventsTest {
   protected:
    void SetUp() override {
        GuiEventsTest::SetUp();
        field.setFont(font);
        field.setSizes(120, 20);
        field.setPosition(10.0f, 100.0f);
        field.clear();
    }
    void click(int x, int y) {
        point(x, y, 1);
        point(x, y, 0);
        point(x, y, 0);
    }

    KTTEXTFIELD field;
};

TEST_F(FocusTest, TheFieldThatWasPressedTakesTheKeys) {
    list({&button, &field});
    point(0, 0, 0, 'x');
    EXPECT_STREQ(field.getCaption(), "");
    point(20, 110, 1, 'a');
    EXPECT_STREQ(field.getCaption(), "") << "the press comes after the key";
    point(20, 110, 0, 'b');
    point(200, 300, 0, 'c');
    EXPECT_STREQ(field.getCaption(), "bc") << "wherever the pointer is";
    EXPECT_TRUE(field.focused);
    point(200, 300, 0, 8);
    EXPECT_STREQ(field.getCaption(), "b");
    click(200, 300);
    point(0, 0, 0, 'd');
    EXPECT_STREQ(field.getCaption(), "bd") << "a press beside every widget keeps the focus";
    click(20, 20);
    point(0, 0, 0, 'e');
    EXPECT_STREQ(field.getCaption(), "bd") << "another widget takes it away";
}

TEST_F(FocusTest, TheFocusGoesFromFieldToField) {
    KTTEXTFIELD second;
    second.setFont(font);
    second.setPosition(10.0f, 200.0f);
    second.clear();
    list({&field, &second});
    click(20, 110);
    click(20, 210);
    point(0, 0, 0, 'z');
    EXPECT_STREQ(field.getCaption(), "");
    EXPECT_STREQ(second.getCaption(), "z");
}

TEST_F(FocusTest, AFieldIsNotReported) {
    list({&field});
    EXPECT_EQ(point(20, 110, 1), 0u);
    EXPECT_EQ(point(20, 110, 0), 0u);
}

// --- landscape

TEST_F(GuiEventsTest, InLandscapeModeThePointerIsTurned) {
    KTSETTINGS::landscape = true;
    list({&button});
    // (x, y) is tested at (320 - y, x).
    point(15, 320 - 70, 1);
    EXPECT_TRUE(button.isClicked());
    point(15, 320 - 75, 1);
    EXPECT_FALSE(button.isClicked());
    button.setStaticStatus(false);
    point(20, 320 - 75, 1);
    EXPECT_EQ(button.position.x, 10.0f);
    EXPECT_EQ(button.position.y, 15.0f);
}

// --- destroyed widgets

TEST_F(GuiEventsTest, ADestroyedWidgetIsReleased) {
    auto *heap = new KTBUTTON;
    heap->setStaticStatus(false);
    list({heap, &button});
    point(5, 5, 1);
    point(6, 6, 1);
    delete heap;
    EXPECT_EQ(point(5, 5, 1), 0u);
    EXPECT_FALSE(over);
    EXPECT_EQ(point(5, 5, 0), 0u);
    point(20, 20, 1);
    EXPECT_EQ(point(20, 20, 0), button.getId());
}

TEST_F(FocusTest, ADestroyedFieldLosesTheFocus) {
    auto *heap = new KTTEXTFIELD;
    heap->setFont(font);
    list({heap});
    point(5, 5, 1);
    point(5, 5, 0, 'a');
    delete heap;
    point(5, 5, 0, 'b');
    list({&field});
    point(20, 110, 1);
    KTFONT::cleanUp();
    point(20, 110, 0, 'c');
    EXPECT_STREQ(field.getCaption(), "");
    KTNODE::cleanUp();
    point(20, 110, 0, 'd');
}

TEST_F(GuiEventsTest, ADestroyedWindowTakesItsHeldPartsAlong) {
    auto *window = new KTWINDOW;
    window->setPosition(0.0f, 100.0f);
    (new KTBUTTON)->link(window);
    list({window});
    point(5, 90, 1);
    EXPECT_TRUE(window->getTitleBar()->isClicked());
    delete window;
    point(9, 90, 1);
    point(9, 90, 0);
    EXPECT_FALSE(over);
}

TEST_F(GuiEventsTest, ANewStartForgetsEverything) {
    list({&button});
    point(20, 20, 1);
    KTELEMENT::free();
    ASSERT_TRUE(KTELEMENT::init(0));
    list({&button});
    EXPECT_EQ(point(20, 20, 0), 0u) << "nothing is held";
    EXPECT_TRUE(over);
}

}  // namespace
}  // namespace keltra::test
