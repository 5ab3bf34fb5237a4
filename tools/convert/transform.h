// SPDX-License-Identifier: Zlib
#ifndef KELTRA_CONVERT_TRANSFORM_H
#define KELTRA_CONVERT_TRANSFORM_H

// Matrices for column vectors, as in assimp, in double precision: the error of a product of twenty float
// matrices would be visible.

#include "tools/formats/vec.h"

#include <assimp/matrix4x4.h>
#include <assimp/vector3.h>
#include <assimp/matrix4x4.inl>
#include <assimp/vector3.inl>

namespace keltra::convert {

using Matrix = aiMatrix4x4t<double>;
using Vector = aiVector3t<double>;

constexpr double kDegrees = 180.0 / 3.14159265358979323846;  // per radian

// The value for files. Rounding errors around 0 become 0, never -0, so that equal values have equal bits.
formats::Vec3 narrowed(const Vector &vector);

// A matrix that is not finite becomes the identity.
Matrix widened(const aiMatrix4x4 &matrix);
Matrix scaling(double factor);
Vector translationOf(const Matrix &matrix);
// Without the translation.
Vector rotated(const Matrix &matrix, const Vector &direction);
bool isFinite(const Matrix &matrix);
// The factor by which the linear part scales volumes; negative for mirrors.
double determinant3(const Matrix &matrix);
// The matrix for normals: the inverse transpose of the linear part, up to a positive factor. Also defined for
// singular matrices.
Matrix forNormals(const Matrix &matrix);
// The inverse, or the identity if there is none.
Matrix inverse(const Matrix &matrix);

// The position and the nearest rotation, without scales, shears and mirrors. `otherwise` gives the rotation
// for a singular matrix.
Matrix rigidPart(const Matrix &matrix, const Matrix &otherwise = Matrix());
// The largest difference between two matrices' linear parts.
double linearDifference(const Matrix &a, const Matrix &b);

// The largest element of the linear part.
double magnitude(const Matrix &matrix);
// Whether two frames transform a model of that size in almost the same way.
bool areAlike(const Matrix &a, const Matrix &b, double size);

// Angles about X, Y and Z in degrees; the product of their rotations in this order is the matrix.
Vector eulerAngles(const Matrix &rotation);
// The equivalent angles that are nearest to `previous`, so that a steady rotation has steady angles.
Vector nearestAngles(const Vector &angles, const Vector &previous);

}  // namespace keltra::convert

#endif
