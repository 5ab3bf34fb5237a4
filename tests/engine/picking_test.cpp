// SPDX-License-Identifier: Zlib
#include <keltra/engine.h>

#include <climits>
#include <cstring>
#include <random>

#include "tests/support/engine_fixture.h"

namespace keltra::test {
namespace {

using ::testing::ElementsAre;

/// Counts its renders after the frame, and notes the profile and the element of the last.
template <class Base>
class Probe : public Base {
   public:
    explicit Probe(unsigned code = KT_MESH) { this->type = code; }
    bool render(void *data) override {
        ++renders;
        profile = KTOPENGL::getProfile();
        element = data;
        return true;
    }
    int renders = 0;
    KT_OPENGL_PROFILE profile = KT_PROFILE_NORMAL;
    void *element = nullptr;
};

/// Fills the whole screen with one colour, the way an application's own node draws itself.
class Painter : public KTNODE {
   public:
    Painter(int r, int g, int b) : red(r), green(g), blue(b) { type = KT_CUSTOM; }
    bool render(void *) override {
        static const GLfixed corners[] = {-65536, -65536, 65536, -65536, -65536, 65536, 65536, 65536};
        KT_glMatrixMode(GL_PROJECTION);
        KT_glPushMatrix();
        KT_glLoadIdentity();
        KT_glMatrixMode(GL_MODELVIEW);
        KT_glLoadIdentity();
        KTOPENGL::vertexArrayOn();
        KTOPENGL::normalArrayOff();
        glVertexPointer(2, GL_FIXED, 0, corners);
        glColor4ub(static_cast<GLubyte>(red), static_cast<GLubyte>(green), static_cast<GLubyte>(blue), 255);
        glDrawArrays(GL_TRIANGLE_STRIP, 0, 4);
        KT_glMatrixMode(GL_PROJECTION);
        KT_glPopMatrix();
        KT_glMatrixMode(GL_MODELVIEW);
        return true;
    }

   private:
    int red, green, blue;
};

/// A rectangle in the plane z = 0, larger than any view of the tests, in a mesh that lives with the test.
class Wall : public KTMESH {
   public:
    Wall() {
        static std::int32_t corners[] = {-half, -half, 0, half, -half, 0, half, half, 0, -half, half, 0};
        static std::int32_t front[] = {0, 0, 65536, 0, 0, 65536, 0, 0, 65536, 0, 0, 65536};
        static std::uint16_t triangles[] = {0, 1, 2, 0, 2, 3};
        numberOfVertices = 4;
        numberOfFaces = 2;
        vertices = corners;
        vertexNormals = front;
        faces = triangles;
        setPosition(0.0f, 0.0f, -10.0f);
    }

   private:
    static constexpr std::int32_t half = 1000 * 65536;
};

class PickingTest : public EngineTest {
   protected:
    static void draw(std::initializer_list<KTNODE *> nodes, KTCAMERA *camera = nullptr) {
        KELTRA::clear(true, true, false);
        KELTRA::begin3D(camera);
        for (KTNODE *node : nodes) node->pass();
        KELTRA::end3D();
        GlRecorder::clear();
    }

