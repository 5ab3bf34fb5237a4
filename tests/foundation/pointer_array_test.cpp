// SPDX-License-Identifier: Zlib
#include "foundation/pointer_array.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

namespace keltra::test {
namespace {

class PointerArrayTest : public ::testing::Test {
   protected:
    PointerArrayTest() : pointers(400) {
        for (std::size_t i = 0; i < pointers.size(); ++i) pointers[i] = places + i;
    }

    char places[401];
    std::vector<char *> pointers;
};

// Every entry, from every place of arrays of all lengths about those of a step.
TEST_F(PointerArrayTest, EachEntryIsFoundFromEveryPlace) {
    for (std::size_t count : {1u, 2u, 15u, 16u, 17u, 31u, 32u, 33u, 34u, 63u, 64u, 65u, 100u, 400u})
        for (std::size_t place = 0; place < count; ++place)
            for (std::size_t i = 0; i < count; ++i)
                ASSERT_EQ(findNear(pointers.data(), count, place, pointers[i]), i)
                    << count << " from " << place;
}

TEST_F(PointerArrayTest, NothingBehindTheArrayIsFound) {
    for (std::size_t count = 1; count < 400; ++count)
        for (std::size_t place = 0; place < count; place += 1 + count / 20)
            ASSERT_EQ(findNear(pointers.data(), count, place, pointers[count]), count) << place;
    std::vector<char *> empty(200, nullptr);
    EXPECT_EQ(findNear(empty.data(), empty.size(), 100, pointers[0]), 200u);
}

// Pointers that differ in their upper halves only.
TEST_F(PointerArrayTest, OnlyTheWholePointerCounts) {
    if (sizeof(void *) == 4) return;
    const auto pointer = [](std::uint64_t upper) {
        return reinterpret_cast<char *>(static_cast<std::uintptr_t>(upper << 32 | 16));
    };
    std::vector<char *> alike(100);
    for (std::size_t i = 0; i < alike.size(); ++i) alike[i] = pointer(i);
    for (std::size_t i = 0; i < alike.size(); ++i) EXPECT_EQ(findNear(alike.data(), 100, 50, alike[i]), i);
    EXPECT_EQ(findNear(alike.data(), 100, 50, pointer(100)), 100u);
}

// Of all lengths, at all places of a cache line, with what is beside the array.
TEST_F(PointerArrayTest, AGapIsClosedFromEitherEnd) {
    for (std::size_t begin = 0; begin < 8; ++begin) {
        for (std::size_t count = 0; count < 380; ++count) {
            const std::vector<char *> whole = pointers;
            std::vector<char *> expected = whole, moved = whole;
            const auto first = static_cast<std::ptrdiff_t>(begin),
                       end = static_cast<std::ptrdiff_t>(begin + count);
            std::copy(whole.begin() + first + 1, whole.begin() + end + 1, expected.begin() + first);
            closeGapFromBehind(moved.data() + begin, count);
            ASSERT_EQ(moved, expected) << count << " at " << begin;

            expected = moved = whole;
            std::copy(whole.begin() + first, whole.begin() + end, expected.begin() + first + 1);
            closeGapFromFront(moved.data() + begin, count);
            ASSERT_EQ(moved, expected) << count << " at " << begin;
        }
    }
}

}  // namespace
}  // namespace keltra::test
