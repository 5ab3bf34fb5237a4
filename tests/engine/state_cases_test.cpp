// SPDX-License-Identifier: Zlib
// Single cases of earlier drawing that changes later drawing.

#include <functional>

#include "tests/engine/state_stage.h"
#include "tests/support/engine_fixture.h"
#include "tests/support/gl_answers.h"

namespace keltra::test {
namespace {

constexpr GLfixed kOne = 65536;

/// A node of an application that runs code when it is drawn.
class Actor : public KTNODE {
   public:
    explicit Actor(std::function<void()> function, unsigned int code = KT_CUSTOM) : act(std::move(function)) {
        type = code;
    }
    bool render(void *) override {
        act();
        return true;
    }

   private:
    std::function<void()> act;
};

class StateCasesTest : public EngineTest {
   protected:
    void SetUp() override {
        EngineTest::SetUp();
        writeStageFiles(folder);
        KTOPENGL::setBackgroundColor(0.0f, 0.0f, 1.0f, 1.0f);
        GlRecorder::clear();
    }
    void TearDown() override {
        stages.clear();
        EngineTest::TearDown();
        KELTRA::setKTEPath(nullptr);
        KTTEXTURE::setPath(nullptr);
    }
    Stage &make(const char *name, Side side = Side::kRight) {
        stages.push_back(subject(name).make(side));
        return *stages.back();
    }
    static KTMESH &meshOf(Stage &stage) { return *static_cast<KTMESH *>(stage.scene[0]); }
    static Image draw(std::initializer_list<KTNODE *> nodes) {
        return frame3D(nullptr, [&] {
            for (KTNODE *node : nodes) node->pass();
        });
    }
    static std::vector<GLfixed> currentColor() {
        const GlRecorder::Pause pause;
        std::vector<GLfixed> color(4);
        glGetFixedv(GL_CURRENT_COLOR, color.data());
        return color;
    }
    /// The place of the first call of `name` from `start` on; the number of calls when there is none.
    static std::size_t find(const char *name, std::size_t start = 0) {
        const std::vector<Call> &calls = GlRecorder::calls();
        while (start < calls.size() && calls[start].name != name) ++start;
        return start;
    }
    /// What a client array was switched to last before the call at `end`.
    static bool wasOn(GLenum array, std::size_t end) {
        bool on = false;
        for (std::size_t i = 0; i < end; ++i) {
            const Call &call = GlRecorder::calls()[i];
            if (call.arguments.empty() || call.arguments[0] != array) continue;
            if (call.name == "glEnableClientState") on = true;
            if (call.name == "glDisableClientState") on = false;
        }
        return on;
    }

