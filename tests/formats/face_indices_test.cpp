// SPDX-License-Identifier: Zlib
#include "formats/face_indices.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <vector>

namespace keltra {
namespace {

// Each number of indices at each place of a word, with one that is too large at each position, or none.
TEST(FaceIndices, EachOneIsCompared) {
    std::mt19937 random(1);
    for (unsigned int limit : {1u, 2u, 255u, 256u, 257u, 0x7fffu, 0x8000u, 0x8001u, 0xfffeu, 0xffffu}) {
        for (std::size_t count = 0; count <= 40; ++count) {
            std::vector<std::uint32_t> words(count / 2 + 3, 0xffffffff);
            unsigned char *const begin = reinterpret_cast<unsigned char *>(words.data());
            for (std::size_t place = 0; place < 4; ++place) {
                const auto put = [&](std::size_t i, unsigned int index) {
                    begin[place + 2 * i] = static_cast<unsigned char>(index);
                    begin[place + 2 * i + 1] = static_cast<unsigned char>(index >> 8);
                };
                words.assign(words.size(), 0xffffffff);
                for (std::size_t i = 0; i < count; ++i) put(i, random() % 4 ? random() % limit : limit - 1);
                ASSERT_TRUE(areIndicesBelow(begin + place, count, limit))
                    << limit << ' ' << count << ' ' << place;
                ASSERT_EQ(areIndicesBelow(begin + place, count, 0), count == 0);
                for (std::size_t i = 0; i < count; ++i) {
                    put(i, random() % 2 ? limit : 0xffff);
                    ASSERT_FALSE(areIndicesBelow(begin + place, count, limit))
                        << limit << ' ' << count << ' ' << i;
                    put(i, 0);
                }
            }
        }
    }
}

}  // namespace
}  // namespace keltra
