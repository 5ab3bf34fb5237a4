// SPDX-License-Identifier: Zlib
#ifndef KELTRA_MATH_SPARSE_H
#define KELTRA_MATH_SPARSE_H

// Matrix operations that leave out products by zero, for processors without a floating-point unit: there each
// product is a call, and most elements of a scene's matrices are zeros. The bits are those of the plain
// operations: a product by zero changes a sum only when that is zero itself, where the signs are looked at,
// or when the other factor is not finite, where the functions return false with nothing changed. A processor
// with such a unit is faster with the plain operations.

#include <keltra/vector.h>

#include "math/float_bits.h"
#include "math/sine.h"
#include "math/soft_arm.h"

namespace keltra {

// The sign of a sum of zeros: negative when all of them are.
inline float zeroOf(std::uint32_t signs) { return floatOf(signs & kSignBit); }

// a + b, where one of them is most often zero.
inline float sum(float a, float b) {
    if (kSoftFloat && isZero(b)) {
        if (isOrdinary(a)) return a;
        if (isZero(a)) return zeroOf(bitsOf(a) & bitsOf(b));
    }
    return kSoftFloat && isZero(a) && isOrdinary(b) ? b : a + b;
}

inline R3XVECTOR3D sum(const R3XVECTOR3D &a, const R3XVECTOR3D &b) {
    return R3XVECTOR3D(sum(a.x, b.x), sum(a.y, b.y), sum(a.z, b.z));
}

// a b + c
#if defined(KELTRA_SOFT_ARM)
float multiplyAddWithZeros(float a, float b, float c);

inline float multiplyAdd(float a, float b, float c) {
    const std::uint32_t bits = keltraMultiplyAdd(bitsOf(a), bitsOf(b), bitsOf(c));
    return bits ? floatOf(bits) : multiplyAddWithZeros(a, b, c);
}
#else
inline float multiplyAdd(float a, float b, float c) { return sum(a * b, c); }
#endif

inline R3XVECTOR3D multiplyAdd(const R3XVECTOR3D &a, float b, const R3XVECTOR3D &c) {
    return R3XVECTOR3D(multiplyAdd(a.x, b, c.x), multiplyAdd(a.y, b, c.y), multiplyAdd(a.z, b, c.z));
}

inline float product(float a, float b) {
    if (bitsOf(a) == kOneBits) return b;
    return bitsOf(b) == kOneBits ? a : a * b;
}

// a x + b y
inline float sumOfProducts(float a, float x, float b, float y) {
#if defined(KELTRA_SOFT_ARM)
    if (const std::uint32_t bits = keltraDifference(bitsOf(a), bitsOf(x), bitsOf(b) ^ kSignBit, bitsOf(y)))
        return floatOf(bits);
#endif
    return a * x + b * y;
}

// a x + b y + 0 z, in any order of the terms; all of them finite.
inline float sumOfTwo(float a, float x, float b, float y, float z) {
    float sum;
    if (isZero(x)) {
        if (isZero(y)) return zeroOf((bitsOf(a) ^ bitsOf(x)) & (bitsOf(b) ^ bitsOf(y)) & bitsOf(z));
        sum = product(b, y);
    } else {
        sum = isZero(y) ? product(a, x) : sumOfProducts(a, x, b, y);
    }
    return isZero(sum) ? a * x + b * y + 0.0f * z : sum;
}

// a[0] b[0] + a[1] b[4] + a[2] b[8] + 0 w, with the sums of two or three.
inline float sumOfNonZero(const float *a, const float *b, float w) {
    float sum;
    const bool first = !isZero(a[0]) && !isZero(b[0]), second = !isZero(a[1]) && !isZero(b[4]);
    if (!isZero(a[2]) && !isZero(b[8])) {
        if (first && second)
            sum = a[0] * b[0] + a[1] * b[4] + a[2] * b[8];
        else if (first)
            sum = sumOfProducts(a[0], b[0], a[2], b[8]);
        else
            sum = second ? sumOfProducts(a[1], b[4], a[2], b[8]) : product(a[2], b[8]);
    } else if (first) {
        sum = second ? sumOfProducts(a[0], b[0], a[1], b[4]) : product(a[0], b[0]);
    } else if (second) {
        sum = product(a[1], b[4]);
    } else {
        return zeroOf((bitsOf(a[0]) ^ bitsOf(b[0])) & (bitsOf(a[1]) ^ bitsOf(b[4])) &
                      (bitsOf(a[2]) ^ bitsOf(b[8])) & bitsOf(w));
    }
    return isZero(sum) ? a[0] * b[0] + a[1] * b[4] + a[2] * b[8] + 0.0f * w : sum;
}

// a[0] b[0] + a[1] b[4] + a[2] b[8] + 0 w; all of them finite. `dense` when none is zero.
inline float sumOfThree(const float *a, const float *b, float w, bool dense) {
    if (!dense) return sumOfNonZero(a, b, w);
    const float sum = a[0] * b[0] + a[1] * b[4] + a[2] * b[8];
    return isZero(sum) ? sum + 0.0f * w : sum;
}

// The same with b[12] in the place of 0 w.
inline float sumOfFour(const float *a, const float *b, bool dense) {
    return keltra::sum(sumOfThree(a, b, floatOf(kSignBit), dense), b[12]);
}

// (0, 0, 0, 1), with zeros that are positive.
inline bool hasPlainLastRow(const float *m) {
    return (bitsOf(m[3]) | bitsOf(m[7]) | bitsOf(m[11]) | (bitsOf(m[15]) ^ kOneBits)) == 0;
}

// Whether the last row is plain and everything is finite. A dense placement
// rotates and scales without a zero.
enum class Placement { kNone, kSparse, kDense };

inline Placement placementOf(const float *m) {
    if (!hasPlainLastRow(m) || !areFinite(m + 12, 3)) return Placement::kNone;
    Placement placement = Placement::kDense;
    for (int i = 0; i < 11; ++i) {
        if (i % 4 == 3 || isOrdinary(m[i])) continue;
        if (!isZero(m[i])) return Placement::kNone;
        placement = Placement::kSparse;
    }
    return placement;
}

// With zeros of both signs, as an inverse has them.
inline bool isIdentity(const float *m) {
    std::uint32_t others = 0;
    for (int i = 0; i < 16; ++i) others |= i % 5 == 0 ? bitsOf(m[i]) ^ kOneBits : bitsOf(m[i]) << 1;
    return others == 0;
}

// Whether a product with the identity is the matrix itself: a negative zero may become a positive one.
inline bool isKeptByIdentity(const float *m) {
    for (int i = 0; i < 16; ++i)
        if (bitsOf(m[i]) == kSignBit || !isFinite(m[i])) return false;
    return true;
}

// The axis that a rotation is about, 0 for x to 2 for z; -1 when it is none of the three.
inline int mainAxis(float x, float y, float z) {
    const std::uint32_t bits[3] = {bitsOf(x), bitsOf(y), bitsOf(z)};
    if ((bits[0] | bits[1] | bits[2]) != kOneBits) return -1;
    for (int axis = 0; axis < 3; ++axis)
        if (bits[axis] == kOneBits) return (bits[(axis + 1) % 3] | bits[(axis + 2) % 3]) == 0 ? axis : -1;
    return -1;
}

// What R3XMATRIX::setRotation makes of a rotation about a main axis, 0 for x to 2 for z. Sine and cosine are
// those of one angle, finite.
inline void setTurn(const Rotation &turn, int axis, float *m) {
    m[1] = m[2] = m[3] = m[4] = m[6] = m[7] = m[8] = m[9] = m[11] = m[12] = m[13] = m[14] = 0.0f;
    m[15] = 1.0f;
    const int first = axis == 0 ? 1 : 0, second = axis == 2 ? 1 : 2;
    m[5 * first] = m[5 * second] = turn.cosine;
    m[5 * axis] = turn.unit;
    if (isZero(turn.sine)) return;  // zeros of both signs are zeros with a positive sign there
    const float back = floatOf(bitsOf(turn.sine) ^ kSignBit);
    m[4 * first + second] = axis == 1 ? back : turn.sine;
    m[4 * second + first] = axis == 1 ? turn.sine : back;
}

// x := c x + p y and y := c y - p x, where the processor has something for it and neither result is zero.
inline bool turnPair(float c, float p, float &x, float &y) {
#if defined(KELTRA_SOFT_ARM)
    return keltraTurn(bitsOf(c), bitsOf(p), &x, &y);
#else
    return (void)c, (void)p, (void)x, (void)y, false;
#endif
}

// t := that rotation x t, of which the last row may be anything.
inline bool turnBy(const Rotation &turn, int axis, float *t) {
    if (isZero(turn.sine) || !isFinite(turn.sine) || !areFinite(t, 12)) return false;
    const float c = turn.cosine, back = floatOf(bitsOf(turn.sine) ^ kSignBit);
    const float p = axis == 1 ? back : turn.sine, q = axis == 1 ? turn.sine : back;
    float *kept = t + 4 * axis, *first = t + (axis == 0 ? 4 : 0), *second = t + (axis == 2 ? 4 : 8);
    const bool scales = bitsOf(turn.unit) != kOneBits;
    // A placement's last row stays as it is.
    const int rows = (bitsOf(t[3]) | bitsOf(t[7]) | bitsOf(t[11])) == 0 ? 3 : 4;
    for (int j = 0; j < rows; ++j) {
        const float x = first[j], y = second[j], z = kept[j];
        if (isZero(x) || isZero(y) || !turnPair(c, p, first[j], second[j])) {
            first[j] = sumOfTwo(c, x, p, y, z);
            second[j] = sumOfTwo(q, x, c, y, z);
        }
        if (isZero(z))
            kept[j] = zeroOf(bitsOf(x) & bitsOf(y) & bitsOf(z));
        else if (scales)
            kept[j] = turn.unit * z;
    }
    return true;
}

#if defined(KELTRA_SOFT_ARM)

// What the kernels leave is seldom: no product is worth leaving out.
inline bool translateBy(float x, float y, float z, float *t) {
    const float by[3] = {x, y, z};
    if (keltraTranslate(by, t)) return true;
    if (placementOf(t) == Placement::kNone || !areFinite(by, 3)) return false;
    for (int j = 0; j < 3; ++j) t[12 + j] = x * t[j] + y * t[4 + j] + z * t[8 + j] + t[12 + j];
    return true;
}

inline bool multiplyPlacements(const float *a, const float *b, float *result) {
    if (keltraMultiply(a, b, result)) return true;
    if (placementOf(a) == Placement::kNone || placementOf(b) == Placement::kNone) return false;
    for (int column = 0; column < 16; column += 4) {
        const float *v = a + column;
        for (int j = 0; j < 4; ++j)
            result[column + j] = v[0] * b[j] + v[1] * b[4 + j] + v[2] * b[8 + j] + v[3] * b[12 + j];
    }
    return true;
}

#else

// t := a translation x t.
inline bool translateBy(float x, float y, float z, float *t) {
    const Placement placement = placementOf(t);
    if (placement == Placement::kNone || !isFinite(x) || !isFinite(y) || !isFinite(z)) return false;
    const float place[3] = {x, y, z};
    const bool moves = !isZero(x) || !isZero(y) || !isZero(z);
    const bool dense = placement == Placement::kDense && !isZero(x) && !isZero(y) && !isZero(z);
    for (int j = 0; j < 3; ++j)
        if (moves || bitsOf(t[12 + j]) == kSignBit) t[12 + j] = sumOfFour(place, t + j, dense);
    return true;
}

// result := a x b in the order of R3XMATRIX, for two placements; `result` is neither of them.
inline bool multiplyPlacements(const float *a, const float *b, float *result) {
    const Placement first = placementOf(a), second = placementOf(b);
    if (first == Placement::kNone || second == Placement::kNone) return false;
    const bool dense = first == Placement::kDense && second == Placement::kDense;
    for (int column = 0; column < 12; column += 4) {
        for (int row = 0; row < 3; ++row)
            result[column + row] = sumOfThree(a + column, b + row, b[12 + row], dense);
        result[column + 3] = 0.0f;
    }
    const bool moves = dense && !isZero(a[12]) && !isZero(a[13]) && !isZero(a[14]);
    for (int row = 0; row < 3; ++row) result[12 + row] = sumOfFour(a + 12, b + row, moves);
    result[15] = 1.0f;
    return true;
}

#endif

}  // namespace keltra

#endif
