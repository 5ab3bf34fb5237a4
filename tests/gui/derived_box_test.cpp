// SPDX-License-Identifier: Zlib
// Boxes of classes that an application derives, under type codes of their own.

#include "tests/gui/gui_fixture.h"

namespace keltra::test {
namespace {

class Gauge : public KTBOX {
   public:
    explicit Gauge(unsigned int code) {
        type = code;
        setCheckStatus(true);
    }
};

class DerivedBoxTest : public GuiTest, public ::testing::WithParamInterface<unsigned int> {};

TEST_P(DerivedBoxTest, IsDrawnInItsLayer) {
    Gauge gauge(GetParam());
    KTBOX box;
    gauge.setForemost();
    list({&gauge, &box});
    EXPECT_EQ(KTELEMENT::elementPointer[0]->getNode(), &box);
    EXPECT_EQ(KTELEMENT::elementPointer[1]->getNode(), &gauge);
}

TEST_P(DerivedBoxTest, IsRaisedWithTheWindowAroundIt) {
    KTWINDOW window;
    Gauge gauge(GetParam());
    gauge.link(&window);
    const KTBOX other;
    window.setForemost();
    EXPECT_GT(gauge.getForemostTimeStamp(), other.getForemostTimeStamp());
    EXPECT_GT(gauge.getForemostTimeStamp(), window.getForemostTimeStamp());
}

TEST_P(DerivedBoxTest, IsFoundUnderThePointerAndHeld) {
    KTBOX behind;
    behind.setCheckStatus(true);
    Gauge gauge(GetParam());
    list({&behind, &gauge});
    point(10, 10, 1);
    EXPECT_TRUE(over);
    EXPECT_TRUE(gauge.isClicked());
    EXPECT_FALSE(behind.isClicked());
    point(10, 10, 0);
    EXPECT_FALSE(gauge.isClicked());
}

TEST_P(DerivedBoxTest, CountsAsContentsOfItsWindow) {
    KTWINDOW window;
    Gauge gauge(GetParam());
    gauge.setSizes(10, 500);
    gauge.link(&window);
    window.updateScroll();
    EXPECT_EQ(window.contentHeight, 500);
}

INSTANTIATE_TEST_SUITE_P(TypeCodes, DerivedBoxTest, ::testing::Values(KT_CUSTOM, KT_SOUND, 19u, 1000u));

TEST_F(GuiTest, APlainNodeWithTheCodeOfAWidgetIsNoBox) {
    KTBUTTON button;
    KTNODE node;
    node = button;
    for (unsigned int code = KT_BOX; code <= KT_CUSTOM; ++code) {
        node.type = code;
        list({&node});
        point(10, 10, 1);
        EXPECT_FALSE(over) << code;
        point(10, 10, 0);
    }
}

TEST_F(GuiTest, OnlyWindowsAreFolded) {
    KTWINDOW window;
    EXPECT_FALSE(window.isFolded());
    window.minmaximize();
    EXPECT_TRUE(window.isFolded());
    KTWINDOW copy(window);
    EXPECT_TRUE(copy.isFolded());
    copy.maximized = true;
    EXPECT_FALSE(copy.isFolded());
    const KTNODE node(window);
    KTNODE assigned;
    assigned = window;
    EXPECT_FALSE(node.isFolded()) << "a plain node shows its children whatever it was copied from";
    EXPECT_FALSE(assigned.isFolded());
}

}  // namespace
}  // namespace keltra::test
