// SPDX-License-Identifier: Zlib
#ifndef KELTRA_EXAMPLES_EMITTERS_H
#define KELTRA_EXAMPLES_EMITTERS_H

#include <keltra/emitter.h>

#include "examples/support/example.h"

constexpr int kAdd = 1, kAlpha = 770;  // GL_ONE, GL_SRC_ALPHA

// Energies are hundredths, of which a particle loses 50 a second. A particle is drawn, and its place is
// scaled, by the difference of its size (tenths) and its energy: small ones need long ways.
inline KTEMITTER *makeEmitter(int type, int number, int energy, int speed, int size, const char *texture) {
    KTEMITTER *emitter = new KTEMITTER;
    emitter->setEmitterType(type);
    emitter->setNumberOfParticles(number);
    emitter->setMaximumEnergy(static_cast<unsigned>(energy));
    emitter->setMaximumVelocity(static_cast<unsigned>(speed));
    emitter->setMaximumParticuleSize(static_cast<unsigned>(size));
    emitter->setMaximumSpin(1);
    emitter->setSpinning(1.0f);
    emitter->setTexture(example::loadTexture(texture));
    emitter->setBlendingSrc(kAlpha);
    emitter->setBlendingDst(kAdd);
    return emitter;
}

inline void addFireAndRain(KTNODE *world) {
    KTEMITTER *fire = makeEmitter(2, 220, 75, 4, 26, "puff.tga");
    fire->setRadius(0.25f);
    fire->setUpVector(0.0f, 1.0f, 0.0f);
    fire->setGravity(0.0f, 1.0f, 0.0f);
    fire->setColorStart(1.0f, 0.62f, 0.2f);
    fire->setColorEnd(0.7f, 0.1f, 0.02f);
    fire->setPosition(-0.7f, 0.2f, 0.0f);
    KTEMITTER *rain = makeEmitter(1, 400, 100, 25, 10, "drop.tga");
    rain->setSizeX(14.0f);
    rain->setSizeY(9.0f);
    rain->setUpVector(0.0f, -1.0f, 0.0f);
    rain->setGravity(0.0f, -22.0f, 0.0f);
    rain->setColorStart(0.6f, 0.7f, 0.95f);
    rain->setColorEnd(0.5f, 0.6f, 0.9f);
    rain->setPosition(0.0f, 6.5f, 0.0f);
    for (KTEMITTER *emitter : {fire, rain}) emitter->link(world);
}

#endif
