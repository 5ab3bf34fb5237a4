// SPDX-License-Identifier: Zlib
// Parts of windows and scroll bars: pointers to destroyed ones are cleared, at a cost that does not grow with
// the number of boxes.

#include "tests/gui/gui_fixture.h"
#include "tests/support/cpu_time.h"

namespace keltra::test {
namespace {

TEST_F(GuiTest, ThousandsOfWindowsAreReleased) {
    for (int i = 0; i < 16000; ++i) new KTWINDOW;
    const CpuTime time;
    EXPECT_TRUE(KTNODE::cleanUp());
    EXPECT_LT(time.seconds(), kLongestSeconds);
}

TEST_F(GuiTest, APartIsForgottenByItsWindowAndByCopies) {
    KTWINDOW window;
    const KTWINDOW copy(window);
    KTWINDOW assigned;
    KTBUTTON *ownTitle = assigned.getTitleBar();
    assigned = window;
    EXPECT_EQ(assigned.getTitleBar(), window.getTitleBar());
    delete window.getTitleBar();
    EXPECT_EQ(window.getTitleBar(), nullptr);
    EXPECT_EQ(copy.getTitleBar(), nullptr);
    EXPECT_EQ(assigned.getTitleBar(), nullptr);
    EXPECT_STREQ(ownTitle->getCaption(), ownTitle->getName()) << "its own one still lives";
    delete window.scrollBar;
    EXPECT_EQ(copy.scrollBar, nullptr);
}

TEST_F(GuiTest, ACopyOutlivesTheWindowWhosePartsItShows) {
    auto window = std::make_unique<KTWINDOW>();
    auto bar = std::make_unique<KTHSCROLLBAR>();
    KTWINDOW copy(*window);
    KTHSCROLLBAR barCopy(*bar), barAssigned;
    barAssigned = *bar;
    window.reset();
    bar.reset();
    EXPECT_EQ(copy.getTitleBar(), nullptr);
    EXPECT_EQ(copy.scrollBar, nullptr);
    EXPECT_EQ(barCopy.getCursor(), nullptr);
    EXPECT_EQ(barAssigned.getCursor(), nullptr);
}

}  // namespace
}  // namespace keltra::test
