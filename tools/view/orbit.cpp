// SPDX-License-Identifier: Zlib
#include "tools/view/orbit.h"

#include <algorithm>
#include <cmath>

namespace keltra::view {
namespace {

// Models of these radii are not scaled. Beyond them distances exceed 16.16, or clipping planes lose
// precision.
constexpr float kLargest = 2048.0f, kSmallest = 0.25f;
constexpr float kNearest = 0.03f, kFarthest = 2.2f;  // of the fitting distance
constexpr float kSteepest = 88.0f;                   // degrees: no flip over the poles
constexpr float kYaw = -28.0f, kPitch = 12.0f;       // three quarters, slightly from above
constexpr float kMargin = 1.06f;
constexpr float kLeastNear = 0.02f;         // of the distance; keeps the 16 bits of depth apart
constexpr float kFarthestPlane = 32000.0f;  // within 16.16
// Relative to a sky's radius: the end of the model, and the smallest range of the camera.
constexpr float kSkyReach = 0.95f, kSkyLeast = 0.1f;
constexpr float kFullTurn = 360.0f, kDegree = 3.14159265f / 180.0f;

R3XMATRIX translation(float x, float y, float z) {
    R3XMATRIX matrix;
    matrix.setTranslation(x, y, z);
    return matrix;
}

R3XMATRIX rotation(float degrees, float x, float y) {
    R3XMATRIX matrix;
    matrix.setRotation(degrees, x, y, 0.0f);
    return matrix;
}

}  // namespace

Orbit::Orbit(int width, int height)
    : width(width), height(height), rows{0, height}, yawAngle(kYaw), pitchAngle(kPitch) {
    fit();
}

void Orbit::frame(const Extent &extent, float sky) {
    model = extent;
    skyRadius = sky;
    if (sky > 0.0f) {
        const R3XVECTOR3D way = extent.core - extent.centre;
        model.centre = extent.core;
        model.radius += std::hypot(way.x, way.y, way.z);
    }
    size = 1.0f;
    if (model.radius > kLargest) size = kLargest / model.radius;
    if (model.radius < kSmallest) size = kSmallest / model.radius;
    fit();
}

// Vertically the bounding sphere must fit; horizontally an upright cylinder is enough for all yaw angles.
void Orbit::fit() {
    const bool within = skyRadius > 0.0f;
    const float half = std::tan(0.5f * kAngleOfView * kDegree);
    const float down = half * static_cast<float>(rows.bottom - rows.top) / static_cast<float>(height);
    const float across = half * static_cast<float>(width) / static_cast<float>(height);
    const float forHeight = (within ? model.coreRadius : model.radius) / std::sin(std::atan(down));
    const float forWidth = (within ? model.coreRadius : model.girth) / std::sin(std::atan(across));
    fitDistance = kMargin * size * std::max(forHeight, forWidth);
    farthest = kFarthest;
    if (within) {
        const float reach = size * std::max(kSkyReach * skyRadius - model.radius, kSkyLeast * skyRadius);
        fitDistance = std::min(fitDistance, reach);
        farthest = std::min(kFarthest, reach / fitDistance);
    }
    away = std::min(away, farthest);
}

void Orbit::setFreeRows(FreeRows free) { rows = free; }

void Orbit::reset() {
    look(kYaw, kPitch);
    away = 1.0f;
    fit();
}

void Orbit::turn(float right, float down) { look(yawAngle + right, pitchAngle + down); }

void Orbit::look(float yaw, float pitch) {
    yawAngle = std::remainder(yaw, kFullTurn);
    pitchAngle = std::clamp(pitch, -kSteepest, kSteepest);
}

void Orbit::zoom(float factor) { away = std::clamp(away / factor, kNearest, farthest); }

void Orbit::setZoomShare(float share) {
    away = kNearest * std::pow(farthest / kNearest, std::clamp(share, 0.0f, 1.0f));
}

float Orbit::zoomShare() const { return std::log(away / kNearest) / std::log(farthest / kNearest); }

R3XMATRIX Orbit::view() const {
    R3XMATRIX scaling;
    scaling.setScaling(R3XVECTOR3D(size, size, size));
    // The middle of the free rows, upward, relative to half the screen.
    const float middle = 0.5f * static_cast<float>(rows.top + rows.bottom);
    const float lift = 1.0f - middle / (0.5f * static_cast<float>(height));
    const float up = lift * distance() * std::tan(0.5f * kAngleOfView * kDegree);
    return translation(-model.centre.x, -model.centre.y, -model.centre.z) * scaling *
           rotation(yawAngle, 0.0f, 1.0f) * rotation(pitchAngle, 1.0f, 0.0f) *
           translation(0.0f, up, -distance());
}

float Orbit::nearPlane() const { return std::max(distance() - 1.2f * radius(), kLeastNear * distance()); }

float Orbit::farPlane() const {
    return std::min(std::max(distance() + 1.5f * radius(), 1.05f * size * skyRadius), kFarthestPlane);
}

}  // namespace keltra::view
