#include "tools/view/marks.h"

#include "tests/tools/view/viewer_fixture.h"

using keltra::test::GlRecorder;
using keltra::test::ViewerTest;
using keltra::view::MarkBatch;

namespace {

class Marks : public ViewerTest {};

}  // namespace

TEST_F(Marks, ABoxHasTwelveEdges) {
    MarkBatch batch;
    batch.box(R3XVECTOR3D(-1.0f, -1.0f, -1.0f), R3XVECTOR3D(1.0f, 1.0f, 1.0f), R3XMATRIX(), {255, 0, 0});
    EXPECT_EQ(batch.lines(), 12u);
    batch.clear();
    EXPECT_EQ(batch.lines(), 0u);
}

TEST_F(Marks, WhatIsNoPlaceIsNotDrawn) {
    MarkBatch batch;
    const float nan = std::numeric_limits<float>::quiet_NaN();
    batch.line(R3XVECTOR3D(nan, 0.0f, 0.0f), R3XVECTOR3D(1.0f, 0.0f, 0.0f), {255, 0, 0});
    batch.point(R3XVECTOR3D(0.0f, nan, 0.0f), {255, 0, 0});
    EXPECT_EQ(batch.lines(), 0u);
    EXPECT_EQ(batch.points(), 0u);
}

TEST_F(Marks, TheSkeletonJoinsEveryBoneToTheOneAbove) {
    start(sample("figure.kte"));
    frames(1);
    KELTRA::begin3D(nullptr);
    viewer->shown().scene()->pass();
    KELTRA::end3D();
    MarkBatch batch;
    keltra::view::addSkeletons(batch);
    const KTMESH *skin = nullptr;
    for (KTNODE *node : viewer->shown().allNodes())
        if (node->getType() == KT_MESH && static_cast<KTMESH *>(node)->isSkinned())
            skin = static_cast<KTMESH *>(node);
    ASSERT_NE(skin, nullptr);
    EXPECT_EQ(batch.points(), skin->getNumberOfBones());
    EXPECT_EQ(batch.lines(), skin->getNumberOfBones() - 1u) << "one root";
}

TEST_F(Marks, BoxesCoverEveryDrawnMesh) {
    start(sample("garden.kte"));
    frames(2);
    KELTRA::begin3D(nullptr);
    viewer->shown().scene()->pass();
    KELTRA::end3D();
    MarkBatch batch;
    keltra::view::addBoxes(batch);
    EXPECT_EQ(batch.lines(), 12u * viewer->shownFigures().drawn);
    batch.clear();
    keltra::view::addLights(batch, R3XVECTOR3D(), 1.0f);
    EXPECT_GT(batch.lines(), 0u);
}

TEST_F(Marks, LeaveTheStateOfTheGLAsItWas) {
    start(sample("figure.kte"));
    key(SDLK_s);
    key(SDLK_b);
    frames(2);
    GlRecorder::clear();
    GlRecorder::setRecording(true);
    frames(1);
    GlRecorder::setRecording(false);
    // Everything in fixed point, and the sizes and the depth test put back.
    EXPECT_EQ(GlRecorder::countFloat(), 0);
    EXPECT_EQ(GlRecorder::last("glPointSizex").arguments[0], 65536);
    EXPECT_EQ(GlRecorder::count("glDrawArrays", {GL_LINES}), 2);
    EXPECT_EQ(GlRecorder::count("glDrawArrays", {GL_POINTS}), 1);
    EXPECT_TRUE(glIsEnabled(GL_DEPTH_TEST));
    EXPECT_TRUE(glIsEnabled(GL_CULL_FACE));
    GlRecorder::clear();
}
