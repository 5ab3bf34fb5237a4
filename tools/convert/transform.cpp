// SPDX-License-Identifier: Zlib
#include "tools/convert/transform.h"

#include <algorithm>
#include <cmath>

namespace keltra::convert {
namespace {

constexpr double kRoundingError = 1e-7;  // far below the engine's steps of 1/65536
constexpr double kSame = 2e-4;           // of the larger matrix, or of the model's size
constexpr double kFlat = 1e-12;          // volume, relative to the cube of the scale, that counts as 0
constexpr double kGimbal = 1e-7;         // cosine of Y below which X and Z rotate about the same axis
constexpr int kPolarSteps = 64;          // about ten are needed; ill-conditioned matrices need more

float narrowed(double value) { return std::abs(value) < kRoundingError ? 0.0f : static_cast<float>(value); }

double largest(const Matrix &m) {
    return std::max({std::abs(m.a1), std::abs(m.a2), std::abs(m.a3), std::abs(m.b1), std::abs(m.b2),
                     std::abs(m.b3), std::abs(m.c1), std::abs(m.c2), std::abs(m.c3)});
}

bool isFlat(const Matrix &m) {
    const double scale = largest(m);
    return !(std::abs(determinant3(m)) > kFlat * scale * scale * scale);
}

// The angle plus the multiple of 360 degrees that is nearest to `previous`.
double nearestAngle(double angle, double previous) {
    return angle + 360.0 * std::round((previous - angle) / 360.0);
}

double distance(const Vector &a, const Vector &b) {
    return std::abs(a.x - b.x) + std::abs(a.y - b.y) + std::abs(a.z - b.z);
}

}  // namespace

formats::Vec3 narrowed(const Vector &v) { return {narrowed(v.x), narrowed(v.y), narrowed(v.z)}; }

Matrix widened(const aiMatrix4x4 &m) {
    const Matrix wide(m.a1, m.a2, m.a3, m.a4, m.b1, m.b2, m.b3, m.b4, m.c1, m.c2, m.c3, m.c4, 0, 0, 0, 1);
    return isFinite(wide) ? wide : Matrix();
}

Matrix scaling(double factor) {
    Matrix m;
    m.a1 = m.b2 = m.c3 = factor;
    return m;
}

Vector translationOf(const Matrix &m) { return Vector(m.a4, m.b4, m.c4); }

Vector rotated(const Matrix &m, const Vector &v) {
    return Vector(m.a1 * v.x + m.a2 * v.y + m.a3 * v.z, m.b1 * v.x + m.b2 * v.y + m.b3 * v.z,
                  m.c1 * v.x + m.c2 * v.y + m.c3 * v.z);
}

bool isFinite(const Matrix &m) {
    for (unsigned row = 0; row < 4; ++row)
        for (unsigned column = 0; column < 4; ++column)
            if (!std::isfinite(m[row][column])) return false;
    return true;
}

double determinant3(const Matrix &m) {
    return m.a1 * (m.b2 * m.c3 - m.b3 * m.c2) - m.a2 * (m.b1 * m.c3 - m.b3 * m.c1) +
           m.a3 * (m.b1 * m.c2 - m.b2 * m.c1);
}

// The cofactors. The inverse transpose is these divided by the determinant, which may be 0.
Matrix forNormals(const Matrix &m) {
    const double sign = determinant3(m) < 0.0 ? -1.0 : 1.0;
    Matrix n;
    n.a1 = sign * (m.b2 * m.c3 - m.b3 * m.c2);
    n.a2 = sign * (m.b3 * m.c1 - m.b1 * m.c3);
    n.a3 = sign * (m.b1 * m.c2 - m.b2 * m.c1);
    n.b1 = sign * (m.a3 * m.c2 - m.a2 * m.c3);
    n.b2 = sign * (m.a1 * m.c3 - m.a3 * m.c1);
    n.b3 = sign * (m.a2 * m.c1 - m.a1 * m.c2);
    n.c1 = sign * (m.a2 * m.b3 - m.a3 * m.b2);
    n.c2 = sign * (m.a3 * m.b1 - m.a1 * m.b3);
    n.c3 = sign * (m.a1 * m.b2 - m.a2 * m.b1);
    return n;
}

Matrix inverse(const Matrix &m) {
    if (isFlat(m)) return Matrix();
    Matrix inverted = m;
    inverted.Inverse();
    return isFinite(inverted) ? inverted : Matrix();
}

// Polar decomposition: the repeated mean of a matrix and its inverse transpose converges to the nearest
// rotation.
Matrix rigidPart(const Matrix &matrix, const Matrix &otherwise) {
    Matrix r = matrix;
    if (isFlat(matrix)) {
        r = otherwise;
    } else {
        if (determinant3(r) < 0.0) r.a1 = -r.a1, r.b1 = -r.b1, r.c1 = -r.c1;
        for (int step = 0; step < kPolarSteps; ++step) {
            const double volume = determinant3(r);
            const Matrix n = forNormals(r);
            // Scaling to volume 1 makes it converge at once for a rotation with a uniform scale.
            const double shrink = 1.0 / std::cbrt(volume), grow = std::cbrt(volume) / volume;
            Matrix next;
            for (unsigned row = 0; row < 3; ++row)
                for (unsigned column = 0; column < 3; ++column)
                    next[row][column] = 0.5 * (r[row][column] * shrink + n[row][column] * grow);
            const bool settled = linearDifference(next, r) < 1e-14;
            r = next;
            if (settled) break;
        }
    }
    r.a4 = matrix.a4, r.b4 = matrix.b4, r.c4 = matrix.c4;
    r.d1 = r.d2 = r.d3 = 0.0, r.d4 = 1.0;
    return r;
}

double linearDifference(const Matrix &a, const Matrix &b) {
    double most = 0.0;
    for (unsigned row = 0; row < 3; ++row)
        for (unsigned column = 0; column < 3; ++column)
            most = std::max(most, std::abs(a[row][column] - b[row][column]));
    return most;
}

double magnitude(const Matrix &m) { return linearDifference(m, Matrix() * 0.0); }

bool areAlike(const Matrix &a, const Matrix &b, double size) {
    return linearDifference(a, b) <= kSame * std::max(magnitude(a), magnitude(b)) &&
           (translationOf(a) - translationOf(b)).Length() <= kSame * size;
}

Vector eulerAngles(const Matrix &m) {
    const double cosine = std::hypot(m.a1, m.a2);
    Vector angles(0.0, std::atan2(m.a3, cosine), 0.0);
    if (cosine > kGimbal) {
        angles.x = std::atan2(-m.b3, m.c3);
        angles.z = std::atan2(-m.a2, m.a1);
    } else {
        angles.x = std::atan2(m.c2, m.b2);
    }
    return angles * kDegrees;
}

Vector nearestAngles(const Vector &angles, const Vector &previous) {
    const auto near = [&previous](double x, double y, double z) {
        return Vector(nearestAngle(x, previous.x), nearestAngle(y, previous.y), nearestAngle(z, previous.z));
    };
    const Vector plain = near(angles.x, angles.y, angles.z);
    const Vector other = near(angles.x + 180.0, 180.0 - angles.y, angles.z + 180.0);
    return distance(plain, previous) <= distance(other, previous) ? plain : other;
}

}  // namespace keltra::convert
