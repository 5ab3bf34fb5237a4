// SPDX-License-Identifier: Zlib
#include "foundation/object_pool.h"

#include <gtest/gtest.h>

#if KELTRA_OBJECT_POOL

#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <vector>

#include "platform/platform.h"
#include "tests/support/allocations.h"

namespace {

enum class Mapping { kAsUsual, kAside, kRefused };
Mapping mapping = Mapping::kAsUsual;

const std::size_t kChunk = 2 << 20;
const std::size_t kPage = 4096;

}  // namespace

// What the pool asks the system for.
extern "C" void *mmap(void *address, std::size_t size, int protection, int flags, int file,
                      off_t offset) noexcept {
    const bool ofPool = size >= kChunk && mapping != Mapping::kAsUsual;
    if (ofPool && mapping == Mapping::kRefused) {
        errno = ENOMEM;
        return MAP_FAILED;
    }
    const std::size_t aside = ofPool ? kPage : 0;
    const long block = syscall(SYS_mmap, address, size + aside, protection, flags, file, offset);
    return block == -1 ? MAP_FAILED : reinterpret_cast<void *>(block + static_cast<long>(aside));
}

namespace keltra::test {
namespace {

const unsigned int kMany = ObjectPool::kFewest;

class ObjectPoolTest : public ::testing::Test {
   protected:
    struct Block {
        unsigned char *begin;
        std::size_t size;
        unsigned char content;
    };
    ~ObjectPoolTest() override {
        while (!blocks.empty()) giveBack(blocks.size() - 1, 0);
        mapping = Mapping::kAsUsual;
    }
    /// Fills a block with a pattern of its own; false when it would come from the C library.
    bool take(std::size_t size, unsigned int objects = kMany) {
        void *const block = pool.take(size, objects);
        if (!block) return false;
        blocks.push_back({static_cast<unsigned char *>(block), size, static_cast<unsigned char>(++taken)});
        std::memset(block, blocks.back().content, size);
        return true;
    }
    void takeMany(std::size_t size, std::size_t count) {
        for (unsigned int tries = 0; blocks.size() < count && tries < count + 256; ++tries) take(size);
        ASSERT_EQ(blocks.size(), count);
    }
    /// Expects that nothing was written to the block meanwhile.
    void giveBack(std::size_t index, unsigned int objects = kMany) {
        const Block block = blocks[index];
        blocks[index] = blocks.back();
        blocks.pop_back();
        for (std::size_t i = 0; i < block.size; ++i) ASSERT_EQ(block.begin[i], block.content);
        ASSERT_TRUE(pool.giveBack(block.begin, objects));
    }
    static bool isMapped(const void *block) {
        const auto page = reinterpret_cast<std::uintptr_t>(block) & ~(kPage - 1);
        return msync(reinterpret_cast<void *>(page), kPage, MS_ASYNC) == 0;
    }

