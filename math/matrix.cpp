// SPDX-License-Identifier: Zlib
#include <keltra/matrix.h>

#include "foundation/cold.h"
#include "math/quotient.h"
#include "math/sine.h"
#include "math/soft_arm.h"
#include "math/sparse.h"
#include "math/square_root.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr float kRadiansPerDegree = 0.017453294f;
constexpr double kInversePi = 0.31830987732601135;  // deliberate: not quite 1/pi, callers rely on it
constexpr float kPole = 0.998f;

using keltra::SineCosine;
using keltra::sineCosine;

float degrees(double radians) { return float(radians * kInversePi) * 180.0f; }

#if defined(KELTRA_SOFT_ARM)
[[gnu::noinline]] float dotWithZeros(const float *v, const float *m) {
    const bool finite = keltra::areFinite(v, 3) && keltra::isFinite(m[0]) && keltra::isFinite(m[4]);
    if (finite && keltra::isFinite(m[8])) return keltra::sumOfNonZero(v, m, -0.0f);
    return m[0] * v[0] + m[4] * v[1] + m[8] * v[2];
}
#endif

// v[0] m[0] + v[1] m[4] + v[2] m[8]
inline float dot(const float *v, const float *m) {
#if defined(KELTRA_SOFT_ARM)
    const std::uint32_t bits = keltraSumOfThree(v, m);
    return bits ? keltra::floatOf(bits) : dotWithZeros(v, m);
#else
    return m[0] * v[0] + m[4] * v[1] + m[8] * v[2];
#endif
}

// The same with m[12].
inline float place(const float *v, const float *m) { return keltra::sum(dot(v, m), m[12]); }

// a d - b c
#if defined(KELTRA_SOFT_ARM)
[[gnu::noinline]] float minorWithZeros(float a, float d, float b, float c) { return a * d - b * c; }

inline float minor(float a, float d, float b, float c) {
    const std::uint32_t bits =
        keltraDifference(keltra::bitsOf(a), keltra::bitsOf(d), keltra::bitsOf(b), keltra::bitsOf(c));
    return bits ? keltra::floatOf(bits) : minorWithZeros(a, d, b, c);
}
#else
inline float minor(float a, float d, float b, float c) { return a * d - b * c; }
#endif

#if defined(KELTRA_SOFT_ARM)
KELTRA_COLD void multiplyPlainly(const float *a, const float *b, float *result) {
    for (int i = 0; i < 16; ++i) {
        const float *column = a + i / 4 * 4, *row = b + i % 4;
        result[i] = column[0] * row[0] + column[1] * row[4] + column[2] * row[8] + column[3] * row[12];
    }
}
#else
// One column of a product: the sums run over k from 0 to 3.
inline void productColumn(const float *a, const float *b, float *result) {
    result[0] = a[0] * b[0] + a[1] * b[4] + a[2] * b[8] + a[3] * b[12];
    result[1] = a[0] * b[1] + a[1] * b[5] + a[2] * b[9] + a[3] * b[13];
    result[2] = a[0] * b[2] + a[1] * b[6] + a[2] * b[10] + a[3] * b[14];
    result[3] = a[0] * b[3] + a[1] * b[7] + a[2] * b[11] + a[3] * b[15];
}
#endif

// The elements that rotate.
void invertPlainly(const float *m, float *R) {
    // The minors of the first column are those of the determinant.
    const float first = minor(m[10], m[5], m[9], m[6]), second = minor(m[10], m[4], m[8], m[6]),
                third = minor(m[9], m[4], m[8], m[5]);
    const float r = 1.0f / (m[0] * first - m[1] * second + m[2] * third);
    R[0] = first * r;
    R[1] = -minor(m[10], m[1], m[9], m[2]) * r;
    R[2] = minor(m[6], m[1], m[5], m[2]) * r;
    R[4] = -second * r;
    R[5] = minor(m[10], m[0], m[8], m[2]) * r;
    R[6] = -minor(m[6], m[0], m[4], m[2]) * r;
    R[8] = third * r;
    R[9] = -minor(m[9], m[0], m[8], m[1]) * r;
    R[10] = minor(m[5], m[0], m[4], m[1]) * r;
}

