// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TESTS_TOOLS_CONVERT_SUPPORT_POINTS_H
#define KELTRA_TESTS_TOOLS_CONVERT_SUPPORT_POINTS_H

// Points of a moving model, and how far two models are apart that do not keep their vertices in one order.

#include <cstddef>
#include <vector>

namespace keltra::test {

struct Point {
    double x = 0.0, y = 0.0, z = 0.0;
};

inline Point operator+(Point a, Point b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
inline Point operator-(Point a, Point b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
inline Point operator*(Point a, double s) { return {a.x * s, a.y * s, a.z * s}; }
inline double dot(Point a, Point b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
inline Point cross(Point a, Point b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
double length(Point a);
bool isFinite(Point a);

/// What is compared of one moment: the corners of all triangles, and the middles of the triangles.
struct Shape {
    std::vector<Point> corners, middles;
};

/// Diagonal of the box around the points of all moments.
double extent(const std::vector<std::vector<Point>> &moments);

/// How far `from` is away from `to` at worst. Each is a list of moments with the same points in the same
/// order; the two need not have the same points. A point's partner is the one that stays nearest to it
/// through all moments, so points that coincide in one moment only are distinguished.
struct Gap {
    double largest = 0.0;
    std::size_t point = 0;     // of `from`, the one that is that far away
    std::size_t outliers = 0;  // points farther than `near`
};

/// `counts`, when not empty, says which points of `from` are asked about. Partners within `near` are found
/// exactly; when there is none, the gap is exact for the first few points and at least that for the rest.
Gap findGap(const std::vector<std::vector<Point>> &from, const std::vector<bool> &counts,
            const std::vector<std::vector<Point>> &to, double near);

}  // namespace keltra::test

#endif
