// SPDX-License-Identifier: Zlib
#include <keltra/emitter.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <vector>

#include "tests/support/engine_fixture.h"
#include "tests/support/held_clock.h"

namespace keltra::test {
namespace {

constexpr unsigned kSeed = 20040117;

/// Emitters are rendered outside of a scene; the clock is stopped between the renders.
class EmitterTest : public EngineTest {
   protected:
    void SetUp() override {
        EngineTest::SetUp();
        if (HasFatalFailure()) return;
        KELTRA::begin3D(nullptr);
        std::srand(kSeed);
    }

    /// A frame of that length, which no file or scene is part of.
    bool render(KTEMITTER &emitter, long milliseconds, const R3XMATRIX &matrix = R3XMATRIX()) {
        HeldClock::passMilliseconds(milliseconds);
        vnfAdjournTimer(KELTRA::timer);
        KTELEMENT element;
        element.matrix = matrix;
        return emitter.render(&element);
    }

    static const KTPARTICLE &held(const KTEMITTER &emitter, int index) {
        return KTEMITTER::particle[emitter.slot[index]];
    }
    static int countHeld(const KTEMITTER &emitter) {
        return static_cast<int>(std::count_if(emitter.slot, emitter.slot + KTEMITTER::maxParticles,
                                              [](int i) { return i >= 0; }));
    }

    const HeldClock clock;
};

// The expected result, one random number at a time, in the order of the draws.
struct Reference {
    struct Particle {
        float position[3], velocity[3], energy, initialEnergy, size, spinSpeed, spinAngle;
    };

    explicit Reference(const KTEMITTER &from)
        : e(from), particles(static_cast<std::size_t>(from.numberOfParticles)) {
        for (Particle &p : particles) spawn(p);
    }

    static float mod(unsigned n) {
        return n ? static_cast<float>(static_cast<unsigned>(std::rand()) % n) : (std::rand(), 0.0f);
    }
    static float unit() { return static_cast<float>(std::rand() % 32768) / 32767.0f; }

    void spawn(Particle &p) const {
        p.energy = p.initialEnergy = mod(e.maximumEnergy) * 0.01f;
        p.size = mod(e.maximumParticuleSize) * 0.1f;
        p.spinSpeed = mod(e.maximumSpin);
        p.spinAngle = e.spinning;
        const float center[3] = {e.center.x, e.center.y, e.center.z},
                    up[3] = {e.upVector.x, e.upVector.y, e.upVector.z};
        if (e.emitterType == 0) {
            for (int i = 2; i >= 0; --i) {
                const float first = mod(e.maxVelocity) * 0.1f, second = mod(e.maxVelocity) * 0.1f;
                p.velocity[i] = first - second;
            }
            std::copy(center, center + 3, p.position);
        }
        if (e.emitterType == 1) {
            for (int i = 0; i < 3; ++i) p.velocity[i] = mod(e.maxVelocity) * up[i];
            std::copy(center, center + 3, p.position);
            p.position[0] += unit() * 2.0f * e.sizeX - e.sizeX;
            p.position[2] += unit() * 2.0f * e.sizeY - e.sizeY;
        }
        if (e.emitterType == 2) {
            const double a = unit() * 2.0 * e.radius - e.radius;
            double b = std::sin(std::acos(a / e.radius)) * e.radius;
            if (std::rand() % 2 == 1) b = -b;
            p.position[0] = static_cast<float>(unit() * a) - center[0];
            p.position[1] = 0.0f;
            p.position[2] = static_cast<float>(unit() * b) - center[2];
            for (int i = 0; i < 3; ++i) p.velocity[i] = mod(e.maxVelocity) * up[i];
        }
    }

    static R3XVECTOR3D turned(const R3XVECTOR3D &v, const R3XVECTOR3D &axis, double degrees) {
        const double angle = degrees * 3.14159265358979 / 180.0;
        return v * static_cast<float>(std::cos(angle)) + (axis ^ v) * static_cast<float>(std::sin(angle));
    }

    static int byte(float value) { return static_cast<int>(value * 255.0f) & 255; }

