// SPDX-License-Identifier: Zlib
#include <EGL/egl.h>
#include <SDL.h>
#include <gmock/gmock.h>
#include <keltra/keltra.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "tests/support/allocations.h"
#include "tests/support/emulated.h"
#include "tests/support/gl_recorder.h"
#include "tests/support/startup_faults.h"
#include "tests/support/temp_file.h"
#include "tests/support/text_file.h"

namespace keltra::test {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

constexpr std::size_t kEntries = 777 * sizeof(KTELEMENT);
constexpr std::size_t kOrder = 777 * sizeof(KTELEMENT *);
constexpr std::size_t kGlyphCoordinates = 6 * KTFONT::maxGlyphs * 2 * sizeof(std::int32_t);
constexpr std::size_t kGlyphColors = 6 * KTFONT::maxGlyphs * 4;
constexpr std::size_t kGlyphIndices = 6 * KTFONT::maxGlyphs * sizeof(std::uint16_t);
constexpr std::size_t kBonePool = KTMESH::maxSkins * KTMESH::maxBones * sizeof(R3XMATRIX);
constexpr std::size_t kParticleVertices = 4 * KTEMITTER::maxParticles * sizeof(R3XVECTOR4D);

class StartupTest : public ::testing::Test {
   protected:
    void SetUp() override {
        StartupFaults::clear();
        GlRecorder::clear();
    }
    void TearDown() override {
        KELTRA::free();
        Allocations::clear();
        StartupFaults::clear();
        GlRecorder::clear();
    }

    /// The run log of what `work` does. Opening the log forgets identifiers: no object may exist.
    template <class Work>
    std::string logOf(Work work) {
        const std::string path = folder.path("run.log");
        EXPECT_TRUE(vnfOpenLog(path.c_str()));
        work();
        vnfCloseLog();
        vnfOpenLog(nullptr);
        return readText(path);
    }

    /// Everything that was created is destroyed exactly once.
    static void expectNothingLeft() {
        EXPECT_FALSE(KELTRA::isActive());
        EXPECT_FALSE(KTSETTINGS::isActive());
        EXPECT_FALSE(KTOPENGL::isActive());
        EXPECT_FALSE(KTELEMENT::isActive());
        EXPECT_EQ(KTFONT::fontCachedVertex, nullptr);
        EXPECT_EQ(KTFONT::fontCachedTexCoord, nullptr);
        EXPECT_EQ(KTFONT::fontCachedColor, nullptr);
        EXPECT_EQ(KTFONT::fontCachedIndex, nullptr);
        EXPECT_EQ(KTMESH::boneMatrices, nullptr);
        EXPECT_EQ(KTEMITTER::particle, nullptr);
        EXPECT_EQ(KTEMITTER::vertexArray, nullptr);
        EXPECT_EQ(KTEMITTER::uvArray, nullptr);
        EXPECT_EQ(KTEMITTER::uvSecondaryArray, nullptr);
        EXPECT_EQ(KTEMITTER::colorArray, nullptr);
        EXPECT_EQ(KELTRA::timer, -1);
        EXPECT_EQ(KTSETTINGS::window, nullptr);
        EXPECT_EQ(KTSETTINGS::glesDisplay, nullptr);
        EXPECT_EQ(KTSETTINGS::glesSurface, nullptr);
        EXPECT_EQ(KTSETTINGS::glesContext, nullptr);
        EXPECT_EQ(StartupFaults::succeeded("eglDestroyContext"),
                  StartupFaults::succeeded("eglCreateContext"));
        EXPECT_EQ(StartupFaults::succeeded("eglDestroySurface"),
                  StartupFaults::succeeded("eglCreateWindowSurface"));
        EXPECT_EQ(StartupFaults::count("eglDestroyContext"), StartupFaults::succeeded("eglCreateContext"));
        EXPECT_EQ(StartupFaults::count("eglDestroySurface"),
                  StartupFaults::succeeded("eglCreateWindowSurface"));
        EXPECT_GE(StartupFaults::succeeded("eglTerminate"), StartupFaults::succeeded("eglInitialize"));
        EXPECT_LE(StartupFaults::count("eglTerminate"), StartupFaults::count("eglInitialize"));
        EXPECT_EQ(StartupFaults::count("SDL_Quit"), StartupFaults::succeeded("SDL_Init"));
        EXPECT_EQ(KTNODE::getNumberOfNodes() + KTTEXTURE::getNumberOfTextures() + KTFBO::getNumberOfFbos() +
                      KTMATERIAL::getNumberOfMaterials() + KTSHADER::getNumberOfShaders(),
                  0u);
    }

