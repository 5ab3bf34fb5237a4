// SPDX-License-Identifier: Zlib
// docs/interface.md: scrolling.

#include <cmath>

#include "tests/docs/interface_fixture.h"

namespace keltra::test {
namespace {

class ScrollClaims : public InterfaceClaims {
   protected:
    KTWINDOW *window(int lines, bool endsWithLineFeed) {
        KTWINDOW *added = add<KTWINDOW>(0, 19);
        added->setSizes(128, 100);
        added->setFont(font);
        added->setCaption("");
        for (int i = 0; i < lines; ++i) added->write(i + 1 < lines || endsWithLineFeed ? "a\n" : "a");
        added->format();
        return added;
    }
    /// Top of the text that was drawn last.
    static int textTop() { return KTFONT::fontCachedVertex[5] / 65536; }
    void drawSome(int frames) {
        for (int i = 0; i < frames; ++i) draw();
    }
};

TEST_F(ScrollClaims, AMeasuredWindowScrollsToItsEndAndRests) {
    KTWINDOW *journal = window(20, true);
    KTNODE *label = add<KTLABEL>(10, 10, journal);
    journal->updateScroll();
    journal->scrollBar->setValue(1.0f);
    drawSome(2);
    const float place = label->getPosition().y;
    for (int i = 0; i < 20; ++i) {
        draw();
        EXPECT_EQ(label->getPosition().y, place);
        EXPECT_EQ(textTop(), 100 - 20 * 16);
    }
}

TEST_F(ScrollClaims, AnUnmeasuredOneWithLabelsFlickers) {
    KTWINDOW *journal = window(20, true);
    KTNODE *label = add<KTLABEL>(10, 10, journal);
    journal->scrollBar->setValue(1.0f);
    draw();
    EXPECT_EQ(label->getPosition().y, 110.0f) << "down by the window's height";
    drawSome(100);
    const float place = label->getPosition().y;
    draw();
    EXPECT_NE(label->getPosition().y, place);
    draw();
    EXPECT_EQ(label->getPosition().y, place);
}

TEST_F(ScrollClaims, TextAndChildrenFollowInTheNextFrame) {
    KTWINDOW *journal = window(20, true);
    KTBUTTON *child = add<KTBUTTON>(10, 50, journal);
    child->setCaption("");
    draw();
    journal->scrollBar->setValue(1.0f);
    draw();
    EXPECT_EQ(textTop(), 0);
    EXPECT_EQ(child->getCachedMatrix()->getTranslation().y, 19.0f + 50.0f);
    draw();
    EXPECT_EQ(textTop(), -220);
    EXPECT_EQ(child->getCachedMatrix()->getTranslation().y, 19.0f + 50.0f - 220.0f);
}

TEST_F(ScrollClaims, TheLastLineIsInReachOnlyWithALineFeedBehindIt) {
    for (bool lineFeed : {false, true}) {
        KTWINDOW *journal = window(20, lineFeed);
        journal->updateScroll();
        journal->scrollBar->setValue(1.0f);
        drawSome(3);
        const int lastLine = textTop() + 19 * 16;
        EXPECT_EQ(lastLine, lineFeed ? 100 - 16 : 100) << "the body is 100 pixels high";
        delete journal;
    }
}

// docs/formats/gui.md: `size` before `write`.
TEST_F(ScrollClaims, LinesAreBrokenAtTheWidthOfTheMoment) {
    KTWINDOW *journal = add<KTWINDOW>(0, 19);
    journal->setFont(font);
    journal->write("aaa bbb");
    journal->setSizes(64, 100);
    journal->format();
    EXPECT_STREQ(journal->formattedText, "aaa\nbbb");
    journal->setSizes(200, 100);
    EXPECT_STREQ(journal->formattedText, "aaa\nbbb");
}

}  // namespace
}  // namespace keltra::test
