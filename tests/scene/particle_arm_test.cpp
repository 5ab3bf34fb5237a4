// SPDX-License-Identifier: Zlib
#include "scene/particle_arm.h"

#include <gtest/gtest.h>
#include <keltra/emitter.h>
#include <keltra/matrix.h>

#include <cmath>
#include <cstring>
#include <random>

#include "math/fixed.h"
#include "math/sine.h"

namespace keltra::test {
namespace {

#if defined(KELTRA_SOFT_ARM)

constexpr int kFrames = 2000, kParticles = 100;

// Everyday values, near each other often enough for sums that cancel; zeros of both signs, powers of two,
// mantissas with many ones; some far outside the range that the kernel accepts.
class Operand {
   public:
    float operator()() {
        const std::uint32_t bits = random(), sign = bits & kSignBit, mantissa = bits & 0x7fffff;
        switch (random() % 16) {
            case 0:
                return floatOf(sign);
            case 1:
                return floatOf(sign | 0x7fffff | (110 + random() % 30) << 23);
            case 2:
                return floatOf(sign | (random() % 4) << 21 | (120 + random() % 12) << 23);
            case 3:
                return floatOf(sign | mantissa | (90 + random() % 80) << 23);
            case 4:
                return random() % 8 ? floatOf((bits & 0x80ff0000) | 0x3f000000) : floatOf(bits);
            default:
                return floatOf(sign | mantissa | (121 + random() % 12) << 23);
        }
    }
    // Seldom outside of it.
    float positive() {
        const std::uint32_t bits = bitsOf((*this)());
        return random() % 16 ? floatOf((bits & 0x7fffff) | (125 + (bits >> 31)) << 23)
                             : floatOf(bits & ~kSignBit);
    }
    std::mt19937 random{1};
};

struct Square {
    float corners[16];
    std::uint32_t colors[4];
};

struct Frame {
    float right[3], up[3], delta[3], end[3], gravity[3], time, loss;
};

// In plain operations, each rounded by itself.
void movePlainly(KTPARTICLE &moved, const Frame &frame, Square &square) {
    float *position = &moved.position.x, *velocity = &moved.velocity.x, *color = &moved.color.x;
    const float scale = std::fabs(moved.size - moved.energy);
    const volatile float ratio = moved.energy / moved.initialEnergy;
    for (int i = 0; i < 3; ++i) {
        velocity[i] = velocity[i] + frame.gravity[i];
        const volatile float way = velocity[i] * frame.time;
        position[i] = way + position[i];
        const volatile float p = position[i] * scale, r = frame.right[i] * scale, u = frame.up[i] * scale;
        const volatile float sum = r + u, difference = r - u;
        square.corners[i] = p + -sum;
        square.corners[4 + i] = p + difference;
        square.corners[8 + i] = p + sum;
        square.corners[12 + i] = p + -difference;
        const volatile float change = frame.delta[i] * -ratio;
        color[i] = change + frame.end[i];
    }
    moved.color.w = moved.energy;
    for (int corner = 0; corner < 4; ++corner) {
        square.corners[4 * corner + 3] = 1.0f;
        square.colors[corner] = 0;
        for (int i = 0; i < 4; ++i)
            square.colors[corner] |= std::uint32_t{lowByteOf255Times(color[i])} << 8 * i;
    }
    moved.energy = moved.energy - frame.loss;
}

class ParticleArmTest : public ::testing::Test {
   protected:
    Frame anyFrame() {
        Frame frame;
        for (int i = 0; i < 3; ++i) {
            frame.right[i] = any();
            frame.up[i] = any.random() % 8 ? any() : -frame.right[i];
            frame.end[i] = any.positive();
            const float start = any.positive();
            frame.delta[i] = any.random() % 4 ? frame.end[i] - start : any.random() % 2 ? frame.end[i] : 0.0f;
            frame.gravity[i] = any.random() % 2 ? any() : 0.0f;
        }
        frame.time = any.positive() * 0.06f;
        frame.loss = frame.time * 0.5f;
        return frame;
    }
    KTPARTICLE anyParticle(const Frame &frame) {
        KTPARTICLE particle;
        for (int i = 0; i < 3; ++i) {
            (&particle.position.x)[i] = any();
            (&particle.velocity.x)[i] = any();
            if (any.random() % 32 == 0) (&particle.velocity.x)[i] = -frame.gravity[i];
            if (any.random() % 32 == 0)
                (&particle.position.x)[i] = -((&particle.velocity.x)[i] + frame.gravity[i]) * frame.time;
        }
        particle.size = any.positive() * 4.0f;
        particle.energy = any.random() % 32 ? any.positive() : any.random() % 2 ? particle.size : frame.loss;
        if (any.random() % 32 == 0) particle.size = 0.0f;
        particle.initialEnergy = any.random() % 8 ? any.positive() : particle.energy;
        if (any.random() % 8 == 0) {
            // Places times a size a little above 1 that are rounded up to a power of two.
            particle.energy = 0.5f;
            particle.size = 1.5f + static_cast<float>(any.random() % 4) * 0x1p-23f;
            for (int i = 0; i < 3; ++i) {
                (&particle.position.x)[i] = floatOf((bitsOf(any()) | 0x7fffff) - any.random() % 4);
                (&particle.velocity.x)[i] = 0.0f;
            }
        }
        return particle;
    }

