// SPDX-License-Identifier: Zlib
#include <keltra/keltra.h>

#include <cstdlib>
#include <vector>

#include "tests/count/region.h"

namespace {

constexpr unsigned int kParticles = KTEMITTER::maxParticles, kFrames = 8;

enum class Turn { kNone, kTogether, kEachForItself };

// Angles that no particle had before.
void setOwnAngles(unsigned int frame) {
    for (unsigned int i = 0; i < KTEMITTER::poolSize; ++i)
        KTEMITTER::particle[i].spinAngle = static_cast<float>(1 + i + frame * KTEMITTER::poolSize) * 0.21f;
}

void countFrames(const char *row, Turn turn) {
    std::srand(7);
    KTEMITTER emitter;
    emitter.setColorStart(R3XVECTOR3D(0.9f, 0.8f, 0.1f));
    emitter.setColorEnd(R3XVECTOR3D(0.2f, 0.1f, 0.7f));
    emitter.setGravity(0.0f, -9.81f, 0.0f);
    emitter.setMaximumSpin(turn == Turn::kNone ? 1 : 90);
    emitter.setSpinning(turn == Turn::kNone ? 0.0f : 12.5f);
    emitter.setNumberOfParticles(static_cast<int>(kParticles));
    KTELEMENT element;
    element.matrix.setRotation(25.0f, 0.36f, 0.48f, 0.8f);
    element.matrix.setTranslation(0.3f, -1.2f, -14.0f);
    count::require(emitter.render(&element), row);
    for (unsigned int i = 0; i < kFrames; ++i) {
        KELTRA::swap();
        KELTRA::begin3D(nullptr);
        if (turn == Turn::kEachForItself) setOwnAngles(i);
        const count::Region region(row, kParticles);
        emitter.render(&element);
    }
    count::require(KTEMITTER::numberbOfParticlesUsed == kParticles, row);
}

}  // namespace

void count::countParticles() {
    countFrames("particle", Turn::kNone);
    countFrames("particle, turning", Turn::kTogether);
    countFrames("particle, turning, each by an angle of its own", Turn::kEachForItself);
    std::vector<KTEMITTER> emitters(3);
    KTELEMENT element;
    for (KTEMITTER &emitter : emitters) {
        emitter.setNumberOfParticles(static_cast<int>(kParticles));
        emitter.render(&element);
    }
    const Region region("emitter of 512 that found the pool empty", 1);
    emitters[2].render(&element);
}
