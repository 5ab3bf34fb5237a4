// SPDX-License-Identifier: Zlib
#include "tests/support/engine_fixture.h"

namespace keltra::test {
namespace {

using ::testing::IsEmpty;

class FboTest : public EngineTest {
   protected:
    void TearDown() override {
        KTFBO::currentFbo = nullptr;
        KTOPENGL::FBOFlag = false;
        EngineTest::TearDown();
    }
};

TEST_F(FboTest, StartsEmpty) {
    const KTFBO target;
    EXPECT_EQ(target.getName(), "[fbo " + std::to_string(target.getId()) + "]");
    EXPECT_EQ(target.getTexture(), nullptr);
    EXPECT_EQ(target.getSizeX(), 0);
    EXPECT_EQ(target.getSizeY(), 0);
    EXPECT_EQ(target.getGLId(), 0u);
}

TEST_F(FboTest, SwitchedOffDoesNothing) {
    KTTEXTURE texture;
    KTFBO target;
    EXPECT_FALSE(target.isOk());
    EXPECT_FALSE(target.bindTexture(0, &texture));
    EXPECT_FALSE(target.bindRenderBuffer(0, 8, 8));
    EXPECT_TRUE(target.render(nullptr));
    EXPECT_EQ(target.getTexture(), nullptr);
    EXPECT_EQ(target.getSizeX(), 0);
    EXPECT_EQ(KTFBO::getCurrent(), nullptr);
    EXPECT_THAT(GlRecorder::names(), IsEmpty());
}

TEST_F(FboTest, TakesTheSizeOfItsTextureAndSetsTheViewportOnce) {
    KTOPENGL::FBOFlag = true;
    KTTEXTURE texture;
    ASSERT_TRUE(texture.create(256, 128, 5));
    KTFBO target;
    EXPECT_TRUE(target.isOk());
    EXPECT_FALSE(target.bindTexture(0, nullptr));
    EXPECT_TRUE(target.bindTexture(0, &texture));
    EXPECT_EQ(target.getTexture(), &texture);
    GlRecorder::clear();
    EXPECT_TRUE(target.render(nullptr));
    EXPECT_TRUE(target.render(nullptr));
    EXPECT_EQ(GlRecorder::count("glViewport", {0, 0, 256, 128}), 1);
    EXPECT_EQ(GlRecorder::calls().size(), 1u);
    EXPECT_EQ(KTFBO::getCurrent(), &target);
}

TEST_F(FboTest, RenderBufferGivesASize) {
    KTOPENGL::FBOFlag = true;
    KTFBO target;
    EXPECT_TRUE(target.bindRenderBuffer(7, 64, 32));
    EXPECT_EQ(target.getSizeX(), 64);
    EXPECT_EQ(target.getSizeY(), 32);
    EXPECT_EQ(target.getTexture(), nullptr);
}

TEST_F(FboTest, UnbindGoesBackToTheScreenWithoutAViewport) {
    KTOPENGL::FBOFlag = true;
    KTFBO target;
    target.render(nullptr);
    KTOPENGL::FBOFlag = false;
    KTFBO::unbind();
    EXPECT_EQ(KTFBO::getCurrent(), &target) << "switched off: nothing changes";
    KTOPENGL::FBOFlag = true;
    GlRecorder::clear();
    KTFBO::unbind();
    EXPECT_EQ(KTFBO::getCurrent(), nullptr);
    EXPECT_THAT(GlRecorder::names(), IsEmpty());
}

TEST_F(FboTest, EffectsAreTrueWhateverTheirArguments) {
    KTFBO target;
    float luminance = 3.0f;
    EXPECT_TRUE(target.blur(nullptr, nullptr, -1));
    EXPECT_TRUE(target.blur(&target, KTSHADER::gaussian, 3));
    EXPECT_TRUE(target.computeLuminance(nullptr));
    EXPECT_TRUE(target.computeLuminance(&luminance));
    EXPECT_EQ(luminance, 3.0f);
    EXPECT_THAT(GlRecorder::names(), IsEmpty());
}

TEST_F(FboTest, StandsOnAListThatCleanUpEmpties) {
    KTFBO *first = new KTFBO, *second = new KTFBO;
    KTTEXTURE texture;
    first->texture = &texture;
    KTFBO onStack;
    EXPECT_EQ(KTFBO::getNumberOfFbos(), 3u);
    EXPECT_EQ(KTFBO::getFirst(), first);
    EXPECT_EQ(first->getNext(), second);
    EXPECT_EQ(onStack.getPrevious(), second);
    EXPECT_TRUE(KTFBO::cleanUp());
    EXPECT_EQ(KTFBO::getNumberOfFbos(), 0u);
    EXPECT_FALSE(KTFBO::cleanUp());
    EXPECT_EQ(KTTEXTURE::findById(texture.getId()), &texture);
}

TEST_F(FboTest, DestroyedTargetLeavesNoPointer) {
    KTOPENGL::FBOFlag = true;
    {
        KTFBO target;
        KTOPENGL::fbo[3] = &target;
        target.render(nullptr);
    }
    EXPECT_EQ(KTFBO::getCurrent(), nullptr);
    EXPECT_EQ(KTOPENGL::fbo[3], nullptr);
}

TEST_F(FboTest, CopyIsOnNoList) {
    KTOPENGL::FBOFlag = true;
    KTFBO target, other;
    target.bindRenderBuffer(0, 5, 6);
    {
        KTFBO copy(target);
        EXPECT_EQ(copy.getId(), target.getId());
        EXPECT_EQ(copy.getSizeY(), 6);
        copy.bindRenderBuffer(0, 7, 8);
    }
    EXPECT_EQ(KTFBO::getNumberOfFbos(), 2u);
    other.render(nullptr);
    other = target;
    EXPECT_EQ(KTFBO::getCurrent(), nullptr);
    EXPECT_EQ(other.getSizeX(), 5);
    EXPECT_EQ(target.getNext(), &other);
}

}  // namespace
}  // namespace keltra::test
