// SPDX-License-Identifier: Zlib
#ifndef KELTRA_VECTOR_H
#define KELTRA_VECTOR_H

/** @file
 *
 * Value vectors of 2, 3 and 4 floats. The components are contiguous and in order. Constructors and `set`
 * narrow doubles and convert integers to float, mixed as they come; a null pointer to floats counts as
 * absent: the vector keeps its default or its value. Arithmetic works component by component, in float;
 * comparisons are exact. Compound assignments return a copy of the new value. Nothing guards against a
 * division by zero except where a call says so. Angles are in radians here. */

#include <keltra/export.h>

#include <type_traits>

#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wshadow"  // parameters are named after the components that they set
#endif

namespace keltra {

/** Lets calls with mixed numbers, (1, 2, 3.0f), through beside the forms for float, double and int alone. */
template <class A, class B, class C = int, class D = int>
using IfNumbers = typename std::enable_if<std::is_arithmetic<A>::value && std::is_arithmetic<B>::value &&
                                          std::is_arithmetic<C>::value && std::is_arithmetic<D>::value>::type;

}  // namespace keltra

/** Two floats: a point or size in the plane. */
class KT_API R3XVECTOR2D {
   public:
    /** (0, 0). */
    R3XVECTOR2D() : x(0.0f), y(0.0f) {}
    R3XVECTOR2D(float x, float y) : x(x), y(y) {}
    R3XVECTOR2D(double x, double y) : x(float(x)), y(float(y)) {}
    R3XVECTOR2D(int x, int y) : x(float(x)), y(float(y)) {}
    template <class A, class B, class = keltra::IfNumbers<A, B>>
    R3XVECTOR2D(A x, B y) : x(float(x)), y(float(y)) {}
    /** Copies two floats. */
    R3XVECTOR2D(const float *values) : R3XVECTOR2D() { set(values); }
    R3XVECTOR2D(const R3XVECTOR2D &) = default;
    R3XVECTOR2D &operator=(const R3XVECTOR2D &) = default;

    /** Sets every component to 0. */
    void reset() { x = y = 0.0f; }
    /** The forms of `set` match the constructors and return a copy of the new value. */
    R3XVECTOR2D set(float x, float y) { return *this = R3XVECTOR2D(x, y); }
    R3XVECTOR2D set(double x, double y) { return *this = R3XVECTOR2D(x, y); }
    R3XVECTOR2D set(int x, int y) { return *this = R3XVECTOR2D(x, y); }
    template <class A, class B, class = keltra::IfNumbers<A, B>>
    R3XVECTOR2D set(A x, B y) {
        return *this = R3XVECTOR2D(x, y);
    }
    R3XVECTOR2D set(const float *values) { return values ? set(values[0], values[1]) : *this; }

    /** Component 0 or 1; any other index ends the process with exit status 1. */
    float &operator[](int index);
    const float &operator[](int index) const;

    R3XVECTOR2D operator-() const { return R3XVECTOR2D(-x, -y); }
    R3XVECTOR2D operator+() const { return *this; }
    R3XVECTOR2D operator+(const R3XVECTOR2D &other) const { return R3XVECTOR2D(x + other.x, y + other.y); }
    R3XVECTOR2D operator-(const R3XVECTOR2D &other) const { return R3XVECTOR2D(x - other.x, y - other.y); }
    R3XVECTOR2D operator*(const R3XVECTOR2D &other) const { return R3XVECTOR2D(x * other.x, y * other.y); }
    R3XVECTOR2D operator/(const R3XVECTOR2D &other) const { return R3XVECTOR2D(x / other.x, y / other.y); }
    R3XVECTOR2D operator+(float number) const { return R3XVECTOR2D(x + number, y + number); }
    R3XVECTOR2D operator-(float number) const { return R3XVECTOR2D(x - number, y - number); }
    R3XVECTOR2D operator*(float number) const { return R3XVECTOR2D(x * number, y * number); }
    /** Multiplies by the reciprocal, taken once. */
    R3XVECTOR2D operator/(float number) const { return *this * (1.0f / number); }
    /** Dot product. */
    float operator%(const R3XVECTOR2D &other) const { return y * other.y + x * other.x; }

    R3XVECTOR2D operator+=(const R3XVECTOR2D &other) { return *this = *this + other; }
    R3XVECTOR2D operator-=(const R3XVECTOR2D &other) { return *this = *this - other; }
    R3XVECTOR2D operator*=(const R3XVECTOR2D &other) { return *this = *this * other; }
    R3XVECTOR2D operator/=(const R3XVECTOR2D &other) { return *this = *this / other; }
    R3XVECTOR2D operator*=(float number) { return *this = *this * number; }
    R3XVECTOR2D operator/=(float number) { return *this = *this / number; }

