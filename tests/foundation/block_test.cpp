#include "foundation/block.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>

#include "foundation/lifecycle.h"
#include "tests/support/allocations.h"

namespace keltra::test {
namespace {

TEST(BlockTest, IsAlignedAndHoldsItsBytes) {
    for (std::size_t size : {0u, 1u, 15u, 16u, 17u, 4096u}) {
        void *block = newBlock(size);
        ASSERT_NE(block, nullptr);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block) % 16, 0u);
        std::memset(block, 0xab, size);  // the address sanitizer watches both ends
        releaseBlock(block);
    }
}

TEST(BlockTest, TheLastReleaseFreesIt) {
    const std::uint32_t live = memoryCounters().live;
    void *block = newBlock(100);
    EXPECT_EQ(memoryCounters().live, live + 1);
    EXPECT_EQ(retainBlock(block), block);
    EXPECT_EQ(retainBlock(block), block);
    releaseBlock(block);
    releaseBlock(block);
    EXPECT_EQ(memoryCounters().live, live + 1);
    std::memset(block, 1, 100);
    releaseBlock(block);
    EXPECT_EQ(memoryCounters().live, live);
}

TEST(BlockTest, NullIsHarmless) {
    const MemoryCounters before = memoryCounters();
    EXPECT_EQ(retainBlock(nullptr), nullptr);
    releaseBlock(nullptr);
    EXPECT_EQ(memoryCounters().releases, before.releases);
}

TEST(BlockTest, SizesOver32BitsAreRefusedUncounted) {
    const MemoryCounters before = memoryCounters();
    EXPECT_EQ(newBlock(SIZE_MAX), nullptr);
    EXPECT_EQ(newBlock(UINT32_MAX), nullptr);
    EXPECT_EQ(newBlock(UINT32_MAX - 31), nullptr);
    EXPECT_EQ(memoryCounters().allocations, before.allocations);
}

TEST(BlockTest, FailedAllocationGivesNull) {
    if (!Allocations::canFail()) GTEST_SKIP() << "malloc belongs to the sanitizer";
    Allocations::failNext(1000 + 32);
    EXPECT_EQ(newBlock(1000), nullptr);
}

}  // namespace
}  // namespace keltra::test
