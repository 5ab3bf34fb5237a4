// SPDX-License-Identifier: Zlib
#include <keltra/emitter.h>

#include <keltra/engine_state.h>
#include <keltra/glbridge.h>
#include <keltra/matrix.h>

#include "math/float_bits.h"
#include "math/sparse.h"
#include "scene/billboard.h"
#include "scene/particle_arm.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>

using keltra::kColorBytes;
using keltra::kCorners;

// What all particles of one draw have in common.
struct KTEMITTER::BILLBOARD {
    // `m` is the matrix that they are drawn with.
    BILLBOARD(const KTEMITTER &emitter, const float *m);

    // Where the processor has something for them: moves those that do not turn, from `index` on. True when
    // that one has no energy left, otherwise it is `count` or the first that was not moved.
    bool moveStill(const KTEMITTER &emitter, unsigned int &index, unsigned int count) const;
    // The same for those that turn.
    bool moveTurning(const KTEMITTER &emitter, unsigned int &index, unsigned int count) const;
    // The same for one, with a square of its own; false when nothing was done.
    bool move(const KTEMITTER &emitter, unsigned int index, const R3XVECTOR3D &itsRight,
              const R3XVECTOR3D &itsUp) const;

    R3XVECTOR3D right, up, axis, gravityStep;
    float time, energyLoss;
#if defined(KELTRA_SOFT_ARM)
    keltra::ArmParticleFrame armFrame;
    keltra::ArmParticleSquare armSquare;
    keltra::ArmParticleTurn armTurn;
    bool armFits, armFitsStill, armFitsTurned;

   private:
    // Particles that came into being together and turn alike have the same angles, and all of them do where
    // nothing turns further: their square is turned once a frame. Angles have one place each.
    static constexpr unsigned int kTurnedBits = 6;
    struct TurnedSquare {
        std::uint32_t angle = 0;  // bits; none is zero
        keltra::ArmParticleSquare square;
    };
    mutable TurnedSquare turned[1u << kTurnedBits];

    // The square for particles at that angle; null when there are values that the kernel is not made for.
    const keltra::ArmParticleSquare *turnedSquare(float angle) const;
#endif
};

namespace {

constexpr float kEnergyLoss = 0.5f;  // a second

// An index outside the pool holds nothing.
bool isInPool(int index) { return static_cast<unsigned int>(index) < KTEMITTER::poolSize; }

bool holdsAny(const int *slots, unsigned int count) {
    bool any = count > 0 && isInPool(slots[0]);
    if (any) return true;
    for (const int *slot = slots; slot != slots + count; ++slot) any |= isInPool(*slot);
    return any;
}

// So many particles of the arrays were cleared by the last emitter that was drawn.
unsigned int cleared = 0;

bool isClear(unsigned int corner) {
    const R3XVECTOR4D origin;
    std::uint32_t color;
    std::memcpy(&color, KTEMITTER::colorArray + corner * kColorBytes, sizeof color);
    return KTEMITTER::vertexArray[corner] == origin && color == 0;
}

// An emitter that found the pool empty draws its particles with no area, all of them at the origin. The next
// such emitter finds the arrays as they are to be: the ends are looked at, since the arrays are public.
void clearParticles(unsigned int count) {
    if (count == 0 || (cleared >= count && isClear(0) && isClear(count * kCorners - 1))) return;
    std::fill_n(KTEMITTER::vertexArray, count * kCorners, R3XVECTOR4D());
    std::memset(KTEMITTER::colorArray, 0, count * kCorners * kColorBytes);
    cleared = count;
}

// Drawn with no area: all of it at the last corner before it.
void hideParticle(unsigned int index) {
    R3XVECTOR4D *corners = KTEMITTER::vertexArray + index * kCorners;
    std::fill(corners, corners + kCorners, index ? corners[-1] : R3XVECTOR4D());
    std::memset(KTEMITTER::colorArray + index * kCorners * kColorBytes, 0, kCorners * kColorBytes);
}

#if defined(KELTRA_SOFT_ARM)
static_assert(offsetof(KTPARTICLE, velocity) == 12 && offsetof(KTPARTICLE, color) == 24 &&
                  offsetof(KTPARTICLE, spinSpeed) == 40 && offsetof(KTPARTICLE, energy) == 56 &&
                  sizeof(KTPARTICLE) == 64 && KTEMITTER::poolSize == 1024,
              "as in the kernel");

keltra::ArmParticleRun armRun(const KTEMITTER &emitter, unsigned int first, unsigned int end,
                              const keltra::ArmParticleFrame &frame,
                              const keltra::ArmParticleSquare &square) {
    float *corners = &KTEMITTER::vertexArray[first * kCorners].x;
    auto *colors = reinterpret_cast<std::uint32_t *>(KTEMITTER::colorArray) + first * kCorners;
    const int *slots = emitter.slot;
    return {KTEMITTER::particle, &frame, &square, corners, colors, slots + first, slots + end};
}

// Whether the kernel for particles that do not turn would leave the first one.
bool turns(int index) {
    if (!isInPool(index)) return true;
    const KTPARTICLE &first = KTEMITTER::particle[index];
    return (keltra::bitsOf(first.spinSpeed) | keltra::bitsOf(first.spinAngle)) != 0;
}
#endif

}  // namespace

