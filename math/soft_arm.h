// SPDX-License-Identifier: Zlib
#ifndef KELTRA_MATH_SOFT_ARM_H
#define KELTRA_MATH_SOFT_ARM_H

// Sums of products in ARM instructions, for processors without a floating-point unit. A compiler makes a call
// of each product and each sum, which take 31 and 44 instructions; here the operands are checked once and no
// call is made: 20 and 25. Each product and each sum is rounded by itself, so the bits are those of the plain
// operations. Operands from 2^-50 to 2^59 are accepted: nothing can overflow, nor become denormal. With
// another one, or when a sum is zero, the result is 0, and the caller computes it plainly.

#include "math/float_bits.h"

#include <cstdint>

#if defined(__SOFTFP__) && defined(__arm__) && !defined(__thumb__) && defined(__GNUC__) && __ARM_ARCH >= 5
#define KELTRA_SOFT_ARM

// The bits of a[0] b[0] + a[1] b[4] + a[2] b[8].
extern "C" __attribute__((visibility("hidden"))) std::uint32_t keltraSumOfThree(const float *a,
                                                                                const float *b);

// result[j] := v[0] m[j] + v[1] m[4 + j] + v[2] m[8 + j] + m[12 + j] for j from 0 to 2; `result` may be part
// of `m`. False when nothing was done.
extern "C" __attribute__((visibility("hidden"))) bool keltraTransform(const float *v, const float *m,
                                                                      float *result);

// The bits of v[0] v[0] + v[1] v[1] + v[2] v[2].
extern "C" __attribute__((visibility("hidden"))) std::uint32_t keltraSumOfSquares(const float *v);

// The bits of the same for the differences b[0] - a[0], b[1] - a[1] and b[2] - a[2], of which some may be
// zero.
extern "C" __attribute__((visibility("hidden"))) std::uint32_t keltraSquaredDistance(const float *a,
                                                                                     const float *b);

// The bits of a b - c d, of bits.
extern "C" __attribute__((visibility("hidden"))) std::uint32_t keltraDifference(std::uint32_t a,
                                                                                std::uint32_t b,
                                                                                std::uint32_t c,
                                                                                std::uint32_t d);

// The bits of a b + c, of bits.
extern "C" __attribute__((visibility("hidden"))) std::uint32_t keltraMultiplyAdd(std::uint32_t a,
                                                                                 std::uint32_t b,
                                                                                 std::uint32_t c);

// t[12 + j] := place[0] t[j] + place[1] t[4 + j] + place[2] t[8 + j] + t[12 + j] for j from 0 to 2, where the
// fourth row of `t` is 0 0 0 1 and zeros are accepted; false when nothing was done.
extern "C" __attribute__((visibility("hidden"))) bool keltraTranslate(const float *place, float *t);

// The product of R3XMATRIX of two matrices whose last rows are 0 0 0 1, without other zeros. False when not
// all of it is there; `result` is lost then.
extern "C" __attribute__((visibility("hidden"))) bool keltraMultiply(const float *a, const float *b,
                                                                     float *result);

// The inverse of a matrix whose last row is 0 0 0 1, in three steps. The minors of the nine elements that
// rotate, signed and in their places; false when nothing of use was done.
extern "C" __attribute__((visibility("hidden"))) bool keltraMinors(const float *m, float *result);
// The nine elements that are there then times a factor of bits; false when nothing was done.
extern "C" __attribute__((visibility("hidden"))) bool keltraScaleRotation(std::uint32_t factor,
                                                                          float *result);
// result[12 + j] := -(place[2] result[8 + j] + place[1] result[4 + j] + place[0] result[j]), for elements as
// they are then; false when not all of it is there.
extern "C" __attribute__((visibility("hidden"))) bool keltraMoveBack(const float *place, float *result);

// `fours` times four floats to 16.16 as toFixed does, and copies them. The copy may be where the results go.
extern "C" __attribute__((visibility("hidden"))) void keltraToFixed(const float *values, void *copy,
                                                                    std::int32_t *fixed, unsigned int fours);
// The same for floats at any address; the words that have a byte of them are read whole.
extern "C" __attribute__((visibility("hidden"))) void keltraBytesToFixed(const void *bytes,
                                                                         std::int32_t *fixed,
                                                                         unsigned int fours);

// Copies 16 words, which a compiler calls memcpy for.
extern "C" __attribute__((visibility("hidden"))) void keltraCopyWords(const void *from, void *to);
extern "C" __attribute__((visibility("hidden"))) void keltraCopyTwice(const void *from, void *to, void *also);

// Whether 16 words are the same.
extern "C" __attribute__((visibility("hidden"))) bool keltraSameWords(const void *a, const void *b);

// Copies 16 words, and compares them with others.
extern "C" __attribute__((visibility("hidden"))) bool keltraCopySame(const void *from, void *to,
                                                                     const void *others);

// x := c x + p y and y := c y - p x, for bits c and p; false when nothing was done.
extern "C" __attribute__((visibility("hidden"))) bool keltraTurn(std::uint32_t c, std::uint32_t p, float *x,
                                                                 float *y);

#endif

#endif
