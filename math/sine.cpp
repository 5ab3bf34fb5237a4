// SPDX-License-Identifier: Zlib
#include "math/sine.h"

#include "math/float_bits.h"

#include <cmath>
#include <cstdint>

// On soft-float ARM the two results take some 150 instructions, those of the C library 2,700. A test compares
// all floats below 1,024 with the library.

namespace keltra {
namespace {

constexpr int kSmallestExponent = 115;  // below 1/4,096 the sine is the angle and the cosine is 1
constexpr int kLargestExponent = 136;   // from 1,024 radians on, and for infinities, the library answers

struct Known {
    std::uint32_t
        key;  // bits of the angle plus 1; 0 for none, as at the start: zeros take no room in the file
    Rotation rotation;
};

constexpr unsigned int kKnownBits = kSoftFloat ? 8 : 13;
// An angle has one place, and where memory is cheap two: that of a thousand nodes' angles few are thrown out.
constexpr unsigned int kPlaces = kSoftFloat ? 1 : 2;
Known known[1u << kKnownBits];

std::uint64_t product(std::uint32_t a, std::uint32_t b) { return std::uint64_t{a} * b; }

// The high half of a product of two fractions of 64 bits, at most 2 units too small.
std::uint64_t multiply(std::uint64_t a, std::uint64_t b) {
    const std::uint32_t aHigh = std::uint32_t(a >> 32), aLow = std::uint32_t(a);
    const std::uint32_t bHigh = std::uint32_t(b >> 32), bLow = std::uint32_t(b);
    return product(aHigh, bHigh) + (product(aHigh, bLow) >> 32) + (product(aLow, bHigh) >> 32);
}

// c0 - x (c1 - x (c2 - ...)): the series of sin(t pi/2) / t and of cos(t pi/2) in x = 4 t t, for t up to 1/2.
// Coefficients in units of 2^-64, the first of 2^-63.
std::uint64_t series(const std::uint64_t *c, std::uint64_t x) {
    const std::uint32_t xHigh = std::uint32_t(x >> 32);
    // The last ones have less than 32 bits.
    const std::uint32_t last = std::uint32_t(c[6]) - std::uint32_t(product(xHigh, std::uint32_t(c[7])) >> 32);
    std::uint64_t sum = c[5] - (product(xHigh, last) >> 32);
    sum = c[4] - multiply(x, sum);
    sum = c[3] - multiply(x, sum);
    sum = c[2] - multiply(x, sum);
    sum = c[1] - multiply(x, sum);
    return c[0] - (multiply(x, sum) >> 1);
}

constexpr std::uint64_t kSine[8] = {
    0xc90fdaa22168c235, 0x295779cc4b7ca577, 0x1466bc6775aad92, 0x4cb4b3398ab09,
    0xa83c1a42e5f,      0xf183a5a80,        0xf477689,         0xb62dc};
constexpr std::uint64_t kCosine[8] = {
    0x8000000000000000, 0x4ef4f326f9177922, 0x40f07c206d6ab0d, 0x155d3c7e3c90f8,
    0x3c3ea0d06abc,     0x69b47b1e42,       0x7e731045,        0x6c992f};

// The bits of the float nearest to mantissa x 2^-(63 + scale), by way of the nearest double as in the plain
// formulation.
std::uint32_t roundToFloat(std::uint64_t mantissa, int scale) {
    const int shift = __builtin_clzll(mantissa);
    mantissa <<= shift;
    const std::uint32_t bits = std::uint32_t(mantissa >> 40);
    const std::uint32_t rest = ((std::uint32_t(mantissa >> 8) >> 1) + 2) >> 2, half = 1u << 28;
    const std::uint32_t up = rest > half || (rest == half && (bits & 1));
    return (std::uint32_t(126 - scale - shift) << 23) + bits + up;
}

// A turn as multiples of a quarter, and the rest of it: |rest| x 2^-128, at most an eighth of a turn, so
// 2^127.
struct Quarters {
    std::uint32_t count;
    std::uint64_t high, low;
    bool negative;
};

// `angle` is a float's mantissa, shifted so that its unit is 2^-35 radians.
Quarters quartersOf(std::uint64_t angle) {
    const std::uint32_t k2 = 0x145f306d, k1 = 0xc9c882a5, k0 = 0x3f84eafa;  // 2 / pi in units of 2^-93
    const std::uint32_t high = std::uint32_t(angle >> 32), low = std::uint32_t(angle);
    const std::uint64_t a = product(low, k0);
    const std::uint64_t b = product(low, k1) + (a >> 32), c = product(high, k0) + std::uint32_t(b);
    const std::uint64_t d = product(low, k2) + (b >> 32) + (c >> 32),
                        e = product(high, k1) + std::uint32_t(d);
    const std::uint64_t f = product(high, k2) + (d >> 32) + (e >> 32);
    Quarters quarters = {std::uint32_t(f >> 32), f << 32 | std::uint32_t(e), c << 32 | std::uint32_t(a),
                         false};
    if (quarters.high >> 63) {
        ++quarters.count;
        quarters.negative = true;
        quarters.low = -quarters.low;
        quarters.high = ~quarters.high + (quarters.low == 0);
    }
    return quarters;
}

// Of the angle with `bits`, from the results of its rest.
SineCosine turned(std::uint32_t sine, std::uint32_t cosine, std::uint32_t quarters, std::uint32_t bits) {
    if (quarters & 1) {
        const std::uint32_t first = sine ^ kSignBit;
        sine = cosine;
        cosine = first;
    }
    if (quarters & 2) {
        sine ^= kSignBit;
        cosine ^= kSignBit;
    }
    return {floatOf(sine ^ (bits & kSignBit)), floatOf(cosine)};
}

SineCosine fromSeries(std::uint32_t bits) {
    const int exponent = int(bits >> 23 & 0xff);
    const Quarters quarters =
        quartersOf(std::uint64_t{(bits & 0x7fffff) | 0x800000} << (exponent - kSmallestExponent));
    // The bits of a small rest count; as a square the leading ones are enough.
    const int shift = __builtin_clzll(quarters.high);
    const std::uint64_t rest = shift ? quarters.high << shift | quarters.low >> (64 - shift) : quarters.high;
    const std::uint64_t twice = quarters.high << 1, square = multiply(twice, twice);
    const std::uint32_t sine = roundToFloat(multiply(rest, series(kSine, square)), shift);
    const std::uint32_t cosine = roundToFloat(series(kCosine, square), 0);
    return turned(quarters.negative ? sine ^ kSignBit : sine, cosine, quarters.count, bits);
}

std::uint32_t highProduct(std::uint32_t a, std::uint32_t b) { return std::uint32_t(product(a, b) >> 32); }

// Whether a mantissa with 32 bits, less than 4 units wrong, becomes the same 24 bits as the exact one.
bool isSure(std::uint32_t mantissa) { return ((mantissa - 0x7d) & 0xff) >= 7; }

std::uint32_t rounded(std::uint32_t mantissa) { return (mantissa >> 8) + (mantissa >> 7 & 1); }

// The same with 32 bits, which decide 15 of 16 angles; false for the others, and for the smallest rests.
bool fromShortSeries(std::uint32_t bits, SineCosine &turn) {
    const std::uint32_t angle = bits << 8 | kSignBit;
    // Times 2 / pi in units of 2^-64, shifted so that a quarter of a turn is 2^64.
    const std::uint64_t low = product(angle, 0x4e44152a), all = product(angle, 0xa2f9836e) + (low >> 32);
    const unsigned int right = 158 - (bits >> 23 & 0xff);
    std::uint64_t rest;
    std::uint32_t quarters = 0;
    if (right < 32) {
        const std::uint32_t middle = std::uint32_t(all), high = std::uint32_t(all >> 32);
        quarters = high >> right;
        rest = std::uint64_t{middle >> right | high << (32 - right)} << 32 |
               (std::uint32_t(low) >> right | middle << (32 - right));
    } else {
        rest = all >> (right - 32);
    }
    const std::uint32_t negative = std::uint32_t(rest >> 32) & kSignBit;
    if (negative) {
        ++quarters;
        rest = -rest;
    }
    const std::uint32_t restHigh = std::uint32_t(rest >> 32), restLow = std::uint32_t(rest);
    if (restHigh < 0x20000) return false;
    const int shift = __builtin_clz(restHigh);
    const std::uint32_t twice = restHigh << 1 | restLow >> 31, x = highProduct(twice, twice);
    std::uint32_t sum = 0x4cb4b - highProduct(x, 0xa83 - (x >> 28));
    sum = 0x295779cc - highProduct(x, 0x1466bc6 - highProduct(x, sum));
    sum = 0xc90fdaa3 - (highProduct(x, sum) >> 1);  // the last place makes up for what was cut off
    std::uint32_t sine = highProduct(restHigh << shift | restLow >> 1 >> (31 - shift), sum);
    const std::uint32_t half = ~sine >> 31;
    sine <<= half;
    sum = 0x155d3c - highProduct(x, 0x3c3e - highProduct(x, 0x69));
    sum = 0x4ef4f326 - highProduct(x, 0x40f07c2 - highProduct(x, sum));
    const std::uint32_t cosine = 0xfffffffe - (highProduct(x, sum) & ~1u);
    if (!isSure(sine) || !isSure(cosine)) return false;
    const std::uint32_t exponent = 126 - half - std::uint32_t(shift);
    turn =
        turned(((exponent << 23) + rounded(sine)) | negative, (125u << 23) + rounded(cosine), quarters, bits);
    return true;
}

// a b, rounded as the standard says, for a positive `mantissaOfB` of 24 bits x 2^exponent; `a` from 2^-60 to
// 2^60.
std::uint32_t scaled(std::uint32_t a, std::uint32_t mantissaOfB, std::uint32_t exponent) {
    const std::uint64_t all = product(a << 8 | kSignBit, mantissaOfB);
    std::uint32_t mantissa = std::uint32_t(all >> 32), rest = std::uint32_t(all);
    exponent += a << 1 >> 24;
    if (mantissa < 0x800000) {
        mantissa = mantissa << 1 | rest >> 31;
        rest <<= 1;
        --exponent;
    }
    if (rest > kSignBit || (rest == kSignBit && (mantissa & 1))) ++mantissa;
    return (a & kSignBit) | ((exponent << 23) + mantissa);
}

float radiansOf(float degrees) { return degrees * 0.0055555557f * 3.1415927f; }

float unitOf(float cosine) { return (1.0f - cosine) + cosine; }

}  // namespace

SineCosine sineCosineByIntegers(float radians) {
    const std::uint32_t bits = bitsOf(radians);
    const int exponent = int(bits >> 23 & 0xff);
    if (exponent < kSmallestExponent) return {radians, 1.0f};
    if (exponent > kLargestExponent)
        return {float(std::sin(double(radians))), float(std::cos(double(radians)))};
    SineCosine turn;
    return fromShortSeries(bits, turn) ? turn : fromSeries(bits);
}

SineCosine sineCosine(float radians) {
    if (kSoftFloat) return sineCosineByIntegers(radians);
    return {float(std::sin(double(radians))), float(std::cos(double(radians)))};
}

float radiansByIntegers(float degrees) {
    const std::uint32_t bits = bitsOf(degrees);
    if ((bits << 1) - (67u << 24) >= 120u << 24) return radiansOf(degrees);
    // The factors' mantissas, and their exponents less 127.
    return floatOf(scaled(scaled(bits, 0xb60b61, 0u - 8), 0xc90fdb, 1));
}

// A difference of 1 and a negative cosine is a multiple of 2^-23; the sum is not 1 when more than a quarter
// of that was cut off.
float unitByIntegers(float cosine) {
    const std::uint32_t bits = bitsOf(cosine), mantissa = (bits & 0x7fffff) | 0x800000;
    const std::uint32_t right = 127 - (bits << 1 >> 24);
    if (!isFinite(cosine)) return unitOf(cosine);
    if (bits < kSignBit || right - 1 >= 25) return 1.0f;
    const std::uint32_t rest = mantissa << (32 - right), half = kSignBit - (mantissa >> right & 1);
    return rest > kSignBit / 2 && rest <= half ? floatOf(kOneBits - 1) : 1.0f;
}

const Rotation &rotationOf(float degrees) {
    const std::uint32_t bits = bitsOf(degrees);
    Known *const home = &known[(bits * 2654435769u >> (32 - kKnownBits)) & ~(kPlaces - 1)];
    const std::uint32_t key = bits + 1;
    Known *const entry = home + (kPlaces > 1 && home->key != key);
    if (entry->key == key && key != 0) return entry->rotation;
    if (kPlaces > 1) home[1] = home[0];
    const SineCosine turn = sineCosine(kSoftFloat ? radiansByIntegers(degrees) : radiansOf(degrees));
    const float unit = kSoftFloat ? unitByIntegers(turn.cosine) : unitOf(turn.cosine);
    *home = {key, {turn.sine, turn.cosine, unit}};
    return home->rotation;
}

}  // namespace keltra
