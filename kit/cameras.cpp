// SPDX-License-Identifier: Zlib
#include <keltra/kit/cameras.h>

#include <keltra/camera.h>
#include <keltra/matrix.h>

#include "kit/fault.h"
#include "kit/transform.h"

#include <algorithm>

const unsigned int KTRAIL::maxPoints;

namespace {

float between(float value, float low, float high) { return std::max(low, std::min(value, high)); }

void place(KTCAMERA *camera, const R3XVECTOR3D &eye, const R3XVECTOR3D &look) {
    camera->setPosition(eye);
    camera->setTarget(look);
    camera->setTargetNode(camera);  // itself: it looks at the fixed target
}

R3XMATRIX turnAboutY(float degrees) {
    R3XMATRIX turn;
    turn.setRotation(degrees, 0.0f, 1.0f, 0.0f);
    return turn;
}

// A Catmull-Rom curve from b to c.
R3XVECTOR3D curve(const R3XVECTOR3D &a, const R3XVECTOR3D &b, const R3XVECTOR3D &c, const R3XVECTOR3D &d,
                  float t) {
    const float t2 = t * t, t3 = t2 * t;
    return (a * (2.0f * t2 - t3 - t) + b * (2.0f - 5.0f * t2 + 3.0f * t3) + c * (t + 4.0f * t2 - 3.0f * t3) +
            d * (t3 - t2)) *
           0.5f;
}

}  // namespace

KTORBIT::KTORBIT()
    : azimuth(0.0f),
      elevation(20.0f),
      distance(10.0f),
      lowest(2.0f),
      highest(85.0f),
      nearest(1.0f),
      farthest(1000.0f) {}

void KTORBIT::setAngles(float azimuthDegrees, float elevationDegrees) {
    azimuth = azimuthDegrees;
    elevation = between(elevationDegrees, lowest, highest);
}

void KTORBIT::setDistance(float units) { distance = between(units, nearest, farthest); }

void KTORBIT::setElevationLimits(float low, float high) {
    lowest = between(low, -85.0f, 85.0f);
    highest = between(high, lowest, 85.0f);
    setAngles(azimuth, elevation);
}

void KTORBIT::setDistanceLimits(float near, float far) {
    nearest = std::max(near, 0.1f);
    farthest = std::max(far, nearest);
    setDistance(distance);
}

void KTORBIT::update(KTCAMERA *camera) const {
    if (!camera) return;
    R3XMATRIX tilt;
    tilt.setRotation(-elevation, 1.0f, 0.0f, 0.0f);
    const R3XVECTOR3D way = (tilt * turnAboutY(azimuth)).rotate(R3XVECTOR4D(0.0f, 0.0f, distance, 0.0f));
    place(camera, center + way, center);
}

KTFOLLOW::KTFOLLOW()
    : node(nullptr), offset(0.0f, 2.5f, 4.0f), lookHeight(1.2f), speed(4.0f), isPlaced(false) {}

void KTFOLLOW::setNode(KTNODE *followed) {
    node = followed;
    isPlaced = false;
}

// A part of the way that is stable for frames of any length.
void KTFOLLOW::update(KTCAMERA *camera, float seconds) {
    if (!camera || !node) return;
    const R3XVECTOR3D at = keltra::kit::matrixTo(*node, nullptr).getTranslation();
    const R3XVECTOR3D wanted = at + turnAboutY(node->rotation.y).rotate(R3XVECTOR4D(offset));
    const R3XVECTOR3D wantedLook(at.x, at.y + lookHeight, at.z);
    const float way = speed * seconds, part = isPlaced && speed > 0.0f ? way / (1.0f + way) : 1.0f;
    eye = eye.lerp(wanted, part);
    look = look.lerp(wantedLook, part);
    isPlaced = true;
    place(camera, eye, look);
}

KTRAIL::KTRAIL() : count(0), point(0), time(0.0f), loop(false) {}

void KTRAIL::clear() {
    count = 0;
    start();
}

bool KTRAIL::addPoint(const R3XVECTOR3D &at, const R3XVECTOR3D &lookAt, float seconds) {
    const char *const call = "KTRAIL::addPoint";
    if (!(seconds > 0.0f))
        return keltra::kit::fail(KT_FAULT_ARGUMENT, call, {nullptr, 0, "seconds", "0 or less", "above 0"});
    if (count == maxPoints)
        return keltra::kit::fail(KT_FAULT_FULL, call, {nullptr, 0, "points", nullptr, "32"});
    points[count].place = at;
    points[count].look = lookAt;
    points[count++].seconds = seconds;
    return true;
}

bool KTRAIL::hasEnded() const { return !loop && point + 1 >= count; }

// Before the first and after the last there are themselves, or the other end of the loop.
const KTRAIL::POINT &KTRAIL::pointAt(int index) const {
    const int last = static_cast<int>(count) - 1;
    if (loop) return points[(index + 2 * (last + 1)) % (last + 1)];
    return points[std::max(0, std::min(index, last))];
}

void KTRAIL::update(KTCAMERA *camera, float seconds) {
    if (!camera || count == 0) return;
    time += std::max(seconds, 0.0f);
    // A frame that is longer than all points together does not fly around more than once.
    for (unsigned int i = 0; i < count && !hasEnded() && time >= points[point].seconds; ++i) {
        time -= points[point].seconds;
        point = (point + 1) % count;
    }
    const int at = static_cast<int>(point);
    const float t = hasEnded() ? 0.0f : std::min(time / points[point].seconds, 1.0f);
    const POINT &a = pointAt(at - 1), &b = pointAt(at), &c = pointAt(at + 1), &d = pointAt(at + 2);
    place(camera, curve(a.place, b.place, c.place, d.place, t), curve(a.look, b.look, c.look, d.look, t));
}