#if defined(KELTRA_SOFT_ARM)
// The same for elements without zeros. False when not all of it is there.
bool invertRotation(const float *m, float *R) {
    if (!keltraMinors(m, R)) return false;
    const std::uint32_t determinant = keltraSumOfThree(m, R);
    if (determinant == keltra::kOneBits) return true;
    if (determinant == 0) return false;
    return keltraScaleRotation(keltra::bitsOf(keltra::quotient(1.0f, keltra::floatOf(determinant))), R);
}
#endif

// A turn in the plane of two axes, from the first to the second.
void setTurn(float *m, int first, int second, float degrees) {
    const SineCosine turn = sineCosine(degrees * kRadiansPerDegree);
    std::fill(m, m + 15, 0.0f);
    m[0] = m[5] = m[10] = 1.0f;
    m[5 * first] = m[5 * second] = turn.cosine;
    m[4 * first + second] = turn.sine;
    m[4 * second + first] = -turn.sine;
    m[12] = 1.0f;  // deliberate, like the untouched m[15]: callers rely on both
}

}  // namespace

R3XMATRIX::R3XMATRIX(float m0, float m1, float m2, float m3, float m4, float m5, float m6, float m7, float m8,
                     float m9, float m10, float m11, float m12, float m13, float m14, float m15)
    : m{m0, m1, m2, m3, m4, m5, m6, m7, m8, m9, m10, m11, m12, m13, m14, m15} {}

R3XMATRIX::R3XMATRIX(const float *values) : R3XMATRIX() {
    if (values) std::copy(values, values + 16, m);
}

void R3XMATRIX::setIdentity() {
    m[1] = m[2] = m[3] = m[4] = m[6] = m[7] = m[8] = m[9] = m[11] = m[12] = m[13] = m[14] = 0.0f;
    m[0] = m[5] = m[10] = m[15] = 1.0f;
}

R3XVECTOR4D R3XMATRIX::getRow(int row) const {
    if (row < 0 || row > 3) return R3XVECTOR4D(0.0f, 0.0f, 0.0f, 0.0f);
    return R3XVECTOR4D(m[row], m[4 + row], m[8 + row], m[12 + row]);
}

R3XVECTOR4D R3XMATRIX::getColumn(int column) const {
    if (column < 0 || column > 3) return R3XVECTOR4D(0.0f, 0.0f, 0.0f, 0.0f);
    return R3XVECTOR4D(m + 4 * column);
}

R3XMATRIX R3XMATRIX::operator*(const R3XMATRIX &other) const {
    R3XMATRIX result(*this);
#if defined(KELTRA_SOFT_ARM)
    if (!keltraMultiply(m, other.m, result.m)) multiplyPlainly(m, other.m, result.m);
#else
    if (keltra::kSoftFloat && keltra::multiplyPlacements(m, other.m, result.m)) return result;
    productColumn(m, other.m, result.m);
    productColumn(m + 4, other.m, result.m + 4);
    productColumn(m + 8, other.m, result.m + 8);
    productColumn(m + 12, other.m, result.m + 12);
#endif
    return result;
}

R3XVECTOR4D R3XMATRIX::transform(const R3XVECTOR3D &v) const {
#if defined(KELTRA_SOFT_ARM)
    R3XVECTOR4D result;  // with 1, which the last row of a placement gives
    if (keltra::hasPlainLastRow(m) && keltraTransform(&v.x, m, &result.x)) return result;
#endif
    const float vector[3] = {v.x, v.y, v.z};
    const bool last = keltra::kSoftFloat && keltra::areFinite(vector, 3) && keltra::hasPlainLastRow(m);
    return R3XVECTOR4D(place(vector, m), place(vector, m + 1), place(vector, m + 2),
                       last ? 1.0f : place(vector, m + 3));
}

R3XVECTOR4D R3XMATRIX::transform(const R3XVECTOR2D &v) const {
    return R3XVECTOR4D(m[0] * v.x + m[4] * v.y + m[12], m[1] * v.x + m[5] * v.y + m[13],
                       m[2] * v.x + m[6] * v.y + m[14], m[3] * v.x + m[7] * v.y + m[15]);
}

