#ifndef KELTRA_FORMATS_VEC_H
#define KELTRA_FORMATS_VEC_H

// The writers' own small value types and the trigonometry of the sample
// scene. The sine is a polynomial made of additions and multiplications only:
// the C library's differs in its last bit from machine to machine, and the
// sample files must not.

#include <cmath>

namespace keltra::formats {

struct Vec2 {
    float x = 0.0f, y = 0.0f;
};

struct Vec3 {
    float x = 0.0f, y = 0.0f, z = 0.0f;
};

struct Color {
    float r = 0.0f, g = 0.0f, b = 0.0f, a = 1.0f;
};

inline Vec3 operator+(Vec3 a, Vec3 b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
inline Vec3 operator-(Vec3 a, Vec3 b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
inline Vec3 operator*(Vec3 v, float s) { return {v.x * s, v.y * s, v.z * s}; }
inline bool operator==(Vec3 a, Vec3 b) { return a.x == b.x && a.y == b.y && a.z == b.z; }

inline float dot(Vec3 a, Vec3 b) { return a.x * b.x + a.y * b.y + a.z * b.z; }

inline Vec3 cross(Vec3 a, Vec3 b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

inline float length(Vec3 v) { return std::sqrt(dot(v, v)); }

// A zero vector points up.
inline Vec3 normalized(Vec3 v) {
    const float size = length(v);
    return size > 0.0f ? v * (1.0f / size) : Vec3{0.0f, 1.0f, 0.0f};
}

inline float mix(float a, float b, float t) { return a + (b - a) * t; }
inline Vec3 mix(Vec3 a, Vec3 b, float t) { return a + (b - a) * t; }

// Smallest step of the 16.16 coordinates that the scene ends up in.
inline float onGrid(float value) { return std::floor(value * 65536.0f + 0.5f) * (1.0f / 65536.0f); }

inline Vec3 onGrid(Vec3 v) { return {onGrid(v.x), onGrid(v.y), onGrid(v.z)}; }

// Sine of an angle in degrees, to about 1/65536.
inline float sine(float degrees) {
    float turn = degrees * (1.0f / 360.0f);
    turn -= std::floor(turn + 0.5f);         // -0.5 .. 0.5
    if (turn > 0.25f) turn = 0.5f - turn;    // the sine is symmetric
    if (turn < -0.25f) turn = -0.5f - turn;  // about a quarter turn
    const float a = turn * 6.28318531f;
    const float s = a * a;
    return onGrid(a * (1.0f + s * (-1.0f / 6 + s * (1.0f / 120 + s * (-1.0f / 5040 + s * (1.0f / 362880))))));
}

inline float cosine(float degrees) { return sine(degrees + 90.0f); }

// `radius` away from the y axis; 0 degrees looks along +z, 90 along +x.
inline Vec3 polar(float degrees, float radius, float y) {
    return {sine(degrees) * radius, y, cosine(degrees) * radius};
}

}  // namespace keltra::formats

#endif
