// SPDX-License-Identifier: Zlib
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <keltra/camera.h>
#include <keltra/glbridge.h>

#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include "tests/support/allocations.h"
#include "tests/support/gl_recorder.h"

namespace keltra::test {
namespace {

using ::testing::ElementsAre;

class CameraTest : public ::testing::Test {
   protected:
    void SetUp() override {
        KT_glMatrixMode(GL_MODELVIEW);
        KT_glLoadIdentity();
        GlRecorder::clear();
    }

    static R3XMATRIX viewOf(KTCAMERA &camera) {
        EXPECT_TRUE(camera.render(nullptr));
        return *camera.getThisCameraMatrix();
    }

    static void expectMatrix(const R3XMATRIX &matrix, const R3XMATRIX &expected) {
        for (int i = 0; i < 16; ++i) EXPECT_NEAR(matrix.m[i], expected.m[i], 1e-5f) << "element " << i;
    }

    static R3XMATRIX translation(float x, float y, float z) {
        R3XMATRIX matrix;
        matrix.setTranslation(x, y, z);
        return matrix;
    }

    GlRecorder::Stub stub;
};

TEST_F(CameraTest, ConstructionGivesTheStatedValues) {
    KTCAMERA camera;
    EXPECT_EQ(camera.getType(), unsigned(KT_CAMERA));
    EXPECT_STREQ(camera.getTypeName(), "camera");
    EXPECT_EQ(camera.getName(), "[camera " + std::to_string(camera.getId()) + "]");
    EXPECT_TRUE(camera.getPreRotation() == R3XVECTOR3D(0.0f, 0.0f, 0.0f));
    EXPECT_TRUE(camera.getUpDirection() == R3XVECTOR3D(0.0f, 1.0f, 0.0f));
    expectMatrix(*camera.getThisCameraMatrix(), R3XMATRIX());
}

TEST_F(CameraTest, AnUnturnedCameraMovesTheWorldTheOtherWay) {
    KTCAMERA camera;
    camera.setPosition(0.0f, 0.0f, 5.0f);
    expectMatrix(viewOf(camera), translation(0.0f, 0.0f, -5.0f));
    EXPECT_EQ(KTCAMERA::getThisPassCamera(), &camera);
    EXPECT_TRUE(KTCAMERA::getCameraPosition() == R3XVECTOR3D(0.0f, 0.0f, 5.0f));
    expectMatrix(*KTCAMERA::getCameraMatrix(), translation(0.0f, 0.0f, -5.0f));
}

// Deliberate: Z, X, Y, for first-person views; other nodes turn about X, Y, Z.
TEST_F(CameraTest, RotationsAreUndoneAboutZThenXThenY) {
    KTCAMERA camera;
    camera.setRotation(30.0f, 40.0f, 50.0f);
    camera.setPosition(1.0f, 2.0f, 3.0f);
    camera.render(nullptr);
    const std::vector<Call> turns = GlRecorder::all("glRotatex");
    ASSERT_EQ(turns.size(), 6u);
    EXPECT_THAT(turns[3].arguments, ElementsAre(-(50 << 16), 0, 0, 1 << 16));
    EXPECT_THAT(turns[4].arguments, ElementsAre(-(30 << 16), 1 << 16, 0, 0));
    EXPECT_THAT(turns[5].arguments, ElementsAre(-(40 << 16), 0, 1 << 16, 0));
    EXPECT_THAT(GlRecorder::last("glTranslatex").arguments, ElementsAre(-(1 << 16), -(2 << 16), -(3 << 16)));
    EXPECT_THAT(GlRecorder::names(), ElementsAre("glLoadIdentity", "glRotatex", "glRotatex", "glRotatex",
                                                 "glRotatex", "glRotatex", "glRotatex", "glTranslatex"));
}

TEST_F(CameraTest, PreRotationTurnsACameraWithoutTargetFirst) {
    KTCAMERA camera;
    camera.setPosition(0.0f, 0.0f, 5.0f);
    camera.setPreRotation(10.0f, 20.0f, 90.0f);
    camera.render(nullptr);
    const std::vector<Call> turns = GlRecorder::all("glRotatex");
    EXPECT_THAT(turns[0].arguments, ElementsAre(10 << 16, 1 << 16, 0, 0));
    EXPECT_THAT(turns[1].arguments, ElementsAre(20 << 16, 0, 1 << 16, 0));
    EXPECT_THAT(turns[2].arguments, ElementsAre(90 << 16, 0, 0, 1 << 16));

    camera.setPreRotation(R3XVECTOR3D(0.0f, 0.0f, 90.0f));
    EXPECT_NEAR(viewOf(camera).m[1], 1.0f, 1e-5f);
}

TEST_F(CameraTest, PreRotationHasNoEffectOnACameraWithATarget) {
    KTNODE aim;
    KTCAMERA camera;
    camera.setPosition(0.0f, 0.0f, 5.0f);
    camera.setPreRotation(10.0f, 20.0f, 30.0f);
    for (KTNODE *target : {static_cast<KTNODE *>(&camera), &aim}) {
        camera.setTargetNode(target);
        expectMatrix(viewOf(camera), translation(0.0f, 0.0f, -5.0f));
    }
}

TEST_F(CameraTest, AnExplicitMatrixIsTakenAsItIs) {
    KTCAMERA camera;
    camera.setPosition(9.0f, 9.0f, 9.0f);
    camera.setRotation(10.0f, 20.0f, 30.0f);
    camera.setMatrix(translation(1.0f, 2.0f, 3.0f));
    camera.transformMode = 1;
    expectMatrix(viewOf(camera), translation(1.0f, 2.0f, 3.0f));
    EXPECT_TRUE(KTCAMERA::getCameraPosition() == R3XVECTOR3D(1.0f, 2.0f, 3.0f));
}

TEST_F(CameraTest, AnyOtherTransformModeUsesPositionAndRotation) {
    KTCAMERA camera;
    camera.setPosition(0.0f, 0.0f, 5.0f);
    camera.setMatrix(translation(1.0f, 2.0f, 3.0f));
    camera.transformMode = 7;
    expectMatrix(viewOf(camera), translation(0.0f, 0.0f, -5.0f));
}

TEST_F(CameraTest, ACameraAimingAtItselfLooksAtItsTarget) {
    KTCAMERA camera;
    camera.setPosition(0.0f, 0.0f, 5.0f);
    camera.setTargetNode(&camera);
    expectMatrix(viewOf(camera), translation(0.0f, 0.0f, -5.0f));

    camera.setPosition(5.0f, 0.0f, 0.0f);
    R3XMATRIX view = viewOf(camera);
    R3XVECTOR4D origin = view.transform(R3XVECTOR3D(0.0f, 0.0f, 0.0f));
    R3XVECTOR4D left = view.transform(R3XVECTOR3D(0.0f, 0.0f, 1.0f));
    EXPECT_NEAR(origin.z, -5.0f, 1e-5f);
    EXPECT_NEAR(origin.x, 0.0f, 1e-5f);
    EXPECT_NEAR(left.x, -1.0f, 1e-5f);
}

TEST_F(CameraTest, TheEyeOfAnExplicitMatrixIsItsTranslation) {
    KTCAMERA camera;
    camera.transformMode = 1;
    camera.setMatrix(translation(0.0f, 0.0f, 8.0f));
    camera.setTargetNode(&camera);
    expectMatrix(viewOf(camera), translation(0.0f, 0.0f, -8.0f));
}

TEST_F(CameraTest, ATargetNodeIsTakenWhereItStandsInTheWorld) {
    KTNODE mount, aim;
    KTCAMERA camera;
    aim.link(&mount);
    mount.setPosition(10.0f, 0.0f, 0.0f);
    aim.setPosition(0.0f, 0.0f, -4.0f);
    camera.setPosition(10.0f, 0.0f, 5.0f);
    camera.setTargetNode(&aim);
    expectMatrix(viewOf(camera), translation(-10.0f, 0.0f, -5.0f));
    EXPECT_THAT(GlRecorder::names(),
                ElementsAre("glLoadIdentity", "glRotatex", "glRotatex", "glRotatex",                     //
                            "glPushMatrix", "glLoadIdentity", "glTranslatex", "glRotatex", "glRotatex",  //
                            "glRotatex", "glTranslatex", "glRotatex", "glRotatex", "glRotatex",          //
                            "glPopMatrix", "glLoadIdentity", "glLoadMatrixx", "glTranslatex"));
}

TEST_F(CameraTest, TheUpDirectionTurnsTheView) {
    KTCAMERA camera;
    camera.setPosition(0.0f, 0.0f, 5.0f);
    camera.setTargetNode(&camera);
    camera.setUpDirection(R3XVECTOR3D(3.0f, 0.0f, 0.0f));
    R3XVECTOR4D up = viewOf(camera).transform(R3XVECTOR3D(1.0f, 0.0f, 0.0f));
    EXPECT_NEAR(up.x, 0.0f, 1e-5f);
    EXPECT_NEAR(up.y, 1.0f, 1e-5f);
}

TEST_F(CameraTest, WithoutADirectionTheViewStaysANumber) {
    KTCAMERA camera;
    camera.setTargetNode(&camera);
    for (const R3XVECTOR3D &eye : {R3XVECTOR3D(0.0f, 0.0f, 0.0f), R3XVECTOR3D(0.0f, 7.0f, 0.0f)}) {
        camera.setPosition(eye);
        R3XMATRIX view = viewOf(camera);
        for (float element : view.m) EXPECT_TRUE(std::isfinite(element));
        EXPECT_EQ(view.m[0], 0.0f);
        EXPECT_EQ(view.m[15], 1.0f);
    }
}

TEST_F(CameraTest, MoveDoomStepsInViewSpace) {
    KTCAMERA camera;
    camera.setPosition(0.0f, 0.0f, 5.0f);
    camera.render(nullptr);
    camera.moveDoom(0.0f, 0.0f, -1.0f);
    EXPECT_TRUE(camera.getPosition() == R3XVECTOR3D(0.0f, 0.0f, 4.0f));
    EXPECT_TRUE(camera.getDirection() == R3XVECTOR3D(0.0f, 0.0f, -1.0f));

    camera.setRotation(0.0f, 90.0f, 0.0f);
    camera.render(nullptr);
    camera.moveDoom(R3XVECTOR3D(0.0f, 0.0f, -2.0f));
    EXPECT_NEAR(camera.getPosition().x, -2.0f, 1e-5f);
    EXPECT_NEAR(camera.getPosition().z, 4.0f, 1e-5f);
}

TEST_F(CameraTest, MoveDoomTurnsTheStepByTheWholeView) {
    KTCAMERA camera;
    camera.setRotation(30.0f, 50.0f, 70.0f);
    camera.render(nullptr);
    camera.moveDoom(1.0f, 2.0f, 3.0f);
    const R3XVECTOR3D step = camera.getDirection();
    const float *m = KTCAMERA::getCameraMatrix()->m;
    EXPECT_NEAR(m[0] * step.x + m[4] * step.y + m[8] * step.z, 1.0f, 1e-5f);
    EXPECT_NEAR(m[1] * step.x + m[5] * step.y + m[9] * step.z, 2.0f, 1e-5f);
    EXPECT_NEAR(m[2] * step.x + m[6] * step.y + m[10] * step.z, 3.0f, 1e-5f);
}

TEST_F(CameraTest, MoveDoomFollowsTheCameraThatRenderedLast) {
    KTCAMERA walker, other;
    other.setRotation(0.0f, 90.0f, 0.0f);
    walker.render(nullptr);
    other.render(nullptr);
    walker.moveDoom(0.0f, 0.0f, -1.0f);
    EXPECT_NEAR(walker.getPosition().x, -1.0f, 1e-5f);
    EXPECT_EQ(KTCAMERA::getThisPassCamera(), &other);
}

TEST_F(CameraTest, ADestroyedCameraIsCurrentNoMore) {
    auto camera = std::make_unique<KTCAMERA>();
    camera->render(nullptr);
    { KTCAMERA copy(*camera); }
    EXPECT_EQ(KTCAMERA::getThisPassCamera(), camera.get());
    camera->setPosition(1.0f, 1.0f, 1.0f);
    camera->render(nullptr);
    camera.reset();
    EXPECT_EQ(KTCAMERA::getThisPassCamera(), nullptr);
    EXPECT_TRUE(KTCAMERA::getCameraPosition() == R3XVECTOR3D(1.0f, 1.0f, 1.0f));
}

TEST_F(CameraTest, CopiesCarryEveryField) {
    KTCAMERA camera;
    camera.setPreRotation(1.0f, 2.0f, 3.0f);
    camera.setUpDirection(R3XVECTOR3D(0.0f, 0.0f, 1.0f));
    camera.setPosition(4.0f, 5.0f, 6.0f);
    camera.render(nullptr);
    KTCAMERA constructed(camera), assigned;
    assigned = camera;
    for (KTCAMERA *copy : {&constructed, &assigned}) {
        EXPECT_EQ(copy->getId(), camera.getId());
        EXPECT_TRUE(copy->getPreRotation() == camera.getPreRotation());
        EXPECT_TRUE(copy->getUpDirection() == camera.getUpDirection());
        expectMatrix(*copy->getThisCameraMatrix(), *camera.getThisCameraMatrix());
    }
}

TEST_F(CameraTest, RenderingAllocatesNothing) {
    KTNODE aim;
    KTCAMERA camera;
    camera.setTargetNode(&aim);
    const GlRecorder::Pause pause;
    Allocations::startCounting();
    for (int i = 0; i < 3; ++i) camera.render(nullptr);
    EXPECT_EQ(Allocations::stopCounting(), 0);
}

}  // namespace
}  // namespace keltra::test
