// SPDX-License-Identifier: Zlib
#ifndef KELTRA_MATRIX_H
#define KELTRA_MATRIX_H

#include <keltra/vector.h>

/** 4x4 transformation matrix of floats in column-major order, as the GL takes it: row r, column c at m[4c +
 * r], the translation in m[12..14]. Angles are in degrees. Vectors are columns: a point is transformed as
 * matrix times vector, and A * B applies A first, then B. Nothing is checked; a singular matrix inverts to
 * infinities or not-a-numbers. */
class KT_API R3XMATRIX {
   public:
    /** The identity. */
    R3XMATRIX() { setIdentity(); }
    /** The sixteen elements in memory order: column by column. */
    R3XMATRIX(float m0, float m1, float m2, float m3, float m4, float m5, float m6, float m7, float m8,
              float m9, float m10, float m11, float m12, float m13, float m14, float m15);
    /** Copies sixteen floats; null gives the identity. */
    R3XMATRIX(const float *values);
    R3XMATRIX(const R3XMATRIX &other) = default;
    /** Returns a copy of the new value. */
    R3XMATRIX operator=(const R3XMATRIX &other) {
        for (int i = 0; i < 16; ++i) m[i] = other.m[i];
        return *this;
    }

    /** Becomes the identity. */
    void setIdentity();
    /** Row 0 to 3; (0, 0, 0, 0) for any other index. */
    R3XVECTOR4D getRow(int row) const;
    /** Column 0 to 3; (0, 0, 0, 0) for any other index. */
    R3XVECTOR4D getColumn(int column) const;
    R3XVECTOR3D getTranslation() const { return R3XVECTOR3D(m[12], m[13], m[14]); }
    /** Writes the translation only; every other element keeps its value. */
    void setTranslation(float x, float y, float z) { m[12] = x, m[13] = y, m[14] = z; }
    void setTranslation(const R3XVECTOR3D &v) { setTranslation(v.x, v.y, v.z); }
    /** Writes m[0], m[5], m[10] only; every other element keeps its value. */
    void setScaling(const R3XVECTOR3D &v) { m[0] = v.x, m[5] = v.y, m[10] = v.z; }

    /** The transform that applies this matrix first and `other` second. */
    R3XMATRIX operator*(const R3XMATRIX &other) const;
    /** Becomes `*this * other`. Returns a copy. */
    R3XMATRIX operator*=(const R3XMATRIX &other) { return *this = *this * other; }

    /** Matrix times (x, y, z, 1), (x, y, 0, 1) or (x, y, z, w); there is no division by the resulting w. */
    R3XVECTOR4D transform(const R3XVECTOR3D &v) const;
    R3XVECTOR4D transform(const R3XVECTOR2D &v) const;
    R3XVECTOR4D transform(const R3XVECTOR4D &v) const;
    /** The upper 3x3 times (x, y, z) or (x, y, 0), without the translation; w is ignored. */
    R3XVECTOR3D rotate(const R3XVECTOR4D &v) const;
    R3XVECTOR3D rotate(const R3XVECTOR2D &v) const;

    /** Transposes all sixteen elements in place. */
    void transpose();
    /** Determinant of the upper 3x3. */
    float determinant() const;
    /** The inverse of an affine transform; the bottom row is taken to be (0, 0, 0, 1). */
    R3XMATRIX inverse() const;
    /** Becomes its inverse. */
    void invert() { *this = inverse(); }

    /** Becomes the rotation about the axis (x, y, z), which is used as given: it should have length 1. */
    void setRotation(float angle, float x, float y, float z);
    /** Rotation about one axis. Deliberate, since applications rely on it: all three write 1 into m[12] and
     * leave m[15] alone. A pure rotation is made with `setRotation`. */
    void setRotationX(float angle);
    void setRotationY(float angle);
    void setRotationZ(float angle);

    /** Becomes the rotation of a quaternion of length 1. Returns a copy. */
    R3XMATRIX fromQuaternion(const R3XVECTOR4D &q);
    /**
     * The rotation as a quaternion, as `fromQuaternion` takes it for a positive trace; for other traces the
     * vector part has the opposite sign relative to w. The name is spelled so.
     */
    R3XVECTOR4D toQuaterion() const;
    /** The rotation as a quaternion that turns the same way as `setRotation`; the form that skinning shaders
     * read. */
    R3XVECTOR4D toQuaternionVelto() const;
    /** Euler angles in degrees. At the poles, |m[4]| above 0.998, the +-90 stands in y; elsewhere that angle
     * is z. */
    R3XVECTOR3D toEuler() const;

    float m[16];  ///< Column by column; may be handed to the GL as it is.
};

#endif
