// SPDX-License-Identifier: Zlib
#include <chrono>
#include <string>
#include <thread>

#include "tests/support/engine_fixture.h"

namespace keltra::test {
namespace {

struct AtLoad {
    bool active, wireframe, shadowing, blooming, HDR, DOF, skipShadows, renderingOnFbo;
    int timer;
    long int timeStamp;
    float bloomingIntensity, HDRExposure, HDRCurrentLuminance, DOFFocus, DOFRange;
    unsigned int total, used;
    KTNODE *skybox;
    std::string path;
};

// Read before the first start.
const AtLoad kAtLoad = {KELTRA::active,
                        KELTRA::wireframe,
                        KELTRA::shadowing,
                        KELTRA::blooming,
                        KELTRA::HDR,
                        KELTRA::DOF,
                        KELTRA::skipShadows,
                        KELTRA::renderingOnFbo,
                        KELTRA::timer,
                        KELTRA::timeStamp,
                        KELTRA::bloomingIntensity,
                        KELTRA::HDRExposure,
                        KELTRA::HDRCurrentLuminance,
                        KELTRA::DOFFocus,
                        KELTRA::DOFRange,
                        KELTRA::videoMemoryTotal,
                        KELTRA::videoMemoryUsed,
                        KELTRA::skybox,
                        KELTRA::ktePath};

void wait() { std::this_thread::sleep_for(std::chrono::milliseconds(3)); }

class EngineFacadeTest : public EngineTest {};

TEST_F(EngineFacadeTest, HoldsTheseValuesBeforeTheFirstStart) {
    EXPECT_FALSE(kAtLoad.active || kAtLoad.wireframe || kAtLoad.shadowing || kAtLoad.blooming ||
                 kAtLoad.HDR || kAtLoad.DOF || kAtLoad.skipShadows || kAtLoad.renderingOnFbo);
    EXPECT_EQ(kAtLoad.timer, -1);
    EXPECT_EQ(kAtLoad.timeStamp, 65536) << "a stamp that was just zeroed never equals a frame";
    EXPECT_EQ(kAtLoad.bloomingIntensity, 1.0f);
    EXPECT_EQ(kAtLoad.HDRExposure, 1.0f);
    EXPECT_EQ(kAtLoad.HDRCurrentLuminance, 1.0f);
    EXPECT_EQ(kAtLoad.DOFFocus, 1.0f);
    EXPECT_EQ(kAtLoad.DOFRange, 2.0f);
    EXPECT_EQ(kAtLoad.total, 0u);
    EXPECT_EQ(kAtLoad.used, 0u);
    EXPECT_EQ(kAtLoad.skybox, nullptr);
    EXPECT_EQ(kAtLoad.path, "");
}

TEST_F(EngineFacadeTest, StartUpSetsTimerBudgetAndNothingElse) {
    EXPECT_TRUE(KELTRA::isActive());
    EXPECT_GE(KELTRA::timer, 0);
    EXPECT_EQ(KELTRA::getVideoMemory(), 8u * 1024u * 1024u);
    EXPECT_EQ(KELTRA::getUsedVideoMemory(), 0u);
    EXPECT_EQ(KELTRA::getFreeVideoMemory(), 8u * 1024u * 1024u);
}

TEST_F(EngineFacadeTest, VideoMemoryIsBookkeepingWithoutALimit) {
    EXPECT_EQ(KELTRA::pushVideoMemory(1000), 1000u);
    EXPECT_EQ(KELTRA::pushVideoMemory(24), 1024u);
    EXPECT_EQ(KELTRA::getFreeVideoMemory(), 8388608u - 1024u);
    EXPECT_EQ(KELTRA::popVideoMemory(1000), 24u);
    EXPECT_EQ(KELTRA::pushVideoMemory(8388608), 8388632u);
    EXPECT_EQ(KELTRA::getFreeVideoMemory(), 4294967272u) << "wraps around";
    EXPECT_EQ(KELTRA::popVideoMemory(8388633), 4294967295u) << "wraps around";
    EXPECT_EQ(KELTRA::pushVideoMemory(1), 0u);
}

TEST_F(EngineFacadeTest, TheTimerAdvancesOnceAFrame) {
    KELTRA::updateTimer();
    const float first = KELTRA::getFPSfactor();
    EXPECT_GT(first, 0.0f);
    EXPECT_FLOAT_EQ(KELTRA::getFPS(), 1.0f / first);
    wait();
    KELTRA::updateTimer();
    KELTRA::begin3D(nullptr);
    KELTRA::begin2D();
    KELTRA::end2D();
    EXPECT_EQ(KELTRA::getFPSfactor(), first);
    EXPECT_TRUE(KELTRA::swap());
    EXPECT_EQ(KELTRA::getFPSfactor(), first) << "the swap itself does not advance it";
    KELTRA::begin2D();
    KELTRA::end2D();
    const float second = KELTRA::getFPSfactor();
    EXPECT_GE(second, 0.003f);
    wait();
    KELTRA::begin3D(nullptr);
    EXPECT_EQ(KELTRA::getFPSfactor(), second);
    KELTRA::swap();
    wait();
    KELTRA::begin3D(nullptr);
    EXPECT_NE(KELTRA::getFPSfactor(), second);
}

TEST_F(EngineFacadeTest, TheTimerAdvancesInTheFirstFrameAfterARestart) {
    KELTRA::updateTimer();
    const float stale = KELTRA::getFPSfactor();
    ASSERT_TRUE(KELTRA::free());
    ASSERT_TRUE(KELTRA::init(&settings));
    wait();
    KELTRA::updateTimer();
    EXPECT_GE(KELTRA::getFPSfactor(), 0.003f);
    EXPECT_NE(KELTRA::getFPSfactor(), stale);
}

TEST_F(EngineFacadeTest, AStoppedEngineHasNoFrameRate) {
    ASSERT_TRUE(KELTRA::free());
    EXPECT_EQ(KELTRA::getFPS(), -1.0f);
    EXPECT_EQ(KELTRA::getFPSfactor(), -1.0f);
}

TEST_F(EngineFacadeTest, CountsFramesAndKeepsCountingAfterARestart) {
    const long int before = KELTRA::getTimeStamp();
    EXPECT_GE(before, 65536);
    KELTRA::begin3D(nullptr);
    EXPECT_EQ(KELTRA::getTimeStamp(), before + 1);
    KELTRA::begin2D();
    KELTRA::end2D();
    KELTRA::swap();
    EXPECT_EQ(KELTRA::getTimeStamp(), before + 1) << "only the 3D pass counts";
    ASSERT_TRUE(KELTRA::free());
    ASSERT_TRUE(KELTRA::init(&settings));
    KELTRA::begin3D(nullptr);
    EXPECT_EQ(KELTRA::getTimeStamp(), before + 2);
}

TEST_F(EngineFacadeTest, SwitchesAndParametersAreStored) {
    const struct {
        void (*on)();
        void (*off)();
        bool (*is)();
    } switches[] = {{KELTRA::wireframeOn, KELTRA::wireframeOff, KELTRA::isWireframed},
                    {KELTRA::bloomingOn, KELTRA::bloomingOff, KELTRA::isBlooming},
                    {KELTRA::HDROn, KELTRA::HDROff, KELTRA::isHDR},
                    {KELTRA::DOFOn, KELTRA::DOFOff, [] { return KELTRA::DOF; }}};
    for (const auto &each : switches) {
        EXPECT_FALSE(each.is());
        each.on();
        EXPECT_TRUE(each.is());
        each.off();
        EXPECT_FALSE(each.is());
    }
    const struct {
        void (*set)(float);
        float (*get)();
        float usual;
    } parameters[] = {{KELTRA::setBloomingIntensity, KELTRA::getBloomingIntensity, 1.0f},
                      {KELTRA::setHDRExposure, KELTRA::getHDRExposure, 1.0f},
                      {KELTRA::setDOFFocus, KELTRA::getDOFFocus, 1.0f},
                      {KELTRA::setDOFRange, KELTRA::getDOFRange, 2.0f}};
    for (const auto &each : parameters) {
        each.set(0.375f);
        EXPECT_EQ(each.get(), 0.375f);
        each.set(each.usual);
    }
    EXPECT_TRUE(GlRecorder::calls().empty());
}

TEST_F(EngineFacadeTest, ShadowsStayOffWithoutSupport) {
    KELTRA::shadowingOn();
    EXPECT_FALSE(KELTRA::isShadowed());
    KTSHADER::shadowsFlag = true;
    KELTRA::shadowingOn();
    EXPECT_TRUE(KELTRA::isShadowed());
    KTSHADER::shadowsFlag = false;
    KELTRA::shadowingOff();
    EXPECT_FALSE(KELTRA::isShadowed());
}

TEST_F(EngineFacadeTest, NothingClearsTheSkippingOfShadowsAgain) {
    KELTRA::skipShadowsGeneration();
    EXPECT_TRUE(KELTRA::skipShadows);
    ASSERT_TRUE(KELTRA::free());
    ASSERT_TRUE(KELTRA::init(&settings));
    EXPECT_TRUE(KELTRA::skipShadows);
    KELTRA::skipShadows = false;
}

TEST_F(EngineFacadeTest, SwitchesSurviveARestart) {
    KELTRA::wireframeOn();
    KELTRA::HDROn();
    KELTRA::setDOFFocus(7.0f);
    ASSERT_TRUE(KELTRA::free());
    ASSERT_TRUE(KELTRA::init(&settings));
    EXPECT_TRUE(KELTRA::isWireframed());
    EXPECT_TRUE(KELTRA::isHDR());
    EXPECT_EQ(KELTRA::getDOFFocus(), 7.0f);
    KELTRA::setDOFFocus(1.0f);
}

TEST_F(EngineFacadeTest, KeepsAPathOf255CharactersAndCutsLongerOnes) {
    KELTRA::setKTEPath("data/");
    EXPECT_STREQ(KELTRA::getKTEPath(), "data/");
    KELTRA::setKTEPath(std::string(5000, 'p').c_str());
    EXPECT_EQ(KELTRA::getKTEPath(), std::string(255, 'p'));
    KELTRA::setKTEPath(nullptr);
    EXPECT_STREQ(KELTRA::getKTEPath(), "");
}

TEST_F(EngineFacadeTest, ADestroyedSkyboxIsForgotten) {
    {
        KTNODE node;
        KELTRA::setSkybox(&node);
        EXPECT_EQ(KELTRA::getSkybox(), &node);
    }
    EXPECT_EQ(KELTRA::getSkybox(), nullptr);
    KELTRA::setSkybox(new KTNODE);
    ASSERT_TRUE(KELTRA::free());
    EXPECT_EQ(KELTRA::getSkybox(), nullptr);
}

TEST_F(EngineFacadeTest, UpdateVideoDoesNothing) {
    KELTRA::updateVideo();
    EXPECT_TRUE(GlRecorder::calls().empty());
}

TEST_F(EngineFacadeTest, StoppingDestroysEveryObject) {
    auto *parent = new KTNODE;
    auto *mesh = new KTMESH;
    auto *material = new KTMATERIAL;
    mesh->setMaterial(material);
    material->setTexture(0, new KTTEXTURE);
    mesh->link(parent);
    new KTLIGHT;
    new KTCAMERA;
    new KTHELPER;
    new KTFBO;
    new KTSHADER;
    new KTANIM;
    parent->pass();
    ASSERT_TRUE(KELTRA::free());
    EXPECT_EQ(KTNODE::getNumberOfNodes(), 0u);
    EXPECT_EQ(KTTEXTURE::getNumberOfTextures(), 0u);
    EXPECT_EQ(KTMATERIAL::getNumberOfMaterials(), 0u);
    EXPECT_EQ(KTSHADER::getNumberOfShaders(), 0u);
    EXPECT_EQ(KTFBO::getNumberOfFbos(), 0u);
    EXPECT_EQ(KTANIM::getNumberOfAnims(), 0u);
    EXPECT_EQ(KELTRA::getUsedVideoMemory(), 0u);
    EXPECT_EQ(KTELEMENT::getNumberOfPassedElements(), 0u);
}

TEST_F(EngineFacadeTest, EveryClassNamesItsObjectsByTheirIdentifier) {
    const auto expectName = [](const auto &object, const std::string &kind) {
        EXPECT_EQ(object.getName(), "[" + kind + " " + std::to_string(object.getId()) + "]");
        EXPECT_GT(object.getId(), 0u);
    };
    expectName(KTNODE(), "node");
    expectName(KTCAMERA(), "camera");
    expectName(KTLIGHT(), "light");
    expectName(KTMESH(), "mesh");
    expectName(KTHELPER(), "helper");
    expectName(KTANIM(), "anim");
    expectName(KTMATERIAL(), "material");
    expectName(KTSHADER(), "shader");
    expectName(KTFBO(), "fbo");
    const KTTEXTURE texture;
    EXPECT_EQ(texture.getFilename(), "[texture " + std::to_string(texture.getId()) + "]");
}

TEST_F(EngineFacadeTest, ObjectsOnTheStackOutliveTheEngine) {
    KTNODE node;
    KTMATERIAL material;
    ASSERT_TRUE(KELTRA::free());
    EXPECT_EQ(KTNODE::getNumberOfNodes(), 0u);
    EXPECT_FALSE(node.isRegistered());
    EXPECT_FALSE(material.isRegistered());
    node.setPosition(1.0f, 2.0f, 3.0f);
    EXPECT_EQ(node.getPosition(), R3XVECTOR3D(1.0f, 2.0f, 3.0f));
}

TEST_F(EngineFacadeTest, AStoppedEngineToleratesEveryCall) {
    ASSERT_TRUE(KELTRA::free());
    KTHELPER helper;
    EXPECT_TRUE(KELTRA::clear(true, true, true));
    EXPECT_TRUE(KELTRA::begin3D(nullptr));
    EXPECT_TRUE(helper.pass());
    EXPECT_TRUE(KELTRA::end3D());
    EXPECT_TRUE(KELTRA::begin2D());
    EXPECT_TRUE(KELTRA::end2D());
    EXPECT_FALSE(KELTRA::swap());
    KELTRA::updateTimer();
    EXPECT_EQ(KTELEMENT::getNumberOfPassedElements(), 0u);
    EXPECT_FALSE(KELTRA::isActive());
}

TEST_F(EngineFacadeTest, CallsInAnyOrderLeaveTheStacksBalanced) {
    KTHELPER helper;
    EXPECT_TRUE(KELTRA::end3D());
    EXPECT_TRUE(KELTRA::end2D());
    EXPECT_TRUE(KELTRA::end2D());
    EXPECT_TRUE(KELTRA::swap());
    EXPECT_TRUE(helper.pass());
    EXPECT_TRUE(KELTRA::begin2D());
    EXPECT_TRUE(KELTRA::begin3D(nullptr));
    EXPECT_TRUE(KELTRA::end2D());
    EXPECT_TRUE(KELTRA::end3D());
    EXPECT_EQ(GlRecorder::count("glPushMatrix"), GlRecorder::count("glPopMatrix"));
    expectNoGlError();
}

}  // namespace
}  // namespace keltra::test
