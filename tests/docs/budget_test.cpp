// SPDX-License-Identifier: Zlib
// docs/oddities.md and docs/frame.md: what start-up makes, the texture budget, the paths.

#include "tests/support/engine_fixture.h"
#include "tests/support/temp_file.h"

namespace keltra::test {
namespace {

constexpr unsigned int kMiB = 1 << 20;

class BudgetClaims : public EngineTest {
   protected:
    void SetUp() override {
        EngineTest::SetUp();
        std::string file(18 + 512 * 512 * 3, '\0');
        file[2] = 2;
        file[13] = file[15] = 2;
        file[16] = 24;
        folder.write("large.tga", file);
        KTTEXTURE::setPath(folder.prefix().c_str());
    }
    void TearDown() override {
        EngineTest::TearDown();
        KTTEXTURE::setPath(nullptr);
    }
    static KTTEXTURE *render(bool mipmapped) {
        KTTEXTURE *texture = new KTTEXTURE;
        texture->incReferences();
        texture->setFilter(false, mipmapped, false);
        EXPECT_TRUE(texture->load("large.tga"));
        EXPECT_TRUE(texture->render(nullptr));
        return texture;
    }
    TempFolder folder;
};

TEST_F(BudgetClaims, TheBudgetHoldsEightLargeTexturesWithoutMipmaps) {
    EXPECT_EQ(KELTRA::getVideoMemory(), 8 * kMiB);
    KTTEXTURE *first = render(false);
    for (int i = 1; i < 8; ++i) render(false);
    EXPECT_EQ(KELTRA::getUsedVideoMemory(), 8 * kMiB);
    EXPECT_TRUE(first->isLoaded());
    render(false);
    EXPECT_LE(KELTRA::getUsedVideoMemory(), 8 * kMiB);
}

TEST_F(BudgetClaims, MipmapsAreChargedFourTimesAndBeyondTheBudgetNothingIsEvicted) {
    render(true);
    EXPECT_EQ(KELTRA::getUsedVideoMemory(), 4 * kMiB);
    render(false);
    render(true);
    EXPECT_EQ(KELTRA::getUsedVideoMemory(), 9 * kMiB);
    EXPECT_GT(KELTRA::getFreeVideoMemory(), 4000u * kMiB);
    render(true);
    EXPECT_EQ(KELTRA::getUsedVideoMemory(), 13 * kMiB);
    KTTEXTURE::garbageCollect(KELTRA::getVideoMemory());
    EXPECT_LT(KELTRA::getUsedVideoMemory(), 8 * kMiB);
}

TEST_F(BudgetClaims, StartUpMakesWhatThePageSays) {
    EXPECT_EQ(KTSHADER::getNumberOfShaders(), 35u);
    EXPECT_TRUE(KTFONT::fontCachedVertex);
    EXPECT_TRUE(KTMESH::boneMatrices);
    EXPECT_TRUE(KTEMITTER::particle);
    new KTFONT;
    new KTEMITTER;
    new KTVIDEO;
    ASSERT_TRUE(KELTRA::free());
    EXPECT_EQ(KTFONT::getNumberOfFonts() + KTNODE::getNumberOfNodes() + KTVIDEO::getNumberOfVideos(), 0u);
    EXPECT_FALSE(KTFONT::fontCachedVertex || KTMESH::boneMatrices || KTEMITTER::particle);
}

TEST_F(BudgetClaims, StartUpTakesAllPathsButThatOfFilmsFromItsSettings) {
    KTVIDEO::setMPGPath("films/");
    KTANIM::setKTAPath("animations/");
    ASSERT_TRUE(KELTRA::free());
    EXPECT_STREQ(KTANIM::getKTAPath(), "animations/");
    ASSERT_TRUE(KELTRA::init(nullptr));
    EXPECT_STREQ(KTANIM::getKTAPath(), "");
    EXPECT_STREQ(KTTEXTURE::getPath(), "");
    EXPECT_STREQ(KTVIDEO::getMPGPath(), "films/");
    KTVIDEO::setMPGPath(nullptr);
}

}  // namespace
}  // namespace keltra::test