KTEMITTER::BILLBOARD::BILLBOARD(const KTEMITTER &emitter, const float *m)
    : right(m[0], m[4], m[8]),
      up(m[1], m[5], m[9]),
      axis(right ^ up),
      time(KTENGINESTATE::getFPSfactor()),
      energyLoss(kEnergyLoss * time) {
    axis.normalize();
    gravityStep = emitter.gravity * time;
#if defined(KELTRA_SOFT_ARM)
    armFits = armFrame.set(&emitter.colorDelta.x, &emitter.colorEnd.x, &gravityStep.x, time, energyLoss);
    armFitsStill = armFits && armSquare.set(&right.x, &up.x);
    armFitsTurned = armFits && armTurn.set(&axis.x, &right.x, &up.x);
#endif
}

#if defined(KELTRA_SOFT_ARM)

bool KTEMITTER::BILLBOARD::moveStill(const KTEMITTER &emitter, unsigned int &index,
                                     unsigned int count) const {
    if (!armFitsStill || turns(emitter.slot[index])) return false;
    keltra::ArmParticleRun run = armRun(emitter, index, count, armFrame, armSquare);
    const bool spent = keltra::keltraMoveParticles(&run);
    index = static_cast<unsigned int>(run.slot - emitter.slot) - spent;
    return spent;
}

bool KTEMITTER::BILLBOARD::move(const KTEMITTER &emitter, unsigned int index, const R3XVECTOR3D &itsRight,
                                const R3XVECTOR3D &itsUp) const {
    keltra::ArmParticleSquare square;
    if (!armFits || !square.set(&itsRight.x, &itsUp.x)) return false;
    keltra::ArmParticleRun run = armRun(emitter, index, index + 1, armFrame, square);
    return keltra::keltraMoveTurned(&run) || run.slot == run.end;
}

const keltra::ArmParticleSquare *KTEMITTER::BILLBOARD::turnedSquare(float angle) const {
    const std::uint32_t bits = keltra::bitsOf(angle);
    TurnedSquare &place = turned[bits * 2654435769u >> (32 - kTurnedBits)];
    if (place.angle == bits) return &place.square;
    const keltra::Rotation &turn = keltra::rotationOf(angle);
    const std::uint32_t sine = keltra::bitsOf(turn.sine), cosine = keltra::bitsOf(turn.cosine);
    const bool fits = keltra::keltraTurnSquare(&armTurn, sine, cosine, &place.square);
    place.angle = fits ? bits : 0;
    return fits ? &place.square : nullptr;
}

