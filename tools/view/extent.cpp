// SPDX-License-Identifier: Zlib
#include "tools/view/extent.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>

namespace keltra::view {
namespace {

constexpr float kSmallest = 1.0f / 65536.0f;  // radii below one step of 16.16 count as 0
constexpr float kLeastGirth = 0.05f;          // relative to the radius, for models like rods

bool isPlace(const R3XVECTOR3D &point) {
    return std::isfinite(point.x) && std::isfinite(point.y) && std::isfinite(point.z);
}

float quantile(std::vector<float> &values, double share) {
    const auto place =
        values.begin() + static_cast<std::ptrdiff_t>(share * static_cast<double>(values.size() - 1));
    std::nth_element(values.begin(), place, values.end());
    return *place;
}

void findCore(const std::vector<R3XVECTOR3D> &places, Extent &extent) {
    std::vector<float> values(places.size());
    const auto median = [&](float R3XVECTOR3D::*axis) {
        std::transform(places.begin(), places.end(), values.begin(),
                       [axis](const R3XVECTOR3D &place) { return place.*axis; });
        return quantile(values, 0.5);
    };
    const float x = median(&R3XVECTOR3D::x), y = median(&R3XVECTOR3D::y), z = median(&R3XVECTOR3D::z);
    extent.core.set(x, y, z);
    std::transform(places.begin(), places.end(), values.begin(), [&](const R3XVECTOR3D &place) {
        return std::hypot(place.x - x, place.y - y, place.z - z);
    });
    const float radius = quantile(values, 0.75);
    extent.coreRadius = radius > kSmallest ? radius : extent.radius;
}

}  // namespace

Extent extentOf(const std::vector<R3XVECTOR3D> &points) {
    std::vector<R3XVECTOR3D> places;
    std::copy_if(points.begin(), points.end(), std::back_inserter(places), isPlace);
    Extent extent;
    if (places.empty()) return extent;
    R3XVECTOR3D low = places[0], high = places[0];
    for (const R3XVECTOR3D &place : places) {
        low.set(std::min(low.x, place.x), std::min(low.y, place.y), std::min(low.z, place.z));
        high.set(std::max(high.x, place.x), std::max(high.y, place.y), std::max(high.z, place.z));
    }
    extent.centre = extent.core = (low + high) * 0.5f;
    float radius = 0.0f, girth = 0.0f;
    for (const R3XVECTOR3D &place : places) {
        const R3XVECTOR3D way = place - extent.centre;
        girth = std::max(girth, std::hypot(way.x, way.z));
        radius = std::max(radius, std::hypot(way.x, way.y, way.z));
    }
    if (radius <= kSmallest) return extent;
    extent.radius = radius;
    extent.girth = std::max(girth, kLeastGirth * radius);
    findCore(places, extent);
    return extent;
}

}  // namespace keltra::view
