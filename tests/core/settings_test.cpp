// SPDX-License-Identifier: Zlib
#include <gmock/gmock.h>
#include <keltra/engine.h>
#include <keltra/opengl.h>
#include <keltra/settings.h>

#include <string>

#include "core/glbridge.h"
#include "tests/support/gl_recorder.h"

namespace keltra::test {
namespace {

using ::testing::ElementsAre;

constexpr char kDefaultTitle[] = "Keltra 3D Graphics Engine for PDA v1.6.6a";

void expectDefaults(const KTSETTINGS &settings) {
    EXPECT_STREQ(settings.getTitle(), kDefaultTitle);
    EXPECT_EQ(settings.getWindowX(), 240);
    EXPECT_EQ(settings.getWindowY(), 320);
    EXPECT_EQ(settings.getColorDepth(), 16);
    EXPECT_EQ(settings.getZetaDepth(), 16);
    EXPECT_EQ(settings.getStencilDepth(), 0);
    EXPECT_TRUE(settings.isFullScreen());
    EXPECT_FALSE(settings.isResizable());
    EXPECT_FALSE(settings.isLandscape());
    EXPECT_FALSE(settings.isCAVESplashScreen());
    EXPECT_EQ(settings.getAudioChannels(), 16);
    EXPECT_EQ(settings.getAudioBuffers(), 32);
    EXPECT_EQ(settings.getAudioElements(), 128);
    EXPECT_EQ(settings.getRenderingElements(), 0);
    EXPECT_FALSE(settings.getShaders());
    EXPECT_EQ(settings.getShadowMapSize(), 1024);
    EXPECT_EQ(settings.getFBOSizeX(), 1024);
    EXPECT_EQ(settings.getFBOSizeY(), 768);
    EXPECT_EQ(settings.getWaterSize(), 256);
    EXPECT_FALSE(settings.getForceFBO());
    for (const char *path : {settings.getKTEPath(), settings.getKTAPath(), settings.getMPGPath(),
                             settings.getTexturePath(), settings.getShaderPath(), settings.getFontPath()})
        EXPECT_STREQ(path, "");
}

void changeEverything(KTSETTINGS &settings) {
    settings.setTitle("Another title");
    settings.setWindowX(480);
    settings.setWindowY(640);
    settings.setColorDepth(24);
    settings.setZetaDepth(32);
    settings.setStencilDepth(8);
    settings.setFullScreen(false);
    settings.setResizable(true);
    settings.setLandscape(true);
    settings.setCAVESplashScreen(true);
    settings.setAudioChannels(1);
    settings.setAudioBuffers(2);
    settings.setAudioElements(3);
    settings.setRenderingElements(4);
    settings.setShaders(true);
    settings.setShadowMapSize(5);
    settings.setFBOSizeX(6);
    settings.setFBOSizeY(7);
    settings.setWaterSize(8);
    settings.setForceFBO(true);
    settings.setKTEPath("kte/");
    settings.setKTAPath("kta/");
    settings.setMPGPath("mpg/");
    settings.setTexturePath("texture/");
    settings.setShaderPath("shader/");
    settings.setFontPath("font/");
}

void expectChanged(const KTSETTINGS &settings) {
    EXPECT_STREQ(settings.getTitle(), "Another title");
    EXPECT_EQ(settings.getWindowX(), 480);
    EXPECT_EQ(settings.getWindowY(), 640);
    EXPECT_EQ(settings.getColorDepth(), 24);
    EXPECT_EQ(settings.getZetaDepth(), 32);
    EXPECT_EQ(settings.getStencilDepth(), 8);
    EXPECT_FALSE(settings.isFullScreen());
    EXPECT_TRUE(settings.isResizable());
    EXPECT_TRUE(settings.isLandscape());
    EXPECT_TRUE(settings.isCAVESplashScreen());
    EXPECT_EQ(settings.getAudioChannels(), 1);
    EXPECT_EQ(settings.getAudioBuffers(), 2);
    EXPECT_EQ(settings.getAudioElements(), 3);
    EXPECT_EQ(settings.getRenderingElements(), 4);
    EXPECT_TRUE(settings.getShaders());
    EXPECT_EQ(settings.getShadowMapSize(), 5);
    EXPECT_EQ(settings.getFBOSizeX(), 6);
    EXPECT_EQ(settings.getFBOSizeY(), 7);
    EXPECT_EQ(settings.getWaterSize(), 8);
    EXPECT_TRUE(settings.getForceFBO());
    EXPECT_STREQ(settings.getKTEPath(), "kte/");
    EXPECT_STREQ(settings.getKTAPath(), "kta/");
    EXPECT_STREQ(settings.getMPGPath(), "mpg/");
    EXPECT_STREQ(settings.getTexturePath(), "texture/");
    EXPECT_STREQ(settings.getShaderPath(), "shader/");
    EXPECT_STREQ(settings.getFontPath(), "font/");
}

TEST(SettingsTest, ANewObjectHoldsTheDefaults) { expectDefaults(KTSETTINGS()); }

TEST(SettingsTest, EverySetterIsReadBack) {
    KTSETTINGS settings;
    changeEverything(settings);
    expectChanged(settings);
}

TEST(SettingsTest, ConstructorBringsTheDefaultsBack) {
    KTSETTINGS settings;
    changeEverything(settings);
    settings.constructor();
    expectDefaults(settings);
}

TEST(SettingsTest, AssignmentCopiesTheWholeRecord) {
    KTSETTINGS settings, copy;
    changeEverything(settings);
    copy = settings;
    settings.constructor();
    expectChanged(copy);
}

struct Text {
    const char *name;
    void (KTSETTINGS::*set)(const char *);
    const char *(KTSETTINGS::*get)() const;
};

constexpr Text kTexts[] = {
    {"title", &KTSETTINGS::setTitle, &KTSETTINGS::getTitle},
    {"ktePath", &KTSETTINGS::setKTEPath, &KTSETTINGS::getKTEPath},
    {"ktaPath", &KTSETTINGS::setKTAPath, &KTSETTINGS::getKTAPath},
    {"mpgPath", &KTSETTINGS::setMPGPath, &KTSETTINGS::getMPGPath},
    {"texturePath", &KTSETTINGS::setTexturePath, &KTSETTINGS::getTexturePath},
    {"shaderPath", &KTSETTINGS::setShaderPath, &KTSETTINGS::getShaderPath},
    {"fontPath", &KTSETTINGS::setFontPath, &KTSETTINGS::getFontPath},
};

TEST(SettingsTest, TextsOf255CharactersFitAndLongerOnesAreCut) {
    const std::string fits(255, 'a'), tooLong = std::string(255, 'b') + std::string(100000, 'c');
    for (const Text &text : kTexts) {
        KTSETTINGS settings;
        (settings.*text.set)(fits.c_str());
        EXPECT_EQ((settings.*text.get)(), fits) << text.name;
        (settings.*text.set)(tooLong.c_str());
        EXPECT_EQ((settings.*text.get)(), std::string(255, 'b')) << text.name;
        EXPECT_EQ(settings.getWindowX(), 240) << "the member behind the title";
    }
}

TEST(SettingsTest, ANullTextStoresTheEmptyString) {
    for (const Text &text : kTexts) {
        KTSETTINGS settings;
        (settings.*text.set)("x");
        (settings.*text.set)(nullptr);
        EXPECT_STREQ((settings.*text.get)(), "") << text.name;
    }
}

TEST(SettingsTest, ATextMayBeSetToItself) {
    KTSETTINGS settings;
    settings.setTitle(settings.getTitle() + 7);
    EXPECT_STREQ(settings.getTitle(), kDefaultTitle + 7);
}

TEST(RunningSettingsTest, AreZeroUntilTheEngineStarts) {
    EXPECT_FALSE(KTSETTINGS::isActive());
    EXPECT_STREQ(KTSETTINGS::getSDLTitle(), "");
    EXPECT_EQ(KTSETTINGS::getSDLWindowX(), 0);
    EXPECT_EQ(KTSETTINGS::getSDLWindowY(), 0);
    EXPECT_EQ(KTSETTINGS::getSDLColorDepth(), 0);
    EXPECT_EQ(KTSETTINGS::getSDLZetaDepth(), 0);
    EXPECT_EQ(KTSETTINGS::getSDLStencilDepth(), 0);
    EXPECT_FALSE(KTSETTINGS::isSDLFullScreen());
    EXPECT_FALSE(KTSETTINGS::isSDLResizable());
    EXPECT_FALSE(KTSETTINGS::isSDLLandscape());
    EXPECT_FALSE(KTSETTINGS::getSDLShaders());
    EXPECT_EQ(KTSETTINGS::getSDLShadowMapSize(), 0);
    EXPECT_EQ(KTSETTINGS::getSDLFBOSizeX(), 0);
    EXPECT_EQ(KTSETTINGS::getSDLFBOSizeY(), 0);
    EXPECT_EQ(KTSETTINGS::getSDLWaterSize(), 0);
    EXPECT_FALSE(KTSETTINGS::getSDLForceFBO());
    EXPECT_EQ(KTSETTINGS::getSDLWindow(), nullptr);
    EXPECT_EQ(KTSETTINGS::getVNAAudioChannels(), 0);
    EXPECT_EQ(KTSETTINGS::getVNAAudioBuffers(), 0);
    EXPECT_EQ(KTSETTINGS::getVNAAudioElements(), 0);
    EXPECT_EQ(KTSETTINGS::renderingElements, 0);
}

TEST(RunningSettingsTest, ShaderUseIsForced) {
    KTSETTINGS::forceShadersOn();
    EXPECT_TRUE(KTSETTINGS::getSDLShaders());
    KTSETTINGS::forceShadersOff();
    EXPECT_FALSE(KTSETTINGS::getSDLShaders());
}

TEST(RunningSettingsTest, NothingIsStartedFromNullNorFreedTwice) {
    EXPECT_FALSE(KTSETTINGS::init(nullptr));
    EXPECT_FALSE(KTSETTINGS::free());
    EXPECT_FALSE(KTSETTINGS::isActive());
}

TEST(RunningSettingsTest, ResizeTakesTheNewSizeBeforeItSetsTheViewport) {
    const GlRecorder::Stub stub;
    EXPECT_TRUE(KTSETTINGS::resize(10, 20, 100, 200));
    EXPECT_EQ(KTSETTINGS::getSDLWindowX(), 100);
    EXPECT_EQ(KTSETTINGS::getSDLWindowY(), 200);
    EXPECT_THAT(GlRecorder::last("glViewport").arguments, ElementsAre(10, -20, 100, 200));
    KTSETTINGS::windowX = KTSETTINGS::windowY = 0;
    resetMatrixMirror();
}

}  // namespace
}  // namespace keltra::test
