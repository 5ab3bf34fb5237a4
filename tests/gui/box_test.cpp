// SPDX-License-Identifier: Zlib
#include <keltra/box.h>

#include <climits>

#include "tests/gui/gui_fixture.h"
#include "tests/support/allocations.h"

namespace keltra::test {
namespace {

using ::testing::ElementsAre;
using ::testing::FloatNear;
using ::testing::Pointwise;

class BoxTest : public GuiTest {
   protected:
    BoxTest() {
        box.setCheckStatus(true);
        box.setPosition(10.0f, 10.0f);
    }

    KTBOX box;
};

TEST_F(BoxTest, StartsWithItsDefaults) {
    const KTBOX fresh;
    EXPECT_EQ(fresh.getName(), "[box " + std::to_string(fresh.getId()) + "]");
    EXPECT_EQ(fresh.getType(), unsigned(KT_BOX));
    EXPECT_EQ(fresh.getSizes().x, 64.0f);
    EXPECT_EQ(fresh.getSizes().y, 64.0f);
    EXPECT_EQ(fresh.getSizeY(), 64);
    EXPECT_THAT((Box4{fresh.getStartX(), fresh.getStartY(), fresh.getEndX(), fresh.getEndY()}),
                ElementsAre(0, 0, 0, 0));
    EXPECT_EQ(fresh.getThickness(), 3u);
    const R3XVECTOR4D color = fresh.getColor();
    EXPECT_TRUE(color.x == 0.5f && color.y == 0.5f && color.z == 0.5f && color.w == 1.0f);
    EXPECT_FALSE(fresh.getCheckStatus() || fresh.getClickedStatus() || fresh.isClicked() ||
                 fresh.getLimitStatus());
    EXPECT_TRUE(fresh.getDisplayStatus() && fresh.isStatic() && fresh.getScissorStatus());
    EXPECT_EQ(fresh.texture, nullptr);
    EXPECT_EQ(fresh.shader, nullptr);
}

TEST_F(BoxTest, ALaterBoxIsInFront) {
    KTBOX later;
    EXPECT_EQ(later.getForemostTimeStamp(), box.getForemostTimeStamp() + 1);
    EXPECT_EQ(KTBOX::getNextCounter(), later.getForemostTimeStamp() + 1);
}

TEST_F(BoxTest, IsTransparentUnlessAlphaIsOne) {
    EXPECT_FALSE(box.isTransparent());
    box.setColor(1.0f, 1.0f, 1.0f, 0.999f);
    EXPECT_TRUE(box.isTransparent());
    box.setColor(R3XVECTOR4D(1.0f, 1.0f, 1.0f, 1.5f));
    EXPECT_TRUE(box.isTransparent());
}

TEST_F(BoxTest, CoordinatesOfTheCorners) {
    EXPECT_THAT(KTBOXCOORD().coord, ElementsAre(0, 1, 1, 1, 0, 0, 1, 0));
    EXPECT_THAT(KTBOXCOORD(0.5f, 0.25f, false).coord, ElementsAre(0, 0.25f, 0.5f, 0.25f, 0, 0, 0.5f, 0));
    EXPECT_THAT(KTBOXCOORD(0.5f, 0.25f, true).coord, ElementsAre(0, 0, 0.5f, 0, 0, 0.25f, 0.5f, 0.25f));
    KTBOXCOORD assigned;
    assigned = KTBOXCOORD(0.5f, 0.25f, true);
    EXPECT_EQ(assigned.coord[7], 0.25f);
}

// --- hit test

TEST_F(BoxTest, BothEdgesBelongToTheBox) {
    EXPECT_TRUE(box.checkBoundaries(10, 10));
    EXPECT_TRUE(box.checkBoundaries(74, 74));
    EXPECT_FALSE(box.checkBoundaries(75, 10));
    EXPECT_FALSE(box.checkBoundaries(10, 75));
    EXPECT_FALSE(box.checkBoundaries(9, 10));
    EXPECT_FALSE(box.checkBoundaries(10, 9));
}

TEST_F(BoxTest, IsNeverHitWithoutItsCheckStatus) {
    box.setCheckStatus(false);
    EXPECT_FALSE(box.checkBoundaries(30, 30));
    EXPECT_FALSE(KTBOX().checkBoundaries(30, 30));
}

TEST_F(BoxTest, PositionsOfAllAncestorsCount) {
    KTNODE group;
    KTBOX parent;
    group.setPosition(100.0f, 50.0f);
    parent.setPosition(-5.0f, 7.0f);
    parent.link(&group);
    box.link(&parent);
    EXPECT_TRUE(box.checkBoundaries(105, 67));
    EXPECT_FALSE(box.checkBoundaries(104, 67));
    EXPECT_FALSE(box.checkBoundaries(10, 10));
}

TEST_F(BoxTest, IsNotHitOutsideOfItsWindow) {
    KTWINDOW window;
    window.setPosition(0.0f, 0.0f);
    KTBOX between;
    KTBUTTON button;
    between.link(&window);
    button.link(&between);
    button.setPosition(100.0f, 100.0f);
    EXPECT_TRUE(button.checkBoundaries(128, 128));
    EXPECT_FALSE(button.checkBoundaries(130, 110)) << "past the window's edge";
    EXPECT_TRUE(window.getTitleBar()->checkBoundaries(5, -10)) << "the title bar stands outside";
    window.setCheckStatus(false);
    EXPECT_FALSE(button.checkBoundaries(110, 110)) << "a window that is not found hides what it holds";
}

TEST_F(BoxTest, OnlyTheNearestWindowIsAsked) {
    KTWINDOW outer, inner;
    outer.setPosition(0.0f, 0.0f);
    inner.setPosition(120.0f, 0.0f);
    inner.link(&outer);
    KTBUTTON button;
    button.link(&inner);
    button.setPosition(40.0f, 40.0f);
    EXPECT_TRUE(button.checkBoundaries(200, 60)) << "outside of the outer window";
    EXPECT_TRUE(inner.checkBoundaries(200, 60)) << "a window asks no other";
}

TEST_F(BoxTest, APlainCopyOfAWindowIsNoWindow) {
    KTWINDOW window;
    KTNODE slice(window);
    ASSERT_EQ(slice.getType(), unsigned(KT_WINDOW));
    box.link(&slice);
    EXPECT_TRUE(box.checkBoundaries(50, 50));
    draw({&slice});
    list({&slice});
    EXPECT_EQ(point(50, 50, 1), 0u);
}

TEST_F(BoxTest, ARingOfParentsEnds) {
    KTBOX other;
    other.link(&box);
    ASSERT_TRUE(box.link(&other));
    box.checkBoundaries(1, 1);
    int dx = 1, dy = 1;
    box.setLimitStatus(true);
    EXPECT_TRUE(box.checkLimits(&dx, &dy));
    EXPECT_TRUE(box.setForemost());
    box.render(nullptr);
    box.unlink();
}

TEST_F(BoxTest, PositionsThatAreNoNumbersAreNotHit) {
    box.setPosition(nan(), 10.0f);
    EXPECT_FALSE(box.checkBoundaries(10, 10));
    box.setPosition(1e9f, -1e9f);
    EXPECT_FALSE(box.checkBoundaries(INT_MAX, INT_MIN));
    box.setPosition(10.0f, 10.0f);
    box.setSizes(-20, -20);
    EXPECT_FALSE(box.checkBoundaries(5, 5));
}

// --- limits

TEST_F(BoxTest, AMovementStopsAtTheLimits) {
    box.setPosition(30.0f, 30.0f);
    box.setLimits(0, 0, 100, 100);
    box.setLimitStatus(true);
    int dx = 20, dy = -50;
    EXPECT_TRUE(box.checkLimits(&dx, &dy));
    EXPECT_EQ(dx, 6);
    EXPECT_EQ(dy, -30);
}

TEST_F(BoxTest, LimitsMoveWithTheParent) {
    KTBOX parent;
    parent.setPosition(200.7f, -9.0f);
    box.link(&parent);
    box.setPosition(30.0f, 30.0f);
    box.setLimits(0, 0, 100, 100);
    box.setLimitStatus(true);
    int dx = 20, dy = 5;
    EXPECT_TRUE(box.checkLimits(&dx, &dy));
    EXPECT_EQ(dx, 6);
    EXPECT_EQ(dy, 5);
}

TEST_F(BoxTest, TheFarLimitWinsForABoxThatDoesNotFit) {
    box.setPosition(0.0f, 0.0f);
    box.setLimits(0, 0, 50, 50);
    box.setLimitStatus(true);
    int dx = 3, dy = 0;
    EXPECT_TRUE(box.checkLimits(&dx, &dy));
    EXPECT_EQ(dx, -14);
    EXPECT_EQ(dy, -14);
}

TEST_F(BoxTest, WithoutLimitsAMovementStays) {
    int dx = 500, dy = -500;
    EXPECT_FALSE(box.checkLimits(&dx, &dy));
    box.setLimitStatus(true);
    EXPECT_FALSE(box.checkLimits(nullptr, &dy));
    EXPECT_FALSE(box.checkLimits(&dx, nullptr));
    EXPECT_EQ(dx, 500);
    EXPECT_EQ(dy, -500);
}

TEST_F(BoxTest, LimitsOfAnySizeStayDefined) {
    box.setLimitStatus(true);
    for (float place : {1e30f, -1e30f, nan(), 1e9f}) {
        box.setPosition(place, place);
        for (int edge : {INT_MIN, 0, INT_MAX}) {
            box.setLimits(edge, INT_MIN, INT_MAX, edge);
            box.setSizes(edge, INT_MIN);
            int dx = INT_MAX, dy = INT_MIN;
            EXPECT_TRUE(box.checkLimits(&dx, &dy));
        }
    }
}

// --- stacking

TEST_F(BoxTest, ForemostRaisesTheSubtreeAboveEverything) {
    KTBOX first, second, grandchild, other;
    KTNODE group;
    first.link(&box);
    group.link(&box);
    second.link(&group);
    grandchild.link(&first);
    const long before = KTBOX::getNextCounter();
    EXPECT_TRUE(box.setForemost(77));
    EXPECT_EQ(box.getForemostTimeStamp(), before + 1);
    EXPECT_EQ(first.getForemostTimeStamp(), before + 3)
        << "the counter is stepped for each child and by each child";
    EXPECT_EQ(grandchild.getForemostTimeStamp(), before + 5);
    EXPECT_EQ(second.getForemostTimeStamp(), before + 9) << "a plain node takes its stamps with it";
    EXPECT_LT(other.getForemostTimeStamp(), box.getForemostTimeStamp());
}

TEST_F(BoxTest, TheListIsSortedByStamps) {
    KTBOX second;
    KTNODE plain;
    KTHELPER helper;
    KTBOX slicedFrom;
    KTNODE slice(slicedFrom);
    list({&second, &box, &helper, &slice});
    std::vector<KTNODE *> order;
    for (unsigned int i = 0; i < 4; ++i) order.push_back(KTELEMENT::elementPointer[i]->getNode());
    EXPECT_THAT(order, ElementsAre(&helper, &slice, &box, &second)) << "only boxes have a layer";
    box.setForemost();
    list({&second, &box});
    EXPECT_EQ(KTELEMENT::elementPointer[1]->getNode(), &box);
}

// --- drawing

TEST_F(BoxTest, DrawsItsFaceUnderItsMatrix) {
    box.setThickness(0);
    box.setColor(0.25f, 0.5f, 0.75f, 1.0f);
    box.setBoxCoords(KTBOXCOORD(0.5f, 0.25f, true));
    draw({&box});
    ASSERT_EQ(quads().size(), 1u);
    EXPECT_THAT(quads()[0].corners, ElementsAre(0, 0, 64, 64));
    EXPECT_THAT(quads()[0].color, ElementsAre(0.25f, 0.5f, 0.75f, 1.0f));
    EXPECT_THAT(quads()[0].texCoords, ElementsAre(0, 0, 0.5f, 0, 0, 0.25f, 0.5f, 0.25f));
    EXPECT_EQ(GlRecorder::last("glLoadMatrixx").contents[12], 10 * 65536);
    EXPECT_THAT(scissors(), ElementsAre(ElementsAre(0, 0, 240, 320)));
    EXPECT_EQ(GlRecorder::count("glEnable", {GL_SCISSOR_TEST}), 0);
    EXPECT_EQ(GlRecorder::count("glEnable", {GL_BLEND}), 0);
}

TEST_F(BoxTest, APressedFaceIsDarker) {
    box.setThickness(0);
    box.setColor(1.0f, 0.5f, 0.25f, 0.8f);
    box.setClickedStatus(true);
    box.render(nullptr);
    EXPECT_THAT(quads()[0].color, Pointwise(FloatNear(1e-4f), {0.9f, 0.45f, 0.225f, 0.8f}));
    EXPECT_EQ(GlRecorder::count("glEnable", {GL_BLEND}), 1);
}

TEST_F(BoxTest, DrawsTheBevelRingByRing) {
    const float w = 40.0f, h = 30.0f;
    box.setSizes(40, 30);
    box.setThickness(2);
    box.setColor(0.5f, 0.25f, 1.0f, 1.0f);
    for (bool pressed : {false, true}) {
        GlRecorder::clear();
        box.setClickedStatus(pressed);
        box.render(nullptr);
        const std::vector<Quad> drawn = quads();
        ASSERT_EQ(drawn.size(), 17u);
        const float light = pressed ? 0.7f : 1.3f, dark = pressed ? 1.3f : 0.7f;
        const float first = pressed ? 0.4f : 1.6f, last = pressed ? 1.6f : 0.4f;
        for (int ring = 0; ring < 2; ++ring) {
            const float i = static_cast<float>(ring);
            const struct {
                std::array<float, 4> corners;
                float factor;
            } pieces[8] = {
                {{i + 1, i, w - i - 1, i + 1}, light},
                {{i, i + 1, i + 1, h - i - 1}, light},
                {{i + 1, h - i, w - i - 1, h - i - 1}, dark},
                {{w - i, i + 1, w - i - 1, h - i - 1}, dark},
                {{i, i, i + 1, i + 1}, first},
                {{i, h - i, i + 1, h - i - 1}, 1.0f},
                {{w - i, i, w - i - 1, i + 1}, 1.0f},
                {{w - i, h - i, w - i - 1, h - i - 1}, last},
            };
            for (int piece = 0; piece < 8; ++piece) {
                const Quad &quad = drawn[1 + ring * 8 + piece];
                const float factor = pieces[piece].factor;
                EXPECT_EQ(quad.corners, pieces[piece].corners) << "ring " << ring << " piece " << piece;
                EXPECT_THAT(quad.color,
                            Pointwise(FloatNear(1e-4f), {0.5f * factor, 0.25f * factor, factor, 0.5f}));
            }
        }
    }
}

TEST_F(BoxTest, ATextureIsBoundForTheFaceAndOffForTheBorder) {
    KTTEXTURE *texture = new KTTEXTURE;
    texture->create(8, 8, 4);
    EXPECT_TRUE(box.setTexture(texture));
    KTBOX bare, again(box);
    bare.setThickness(0);
    GlRecorder::clear();
    draw({&box, &bare, &again});
    EXPECT_EQ(GlRecorder::count("glEnable", {GL_TEXTURE_2D}), 2);
    EXPECT_EQ(GlRecorder::count("glDisable", {GL_TEXTURE_2D}), 2) << "once for each border";
    EXPECT_EQ(GlRecorder::count("glBindTexture"), 2);
}

TEST_F(BoxTest, BlendingIsSwitchedOnChangesOnly) {
    KTBOX second;
    second.setColor(1.0f, 1.0f, 1.0f, 0.5f);
    draw({&box, &second});
    EXPECT_EQ(GlRecorder::count("glEnable", {GL_BLEND}), 1) << "for the first border; it stays on";
    EXPECT_EQ(GlRecorder::count("glDisable", {GL_BLEND}), 0);
}

TEST_F(BoxTest, AHiddenBoxDrawsNothingButItsChildrenDo) {
    KTBOX child;
    child.link(&box);
    box.setDisplayStatus(false);
    EXPECT_FALSE(box.render(nullptr));
    EXPECT_TRUE(quads().empty());
    draw({&box});
    EXPECT_EQ(quads().size(), 1u + 3 * 8);
}

TEST_F(BoxTest, WithoutAShaderProgramsAreSwitchedOff) {
    KTSHADER *shader = new KTSHADER;
    EXPECT_TRUE(box.setShader(shader));
    KTSHADER::enable();
    box.render(nullptr);
    EXPECT_TRUE(KTSHADER::enabled);
    delete shader;
    EXPECT_EQ(box.shader, nullptr);
    box.render(nullptr);
    EXPECT_FALSE(KTSHADER::enabled);
}

// 16.16 ends before 32,768 pixels; what lies beyond is drawn at -32,768.
TEST_F(BoxTest, TheFarSidesOfAHugeBorderLieWhereTheFaceEnds) {
    box.setThickness(1);
    for (int size : {32767, 32768, 40000}) {
        box.setSizes(size, 30);
        GlRecorder::clear();
        EXPECT_TRUE(box.render(nullptr));
        const std::vector<Quad> drawn = quads();
        ASSERT_EQ(drawn.size(), 9u);
        const float far = size < 32768 ? float(size) : -32768,
                    inner = size < 32769 ? float(size - 1) : -32768;
        EXPECT_THAT(drawn[0].corners, ElementsAre(0, 0, far, 30)) << "the face";
        EXPECT_THAT(drawn[1].corners, ElementsAre(1, 0, inner, 1)) << "upper side";
        EXPECT_THAT(drawn[4].corners, ElementsAre(far, 1, inner, 29)) << "right side";
    }
}

TEST_F(BoxTest, SizesOfAnyKindAreDrawn) {
    for (int size : {INT_MIN, -5, 0, 1, 1000000000, INT_MAX}) {
        box.setSizes(size, size);
        EXPECT_TRUE(box.render(nullptr));
    }
    box.setThickness(UINT_MAX);
    GlRecorder::clear();
    EXPECT_TRUE(box.render(nullptr));
    EXPECT_EQ(quads().size(), 1u + 1024 * 8);
    box.setColor(nan(), 1e30f, -1e30f, nan());
    EXPECT_TRUE(box.render(nullptr));
}

TEST_F(BoxTest, DrawingAllocatesNothing) {
    KTWINDOW window;
    KTTEXTFIELD field;
    field.link(&window);
    window.setFont(font);
    field.setFont(font);
    window.write("some words that are wrapped");
    window.format();
    const std::vector<KTNODE *> shown = {&box, &window};
    draw(shown);
    const GlRecorder::Pause pause;
    Allocations::startCounting();
    draw(shown);
    point(20, 40, 1);
    point(20, 40, 0);
    window.format();
    EXPECT_EQ(Allocations::stopCounting(), 0);
}

// --- copies and lifetime

TEST_F(BoxTest, ACopyCarriesEveryField) {
    box.setSizes(1, 2);
    box.setLimits(3, 4, 5, 6);
    box.setThickness(7);
    box.setDisplayStatus(false);
    box.setStaticStatus(false);
    box.setClickedStatus(true);
    box.setLimitStatus(true);
    box.setScissorStatus(false);
    box.setTexture(glyphs);
    box.setBoxCoords(KTBOXCOORD(0.5f, 0.5f, true));
    const int uses = glyphs->getReferences();
    KTBOX copy(box), assigned;
    assigned = box;
    for (const KTBOX *other : {&copy, &assigned}) {
        EXPECT_EQ(other->getId(), box.getId());
        EXPECT_THAT((Box4{other->sizeX, other->sizeY, other->startX, other->startY}),
                    ElementsAre(1, 2, 3, 4));
        EXPECT_EQ(other->endX + other->endY, 11);
        EXPECT_EQ(other->thickness, 7u);
        EXPECT_FALSE(other->displayStatus || other->staticStatus || other->scissorStatus);
        EXPECT_TRUE(other->clickedStatus && other->limitStatus && other->checkStatus);
        EXPECT_EQ(other->foremostTimeStamp, box.foremostTimeStamp);
        EXPECT_EQ(other->texture, glyphs);
        EXPECT_EQ(other->boxCoord.coord[7], 0.5f);
    }
    EXPECT_EQ(glyphs->getReferences(), uses);
}

TEST_F(BoxTest, ATexturesUsesAreCounted) {
    KTTEXTURE *texture = new KTTEXTURE;
    EXPECT_TRUE(box.setTexture(texture));
    EXPECT_TRUE(box.setTexture(texture));
    EXPECT_EQ(texture->getReferences(), 1);
    EXPECT_TRUE(box.setTexture(nullptr));
    EXPECT_EQ(texture->getReferences(), 0);
    { KTBOX(box).setTexture(texture); }
    EXPECT_EQ(texture->getReferences(), 1) << "a destroyed box gives no use back";
}

TEST_F(BoxTest, ADestroyedTextureIsForgotten) {
    KTTEXTURE *texture = new KTTEXTURE;
    box.setTexture(texture);
    KTBOX copy(box);
    delete texture;
    EXPECT_EQ(box.texture, nullptr);
    EXPECT_EQ(copy.texture, nullptr);
}

}  // namespace
}  // namespace keltra::test
