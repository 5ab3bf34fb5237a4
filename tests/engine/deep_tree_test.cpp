// SPDX-License-Identifier: Zlib
// Trees that nest deeper than the matrix stacks of the GL hold.

#include <cmath>
#include <memory>
#include <vector>

#include "tests/scene/scene_parts.h"
#include "tests/support/engine_fixture.h"

namespace keltra::test {
namespace {

class DeepTreeTest : public EngineTest {
   protected:
    /// Whether the model-view and projection matrices of the GL equal the mirror's in fixed point.
    static void expectMirrorHolds() {
        const GlRecorder::Pause pause;
        const GLenum names[] = {GL_MODELVIEW_MATRIX, GL_PROJECTION_MATRIX};
        for (int which = 0; which < 2; ++which) {
            float mirror[16];
            GLfixed held[16] = {};
            KT_glGetFloatv(which, mirror);
            glGetFixedv(names[which], held);
            for (int i = 0; i < 16; ++i)
                EXPECT_NEAR(static_cast<float>(held[i]) / 65536.0f, mirror[i], 0.01f) << which << ' ' << i;
        }
        GLint depths[2] = {};
        glGetIntegerv(GL_MODELVIEW_STACK_DEPTH, &depths[0]);
        glGetIntegerv(GL_PROJECTION_STACK_DEPTH, &depths[1]);
        EXPECT_EQ(depths[0], 1);
        EXPECT_EQ(depths[1], 1);
    }
};

TEST_F(DeepTreeTest, EveryNodeHasItsMatrixAndTheGlNoError) {
    for (unsigned length : {30u, 31u, 32u, 33u, 64u, 255u}) {
        SCOPED_TRACE(length);
        // A chain that takes a step along x each level, with a leaf after each link that takes one along y.
        std::vector<std::unique_ptr<KTHELPER>> chain, leaves;
        for (unsigned i = 0; i < length; ++i) {
            chain.push_back(std::make_unique<KTHELPER>());
            chain.back()->setPosition(1.0f, 0.0f, 0.0f);
            if (i > 0) chain[i]->link(chain[i - 1].get());
        }
        for (unsigned i = 0; i < length; ++i) {
            leaves.push_back(std::make_unique<KTHELPER>());
            leaves.back()->setPosition(0.0f, 1.0f, 0.0f);
            ASSERT_TRUE(leaves[i]->link(chain[i].get()));
        }
        frame3D(nullptr, [&] { chain[0]->pass(); });
        for (unsigned i = 0; i < length; ++i) {
            EXPECT_EQ(chain[i]->getCachedMatrix()->getTranslation(), R3XVECTOR3D(float(i + 1), 0.0f, 0.0f));
            EXPECT_EQ(leaves[i]->getCachedMatrix()->getTranslation(), R3XVECTOR3D(float(i + 1), 1.0f, 0.0f));
        }
        expectMirrorHolds();
    }
}

TEST_F(DeepTreeTest, AFileOfAnyDepthIsDrawnWithoutAGlError) {
    TempFolder folder;
    for (int levels : {31, 32, 33, 255}) {
        formats::Node root = skinNode("skin", {"bone"});
        root.children.push_back(boneNode("bone", {0.0f, 1.0f, 0.0f}));
        for (int i = 1; i < levels; ++i) root = plainNode("n", {root});
        KTNODE *scene = loadNode(folder, root);
        ASSERT_NE(scene, nullptr);
        frame(
            nullptr, [&] { scene->pass(); }, [] {});
        expectMirrorHolds();
        KELTRA::select(120, 160);
        expectNoGlError();
        expectMirrorHolds();
        KTNODE::cleanUp();
    }
}

TEST_F(DeepTreeTest, AnApplicationMayPushAsOftenAsTheMirrorAllows) {
    for (int i = 0; i < 40; ++i) {
        KT_glPushMatrix();
        KT_glTranslatef(1.0f, 0.0f, 0.0f);
    }
    for (int i = 0; i < 40; ++i) KT_glPopMatrix();
    expectNoGlError();
    float mirror[16];
    KT_glGetFloatv(0, mirror);
    EXPECT_EQ(mirror[12], 0.0f);
    KTOPENGL::resize(0, 0, 240, 320);
    expectMirrorHolds();
}

}  // namespace
}  // namespace keltra::test
