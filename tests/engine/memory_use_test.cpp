// SPDX-License-Identifier: Zlib
// How much memory the engine takes, beside that of the driver and of textures' pixels. The limits are those
// of the device, whose pointers have 32 bits.

#include <cstdio>

#include "tests/support/engine_fixture.h"
#include "tests/support/engine_heap.h"

namespace keltra::test {
namespace {

constexpr bool kIsDevice = sizeof(void *) == 4;

class MemoryUseTest : public EngineTest {
   protected:
    void SetUp() override {
        if (!Allocations::canFail()) GTEST_SKIP() << "a sanitizer owns malloc";
        heap = std::make_unique<EngineHeap>();
        EngineTest::SetUp();
    }
    void TearDown() override {
        if (!heap) return;
        EngineTest::TearDown();
        heap.reset();
        KELTRA::setKTEPath(nullptr);
        KTTEXTURE::setPath(nullptr);
    }

    void expectHeld(const char *what, std::size_t bytes, std::size_t onDevice, std::size_t elsewhere) {
        std::printf("%s: %zu KB\n", what, bytes / 1024);
        EXPECT_LE(bytes, kIsDevice ? onDevice : elsewhere) << what;
        EXPECT_GT(bytes, onDevice / 2) << what << ": too little was counted";
    }

    std::unique_ptr<EngineHeap> heap;
};

TEST_F(MemoryUseTest, OfTheEngineAndOfTheDemo) {
    expectHeld("started", heap->held, 525 * 1024, 570 * 1024);
    KELTRA::setKTEPath(KELTRA_EXAMPLE_DATA);
    KTTEXTURE::setPath(KELTRA_EXAMPLE_DATA);
    KTNODE *scene = KELTRA::load("scene.kte");
    ASSERT_NE(scene, nullptr);
    KTCAMERA camera;
    camera.setPosition(0.0f, 5.8f, 21.0f);
    frame3D(&camera, [scene] { scene->pass(); });
    expectHeld("demo", heap->held - EngineHeap::bitmaps(), 1100 * 1024, 1200 * 1024);
    expectHeld("peak", heap->peak - EngineHeap::bitmaps(), 1550 * 1024, 1680 * 1024);
}

}  // namespace
}  // namespace keltra::test