    Operand any;
};

TEST_F(ParticleArmTest, MovesAsPlainOperationsDo) {
    int moved = 0, different = 0, left = 0;
    for (int i = 0; i < kFrames; ++i) {
        const Frame frame = anyFrame();
        ArmParticleFrame armFrame;
        ArmParticleSquare armSquare;
        if (!armFrame.set(frame.delta, frame.end, frame.gravity, frame.time, frame.loss)) continue;
        if (!armSquare.set(frame.right, frame.up)) continue;
        for (int k = 0; k < kParticles; ++k) {
            KTPARTICLE particle = anyParticle(frame), expected = particle;
            const KTPARTICLE before = particle;
            Square square = {}, expectedSquare = {};
            movePlainly(expected, frame, expectedSquare);
            const int slot = 0;
            ArmParticleRun run = {&particle,     &armFrame, &armSquare, square.corners,
                                  square.colors, &slot,     &slot + 1};
            const bool spent = keltraMoveParticles(&run);
            const bool done = run.slot == run.end;
            ASSERT_TRUE(done || !spent);
            if (done) {
                ++moved;
                different += spent != !(expected.energy > 0.0f);
                different += std::memcmp(&particle, &expected, sizeof particle) != 0 ||
                             std::memcmp(&square, &expectedSquare, sizeof square) != 0;
            } else {
                ++left;
                particle.color = before.color;
                ASSERT_EQ(std::memcmp(&particle, &before, sizeof particle), 0);
            }
        }
    }
    EXPECT_EQ(different, 0);
    EXPECT_GT(moved, kFrames * kParticles / 10);
    EXPECT_GT(left, 0);
    RecordProperty("moved", moved);
}

// R3XMATRIX::setRotation about an axis and R3XMATRIX::rotate in plain operations, each rounded by itself.
void turnPlainly(float sine, float c, const float *axis, const float *vector, float *result) {
    const volatile float u = 1.0f - c;
    const auto scaled = [](float a, float b) {
        const volatile float product = a * b;
        return float(product);
    };
    const auto element = [&](int i, int j, float other) {
        const volatile float sum = scaled(scaled(u, axis[i]), axis[j]) + other;
        return float(sum);
    };
    const float x = scaled(sine, axis[0]), y = scaled(sine, axis[1]), z = scaled(sine, axis[2]);
    const float m[3][3] = {{element(0, 0, c), element(1, 0, z), element(2, 0, -y)},
                           {element(0, 1, -z), element(1, 1, c), element(2, 1, x)},
                           {element(2, 0, y), element(2, 1, -x), element(2, 2, c)}};
    for (int j = 0; j < 3; ++j) {
        const volatile float first = m[0][j] * vector[0], second = m[1][j] * vector[1],
                             third = m[2][j] * vector[2];
        const volatile float two = first + second, all = two + third;
        result[j] = all;
    }
}

class ParticleTurnTest : public ParticleArmTest {
   protected:
    // The view of a camera, often one that does not roll, or does not look up or down either; now and then
    // anything.
    void anyVectors(float (&vectors)[3][3]) {
        float(&axis)[3] = vectors[0], (&right)[3] = vectors[1], (&up)[3] = vectors[2];
        const unsigned int kind = any.random() % 8;
        R3XMATRIX yaw, pitch, roll;
        yaw.setRotation(anyAngle(), 0.0f, 1.0f, 0.0f);
        if (kind > 0) pitch.setRotation(anyAngle(), 1.0f, 0.0f, 0.0f);
        if (kind > 3) roll.setRotation(anyAngle(), 0.36f, 0.48f, 0.8f);
        const R3XMATRIX view = roll * pitch * yaw;
        const float scale = any.random() % 4 ? 1.0f : any.positive();
        for (int i = 0; i < 3; ++i) {
            right[i] = view.m[4 * i] * scale;
            up[i] = view.m[4 * i + 1] * scale;
        }
        R3XVECTOR3D normal = R3XVECTOR3D(right[0], right[1], right[2]) ^ R3XVECTOR3D(up[0], up[1], up[2]);
        normal.normalize();
        axis[0] = normal.x, axis[1] = normal.y, axis[2] = normal.z;
        if (kind == 7) vectors[any.random() % 3][any.random() % 3] = any();
        if (any.random() % 8 == 0)
            vectors[any.random() % 3][any.random() % 3] = floatOf(any.random() & kSignBit);
    }
    float anyAngle() { return static_cast<float>(any.random() % 72000) * 0.01f - 360.0f; }
};

TEST_F(ParticleTurnTest, TurnsAsPlainOperationsDo) {
    int turned = 0, withZeros = 0, different = 0, left = 0;
    for (int i = 0; i < kFrames * 20; ++i) {
        float vectors[3][3];
        anyVectors(vectors);
        ArmParticleTurn turn;
        if (!turn.set(vectors[0], vectors[1], vectors[2])) continue;
        bool hasZeros = false;
        for (const float(&vector)[3] : vectors)
            for (float component : vector) hasZeros |= isZero(component);
        for (int k = 0; k < 10; ++k) {
            const float angle = any.random() % 16 ? anyAngle() : any();
            const Rotation rotation = rotationOf(angle);
            ArmParticleSquare square = {}, expected = {};
            if (!keltraTurnSquare(&turn, bitsOf(rotation.sine), bitsOf(rotation.cosine), &square)) {
                ++left;
                continue;
            }
            ++turned;
            withZeros += hasZeros;
            float right[3], up[3];
            turnPlainly(rotation.sine, rotation.cosine, vectors[0], vectors[1], right);
            turnPlainly(rotation.sine, rotation.cosine, vectors[0], vectors[2], up);
            different += !expected.set(right, up) || std::memcmp(&square, &expected, sizeof square) != 0;
        }
    }
    EXPECT_EQ(different, 0);
    EXPECT_GT(turned, kFrames * 100);
    EXPECT_GT(withZeros, kFrames * 10);
    EXPECT_GT(left, 0);
    RecordProperty("turned", turned);
    RecordProperty("withZeros", withZeros);
}

#endif

}  // namespace
}  // namespace keltra::test