    // One frame: checks what the engine drew, then moves on.
    void frame(float f, const R3XVECTOR3D &right, const R3XVECTOR3D &up) {
        R3XVECTOR3D axis = right ^ up;
        axis.normalize();
        const float gravity[3] = {e.gravity.x, e.gravity.y, e.gravity.z};
        for (std::size_t n = 0; n < particles.size(); ++n) {
            Particle &p = particles[n];
            for (int i = 0; i < 3; ++i) {
                p.velocity[i] += gravity[i] * f;
                p.position[i] += p.velocity[i] * f;
            }
            const float s = std::abs(p.size - p.energy);
            const R3XVECTOR3D r = turned(right, axis, p.spinAngle), u = turned(up, axis, p.spinAngle);
            const R3XVECTOR3D middle = R3XVECTOR3D(p.position) * s;
            const R3XVECTOR3D corners[4] = {middle + (-r - u) * s, middle + (r - u) * s, middle + (r + u) * s,
                                            middle + (-r + u) * s};
            for (std::size_t i = 0; i < 4; ++i) expectCorner(4 * n + i, corners[i], p);
            p.spinAngle += p.spinSpeed * f;
            p.energy -= 0.5f * f;
            if (p.energy <= 0.0f) spawn(p), ++spawned;
        }
    }

    void expectCorner(std::size_t index, const R3XVECTOR3D &corner, const Particle &p) const {
        const R3XVECTOR4D &drawn = KTEMITTER::vertexArray[index];
        const float tolerance = 1e-5f * (1.0f + corner.length());
        EXPECT_NEAR(drawn.x, corner.x, tolerance);
        EXPECT_NEAR(drawn.y, corner.y, tolerance);
        EXPECT_NEAR(drawn.z, corner.z, tolerance);
        EXPECT_EQ(drawn.w, 1.0f);
        const float ratio = p.initialEnergy == 0.0f ? 0.0f : p.energy / p.initialEnergy;
        const R3XVECTOR3D rgb = e.colorEnd - e.colorDelta * ratio;
        const unsigned char *color = KTEMITTER::colorArray + 4 * index;
        EXPECT_EQ(color[0], byte(rgb.x));
        EXPECT_EQ(color[1], byte(rgb.y));
        EXPECT_EQ(color[2], byte(rgb.z));
        EXPECT_EQ(color[3], byte(p.energy));
    }

