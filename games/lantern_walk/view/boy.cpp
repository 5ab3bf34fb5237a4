// SPDX-License-Identifier: Zlib
#include "games/lantern_walk/view/boy.h"

#include <keltra/kit/view.h>

#include <cmath>

#include "games/lantern_walk/view/nodes.h"

namespace lantern_walk {
namespace {

constexpr float kFade = 0.2f;        // seconds from one clip to the next
constexpr float kStride = 1.36f;     // of a circle of the walk, which has two steps and takes a second
constexpr float kRunFrom = 3.0f;     // units a second
constexpr float kLongStride = 1.7f;  // of a run, which swings farther
constexpr float kLampPool = 0.40f, kLampGlow = 0.9f;
// The nodes of what lies on the ground stand apart from it, by which it is drawn in the right order.
constexpr float kPoolBehind = 3.0f, kShadowBefore = 1.0f;

}  // namespace

bool BoyView::load(KTNODE *stage) {
    figure = KELTRA::load("figure.kte");
    lamp = findMesh(stage, "lamp");
    glow = findMesh(stage, "lampGlow");
    pool = findMesh(stage, "lampPool");
    shadow = findMesh(stage, "shadow");
    if (!figure || !lamp || !glow || !pool || !shadow) return false;
    if (!walk.load("figure_walk.kta") || !greeting.load("figure_wave.kta") || !player.bind(figure))
        return false;
    player.setTranslating(true);
    player.setSmooth(true);
    choose();
    if (!player.attach(lamp, "leftHand")) return false;
    lamp->setPosition(0.06f, -0.34f, 0.02f);
    // They are passed with him, not with the garden.
    for (KTMESH *part : {glow, pool, shadow}) part->unlink();
    light = new KTLIGHT;  // the list of nodes owns it
    light->setAmbient(0.0f, 0.0f, 0.0f, 1.0f);
    light->setSpecular(0.0f, 0.0f, 0.0f, 1.0f);
    light->setAttenuation(0.8f, 0.0f, 0.10f);
    light->setExclusive(true);
    return true;
}

void BoyView::place(Place at, float heading, float unitsASecond) {
    figure->setPosition(at.x, 0.0f, at.z);
    figure->setRotation(0.0f, heading, 0.0f);
    speed = unitsASecond;
}

// Standing is the first frame of the wave.
void BoyView::choose() {
    const bool keepsWaving = gait == Gait::kWave && !player.hasEnded() && speed < 0.2f;
    const Gait now = isWaving || keepsWaving ? Gait::kWave
                     : speed < 0.2f          ? Gait::kStand
                     : speed < kRunFrom      ? Gait::kWalk
                                             : Gait::kRun;
    if (now != gait || isWaving) {
        if (now == Gait::kWave) player.play(&greeting, false, kFade);
        if (now == Gait::kStand) player.playRange(&greeting, 0, 0, true, kFade);
        const bool wasMoving = gait == Gait::kWalk || gait == Gait::kRun;
        if ((now == Gait::kWalk || now == Gait::kRun) && !wasMoving) player.play(&walk, true, kFade);
        gait = now;
        isWaving = false;
    }
    if (gait == Gait::kWalk || gait == Gait::kRun)
        player.setRate(speed / (gait == Gait::kRun ? kLongStride : kStride));
}

void BoyView::update(float seconds, float time, float azimuth) {
    choose();
    player.update(seconds);
    shownOil += (oil - shownOil) * std::fmin(1.0f, 5.0f * seconds);
    const float flame = shownOil > 0.0f ? 0.35f + 0.65f * shownOil : 0.0f;
    const float strength = flame * (0.95f + 0.05f * std::sin(9.0f * time) * std::sin(5.3f * time));
    const R3XMATRIX hand = KTVIEW::getWorldMatrix(*lamp);
    const R3XVECTOR3D place(hand.m[12], hand.m[13], hand.m[14]);
    const R3XVECTOR3D ground = figure->getPosition();
    glow->setPosition(place);
    glow->setRotation(0.0f, azimuth, 0.0f);
    glow->getMaterial()->setTransparency(kLampGlow * strength);
    pool->setPosition(place.x, 0.10f, place.z - kPoolBehind);
    pool->getMaterial()->setTransparency(kLampPool * strength);
    shadow->setPosition(ground.x, 0.11f, ground.z + kShadowBefore);
    lamp->getMaterial()->setEmission(strength, 0.75f * strength, 0.4f * strength, 1.0f);
    light->setPosition(place + R3XVECTOR3D(0.0f, 0.3f, 0.8f));
    light->setDiffuse(1.05f * strength, 0.80f * strength, 0.50f * strength, 1.0f);
}

void BoyView::pass() const {
    light->pass();
    figure->pass();
    pool->pass();
    shadow->pass();
    glow->pass();
}

}  // namespace lantern_walk
