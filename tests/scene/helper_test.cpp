// SPDX-License-Identifier: Zlib
#include <gtest/gtest.h>
#include <keltra/helper.h>

#include <string>

#include "tests/support/gl_recorder.h"

namespace keltra::test {
namespace {

bool equal(const R3XVECTOR3D &value, float x, float y, float z) { return value == R3XVECTOR3D(x, y, z); }

TEST(HelperTest, ConstructionGivesTheStatedValues) {
    KTHELPER helper;
    EXPECT_EQ(helper.getType(), unsigned(KT_HELPER));
    EXPECT_STREQ(helper.getTypeName(), "helper");
    EXPECT_EQ(helper.getName(), "[helper " + std::to_string(helper.getId()) + "]");
    EXPECT_EQ(helper.radius, 1.0f);
    EXPECT_EQ(helper.size, 1.0f);
    EXPECT_TRUE(helper.getColor() == R3XVECTOR4D(1.0f, 0.8f, 0.2f, 0.5f));
    EXPECT_TRUE(equal(helper.offset, 0.0f, 0.0f, 0.0f));
    EXPECT_TRUE(equal(helper.scale, 1.0f, 1.0f, 1.0f));
    EXPECT_TRUE(equal(helper.min, -1.0f, -1.0f, -1.0f));
    EXPECT_TRUE(equal(helper.max, 1.0f, 1.0f, 1.0f));
}

TEST(HelperTest, RenderSucceedsWithoutAnyGlCall) {
    const GlRecorder::Stub stub;
    KTHELPER helper;
    GlRecorder::clear();
    EXPECT_TRUE(helper.render(nullptr));
    EXPECT_TRUE(GlRecorder::calls().empty());
}

TEST(HelperTest, CopiesCarryEveryField) {
    KTHELPER helper;
    helper.setColor(R3XVECTOR4D(0.1f, 0.2f, 0.3f, 0.4f));
    helper.setMin(R3XVECTOR3D(-2.0f, -3.0f, -4.0f));
    helper.setMax(R3XVECTOR3D(2.0f, 3.0f, 4.0f));
    helper.radius = 5.0f;
    helper.size = 6.0f;
    helper.offset.set(7.0f, 7.0f, 7.0f);
    helper.scale.set(8.0f, 8.0f, 8.0f);
    KTHELPER constructed(helper), assigned;
    assigned = helper;
    for (const KTHELPER *copy : {&constructed, &assigned}) {
        EXPECT_EQ(copy->getId(), helper.getId());
        EXPECT_TRUE(copy->getColor() == helper.getColor());
        EXPECT_TRUE(copy->min == helper.min);
        EXPECT_TRUE(copy->max == helper.max);
        EXPECT_EQ(copy->radius, 5.0f);
        EXPECT_EQ(copy->size, 6.0f);
        EXPECT_TRUE(copy->offset == helper.offset);
        EXPECT_TRUE(copy->scale == helper.scale);
    }
}

}  // namespace
}  // namespace keltra::test