    /// What the colour buffer can hold of a code.
    static unsigned mask() { return KTSETTINGS::colorDepth == 16 ? 0xffff : 0xffffff; }
};

class LandscapePickingTest : public PickingTest {
   protected:
    void prepare(KTSETTINGS &settings) override { settings.setLandscape(true); }
};

std::vector<std::int64_t> argumentsOf(const char *name) { return GlRecorder::last(name).arguments; }

TEST_F(PickingTest, AnEmptyListYieldsTheBackground) {
    draw({});
    EXPECT_EQ(KELTRA::select(120, 160), 0u);
    KTOPENGL::setBackgroundColor(1.0f, 1.0f, 1.0f, 1.0f);
    draw({});
    EXPECT_EQ(KELTRA::select(120, 160), 0u) << "whatever the background's colour";
}

TEST_F(PickingTest, CallsTheGlInThisOrder) {
    draw({});
    KELTRA::select(30, 20);
    EXPECT_THAT(
        GlRecorder::names(),
        ElementsAre("glReadPixels", "glMatrixMode", "glPushMatrix", "glMatrixMode", "glPushMatrix",
                    "glClearColorx", "glScissor", "glEnable", "glClear", "glDepthFunc", "glClearColorx",
                    "glReadPixels", "glDisable", "glMatrixMode", "glLoadIdentity", "glViewport", "glOrthox",
                    "glMatrixMode", "glLoadIdentity", "glMatrixMode", "glPopMatrix", "glViewport",
                    "glMatrixMode", "glPopMatrix", "glDisable", "glEnable", "glDepthFunc"));
}

TEST_F(PickingTest, CallsTheGlWithTheseArguments) {
    KTOPENGL::setBackgroundColor(0.5f, 0.25f, 0.0f, 1.0f);
    draw({});
    KELTRA::select(30, 20);
    const std::vector<Call> &calls = GlRecorder::calls();
    ASSERT_EQ(calls.size(), 27u);
    const auto first = [&](std::size_t i, std::size_t count) {
        return std::vector<std::int64_t>(calls[i].arguments.begin(),
                                         calls[i].arguments.begin() + static_cast<long>(count));
    };
    for (std::size_t read : {0u, 11u})
        EXPECT_THAT(first(read, 6), ElementsAre(30, 300, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE));
    EXPECT_THAT(first(1, 1), ElementsAre(GL_PROJECTION));
    EXPECT_THAT(first(3, 1), ElementsAre(GL_MODELVIEW));
    EXPECT_THAT(first(5, 4), ElementsAre(0, 0, 0, 0));
    EXPECT_THAT(first(6, 4), ElementsAre(30, 300, 1, 1));
    EXPECT_THAT(first(7, 1), ElementsAre(GL_SCISSOR_TEST));
    EXPECT_THAT(first(8, 1), ElementsAre(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT));
    EXPECT_THAT(first(9, 1), ElementsAre(GL_LEQUAL));
    EXPECT_THAT(first(10, 4), ElementsAre(32768, 16384, 0, 65536));
    EXPECT_THAT(first(12, 1), ElementsAre(GL_DEPTH_TEST));
    EXPECT_THAT(first(13, 1), ElementsAre(GL_PROJECTION));
    for (std::size_t viewport : {15u, 21u}) EXPECT_THAT(first(viewport, 4), ElementsAre(0, 0, 240, 320));
    EXPECT_THAT(first(16, 6), ElementsAre(0, 240 * 65536, 320 * 65536, 0, -65536, 65536));
    EXPECT_THAT(first(17, 1), ElementsAre(GL_MODELVIEW));
    EXPECT_THAT(first(19, 1), ElementsAre(GL_PROJECTION));
    EXPECT_THAT(first(22, 1), ElementsAre(GL_MODELVIEW));
    EXPECT_THAT(first(24, 1), ElementsAre(GL_SCISSOR_TEST));
    EXPECT_THAT(first(25, 1), ElementsAre(GL_DEPTH_TEST));
    EXPECT_THAT(first(26, 1), ElementsAre(GL_LESS));
}

TEST_F(LandscapePickingTest, ThePointIsTurnedWithTheScreen) {
    draw({});
    KELTRA::select(50, 200);
    EXPECT_THAT(argumentsOf("glScissor"), ElementsAre(320 - 200, 320 - 50, 1, 1));
    for (const Call &call : GlRecorder::all("glReadPixels")) {
        EXPECT_EQ(call.arguments[0], 120);
        EXPECT_EQ(call.arguments[1], 270);
    }
}

TEST_F(PickingTest, DrawsMeshesAndCustomNodesInListOrderAndNothingElse) {
    Probe<KTMESH> mesh;
    Probe<KTNODE> custom(KT_CUSTOM), dome(KT_SKYDOME), water(KT_WATER), sound(KT_SOUND), box(KT_BOX);
    Probe<KTLIGHT> light(KT_LIGHT);
    Probe<KTHELPER> helper(KT_HELPER);
    draw({&custom, &dome, &mesh, &water, &light, &helper, &sound, &box});
    for (Probe<KTNODE> *node : {&custom, &dome, &water, &sound, &box}) node->renders = 0;
    mesh.renders = light.renders = helper.renders = 0;
    KELTRA::select(120, 160);
    EXPECT_EQ(mesh.renders, 1);
    EXPECT_EQ(mesh.profile, KT_PROFILE_PICKING);
    EXPECT_EQ(static_cast<KTELEMENT *>(mesh.element)->getNode(), &mesh);
    EXPECT_EQ(custom.renders, 1);
    EXPECT_EQ(custom.profile, KT_PROFILE_PICKING);
    EXPECT_EQ(dome.renders + water.renders + sound.renders + box.renders + light.renders + helper.renders, 0);
    EXPECT_EQ(KTOPENGL::getProfile(), KT_PROFILE_NORMAL);
}

TEST_F(PickingTest, NodesDestroyedSinceTheFrameAreLeftOut) {
    auto *gone = new Probe<KTMESH>;
    Wall wall;
    wall.setAuxId(77);
    draw({gone, &wall});
    delete gone;
    EXPECT_EQ(KELTRA::select(120, 160), 77u);
}

TEST_F(PickingTest, PureRedHasTheCodeOfTheDepth) {
    Painter red(255, 0, 0), mixed(255, 130, 41);
    draw({&red});
    EXPECT_EQ(KELTRA::select(120, 160), KTSETTINGS::colorDepth == 16 ? 0xf800u : 0xffu);
    draw({&mixed});
    EXPECT_EQ(KELTRA::select(120, 160),
              KTSETTINGS::colorDepth == 16 ? 31u << 11 | 32u << 5 | 5u : 41u << 16 | 130u << 8 | 255u);
}

TEST_F(PickingTest, ThePixelIsPackedByTheDepthThatTheGlReports) {
    const int depth = KTSETTINGS::colorDepth;
    draw({});
    const GlRecorder::Stub stub;
    GlRecorder::setPixels({0x9a, 0x57, 0x3c, 0xd1});
    KTSETTINGS::colorDepth = 16;
    EXPECT_EQ(KELTRA::select(1, 1), 0x9au >> 3 << 11 | 0x57u >> 2 << 5 | 0x3cu >> 3);
    KTSETTINGS::colorDepth = 24;
    EXPECT_EQ(KELTRA::select(1, 1), 0x3c579au);
    for (int other : {0, 8, 15, 18, 32}) {
        KTSETTINGS::colorDepth = other;
        EXPECT_EQ(KELTRA::select(1, 1), 0xd13c579au) << other;
    }
    KTSETTINGS::colorDepth = depth;
}

TEST_F(PickingTest, AMeshIsItsAuxIdOrItsId) {
    Wall wall;
    draw({&wall});
    EXPECT_EQ(KELTRA::select(120, 160), wall.getId());
    wall.setAuxId(4321);
    draw({&wall});
    EXPECT_EQ(KELTRA::select(120, 160), 4321u);
}

TEST_F(PickingTest, EveryCodeThatTheColoursHoldComesBack) {
    Wall wall;
    draw({&wall});
    std::mt19937 random(3);
    for (int i = 0; i < 600; ++i) {
        const unsigned code =
            i < 256 ? 1u << i % 24 | static_cast<unsigned>(i) : static_cast<unsigned>(random());
        if ((code & mask()) == 0) continue;
        wall.setAuxId(code);
        ASSERT_EQ(KELTRA::select(120, 160), code & mask()) << std::hex << code;
    }
    wall.setAuxId(mask() + 1);
    EXPECT_EQ(KELTRA::select(120, 160), 0u) << "a code whose low bits are all 0 looks like the background";
}

TEST_F(PickingTest, TheNearestMeshWinsInWhateverOrder) {
    Wall behind, ahead;
    behind.setAuxId(1);
    ahead.setAuxId(2);
    ahead.setPosition(0.0f, 0.0f, -5.0f);
    draw({&behind, &ahead});
    EXPECT_EQ(KELTRA::select(120, 160), 2u);
    draw({&ahead, &behind});
    EXPECT_EQ(KELTRA::select(120, 160), 2u);
}

TEST_F(PickingTest, OfTwoInOnePlaceTheLaterOneWins) {
    Wall first, second;
    first.setAuxId(1);
    second.setAuxId(2);
    draw({&first, &second});
    EXPECT_EQ(KELTRA::select(120, 160), 2u) << "the depth function is less or equal";
}

TEST_F(PickingTest, GlassIsPickedAndHiddenMeshesAreNot) {
    KTMATERIAL glass;
    glass.setTransparency(0.25f);
    Wall behind, ahead;
    behind.setAuxId(1);
    ahead.setAuxId(2);
    ahead.setPosition(0.0f, 0.0f, -5.0f);
    ahead.setMaterial(&glass);
    draw({&behind, &ahead});
    EXPECT_EQ(KELTRA::select(120, 160), 2u);
    ahead.setDisplayStatus(false);
    draw({&behind, &ahead});
    EXPECT_EQ(KELTRA::select(120, 160), 1u);
    ahead.setMaterial(nullptr);
}

TEST_F(PickingTest, OutsideOfTheWindowIsBackground) {
    Wall wall;
    draw({&wall});
    ASSERT_NE(KELTRA::select(0, 320), 0u);
    ASSERT_NE(KELTRA::select(239, 1), 0u);
    EXPECT_EQ(KELTRA::select(-1, 160), 0u);
    EXPECT_EQ(KELTRA::select(240, 160), 0u);
    EXPECT_EQ(KELTRA::select(120, 321), 0u);
    EXPECT_EQ(KELTRA::select(120, 0), 0u) << "rows count from 1";
    for (int x : {INT_MIN, INT_MIN + 1, -241, 241, INT_MAX - 1, INT_MAX})
        for (int y : {INT_MIN, INT_MIN + 1, -321, 641, INT_MAX - 1, INT_MAX})
            EXPECT_EQ(KELTRA::select(x, y), 0u) << x << ' ' << y;
    expectNoGlError();
}

TEST_F(LandscapePickingTest, OutsideOfTheWindowIsBackground) {
    Wall wall;
    draw({&wall});
    ASSERT_NE(KELTRA::select(1, 81), 0u);
    ASSERT_NE(KELTRA::select(320, 320), 0u);
    EXPECT_EQ(KELTRA::select(0, 200), 0u);
    EXPECT_EQ(KELTRA::select(321, 200), 0u);
    EXPECT_EQ(KELTRA::select(100, 80), 0u);
    EXPECT_EQ(KELTRA::select(100, 321), 0u);
    for (int x : {INT_MIN, INT_MAX})
        for (int y : {INT_MIN, INT_MAX}) EXPECT_EQ(KELTRA::select(x, y), 0u);
}

TEST_F(PickingTest, OnlyThePickedPixelChanges) {
    Wall wall;
    wall.setAuxId(0xffff);
    KELTRA::clear(true, true, false);
    KELTRA::begin3D(nullptr);
    KELTRA::end3D();
    Image before = captureFrame();
    wall.pass();  // on the list, but not drawn in this frame
    EXPECT_EQ(KELTRA::select(100, 50), 0xffffu);
    Image after = captureFrame();
    EXPECT_NE(after.at(100, 49), before.at(100, 49));
    std::copy_n(before.pixels.begin() + (49 * 240 + 100) * 3, 3, after.pixels.begin() + (49 * 240 + 100) * 3);
    EXPECT_EQ(after.pixels, before.pixels);
}

/// What the GL itself holds.
struct GlState {
    std::vector<GLint> integers;
    std::vector<GLboolean> switches;
    std::vector<float> mirrors;
    bool operator==(const GlState &o) const {
        return integers == o.integers && switches == o.switches && mirrors == o.mirrors;
    }

