// SPDX-License-Identifier: Zlib
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <keltra/element.h>
#include <keltra/glbridge.h>
#include <keltra/helper.h>
#include <keltra/light.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include "tests/support/allocations.h"
#include "tests/support/gl_recorder.h"

namespace keltra::test {
namespace {

using ::testing::ElementsAre;

constexpr std::int64_t kOne = 1 << 16;

/// The values of the newest call of `function` for a light and a parameter; none when there was no such call.
std::vector<std::int64_t> lastValues(const char *function, GLenum light, GLenum parameter) {
    std::vector<std::int64_t> values;
    for (const Call &call : GlRecorder::all(function)) {
        if (call.arguments[0] != light || call.arguments[1] != parameter) continue;
        values = call.contents.empty() ? std::vector<std::int64_t>{call.arguments[2]} : call.contents;
    }
    return values;
}

std::vector<std::int64_t> lightVector(GLenum light, GLenum parameter) {
    return lastValues("glLightxv", light, parameter);
}

std::vector<std::int64_t> lightValue(GLenum light, GLenum parameter) {
    return lastValues("glLightx", light, parameter);
}

std::vector<std::int64_t> fixed(std::initializer_list<float> values) {
    std::vector<std::int64_t> result;
    for (float value : values) result.push_back(static_cast<std::int64_t>(value * 65536.0f));
    return result;
}

class LightTest : public ::testing::Test {
   protected:
    void SetUp() override {
        ASSERT_TRUE(KTELEMENT::init(64));
        KTLIGHT::lighting = false;
        KT_glMatrixMode(GL_MODELVIEW);
        KT_glLoadIdentity();
        GlRecorder::clear();
    }
    void TearDown() override {
        KTLIGHT::lighting = false;
        KTELEMENT::free();
    }

    bool render(KTLIGHT &light, unsigned int slot = 0) {
        KTELEMENT element;
        element.node = &light;
        element.param1 = slot;
        return light.render(&element);
    }

    /// Passes the lights in a row along X, the first farthest away, and then `object` at the origin.
    static KTELEMENT *passScene(std::vector<KTLIGHT> &lights, KTHELPER &object) {
        KTELEMENT::reset();
        for (std::size_t i = 0; i < lights.size(); ++i) {
            lights[i].setPosition(float(lights.size() - i), 0.0f, 0.0f);
            lights[i].pass();
        }
        object.pass();
        KTELEMENT::sort3D();
        return KTELEMENT::elementPointer[KTELEMENT::getNumberOfPassedElements() - 1];
    }

