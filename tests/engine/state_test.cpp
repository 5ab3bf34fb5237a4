// SPDX-License-Identifier: Zlib
// What is drawn does not depend on what was drawn before. Each subject is drawn in an engine that has just
// been started; then every disturber comes before it, and its picture has to stay the same to the last pixel:
// in the frame before (the subject made anew, and kept from before), and earlier in the same frame, where the
// two are in halves of the screen. After each frame every cached flag equals the state of the GL.
//
// One start of the engine serves a subject and all its disturbers: the state that a pair leaves disturbs the
// next pair too.
//
// This state lasts because the frame is defined so, and no pair tests it:
// - Lighting that a light switched on stays on into a frame without lights, until a 2D pass or a skybox: such
//   pairs have a 2D pass between them.
// - A light lights the whole frame, and a GL light stays on until another one is loaded into it: all lit
//   subjects share one light, and an unlit one shares no frame with it.
// - Wireframe, shown normals and the landscape are switches of the whole frame: they share none with others.
// - A dynamic texture that is evicted has lost its pixels: a film is not kept over a garbage collection.
// - `select` leaves a spoilt pixel until the next clear, and a viewport of the whole window.
// - The limit of the alpha test stays that of particles, and the colour of `putChar` that of the text before.

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <limits>

#include "tests/engine/state_stage.h"
#include "tests/support/engine_fixture.h"
#include "tests/support/held_clock.h"