    static GlState now() {
        const GlRecorder::Pause pause;
        GlState state;
        for (GLenum name :
             {GL_MATRIX_MODE, GL_MODELVIEW_STACK_DEPTH, GL_PROJECTION_STACK_DEPTH, GL_DEPTH_FUNC, GL_VIEWPORT,
              GL_COLOR_CLEAR_VALUE, GL_BLEND_SRC, GL_BLEND_DST, GL_CULL_FACE_MODE, GL_SHADE_MODEL,
              GL_DEPTH_CLEAR_VALUE, GL_DEPTH_WRITEMASK, GL_COLOR_WRITEMASK, GL_ALPHA_TEST_FUNC}) {
            GLint values[16] = {};
            glGetIntegerv(name, values);
            state.integers.insert(state.integers.end(), values, values + 16);
        }
        for (GLenum name : {GL_MODELVIEW_MATRIX, GL_PROJECTION_MATRIX}) {
            GLfixed values[16] = {};
            glGetFixedv(name, values);
            state.integers.insert(state.integers.end(), values, values + 16);
        }
        for (GLenum name : {GL_DEPTH_TEST, GL_SCISSOR_TEST, GL_CULL_FACE, GL_BLEND, GL_DITHER,
                            GL_STENCIL_TEST, GL_ALPHA_TEST, GL_TEXTURE_2D, GL_LIGHTING})
            state.switches.push_back(glIsEnabled(name));
        for (bool flag :
             {KTOPENGL::blending, KTOPENGL::scissor, KTOPENGL::culling, KTOPENGL::twoSide, KTLIGHT::lighting})
            state.switches.push_back(flag);
        state.mirrors.resize(32);
        KT_glGetFloatv(0, &state.mirrors[0]);
        KT_glGetFloatv(1, &state.mirrors[16]);
        return state;
    }
};

TEST_F(PickingTest, AnEmptyListLeavesTheStateUnchanged) {
    KTOPENGL::setBackgroundColor(0.1f, 0.7f, 0.3f, 0.9f);
    KTCAMERA camera;
    camera.setPosition(1.0f, 2.0f, 3.0f);
    draw({}, &camera);
    const GlState before = GlState::now();
    KELTRA::select(17, 33);
    EXPECT_TRUE(GlState::now() == before);
    EXPECT_EQ(KTOPENGL::getBackgroundColor(), R3XVECTOR4D(0.1f, 0.7f, 0.3f, 0.9f));
    EXPECT_EQ(KTOPENGL::getProfile(), KT_PROFILE_NORMAL);
}

TEST_F(PickingTest, MeshesLeaveTheStateUnchanged) {
    KTOPENGL::setBackgroundColor(0.1f, 0.7f, 0.3f, 0.9f);
    Wall wall, other;
    KTMATERIAL glass;
    glass.setTransparency(0.5f);
    other.setMaterial(&glass);
    KTCAMERA camera;
    camera.setRotation(5.0f, 10.0f, 15.0f);
    draw({&wall, &other}, &camera);
    KTOPENGL::blendingOff();
    const GlState before = GlState::now();
    KELTRA::select(17, 33);
    EXPECT_TRUE(GlState::now() == before);
    other.setMaterial(nullptr);
}

TEST_F(LandscapePickingTest, LeavesTheStateUnchanged) {
    Wall wall;
    draw({&wall});
    const GlState before = GlState::now();
    KELTRA::select(117, 133);
    EXPECT_TRUE(GlState::now() == before);
}

TEST_F(PickingTest, ASecondCallGivesTheSame) {
    Wall wall;
    draw({&wall});
    const unsigned code = KELTRA::select(5, 5);
    EXPECT_NE(code, 0u);
    EXPECT_EQ(KELTRA::select(5, 5), code);
    EXPECT_EQ(KELTRA::select(6, 5), code);
}

TEST_F(PickingTest, WireframesArePickedAsSolids) {
    Wall wall;
    wall.setAuxId(9);
    KELTRA::wireframeOn();
    draw({&wall});
    EXPECT_EQ(KELTRA::select(33, 44), 9u);
}

TEST_F(PickingTest, AScissorThatWasOnIsOffAfterwards) {
    Wall wall;
    draw({&wall});
    KTOPENGL::scissorOn();
    GlRecorder::clear();
    EXPECT_NE(KELTRA::select(10, 10), 0u);
    EXPECT_EQ(GlRecorder::count("glEnable", {GL_SCISSOR_TEST}), 0) << "it was on";
    EXPECT_FALSE(KTOPENGL::scissor);
}

TEST_F(PickingTest, WaitsForTheListOfTheNextFrame) {
    Wall wall;
    draw({&wall});
    ASSERT_NE(KELTRA::select(10, 10), 0u);
    KELTRA::begin2D();
    KELTRA::end2D();
    EXPECT_EQ(KELTRA::select(10, 10), 0u) << "begin2D empties the list";
}

}  // namespace
}  // namespace keltra::test
