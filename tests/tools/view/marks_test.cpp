// SPDX-License-Identifier: Zlib
#include "tools/view/marks.h"

#include <cmath>
#include <vector>

#include "tests/tools/view/scenes.h"
#include "tests/tools/view/viewer_fixture.h"

using keltra::test::GlRecorder;
using keltra::test::ViewerTest;
using keltra::view::MarkBatch;

namespace {

class Marks : public ViewerTest {
   protected:
    // Draws the batch and returns the coordinates that the GL got, of lines or of points.
    static std::vector<float> drawn(const MarkBatch &batch, GLenum primitive) {
        GlRecorder::clear();
        GlRecorder::setRecording(true);
        batch.draw(false);
        GlRecorder::setRecording(false);
        std::vector<float> coordinates;
        const GLfixed *vertices = nullptr;
        for (const keltra::test::Call &call : GlRecorder::calls()) {
            if (call.name == "glVertexPointer")
                vertices = reinterpret_cast<const GLfixed *>(static_cast<std::intptr_t>(call.arguments[3]));
            if (call.name != "glDrawArrays" || call.arguments[0] != primitive) continue;
            for (std::int64_t i = 0; i < 3 * call.arguments[2]; ++i)
                coordinates.push_back(static_cast<float>(vertices[i]) / 65536.0f);
        }
        GlRecorder::clear();
        return coordinates;
    }
    // The marks of a scene with one light of that type.
    MarkBatch lightMarks(keltra::formats::LightType type) {
        keltra::formats::Scene scene = keltra::test::triangleScene(1.0f, {});
        scene.root.children.push_back(
            keltra::test::light("lamp", type, {2.0f, 3.0f, 4.0f}, {0.0f, -1.0f, 0.0f}));
        viewer.reset();
        start(folder.write("lit.kte", keltra::formats::writeKte(scene, keltra::formats::KteVersion::k16a)));
        frames(1);
        KELTRA::begin3D(nullptr);
        viewer->shown().scene()->pass();
        KELTRA::end3D();
        MarkBatch batch;
        keltra::view::addLights(batch, R3XVECTOR3D(0.0f, 0.0f, 0.0f), 10.0f);
        return batch;
    }
};

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

TEST_F(Marks, ABoxIsTransformedByItsMatrix) {
    start(sample("figure.kte"));
    R3XMATRIX matrix, place;
    matrix.setScaling(R3XVECTOR3D(2.0f, 3.0f, 4.0f));
    place.setTranslation(10.0f, 20.0f, 30.0f);
    MarkBatch batch;
    batch.box(R3XVECTOR3D(0.0f, 0.0f, 0.0f), R3XVECTOR3D(1.0f, 1.0f, 1.0f), matrix * place, {255, 0, 0});
    const std::vector<float> ends = drawn(batch, GL_LINES);
    ASSERT_EQ(ends.size(), 12u * 2 * 3);
    const float low[3] = {10.0f, 20.0f, 30.0f}, high[3] = {12.0f, 23.0f, 34.0f};
    for (std::size_t i = 0; i < ends.size(); ++i)
        EXPECT_TRUE(ends[i] == low[i % 3] || ends[i] == high[i % 3]) << i << ": " << ends[i];
    // Each edge runs along one axis.
    for (std::size_t line = 0; line < ends.size(); line += 6) {
        int differing = 0;
        for (std::size_t axis = 0; axis < 3; ++axis) differing += ends[line + axis] != ends[line + 3 + axis];
        EXPECT_EQ(differing, 1);
    }
}

TEST_F(Marks, CoordinatesBeyondFixedPointAreClamped) {
    start(sample("figure.kte"));
    MarkBatch batch;
    batch.point(R3XVECTOR3D(1e9f, -1e9f, 5.0f), {1, 2, 3});
    EXPECT_EQ(drawn(batch, GL_POINTS), (std::vector<float>{32767.0f, -32767.0f, 5.0f}));
}

TEST_F(Marks, AnEmptyBatchMakesNoCall) {
    start(sample("figure.kte"));
    EXPECT_TRUE(drawn(MarkBatch(), GL_LINES).empty());
    GlRecorder::setRecording(true);
    MarkBatch().draw(true);
    EXPECT_TRUE(GlRecorder::calls().empty());
    GlRecorder::setRecording(false);
}

TEST_F(Marks, EachTypeOfLightHasAMarkOfItsOwn) {
    using keltra::formats::LightType;
    const MarkBatch point = lightMarks(LightType::kPoint);
    EXPECT_EQ(point.lines(), 5u) << "a star";
    EXPECT_EQ(drawn(point, GL_POINTS), (std::vector<float>{2.0f, 3.0f, 4.0f}));
    const MarkBatch spot = lightMarks(LightType::kSpot);
    EXPECT_EQ(spot.lines(), 5u + 12u + 4u) << "a star and a cone";
    EXPECT_EQ(spot.points(), 1u);
    const MarkBatch directional = lightMarks(LightType::kDirectional);
    EXPECT_EQ(directional.lines(), 5u) << "an arrow";
    EXPECT_EQ(directional.points(), 0u);
}

TEST_F(Marks, AnArrowStartsAboveTheModelAndPointsAtIt) {
    const std::vector<float> ends = drawn(lightMarks(keltra::formats::LightType::kDirectional), GL_LINES);
    ASSERT_GE(ends.size(), 6u);
    EXPECT_NEAR(ends[1], 13.0f, 0.01f) << "1.3 radii against the direction";
    EXPECT_NEAR(ends[4], 8.5f, 0.01f);
    EXPECT_NEAR(ends[0], 0.0f, 0.01f);
    EXPECT_NEAR(ends[5], 0.0f, 0.01f);
}

TEST_F(Marks, AConeOpensByTheCutOffAngle) {
    const std::vector<float> ends = drawn(lightMarks(keltra::formats::LightType::kSpot), GL_LINES);
    // Behind the star: the rim, 25 degrees off the axis at a distance of 4.
    for (std::size_t end = 5 * 6; end + 3 <= ends.size(); end += 3) {
        const float x = ends[end] - 2.0f, y = ends[end + 1] - 3.0f, z = ends[end + 2] - 4.0f;
        const float distance = std::hypot(x, y, z);
        if (distance < 0.1f) continue;  // a spoke begins at the light
        EXPECT_NEAR(distance, 4.0f, 0.01f);
        EXPECT_NEAR(std::acos(-y / distance) * 57.2958f, 25.0f, 0.1f);
    }
}