    GlRecorder::Stub stub;
};

TEST_F(LightTest, ConstructionGivesTheStatedValues) {
    KTLIGHT light;
    EXPECT_EQ(light.getType(), unsigned(KT_LIGHT));
    EXPECT_STREQ(light.getTypeName(), "light");
    EXPECT_EQ(light.getName(), "[light " + std::to_string(light.getId()) + "]");
    EXPECT_EQ(light.lightType, unsigned(KT_LIGHT_POINT));
    EXPECT_TRUE(light.getAmbient() == R3XVECTOR4D(0.2f, 0.2f, 0.2f, 1.0f));
    EXPECT_TRUE(light.getDiffuse() == R3XVECTOR4D(0.7f, 0.7f, 0.7f, 1.0f));
    EXPECT_TRUE(light.getSpecular() == R3XVECTOR4D(0.2f, 0.2f, 0.2f, 1.0f));
    EXPECT_TRUE(light.getAttenuation() == R3XVECTOR3D(1.0f, 0.0f, 0.0f));
    EXPECT_EQ(light.getCutOff(), 180.0f);
    EXPECT_EQ(light.getExponent(), 0.0f);
    EXPECT_FALSE(light.isExclusive());
    EXPECT_FALSE(light.isShadowCaster());
    EXPECT_EQ(light.getShadowNearPlane(), 1.0f);
    EXPECT_EQ(light.getShadowFarPlane(), 1024.0f);
    EXPECT_EQ(light.shadowData, nullptr);
    EXPECT_TRUE(light.getDirection() == R3XVECTOR3D(0.0f, 0.0f, 0.0f));
}

TEST_F(LightTest, SettersAreRead) {
    KTLIGHT light;
    light.setLightType(KT_LIGHT_SPOT);
    light.setAmbient(0.1f, 0.2f, 0.3f, 0.4f);
    light.setDiffuse(R3XVECTOR4D(0.5f, 0.6f, 0.7f, 0.8f));
    light.setSpecular(0.9f, 1.0f, 0.0f, 0.1f);
    light.setAttenuation(1.0f, 2.0f, 3.0f);
    light.setCutOff(45.0f);
    light.setExponent(8.0f);
    light.setExclusive(true);
    light.castShadows(true);
    light.setShadowNearPlane(2.0f);
    light.setShadowFarPlane(3.0f);
    KTLIGHT copy(light);
    for (const KTLIGHT *each : {&light, &copy}) {
        EXPECT_EQ(each->getLightType(), unsigned(KT_LIGHT_SPOT));
        EXPECT_TRUE(each->getAmbient() == R3XVECTOR4D(0.1f, 0.2f, 0.3f, 0.4f));
        EXPECT_TRUE(each->getDiffuse() == R3XVECTOR4D(0.5f, 0.6f, 0.7f, 0.8f));
        EXPECT_TRUE(each->getSpecular() == R3XVECTOR4D(0.9f, 1.0f, 0.0f, 0.1f));
        EXPECT_TRUE(each->getAttenuation() == R3XVECTOR3D(1.0f, 2.0f, 3.0f));
        EXPECT_EQ(each->getCutOff(), 45.0f);
        EXPECT_EQ(each->getExponent(), 8.0f);
        EXPECT_TRUE(each->isExclusive());
        EXPECT_TRUE(each->isShadowCaster());
        EXPECT_EQ(each->getShadowNearPlane(), 2.0f);
        EXPECT_EQ(each->getShadowFarPlane(), 3.0f);
    }
}

// They are kept in 16.16 between draws; any field may have changed behind the setters' back.
TEST_F(LightTest, EachChangedParameterIsSentWithTheNextDraw) {
    KTLIGHT light;
    light.setLightType(KT_LIGHT_SPOT);
    float *const fields[] = {&light.ambient.x,     &light.ambient.w,     &light.diffuse.y,
                             &light.specular.z,    &light.attenuation.x, &light.attenuation.y,
                             &light.attenuation.z, &light.cutOff,        &light.exponent};
    const GLenum names[] = {GL_AMBIENT,
                            GL_AMBIENT,
                            GL_DIFFUSE,
                            GL_SPECULAR,
                            GL_CONSTANT_ATTENUATION,
                            GL_LINEAR_ATTENUATION,
                            GL_QUADRATIC_ATTENUATION,
                            GL_SPOT_CUTOFF,
                            GL_SPOT_EXPONENT};
    const int places[] = {0, 3, 1, 2, 0, 0, 0, 0, 0};
    render(light);
    for (std::size_t i = 0; i < std::size(fields); ++i) {
        *fields[i] = 0.375f;
        GlRecorder::clear();
        render(light);
        const std::vector<std::int64_t> values =
            i < 4 ? lightVector(GL_LIGHT0, names[i]) : lightValue(GL_LIGHT0, names[i]);
        ASSERT_GT(values.size(), std::size_t(places[i]));
        EXPECT_EQ(values[places[i]], kOne * 3 / 8) << i;
    }
    KTLIGHT other;
    other.setDiffuse(0.25f, 0.0f, 0.0f, 1.0f);
    light = other;
    GlRecorder::clear();
    render(light);
    EXPECT_EQ(lightVector(GL_LIGHT0, GL_DIFFUSE), fixed({0.25f, 0.0f, 0.0f, 1.0f}));
}

TEST_F(LightTest, TheLightingSwitchIsCached) {
    KTLIGHT::lightingOn();
    KTLIGHT::lightingOn();
    EXPECT_TRUE(KTLIGHT::getLighting());
    EXPECT_EQ(GlRecorder::count("glEnable", {GL_LIGHTING}), 1);
    KTLIGHT::lightingOff();
    KTLIGHT::lightingOff();
    EXPECT_FALSE(KTLIGHT::getLighting());
    EXPECT_EQ(GlRecorder::count("glDisable", {GL_LIGHTING}), 1);
    EXPECT_EQ(GlRecorder::calls().size(), 2u);
}

TEST_F(LightTest, RenderLoadsEveryParameter) {
    KTLIGHT light;
    light.setAmbient(0.5f, 0.25f, 0.125f, 1.0f);
    light.setDiffuse(1.0f, 0.5f, 0.25f, 1.0f);
    light.setSpecular(0.0f, 1.0f, 0.0f, 0.5f);
    light.setExponent(16.0f);
    light.setAttenuation(1.0f, 0.5f, 0.25f);
    ASSERT_TRUE(render(light, 3));
    EXPECT_TRUE(KTLIGHT::lighting);
    EXPECT_EQ(GlRecorder::count("glEnable", {GL_LIGHTING}), 1);
    EXPECT_EQ(GlRecorder::count("glEnable", {GL_LIGHT3}), 1);
    EXPECT_EQ(lightVector(GL_LIGHT3, GL_AMBIENT), fixed({0.5f, 0.25f, 0.125f, 1.0f}));
    EXPECT_EQ(lightVector(GL_LIGHT3, GL_DIFFUSE), fixed({1.0f, 0.5f, 0.25f, 1.0f}));
    EXPECT_EQ(lightVector(GL_LIGHT3, GL_SPECULAR), fixed({0.0f, 1.0f, 0.0f, 0.5f}));
    EXPECT_EQ(lightValue(GL_LIGHT3, GL_SPOT_EXPONENT), fixed({16.0f}));
    EXPECT_EQ(lightValue(GL_LIGHT3, GL_CONSTANT_ATTENUATION), fixed({1.0f}));
    EXPECT_EQ(lightValue(GL_LIGHT3, GL_LINEAR_ATTENUATION), fixed({0.5f}));
    EXPECT_EQ(lightValue(GL_LIGHT3, GL_QUADRATIC_ATTENUATION), fixed({0.25f}));
    EXPECT_EQ(GlRecorder::count("glLightxv"), 5);
    EXPECT_EQ(GlRecorder::count("glLightx"), 5);
}

TEST_F(LightTest, PositionAndDirectionAreSetInTheLightsOwnFrame) {
    KTLIGHT light;
    light.setRotation(10.0f, 20.0f, 30.0f);
    KTELEMENT element;
    element.matrix.setTranslation(1.0f, 2.0f, 3.0f);
    ASSERT_TRUE(light.render(&element));
    EXPECT_EQ(GlRecorder::last("glLoadMatrixx").contents[12], kOne);
    const std::vector<Call> turns = GlRecorder::all("glRotatex");
    ASSERT_EQ(turns.size(), 3u);
    EXPECT_THAT(turns[0].arguments, ElementsAre(10 * kOne, kOne, 0, 0));
    EXPECT_THAT(turns[1].arguments, ElementsAre(20 * kOne, 0, kOne, 0));
    EXPECT_THAT(turns[2].arguments, ElementsAre(30 * kOne, 0, 0, kOne));
    const std::vector<std::string> names = GlRecorder::names();
    ASSERT_EQ(names.size(), 16u);
    EXPECT_THAT(
        std::vector<std::string>(names.end() - 6, names.end()),
        ElementsAre("glLoadMatrixx", "glRotatex", "glRotatex", "glRotatex", "glLightxv", "glLightxv"));
}

TEST_F(LightTest, APointLightHasNoCone) {
    KTLIGHT light;
    light.setCutOff(20.0f);
    light.setDirection(1.0f, 0.0f, 0.0f);
    ASSERT_TRUE(render(light));
    EXPECT_EQ(lightValue(GL_LIGHT0, GL_SPOT_CUTOFF), fixed({180.0f}));
    EXPECT_EQ(lightVector(GL_LIGHT0, GL_POSITION), fixed({0.0f, 0.0f, 0.0f, 1.0f}));
    EXPECT_EQ(lightVector(GL_LIGHT0, GL_SPOT_DIRECTION), fixed({0.0f, 0.0f, 0.0f, 1.0f}));
}

TEST_F(LightTest, ADirectionalLightComesFromTheOtherSide) {
    KTLIGHT light;
    light.setLightType(KT_LIGHT_DIRECTIONAL);
    light.setCutOff(20.0f);
    light.setDirection(0.0f, 0.0f, -1.0f);
    ASSERT_TRUE(render(light));
    EXPECT_EQ(lightValue(GL_LIGHT0, GL_SPOT_CUTOFF), fixed({180.0f}));
    EXPECT_EQ(lightVector(GL_LIGHT0, GL_POSITION), fixed({0.0f, 0.0f, 1.0f, 0.0f}));
    EXPECT_EQ(lightVector(GL_LIGHT0, GL_SPOT_DIRECTION), fixed({0.0f, 0.0f, 0.0f, 0.0f}));
}

TEST_F(LightTest, ASpotLightHasItsOwnCone) {
    KTLIGHT light;
    light.setLightType(KT_LIGHT_SPOT);
    light.setCutOff(20.0f);
    light.setDirection(0.0f, -1.0f, 0.5f);
    ASSERT_TRUE(render(light));
    EXPECT_EQ(lightValue(GL_LIGHT0, GL_SPOT_CUTOFF), fixed({20.0f}));
    EXPECT_EQ(lightVector(GL_LIGHT0, GL_POSITION), fixed({0.0f, 0.0f, 0.0f, 1.0f}));
    EXPECT_EQ(lightVector(GL_LIGHT0, GL_SPOT_DIRECTION), fixed({0.0f, -1.0f, 0.5f, 1.0f}));
}

TEST_F(LightTest, AnUnknownKindKeepsItsConeAndHasNoDirection) {
    KTLIGHT light;
    light.setLightType(77);
    light.setCutOff(20.0f);
    light.setDirection(0.0f, -1.0f, 0.0f);
    ASSERT_TRUE(render(light));
    EXPECT_EQ(lightValue(GL_LIGHT0, GL_SPOT_CUTOFF), fixed({20.0f}));
    EXPECT_EQ(lightVector(GL_LIGHT0, GL_POSITION), fixed({0.0f, 0.0f, 0.0f, 1.0f}));
    EXPECT_EQ(lightVector(GL_LIGHT0, GL_SPOT_DIRECTION), fixed({0.0f, 0.0f, 0.0f, 1.0f}));
}

TEST_F(LightTest, ALightAimingAtItselfFacesItsTarget) {
    KTLIGHT light;
    light.setPosition(1.0f, 0.0f, 0.0f);
    light.setTarget(1.0f, 0.0f, -4.0f);
    light.setTargetNode(&light);
    ASSERT_TRUE(render(light));
    EXPECT_TRUE(light.getDirection() == R3XVECTOR3D(0.0f, 0.0f, -1.0f));

    R3XMATRIX matrix;
    matrix.setTranslation(1.0f, 3.0f, -4.0f);
    light.setMatrix(matrix);
    light.transformMode = 1;
    ASSERT_TRUE(render(light));
    EXPECT_TRUE(light.getDirection() == R3XVECTOR3D(0.0f, -1.0f, 0.0f));

    light.setTarget(1.0f, 3.0f, -4.0f);
    ASSERT_TRUE(render(light));
    EXPECT_TRUE(light.getDirection() == R3XVECTOR3D(0.0f, 0.0f, 0.0f));
}

// Deliberate: unlike a fixed target, the fourth component of 1 takes part, so that the direction is shorter
// than 1; scenes have been lit with it.
TEST_F(LightTest, TheWayToATargetNodeHasAFourthComponent) {
    KTNODE mount, aim;
    KTLIGHT light;
    aim.link(&mount);
    mount.setPosition(0.0f, 0.0f, -1.0f);
    aim.setPosition(0.0f, 0.0f, -1.0f);
    light.setPosition(0.0f, 0.0f, 0.0f);
    light.setTargetNode(&aim);
    ASSERT_TRUE(render(light));
    EXPECT_EQ(light.getDirection().x, 0.0f);
    EXPECT_FLOAT_EQ(light.getDirection().z, -2.0f / std::sqrt(5.0f));
}

TEST_F(LightTest, RenderWithoutAnElementOrAGlLightChangesNothing) {
    KTLIGHT light;
    light.setTarget(0.0f, 0.0f, -1.0f);
    light.setTargetNode(&light);
    EXPECT_FALSE(light.render(nullptr));
    EXPECT_FALSE(render(light, 8));
    EXPECT_FALSE(render(light, ~0u));
    EXPECT_TRUE(GlRecorder::calls().empty());
    EXPECT_FALSE(KTLIGHT::lighting);
    EXPECT_TRUE(light.getDirection() == R3XVECTOR3D(0.0f, 0.0f, 0.0f));
    EXPECT_TRUE(render(light, 7));
    EXPECT_EQ(GlRecorder::count("glEnable", {GL_LIGHT7}), 1);
}

TEST_F(LightTest, TheFourNearestAreBoundNearestFirst) {
    std::vector<KTLIGHT> lights(6);
    KTHELPER object;
    for (std::size_t i = 0; i < lights.size(); ++i) lights[i].setExponent(float(i));
    KTELEMENT *element = passScene(lights, object);
    ASSERT_EQ(element->node, &object);
    KTLIGHT::lightingOn();
    GlRecorder::clear();
    EXPECT_TRUE(KTLIGHT::activateNearest(element));
    for (unsigned int i = 0; i < 4; ++i) {
        KTELEMENT *nearest = element->getNearestLight(i);
        ASSERT_NE(nearest, nullptr);
        EXPECT_EQ(nearest->node, &lights[5 - i]);
        EXPECT_EQ(nearest->getParam1(), i);
        EXPECT_EQ(lightValue(GL_LIGHT0 + i, GL_SPOT_EXPONENT), fixed({float(5 - i)}));
    }
    EXPECT_EQ(GlRecorder::count("glEnable"), 4);
    EXPECT_EQ(GlRecorder::count("glEnable", {GL_LIGHT4}), 0);
}

TEST_F(LightTest, FewerLightsThanFourAreAllBound) {
    std::vector<KTLIGHT> lights(2);
    KTHELPER object;
    KTELEMENT *element = passScene(lights, object);
    KTLIGHT::lightingOn();
    EXPECT_TRUE(KTLIGHT::activateNearest(element));
    EXPECT_NE(element->getNearestLight(1), nullptr);
    EXPECT_EQ(element->getNearestLight(2), nullptr);
    EXPECT_EQ(GlRecorder::count("glEnable", {GL_LIGHT2}), 0);
}

TEST_F(LightTest, AnExclusiveLightComesFirst) {
    std::vector<KTLIGHT> lights(6);
    KTHELPER object;
    KTELEMENT *element = passScene(lights, object);
    lights[0].setExclusive(true);
    KTLIGHT::lightingOn();
    EXPECT_TRUE(KTLIGHT::activateNearest(element));
    EXPECT_EQ(element->getNearestLight(0)->node, &lights[0]);
    EXPECT_EQ(element->getNearestLight(1)->node, &lights[5]);
}

TEST_F(LightTest, ActivateNearestNeedsAnElementAndLighting) {
    std::vector<KTLIGHT> lights(2);
    KTHELPER object;
    KTELEMENT *element = passScene(lights, object);
    GlRecorder::clear();
    EXPECT_FALSE(KTLIGHT::activateNearest(element));
    EXPECT_EQ(element->getNearestLight(0), nullptr);
    EXPECT_TRUE(GlRecorder::calls().empty());
    KTLIGHT::lightingOn();
    EXPECT_FALSE(KTLIGHT::activateNearest(nullptr));
}

TEST_F(LightTest, WithoutLightsThereIsNothingToDo) {
    std::vector<KTLIGHT> none;
    KTHELPER object;
    KTELEMENT *element = passScene(none, object);
    KTLIGHT::lightingOn();
    GlRecorder::clear();
    EXPECT_TRUE(KTLIGHT::activateNearest(element));
    EXPECT_TRUE(GlRecorder::calls().empty());
}

TEST_F(LightTest, AnEntryThatIsNoLightEndsTheSelection) {
    std::vector<KTLIGHT> lights(3);
    KTHELPER object;
    KTELEMENT *element = passScene(lights, object);
    lights[1].type = KT_HELPER;
    KTLIGHT::lightingOn();
    EXPECT_FALSE(KTLIGHT::activateNearest(element));
    EXPECT_EQ(element->getNearestLight(0)->node, &lights[2]);
    EXPECT_EQ(element->getNearestLight(1), nullptr);
    EXPECT_EQ(GlRecorder::count("glEnable", {GL_LIGHT1}), 0);
}

TEST_F(LightTest, ALightDestroyedAfterItsPassIsNoLight) {
    KTHELPER object;
    auto gone = std::make_unique<KTLIGHT>();
    gone->pass();
    object.pass();
    KTELEMENT::sort3D();
    gone.reset();
    KTLIGHT::lightingOn();
    EXPECT_FALSE(KTLIGHT::activateNearest(&KTELEMENT::element[1]));
    EXPECT_EQ(KTELEMENT::element[1].getNearestLight(0), nullptr);
}

TEST_F(LightTest, ActivateNearestAllocatesNothing) {
    std::vector<KTLIGHT> lights(6);
    KTHELPER object;
    KTELEMENT *element = passScene(lights, object);
    KTNODE aim;
    for (KTLIGHT &light : lights) light.setTargetNode(&aim);
    KTLIGHT::lightingOn();
    const GlRecorder::Pause pause;
    Allocations::startCounting();
    EXPECT_TRUE(KTLIGHT::activateNearest(element));
    EXPECT_EQ(Allocations::stopCounting(), 0);
}

}  // namespace
}  // namespace keltra::test
