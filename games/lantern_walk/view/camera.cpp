// SPDX-License-Identifier: Zlib
#include "games/lantern_walk/view/camera.h"

#include <algorithm>
#include <cmath>

namespace lantern_walk {
namespace {

const R3XVECTOR3D kBehind(0.0f, 5.6f, 10.6f), kAhead(0.0f, 2.5f, -3.5f);
constexpr float kCatchUp = 3.0f;  // about so much of the way a second, times
constexpr float kSide = 0.72f;    // of the boy's way to the sides: the path stays in view
constexpr float kBack = 2.0f;     // units that it draws back, so that the way south is in view
constexpr float kDegrees = 57.29578f;

}  // namespace

Eye::Eye() { camera.setTargetNode(&camera); /* itself: it looks at its fixed target */ }

void Eye::follow(float seconds) { go(false, seconds); }

void Eye::showTitle(float seconds) { go(true, seconds); }

void Eye::go(bool toTitle, float seconds) {
    former = shown;
    isTitle = toTitle;
    if (!toTitle) isPlaced = false;
    change.start(0.0f, 1.0f, seconds);
}

Eye::Aim Eye::aimAtTitle(R3XVECTOR3D boy, float time) {
    const float sway = std::sin(0.21f * time);
    Aim aim;
    aim.eye = boy + R3XVECTOR3D(-0.6f + 1.6f * sway, 3.0f + 0.25f * std::sin(0.17f * time), 8.6f);
    aim.target = boy + R3XVECTOR3D(-0.8f + 0.1f * sway, 2.2f, -3.0f);
    return aim;
}

void Eye::update(R3XVECTOR3D boy, float south, float seconds, float time) {
    const R3XVECTOR3D base(kSide * boy.x, 0.0f, std::max(boy.z, -11.0f) + kBack * south);
    const float part = isPlaced ? 1.0f - std::exp(-kCatchUp * seconds) : 1.0f;
    isPlaced = true;
    followed.eye = followed.eye.lerp(base + kBehind, part);
    followed.target = followed.target.lerp(base + kAhead, part);
    const Aim wanted = isTitle ? aimAtTitle(boy, time) : followed;
    const float way = change.update(seconds);
    shown.eye = former.eye.lerp(wanted.eye, way);
    shown.target = former.target.lerp(wanted.target, way);
    if (change.hasEnded()) shown = wanted;
    camera.setPosition(shown.eye);
    camera.setTarget(shown.target);
    azimuth = std::atan2(shown.eye.x - shown.target.x, shown.eye.z - shown.target.z) * kDegrees;
}

}  // namespace lantern_walk
