// SPDX-License-Identifier: Zlib
#include "foundation/arena.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "foundation/lifecycle.h"
#include "tests/support/allocations.h"

namespace keltra::test {
namespace {

struct Odd {
    char bytes[13];
};

TEST(ArenaTest, ObjectsStayAsTheyWereAdded) {
    Arena arena;
    std::vector<const std::uint64_t *> numbers;
    for (std::uint64_t i = 0; i < 5000; ++i) {
        numbers.push_back(arena.add(i));
        ASSERT_NE(numbers.back(), nullptr);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(numbers.back()) % alignof(std::uint64_t), 0u);
        ASSERT_NE(arena.add(Odd{}), nullptr);
    }
    for (std::uint64_t i = 0; i < numbers.size(); ++i) EXPECT_EQ(*numbers[i], i);
}

TEST(ArenaTest, AnObjectMayFillAChunk) {
    struct Large {
        char bytes[Arena::kChunkSize - 8];
    };
    Arena arena;
    Large *first = arena.add(Large{}), *second = arena.add(Large{});
    ASSERT_TRUE(first && second);
    // The address sanitizer watches both ends.
    first->bytes[0] = second->bytes[sizeof second->bytes - 1] = 'x';
}

TEST(ArenaTest, TakesChunksAndReleasesThemAll) {
    const MemoryCounters before = memoryCounters();
    {
        Arena arena;
        EXPECT_EQ(memoryCounters().live, before.live) << "an empty arena holds nothing";
        for (int i = 0; i < 1000; ++i) arena.add(Odd{});
        EXPECT_EQ(memoryCounters().live, before.live + 2) << "16 bytes each";
    }
    EXPECT_EQ(memoryCounters().live, before.live);
}

TEST(ArenaTest, WithoutMemoryNothingIsAddedAndTheRestStays) {
    if (!Allocations::canFail()) GTEST_SKIP() << "a sanitizer owns malloc";
    Arena arena;
    const int *first = arena.add(7);
    Allocations::failNext(Arena::kChunkSize);
    std::size_t added = 1;
    while (arena.add(Odd{})) ++added;
    Allocations::clear();
    EXPECT_GT(added, 400u);
    EXPECT_EQ(*first, 7);
    EXPECT_NE(arena.add(Odd{}), nullptr) << "there is memory again";
}

}  // namespace
}  // namespace keltra::test
