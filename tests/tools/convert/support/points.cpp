// SPDX-License-Identifier: Zlib
#include "tests/tools/convert/support/points.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <unordered_map>

namespace keltra::test {
namespace {

using Moments = std::vector<std::vector<Point>>;

constexpr std::size_t kSearchedOutliers = 50;  // each costs a walk over all points

/// Points of one moment in cubes as wide as the reach of a search.
class Cubes {
   public:
    Cubes(const std::vector<Point> &points, double width) : width(width) {
        cubes.reserve(points.size());
        for (std::size_t i = 0; i < points.size(); ++i)
            if (isFinite(points[i])) cubes[key(cell(points[i]))].push_back(i);
    }

    template <class Visit>
    void visitAround(Point point, Visit visit) const {
        const Cell middle = cell(point);
        for (int x = -1; x <= 1; ++x) {
            for (int y = -1; y <= 1; ++y) {
                for (int z = -1; z <= 1; ++z) {
                    const auto found = cubes.find(key({middle[0] + x, middle[1] + y, middle[2] + z}));
                    if (found == cubes.end()) continue;
                    for (std::size_t i : found->second) visit(i);
                }
            }
        }
    }

   private:
    using Cell = std::array<std::int64_t, 3>;

    Cell cell(Point p) const {
        return {std::llround(p.x / width), std::llround(p.y / width), std::llround(p.z / width)};
    }
    // Cubes that share a key are looked into together, which costs time and finds nothing wrong.
    static std::uint64_t key(Cell c) {
        return (static_cast<std::uint64_t>(c[0]) * 0x9E3779B97F4A7C15u) ^
               (static_cast<std::uint64_t>(c[1]) * 0xC2B2AE3D27D4EB4Fu) ^
               (static_cast<std::uint64_t>(c[2]) * 0x165667B19E3779F9u);
    }

    double width;
    std::unordered_map<std::uint64_t, std::vector<std::size_t>> cubes;
};

/// The largest distance of two points over all moments, or any larger number once it exceeds `enough`.
double apart(const Moments &from, std::size_t i, const Moments &to, std::size_t j, double enough) {
    double largest = 0.0;
    for (std::size_t moment = 0; moment < from.size() && largest <= enough; ++moment) {
        const double distance = length(from[moment][i] - to[moment][j]);
        if (!(distance <= largest)) largest = distance;
    }
    return std::isnan(largest) ? std::numeric_limits<double>::infinity() : largest;
}

}  // namespace

double length(Point a) { return std::sqrt(dot(a, a)); }

bool isFinite(Point a) { return std::isfinite(a.x) && std::isfinite(a.y) && std::isfinite(a.z); }

double extent(const Moments &moments) {
    constexpr double kFar = std::numeric_limits<double>::infinity();
    Point low{kFar, kFar, kFar}, high{-kFar, -kFar, -kFar};
    for (const std::vector<Point> &points : moments) {
        for (Point p : points) {
            if (!isFinite(p)) continue;
            low = {std::min(low.x, p.x), std::min(low.y, p.y), std::min(low.z, p.z)};
            high = {std::max(high.x, p.x), std::max(high.y, p.y), std::max(high.z, p.z)};
        }
    }
    return low.x > high.x ? 0.0 : length(high - low);
}

Gap findGap(const Moments &from, const std::vector<bool> &counts, const Moments &to, double near) {
    Gap gap;
    if (from.empty() || from.front().empty()) return gap;
    const std::size_t targets = to.front().size();
    const Cubes cubes(to.front(), near);
    for (std::size_t i = 0; i < from.front().size(); ++i) {
        if (!counts.empty() && !counts[i]) continue;
        double best = std::numeric_limits<double>::infinity();
        const auto consider = [&](std::size_t j) { best = std::min(best, apart(from, i, to, j, best)); };
        if (isFinite(from.front()[i])) cubes.visitAround(from.front()[i], consider);
        if (best > near) {
            if (gap.outliers++ < kSearchedOutliers)
                for (std::size_t j = 0; j < targets; ++j) consider(j);
            else
                best = near;
        }
        if (best > gap.largest) {
            gap.largest = best;
            gap.point = i;
        }
    }
    return gap;
}

}  // namespace keltra::test
