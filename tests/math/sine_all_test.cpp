// SPDX-License-Identifier: Zlib
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>

#include "math/float_bits.h"
#include "math/sine.h"

namespace keltra::test {
namespace {

// All that is computed in integers; a negative angle differs in the sign of the sine alone.
TEST(SineAllTest, EveryFloatEqualsTheLibrary) {
    std::uint64_t different = 0;
    for (std::uint32_t bits = 115u << 23; bits < 137u << 23; ++bits) {
        const SineCosine turn = sineCosineByIntegers(floatOf(bits));
        const double angle = double(floatOf(bits));
        different += bitsOf(turn.sine) != bitsOf(float(std::sin(angle))) ||
                     bitsOf(turn.cosine) != bitsOf(float(std::cos(angle)));
    }
    EXPECT_EQ(different, 0u);
}

// A cosine from 2^-27 to 1; with a positive one the unit is 1.
TEST(SineAllTest, EveryUnitIsThePlainSum) {
    std::uint64_t different = 0;
    for (std::uint32_t bits = 100u << 23; bits <= kOneBits; ++bits) {
        for (std::uint32_t sign : {0u, kSignBit}) {
            const float cosine = floatOf(bits | sign);
            const volatile float rest = 1.0f - cosine, unit = rest + cosine;
            different += bitsOf(unitByIntegers(cosine)) != bitsOf(unit);
        }
    }
    EXPECT_EQ(different, 0u);
}

}  // namespace
}  // namespace keltra::test