    int operator==(const R3XVECTOR2D &other) const { return x == other.x && y == other.y; }
    int operator!=(const R3XVECTOR2D &other) const { return x != other.x || y != other.y; }

    /** Euclidean length, and its square. */
    float length() const;
    float squaredLength() const { return x * x + y * y; }
    /** Scales to the given length; a zero vector becomes not-a-number. Returns a copy of the new value. */
    R3XVECTOR2D setLength(float newLength) { return *this *= newLength / length(); }
    /** Scales to length 1; a zero vector stays zero. Returns a copy of the new value. */
    R3XVECTOR2D normalize();
    /** The point at `t` on the way from here (0) to `other` (1). */
    R3XVECTOR2D lerp(const R3XVECTOR2D &other, float t) const { return *this + (other - *this) * t; }
    float distance(const R3XVECTOR2D &other) const { return (other - *this).length(); }
    /** Angle between two directions, 0 to pi; 0.0 when one of them is zero. */
    double angle(const R3XVECTOR2D &other) const;

    float x, y;
};

/** Three floats: a point, direction or set of Euler angles. */
class KT_API R3XVECTOR3D {
   public:
    /** (0, 0, 0). */
    R3XVECTOR3D() : x(0.0f), y(0.0f), z(0.0f) {}
    R3XVECTOR3D(float x, float y, float z) : x(x), y(y), z(z) {}
    R3XVECTOR3D(double x, double y, double z) : x(float(x)), y(float(y)), z(float(z)) {}
    R3XVECTOR3D(int x, int y, int z) : x(float(x)), y(float(y)), z(float(z)) {}
    template <class A, class B, class C, class = keltra::IfNumbers<A, B, C>>
    R3XVECTOR3D(A x, B y, C z) : x(float(x)), y(float(y)), z(float(z)) {}
    /** Copies three floats. */
    R3XVECTOR3D(const float *values) : R3XVECTOR3D() { set(values); }
    /** z becomes 0. */
    R3XVECTOR3D(const R3XVECTOR2D &other) : x(other.x), y(other.y), z(0.0f) {}
    R3XVECTOR3D(const R3XVECTOR3D &) = default;
    R3XVECTOR3D &operator=(const R3XVECTOR3D &) = default;
    /** z becomes 0. Returns a copy of the new value. */
    R3XVECTOR3D operator=(const R3XVECTOR2D &other) { return *this = R3XVECTOR3D(other); }

    /** Sets every component to 0. */
    void reset() { x = y = z = 0.0f; }
    /** The forms of `set` match the constructors and return a copy of the new value. */
    R3XVECTOR3D set(float x, float y, float z) { return *this = R3XVECTOR3D(x, y, z); }
    R3XVECTOR3D set(double x, double y, double z) { return *this = R3XVECTOR3D(x, y, z); }
    R3XVECTOR3D set(int x, int y, int z) { return *this = R3XVECTOR3D(x, y, z); }
    template <class A, class B, class C, class = keltra::IfNumbers<A, B, C>>
    R3XVECTOR3D set(A x, B y, C z) {
        return *this = R3XVECTOR3D(x, y, z);
    }
    R3XVECTOR3D set(const float *values) { return values ? set(values[0], values[1], values[2]) : *this; }

    /** Component 0 to 2; any other index ends the process with exit status 1. */
    float &operator[](int index);
    const float &operator[](int index) const;

    R3XVECTOR3D operator-() const { return R3XVECTOR3D(-x, -y, -z); }
    R3XVECTOR3D operator+() const { return *this; }
    R3XVECTOR3D operator+(const R3XVECTOR3D &other) const {
        return R3XVECTOR3D(x + other.x, y + other.y, z + other.z);
    }
    R3XVECTOR3D operator-(const R3XVECTOR3D &other) const {
        return R3XVECTOR3D(x - other.x, y - other.y, z - other.z);
    }
    R3XVECTOR3D operator*(const R3XVECTOR3D &other) const {
        return R3XVECTOR3D(x * other.x, y * other.y, z * other.z);
    }
    R3XVECTOR3D operator/(const R3XVECTOR3D &other) const {
        return R3XVECTOR3D(x / other.x, y / other.y, z / other.z);
    }
    R3XVECTOR3D operator+(float number) const { return R3XVECTOR3D(x + number, y + number, z + number); }
    R3XVECTOR3D operator-(float number) const { return R3XVECTOR3D(x - number, y - number, z - number); }
    R3XVECTOR3D operator*(float number) const { return R3XVECTOR3D(x * number, y * number, z * number); }
    /** Multiplies by the reciprocal, taken once. */
    R3XVECTOR3D operator/(float number) const { return *this * (1.0f / number); }
    /** Dot product. */
    float operator%(const R3XVECTOR3D &other) const { return z * other.z + y * other.y + x * other.x; }
    /** Cross product. */
    R3XVECTOR3D operator^(const R3XVECTOR3D &other) const {
        return R3XVECTOR3D(y * other.z - z * other.y, other.x * z - x * other.z, x * other.y - other.x * y);
    }

