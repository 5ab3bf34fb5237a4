// SPDX-License-Identifier: Zlib
// The road of the lesson about streaming: after each round of its pieces all is as it was a round before.
#include "examples/26_streaming/road.h"

#include <algorithm>

#include "tests/support/engine_fixture.h"
#include "tests/support/engine_heap.h"

namespace keltra::test {
namespace {

constexpr float kRound = 15 * kLength;  // after which the same pieces come again

constexpr double kSlack = 512.0;  // bytes: blocks differ a little in what they are rounded to

class RoadTest : public EngineTest {
   protected:
    void prepare(KTSETTINGS &wanted) override {
        wanted.setKTEPath(KELTRA_EXAMPLE_DATA);
        wanted.setTexturePath(KELTRA_EXAMPLE_DATA);
    }
    void TearDown() override {
        EngineTest::TearDown();
        KELTRA::setKTEPath(nullptr);
        KTTEXTURE::setPath(nullptr);
    }
    void walk(Road *road, float units) {
        const GlRecorder::Pause pause;
        GlRecorder::setDrawing(false);
        for (float gone = 0.0f; gone < units; gone += 0.5f * kLength) {
            ASSERT_TRUE(road->advance(0.5f * kLength));
            ASSERT_TRUE(KELTRA::clear(true, true, false) && KELTRA::begin3D(nullptr) && road->pass() &&
                        KELTRA::end3D());
            expectNoGlError();
            mostTexture = std::max(mostTexture, KTENGINESTATE::getUsedVideoMemory());
            leastTexture = std::min(leastTexture, KTENGINESTATE::getUsedVideoMemory());
            ASSERT_TRUE(KELTRA::swap());
        }
        GlRecorder::setDrawing(true);
    }
    unsigned mostTexture = 0, leastTexture = ~0u;
};

TEST_F(RoadTest, LeavesNothingBehind) {
    Road road;
    walk(&road, kRound);
    const unsigned nodes = KTNODE::getNumberOfNodes(), materials = KTMATERIAL::getNumberOfMaterials();
    const unsigned textures = KTTEXTURE::getNumberOfTextures(), memory = KTENGINESTATE::getUsedVideoMemory();
    const int read = road.getNumberRead();
    mostTexture = 0;
    for (int round = 2; round <= 5; ++round) {
        SCOPED_TRACE(round);
        walk(&road, kRound);
        EXPECT_EQ(KTNODE::getNumberOfNodes(), nodes);
        EXPECT_EQ(KTMATERIAL::getNumberOfMaterials(), materials);
        EXPECT_EQ(KTTEXTURE::getNumberOfTextures(), textures);
        EXPECT_EQ(KTENGINESTATE::getUsedVideoMemory(), memory);
    }
    EXPECT_EQ(road.getNumberRead(), read + 60);
    EXPECT_LT(mostTexture, 8u << 20);
    EXPECT_LT(leastTexture, mostTexture) << "textures of pieces that are gone are gone";
}

TEST_F(RoadTest, TakesNoMoreOfTheHeapFromRoundToRound) {
    if (!Allocations::canFail()) GTEST_SKIP() << "a sanitizer owns malloc";
    ASSERT_TRUE(KELTRA::free());
    const auto heap = std::make_unique<EngineHeap>();
    ASSERT_TRUE(KELTRA::init(&settings));
    Road road;
    walk(&road, 2 * kRound);
    const std::size_t held = heap->held;
    heap->peak = 0;
    walk(&road, kRound);
    EXPECT_NEAR(double(heap->held), double(held), kSlack);
    const std::size_t peak = heap->peak;
    walk(&road, 3 * kRound);
    EXPECT_NEAR(double(heap->held), double(held), kSlack);
    EXPECT_NEAR(double(heap->peak), double(peak), kSlack);
    EXPECT_GT(held, 100000u) << "too little was counted";
    std::printf("%zu KB, at most %zu KB while a piece is read\n", held / 1024, peak / 1024);
    EXPECT_TRUE(KELTRA::free());
}

TEST_F(RoadTest, AMissingPieceIsTold) {
    KELTRA::setKTEPath("/nowhere/");
    Road road;
    EXPECT_FALSE(road.advance(1.0f));
}

}  // namespace
}  // namespace keltra::test