    TempFolder folder;
    std::vector<std::unique_ptr<Stage>> stages;
};

TEST_F(StateCasesTest, ThePickingColourDoesNotStay) {
    KTNODE *mesh = make("Unlit").scene[0];
    const Image before = draw({mesh});
    KELTRA::begin3D(nullptr);
    mesh->pass();
    KELTRA::end3D();
    KELTRA::select(180, 160);
    EXPECT_EQ(currentColor(), std::vector<GLfixed>(4, kOne));
    EXPECT_EQ(draw({mesh}).pixels, before.pixels);
}

TEST_F(StateCasesTest, NorDoesTheCodeOfAnApplicationsNode) {
    for (const auto &act : {std::function<void()>([] { KT_glColor4f(1.0f, 0.0f, 0.0f, 1.0f); }),
                            std::function<void()>([] { glColor4x(kOne, 0, 0, kOne); })}) {
        Actor node([&act] {
            if (KTOPENGL::getProfile() == KT_PROFILE_PICKING) act();
        });
        draw({&node});
        KELTRA::select(180, 160);
        EXPECT_EQ(currentColor(), std::vector<GLfixed>(4, kOne));
    }
}

TEST_F(StateCasesTest, TheColourOfAnApplicationLastsOverPickingAndParticles) {
    KTNODE *mesh = make("Unlit").scene[0], *emitter = make("Emitter", Side::kLeft).scene[0];
    KT_glColor4f(1.0f, 0.5f, 0.0f, 1.0f);
    const Image before = draw({mesh});
    KELTRA::select(180, 160);
    draw({emitter});
    EXPECT_EQ(draw({mesh}).pixels, before.pixels);
    GlRecorder::clear();
    draw({emitter});
    draw({mesh});
    EXPECT_EQ(GlRecorder::count("glColor4x", {kOne, kOne / 2, 0, kOne}), 1)
        << "a draw with colours made it undefined";
    draw({mesh});
    EXPECT_EQ(GlRecorder::count("glColor4x"), 1) << "it holds now";
}

TEST_F(StateCasesTest, CullingIsOnForWhatFollowsAnEmitter) {
    KTNODE *emitter = make("Emitter").scene[0];
    bool culled = false;
    Actor after([&culled] { culled = enabled(GL_CULL_FACE); }, KT_HELPER);
    after.setPosition(0.0f, 0.0f, -5.0f);  // nearer, so that it comes after
    draw({emitter, &after});
    EXPECT_TRUE(culled);
    EXPECT_TRUE(enabled(GL_CULL_FACE)) << "without a 2D pass too";
    EXPECT_TRUE(KTOPENGL::isCulled());
    KTOPENGL::cullingOff();
    draw({emitter, &after});
    EXPECT_FALSE(culled);
    EXPECT_FALSE(enabled(GL_CULL_FACE)) << "the application wants none";
}

TEST_F(StateCasesTest, AnEmitterThatIsDrawnByItselfLeavesCullingAsItWas) {
    KTNODE *emitter = make("Emitter").scene[0];
    KTELEMENT element;
    for (bool wanted : {true, false}) {
        if (!wanted) KTOPENGL::cullingOff();
        emitter->render(&element);
        EXPECT_EQ(enabled(GL_CULL_FACE), wanted);
        EXPECT_EQ(KTOPENGL::isCulled(), wanted);
    }
}

TEST_F(StateCasesTest, WireframeLeavesCullingAsItIs) {
    KTNODE *mesh = make("Unlit").scene[0];
    KELTRA::wireframeOn();
    for (bool wanted : {true, false}) {
        if (!wanted) KTOPENGL::cullingOff();
        draw({mesh});
        EXPECT_EQ(enabled(GL_CULL_FACE), wanted);
        EXPECT_EQ(KTOPENGL::isCulled(), wanted);
    }
}

TEST_F(StateCasesTest, CullingThatIsSwitchedWhileItIsSuspendedWaits) {
    KELTRA::begin2D();
    KTOPENGL::cullingOff();
    KTOPENGL::cullingOn();
    EXPECT_FALSE(enabled(GL_CULL_FACE)) << "the 2D pass has none";
    KTOPENGL::cullingOff();
    KELTRA::end2D();
    EXPECT_FALSE(enabled(GL_CULL_FACE));
}

TEST_F(StateCasesTest, AChannelThatIsSwitchedOffLeavesTheOthersOn) {
    for (unsigned int channel : {0u, 1u, 5u}) KTTEXTURE::texturingOn(channel);
    KTTEXTURE::texturingOff(1);
    EXPECT_TRUE(enabled(GL_TEXTURE_2D));
    KTTEXTURE::texturingOff(0);
    EXPECT_TRUE(enabled(GL_TEXTURE_2D));
    KTTEXTURE::texturingOff(5);
    EXPECT_FALSE(enabled(GL_TEXTURE_2D));
}

TEST_F(StateCasesTest, ATextureThatAnotherChannelHasReplacedIsBoundAgain) {
    KTTEXTURE first, second;
    for (KTTEXTURE *texture : {&first, &second}) ASSERT_TRUE(texture->create(4, 4, 3));
    unsigned int channel = 1;
    first.render(nullptr);
    second.render(&channel);
    GlRecorder::clear();
    first.render(nullptr);
    EXPECT_EQ(GlRecorder::count("glBindTexture", {GL_TEXTURE_2D, first.getGLId()}), 1);
    KTTEXTURE::texturingOff(0);
    first.render(nullptr);
    EXPECT_TRUE(KTTEXTURE::channelActive[0]) << "switched off in the meantime";
}

TEST_F(StateCasesTest, AnUploadWithinTheSceneDoesNotChangeWhatIsDrawnWith) {
    KTMESH &left = meshOf(make("Textured", Side::kLeft)), &right = meshOf(make("Textured"));
    const Image plain = draw({&left, &right});
    KTTEXTURE other;
    const std::string pixels(4 * 4 * 3, '\x7f');
    ASSERT_TRUE(other.create(4, 4, 3));
    Actor uploads([&] { EXPECT_TRUE(other.modify(pixels.c_str(), false)); }, KT_SOUND);
    EXPECT_EQ(draw({&left, &uploads, &right}).pixels, plain.pixels);
    Actor draws([&] { other.render(nullptr); }, KT_SOUND);
    EXPECT_EQ(draw({&left, &draws, &right}).pixels, plain.pixels) << "the current material is set anew";
    Actor blends(KTOPENGL::blendingOn, KT_SOUND);
    EXPECT_EQ(draw({&left, &blends, &right}).pixels, plain.pixels);
}

TEST_F(StateCasesTest, ATextureOfTheApplicationIsBackAfterTheContextWasLost) {
    KTTEXTURE own;
    ASSERT_TRUE(own.load("tile.tga"));
    KTBOX box;
    box.setSizes(64, 64);
    const auto show = [&] {
        box.setTexture(&own);
        return frame(nullptr, nullptr, [&] { box.pass(); });
    };
    const Image before = show();
    StartupFaults::loseContext();
    EXPECT_FALSE(KELTRA::swap());
    ASSERT_TRUE(KELTRA::free());
    settings.setTexturePath(folder.prefix().c_str());
    ASSERT_TRUE(KELTRA::init(&settings));
    KTOPENGL::setBackgroundColor(0.0f, 0.0f, 1.0f, 1.0f);
    EXPECT_TRUE(show().pixels == before.pixels);
    EXPECT_TRUE(own.isLoaded());
}

TEST_F(StateCasesTest, AMeshWithoutAMaterialIsPlain) {
    KTMESH &bare = meshOf(make("Bare")), &glass = meshOf(make("Transparent", Side::kLeft));
    KTMESH &tile = meshOf(make("Textured", Side::kLeft));
    KTLIGHT light;
    light.setPosition(1.0f, 3.0f, 0.0f);
    draw({&bare});
    EXPECT_FALSE(KTOPENGL::isBlended());
    draw({&tile, &bare});
    EXPECT_FALSE(enabled(GL_TEXTURE_2D));
    const Image lit = draw({&light, &bare});
    draw({&light, &tile, &glass});
    EXPECT_EQ(draw({&light, &bare}).pixels, lit.pixels) << "with the GL's own material";
}

TEST_F(StateCasesTest, APickWithinThe2DPassReadsNoColoursAndLeavesThePassAsItWas) {
    KTBOX first, second;
    first.setPosition(130.0f, 20.0f);
    second.setPosition(150.0f, 40.0f);  // over the first, where a depth test would hide it
    KTMESH &mesh = meshOf(make("Unlit", Side::kLeft));
    const auto boxes = [&](const std::function<void()> &between) {
        KELTRA::clear(true, true, false);
        KELTRA::begin2D();
        mesh.pass();
        first.render(nullptr);
        GlRecorder::clear();
        between();
        first.pass();
        second.pass();
        KELTRA::end2D();
        return captureFrame();
    };
    const Image plain = boxes([] {});
    const Image picked = boxes([] { KELTRA::select(10, 300); });
    EXPECT_EQ(GlRecorder::count("glDisableClientState", {GL_COLOR_ARRAY}), 1);
    const std::size_t drawn = find("glDrawElements");
    ASSERT_LT(drawn, GlRecorder::calls().size());
    EXPECT_FALSE(wasOn(GL_COLOR_ARRAY, drawn));
    EXPECT_EQ(picked.at(170, 60), plain.at(170, 60));
    EXPECT_EQ(picked.at(140, 30), plain.at(140, 30));
}

TEST_F(StateCasesTest, AWidgetInThe3DPassIsDrawnWithItsOwnArraysAndUnlit) {
    for (const char *name : {"Label", "Box", "TextField", "Window"}) {
        SCOPED_TRACE(name);
        KTNODE *widget = make(name).interface[0];
        KTNODE holder;  // pixels are units here, far away
        holder.setPosition(-200.0f, -150.0f, -900.0f);
        widget->link(&holder);
        KTMESH &mesh = meshOf(make("LitTextured", Side::kLeft));
        KTLIGHT light;
        const Image alone = draw({&holder});
        GlRecorder::clear();
        const Image lit = draw({&light, &mesh, &holder});
        for (int y = 0; y < 320; y += 3)
            for (int x = 130; x < 240; x += 3) ASSERT_EQ(lit.at(x, y), alone.at(x, y)) << x << ' ' << y;
        EXPECT_TRUE(KTLIGHT::getLighting());
        const std::size_t text = find("glColorPointer");
        EXPECT_FALSE(wasOn(GL_NORMAL_ARRAY, text));
        EXPECT_TRUE(wasOn(GL_COLOR_ARRAY, text));
        widget->unlink();
    }
}

TEST_F(StateCasesTest, AnEmitterInThe2DPassLeavesTheBoxesTheirArrays) {
    KTNODE *box = make("Box").interface[0], *emitter = make("Emitter", Side::kLeft).scene[0];
    bool vertices = false, culled = true;
    Actor own([&] {
        vertices = enabled(GL_VERTEX_ARRAY) && enabled(GL_COLOR_ARRAY);
        culled = enabled(GL_CULL_FACE);
    });
    const Image plain = frame2D([&] { box->pass(); });
    const Image after = frame2D([&] {
        emitter->pass();
        own.pass();
        box->pass();
    });
    EXPECT_EQ(after.pixels, plain.pixels);
    EXPECT_TRUE(vertices);
    EXPECT_FALSE(culled);
    EXPECT_TRUE(enabled(GL_CULL_FACE));
}

TEST_F(StateCasesTest, CurrentValuesThatADrawLeftUndefinedAreSetBeforeTheyCount) {
    KTMESH &full = meshOf(make("LitTextured", Side::kLeft)), &lacking = meshOf(make("WithoutArrays"));
    KTLIGHT light;
    draw({&light, &full, &lacking});
    EXPECT_EQ(GlRecorder::count("glNormal3x", {0, 0, kOne}), 1);
    EXPECT_EQ(GlRecorder::count("glMultiTexCoord4x", {GL_TEXTURE0, 0, 0, 0, kOne}), 1);
    draw({&light, &lacking});
    EXPECT_EQ(GlRecorder::count("glNormal3x"), 1) << "begin3D found the arrays off";
}

TEST_F(StateCasesTest, AFrameOfMeshesSetsNoMoreThanItsMaterials) {
    KTMESH &left = meshOf(make("LitTextured", Side::kLeft)), &right = meshOf(make("LitTextured"));
    KTLIGHT light;
    draw({&light, &left, &right});
    GlRecorder::clear();
    draw({&light, &left, &right});
    for (const char *name : {"glColor4x", "glNormal3x", "glMultiTexCoord4x"})
        EXPECT_EQ(GlRecorder::count(name), 0) << name;
    EXPECT_EQ(GlRecorder::count("glBindTexture"), 1);
    EXPECT_EQ(GlRecorder::count("glMaterialxv"), 4);
}

// State that lasts because the frame is defined so.

TEST_F(StateCasesTest, LightingLastsIntoAFrameWithoutLights) {
    KTNODE *mesh = make("Lit").scene[0];
    KTLIGHT light;
    draw({&light, mesh});
    draw({mesh});
    EXPECT_TRUE(KTLIGHT::getLighting());
    KELTRA::begin2D();
    KELTRA::end2D();
    EXPECT_FALSE(KTLIGHT::getLighting());
}

TEST_F(StateCasesTest, AGlLightStaysOnUntilAnotherIsLoadedIntoIt) {
    KTNODE *mesh = make("Lit").scene[0];
    KTLIGHT one, other;
    draw({&one, &other, mesh});
    draw({&one, mesh});
    EXPECT_TRUE(enabled(GL_LIGHT1));
}

}  // namespace
}  // namespace keltra::test