    R3XVECTOR3D operator+=(const R3XVECTOR3D &other) { return *this = *this + other; }
    R3XVECTOR3D operator-=(const R3XVECTOR3D &other) { return *this = *this - other; }
    R3XVECTOR3D operator*=(const R3XVECTOR3D &other) { return *this = *this * other; }
    R3XVECTOR3D operator/=(const R3XVECTOR3D &other) { return *this = *this / other; }
    R3XVECTOR3D operator*=(float number) { return *this = *this * number; }
    R3XVECTOR3D operator/=(float number) { return *this = *this / number; }

    int operator==(const R3XVECTOR3D &other) const { return x == other.x && y == other.y && z == other.z; }
    int operator!=(const R3XVECTOR3D &other) const { return x != other.x || y != other.y || z != other.z; }

    /** Euclidean length, and its square. */
    float length() const;
    float squaredLength() const { return x * x + y * y + z * z; }
    /** Scales to the given length; a zero vector becomes not-a-number. Returns a copy of the new value. */
    R3XVECTOR3D setLength(float newLength) { return *this *= newLength / length(); }
    /** Scales to length 1; a zero vector stays zero. Returns a copy of the new value. */
    R3XVECTOR3D normalize();
    /** The point at `t` on the way from here (0) to `other` (1). */
    R3XVECTOR3D lerp(const R3XVECTOR3D &other, float t) const { return *this + (other - *this) * t; }
    float distance(const R3XVECTOR3D &other) const { return (other - *this).length(); }
    /** Angle between two directions, 0 to pi; 0.0 when one of them is zero. */
    double angle(const R3XVECTOR3D &other) const;

    float x, y, z;
};

/** Four floats: a homogeneous point, a quaternion with w as scalar part, or an RGBA colour. */
class KT_API R3XVECTOR4D {
   public:
    /** (0, 0, 0, 1); `reset` differs. */
    R3XVECTOR4D() : x(0.0f), y(0.0f), z(0.0f), w(1.0f) {}
    R3XVECTOR4D(float x, float y, float z, float w) : x(x), y(y), z(z), w(w) {}
    R3XVECTOR4D(double x, double y, double z, double w)
        : x(float(x)), y(float(y)), z(float(z)), w(float(w)) {}
    R3XVECTOR4D(int x, int y, int z, int w) : x(float(x)), y(float(y)), z(float(z)), w(float(w)) {}
    template <class A, class B, class C, class D, class = keltra::IfNumbers<A, B, C, D>>
    R3XVECTOR4D(A x, B y, C z, D w) : x(float(x)), y(float(y)), z(float(z)), w(float(w)) {}
    /** Copies four floats. */
    R3XVECTOR4D(const float *values) : R3XVECTOR4D() { set(values); }
    /** z becomes 0, w becomes 1. */
    R3XVECTOR4D(const R3XVECTOR2D &other) : x(other.x), y(other.y), z(0.0f), w(1.0f) {}
    /** w becomes 1. */
    R3XVECTOR4D(const R3XVECTOR3D &other) : x(other.x), y(other.y), z(other.z), w(1.0f) {}
    R3XVECTOR4D(const R3XVECTOR4D &) = default;
    R3XVECTOR4D &operator=(const R3XVECTOR4D &) = default;
    /** z becomes 0, w becomes 1. Returns a copy of the new value. */
    R3XVECTOR4D operator=(const R3XVECTOR2D &other) { return *this = R3XVECTOR4D(other); }
    /** w becomes 1. Returns a copy of the new value. */
    R3XVECTOR4D operator=(const R3XVECTOR3D &other) { return *this = R3XVECTOR4D(other); }

    /** Sets every component to 0, w too. */
    void reset() { x = y = z = w = 0.0f; }
    /** The forms of `set` match the constructors and return a copy of the new value. */
    R3XVECTOR4D set(float x, float y, float z, float w) { return *this = R3XVECTOR4D(x, y, z, w); }
    R3XVECTOR4D set(double x, double y, double z, double w) { return *this = R3XVECTOR4D(x, y, z, w); }
    R3XVECTOR4D set(int x, int y, int z, int w) { return *this = R3XVECTOR4D(x, y, z, w); }
    template <class A, class B, class C, class D, class = keltra::IfNumbers<A, B, C, D>>
    R3XVECTOR4D set(A x, B y, C z, D w) {
        return *this = R3XVECTOR4D(x, y, z, w);
    }
    R3XVECTOR4D set(const float *values) {
        return values ? set(values[0], values[1], values[2], values[3]) : *this;
    }

    /** Component 0 to 3; any other index ends the process with exit status 1. */
    float &operator[](int index);
    const float &operator[](int index) const;

