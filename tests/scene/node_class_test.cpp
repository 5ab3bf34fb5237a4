// SPDX-License-Identifier: Zlib
#include "scene/node_class.h"

#include <gtest/gtest.h>
#include <keltra/keltra.h>

#include "tests/scene/render_list.h"

namespace keltra::test {
namespace {

class Terrain : public KTMESH {
   public:
    Terrain() {
        type = KT_TERRAIN;
        radius = 100.0f;
    }
};

TEST(NodeClass, IsWhatTheConstructorsMadeOfIt) {
    const KTWINDOW window;
    EXPECT_EQ(as<KTWINDOW>(&window), &window);
    EXPECT_EQ(as<KTBUTTON>(&window), &window);
    EXPECT_EQ(as<KTBOX>(&window), &window);
    EXPECT_EQ(as<KTLABEL>(&window), nullptr);
    EXPECT_EQ(as<KTMESH>(&window), nullptr);
    Terrain terrain;
    EXPECT_EQ(as<KTMESH>(&terrain), &terrain);
    terrain.type = KT_NODE;
    EXPECT_EQ(as<KTMESH>(&terrain), &terrain);
    EXPECT_EQ(as<KTMESH>(static_cast<KTNODE *>(nullptr)), nullptr);
}

template <class Class>
void expectKeptByCopies(KT_NODE_TYPE code) {
    const Class original;
    EXPECT_TRUE(original.isOfClass(code)) << code;
    const Class copy(original);
    EXPECT_TRUE(copy.isOfClass(code)) << code;
    Class assigned;
    assigned = original;
    EXPECT_TRUE(assigned.isOfClass(code)) << code;
    const KTNODE plainCopy(original);
    EXPECT_EQ(plainCopy.getType(), static_cast<unsigned int>(code));
    EXPECT_FALSE(plainCopy.isOfClass(code)) << code;
    KTNODE plain;
    plain = original;
    EXPECT_FALSE(plain.isOfClass(code)) << code;
    Class other;
    static_cast<KTNODE &>(other) = KTNODE();
    EXPECT_TRUE(other.isOfClass(code)) << code << ": an assigned plain node changes no class";
}

TEST(NodeClass, CopiesOfTheClassKeepItAndPlainNodesNeverGainIt) {
    expectKeptByCopies<KTLIGHT>(KT_LIGHT);
    expectKeptByCopies<KTMESH>(KT_MESH);
    expectKeptByCopies<KTCAMERA>(KT_CAMERA);
    expectKeptByCopies<KTEMITTER>(KT_EMITTER);
    expectKeptByCopies<KTHELPER>(KT_HELPER);
    expectKeptByCopies<KTBOX>(KT_BOX);
    expectKeptByCopies<KTLABEL>(KT_LABEL);
    expectKeptByCopies<KTBUTTON>(KT_BUTTON);
    expectKeptByCopies<KTWINDOW>(KT_WINDOW);
    expectKeptByCopies<KTTEXTFIELD>(KT_TEXTFIELD);
    expectKeptByCopies<KTHSCROLLBAR>(KT_HSCROLLBAR);
    expectKeptByCopies<KTVSCROLLBAR>(KT_VSCROLLBAR);
}

TEST(NodeClass, CopiesCarryEveryField) {
    KTLIGHT light;
    light.setCutOff(12.0f);
    light.setExclusive(true);
    light.setPosition(1.0f, 2.0f, 3.0f);
    const KTLIGHT lightCopy(light);
    EXPECT_EQ(lightCopy.getCutOff(), 12.0f);
    EXPECT_TRUE(lightCopy.isExclusive());
    EXPECT_EQ(lightCopy.getPosition().z, 3.0f);
    EXPECT_EQ(lightCopy.getId(), light.getId());
    EXPECT_FALSE(lightCopy.isRegistered());
    KTTEXTFIELD field;
    field.setCaption("text");
    field.setSizes(7, 8);
    field.caretTimer = 0.5f;
    const KTTEXTFIELD fieldCopy(field);
    EXPECT_STREQ(fieldCopy.getCaption(), "text");
    EXPECT_EQ(fieldCopy.sizeX, 7);
    EXPECT_EQ(fieldCopy.caretTimer, 0.5f);
}

class TerrainTest : public RenderListTest {};

TEST_F(TerrainTest, IsCulledWithItsOwnRadius) {
    Terrain terrain;
    KTELEMENT::clippingOn();
    terrain.setPosition(0.0f, 0.0f, -328.0f);
    terrain.pass();
    EXPECT_EQ(KTELEMENT::getNumberOfPassedElements(), 1u) << "at twice the radius plus the clipping radius";
    newFrame();
    terrain.setPosition(0.0f, 0.0f, -329.0f);
    terrain.pass();
    EXPECT_EQ(KTELEMENT::getNumberOfPassedElements(), 0u);
}

TEST_F(TerrainTest, AMeshUnderAHelpersCodeIsCulledWithItsOwnRadius) {
    Terrain terrain;
    terrain.type = KT_HELPER;
    KTELEMENT::clippingOn();
    terrain.setPosition(0.0f, 0.0f, -328.0f);
    terrain.pass();
    EXPECT_EQ(KTELEMENT::getNumberOfPassedElements(), 1u);
}

}  // namespace
}  // namespace keltra::test