    const KTEMITTER &e;
    std::vector<Particle> particles;
    int spawned = 0;
};

TEST_F(EmitterTest, ParticlesMoveLikeAPlainReference) {
    R3XMATRIX matrix;
    matrix.setRotation(40.0f, 0.6f, 0.8f, 0.0f);
    matrix.setTranslation(1.0f, -2.0f, -30.0f);
    const R3XVECTOR3D right(matrix.m[0], matrix.m[4], matrix.m[8]), up(matrix.m[1], matrix.m[5], matrix.m[9]);
    for (int type : {0, 1, 2}) {
        KTEMITTER emitter;
        emitter.setEmitterType(type);
        emitter.setNumberOfParticles(40);
        emitter.setMaximumEnergy(80);
        emitter.setMaximumVelocity(50);
        emitter.setMaximumParticuleSize(30);
        emitter.setMaximumSpin(90);
        emitter.setSpinning(type == 1 ? 0.0f : 25.0f);
        emitter.setCenter(0.5f, 1.0f, -2.0f);
        emitter.setGravity(0.25f, -9.5f, 0.0f);
        emitter.setUpVector(0.1f, 1.0f, -0.2f);
        std::srand(kSeed);
        Reference reference(emitter);
        const int state = std::rand();
        std::srand(kSeed);
        ASSERT_TRUE(emitter.initialize());
        EXPECT_EQ(std::rand(), state) << "as many random numbers are drawn";
        for (unsigned frame = 0; frame < 40 && !HasFailure(); ++frame) {
            std::srand(frame);
            ASSERT_TRUE(render(emitter, 125, matrix));
            std::srand(frame);
            reference.frame(0.125f, right, up);
        }
        EXPECT_GT(reference.spawned, 40);
    }
}

TEST_F(EmitterTest, ConstructionGivesTheStatedValues) {
    KTEMITTER emitter;
    EXPECT_EQ(emitter.getType(), unsigned(KT_EMITTER));
    EXPECT_STREQ(emitter.getTypeName(), "emitter");
    EXPECT_EQ(emitter.getName(), "[emitter " + std::to_string(emitter.getId()) + "]");
    EXPECT_EQ(emitter.getEmitterType(), 0);
    EXPECT_FALSE(emitter.initialized);
    EXPECT_EQ(emitter.getNumberOfParticles(), 0);
    EXPECT_EQ(countHeld(emitter), 0);
    EXPECT_EQ(emitter.getMaximumEnergy(), 100u);
    EXPECT_EQ(emitter.getMaximumVelocity(), 100u);
    EXPECT_EQ(emitter.getMaximumParticuleSize(), 100u);
    EXPECT_EQ(emitter.getMaximumSpin(), 1u);
    EXPECT_EQ(emitter.getSpinning(), 0.0f);
    EXPECT_TRUE(emitter.getCenter() == R3XVECTOR3D());
    EXPECT_TRUE(emitter.getGravity() == R3XVECTOR3D());
    EXPECT_EQ(emitter.getMaximumAngle(), 0.0f);
    EXPECT_EQ(emitter.getSizeX(), 10.0f);
    EXPECT_EQ(emitter.getSizeY(), 10.0f);
    EXPECT_EQ(emitter.getRadius(), 10.0f);
    EXPECT_TRUE(emitter.getUpVector() == R3XVECTOR3D(0.0f, 1.0f, 0.0f));
    EXPECT_EQ(emitter.getTexture(), nullptr);
    EXPECT_EQ(emitter.getBlendingSrc(), unsigned(GL_SRC_ALPHA));
    EXPECT_EQ(emitter.getBlendingDst(), unsigned(GL_ONE_MINUS_SRC_ALPHA));
    std::srand(kSeed);
    for (float channel : {emitter.colorStart.x, emitter.colorStart.y, emitter.colorStart.z,
                          emitter.colorEnd.x, emitter.colorEnd.y, emitter.colorEnd.z})
        EXPECT_EQ(channel, static_cast<float>(std::rand() % 100) * 0.01f);
    EXPECT_TRUE(emitter.colorDelta == emitter.colorEnd - emitter.colorStart);
}

TEST_F(EmitterTest, TheColorDeltaFollowsTheColors) {
    KTEMITTER emitter;
    emitter.setColorStart(0.25f, 0.5f, 1.0f);
    emitter.setColorEnd(1.0f, 0.25f, 0.5f);
    EXPECT_TRUE(emitter.colorDelta == R3XVECTOR3D(0.75f, -0.25f, -0.5f));
    emitter.setColorStart(R3XVECTOR3D(1.0f, 0.25f, 0.5f));
    EXPECT_TRUE(emitter.colorDelta == R3XVECTOR3D());
}

TEST_F(EmitterTest, AParticleAsLargeAsItsEnergyIsAPointAndOpaque) {
    KTEMITTER emitter;
    emitter.setNumberOfParticles(1);
    emitter.setCenter(3.0f, 4.0f, 5.0f);
    ASSERT_TRUE(emitter.initialize());
    KTPARTICLE &only = KTEMITTER::particle[emitter.slot[0]];
    only.size = only.energy = only.initialEnergy = 1.0f;
    ASSERT_TRUE(render(emitter, 125));
    for (int i = 0; i < 4; ++i) {
        EXPECT_TRUE(KTEMITTER::vertexArray[i] == R3XVECTOR4D(0.0f, 0.0f, 0.0f, 1.0f));
        EXPECT_EQ(KTEMITTER::colorArray[4 * i + 3], 255);
    }
    EXPECT_EQ(only.energy, 1.0f - 0.0625f);
}

TEST_F(EmitterTest, AMaximumSpinOfOneTurnsNothing) {
    KTEMITTER emitter;
    emitter.setNumberOfParticles(100);
    for (int frame = 0; frame < 10; ++frame) {
        ASSERT_TRUE(render(emitter, 250));
        for (int i = 0; i < 100; ++i) {
            EXPECT_EQ(held(emitter, i).spinSpeed, 0.0f);
            EXPECT_EQ(held(emitter, i).spinAngle, 0.0f);
            EXPECT_EQ(KTEMITTER::vertexArray[4 * i].y, KTEMITTER::vertexArray[4 * i + 1].y)
                << "the lower edge lies level";
        }
    }
}

// A hundred angles among more particles than that, beside each of them alone.
TEST_F(EmitterTest, AParticleIsTurnedAmongOthersAsAlone) {
    KTEMITTER many, one;
    many.setNumberOfParticles(300);
    one.setNumberOfParticles(1);
    ASSERT_TRUE(many.initialize() && one.initialize());
    R3XMATRIX matrix;
    for (int frame = 0; frame < 3; ++frame) {
        matrix.setRotation(20.0f + 31.0f * static_cast<float>(frame), 0.36f, 0.48f, 0.8f);
        KTPARTICLE start = held(one, 0);
        start.position.set(1.0f, 2.0f, 3.0f);
        start.size = 3.0f;
        start.energy = start.initialEnergy = 0.75f;
        start.spinSpeed = 2.0f;
        for (int i = 0; i < 300; ++i) {
            KTPARTICLE &particle = KTEMITTER::particle[many.slot[i]];
            particle = start;
            particle.spinAngle = 3.7f * static_cast<float>(i * 7 % 100);
        }
        ASSERT_TRUE(render(many, 125, matrix));
        const std::vector<R3XVECTOR4D> corners(KTEMITTER::vertexArray, KTEMITTER::vertexArray + 4 * 300);
        for (int i = 0; i < 300; ++i) {
            KTEMITTER::particle[one.slot[0]] = start;
            KTEMITTER::particle[one.slot[0]].spinAngle = 3.7f * static_cast<float>(i * 7 % 100);
            ASSERT_TRUE(render(one, 125, matrix));
            for (int k = 0; k < 4; ++k) ASSERT_TRUE(KTEMITTER::vertexArray[k] == corners[4 * i + k]) << i;
            EXPECT_EQ(held(one, 0).spinAngle, held(many, i).spinAngle);
        }
    }
}

TEST_F(EmitterTest, ADiscSubtractsItsCenter) {
    KTEMITTER emitter;
    emitter.setEmitterType(2);
    emitter.setRadius(2.0f);
    emitter.setCenter(5.0f, 7.0f, 1.0f);
    emitter.setNumberOfParticles(512);
    ASSERT_TRUE(emitter.initialize());
    float sum = 0.0f;
    for (int i = 0; i < 512; ++i) {
        const KTPARTICLE &p = held(emitter, i);
        EXPECT_LE(p.position.distance(R3XVECTOR3D(-5.0f, 0.0f, -1.0f)), 2.0f);
        sum += p.position.x;
    }
    EXPECT_NEAR(sum / 512.0f, -5.0f, 0.15f);
    emitter.setRadius(0.0f);
    ASSERT_TRUE(emitter.initialize());
    EXPECT_TRUE(held(emitter, 511).position == R3XVECTOR3D(-5.0f, 0.0f, -1.0f))
        << "a disc without a radius is a point";
}

TEST_F(EmitterTest, OtherTypesKeepPlaceAndVelocityOfTheRecord) {
    KTEMITTER::particle[0].position.set(1.0f, 2.0f, 3.0f);
    KTEMITTER::particle[0].velocity.set(4.0f, 5.0f, 6.0f);
    KTEMITTER emitter;
    emitter.setEmitterType(3);
    emitter.setSpinning(12.0f);
    emitter.setCenter(9.0f, 9.0f, 9.0f);
    emitter.setNumberOfParticles(1);
    ASSERT_TRUE(emitter.initialize());
    ASSERT_EQ(emitter.slot[0], 0);
    EXPECT_TRUE(held(emitter, 0).position == R3XVECTOR3D(1.0f, 2.0f, 3.0f));
    EXPECT_TRUE(held(emitter, 0).velocity == R3XVECTOR3D(4.0f, 5.0f, 6.0f));
    EXPECT_EQ(held(emitter, 0).spinAngle, 12.0f);
}

TEST_F(EmitterTest, MaximaOfZeroGiveZeros) {
    KTEMITTER emitter;
    emitter.setMaximumEnergy(0);
    emitter.setMaximumVelocity(0);
    emitter.setMaximumParticuleSize(0);
    emitter.setMaximumSpin(0);
    emitter.setColorStart(1.0f, 1.0f, 1.0f);
    emitter.setColorEnd(0.5f, 0.0f, 1.0f);
    for (int type : {0, 1, 2, 3, -1}) {
        emitter.setEmitterType(type);
        emitter.setNumberOfParticles(0);
        emitter.setNumberOfParticles(3);
        for (int frame = 0; frame < 3; ++frame) {
            ASSERT_TRUE(render(emitter, 100));
            for (int i = 0; i < 12; ++i) {
                EXPECT_TRUE(KTEMITTER::vertexArray[i] == R3XVECTOR4D(0.0f, 0.0f, 0.0f, 1.0f));
                EXPECT_EQ(KTEMITTER::colorArray[4 * i], 127)
                    << "an energy of 0 at birth is the end of the colours";
                EXPECT_EQ(KTEMITTER::colorArray[4 * i + 3], 0);
            }
        }
    }
}

TEST_F(EmitterTest, ColorBytesAreTheLowOnesOfTheTruncatedProduct) {
    struct {
        float value;
        int byte;
    } const table[] = {
        {0.0f, 0},
        {1.0f, 255},
        {0.999f, 254},
        {2.0f, 254},  // 510
        {-1.0f, 1},   // -255
        {-0.001f, 0},
        {65793.0f, 255},  // 0xffffff
        {3e18f, 0},
        {-1e30f, 0},
        {std::numeric_limits<float>::infinity(), 0},
        {std::numeric_limits<float>::quiet_NaN(), 0},
    };
    for (const auto &row : table) {
        KTEMITTER emitter;
        emitter.setMaximumEnergy(1);  // the colours' end from the first frame on
        emitter.setColorStart(0.0f, 0.0f, 0.0f);
        emitter.setColorEnd(row.value, 0.0f, row.value);
        emitter.colorDelta.reset();
        emitter.setNumberOfParticles(1);
        ASSERT_TRUE(render(emitter, 100));
        EXPECT_EQ(KTEMITTER::colorArray[0], row.byte) << row.value;
        EXPECT_EQ(KTEMITTER::colorArray[2], row.byte) << row.value;
    }
}

TEST_F(EmitterTest, AlphaIsTheEnergyAndWrapsAround) {
    KTEMITTER emitter;
    emitter.setNumberOfParticles(1);
    ASSERT_TRUE(emitter.initialize());
    KTEMITTER::particle[emitter.slot[0]].energy = 1.5f;
    ASSERT_TRUE(render(emitter, 1));
    EXPECT_EQ(KTEMITTER::colorArray[3], 382 & 255);
}

TEST_F(EmitterTest, NumbersThatAreNoneAreDrawnAndDie) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    KTEMITTER emitter;
    emitter.setNumberOfParticles(8);
    emitter.setGravity(nan, 1e38f, -1e38f);
    emitter.setRadius(nan);
    for (int type : {0, 1, 2}) {
        emitter.setEmitterType(type);
        ASSERT_TRUE(emitter.initialize());
        KTEMITTER::particle[emitter.slot[0]].energy = nan;
        for (int frame = 0; frame < 3; ++frame) EXPECT_TRUE(render(emitter, 5000));
        EXPECT_EQ(held(emitter, 0).energy, held(emitter, 0).energy) << "spawned again";
    }
}

}  // namespace
}  // namespace keltra::test
