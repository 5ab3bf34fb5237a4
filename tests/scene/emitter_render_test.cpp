// SPDX-License-Identifier: Zlib
#include <keltra/emitter.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <vector>

#include "tests/resources/texture_fixture.h"
#include "tests/support/allocations.h"

namespace keltra::test {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;

class EmitterRenderTest : public TextureTest {
   protected:
    void SetUp() override {
        TextureTest::SetUp();
        if (!HasFatalFailure()) startFrame();
    }
    void TearDown() override {
        KTLIGHT::lightingOff();
        TextureTest::TearDown();
    }

    static void startFrame() {
        KELTRA::begin3D(nullptr);
        KTLIGHT::lightingOff();
        KTOPENGL::normalArrayOff();
        GlRecorder::clear();
    }
    static bool render(KTEMITTER &emitter, const R3XMATRIX &matrix = R3XMATRIX()) {
        KTELEMENT element;
        element.matrix = matrix;
        return emitter.render(&element);
    }
    static unsigned countHeld(const KTEMITTER &emitter) {
        const auto isHeld = [](int index) { return index >= 0; };
        return static_cast<unsigned>(
            std::count_if(emitter.slot, emitter.slot + KTEMITTER::maxParticles, isHeld));
    }
    static std::int64_t address(const void *pointer) { return reinterpret_cast<std::intptr_t>(pointer); }
};

TEST_F(EmitterRenderTest, ThePoolStandsReadyFromTheStart) {
    for (unsigned i = 0; i < KTEMITTER::poolSize; ++i) {
        EXPECT_FALSE(KTEMITTER::particle[i].used);
        EXPECT_EQ(KTEMITTER::particle[i].color.w, 1.0f);
    }
    const R3XVECTOR4D corners[] = {{-1.0f, -1.0f, 0.0f, 1.0f},
                                   {1.0f, -1.0f, 0.0f, 1.0f},
                                   {1.0f, 1.0f, 0.0f, 1.0f},
                                   {-1.0f, 1.0f, 0.0f, 1.0f}};
    const R3XVECTOR2D uvs[] = {{0.0f, 0.0f}, {1.0f, 0.0f}, {1.0f, 1.0f}, {0.0f, 1.0f}};
    for (unsigned i = 0; i < 2048; ++i) {
        EXPECT_TRUE(KTEMITTER::vertexArray[i] == corners[i % 4]);
        EXPECT_TRUE(KTEMITTER::uvArray[i] == uvs[i % 4]);
        EXPECT_TRUE(KTEMITTER::uvSecondaryArray[i] == uvs[i % 4]);
    }
    EXPECT_EQ(KTEMITTER::numberbOfParticlesUsed, 0u);
    EXPECT_FALSE(KTEMITTER::init()) << "it is there already";
}

TEST_F(EmitterRenderTest, NeedsAMatrixAndThePool) {
    KTEMITTER emitter;
    emitter.setNumberOfParticles(3);
    EXPECT_FALSE(emitter.render(nullptr));
    EXPECT_FALSE(emitter.initialized);
    ASSERT_TRUE(render(emitter));
    ASSERT_TRUE(KELTRA::free());
    EXPECT_EQ(KTEMITTER::particle, nullptr);
    EXPECT_EQ(KTEMITTER::colorArray, nullptr);
    EXPECT_FALSE(KTEMITTER::free());
    EXPECT_EQ(countHeld(emitter), 0u);
    EXPECT_FALSE(emitter.initialize());
    EXPECT_FALSE(render(emitter));
    ASSERT_TRUE(KELTRA::init(&settings));
    EXPECT_TRUE(render(emitter)) << "it claims anew";
    EXPECT_EQ(KTEMITTER::numberbOfParticlesUsed, 3u);
}

TEST_F(EmitterRenderTest, MakesExactlyTheseCalls) {
    KTEMITTER emitter;
    emitter.setNumberOfParticles(5);
    emitter.setBlendingSrc(GL_ONE);
    emitter.setBlendingDst(GL_ONE_MINUS_DST_ALPHA);
    KTTEXTURE *texture = loaded("dot.tga", 8);
    emitter.setTexture(texture);
    texture->update();
    KTLIGHT::lightingOn();
    KTMATERIAL material;
    KTMATERIAL::currentMaterial = &material;
    GlRecorder::clear();
    R3XMATRIX matrix;
    matrix.setTranslation(1.0f, 2.0f, -3.0f);
    ASSERT_TRUE(render(emitter, matrix));
    EXPECT_THAT(
        GlRecorder::names(),
        ElementsAre("glLoadMatrixx", "glDisable", "glEnable", "glBlendFunc", "glDepthMask", "glEnable",
                    "glAlphaFuncx", "glDisable", "glEnable", "glBindTexture", "glEnableClientState",
                    "glEnableClientState", "glEnableClientState", "glVertexPointer", "glColorPointer",
                    "glTexCoordPointer", "glDrawArrays", "glDisableClientState", "glDisableClientState",
                    "glDisableClientState", "glDisable", "glDepthMask", "glDisable", "glDisable",
                    "glBlendFunc", "glEnable", "glEnable"));
    const std::vector<std::vector<std::int64_t>> arguments = {
        {GL_LIGHTING},
        {GL_BLEND},
        {GL_ONE, GL_ONE_MINUS_DST_ALPHA},
        {GL_FALSE},
        {GL_ALPHA_TEST},
        {GL_GREATER, static_cast<std::int64_t>(0.2f * 65536.0f)},
        {GL_CULL_FACE},
        {GL_TEXTURE_2D},
        {GL_TEXTURE_2D, texture->getGLId()},
        {GL_VERTEX_ARRAY},
        {GL_COLOR_ARRAY},
        {GL_TEXTURE_COORD_ARRAY},
        {4, GL_FLOAT, 0, address(KTEMITTER::vertexArray)},
        {4, GL_UNSIGNED_BYTE, 0, address(KTEMITTER::colorArray)},
        {2, GL_FLOAT, 0, address(KTEMITTER::uvArray)},
        {GL_TRIANGLES, 0, 20},
        {GL_VERTEX_ARRAY},
        {GL_COLOR_ARRAY},
        {GL_TEXTURE_COORD_ARRAY},
        {GL_ALPHA_TEST},
        {GL_TRUE},
        {GL_BLEND},
        {GL_TEXTURE_2D},
        {GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA},
        {GL_LIGHTING},
        {GL_CULL_FACE},
    };
    ASSERT_EQ(GlRecorder::calls().size(), arguments.size() + 1);
    for (std::size_t i = 0; i < arguments.size(); ++i)
        EXPECT_THAT(GlRecorder::calls()[i + 1].arguments, ElementsAreArray(arguments[i])) << i;
    const std::vector<std::int64_t> loaded = GlRecorder::calls()[0].contents;
    EXPECT_EQ(std::vector<std::int64_t>(loaded.end() - 4, loaded.end()),
              (std::vector<std::int64_t>{65536, 131072, -196608, 65536}));
    EXPECT_EQ(KTMATERIAL::currentMaterial, nullptr);
    EXPECT_TRUE(KTLIGHT::getLighting());
    EXPECT_FALSE(KTOPENGL::isBlended());
    EXPECT_TRUE(KTOPENGL::isCulled());
    EXPECT_EQ(KTTEXTURE::channelCache[0], nullptr);
    expectNoGlError();
}

TEST_F(EmitterRenderTest, WithoutLightsAndTextureTheirSwitchesAreLeftAlone) {
    KTEMITTER emitter;
    emitter.setNumberOfParticles(1);
    ASSERT_TRUE(render(emitter));
    EXPECT_EQ(GlRecorder::count("glEnable", {GL_LIGHTING}), 0);
    EXPECT_EQ(GlRecorder::count("glDisable", {GL_LIGHTING}), 0);
    EXPECT_EQ(GlRecorder::count("glEnable", {GL_TEXTURE_2D}), 0);
    EXPECT_EQ(GlRecorder::count("glDrawArrays", {GL_TRIANGLES, 0, 4}), 1);
}

// An array of a mesh drawn before would be read beyond its end, and its texture would be painted on the
// particles.
TEST_F(EmitterRenderTest, WhatAMeshLeftBehindIsSwitchedOff) {
    KTOPENGL::normalArrayOn();
    KTTEXTURE::texturingOn(0);
    KTEMITTER emitter;
    emitter.setNumberOfParticles(1);
    GlRecorder::clear();
    ASSERT_TRUE(render(emitter));
    EXPECT_EQ(GlRecorder::count("glDisableClientState", {GL_NORMAL_ARRAY}), 1);
    EXPECT_EQ(GlRecorder::count("glDisable", {GL_TEXTURE_2D}), 1);
    EXPECT_FALSE(KTOPENGL::normalArrayStatus);
}

TEST_F(EmitterRenderTest, CullingIsOnAgainAfterAFrame) {
    KTEMITTER emitter;
    emitter.setNumberOfParticles(1);
    frame(
        nullptr, [&] { EXPECT_TRUE(emitter.pass()); }, [] {});
    int last = 0;
    for (const Call &call : GlRecorder::calls()) {
        if (call.arguments.empty() || call.arguments[0] != GL_CULL_FACE) continue;
        if (call.name == "glEnable") last = 1;
        if (call.name == "glDisable") last = -1;
    }
    EXPECT_EQ(last, 1);
}

TEST_F(EmitterRenderTest, FramesAllocateNothing) {
    KTEMITTER emitter;
    emitter.setNumberOfParticles(100);
    emitter.setMaximumSpin(90);
    GlRecorder::setRecording(false);
    EXPECT_TRUE(render(emitter));
    GlRecorder::setStubbed(true);
    Allocations::startCounting();
    for (int frame = 0; frame < 100; ++frame) render(emitter);
    const long allocations = Allocations::stopCounting();
    GlRecorder::setStubbed(false);
    GlRecorder::setRecording(true);
    EXPECT_EQ(allocations, 0);
}

TEST_F(EmitterRenderTest, ParticlesAreSeen) {
    KTEMITTER emitter;
    emitter.setNumberOfParticles(3);
    emitter.setPosition(0.0f, 0.0f, -10.0f);
    emitter.setMaximumVelocity(0);
    emitter.setColorStart(0.0f, 1.0f, 0.0f);
    emitter.setColorEnd(0.0f, 1.0f, 0.0f);
    ASSERT_TRUE(emitter.initialize());
    for (int i = 0; i < 3; ++i) {
        KTPARTICLE &record = KTEMITTER::particle[emitter.slot[i]];
        record.energy = record.initialEnergy = 1.0f;
        record.size = 2.0f;
    }
    KTOPENGL::setBackgroundColor(0.0f, 0.0f, 0.0f, 1.0f);
    const Image picture = frame3D(nullptr, [&] { emitter.pass(); });
    EXPECT_GE(picture.at(settings.getWindowX() / 2 + 8, settings.getWindowY() / 2 + 2)[1], 248);
    EXPECT_EQ(picture.at(settings.getWindowX() / 2 + 60, settings.getWindowY() / 2)[1], 0);
}

TEST_F(EmitterRenderTest, TheNumberIsCutToWhatAnEmitterMayHold) {
    KTEMITTER emitter;
    for (int number : {600, 1000000000, 513}) {
        emitter.setNumberOfParticles(number);
        EXPECT_EQ(emitter.getNumberOfParticles(), number);
        ASSERT_TRUE(emitter.initialize());
        EXPECT_EQ(emitter.getNumberOfParticles(), 512);
        EXPECT_EQ(countHeld(emitter), 512u);
        EXPECT_EQ(KTEMITTER::numberbOfParticlesUsed, 512u);
    }
    emitter.numberOfParticles = 1000000000;
    ASSERT_TRUE(render(emitter));
    EXPECT_EQ(GlRecorder::last("glDrawArrays").arguments[2], 2048);
    emitter.setNumberOfParticles(-5);
    ASSERT_TRUE(render(emitter));
    EXPECT_EQ(GlRecorder::last("glDrawArrays").arguments[2], 0);
    EXPECT_EQ(KTEMITTER::numberbOfParticlesUsed, 0u);
    ASSERT_TRUE(emitter.initialize());
    EXPECT_EQ(emitter.getNumberOfParticles(), 0);
}

TEST_F(EmitterRenderTest, EmittersShareThePoolAsFarAsItGoes) {
    auto first = std::make_unique<KTEMITTER>();
    KTEMITTER second, third, fourth;
    first->setNumberOfParticles(512);
    second.setNumberOfParticles(500);
    third.setNumberOfParticles(100);
    fourth.setNumberOfParticles(7);
    for (KTEMITTER *emitter : {first.get(), &second, &third, &fourth}) ASSERT_TRUE(render(*emitter));
    EXPECT_EQ(KTEMITTER::numberbOfParticlesUsed, 1024u);
    EXPECT_EQ(first->slot[0], 0);
    EXPECT_EQ(second.slot[0], 512);
    EXPECT_EQ(third.slot[11], 1023);
    EXPECT_EQ(third.slot[12], -1);
    EXPECT_EQ(countHeld(third), 12u);
    EXPECT_EQ(countHeld(fourth), 0u);
    EXPECT_TRUE(third.initialized) << "it keeps the particles that it got";
    first.reset();
    EXPECT_EQ(KTEMITTER::numberbOfParticlesUsed, 512u);
    fourth.setNumberOfParticles(7);
    ASSERT_TRUE(render(fourth));
    EXPECT_EQ(countHeld(fourth), 7u);
    EXPECT_EQ(fourth.slot[6], 6);
}

// The count drawn is that asked for; what another emitter left in the arrays is not shown.
TEST_F(EmitterRenderTest, ParticlesThatAreNotHeldAreDrawnAsNothing) {
    KTEMITTER first, second, third;
    first.setNumberOfParticles(512);
    second.setNumberOfParticles(510);
    third.setNumberOfParticles(4);
    for (KTEMITTER *emitter : {&first, &second, &third}) ASSERT_TRUE(render(*emitter));
    EXPECT_EQ(GlRecorder::last("glDrawArrays").arguments[2], 16);
    for (unsigned i = 8; i < 16; ++i) {
        EXPECT_TRUE(KTEMITTER::vertexArray[i] == KTEMITTER::vertexArray[7]);
        EXPECT_EQ(KTEMITTER::colorArray[4 * i + 3], 0);
    }
}

// Several in a row clear the arrays once, unless something was written to them meanwhile.
TEST_F(EmitterRenderTest, EmittersWithoutParticlesAreDrawnAsNothing) {
    KTEMITTER first, second, empty, bigger;
    first.setNumberOfParticles(512);
    second.setNumberOfParticles(512);
    empty.setNumberOfParticles(20);
    bigger.setNumberOfParticles(30);
    const auto expectNothing = [this](KTEMITTER &emitter) {
        ASSERT_TRUE(render(emitter));
        for (int i = 0; i < 4 * emitter.getNumberOfParticles(); ++i) {
            ASSERT_TRUE(KTEMITTER::vertexArray[i] == R3XVECTOR4D()) << i;
            ASSERT_EQ(KTEMITTER::colorArray[4 * i] | KTEMITTER::colorArray[4 * i + 3], 0) << i;
        }
    };
    ASSERT_TRUE(render(first) && render(second));
    for (int frame = 0; frame < 2; ++frame) {
        for (KTEMITTER *emitter : {&empty, &empty, &bigger, &empty}) expectNothing(*emitter);
        ASSERT_TRUE(render(second));
        expectNothing(bigger);
        KTEMITTER::vertexArray[119].set(1.0f, 2.0f, 3.0f, 1.0f);
        expectNothing(bigger);
        KTEMITTER::colorArray[3] = 9;
        expectNothing(empty);
        KTEMITTER::free();
        ASSERT_TRUE(KTEMITTER::init());
        ASSERT_TRUE(render(first) && render(second));
    }
}

TEST_F(EmitterRenderTest, ASmallerNumberGivesRecordsBackAndALargerOneStartsAnew) {
    KTEMITTER emitter;
    emitter.setNumberOfParticles(20);
    ASSERT_TRUE(render(emitter));
    emitter.setNumberOfParticles(8);
    EXPECT_EQ(KTEMITTER::numberbOfParticlesUsed, 8u);
    EXPECT_TRUE(emitter.initialized);
    EXPECT_FALSE(KTEMITTER::particle[8].used);
    emitter.setNumberOfParticles(9);
    EXPECT_FALSE(emitter.initialized);
    ASSERT_TRUE(render(emitter));
    EXPECT_EQ(KTEMITTER::numberbOfParticlesUsed, 9u);
}

TEST_F(EmitterRenderTest, CopiesHoldNoParticles) {
    KTEMITTER emitter;
    emitter.setNumberOfParticles(20);
    ASSERT_TRUE(render(emitter));
    {
        KTEMITTER copy(emitter);
        EXPECT_EQ(copy.getId(), emitter.getId());
        EXPECT_EQ(copy.getNumberOfParticles(), 20);
        EXPECT_TRUE(copy.getColorStart() == emitter.getColorStart());
        EXPECT_EQ(countHeld(copy), 0u);
        ASSERT_TRUE(render(copy));
        EXPECT_EQ(copy.slot[0], 20);
        EXPECT_EQ(KTEMITTER::numberbOfParticlesUsed, 40u);
        copy = emitter;
        EXPECT_EQ(KTEMITTER::numberbOfParticlesUsed, 20u);
        copy = *&copy;
        ASSERT_TRUE(render(copy));
    }
    EXPECT_EQ(KTEMITTER::numberbOfParticlesUsed, 20u);
    EXPECT_EQ(countHeld(emitter), 20u);
}

TEST_F(EmitterRenderTest, SlotsOutsideThePoolHoldNothing) {
    KTEMITTER emitter;
    emitter.setNumberOfParticles(4);
    ASSERT_TRUE(render(emitter));
    emitter.slot[1] = 1024;
    emitter.slot[2] = -2000000000;
    emitter.slot[3] = 2000000000;
    EXPECT_TRUE(render(emitter));
    EXPECT_TRUE(emitter.initialize());
    emitter.setNumberOfParticles(0);
    EXPECT_EQ(countHeld(emitter), 0u);
}

TEST_F(EmitterRenderTest, CountsAsAUserOfItsTexture) {
    KTTEXTURE *texture = loaded("a.tga", 8);
    KTEMITTER emitter;
    emitter.setTexture(texture);
    EXPECT_EQ(texture->getReferences(), 1);
    emitter.setTexture(texture);
    EXPECT_EQ(texture->getReferences(), 1);
    KTTEXTURE::garbageCollect(0);
    EXPECT_EQ(KTTEXTURE::getNumberOfTextures(), 1u);
    EXPECT_EQ(emitter.getTexture(), texture);
}

TEST_F(EmitterRenderTest, OwnsItsTextureUnlessOthersUseItToo) {
    auto emitter = std::make_unique<KTEMITTER>();
    emitter->setTexture(loaded("a.tga", 8));
    emitter->setTexture(nullptr);
    EXPECT_EQ(KTTEXTURE::getNumberOfTextures(), 0u);
    emitter->setTexture(loaded("a.tga", 8));
    emitter.reset();
    EXPECT_EQ(KTTEXTURE::getNumberOfTextures(), 0u);

    KTTEXTURE *shared = loaded("a.tga", 8);
    emitter = std::make_unique<KTEMITTER>();
    KTEMITTER other;
    emitter->setTexture(shared);
    other.setTexture(shared);
    emitter.reset();
    EXPECT_EQ(other.getTexture(), shared);
    EXPECT_EQ(shared->getReferences(), 1);
}

TEST_F(EmitterRenderTest, CopiesDoNotOwnTheTexture) {
    KTEMITTER emitter;
    emitter.setTexture(loaded("a.tga", 8));
    KTEMITTER assigned;
    assigned.setTexture(loaded("a.tga", 8));
    KTEMITTER *copy = new KTEMITTER(emitter);
    assigned = emitter;
    EXPECT_EQ(KTTEXTURE::getNumberOfTextures(), 1u);
    delete copy;
    EXPECT_EQ(emitter.getTexture()->getReferences(), 1);
    delete emitter.getTexture();
    EXPECT_EQ(emitter.getTexture(), nullptr);
    EXPECT_EQ(assigned.getTexture(), nullptr);
    EXPECT_TRUE(render(emitter));
}

TEST_F(EmitterRenderTest, TexturesOnTheStackAreOnlyReleased) {
    KTTEXTURE texture;
    KTEMITTER *emitter = new KTEMITTER;
    emitter->setTexture(&texture);
    delete emitter;
    EXPECT_EQ(texture.getReferences(), 0);
    EXPECT_FALSE(texture.isRegistered());
}

}  // namespace
}  // namespace keltra::test