R3XVECTOR4D R3XMATRIX::transform(const R3XVECTOR4D &v) const {
    return R3XVECTOR4D(m[0] * v.x + m[4] * v.y + m[8] * v.z + m[12] * v.w,
                       m[1] * v.x + m[5] * v.y + m[9] * v.z + m[13] * v.w,
                       m[2] * v.x + m[6] * v.y + m[10] * v.z + m[14] * v.w,
                       m[3] * v.x + m[7] * v.y + m[11] * v.z + m[15] * v.w);
}

R3XVECTOR3D R3XMATRIX::rotate(const R3XVECTOR4D &v) const {
    const float vector[3] = {v.x, v.y, v.z};
    return R3XVECTOR3D(dot(vector, m), dot(vector, m + 1), dot(vector, m + 2));
}

R3XVECTOR3D R3XMATRIX::rotate(const R3XVECTOR2D &v) const {
    return R3XVECTOR3D(m[0] * v.x + m[4] * v.y, m[1] * v.x + m[5] * v.y, m[2] * v.x + m[6] * v.y);
}

void R3XMATRIX::transpose() {
    std::swap(m[1], m[4]);
    std::swap(m[2], m[8]);
    std::swap(m[3], m[12]);
    std::swap(m[6], m[9]);
    std::swap(m[7], m[13]);
    std::swap(m[11], m[14]);
}

KELTRA_COLD float R3XMATRIX::determinant() const {
    return m[0] * minor(m[5], m[10], m[6], m[9]) - m[1] * minor(m[4], m[10], m[8], m[6]) +
           m[2] * minor(m[4], m[9], m[8], m[5]);
}

R3XMATRIX R3XMATRIX::inverse() const {
    R3XMATRIX result;
#if defined(KELTRA_SOFT_ARM)
    if (!invertRotation(m, result.m))
        invertPlainly(m, result.m);
    else if (keltraMoveBack(m + 12, result.m))
        return result;
#else
    invertPlainly(m, result.m);
#endif
    float *R = result.m;
    const float back[3] = {m[14], m[13], m[12]};
    for (int row = 0; row < 3; ++row) {
        const float columns[9] = {R[8 + row], 0.0f, 0.0f, 0.0f, R[4 + row], 0.0f, 0.0f, 0.0f, R[row]};
        R[12 + row] = -dot(back, columns);
    }
    return result;
}

void R3XMATRIX::setRotation(float angle, float x, float y, float z) {
    const keltra::Rotation &turn = keltra::rotationOf(angle);
    const int axis = keltra::mainAxis(x, y, z);
    if (axis >= 0 && keltra::isFinite(turn.sine)) return keltra::setTurn(turn, axis, m);
    float s = turn.sine, c = turn.cosine, u = 1.0f - c;
    const float ux = u * x, uy = u * y, uz = u * z, sx = s * x, sy = s * y, sz = s * z;
    m[0] = keltra::multiplyAdd(ux, x, c);
    m[1] = keltra::multiplyAdd(uy, x, sz);
    m[2] = keltra::multiplyAdd(uz, x, -sy);
    m[4] = keltra::multiplyAdd(ux, y, -sz);
    m[5] = keltra::multiplyAdd(uy, y, c);
    m[6] = keltra::multiplyAdd(uz, y, sx);
    m[8] = keltra::multiplyAdd(uz, x, sy);
    m[9] = keltra::multiplyAdd(uz, y, -sx);
    m[10] = keltra::multiplyAdd(uz, z, c);
    m[3] = m[7] = m[11] = m[12] = m[13] = m[14] = 0.0f;
    m[15] = 1.0f;
}

void R3XMATRIX::setRotationX(float angle) { setTurn(m, 1, 2, angle); }
void R3XMATRIX::setRotationY(float angle) { setTurn(m, 2, 0, angle); }
void R3XMATRIX::setRotationZ(float angle) { setTurn(m, 0, 1, angle); }

