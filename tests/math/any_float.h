// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TESTS_ANY_FLOAT_H
#define KELTRA_TESTS_ANY_FLOAT_H

#include <cstdint>
#include <random>

#include "math/float_bits.h"

namespace keltra::test {

// Floats that kernels must treat as the plain operations do: everyday values, zeros and ones of both signs,
// powers of two, denormal numbers, values at both ends of the range and any bits; with `specials` also
// infinities and not-a-numbers.
class AnyFloat {
   public:
    explicit AnyFloat(unsigned seed, bool specials = false) : random(seed), specials(specials) {}

    float operator()() {
        for (;;) {
            const float value = floatOf(bits());
            if (specials || isFinite(value)) return value;
        }
    }

   private:
    std::uint32_t bits() {
        const std::uint32_t any = random(), sign = any & kSignBit;
        switch (random() % 8) {
            case 0:
                return sign;
            case 1:
                return sign | kOneBits;
            case 2:
                return any;
            case 3:
                return sign | (any & 0x7fffff);
            case 4:
                return sign | (any % 255 << 23);
            case 5:
                return (any & 0x807fffff) | (any >> 8 & 1 ? 0x7f000000 : 0x00800000) | (any & 7 << 23);
            default:
                return (any & 0x83ffffff) | 0x3c000000;  // 1/128 to 1/2, and around
        }
    }

    std::mt19937 random;
    bool specials;
};

}  // namespace keltra::test

#endif
