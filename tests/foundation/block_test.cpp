// SPDX-License-Identifier: Zlib
#include "foundation/block.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "foundation/lifecycle.h"
#include "tests/support/allocations.h"

namespace keltra::test {
namespace {

#if defined(_WIN32) && !defined(_WIN64)  // the compiler has larger types there than the allocator
constexpr std::size_t kAlignment = alignof(double);
#else
constexpr std::size_t kAlignment = alignof(std::max_align_t);
#endif

TEST(BlockTest, IsAlignedAndHoldsItsBytes) {
    for (std::size_t size : {0u, 1u, 15u, 16u, 17u, 4096u}) {
        void *block = newBlock(size);
        ASSERT_NE(block, nullptr);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block) % kAlignment, 0u);
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
    if (sizeof(std::size_t) <= sizeof(std::uint32_t)) GTEST_SKIP() << "there are none";
    const MemoryCounters before = memoryCounters();
    EXPECT_EQ(newBlock(SIZE_MAX), nullptr);
    EXPECT_EQ(newBlock(static_cast<std::size_t>(std::uint64_t{UINT32_MAX} + 1)), nullptr);
    EXPECT_EQ(memoryCounters().allocations, before.allocations);
}

TEST(BlockTest, FailedAllocationGivesNull) {
    if (!Allocations::canFail()) GTEST_SKIP() << "a sanitizer owns malloc";
    Allocations::failNext(1000);
    EXPECT_EQ(newBlock(1000), nullptr);
    Allocations::failNext(1000);
    EXPECT_EQ(newRoomyBlock(1000), nullptr);
}

TEST(BlockTest, IsAPlainBlockOfTheAllocator) {
    const MemoryCounters before = memoryCounters();
    vnfFree(newBlock(100));
    void *own = vnfMalloc(100);
    EXPECT_EQ(retainBlock(own), own);
    releaseBlock(own);
    releaseBlock(own);
    EXPECT_EQ(memoryCounters().live, before.live);
    EXPECT_EQ(memoryCounters().releases, before.releases + 2);
}

TEST(BlockTest, IsSharedWhileItHasSeveralHolders) {
    void *block = newBlock(8);
    EXPECT_NE(roomOf(block), kShared);
    retainBlock(block);
    EXPECT_EQ(roomOf(block), kShared);
    vnfFree(block);
    EXPECT_NE(roomOf(block), kShared);
    vnfFree(block);
    EXPECT_EQ(notedBlocks, 0u);
}

TEST(BlockTest, ThousandsMayBeShared) {
    std::vector<void *> blocks(5000);
    for (void *&block : blocks) {
        block = newBlock(16);
        retainBlock(block);
    }
    EXPECT_EQ(notedBlocks, 5000u);
    for (std::size_t i = 0; i < blocks.size(); ++i) {
        void *block = blocks[i * 7 % blocks.size()];
        ASSERT_EQ(roomOf(block), kShared);
        releaseBlock(block);
        ASSERT_NE(roomOf(block), kShared);
    }
    EXPECT_EQ(notedBlocks, 0u);
    for (void *block : blocks) releaseBlock(block);
}

TEST(BlockTest, ARoomyBlockBeginsWhereItsFrontWasDropped) {
    char *block = static_cast<char *>(newRoomyBlock(100));
    EXPECT_EQ(roomOf(block), 100u);
    std::memset(block, 1, 100);
    char *rest = static_cast<char *>(dropFront(block, 8));
    EXPECT_EQ(rest, block + 8);
    EXPECT_EQ(roomOf(rest), 92u);
    EXPECT_EQ(roomOf(block), 0u);
    std::memset(rest, 2, 92);
    EXPECT_EQ(retainBlock(rest), rest);
    vnfFree(rest);
    EXPECT_EQ(roomOf(rest), 92u) << "the last holder's room";
    vnfFree(rest);
    EXPECT_EQ(notedBlocks, 0u);
}

TEST(BlockTest, PlainBlocksHaveNoRoom) {
    void *block = vnfMalloc(100);
    EXPECT_EQ(roomOf(block), 0u);
    retainBlock(block);
    EXPECT_EQ(roomOf(block), kShared);
    releaseBlock(block);
    EXPECT_EQ(roomOf(block), 0u);
    releaseBlock(block);
    EXPECT_EQ(roomOf(nullptr), 0u);
}

}  // namespace
}  // namespace keltra::test