namespace keltra::test {
namespace {

constexpr int kWidth = 240, kHeight = 320;

using Pixels = std::vector<std::uint32_t>;

Pixels capture() {
    const GlRecorder::Pause pause;
    Pixels pixels(kWidth * kHeight);
    glReadPixels(0, 0, kWidth, kHeight, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    return pixels;
}

// The rasteriser blends with more bits than the screen has, until a read writes its tiles out. Picking reads,
// so every frame does, and blends with what the screen holds.
void flushPixels() {
    const GlRecorder::Pause pause;
    std::uint32_t pixel;
    glReadPixels(0, 0, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, &pixel);
}

int countDifferent(const Pixels &one, const Pixels &other, int fromColumn) {
    int count = 0;
    for (int y = 0; y < kHeight; ++y)
        for (int x = fromColumn; x < kWidth; ++x) count += one[y * kWidth + x] != other[y * kWidth + x];
    return count;
}

GLint integer(GLenum name) {
    GLint value = 0;
    glGetIntegerv(name, &value);
    return value;
}

bool enabled(GLenum name) { return glIsEnabled(name) == GL_TRUE; }

void expectCachesHold() {
    const GlRecorder::Pause pause;
    const struct {
        const char *name;
        bool cached;
        GLenum capability;
    } flags[] = {
        {"culling", KTOPENGL::culling, GL_CULL_FACE},
        {"blending", KTOPENGL::blending, GL_BLEND},
        {"scissor", KTOPENGL::scissor, GL_SCISSOR_TEST},
        {"lighting", KTLIGHT::lighting, GL_LIGHTING},
        {"vertices", KTOPENGL::vertexArrayStatus, GL_VERTEX_ARRAY},
        {"normals", KTOPENGL::normalArrayStatus, GL_NORMAL_ARRAY},
        {"colours", KTOPENGL::colorArrayStatus, GL_COLOR_ARRAY},
        {"texture coordinates", KTOPENGL::textureArrayStatus, GL_TEXTURE_COORD_ARRAY},
        {"texturing",
         std::find(KTTEXTURE::channelActive, KTTEXTURE::channelActive + 16, true) !=
             KTTEXTURE::channelActive + 16,
         GL_TEXTURE_2D},
        {"depth test", true, GL_DEPTH_TEST},
        {"alpha test", false, GL_ALPHA_TEST},
        {"dither", false, GL_DITHER},
        {"colour material", false, GL_COLOR_MATERIAL},
        {"stencil", false, GL_STENCIL_TEST},
    };
    for (const auto &flag : flags) EXPECT_EQ(flag.cached, enabled(flag.capability)) << flag.name;
    const struct {
        GLenum name;
        GLint value;
    } values[] = {
        {GL_LIGHT_MODEL_TWO_SIDE, KTOPENGL::twoSide},
        {GL_DEPTH_WRITEMASK, 1},
        {GL_DEPTH_FUNC, GL_LESS},
        {GL_BLEND_SRC, GL_SRC_ALPHA},
        {GL_BLEND_DST, GL_ONE_MINUS_SRC_ALPHA},
        {GL_CULL_FACE_MODE, GL_BACK},
        {GL_MATRIX_MODE, GL_MODELVIEW},
        {GL_MODELVIEW_STACK_DEPTH, 1},
        {GL_PROJECTION_STACK_DEPTH, 1},
    };
    for (const auto &value : values) EXPECT_EQ(integer(value.name), value.value) << std::hex << value.name;
    EXPECT_EQ(KTOPENGL::getProfile(), KT_PROFILE_NORMAL);
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
}

struct Disturbance {
    const char *name;
    void (*act)();         // between frames and before the nodes of a shared frame are passed
    void (*afterScene)();  // after the 3D pass
    bool evicts = false;
};

void collectGarbage() { KTTEXTURE::garbageCollect(0); }

void failToLoad() {
    EXPECT_EQ(KELTRA::load("damaged.kte"), nullptr);
    EXPECT_EQ(KELTRA::load("missing.kte"), nullptr);
    KTTEXTURE texture;
    EXPECT_FALSE(texture.load("damaged.tga"));
    EXPECT_TRUE(texture.render(nullptr)) << "bound as name 0";
}

void updateFilm() {
    const std::unique_ptr<Stage> other = subject("Film").make(Side::kLeft);
    if (other->film) other->film->update(40);
}

// In the left half, of a turned screen too.
void pick() {
    for (const auto &point : {std::pair{40, 240}, {60, 300}, {60, 210}, {100, 231}, {-5, 400}})
        KELTRA::select(point.first, point.second);
}

// What loads without an identifier is drawn and destroyed.
void takeAllIdentifiers() {
    std::vector<unsigned int> taken;
    while (const unsigned int id = vnfNewId()) taken.push_back(id);
    ASSERT_FALSE(taken.empty());
    {
        const std::unique_ptr<Stage> other = subject("WholeScene").make(Side::kLeft);
        for (KTNODE *node : other->scene) {
            EXPECT_EQ(node->getId(), 0u);
            node->pass();
        }
    }
    for (const unsigned int id : taken) EXPECT_TRUE(releaseId(id));
}

// Nodes that are gone when the next pass begins.
void fillTheList() {
    KTHELPER helper;
    for (unsigned int i = KTELEMENT::getNumberOfPassedElements(); i < KTELEMENT::getNumberOfElements(); ++i)
        EXPECT_TRUE(KTELEMENT::pass(&helper));
    EXPECT_FALSE(KTELEMENT::pass(&helper));
}

// The frame counter wraps around in the next frame, as after 2^31 frames where a long has 32 bits.
void endTheCounter() { KELTRA::timeStamp = std::numeric_limits<long int>::max(); }

// Later frames have stamps that a texture holds as negative ones.
void passTwoThousandMillionFrames() { KELTRA::timeStamp = std::numeric_limits<std::int32_t>::max(); }

constexpr Disturbance kDisturbances[] = {
    {"Picking", nullptr, pick},
    {"AFailedLoad", failToLoad, nullptr},
    {"GarbageCollection", collectGarbage, nullptr, true},
    {"AFilmUpdated", updateFilm, updateFilm},
    {"NoIdentifierLeft", takeAllIdentifiers, nullptr},
    {"AFullRenderList", nullptr, fillTheList},
    {"TheLastFrameThatIsCounted", endTheCounter, nullptr},
    {"TwoThousandMillionFrames", passTwoThousandMillionFrames, nullptr},
};

class StateTest : public EngineTest, public ::testing::WithParamInterface<const Subject *> {
   protected:
    void SetUp() override {
        EngineTest::SetUp();
        begin();
    }
    void begin() {
        writeStageFiles(folder);
        KTOPENGL::setBackgroundColor(0.0f, 0.0f, 1.0f, 1.0f);  // the same in any number of bits
        light = new KTLIGHT;
        light->setPosition(1.0f, 3.0f, 0.0f);
    }
    void TearDown() override {
        stage.reset();
        EngineTest::TearDown();
        KELTRA::setKTEPath(nullptr);
        KTTEXTURE::setPath(nullptr);
        KTVIDEO::setMPGPath(nullptr);
    }
    static void TearDownTestSuite() { std::printf("%d pairs in %d frames\n", pairs, frames); }

    /// Draws the stages in one frame, the first of them first, whatever pass it is drawn in.
    Pixels draw(std::initializer_list<Stage *> stages, bool lit, bool with2D = true,
                const Disturbance *disturbance = nullptr) {
        clock.passMilliseconds(40);
        for (Stage *each : stages) {
            if (each->prepare) each->prepare();
            if (each->on) each->on();
        }
        KELTRA::clear(true, true, false);
        Stage *first = *stages.begin();
        // Widgets that come before a scene have a 2D pass of their own.
        const bool early = stages.size() > 1 && !first->interface.empty();
        if (early) draw2D({first});
        draw3D(stages, lit, disturbance);
        flushPixels();
        if (disturbance && disturbance->afterScene) disturbance->afterScene();
        if (with2D && early) draw2D({*(stages.end() - 1)});
        if (with2D && !early) draw2D(stages);
        const Pixels pixels = capture();
        expectCachesHold();
        StartupFaults::fail(
            "eglSwapBuffers");  // the swap takes longer than the frame, and nothing reads the screen
        KELTRA::swap();
        for (Stage *each : stages)
            if (each->off) each->off();
        ++frames;
        return pixels;
    }
    void draw3D(std::initializer_list<Stage *> stages, bool lit, const Disturbance *disturbance) {
        KELTRA::begin3D(nullptr);
        if (disturbance && disturbance->act) disturbance->act();
        if (lit) light->pass();
        for (Stage *each : stages) {
            if (each->skybox) KELTRA::setSkybox(each->skybox);
            for (KTNODE *node : each->scene) node->pass();
        }
        KELTRA::end3D();
        KELTRA::setSkybox(nullptr);
    }
    static void draw2D(std::initializer_list<Stage *> stages) {
        KELTRA::begin2D();
        for (Stage *each : stages)
            for (KTNODE *node : each->interface) node->pass();
        KELTRA::end2D();
    }

    void expectSame(const Pixels &pixels, const std::string &disturber, const char *when,
                    int fromColumn = 0) {
        const int different = countDifferent(pixels, reference, fromColumn);
        EXPECT_EQ(different, 0) << GetParam()->name << " after " << disturber << ", " << when;
    }
    void disturbBySubject(const Subject &disturber);
    void disturbByAct(const Disturbance &disturbance);

    TempFolder folder;
    HeldClock clock;
    KTLIGHT *light = nullptr;
    std::unique_ptr<Stage> stage;
    Pixels reference;
    static inline int pairs = 0, frames = 0;
};

void StateTest::disturbBySubject(const Subject &disturber) {
    const Subject &tested = *GetParam();
    std::unique_ptr<Stage> other = disturber.make(Side::kLeft);
    draw({other.get()}, disturber.lit);
    stage = tested.make(Side::kRight);
    expectSame(draw({stage.get()}, tested.lit), disturber.name, "made anew");
    // Without a 2D pass between them, where there need not be one.
    const bool lightLasts = disturber.lit && !tested.lit && !tested.flat;
    const bool with2D = lightLasts || !other->interface.empty() || !stage->interface.empty();
    draw({other.get()}, disturber.lit, with2D);
    expectSame(draw({stage.get()}, tested.lit, with2D), disturber.name, "kept");
    if (!disturber.alone && !tested.alone && !lightLasts && !(other->skybox && stage->skybox)) {
        const Pixels both = draw({other.get(), stage.get()}, disturber.lit || tested.lit);
        expectSame(both, disturber.name, "in the same frame", kWidth / 2);
    }
    ++pairs;
}

void StateTest::disturbByAct(const Disturbance &disturbance) {
    const Subject &tested = *GetParam();
    std::unique_ptr<Stage> other = subject("WholeScene").make(Side::kLeft);
    draw({other.get()}, true, true, &disturbance);
    if (disturbance.act) disturbance.act();
    stage = tested.make(Side::kRight);
    expectSame(draw({stage.get()}, tested.lit), disturbance.name, "made anew");
    ++pairs;
    if (disturbance.evicts && tested.film) return;
    if (disturbance.act) disturbance.act();
    expectSame(draw({stage.get()}, tested.lit), disturbance.name, "kept");
    other.reset();
    std::unique_ptr<Stage> empty = std::make_unique<Stage>();
    expectSame(draw({empty.get(), stage.get()}, tested.lit, true, &disturbance), disturbance.name,
               "in the same frame", kWidth / 2);
}

TEST_P(StateTest, LooksTheSameWhateverWasDrawnBefore) {
    stage = GetParam()->make(Side::kRight);
    reference = draw({stage.get()}, GetParam()->lit);
    for (const Subject &disturber : kSubjects) disturbBySubject(disturber);
    for (const Disturbance &disturbance : kDisturbances) disturbByAct(disturbance);

    draw({subject("WholeScene").make(Side::kLeft).get()}, true);
    stage.reset();
    ASSERT_TRUE(KELTRA::free());
    ASSERT_TRUE(KELTRA::init(&settings));
    begin();
    stage = GetParam()->make(Side::kRight);
    expectSame(draw({stage.get()}, GetParam()->lit), "free and init", "made anew");
    ++pairs;
}

std::vector<const Subject *> allSubjects() {
    std::vector<const Subject *> all;
    for (const Subject &each : kSubjects) all.push_back(&each);
    return all;
}

INSTANTIATE_TEST_SUITE_P(, StateTest, ::testing::ValuesIn(allSubjects()),
                         [](const auto &info) { return info.param->name; });

}  // namespace
}  // namespace keltra::test
