#ifndef KELTRA_CONVERT_TRANSFORM_H
#define KELTRA_CONVERT_TRANSFORM_H

// Matrices of column vectors, as assimp has them, in double precision: what is left of a product of twenty
// floats would show.

#include <assimp/matrix4x4.h>
#include <assimp/vector3.h>
#include <assimp/matrix4x4.inl>
#include <assimp/vector3.inl>

#include "tools/formats/vec.h"

namespace keltra::convert {

using Matrix = aiMatrix4x4t<double>;
using Vector = aiVector3t<double>;

constexpr double kDegrees = 180.0 / 3.14159265358979323846;  // in a radian

// As it goes into files. What is nothing but a rounding error is 0, and never -0: equal values have equal
// bits.
formats::Vec3 narrowed(const Vector &vector);

// Not finite ones become the identity.
Matrix widened(const aiMatrix4x4 &matrix);
Matrix scaling(double factor);
Vector translationOf(const Matrix &matrix);
// Without the translation.
Vector turned(const Matrix &matrix, const Vector &direction);
bool isFinite(const Matrix &matrix);
// How much of a volume's unit is left; negative for mirrors.
double determinant3(const Matrix &matrix);
// The normals' companion of a matrix: the inverse transpose of its linear part, up to a positive factor. Also
// of singular ones, where there is no inverse.
Matrix forNormals(const Matrix &matrix);
// The inverse; the identity when there is none.
Matrix inverse(const Matrix &matrix);

// The turn and the place of a matrix, without its scales, shears and mirrors: the rotation that is nearest to
// it. `otherwise` gives the rotation of a matrix that flattens space.
Matrix rigidPart(const Matrix &matrix, const Matrix &otherwise = Matrix());
// The largest difference between two matrices' linear parts.
double linearDifference(const Matrix &a, const Matrix &b);

// The largest element of the linear part.
double magnitude(const Matrix &matrix);
// Frames of a model of that size which do the same to it, nearly.
bool areAlike(const Matrix &a, const Matrix &b, double size);

// Angles about X, Y and Z in degrees whose rotations, multiplied in this order, are that of the matrix.
Vector eulerAngles(const Matrix &rotation);
// The same rotation by the angles that are nearest to `previous`: what turns steadily gets angles that grow
// steadily.
Vector nearestAngles(const Vector &angles, const Vector &previous);

}  // namespace keltra::convert

#endif