R3XMATRIX R3XMATRIX::fromQuaternion(const R3XVECTOR4D &q) {
    float xx = q.x * q.x, xy = q.x * q.y, xz = q.x * q.z, xw = q.x * q.w;
    float yy = q.y * q.y, yz = q.y * q.z, yw = q.y * q.w, zz = q.z * q.z, zw = q.z * q.w;
    m[0] = 1.0f - 2.0f * (zz + yy);
    m[1] = 2.0f * (xy - zw);
    m[2] = 2.0f * (yw + xz);
    m[4] = 2.0f * (zw + xy);
    m[5] = 1.0f - 2.0f * (zz + xx);
    m[6] = 2.0f * (yz - xw);
    m[8] = 2.0f * (xz - yw);
    m[9] = 2.0f * (yz + xw);
    m[10] = 1.0f - 2.0f * (yy + xx);
    m[3] = m[7] = m[11] = m[12] = m[13] = m[14] = 0.0f;
    m[15] = 1.0f;
    return *this;
}

// Deliberate: the first branch and the three others disagree about the sign of the vector part; callers
// compensate for it.
KELTRA_COLD R3XVECTOR4D R3XMATRIX::toQuaterion() const {
    float trace = m[0] + m[5] + m[10] + 1.0f;
    if (trace > 0.0f) {
        float s = 0.5f / keltra::squareRoot(trace);
        return R3XVECTOR4D((m[9] - m[6]) * s, (m[2] - m[8]) * s, (m[4] - m[1]) * s, 0.25f / s);
    }
    if (m[0] > m[5] && m[0] > m[10]) {
        float s = 2.0f * keltra::squareRoot(m[0] + 1.0f - m[5] - m[10]);
        return R3XVECTOR4D(0.25f * s, (m[4] + m[1]) / s, (m[8] + m[2]) / s, (m[6] - m[9]) / s);
    }
    if (m[5] > m[10]) {
        float s = 2.0f * keltra::squareRoot(m[5] + 1.0f - m[0] - m[10]);
        return R3XVECTOR4D((m[4] + m[1]) / s, 0.25f * s, (m[9] + m[6]) / s, (m[2] - m[8]) / s);
    }
    float s = 2.0f * keltra::squareRoot(m[10] + 1.0f - m[0] - m[5]);
    return R3XVECTOR4D((m[8] + m[2]) / s, (m[9] + m[6]) / s, 0.25f * s, (m[1] - m[4]) / s);
}

R3XVECTOR4D R3XMATRIX::toQuaternionVelto() const {
    float trace = m[0] + m[5] + m[10];
    if (trace > 0.0f) {
        float root = keltra::squareRoot(trace + 1.0f), s = 0.5f / root;
        return R3XVECTOR4D((m[6] - m[9]) * s, (m[8] - m[2]) * s, (m[1] - m[4]) * s, 0.5f * root);
    }
    static const int next[3] = {1, 2, 0};
    int i = 0;
    if (m[5] > m[0]) i = 1;
    if (m[10] > m[5 * i]) i = 2;
    int j = next[i], k = next[j];
    float s = keltra::squareRoot(m[5 * i] - (m[5 * k] + m[5 * j]) + 1.0f);
    float q[3];
    q[i] = 0.5f * s;
    if (s != 0.0f) s = 0.5f / s;
    q[j] = (m[4 * j + i] + m[4 * i + j]) * s;
    q[k] = (m[4 * k + i] + m[4 * i + k]) * s;
    return R3XVECTOR4D(q[0], q[1], q[2], (m[4 * j + k] - m[4 * k + j]) * s);
}

// Deliberate: at the poles the right angle goes to y, elsewhere that angle goes to z; callers rely on it.
KELTRA_COLD R3XVECTOR3D R3XMATRIX::toEuler() const {
    if (m[4] > kPole) return R3XVECTOR3D(degrees(std::atan2(double(m[2]), double(m[10]))), 90.0f, 0.0f);
    if (m[4] < -kPole) return R3XVECTOR3D(degrees(std::atan2(double(m[2]), double(m[10]))), -90.0f, 0.0f);
    return R3XVECTOR3D(degrees(std::atan2(-double(m[8]), double(m[0]))),
                       degrees(std::atan2(-double(m[6]), double(m[5]))), degrees(std::asin(double(m[4]))));
}
