// SPDX-License-Identifier: Zlib
#include "math/square_root.h"

namespace keltra {
namespace {

// 1 / sqrt(x) in units of 1/128, for x from 1/4 to 1 in steps of 1/128.
constexpr std::uint8_t kReciprocals[96] = {
    254, 250, 247, 243, 240, 236, 233, 230, 228, 225, 222, 220, 217, 215, 212, 210, 208, 206, 204, 202,
    200, 198, 196, 194, 193, 191, 189, 188, 186, 185, 183, 182, 180, 179, 178, 176, 175, 174, 172, 171,
    170, 169, 168, 167, 166, 164, 163, 162, 161, 160, 159, 158, 158, 157, 156, 155, 154, 153, 152, 151,
    151, 150, 149, 148, 147, 147, 146, 145, 144, 144, 143, 142, 142, 141, 140, 140, 139, 138, 138, 137,
    137, 136, 135, 135, 134, 134, 133, 132, 132, 131, 131, 130, 130, 129, 129, 128};

std::uint32_t highProduct(std::uint32_t a, std::uint32_t b) {
    return std::uint32_t(std::uint64_t{a} * b >> 32);
}

}  // namespace

// With x in [1/4, 1) two steps of Newton's method, y (3 - x y y) / 2, lead from the table to x y, which is
// the root with 25 bits and at most 1 wrong in the last; the remainder shows. The last bit rounds: no float
// has a root halfway between two floats.
float squareRootByIntegers(std::uint32_t bits) {
    const std::uint32_t exponent = bits >> 23, odd = exponent & 1;
    const std::uint32_t x = (bits << 8 | kSignBit) >> odd;                                       // unit 2^-32
    const std::uint32_t y0 = kReciprocals[(x >> 25) - 32];                                       // 2^-7
    const std::uint32_t y1 = y0 * ((0xc0000000 - (x >> 16) * (y0 * y0)) >> 8);                   // 2^-30
    const std::uint32_t y2 = highProduct(y1, 0x30000000 - highProduct(highProduct(y1, y1), x));  // 2^-27
    std::uint32_t root = highProduct(x, y2) >> 2;                                                // 2^-25
    const std::int32_t rest = std::int32_t((x << 18) - root * root);
    if (rest < 0)
        --root;
    else if (rest > std::int32_t(2 * root))
        ++root;
    return floatOf((((exponent - odd) / 2 + 62 + odd) << 23) + ((root + 1) >> 1));
}

}  // namespace keltra