    R3XVECTOR4D operator-() const { return R3XVECTOR4D(-x, -y, -z, -w); }
    R3XVECTOR4D operator+() const { return *this; }
    R3XVECTOR4D operator+(const R3XVECTOR4D &other) const {
        return R3XVECTOR4D(x + other.x, y + other.y, z + other.z, w + other.w);
    }
    R3XVECTOR4D operator-(const R3XVECTOR4D &other) const {
        return R3XVECTOR4D(x - other.x, y - other.y, z - other.z, w - other.w);
    }
    R3XVECTOR4D operator*(const R3XVECTOR4D &other) const {
        return R3XVECTOR4D(x * other.x, y * other.y, z * other.z, w * other.w);
    }
    R3XVECTOR4D operator/(const R3XVECTOR4D &other) const {
        return R3XVECTOR4D(x / other.x, y / other.y, z / other.z, w / other.w);
    }
    R3XVECTOR4D operator+(float number) const {
        return R3XVECTOR4D(x + number, y + number, z + number, w + number);
    }
    R3XVECTOR4D operator-(float number) const {
        return R3XVECTOR4D(x - number, y - number, z - number, w - number);
    }
    R3XVECTOR4D operator*(float number) const {
        return R3XVECTOR4D(x * number, y * number, z * number, w * number);
    }
    /** Multiplies by the reciprocal, taken once. */
    R3XVECTOR4D operator/(float number) const { return *this * (1.0f / number); }
    /** Dot product. */
    float operator%(const R3XVECTOR4D &other) const {
        return w * other.w + z * other.z + y * other.y + x * other.x;
    }

    R3XVECTOR4D operator+=(const R3XVECTOR4D &other) { return *this = *this + other; }
    R3XVECTOR4D operator-=(const R3XVECTOR4D &other) { return *this = *this - other; }
    R3XVECTOR4D operator*=(const R3XVECTOR4D &other) { return *this = *this * other; }
    R3XVECTOR4D operator/=(const R3XVECTOR4D &other) { return *this = *this / other; }
    R3XVECTOR4D operator*=(float number) { return *this = *this * number; }
    R3XVECTOR4D operator/=(float number) { return *this = *this / number; }

    int operator==(const R3XVECTOR4D &other) const {
        return x == other.x && y == other.y && z == other.z && w == other.w;
    }
    int operator!=(const R3XVECTOR4D &other) const {
        return x != other.x || y != other.y || z != other.z || w != other.w;
    }

    /** Euclidean length, and its square. */
    float length() const;
    float squaredLength() const { return x * x + y * y + z * z + w * w; }
    /** Scales to the given length; a zero vector becomes not-a-number. Returns a copy of the new value. */
    R3XVECTOR4D setLength(float newLength) { return *this *= newLength / length(); }
    /** Scales to length 1; a zero vector stays zero. Returns a copy of the new value. */
    R3XVECTOR4D normalize();
    /** The point at `t` on the way from here (0) to `other` (1). */
    R3XVECTOR4D lerp(const R3XVECTOR4D &other, float t) const { return *this + (other - *this) * t; }
    /** Deliberate, since applications rely on it: the sum of squares has a fourth term, between the
     * argument's z and this vector's w. */
    float distance(const R3XVECTOR3D &other) const;
    /** Angle between two directions, 0 to pi; 0.0 when one of them is zero. */
    double angle(const R3XVECTOR4D &other) const;

    /** Becomes (0, 0, 0, 1). Returns a copy. */
    R3XVECTOR4D quaternionSetIdentity() { return *this = R3XVECTOR4D(); }
    /** Becomes the rotation by three Euler angles. Returns a copy. */
    R3XVECTOR4D quaternionSetEulers(float a, float b, float c);
    R3XVECTOR4D quaternionSetEulers(const R3XVECTOR3D &v) { return quaternionSetEulers(v.x, v.y, v.z); }
    /** Deliberate, since applications rely on it: the vector part (x, y, z), not converted to angles. */
    R3XVECTOR3D quaternionGetEulers() const { return R3XVECTOR3D(x, y, z); }
    /** The axis in x, y, z and the angle in w; (0, 1, 0, angle) for an angle below 0.0001. */
    R3XVECTOR4D quaternionGetAxisAngles() const;
    /** The conjugate; it is not divided by the norm. */
    R3XVECTOR4D quaternionInverted() const { return R3XVECTOR4D(-x, -y, -z, w); }
    /** Becomes its conjugate. Returns a copy. */
    R3XVECTOR4D quaternionInvert() { return *this = quaternionInverted(); }
    /** The Hamilton product of this quaternion and `q`, in this order. */
    R3XVECTOR4D quaternionMultiply(const R3XVECTOR4D &q) const;

    float x, y, z, w;
};

#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif

#endif