bool KTEMITTER::BILLBOARD::moveTurning(const KTEMITTER &emitter, unsigned int &index,
                                       unsigned int count) const {
    if (!armFitsTurned || index == count) return false;
    keltra::ArmParticleRun run = armRun(emitter, index, count, armFrame, armSquare);
    bool spent = false;
    for (const int *const end = run.end; !spent && run.slot != end && isInPool(*run.slot);) {
        KTPARTICLE &moved = KTEMITTER::particle[*run.slot];
        const float angle = moved.spinAngle;
        if (keltra::isZero(angle)) break;
        run.square = turnedSquare(angle);
        if (!run.square) break;
        run.end = run.slot + 1;
        spent = keltra::keltraMoveTurned(&run);
        if (!spent && run.slot != run.end) break;
        moved.spinAngle = keltra::multiplyAdd(moved.spinSpeed, time, angle);
    }
    index = static_cast<unsigned int>(run.slot - emitter.slot) - spent;
    return spent;
}

#else

bool KTEMITTER::BILLBOARD::moveStill(const KTEMITTER &, unsigned int &, unsigned int) const { return false; }

bool KTEMITTER::BILLBOARD::move(const KTEMITTER &, unsigned int, const R3XVECTOR3D &,
                                const R3XVECTOR3D &) const {
    return false;
}

bool KTEMITTER::BILLBOARD::moveTurning(const KTEMITTER &, unsigned int &, unsigned int) const {
    return false;
}

#endif

void KTEMITTER::updateParticles() {
    const int most = static_cast<int>(maxParticles);
    const unsigned int count = static_cast<unsigned int>(std::clamp(numberOfParticles, 0, most));
    if (!holdsAny(slot, count)) return clearParticles(count);
    cleared = 0;
    float m[16];
    KT_glGetFloatv(0, m);
    const BILLBOARD billboard(*this, m);
    for (unsigned int i = 0; i < count; ++i) {
        bool spent = billboard.moveStill(*this, i, count);
        const unsigned int first = i;
        spent = spent || billboard.moveTurning(*this, i, count);
        if (i == count) break;
        if (!isInPool(slot[i])) {
            hideParticle(i);
            continue;
        }
        KTPARTICLE &moved = particle[slot[i]];
        if (!spent && i != first && keltra::isZero(moved.spinAngle)) {  // behind those that turn
            --i;
            continue;
        }
        if (!spent)
            advance(moved, billboard, vertexArray + i * kCorners, colorArray + i * kCorners * kColorBytes);
        if (!keltra::isPositive(moved.energy)) updateParticle(&moved);
    }
}

void KTEMITTER::advance(KTPARTICLE &moved, const BILLBOARD &billboard, R3XVECTOR4D *corners,
                        unsigned char *colors) {
    const float angle = moved.spinAngle;
    moved.spinAngle = keltra::multiplyAdd(moved.spinSpeed, billboard.time, angle);
    const unsigned int index = static_cast<unsigned int>(corners - vertexArray) / kCorners;
    R3XVECTOR3D right = billboard.right, up = billboard.up;
    if (!keltra::isZero(angle)) {
        R3XMATRIX turn;
        turn.setRotation(angle, billboard.axis.x, billboard.axis.y, billboard.axis.z);
        right = turn.rotate(right);
        up = turn.rotate(up);
    }
    if (billboard.move(*this, index, right, up)) return;
    moved.velocity += billboard.gravityStep;
    moved.position += moved.velocity * billboard.time;
    keltra::writeCorners(moved.position, std::fabs(moved.size - moved.energy), right, up, corners);
    const float ratio = keltra::isZero(moved.initialEnergy) ? 0.0f : moved.energy / moved.initialEnergy;
    const R3XVECTOR3D rgb = colorDelta * -ratio + colorEnd;
    // Deliberate: alpha is the energy itself, not its ratio; emitter files rely on it.
    moved.color.set(rgb.x, rgb.y, rgb.z, moved.energy);
    keltra::writeColor(moved.color, colors);
    moved.energy -= billboard.energyLoss;
}
