// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FORMATS_VEC_H
#define KELTRA_FORMATS_VEC_H

// The writers' own small value types.

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

}  // namespace keltra::formats

#endif
