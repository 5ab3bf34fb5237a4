// SPDX-License-Identifier: Zlib
#ifndef KELTRA_SCENE_PARTICLE_ARM_H
#define KELTRA_SCENE_PARTICLE_ARM_H

// A particle of one frame in ARM instructions, for processors without a floating-point unit: motion, square
// and colours. Each product and each sum is rounded by itself, so the bits are those of the plain operations.
// What is the same for all particles of a frame is unpacked once.

#include "math/soft_arm.h"

#if defined(KELTRA_SOFT_ARM)

namespace keltra {

// From 2^-30 to 2^38: no result of the kernels can overflow or become denormal.
inline bool isInParticleRange(std::uint32_t bits) { return (bits << 1) - (97u << 24) < 68u << 24; }

// The order of members is that of the kernel's registers. Mantissas have their leading one, as 32 bits or
// as 24. An exponent has the sign above it.
struct ArmParticleAxis {
    std::uint32_t delta, deltaExponent;  // of a colour's change, negative; 32 bits, 0 for none
    std::uint32_t end;                   // the bits of its last value
    std::uint32_t gravityStep;           // bits
    std::uint32_t time, timeExponent;    // 24 bits; exponent less 127
};
struct ArmParticleFrame {
    // False when there are values that the kernel is not made for.
    bool set(const float *colorDelta, const float *colorEnd, const float *gravity, float time,
             float energyLoss);

    ArmParticleAxis axes[3];
    std::uint32_t noDelta = 0, behindAxes = 1;  // in the place of an exponent that no axis has
    std::uint32_t loss = 0, unused = 0;
};

// Two vectors that span a square. Along an axis one of them is the larger; the corners are the sums of the
// particle's place and plus or minus the sum, and plus or minus the difference, of the two sizes.
struct ArmParticleSquare {
    // False when there are values that the kernel is not made for.
    bool set(const float *right, const float *up);

    struct {
        std::uint32_t large, largeExponent, small,
            smallExponent;                          // 32 bits, `small` may be 0; exponents less 1
        std::uint32_t sumOffset, differenceOffset;  // in bytes: of the corner to which this is added
    } axes[3];
};

// What turns such a square: the axis and the two vectors, unpacked.
struct alignas(8) ArmParticleTurn {
    // False when there are values that the kernel is not made for.
    bool set(const float *axisOfTurn, const float *right, const float *up);

    struct {
        std::uint32_t mantissa, exponent;  // 32 bits
    } axis[3];
    struct {
        std::uint32_t mantissas[3], exponents[3];  // 24 bits; exponents less 127
    } vectors[2];
};

// The square whose vectors are turned by R3XMATRIX::setRotation and ::rotate, for the bits of the angle's
// sine and cosine. False, with the result lost, when there are values that the kernel is not made for.
extern "C" __attribute__((visibility("hidden"))) bool keltraTurnSquare(const ArmParticleTurn *turn,
                                                                       std::uint32_t sine,
                                                                       std::uint32_t cosine,
                                                                       ArmParticleSquare *square);

// The particles of an emitter from `slot` on.
struct alignas(8) ArmParticleRun {
    void *pool;
    const ArmParticleFrame *frame;
    const ArmParticleSquare *square;
    float *corners;         // of the next one: four of four floats
    std::uint32_t *colors;  // four
    const int *slot, *end;  // of the next one; behind the last one
};

// Moves particles, takes the energy that each loses in the frame, and writes their corners and colours. Stops
// behind one that has no energy left, with the result true; otherwise at the end or at one that is to be
// moved in another way: it turns, the slot is empty, or there are values that the kernel is not made for.
extern "C" __attribute__((visibility("hidden"))) bool keltraMoveParticles(ArmParticleRun *run);

// The same for one particle that may turn, of which `square` is turned already.
extern "C" __attribute__((visibility("hidden"))) bool keltraMoveTurned(ArmParticleRun *run);

}  // namespace keltra

#endif

#endif
