// SPDX-License-Identifier: Zlib
// docs/interface.md: what the pen does, and what the calls return.

#include "tests/docs/document.h"
#include "tests/docs/interface_fixture.h"

namespace keltra::test {
namespace {

using ::testing::ElementsAreArray;

class PenClaims : public InterfaceClaims {
   protected:
    KTBUTTON *button(KT_BUTTON_EVENT kind) {
        KTBUTTON *added = add<KTBUTTON>(20, 20);
        added->setEventType(kind);
        return added;
    }
    /// The results of a press at (30, 30), in the order of the table's columns.
    std::vector<bool> press() {
        draw();
        std::vector<bool> results;
        for (int pressed : {0, 1, 1, 1, 0}) results.push_back(pen(30, 30, pressed));
        return results;
    }
    static std::vector<bool> row(const char *first) {
        for (const auto &cells : readDocument("docs/interface.md").table("## Presses on the scene behind")) {
            if (cells[0] != first) continue;
            std::vector<bool> results;
            for (std::size_t i = 1; i < cells.size(); ++i) results.push_back(cells[i] == "true");
            return results;
        }
        ADD_FAILURE() << "no such row: " << first;
        return {};
    }
    static std::vector<bool> widgets() {
        return row("a normal or inverted button, a title bar, a window, a field");
    }
};

TEST_F(PenClaims, AButtonHoldsThePenUntilItIsReleased) {
    for (KT_BUTTON_EVENT kind : {KT_BUTTON_NORMAL, KT_BUTTON_INVERTED}) {
        KTBUTTON *pressed = button(kind);
        EXPECT_THAT(press(), ElementsAreArray(widgets()));
        delete pressed;
    }
}

TEST_F(PenClaims, SoDoATitleBarAWindowAndAField) {
    KTNODE *pressed = add<KTWINDOW>(0, 40);  // the title bar is at 21
    EXPECT_THAT(press(), ElementsAreArray(widgets()));
    delete pressed;
    pressed = add<KTWINDOW>(0, 19);
    EXPECT_THAT(press(), ElementsAreArray(widgets()));
    delete pressed;
    add<KTTEXTFIELD>(20, 20);
    EXPECT_THAT(press(), ElementsAreArray(widgets()));
}

TEST_F(PenClaims, ASwitchHasThePenForOneCall) {
    button(KT_BUTTON_SWITCH);
    EXPECT_THAT(press(), ElementsAreArray(row("a switch")));
}

TEST_F(PenClaims, APressBesideAllWidgetsIsNoWidgets) {
    button(KT_BUTTON_NORMAL)->setPosition(100, 100);
    EXPECT_THAT(press(), ElementsAreArray(row("no widget")));
    EXPECT_FALSE(pen(30, 30, 1));
    EXPECT_FALSE(pen(110, 110, 1)) << "it slides over a button";
    EXPECT_FALSE(pen(110, 110, 0));
    EXPECT_TRUE(pen(110, 110, 1));
    EXPECT_TRUE(pen(30, 30, 1)) << "it slides off";
}

// The code of the page.
TEST_F(PenClaims, TheSceneGetsExactlyThePressesBesideWidgets) {
    button(KT_BUTTON_NORMAL);
    button(KT_BUTTON_SWITCH)->setPosition(100, 20);
    draw();
    int turned = 0;
    bool wasPressed = false, sceneHasPen = false;
    const auto frame = [&](int x, int y, int pressed) {
        const bool onWidget = pen(x, y, pressed);
        if (pressed && !wasPressed) sceneHasPen = !onWidget;
        if (sceneHasPen && pressed) ++turned;
        wasPressed = pressed != 0;
    };
    for (int x : {30, 110}) {
        for (int pressed : {0, 1, 1, 1, 0, 0}) frame(x, 30, pressed);
        for (int pressed : {0, 1}) frame(x, 30, pressed);
        for (int pressed : {1, 1, 0}) frame(30, 200, pressed);  // slid off
        EXPECT_EQ(turned, 0) << x;
    }
    for (int pressed : {0, 1, 1}) frame(30, 200, pressed);
    for (int pressed : {1, 0, 0}) frame(30, 30, pressed);  // slid over a button
    EXPECT_EQ(turned, 3);
}

TEST_F(PenClaims, APlainBoxKeepsPressesOnlyWhenItIsChecked) {
    KTBOX *panel = add<KTBOX>(20, 20);
    draw();
    EXPECT_FALSE(pen(30, 30, 1));
    EXPECT_FALSE(pen(30, 30, 0));
    panel->setCheckStatus(true);
    EXPECT_TRUE(pen(30, 30, 1));
}

TEST_F(PenClaims, TheCursorOfAScrollBarReportsAndTheBarDoesNot) {
    KTHSCROLLBAR *bar = add<KTHSCROLLBAR>(50, 50);
    draw();
    EXPECT_FALSE(pen(52, 52, 1)) << "on the track";
    EXPECT_EQ(id, 0u);
    pen(52, 52, 0);
    EXPECT_TRUE(pen(82, 52, 1));
    EXPECT_TRUE(pen(92, 52, 1));
    EXPECT_EQ(id, 0u);
    EXPECT_FALSE(pen(92, 52, 0));
    EXPECT_EQ(id, bar->getCursor()->getId());
    EXPECT_GT(bar->getValue(), 0.5f);
}

TEST_F(PenClaims, OnlyAPressOnAnotherWidgetTakesTheFocus) {
    KTTEXTFIELD *field = add<KTTEXTFIELD>(20, 20);
    field->setFont(font);
    field->clear();
    field->setSizes(120, 20);
    add<KTBUTTON>(20, 100);
    draw();
    pen(30, 30, 1);
    pen(30, 30, 0, 'a');
    EXPECT_STREQ(field->getCaption(), "a");
    pen(200, 200, 1);
    pen(200, 200, 0, 'b');
    EXPECT_STREQ(field->getCaption(), "ab") << "beside all widgets";
    pen(30, 110, 1);
    pen(30, 110, 0, 'c');
    EXPECT_STREQ(field->getCaption(), "ab") << "on a button";
}

TEST_F(PenClaims, APressOnAWidgetDoesNotBringItsWindowToTheFront) {
    KTWINDOW *window = add<KTWINDOW>(0, 19);
    add<KTBUTTON>(10, 10, window)->setSizes(40, 20);
    draw();
    const long stamp = window->getForemostTimeStamp();
    pen(20, 34, 1);
    pen(20, 34, 0);
    EXPECT_EQ(window->getForemostTimeStamp(), stamp);
    pen(100, 100, 1);
    EXPECT_GT(window->getForemostTimeStamp(), stamp);
}

}  // namespace
}  // namespace keltra::test