    KTSETTINGS settings;
    const TempFolder folder;
};

TEST_F(StartupTest, CallsSdlAndEglInTheirOrder) {
    settings.setFullScreen(false);
    settings.setResizable(true);
    ASSERT_TRUE(KELTRA::init(&settings));
    std::vector<std::string> names;
    for (const std::string &name : StartupFaults::names())
        if (names.empty() || names.back() != name) names.push_back(name);
    EXPECT_THAT(names, ElementsAre("SDL_Init", "SDL_VideoModeOK", "SDL_WM_SetCaption", "SDL_SetVideoMode",
                                   "SDL_GetWMInfo", "eglGetDisplay", "eglInitialize", "eglChooseConfig",
                                   "eglCreateWindowSurface", "eglCreateContext", "eglMakeCurrent"));
    EXPECT_THAT(StartupFaults::last("SDL_Init").arguments, ElementsAre(0x20));
    // The full-screen and resizable settings change neither of the flags.
    EXPECT_THAT(StartupFaults::last("SDL_VideoModeOK").arguments, ElementsAre(240, 320, 16, 0xC0000021));
    EXPECT_THAT(StartupFaults::last("SDL_SetVideoMode").arguments, ElementsAre(240, 320, 16, 0x80000021));
    EXPECT_THAT(StartupFaults::last("SDL_WM_SetCaption").arguments, ElementsAre(0, 0));
    EXPECT_THAT(StartupFaults::last("eglGetDisplay").arguments, ElementsAre(0));
    EXPECT_EQ(StartupFaults::last("eglCreateWindowSurface").arguments[3], 0);
    EXPECT_EQ(StartupFaults::last("eglCreateContext").arguments[2], 0);
    EXPECT_EQ(StartupFaults::last("eglCreateContext").arguments[3], 0);
    const Call &current = StartupFaults::last("eglMakeCurrent");
    EXPECT_EQ(current.arguments[1], current.arguments[2]);
    EXPECT_EQ(StartupFaults::count("SDL_Quit"), 0);
}

TEST_F(StartupTest, AsksForTheExactConfigurationFirst) {
    settings.setZetaDepth(24);
    StartupFaults::findNoConfigs();
    ASSERT_TRUE(KELTRA::init(&settings));
    const std::vector<Call> choices = StartupFaults::all("eglChooseConfig");
    ASSERT_EQ(choices.size(), 2u);
    EXPECT_THAT(choices[0].contents,
                ElementsAre(EGL_LEVEL, 0, EGL_NATIVE_RENDERABLE, EGL_FALSE, EGL_DEPTH_SIZE, 24,
                            EGL_SURFACE_TYPE, EGL_WINDOW_BIT, EGL_NONE));
    EXPECT_THAT(choices[1].contents,
                ElementsAre(EGL_LEVEL, 0, EGL_NATIVE_RENDERABLE, EGL_DONT_CARE, EGL_DEPTH_SIZE, 24,
                            EGL_SURFACE_TYPE, EGL_WINDOW_BIT, EGL_NONE));
    EXPECT_EQ(choices[0].arguments[3], 32);
}

TEST_F(StartupTest, LogsTheNumberOfConfigurationsOnceAndNothingElse) {
    const std::string log = logOf([this] {
        EXPECT_TRUE(KELTRA::init(&settings));
        EXPECT_TRUE(KELTRA::free());
    });
    const char line[] = "\n      Number of available configs: ";
    const std::size_t found = log.find(line);
    ASSERT_NE(found, std::string::npos) << log;
    EXPECT_GT(std::stoi(log.substr(found + sizeof line - 1)), 0);
    EXPECT_EQ(log.find("Number of available configs", found + sizeof line), std::string::npos);
    EXPECT_THAT(log, Not(HasSubstr("wrong params")));
}

TEST_F(StartupTest, LogsAnEmptyChoiceOnce) {
    StartupFaults::findNoConfigs(2);
    const std::string log = logOf([this] { EXPECT_FALSE(KELTRA::init(&settings)); });
    const std::string line = "\n      Number of available configs: 0\n";
    const std::size_t found = log.find(line);
    ASSERT_NE(found, std::string::npos) << log;
    EXPECT_EQ(log.find("Number of available configs", found + line.size()), std::string::npos);
    expectNothingLeft();
}

TEST_F(StartupTest, AChoiceThatFailsIsNotLogged) {
    StartupFaults::fail("eglChooseConfig");
    const std::string log = logOf([this] { EXPECT_FALSE(KELTRA::init(&settings)); });
    EXPECT_THAT(log, Not(HasSubstr("Number of available configs")));
}

struct Fault {
    const char *name;
    void (*cause)();
    const char *notReached;  // a call that must not come any more
};

void PrintTo(const Fault &fault, std::ostream *stream) { *stream << fault.name; }

class StartupFaultTest : public StartupTest, public ::testing::WithParamInterface<Fault> {};

TEST_P(StartupFaultTest, LeavesNothingBehindAndALaterStartWorks) {
    const Fault &fault = GetParam();
    if (std::string(fault.name).find("Memory") == 0 && !Allocations::canFail())
        GTEST_SKIP() << "a sanitizer owns malloc";
    settings.setRenderingElements(777);
    fault.cause();
    EXPECT_FALSE(KELTRA::init(&settings));
    expectNothingLeft();
    if (fault.notReached) {
        EXPECT_EQ(StartupFaults::count(fault.notReached), 0);
    }
    EXPECT_FALSE(KELTRA::free());

    StartupFaults::clear();
    Allocations::clear();
    ASSERT_TRUE(KELTRA::init(&settings));
    EXPECT_EQ(KTELEMENT::getNumberOfElements(), 777u);
    EXPECT_TRUE(KELTRA::clear(true, true, false));
    EXPECT_TRUE(KELTRA::begin3D(nullptr));
    EXPECT_TRUE(KELTRA::end3D());
    EXPECT_TRUE(KELTRA::swap());
    EXPECT_TRUE(KELTRA::free());
    expectNothingLeft();
}

constexpr Fault kFaults[] = {
    {"SdlInit", [] { StartupFaults::fail("SDL_Init"); }, "SDL_VideoModeOK"},
    {"VideoModeOK", [] { StartupFaults::fail("SDL_VideoModeOK"); }, "SDL_SetVideoMode"},
    {"SetVideoMode", [] { StartupFaults::fail("SDL_SetVideoMode"); }, "eglGetDisplay"},
    {"GetWMInfo", [] { StartupFaults::fail("SDL_GetWMInfo"); }, "eglCreateContext"},
    {"GetDisplay", [] { StartupFaults::fail("eglGetDisplay"); }, "eglChooseConfig"},
    {"Initialize", [] { StartupFaults::fail("eglInitialize"); }, "eglChooseConfig"},
    {"ChooseConfig", [] { StartupFaults::fail("eglChooseConfig"); }, "eglCreateWindowSurface"},
    {"NoConfigs", [] { StartupFaults::findNoConfigs(2); }, "eglCreateWindowSurface"},
    {"Surface", [] { StartupFaults::fail("eglCreateWindowSurface"); }, "eglCreateContext"},
    {"Context", [] { StartupFaults::fail("eglCreateContext"); }, nullptr},
    {"MakeCurrent", [] { StartupFaults::fail("eglMakeCurrent"); }, nullptr},
    {"MemoryOfTheEntries", [] { Allocations::failNext(kEntries); }, nullptr},
    {"MemoryOfTheOrder", [] { Allocations::failNext(kOrder); }, nullptr},
    {"MemoryOfTheGlyphPositions", [] { Allocations::failNext(kGlyphCoordinates); }, nullptr},
    {"MemoryOfTheGlyphCells", [] { Allocations::failNext(kGlyphCoordinates, 2); }, nullptr},
    {"MemoryOfTheGlyphColors", [] { Allocations::failNext(kGlyphColors); }, nullptr},
    {"MemoryOfTheGlyphIndices", [] { Allocations::failNext(kGlyphIndices); }, nullptr},
    {"MemoryOfTheBonePool", [] { Allocations::failNext(kBonePool); }, nullptr},
    {"MemoryOfTheParticleVertices", [] { Allocations::failNext(kParticleVertices); }, nullptr},
};

INSTANTIATE_TEST_SUITE_P(Steps, StartupFaultTest, ::testing::ValuesIn(kFaults),
                         [](const auto &info) { return std::string(info.param.name); });

TEST_F(StartupTest, ASizeThatIsNoSizeIsRefused) {
    for (int size : {0, -1, -2147483647 - 1}) {
        settings.constructor();
        settings.setWindowX(size);
        EXPECT_FALSE(KELTRA::init(&settings));
        settings.constructor();
        settings.setWindowY(size);
        EXPECT_FALSE(KELTRA::init(&settings));
    }
    expectNothingLeft();
}

TEST_F(StartupTest, StartsOnceAndStopsOnce) {
    EXPECT_FALSE(KELTRA::free());
    EXPECT_TRUE(KELTRA::init(&settings));
    const Call context = StartupFaults::last("eglCreateContext");
    EXPECT_FALSE(KELTRA::init(&settings));
    EXPECT_FALSE(KELTRA::init(nullptr));
    EXPECT_TRUE(KELTRA::isActive());
    EXPECT_EQ(StartupFaults::count("SDL_Init"), 1);
    EXPECT_TRUE(KELTRA::free());
    EXPECT_FALSE(KELTRA::free());
    EXPECT_FALSE(KELTRA::isActive());
    expectNothingLeft();
}

TEST_F(StartupTest, NullStandsForTheDefaultSettings) {
    ASSERT_TRUE(KELTRA::init(nullptr));
    EXPECT_STREQ(KTSETTINGS::getSDLTitle(), "Keltra 3D Graphics Engine for PDA v1.6.6a");
    EXPECT_EQ(KTSETTINGS::getSDLWindowX(), 240);
    EXPECT_EQ(KTSETTINGS::getSDLWindowY(), 320);
    EXPECT_TRUE(KTSETTINGS::isSDLFullScreen());
    EXPECT_EQ(KTELEMENT::getNumberOfElements(), 1024u);
    EXPECT_EQ(KELTRA::getVideoMemory(), 8388608u);
}

TEST_F(StartupTest, TakesOverSomeValuesAndReportsTheDepthsOfTheGl) {
    const std::string title(300, 't');
    settings.setTitle(title.c_str());
    settings.setFullScreen(false);
    settings.setResizable(true);
    settings.setLandscape(true);
    settings.setShaders(true);
    settings.setStencilDepth(77);
    ASSERT_TRUE(KELTRA::init(&settings));
    EXPECT_EQ(KTSETTINGS::getSDLTitle(), std::string(255, 't'));
    EXPECT_FALSE(KTSETTINGS::isSDLFullScreen());
    EXPECT_TRUE(KTSETTINGS::isSDLResizable());
    EXPECT_TRUE(KTSETTINGS::isSDLLandscape());
    EXPECT_TRUE(KTSETTINGS::getSDLShaders());
    EXPECT_NE(KTSETTINGS::getSDLWindow(), nullptr);
    const GlRecorder::Pause pause;
    int colors = 0;
    GLint bits = 0;
    for (GLenum name : {GL_RED_BITS, GL_GREEN_BITS, GL_BLUE_BITS, GL_ALPHA_BITS}) {
        glGetIntegerv(name, &bits);
        colors += bits;
    }
    EXPECT_EQ(KTSETTINGS::getSDLColorDepth(), colors);
    glGetIntegerv(GL_DEPTH_BITS, &bits);
    EXPECT_EQ(KTSETTINGS::getSDLZetaDepth(), bits);
    glGetIntegerv(GL_STENCIL_BITS, &bits);
    EXPECT_EQ(KTSETTINGS::getSDLStencilDepth(), bits);
}

// Deliberate: these running values stay zero, so the off-screen buffer cannot be forced from a settings file;
// existing files rely on it.
TEST_F(StartupTest, LeavesTheOtherRunningValuesZero) {
    settings.setForceFBO(true);
    settings.setRenderingElements(100);
    settings.setShadowMapSize(512);
    ASSERT_TRUE(KELTRA::init(&settings));
    EXPECT_FALSE(KTSETTINGS::getSDLForceFBO());
    EXPECT_EQ(KTSETTINGS::getSDLFBOSizeX(), 0);
    EXPECT_EQ(KTSETTINGS::getSDLFBOSizeY(), 0);
    EXPECT_EQ(KTSETTINGS::getSDLShadowMapSize(), 0);
    EXPECT_EQ(KTSETTINGS::getSDLWaterSize(), 0);
    EXPECT_EQ(KTSETTINGS::renderingElements, 0);
    EXPECT_EQ(KTSETTINGS::getVNAAudioChannels(), 0);
    EXPECT_EQ(KTSETTINGS::getVNAAudioBuffers(), 0);
    EXPECT_EQ(KTSETTINGS::getVNAAudioElements(), 0);
    EXPECT_EQ(KTELEMENT::getNumberOfElements(), 100u) << "the capacity is the settings object's own";
    EXPECT_TRUE(KELTRA::clear(true, true, false));
    EXPECT_FALSE(KELTRA::renderingOnFbo);
}

TEST_F(StartupTest, HandsThePathsToTheirClasses) {
    settings.setKTEPath("scenes/");
    settings.setKTAPath("moves/");
    settings.setTexturePath("textures/");
    settings.setShaderPath("shaders/");
    settings.setFontPath("fonts/");
    ASSERT_TRUE(KELTRA::init(&settings));
    EXPECT_STREQ(KELTRA::getKTEPath(), "scenes/");
    EXPECT_STREQ(KTANIM::getKTAPath(), "moves/");
    EXPECT_STREQ(KTTEXTURE::getPath(), "textures/");
    EXPECT_STREQ(KTSHADER::getPath(), "shaders/");
    EXPECT_STREQ(KTFONT::getPath(), "fonts/");
    ASSERT_TRUE(KELTRA::free());
    EXPECT_STREQ(KELTRA::getKTEPath(), "scenes/") << "kept until the next start";
    ASSERT_TRUE(KELTRA::init(nullptr));
    EXPECT_STREQ(KELTRA::getKTEPath(), "");
    EXPECT_STREQ(KTTEXTURE::getPath(), "");
}

TEST_F(StartupTest, TakesThePathsOnceTheVideoModeIsAccepted) {
    settings.setTexturePath("textures/");
    StartupFaults::fail("SDL_VideoModeOK");
    EXPECT_FALSE(KELTRA::init(&settings));
    EXPECT_STREQ(KTTEXTURE::getPath(), "");
    StartupFaults::fail("SDL_SetVideoMode");
    EXPECT_FALSE(KELTRA::init(&settings));
    EXPECT_STREQ(KTTEXTURE::getPath(), "textures/") << "although the window did not open";

    // The paths of an application that opens the window itself are used too.
    settings.setTexturePath("others/");
    ASSERT_EQ(SDL_Init(SDL_INIT_VIDEO), 0);
    StartupFaults::fail("SDL_SetVideoMode");
    EXPECT_FALSE(KTSETTINGS::init(&settings));
    EXPECT_STREQ(KTTEXTURE::getPath(), "others/");
    SDL_Quit();
    KTTEXTURE::setPath("");
    expectNothingLeft();
}

TEST_F(StartupTest, TheRenderListHoldsUpTo1024Entries) {
    const struct {
        int asked;
        unsigned int given;
    } cases[] = {{0, 1024}, {5000, 1024}, {-1, 1024}, {10, 10}};
    for (const auto &[asked, given] : cases) {
        settings.setRenderingElements(asked);
        ASSERT_TRUE(KELTRA::init(&settings));
        EXPECT_EQ(KTELEMENT::getNumberOfElements(), given) << "for " << asked;
        ASSERT_TRUE(KELTRA::free());
    }
}

TEST_F(StartupTest, IsOkAsksForTheModeThatStartUpChecks) {
    ASSERT_EQ(SDL_Init(SDL_INIT_VIDEO), 0);
    EXPECT_TRUE(settings.isOk());
    EXPECT_THAT(StartupFaults::last("SDL_VideoModeOK").arguments, ElementsAre(240, 320, 16, 0xC0000021));
    StartupFaults::fail("SDL_VideoModeOK");
    EXPECT_FALSE(settings.isOk());
    settings.setWindowX(-5);
    EXPECT_FALSE(settings.isOk());
    SDL_Quit();
}

TEST_F(StartupTest, WithoutSdlNoModeIsAvailable) {
    EXPECT_FALSE(settings.isOk());
    EXPECT_FALSE(KTSETTINGS::init(&settings));
    expectNothingLeft();
}

TEST_F(StartupTest, TenCyclesEachStartAfresh) {
    for (int cycle = 0; cycle < 10 / sampled(3); ++cycle) {
        SCOPED_TRACE(cycle);
        GlRecorder::clear();
        ASSERT_TRUE(KELTRA::init(&settings));
        EXPECT_EQ(GlRecorder::count("glEnable", {GL_CULL_FACE}), 1);
        EXPECT_TRUE(KTOPENGL::isCulled());
        EXPECT_FALSE(KTOPENGL::isBlended());
        EXPECT_FALSE(KTOPENGL::isTwoSide());
        EXPECT_FALSE(KTLIGHT::getLighting());
        EXPECT_THAT(KTTEXTURE::channelActive, Each(false));
        EXPECT_THAT(KTTEXTURE::channelCache, Each(nullptr));
        {
            const GlRecorder::Pause pause;
            EXPECT_TRUE(glIsEnabled(GL_CULL_FACE));
            for (GLenum name : {GL_MODELVIEW_STACK_DEPTH, GL_PROJECTION_STACK_DEPTH}) {
                GLint depth = 0;
                glGetIntegerv(name, &depth);
                EXPECT_EQ(depth, 1);
            }
        }
        GlRecorder::clear();
        for (GLenum mode : {GL_PROJECTION, GL_MODELVIEW}) {
            KT_glMatrixMode(mode);
            KT_glPopMatrix();
        }
        EXPECT_EQ(GlRecorder::count("glPopMatrix"), 0) << "the mirror is at depth 0 too";
        // The state left here belongs to a context that is destroyed before the next cycle.
        KTOPENGL::cullingOff();
        KTOPENGL::blendingOn();
        KTOPENGL::twoSideOn();
        KTOPENGL::textureArrayOn();
        KTLIGHT::lightingOn();
        KTTEXTURE::channelActive[1] = true;
        KT_glPushMatrix();
        KT_glMatrixMode(GL_PROJECTION);
        KT_glPushMatrix();
        new KTNODE;
        EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
        ASSERT_TRUE(KELTRA::free());
        EXPECT_EQ(KTNODE::getNumberOfNodes(), 0u);
    }
    expectNothingLeft();
}

#ifndef _WIN32  // where there is always a window system
// In a child process without a window system: SDL has drivers for text consoles too, and they print.
TEST(NoDisplayTest, InitIsFalseAndPrintsNothing) {
    for (const char *display : {"", ":65432"}) {
        EXPECT_EXIT(
            {
                ::alarm(20);
                ::unsetenv("SDL_VIDEODRIVER");
                if (*display)
                    ::setenv("DISPLAY", display, 1);
                else
                    ::unsetenv("DISPLAY");
                ::dup2(STDERR_FILENO, STDOUT_FILENO);
                const bool started = KELTRA::init(nullptr);
                std::fflush(stdout);
                const bool kept = !std::getenv("SDL_VIDEODRIVER");
                std::_Exit(!started && kept && !KELTRA::isActive() ? 0 : 1);
            },
            testing::ExitedWithCode(0), testing::StrEq(""))
            << "DISPLAY=" << display;
    }
}
#endif

}  // namespace
}  // namespace keltra::test
