// SPDX-License-Identifier: Zlib
#include <keltra/scrollbar.h>

#include <climits>
#include <string>

#include "tests/gui/gui_fixture.h"
#include "tests/support/allocations.h"

namespace keltra::test {
namespace {

using ::testing::ElementsAre;

class ScrollBarTest : public GuiTest {
   protected:
    KTHSCROLLBAR horizontal;
    KTVSCROLLBAR vertical;
};

TEST_F(ScrollBarTest, StartWithTheirDefaults) {
    EXPECT_EQ(horizontal.getName(), "[hscrollbar " + std::to_string(horizontal.getId()) + "]");
    EXPECT_EQ(vertical.getName(), "[hscrollbar " + std::to_string(vertical.getId()) + "]")
        << "deliberate: the same name";
    EXPECT_EQ(horizontal.getType(), unsigned(KT_HSCROLLBAR));
    EXPECT_EQ(vertical.getType(), unsigned(KT_VSCROLLBAR));
    EXPECT_THAT((Box4{horizontal.sizeX, horizontal.sizeY, vertical.sizeX, vertical.sizeY}),
                ElementsAre(64, 4, 4, 64));
    const R3XVECTOR4D color = horizontal.getColor();
    EXPECT_TRUE(color.x == 0.6f && color.y == 0.2f && color.z == 0.0f && color.w == 0.35f);
    EXPECT_FALSE(horizontal.getCheckStatus() || vertical.getCheckStatus());
    EXPECT_TRUE(horizontal.isStatic() && vertical.isStatic());
    EXPECT_EQ(horizontal.getMinValue(), 0.0f);
    EXPECT_EQ(vertical.getMaxValue(), 1.0f);
    EXPECT_EQ(horizontal.getValue(), 0.5f);
    EXPECT_EQ(vertical.getValue(), 0.5f);
}

TEST_F(ScrollBarTest, TheCursorIsTheFirstChildAndStaysOnTheTrack) {
    const KTBUTTON &h = *horizontal.getCursor(), &v = *vertical.getCursor();
    EXPECT_EQ(horizontal.getChild(0), &h);
    EXPECT_EQ(vertical.getChild(0), &v);
    EXPECT_THAT((Box4{h.sizeX, h.sizeY, v.sizeX, v.sizeY}), ElementsAre(16, 8, 8, 16));
    EXPECT_TRUE(h.position.x == 24.0f && h.position.y == -2.0f);
    EXPECT_TRUE(v.position.x == -2.0f && v.position.y == 24.0f);
    EXPECT_FALSE(h.isStatic() || v.isStatic());
    EXPECT_TRUE(h.getLimitStatus() && v.getLimitStatus());
    EXPECT_THAT((Box4{h.startX, h.endX, h.startY, h.endY}), ElementsAre(-8, 72, -2, 6));
    EXPECT_THAT((Box4{v.startY, v.endY, v.startX, v.endX}), ElementsAre(-8, 72, -2, 6));
    const R3XVECTOR4D color = h.getColor();
    EXPECT_TRUE(color.x == 0.8f && color.y == 0.3f && color.w == 0.9f);
}

template <class Bar>
void expectInverse(Bar &bar) {
    bar.setMinValue(-3.0f);
    bar.setMaxValue(7.0f);
    for (float value = -3.0f; value <= 7.0f; value += 0.37f) {
        bar.setValue(value);
        EXPECT_NEAR(bar.getValue(), value, 1e-5f);
    }
    bar.setValue(8.0f);
    EXPECT_EQ(bar.getValue(), 7.0f);
    bar.setValue(-50.0f);
    EXPECT_EQ(bar.getValue(), -3.0f);
}

TEST_F(ScrollBarTest, SettingAndGettingAreInverse) {
    expectInverse(horizontal);
    expectInverse(vertical);
}

TEST_F(ScrollBarTest, AValueAboveTheRangePutsTheCentreAtTheEnd) {
    horizontal.setValue(2.0f);
    EXPECT_EQ(horizontal.getCursor()->position.x + 8.0f, 64.0f);
    EXPECT_EQ(horizontal.getCursor()->position.y, -2.0f);
    EXPECT_EQ(horizontal.getValue(), 1.0f);
    vertical.setValue(-1.0f);
    EXPECT_EQ(vertical.getCursor()->position.y, -8.0f);
    EXPECT_EQ(vertical.getValue(), 0.0f);
}

TEST_F(ScrollBarTest, AnEmptyRangeHasNoPlaceForTheCursor) {
    horizontal.setMinValue(3.0f);
    horizontal.setMaxValue(3.0f);
    horizontal.setValue(3.0f);
    EXPECT_TRUE(std::isnan(horizontal.getCursor()->position.x));
    EXPECT_EQ(horizontal.getValue(), 3.0f);
    draw({&horizontal});
    list({&horizontal});
    EXPECT_EQ(point(5, 0, 1), 0u);
}

TEST_F(ScrollBarTest, OddSizesStayDefined) {
    vertical.sizeY = 0;
    vertical.setValue(0.3f);
    EXPECT_GE(vertical.getValue(), 0.0f);
    EXPECT_LE(vertical.getValue(), 1.0f);
    vertical.sizeY = INT_MAX;
    for (int size : {INT_MIN, -1, 0, INT_MAX}) {
        vertical.setCursorSize(size);
        vertical.render(nullptr);
        vertical.setValue(nan());
        EXPECT_GE(vertical.getValue(), 0.0f);
        EXPECT_LE(vertical.getValue(), 1.0f);
    }
}

TEST_F(ScrollBarTest, ALongerCursorKeepsItsCentre) {
    horizontal.setCursorSize(32);
    EXPECT_EQ(horizontal.getCursor()->position.x, 16.0f);
    EXPECT_EQ(horizontal.getCursor()->sizeX, 32);
    EXPECT_EQ(horizontal.getValue(), 0.5f);
    vertical.setCursorSize(32);
    EXPECT_EQ(vertical.getCursor()->position.y, 16.0f);
    EXPECT_EQ(vertical.getCursor()->sizeY, 32);
    EXPECT_EQ(vertical.getValue(), 0.5f);
}

TEST_F(ScrollBarTest, HidingABarHidesItsCursor) {
    horizontal.setDisplayStatus(false);
    vertical.setDisplayStatus(false);
    EXPECT_FALSE(horizontal.getDisplayStatus() || horizontal.getCursor()->getDisplayStatus());
    EXPECT_FALSE(vertical.getDisplayStatus() || vertical.getCursor()->getDisplayStatus());
    EXPECT_TRUE(horizontal.render(nullptr));
    EXPECT_TRUE(quads().empty());
    horizontal.setDisplayStatus(true);
    EXPECT_TRUE(horizontal.getCursor()->getDisplayStatus());
}

TEST_F(ScrollBarTest, DrawingAdaptsTheLimitsToTheSizes) {
    horizontal.setSizes(100, 10);
    horizontal.setCursorSize(21);
    EXPECT_TRUE(horizontal.render(nullptr));
    const KTBUTTON &cursor = *horizontal.getCursor();
    EXPECT_THAT((Box4{cursor.startX, cursor.endX, cursor.startY, cursor.endY}), ElementsAre(-10, 110, -2, 6));
    EXPECT_EQ(quads().size(), 25u) << "the track only";
}

TEST_F(ScrollBarTest, TheCursorIsDraggedFromEndToEnd) {
    horizontal.setPosition(50.0f, 100.0f);
    list({&horizontal});
    EXPECT_EQ(point(82, 101, 1), 0u);
    EXPECT_TRUE(over);
    EXPECT_TRUE(horizontal.getCursor()->isClicked());
    point(98, 130, 1);
    EXPECT_FLOAT_EQ(horizontal.getValue(), 0.75f);
    EXPECT_EQ(horizontal.getCursor()->position.y, -2.0f) << "its limits keep it on the track";
    point(1000, 101, 1);
    EXPECT_EQ(horizontal.getValue(), 1.0f);
    point(-1000, 101, 1);
    EXPECT_EQ(horizontal.getValue(), 0.0f);
    point(-1000, 101, 0);
    EXPECT_FALSE(horizontal.getCursor()->isClicked());
}

TEST_F(ScrollBarTest, ABarOwnsItsCursor) {
    const unsigned int before = KTNODE::getNumberOfNodes();
    auto bar = std::make_unique<KTHSCROLLBAR>();
    EXPECT_EQ(KTNODE::getNumberOfNodes(), before + 2);
    KTHSCROLLBAR copy(*bar);
    EXPECT_EQ(copy.getCursor(), bar->getCursor());
    bar.reset();
    EXPECT_EQ(KTNODE::getNumberOfNodes(), before);
    EXPECT_EQ(copy.getCursor(), nullptr);
    copy.setValue(1.0f);
    copy.setCursorSize(4);
    copy.setDisplayStatus(true);
    EXPECT_EQ(copy.getValue(), 0.0f);
    EXPECT_TRUE(copy.render(nullptr));
}

TEST_F(ScrollBarTest, ACursorMayGoBeforeItsBar) {
    delete vertical.getCursor();
    EXPECT_EQ(vertical.getCursor(), nullptr);
    EXPECT_EQ(vertical.getValue(), 0.0f);
    delete horizontal.getCursor();
    EXPECT_TRUE(horizontal.render(nullptr));
    EXPECT_EQ(horizontal.getChild(0), nullptr);
}

TEST_F(ScrollBarTest, ACopyCarriesEveryField) {
    horizontal.setMinValue(2.0f);
    horizontal.setMaxValue(4.0f);
    horizontal.reserved[0] = 5;
    horizontal.reserved[1] = 6;
    KTHSCROLLBAR assigned;
    KTBUTTON *own = assigned.getCursor();
    assigned = horizontal;
    EXPECT_EQ(assigned.getMinValue(), 2.0f);
    EXPECT_EQ(assigned.getMaxValue(), 4.0f);
    EXPECT_EQ(assigned.reserved[0] + assigned.reserved[1], 11u);
    EXPECT_EQ(assigned.getCursor(), horizontal.getCursor());
    EXPECT_NE(own, horizontal.getCursor());
    KTVSCROLLBAR copy(vertical);
    EXPECT_EQ(copy.getCursor(), vertical.getCursor());
    vertical = copy;
    EXPECT_EQ(vertical.getValue(), 0.5f);
}

TEST_F(ScrollBarTest, WithoutMemoryThereIsNoCursor) {
    if (!Allocations::canFail()) GTEST_SKIP() << "a sanitizer owns malloc";
    Allocations::failNext(sizeof(KTBUTTON));
    KTVSCROLLBAR bare;
    Allocations::clear();
    EXPECT_EQ(bare.getCursor(), nullptr);
    bare.setValue(1.0f);
    EXPECT_EQ(bare.getValue(), 0.0f);
    EXPECT_TRUE(bare.render(nullptr));
}

}  // namespace
}  // namespace keltra::test
