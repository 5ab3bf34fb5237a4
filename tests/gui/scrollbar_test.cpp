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
    KTHSCROLLBAR lying;
    KTVSCROLLBAR standing;
};

TEST_F(ScrollBarTest, StartWithTheirDefaults) {
    EXPECT_EQ(lying.getName(), "[hscrollbar " + std::to_string(lying.getId()) + "]");
    EXPECT_EQ(standing.getName(), "[hscrollbar " + std::to_string(standing.getId()) + "]")
        << "meant: the same name";
    EXPECT_EQ(lying.getType(), unsigned(KT_HSCROLLBAR));
    EXPECT_EQ(standing.getType(), unsigned(KT_VSCROLLBAR));
    EXPECT_THAT((Box4{lying.sizeX, lying.sizeY, standing.sizeX, standing.sizeY}), ElementsAre(64, 4, 4, 64));
    const R3XVECTOR4D color = lying.getColor();
    EXPECT_TRUE(color.x == 0.6f && color.y == 0.2f && color.z == 0.0f && color.w == 0.35f);
    EXPECT_FALSE(lying.getCheckStatus() || standing.getCheckStatus());
    EXPECT_TRUE(lying.isStatic() && standing.isStatic());
    EXPECT_EQ(lying.getMinValue(), 0.0f);
    EXPECT_EQ(standing.getMaxValue(), 1.0f);
    EXPECT_EQ(lying.getValue(), 0.5f);
    EXPECT_EQ(standing.getValue(), 0.5f);
}

TEST_F(ScrollBarTest, TheCursorIsTheFirstChildAndStaysOnTheTrack) {
    const KTBUTTON &h = *lying.getCursor(), &v = *standing.getCursor();
    EXPECT_EQ(lying.getChild(0), &h);
    EXPECT_EQ(standing.getChild(0), &v);
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
    expectInverse(lying);
    expectInverse(standing);
}

TEST_F(ScrollBarTest, AValueAboveTheRangePutsTheCentreAtTheEnd) {
    lying.setValue(2.0f);
    EXPECT_EQ(lying.getCursor()->position.x + 8.0f, 64.0f);
    EXPECT_EQ(lying.getCursor()->position.y, -2.0f);
    EXPECT_EQ(lying.getValue(), 1.0f);
    standing.setValue(-1.0f);
    EXPECT_EQ(standing.getCursor()->position.y, -8.0f);
    EXPECT_EQ(standing.getValue(), 0.0f);
}

TEST_F(ScrollBarTest, AnEmptyRangeHasNoPlaceForTheCursor) {
    lying.setMinValue(3.0f);
    lying.setMaxValue(3.0f);
    lying.setValue(3.0f);
    EXPECT_TRUE(std::isnan(lying.getCursor()->position.x));
    EXPECT_EQ(lying.getValue(), 3.0f);
    draw({&lying});
    list({&lying});
    EXPECT_EQ(point(5, 0, 1), 0u);
}

TEST_F(ScrollBarTest, OddSizesStayDefined) {
    standing.sizeY = 0;
    standing.setValue(0.3f);
    EXPECT_GE(standing.getValue(), 0.0f);
    EXPECT_LE(standing.getValue(), 1.0f);
    standing.sizeY = INT_MAX;
    for (int size : {INT_MIN, -1, 0, INT_MAX}) {
        standing.setCursorSize(size);
        standing.render(nullptr);
        standing.setValue(nan());
        EXPECT_GE(standing.getValue(), 0.0f);
        EXPECT_LE(standing.getValue(), 1.0f);
    }
}

TEST_F(ScrollBarTest, ALongerCursorKeepsItsCentre) {
    lying.setCursorSize(32);
    EXPECT_EQ(lying.getCursor()->position.x, 16.0f);
    EXPECT_EQ(lying.getCursor()->sizeX, 32);
    EXPECT_EQ(lying.getValue(), 0.5f);
    standing.setCursorSize(32);
    EXPECT_EQ(standing.getCursor()->position.y, 16.0f);
    EXPECT_EQ(standing.getCursor()->sizeY, 32);
    EXPECT_EQ(standing.getValue(), 0.5f);
}

TEST_F(ScrollBarTest, HidingABarHidesItsCursor) {
    lying.setDisplayStatus(false);
    standing.setDisplayStatus(false);
    EXPECT_FALSE(lying.getDisplayStatus() || lying.getCursor()->getDisplayStatus());
    EXPECT_FALSE(standing.getDisplayStatus() || standing.getCursor()->getDisplayStatus());
    EXPECT_TRUE(lying.render(nullptr));
    EXPECT_TRUE(quads().empty());
    lying.setDisplayStatus(true);
    EXPECT_TRUE(lying.getCursor()->getDisplayStatus());
}

TEST_F(ScrollBarTest, DrawingAdaptsTheLimitsToTheSizes) {
    lying.setSizes(100, 10);
    lying.setCursorSize(21);
    EXPECT_TRUE(lying.render(nullptr));
    const KTBUTTON &cursor = *lying.getCursor();
    EXPECT_THAT((Box4{cursor.startX, cursor.endX, cursor.startY, cursor.endY}), ElementsAre(-10, 110, -2, 6));
    EXPECT_EQ(quads().size(), 25u) << "the track only";
}

TEST_F(ScrollBarTest, TheCursorIsDraggedFromEndToEnd) {
    lying.setPosition(50.0f, 100.0f);
    list({&lying});
    EXPECT_EQ(point(82, 101, 1), 0u);
    EXPECT_TRUE(over);
    EXPECT_TRUE(lying.getCursor()->isClicked());
    point(98, 130, 1);
    EXPECT_FLOAT_EQ(lying.getValue(), 0.75f);
    EXPECT_EQ(lying.getCursor()->position.y, -2.0f) << "its limits keep it on the track";
    point(1000, 101, 1);
    EXPECT_EQ(lying.getValue(), 1.0f);
    point(-1000, 101, 1);
    EXPECT_EQ(lying.getValue(), 0.0f);
    point(-1000, 101, 0);
    EXPECT_FALSE(lying.getCursor()->isClicked());
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
    delete standing.getCursor();
    EXPECT_EQ(standing.getCursor(), nullptr);
    EXPECT_EQ(standing.getValue(), 0.0f);
    delete lying.getCursor();
    EXPECT_TRUE(lying.render(nullptr));
    EXPECT_EQ(lying.getChild(0), nullptr);
}

TEST_F(ScrollBarTest, ACopyCarriesEveryField) {
    lying.setMinValue(2.0f);
    lying.setMaxValue(4.0f);
    lying.reserved[0] = 5;
    lying.reserved[1] = 6;
    KTHSCROLLBAR assigned;
    KTBUTTON *own = assigned.getCursor();
    assigned = lying;
    EXPECT_EQ(assigned.getMinValue(), 2.0f);
    EXPECT_EQ(assigned.getMaxValue(), 4.0f);
    EXPECT_EQ(assigned.reserved[0] + assigned.reserved[1], 11u);
    EXPECT_EQ(assigned.getCursor(), lying.getCursor());
    EXPECT_NE(own, lying.getCursor());
    KTVSCROLLBAR copy(standing);
    EXPECT_EQ(copy.getCursor(), standing.getCursor());
    standing = copy;
    EXPECT_EQ(standing.getValue(), 0.5f);
}

TEST_F(ScrollBarTest, WithoutMemoryThereIsNoCursor) {
    if (!Allocations::canFail()) GTEST_SKIP();
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
