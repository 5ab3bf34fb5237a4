// SPDX-License-Identifier: Zlib
#include "games/lantern_walk/view/lanterns.h"

#include <cmath>

#include "games/lantern_walk/view/nodes.h"

namespace lantern_walk {
namespace {

constexpr float kFade = 2.2f;  // of the glow in a second
constexpr float kHeight = 2.75f;
constexpr float kClear = 0.3f, kClearing = 1.3f;       // opacity, and units to the sides of the view
constexpr float kHalo = 0.92f, kPool = 0.62f;          // opacity when lit
constexpr float kUnlit = 0.0f, kEmission = 0.92f;      // of the paper's colour
constexpr float kBrightness = 1.15f, kReachQ = 0.11f;  // of the light

}  // namespace

bool LanternView::load(KTNODE *stage) {
    for (int i = 0; i < kMostLanterns; ++i) {
        const std::string number = std::to_string(i + 1);
        Parts &part = parts[i];
        part.post = stage->findByNameInHierarchy(("post" + number).c_str());
        part.west = findMesh(stage, "west" + number);
        part.east = findMesh(stage, "east" + number);
        part.paper = findMesh(stage, "lantern" + number);
        part.halo = findMesh(stage, "halo" + number);
        part.pool = findMesh(stage, "pool" + number);
        if (!part.post || !part.west || !part.east || !part.paper || !part.halo || !part.pool) return false;
        const unsigned code = kLanternCode + static_cast<unsigned>(i);
        for (KTMESH *mesh : {part.west, part.east, part.paper, part.halo}) mesh->setAuxId(code);
        part.color = part.paper->getMaterial()->getDiffuse();
        part.light = new KTLIGHT;  // the list of nodes owns it
        part.light->setAmbient(0.0f, 0.0f, 0.0f, 1.0f);
        part.light->setSpecular(0.0f, 0.0f, 0.0f, 1.0f);
        part.light->setAttenuation(0.7f, 0.0f, kReachQ);
    }
    return true;
}

void LanternView::arrange(const Evening &evening) {
    count = evening.lanterns;
    for (int i = 0; i < count; ++i) {
        const Place at = evening.lantern[i];
        parts[i].post->setPosition(at.x, 0.0f, at.z);
        // The arm points at the path.
        parts[i].west->setDisplayStatus(at.x <= 0.0f);
        parts[i].east->setDisplayStatus(at.x > 0.0f);
        parts[i].light->setPosition(getPlace(i) + R3XVECTOR3D(0.0f, -0.2f, 0.9f));
    }
    for (int i = count; i < kMostLanterns; ++i) parts[i].post->setPosition(0.0f, -50.0f, 60.0f);
}

void LanternView::clearView(R3XVECTOR3D eye, R3XVECTOR3D boy) {
    for (int i = 0; i < count; ++i) {
        const R3XVECTOR3D at = parts[i].post->getPosition();
        const float part = (at.z - boy.z) / (eye.z - boy.z);
        const float aside = std::fabs(at.x - boy.x - part * (eye.x - boy.x));
        wantedOpacity[i] = part > 0.1f && part < 1.0f && aside < kClearing ? kClear : 1.0f;
    }
}

void LanternView::light(int lit) {
    for (int i = 0; i < kMostLanterns; ++i) {
        wanted[i] = glow[i] = (lit >> i & 1) != 0 ? 1.0f : 0.0f;
        opacity[i] = wantedOpacity[i] = 1.0f;
        show(i, 1.0f);
    }
}

void LanternView::update(float seconds, float time, float azimuth) {
    for (int i = 0; i < count; ++i) {
        const float step = kFade * seconds;
        glow[i] += std::fmax(-step, std::fmin(step, wanted[i] - glow[i]));
        opacity[i] += std::fmax(-step, std::fmin(step, wantedOpacity[i] - opacity[i]));
        const float phase = static_cast<float>(i);
        show(i, 0.94f + 0.06f * std::sin(5.0f * time + 1.7f * phase) * std::sin(3.1f * time + phase));
        parts[i].halo->setRotation(0.0f, azimuth, 0.0f);
        parts[i].paper->setRotation(2.0f * std::sin(0.9f * time + phase), 0.0f,
                                    3.0f * std::sin(1.3f * time + 2.0f * phase));
    }
}

void LanternView::show(int lantern, float flicker) const {
    const Parts &part = parts[lantern];
    const float strength = glow[lantern] * flicker;
    const bool isGlowing = strength > 0.01f;
    part.halo->setDisplayStatus(isGlowing);
    part.pool->setDisplayStatus(isGlowing);
    part.paper->getMaterial()->setEmission(part.color * (kUnlit + (kEmission - kUnlit) * strength));
    part.paper->getMaterial()->setTransparency(opacity[lantern]);
    part.halo->getMaterial()->setTransparency(kHalo * strength * opacity[lantern]);
    part.pool->getMaterial()->setTransparency(kPool * strength);
    // White in the middle of the spectrum: light of a saturated colour blackens what has another one.
    part.light->setDiffuse((part.color * 0.7f + R3XVECTOR4D(0.30f, 0.24f, 0.14f, 0.0f)) *
                           (kBrightness * strength));
}

void LanternView::passLights() const {
    for (int i = 0; i < count; ++i) {
        if (glow[i] > 0.01f) parts[i].light->pass();
    }
}

float LanternView::getGlow() const {
    float sum = 0.0f;
    for (int i = 0; i < count; ++i) sum += glow[i];
    return sum;
}

R3XVECTOR3D LanternView::getPlace(int lantern) const {
    return parts[lantern].post->getPosition() + R3XVECTOR3D(0.0f, kHeight, 0.0f);
}

}  // namespace lantern_walk