    ObjectPool pool = {};
    std::vector<Block> blocks;
    unsigned int taken = 0;
};

TEST_F(ObjectPoolTest, FewObjectsComeFromTheCLibrary) {
    Allocations::startCounting();
    for (int i = 0; i < 10000; ++i) ASSERT_FALSE(take(632, ObjectPool::kFewest - 1));
    EXPECT_EQ(Allocations::stopCounting(), 0);
    int own = 0;
    EXPECT_FALSE(pool.giveBack(&own, 0));
}

TEST_F(ObjectPoolTest, SoDoTheFirstOfASizeAndLargeOnes) {
    unsigned int single = 0;
    while (!take(632)) ++single;
    EXPECT_EQ(single, 256u);
    for (int i = 0; i < 1000; ++i) ASSERT_FALSE(take(4097));
    EXPECT_FALSE(take(100)) << "a new size has its own first ones";
}

TEST_F(ObjectPoolTest, BlocksAreAlignedAndLieApart) {
    takeMany(632, 20000);
    std::sort(blocks.begin(), blocks.end(), [](const Block &a, const Block &b) { return a.begin < b.begin; });
    const unsigned char *free = nullptr;
    for (const Block &block : blocks) {
        ASSERT_EQ(reinterpret_cast<std::uintptr_t>(block.begin) % 16, 0u);
        ASSERT_GE(block.begin, free);
        free = block.begin + block.size;
    }
}

// 80 chunks, more than the first table has entries.
TEST_F(ObjectPoolTest, TheTableOfChunksGrows) {
    std::vector<void *> all;
    for (unsigned int tries = 0; all.size() < 40000 && tries < 41000; ++tries)
        if (void *const block = pool.take(4000, kMany)) all.push_back(block);
    ASSERT_EQ(all.size(), 40000u);
    std::sort(all.begin(), all.end());
    ASSERT_EQ(std::adjacent_find(all.begin(), all.end()), all.end());
    for (void *const block : all) ASSERT_TRUE(pool.giveBack(block, 0));
    int own = 0;
    EXPECT_FALSE(pool.giveBack(&own, 0));
}

// Sizes of whole cache lines would lay each field into few places of the cache.
TEST_F(ObjectPoolTest, NeighboursDoNotFallIntoTheSameLines) {
    takeMany(512, 2);
    ASSERT_EQ(blocks.size(), 2u);
    EXPECT_EQ(std::abs(blocks[1].begin - blocks[0].begin), 528);
}

TEST_F(ObjectPoolTest, NoBlockIsGivenTwiceInARandomOrderOfFiveSizes) {
    std::mt19937 generator(1907);
    const std::size_t sizes[] = {1, 376, 632, 856, 4096};
    for (std::size_t size : sizes) ASSERT_FALSE(take(size));
    for (int step = 0; step < 100000; ++step) {
        const bool grows = step / 20000 % 2 == 0;
        if (blocks.empty() || generator() % 8 < (grows ? 6 : 1))
            take(sizes[generator() % 5]);
        else
            giveBack(generator() % blocks.size());
        if (HasFatalFailure()) return;
    }
    EXPECT_GT(blocks.size(), 0u);
    for (const Block &block : blocks) EXPECT_NE(block.size, 4096u) << "there are places for four sizes";
}

TEST_F(ObjectPoolTest, MemoryGoesBackToTheSystemAndItsTablesToo) {
    std::vector<Block> former;
    for (std::vector<Block> *each : {&blocks, &former}) each->reserve(100000);
    Allocations::failNth(0);
    takeMany(632, 100000);
    former = blocks;
    while (blocks.size() > 1) giveBack(0);
    EXPECT_FALSE(isMapped(former[50000].begin));
    const unsigned char *last = blocks[0].begin;
    giveBack(0);
    EXPECT_TRUE(isMapped(last)) << "the last one stays while there are other objects";
    EXPECT_TRUE(take(632));
    giveBack(0, 0);
    for (const Block &block : former) ASSERT_FALSE(isMapped(block.begin));
    EXPECT_EQ(Allocations::live(), 0);
}

TEST_F(ObjectPoolTest, ABlockBesideAChunkIsNotTakenForItsOwn) {
    takeMany(632, 20000);
    void *const other = std::malloc(632);
    EXPECT_FALSE(pool.giveBack(other, kMany));
    std::free(other);
    int own = 0;
    EXPECT_FALSE(pool.giveBack(&own, kMany));
}

TEST_F(ObjectPoolTest, ChunksAreAlignedWhereverTheSystemPutsThem) {
    mapping = Mapping::kAside;
    takeMany(632, 10000);
    while (!blocks.empty()) {
        giveBack(blocks.size() / 2);
        if (HasFatalFailure()) return;
    }
}

std::size_t addressesInUse() {
    std::size_t pages = 0;
    std::FILE *const file = std::fopen("/proc/self/statm", "r");
    if (!file || std::fscanf(file, "%zu", &pages) != 1) ADD_FAILURE() << "the system does not tell";
    if (file) std::fclose(file);
    return pages * kPage;
}

TEST_F(ObjectPoolTest, WhatIsTakenToBeAlignedIsGivenBack) {
    const std::size_t before = addressesInUse();
    mapping = Mapping::kAside;
    void *const pages = platformTakePages(kChunk);
    ASSERT_NE(pages, nullptr);
    platformReturnPages(pages, kChunk);
    EXPECT_LT(addressesInUse(), before + kChunk / 2);
}

TEST_F(ObjectPoolTest, WithoutMemoryBlocksComeFromTheCLibrary) {
    takeMany(632, 5000);
    mapping = Mapping::kRefused;
    errno = 0;
    std::size_t more = 0;
    while (take(632)) ++more;
    EXPECT_LT(more, 4000u) << "what the last chunk has left";
    EXPECT_EQ(errno, 0);
    for (int i = 0; i < 100; ++i) giveBack(0);
    for (int i = 0; i < 100; ++i) EXPECT_TRUE(take(632)) << "given back before";
    EXPECT_FALSE(take(632));
    mapping = Mapping::kAsUsual;
    EXPECT_TRUE(take(632));
}

TEST_F(ObjectPoolTest, WithoutMemoryForItsTableToo) {
    if (!Allocations::canFail()) GTEST_SKIP() << "a sanitizer owns malloc";
    for (int i = 0; i < 256; ++i) ASSERT_FALSE(take(632));
    Allocations::failNth(1);
    EXPECT_FALSE(take(632));
    EXPECT_TRUE(Allocations::hasFailed());
    Allocations::clear();
    EXPECT_TRUE(take(632));
}

}  // namespace
}  // namespace keltra::test

#endif
