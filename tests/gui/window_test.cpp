// SPDX-License-Identifier: Zlib
#include <keltra/window.h>

#include <climits>
#include <string>

#include "core/glbridge.h"
#include "tests/gui/window_fixture.h"
#include "tests/support/allocations.h"

namespace keltra::test {
namespace {

using ::testing::ElementsAre;

TEST_F(WindowTest, StartsWithItsDefaults) {
    EXPECT_EQ(window.getName(), "[window " + std::to_string(window.getId()) + "]");
    EXPECT_EQ(window.getType(), unsigned(KT_WINDOW));
    EXPECT_STREQ(window.getCaption(), "");
    EXPECT_EQ(window.sizeX, 128);
    EXPECT_EQ(window.sizeY, 128);
    EXPECT_TRUE(window.position.x == 0.0f && window.position.y == 19.0f);
    EXPECT_EQ(window.getThickness(), 2u);
    EXPECT_TRUE(window.getCheckStatus());
    EXPECT_FALSE(window.isStatic() || window.isMinimized());
    const R3XVECTOR4D color = window.getColor();
    EXPECT_TRUE(color.x == 0.0f && color.y == 0.0f && color.z == 0.6f && color.w == 0.9f);
    EXPECT_STREQ(window.text, "");
    EXPECT_EQ(window.getScrollLine() + window.previousScroll + window.contentHeight + window.lineCount, 0);
}

TEST_F(WindowTest, ItsFirstChildrenAreTitleBarAndScrollBar) {
    const KTBUTTON &title = *window.getTitleBar();
    const KTVSCROLLBAR &bar = *window.scrollBar;
    EXPECT_EQ(window.getChild(0), &title);
    EXPECT_EQ(window.getChild(1), &bar);
    EXPECT_EQ(title.getCaption(), "[button " + std::to_string(title.getId()) + "]");
    EXPECT_TRUE(title.position.x == 0.0f && title.position.y == -19.0f);
    EXPECT_EQ(title.sizeX, 128);
    EXPECT_EQ(title.sizeY, 19);
    EXPECT_EQ(title.getEventType(), KT_BUTTON_TITLE);
    EXPECT_FALSE(title.isStatic() || title.getScissorStatus());
    EXPECT_TRUE(bar.position.x == 120.0f && bar.position.y == 16.0f);
    EXPECT_EQ(bar.sizeY, 96);
    EXPECT_EQ(bar.getValue(), 0.0f);
}

TEST_F(WindowTest, SizesReachTitleBarAndScrollBar) {
    window.scrollBar->setValue(1.0f);
    window.setSizes(200, 100);
    EXPECT_EQ(window.getTitleBar()->sizeX, 200);
    EXPECT_EQ(window.getTitleBar()->sizeY, 19);
    EXPECT_TRUE(window.scrollBar->position.x == 192.0f && window.scrollBar->position.y == 16.0f);
    EXPECT_EQ(window.scrollBar->sizeY, 68);
    EXPECT_EQ(window.scrollBar->getValue(), 0.0f);
    EXPECT_TRUE(window.getSizes().x == 200.0f && window.getSizes().y == 100.0f);
    for (int size : {INT_MIN, 0, INT_MAX}) {
        window.setSizes(size, size);
        window.updateScroll();
        window.render(nullptr);
    }
}

TEST_F(WindowTest, TheCaptionIsThatOfTheTitleBar) {
    window.setCaption("title");
    window.setCaption(nullptr);
    window.setCaption(std::string(256, 't').c_str());
    EXPECT_STREQ(window.getTitleBar()->getCaption(), "title");
    EXPECT_STREQ(window.getCaption(), "");
    window.setFont(font);
    EXPECT_EQ(window.getTitleBar()->font, font);
    EXPECT_EQ(window.font, font);
}

// --- text

TEST_F(WindowTest, TextIsAppendedUntilItIsCleared) {
    EXPECT_FALSE(window.write(nullptr));
    EXPECT_TRUE(window.write("%d, ", 1));
    EXPECT_TRUE(window.write("%s", "two"));
    EXPECT_STREQ(window.text, "1, two");
    EXPECT_STREQ(window.formattedText, "") << "not formatted yet";
    EXPECT_FALSE(window.format()) << "without a font";
    window.setFont(font);
    EXPECT_TRUE(window.format());
    EXPECT_STREQ(window.formattedText, "1, two");
    window.lineCount = 5;
    window.clear();
    EXPECT_STREQ(window.text, "");
    EXPECT_EQ(window.lineCount, 0);
}

TEST_F(WindowTest, TextOf3968CharactersIsRefused) {
    EXPECT_FALSE(window.write("%s", std::string(3968, 'x').c_str()));
    EXPECT_STREQ(window.text, "");
    EXPECT_FALSE(window.write("%s", std::string(100000, 'x').c_str()));
    EXPECT_STREQ(window.text, "");
    EXPECT_TRUE(window.write("%s", std::string(3967, 'x').c_str()));
    EXPECT_FALSE(window.write("y"));
    EXPECT_TRUE(window.write("%s", ""));
    EXPECT_EQ(std::string(window.text), std::string(3967, 'x'));
}

TEST_F(WindowTest, WrappedTextEndsInsideTheArray) {
    window.setFont(font);
    window.write("%s", std::string(3967, 'x').c_str());
    for (int width : {0, -100, 16, 1000}) {
        window.sizeX = width;
        EXPECT_TRUE(window.format());
        EXPECT_LT(std::string(window.formattedText).size(), sizeof window.formattedText);
    }
}

TEST_F(WindowTest, TextIsWrappedToTheWidth) {
    window.setFont(font);
    window.setSizes(50, 100);
    window.write("aaa bbb");
    EXPECT_TRUE(window.format());
    EXPECT_STREQ(window.formattedText, "aaa\nbbb");
    EXPECT_EQ(window.lineCount, 16);
}

// --- folding

TEST_F(WindowTest, FoldingMarksTheTitle) {
    window.setCaption("ab");
    EXPECT_FALSE(window.minmaximize());
    EXPECT_TRUE(window.isMinimized());
    EXPECT_STREQ(window.getTitleBar()->getCaption(), "[+] ab");
    EXPECT_TRUE(window.minmaximize());
    EXPECT_STREQ(window.getTitleBar()->getCaption(), "ab");
    window.setCaption("");
    window.minmaximize();
    EXPECT_STREQ(window.getTitleBar()->getCaption(), "[+] ");
    window.minmaximize();
    EXPECT_STREQ(window.getTitleBar()->getCaption(), "");
}

TEST_F(WindowTest, UnfoldingTakesFourCharactersWhateverTheyAre) {
    window.minmaximize();
    window.setCaption("abc");
    window.minmaximize();
    EXPECT_STREQ(window.getTitleBar()->getCaption(), "abc") << "shorter than the mark";
    const std::string longTitle = "1234" + std::string(250, 't');
    window.setCaption(longTitle.c_str());
    window.minmaximize();
    EXPECT_EQ(window.getTitleBar()->getCaption(), longTitle) << "no room for the mark";
    window.minmaximize();
    EXPECT_EQ(window.getTitleBar()->getCaption(), std::string(250, 't'));
}

TEST_F(WindowTest, AFoldedWindowPassesItsTitleBarOnly) {
    KTBUTTON button;
    button.link(&window);
    window.setCaption("");
    KTELEMENT::reset();
    window.pass();
    EXPECT_EQ(KTELEMENT::getNumberOfPassedElements(), 5u) << "window, title bar, scroll bar, cursor, button";
    window.minmaximize();
    KTELEMENT::reset();
    window.pass();
    EXPECT_EQ(KTELEMENT::getNumberOfPassedElements(), 2u);
    EXPECT_EQ(KTELEMENT::element[1].getNode(), window.getTitleBar());
    draw({&window});
    EXPECT_EQ(quads().size(), 25u) << "the title bar";
    delete window.getTitleBar();
    KTELEMENT::reset();
    window.pass();
    EXPECT_EQ(KTELEMENT::getNumberOfPassedElements(), 1u);
}

// --- clipping

TEST_F(WindowTest, ClipsToItsBodyInPortraitMode) {
    KTNODE group;
    group.setPosition(5.0f, 6.0f);
    window.link(&group);
    window.setPosition(20.5f, 30.9f);
    window.setSizes(100, 50);
    window.enableScissor();
    EXPECT_THAT(scissors(), ElementsAre(ElementsAre(25, 320 - 36 - 50, 100, 50)));
    EXPECT_TRUE(KTOPENGL::scissor);
    window.enableScissor();
    EXPECT_EQ(GlRecorder::count("glEnable", {GL_SCISSOR_TEST}), 1) << "switched as cached";
    EXPECT_EQ(GlRecorder::count("glPushMatrix"), 2);
    EXPECT_EQ(GlRecorder::count("glPopMatrix"), 2);
    GlRecorder::clear();
    window.disableScissor();
    EXPECT_THAT(scissors(), ElementsAre(ElementsAre(0, 0, 240, 320)));
    EXPECT_FALSE(KTOPENGL::scissor);
}

TEST_F(WindowTest, ClipsToItsBodyInLandscapeMode) {
    KTSETTINGS::landscape = true;
    window.setPosition(20.0f, 30.0f);
    window.setSizes(100, 50);
    window.enableScissor();
    window.disableScissor();
    EXPECT_THAT(scissors(), ElementsAre(ElementsAre(30, 20, 50, 100), ElementsAre(0, 0, 320, 240)));
}

TEST_F(WindowTest, ClippingKeepsTheMatrixEvenOnAFullStack) {
    KT_glMatrixMode(GL_MODELVIEW);
    KT_glLoadIdentity();
    KT_glTranslatef(3.0f, 4.0f, 0.0f);
    for (int i = 0; i < 40; ++i) KT_glPushMatrix();
    window.enableScissor();
    float top[16];
    KT_glGetFloatv(0, top);
    EXPECT_EQ(top[12], 3.0f);
    for (int i = 0; i < 40; ++i) KT_glPopMatrix();
    KT_glLoadIdentity();
}

TEST_F(WindowTest, ClippingKeepsTheMatrixWhenNoLevelIsLeft) {
    KT_glMatrixMode(GL_MODELVIEW);
    KT_glLoadIdentity();
    KT_glTranslatef(3.0f, 4.0f, 0.0f);
    int levels = 0;
    while (pushMatrix()) ++levels;
    window.enableScissor();
    float top[16];
    KT_glGetFloatv(0, top);
    EXPECT_EQ(top[12], 3.0f);
    for (; levels > 0; --levels) popMatrix();
    KT_glLoadIdentity();
}

TEST_F(WindowTest, OddPlacesGiveARectangleThatTheGlTakes) {
    for (float place : {nan(), 1e30f, -1e30f, 1e9f})
        for (int size : {INT_MIN, -1, INT_MAX}) {
            window.setPosition(place, place);
            window.sizeX = window.sizeY = size;
            window.enableScissor();
        }
    for (const Box4 &box : scissors()) EXPECT_TRUE(box[2] >= 0 && box[3] >= 0);
}

TEST_F(WindowTest, AChildIsClippedAtTheWindowsEdge) {
    KTBUTTON button;
    button.setPosition(100.0f, 100.0f);
    button.link(&window);
    button.render(nullptr);
    EXPECT_THAT(scissors(), ElementsAre(ElementsAre(0, 320 - 19 - 128, 128, 128)));
    EXPECT_EQ(GlRecorder::count("glEnable", {GL_SCISSOR_TEST}), 2) << "for the box and for the caption";
    GlRecorder::clear();
    window.getTitleBar()->render(nullptr);
    EXPECT_TRUE(scissors().empty()) << "the title bar is not clipped";
}

// --- drawing

TEST_F(WindowTest, DrawsBodyAndText) {
    fill(0);
    EXPECT_TRUE(window.render(nullptr));
    EXPECT_EQ(quads().size(), 17u);
    EXPECT_EQ(strings(), 1);
    EXPECT_THAT(textPlace(), ElementsAre(0, 0));
    window.setClickedStatus(true);
    window.render(nullptr);
    EXPECT_THAT(textPlace(), ElementsAre(1, 1));
    EXPECT_FALSE(KTOPENGL::scissor);
}

TEST_F(WindowTest, AHiddenOrFoldedWindowDrawsNothing) {
    fill(0);
    window.minmaximize();
    EXPECT_TRUE(window.render(nullptr));
    window.minmaximize();
    window.setDisplayStatus(false);
    EXPECT_TRUE(window.render(nullptr));
    EXPECT_TRUE(quads().empty());
    EXPECT_EQ(strings(), 0);
}

// --- lifetime

TEST_F(WindowTest, AWindowOwnsItsParts) {
    const unsigned int before = KTNODE::getNumberOfNodes();
    auto other = std::make_unique<KTWINDOW>();
    EXPECT_EQ(KTNODE::getNumberOfNodes(), before + 4);
    KTWINDOW copy(*other);
    EXPECT_EQ(copy.getTitleBar(), other->getTitleBar());
    EXPECT_EQ(copy.scrollBar, other->scrollBar);
    other.reset();
    EXPECT_EQ(KTNODE::getNumberOfNodes(), before);
    EXPECT_EQ(copy.getTitleBar(), nullptr);
    EXPECT_EQ(copy.scrollBar, nullptr);
    copy.setCaption("text");
    copy.setSizes(10, 10);
    copy.setFont(font);
    EXPECT_TRUE(copy.updateScroll());
    EXPECT_FALSE(copy.minmaximize());
    EXPECT_TRUE(copy.render(nullptr));
    draw({&copy});
}

TEST_F(WindowTest, ACopyLeavesTheOriginalsPartsAlone) {
    {
        KTWINDOW copy(window), assigned;
        assigned = window;
        EXPECT_EQ(assigned.getTitleBar(), window.getTitleBar());
        assigned = *&assigned;
    }
    EXPECT_EQ(window.getChild(0), window.getTitleBar());
    EXPECT_EQ(window.getTitleBar()->sizeY, 19);
    draw({&window});
}

TEST_F(WindowTest, ACopyCarriesEveryField) {
    window.write("text");
    window.setFont(font);
    window.format();
    window.minmaximize();
    window.scrollLine = 1;
    window.previousScroll = 2;
    window.contentHeight = 3;
    window.lineCount = 4;
    KTWINDOW copy(window), assigned;
    assigned = window;
    for (const KTWINDOW *other : {&copy, &assigned}) {
        EXPECT_TRUE(other->isMinimized());
        EXPECT_STREQ(other->text, "text");
        EXPECT_STREQ(other->formattedText, "text");
        EXPECT_EQ(other->scrollLine * 1000 + other->previousScroll * 100 + other->contentHeight * 10 +
                      other->lineCount,
                  1234);
        EXPECT_EQ(other->font, font);
    }
}

TEST_F(WindowTest, PartsMayGoBeforeTheWindow) {
    delete window.scrollBar;
    EXPECT_EQ(window.scrollBar, nullptr);
    delete window.getTitleBar();
    EXPECT_EQ(window.getTitleBar(), nullptr);
    fill(20);
    EXPECT_TRUE(window.render(nullptr));
    window.setSizes(10, 10);
    list({&window});
    EXPECT_EQ(point(5, 22, 1), 0u);
}

TEST_F(WindowTest, CleanUpDestroysWindowsAndTheirPartsInAnyOrder) {
    KTBUTTON *before = new KTBUTTON;
    KTWINDOW *heap = new KTWINDOW;
    new KTHSCROLLBAR;
    before->link(heap);
    (new KTBUTTON)->link(heap->getTitleBar());
    EXPECT_TRUE(KTNODE::cleanUp());
    EXPECT_EQ(KTNODE::getNumberOfNodes(), 0u);
    EXPECT_EQ(window.getTitleBar(), nullptr) << "the window on the stack lost its parts on the heap";
    EXPECT_EQ(window.scrollBar, nullptr);
    EXPECT_TRUE(window.render(nullptr));
    EXPECT_FALSE(window.minmaximize());
}

TEST_F(WindowTest, WithoutMemoryForItsPartsItStandsBare) {
    if (!Allocations::canFail()) GTEST_SKIP() << "a sanitizer owns malloc";
    for (std::size_t size : {sizeof(KTBUTTON), sizeof(KTVSCROLLBAR)}) {
        Allocations::failNext(size);
        KTWINDOW bare;
        Allocations::clear();
        EXPECT_TRUE(!bare.getTitleBar() || !bare.scrollBar);
        bare.setCaption("text");
        EXPECT_TRUE(bare.render(nullptr));
        bare.minmaximize();
    }
}

}  // namespace
}  // namespace keltra::test
