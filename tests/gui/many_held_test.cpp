// SPDX-License-Identifier: Zlib
// Many objects that others point to, all destroyed at once: every pointer is cleared, at a cost that does not
// grow with the number of those who have one.

#include "tests/gui/gui_fixture.h"
#include "tests/support/allocations.h"
#include "tests/support/cpu_time.h"

namespace keltra::test {
namespace {

constexpr unsigned int kMany = 30000;

/// So many boxes with a texture and a shader, labels with a font, meshes with a material and materials with a
/// texture and a shader, each with its own.
class ManyHeldTest : public GuiTest {
   protected:
    void make(unsigned int count) {
        for (unsigned int i = 0; i < count; ++i) {
            auto *const box = new KTBOX;
            box->setTexture(new KTTEXTURE);
            box->setShader(new KTSHADER);
            boxes.push_back(box);
            auto *const label = new KTLABEL;
            label->setFont(new KTFONT);
            labels.push_back(label);
            auto *const material = new KTMATERIAL;
            material->setTexture(1, new KTTEXTURE);
            material->setShader(new KTSHADER);
            materials.push_back(material);
            auto *const mesh = new KTMESH;
            mesh->setMaterial(new KTMATERIAL);
            meshes.push_back(mesh);
        }
    }
    void TearDown() override {
        KTNODE::cleanUp();
        KTMATERIAL::cleanUp();
        KTSHADER::cleanUp();
        GuiTest::TearDown();
    }
    std::vector<KTBOX *> boxes;
    std::vector<KTLABEL *> labels;
    std::vector<KTMATERIAL *> materials;
    std::vector<KTMESH *> meshes;
};

TEST_F(ManyHeldTest, AreDestroyedInShortTime) {
    make(kMany);
    const CpuTime time;
    EXPECT_TRUE(KTFONT::cleanUp());
    EXPECT_TRUE(KTSHADER::cleanUp());
    EXPECT_TRUE(KTTEXTURE::cleanUp());
    for (const KTBOX *box : boxes) ASSERT_TRUE(!box->texture && !box->shader);
    for (const KTLABEL *label : labels) ASSERT_FALSE(label->font);
    for (const KTMATERIAL *material : materials) ASSERT_TRUE(!material->texture[1] && !material->shader);
    EXPECT_TRUE(KTMATERIAL::cleanUp());
    for (const KTMESH *mesh : meshes) ASSERT_FALSE(mesh->getMaterial());
    EXPECT_LT(time.seconds(), kLongestSeconds);
}

TEST_F(ManyHeldTest, AreCollectedInShortTime) {
    make(kMany);
    for (KTBOX *box : boxes) box->texture->references = 0;
    const CpuTime time;
    EXPECT_TRUE(KTTEXTURE::garbageCollect(0));
    EXPECT_LT(time.seconds(), kLongestSeconds);
    for (const KTBOX *box : boxes) ASSERT_FALSE(box->texture);
    for (const KTMATERIAL *material : materials) ASSERT_TRUE(material->texture[1]) << "it is in use";
}

// A pointer that was written to a field is known to nobody until the object is drawn with.
TEST_F(ManyHeldTest, PointersInFieldsAreClearedToo) {
    make(20);
    KTBOX box;
    box.texture = boxes[7]->texture;
    KTMATERIAL material;
    material.shader = materials[3]->shader;
    KTSHADER::cleanUp();
    KTTEXTURE::cleanUp();
    EXPECT_EQ(box.texture, nullptr);
    EXPECT_EQ(material.shader, nullptr);
}

TEST_F(ManyHeldTest, WithoutMemoryTheyAreForgottenOneByOne) {
    if (!Allocations::canFail()) GTEST_SKIP() << "a sanitizer owns malloc";
    make(20);
    Allocations::failNth(1);
    EXPECT_TRUE(KTSHADER::cleanUp());
    EXPECT_TRUE(Allocations::hasFailed());
    Allocations::clear();
    for (const KTBOX *box : boxes) EXPECT_EQ(box->shader, nullptr);
    for (const KTMATERIAL *material : materials) EXPECT_EQ(material->shader, nullptr);
}

TEST_F(ManyHeldTest, ObjectsOfTheApplicationAreTakenOffTheListAndStay) {
    make(2);
    KTSHADER own;
    KTTEXTURE *const kept = boxes[0]->texture;
    boxes[0]->setShader(&own);
    KTSHADER::cleanUp();
    EXPECT_EQ(boxes[0]->shader, nullptr);
    EXPECT_EQ(boxes[0]->texture, kept);
    boxes[0]->setShader(&own);
    EXPECT_EQ(boxes[0]->shader, &own);
    boxes[0]->setShader(nullptr);
}

}  // namespace
}  // namespace keltra::test
