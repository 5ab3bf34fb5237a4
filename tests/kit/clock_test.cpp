// SPDX-License-Identifier: Zlib
#include <keltra/kit/clock.h>

#include <limits>

#include "tests/support/allocations.h"
#include "tests/support/engine_fixture.h"
#include "tests/support/held_clock.h"

namespace keltra::test {
namespace {

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

class KitClockTest : public EngineTest {
   protected:
    // A frame that is so long.
    float frameOf(long milliseconds) {
        HeldClock::passMilliseconds(milliseconds);
        const float seconds = clock.tick();
        KELTRA::updateTimer();
        KELTRA::swap();
        return seconds;
    }

    const HeldClock held;
    KTCLOCK clock;
};

TEST_F(KitClockTest, ItGoesByTheSystemsClock) {
    EXPECT_EQ(frameOf(400), 0.0f) << "the first frame takes no time";
    EXPECT_FLOAT_EQ(frameOf(20), 0.02f);
    EXPECT_FLOAT_EQ(frameOf(30), 0.03f);
    EXPECT_FLOAT_EQ(clock.getTime(), 0.05f);
}

TEST_F(KitClockTest, OnceStartedItIsTheTimeOfTheEngine) {
    clock.tick();
    clock.start();
    EXPECT_TRUE(clock.isStarted());
    clock.setRate(0.25f);
    frameOf(40);
    EXPECT_FLOAT_EQ(KELTRA::getFPSfactor(), 0.01f);
    clock.setPaused(true);
    frameOf(40);
    EXPECT_EQ(KELTRA::getFPSfactor(), 0.0f);
    EXPECT_EQ(KELTRA::getFPS(), 0.0f);
    EXPECT_EQ(clock.getSeconds(), 0.0f);
    EXPECT_FLOAT_EQ(clock.getRealSeconds(), 0.04f);
    clock.setPaused(false);
    clock.setRate(1.0f);
    frameOf(40);
    EXPECT_FLOAT_EQ(KELTRA::getFPSfactor(), 0.04f) << "the pause is not made up for";
    clock.stop();
    HeldClock::passMilliseconds(20);
    KELTRA::updateTimer();
    EXPECT_FLOAT_EQ(KELTRA::getFPSfactor(), 0.02f);
}

TEST_F(KitClockTest, TheLastOneStartedCounts) {
    {
        KTCLOCK other;
        clock.start();
        other.start();
        EXPECT_FALSE(clock.isStarted());
        clock.stop();
        EXPECT_TRUE(other.isStarted());
    }
    frameOf(20);
    frameOf(20);
    EXPECT_FLOAT_EQ(KELTRA::getFPSfactor(), 0.02f) << "a clock that is gone is not read";
}

TEST_F(KitClockTest, FixedStepsRepeatExactly) {
    clock.setStep(1.0f / 30.0f);
    clock.start();
    for (long milliseconds : {0L, 5L, 900L}) {
        EXPECT_EQ(frameOf(milliseconds), 1.0f / 30.0f);
        EXPECT_NEAR(KELTRA::getFPSfactor(), 1.0f / 30.0f, 1e-8f);
    }
    EXPECT_EQ(clock.getNanoseconds(), 3 * std::int64_t((1.0f / 30.0f) * 1e9f));
    clock.setRate(0.5f);
    EXPECT_EQ(frameOf(0), 0.5f / 30.0f);
    clock.setStep(0.0f);
    EXPECT_EQ(frameOf(0), 0.0f) << "what passed meanwhile is not measured";
}

TEST_F(KitClockTest, ALongFrameIsCut) {
    clock.tick();
    EXPECT_FLOAT_EQ(frameOf(5000), 0.25f);
    EXPECT_FLOAT_EQ(clock.getRealSeconds(), 5.0f);
    clock.setLongest(2.0f);
    EXPECT_FLOAT_EQ(frameOf(5000), 2.0f);
}

TEST_F(KitClockTest, ValuesOutOfRangeBecomeTheNearestOnes) {
    clock.setRate(-1.0f);
    EXPECT_EQ(clock.getRate(), 0.0f);
    clock.setRate(1e9f);
    EXPECT_EQ(clock.getRate(), 100.0f);
    clock.setRate(kNaN);
    EXPECT_EQ(clock.getRate(), 0.0f);
    clock.setStep(kNaN);
    EXPECT_EQ(clock.getStep(), 0.0f);
    clock.setStep(7.0f);
    EXPECT_EQ(clock.getStep(), 1.0f);
    clock.setLongest(0.0f);
    EXPECT_EQ(clock.getLongest(), 0.001f);
    clock.setShortest(kNaN);
    EXPECT_EQ(clock.getShortest(), 0.0f);
}

TEST_F(KitClockTest, ItWaitsForTheEndOfAShortFrame) {
    HeldClock::held = false;
    clock.setShortest(0.02f);
    clock.tick();
    for (int i = 0; i < 3; ++i) EXPECT_GE(clock.tick(), 0.02f);
}

TEST_F(KitClockTest, AFrameAllocatesNothing) {
    clock.start();
    Allocations::startCounting();
    for (int i = 0; i < 5; ++i) clock.tick();
    EXPECT_EQ(Allocations::stopCounting(), 0);
}

TEST(KitPaceTest, StepsAreDueAsTimePasses) {
    KTPACE pace(25.0f);
    EXPECT_EQ(pace.advance(0.03f), 0u);
    EXPECT_EQ(pace.advance(0.03f), 1u);
    EXPECT_NEAR(pace.getRest(), 0.5f, 1e-4f);
    EXPECT_EQ(pace.advance(0.07f), 2u);
    EXPECT_EQ(pace.advance(-1.0f), 0u);
}

TEST(KitPaceTest, ASlowFrameDropsTheRest) {
    KTPACE pace(10.0f, 2);
    EXPECT_EQ(pace.advance(30.0f), 2u);
    EXPECT_EQ(pace.advance(0.05f), 0u);
    EXPECT_EQ(KTPACE(kNaN).getStep(), 1.0f);
}

}  // namespace
}  // namespace keltra::test
