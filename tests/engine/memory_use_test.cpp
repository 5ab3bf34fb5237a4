// SPDX-License-Identifier: Zlib
// How much memory the engine takes, beside that of the driver and of textures' pixels. The limits are those
// of the device, whose pointers have 32 bits.

#include <dlfcn.h>
#include <malloc.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>

#include "tests/support/allocations.h"
#include "tests/support/engine_fixture.h"

namespace keltra::test {
namespace {

constexpr bool kIsDevice = sizeof(void *) == 4;

// What the engine and the libraries inside it hold of the heap; blocks of the driver and of SDL are not
// counted.
class EngineHeap final : public AllocationWatch {
   public:
    EngineHeap() { install(this); }
    ~EngineHeap() { install(nullptr); }
    bool mustFail(const void *) override { return false; }
    void allocated(void *block, const void *caller) override {
        if (!isOurs(caller)) return;
        Entry &entry = entryOf(block, true);
        entry = {block, malloc_usable_size(block)};
        held += entry.size;
        peak = std::max(peak, held);
    }
    void released(void *block) override {
        Entry &entry = entryOf(block, false);
        if (entry.block != block) return;
        held -= entry.size;
        entry = {&released_, 0};
    }

    std::size_t held = 0, peak = 0;

   private:
    struct Entry {
        const void *block;
        std::size_t size;
    };
    static constexpr std::size_t kEntries = 1u << 16;

    static bool isOurs(const void *caller) {
        Dl_info info;
        if (!dladdr(caller, &info) || !info.dli_fname) return false;
        for (const char *library : {"libkeltra", "libtinyxml", "libmpeg2"})
            if (std::strstr(info.dli_fname, library)) return true;
        return false;
    }
    // The block's entry, or the one that it gets.
    Entry &entryOf(const void *block, bool isNew) {
        std::size_t i = reinterpret_cast<std::uintptr_t>(block) / 8 * 0x9E3779B1u % kEntries;
        while (entries[i].block && entries[i].block != block && !(isNew && entries[i].block == &released_))
            i = (i + 1) % kEntries;
        return entries[i];
    }

    char released_ = 0;
    std::array<Entry, kEntries> entries = {};
};

class MemoryUseTest : public EngineTest {
   protected:
    void SetUp() override {
        if (!Allocations::canFail()) GTEST_SKIP() << "a sanitizer owns malloc here";
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

    static std::size_t bitmaps() {
        std::size_t bytes = 0;
        for (KTTEXTURE *texture = KTTEXTURE::getFirst(); texture; texture = texture->getNext())
            if (texture->getBitmap()) bytes += malloc_usable_size(texture->getBitmap());
        return bytes;
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
    expectHeld("demo", heap->held - bitmaps(), 1100 * 1024, 1200 * 1024);
    expectHeld("peak", heap->peak - bitmaps(), 1550 * 1024, 1680 * 1024);
}

}  // namespace
}  // namespace keltra::test
