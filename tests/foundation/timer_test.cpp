// SPDX-License-Identifier: Zlib
#include <gtest/gtest.h>
#include <keltra/foundation.h>

#include <cmath>
#include <limits>

#include "tests/foundation/foundation_fixture.h"
#include "tests/support/held_clock.h"

namespace keltra::test {
namespace {

class TimerTest : public FoundationTest {
   protected:
    static void passMilliseconds(long milliseconds) { HeldClock::passMilliseconds(milliseconds); }

    const HeldClock clock;
};

TEST_F(TimerTest, TheNinthTimerIsRefused) {
    startLog();
    for (int i = 0; i < 8; ++i) EXPECT_EQ(vnfNewTimer(1.0f), i);
    EXPECT_EQ(vnfNewTimer(1.0f), -1);
    EXPECT_EQ(messages(), "vnfNewTimer: no more timers\n");
}

TEST_F(TimerTest, AFreedTimerIsTakenAgain) {
    for (int i = 0; i < 8; ++i) vnfNewTimer(1.0f);
    EXPECT_TRUE(vnfFreeTimer(3));
    EXPECT_EQ(vnfNewTimer(1.0f), 3);
    EXPECT_EQ(vnfNewTimer(1.0f), -1);
}

TEST_F(TimerTest, WrongIndexesAreRefused) {
    startLog();
    for (int index :
         {8, -1, std::numeric_limits<int>::min(), std::numeric_limits<int>::max(), 0 /* free */}) {
        EXPECT_FALSE(vnfFreeTimer(index));
        EXPECT_FALSE(vnfAdjournTimer(index));
        EXPECT_EQ(vnfGetTimerFactor(index), -1.0f);
        EXPECT_EQ(vnfGetTimerFps(index), -1.0f);
    }
    std::string expected;
    for (int i = 0; i < 5; ++i)
        for (const char *name : {"vnfFreeTimer", "vnfAdjournTimer", "vnfGetTimerFactor", "vnfGetTimerFps"})
            expected += std::string(name) + ": wrong params\n";
    EXPECT_EQ(messages(), expected);
}

TEST_F(TimerTest, WithBaseOneTheFactorIsSeconds) {
    const int timer = vnfNewTimer(1.0f);
    passMilliseconds(250);
    EXPECT_TRUE(vnfAdjournTimer(timer));
    EXPECT_FLOAT_EQ(vnfGetTimerFactor(timer), 0.25f) << "the first one measures from vnfNewTimer on";
    EXPECT_FLOAT_EQ(vnfGetTimerFps(timer), 4.0f);

    passMilliseconds(20);
    EXPECT_TRUE(vnfAdjournTimer(timer));
    EXPECT_FLOAT_EQ(vnfGetTimerFactor(timer), 0.02f);
    EXPECT_FLOAT_EQ(vnfGetTimerFps(timer), 50.0f);
}

TEST_F(TimerTest, TheFactorScalesWithTheBaseAndTheRateDoesNot) {
    const int timer = vnfNewTimer(25.0f);
    passMilliseconds(20);
    EXPECT_TRUE(vnfAdjournTimer(timer));
    EXPECT_FLOAT_EQ(vnfGetTimerFactor(timer), 0.5f);
    EXPECT_FLOAT_EQ(vnfGetTimerFps(timer), 50.0f);
}

TEST_F(TimerTest, TwoAdjournmentsInOneTickYieldFactorOne) {
    const int timer = vnfNewTimer(30.0f);
    passMilliseconds(20);
    EXPECT_TRUE(vnfAdjournTimer(timer));
    EXPECT_TRUE(vnfAdjournTimer(timer));
    EXPECT_EQ(vnfGetTimerFactor(timer), 1.0f);
    EXPECT_EQ(vnfGetTimerFps(timer), 30.0f);
}

TEST_F(TimerTest, ANegativeBaseYieldsFactorOne) {
    const int timer = vnfNewTimer(-2.0f);
    passMilliseconds(20);
    EXPECT_TRUE(vnfAdjournTimer(timer));
    EXPECT_EQ(vnfGetTimerFactor(timer), 1.0f);
    EXPECT_EQ(vnfGetTimerFps(timer), -2.0f);
}

TEST_F(TimerTest, BaseZeroReturnsAnIndexThatStillCountsAsFree) {
    EXPECT_EQ(vnfNewTimer(0.0f), 0);
    EXPECT_FALSE(vnfAdjournTimer(0));
    EXPECT_EQ(vnfNewTimer(1.0f), 0);
}

TEST_F(TimerTest, OddBasesAreDefined) {
    const int nan = vnfNewTimer(std::numeric_limits<float>::quiet_NaN());
    const int infinite = vnfNewTimer(std::numeric_limits<float>::infinity());
    const int tiny = vnfNewTimer(std::numeric_limits<float>::denorm_min());
    passMilliseconds(20);
    EXPECT_TRUE(vnfAdjournTimer(nan));
    EXPECT_TRUE(vnfAdjournTimer(infinite));
    EXPECT_TRUE(vnfAdjournTimer(tiny));
    EXPECT_TRUE(std::isnan(vnfGetTimerFactor(nan)));
    EXPECT_TRUE(std::isinf(vnfGetTimerFactor(infinite)));
    EXPECT_EQ(vnfGetTimerFactor(tiny), 1.0f);
    EXPECT_TRUE(vnfFreeTimer(nan));
}

std::int64_t tell(void *nanoseconds) { return *static_cast<std::int64_t *>(nanoseconds); }

class SetClockTest : public TimerTest {
   protected:
    ~SetClockTest() override { vnfSetClock(nullptr, nullptr); }

    std::int64_t now = 5000000000;
};

TEST_F(SetClockTest, TimersReadTheClockThatIsSet) {
    vnfSetClock(tell, &now);
    const int timer = vnfNewTimer(1.0f);
    passMilliseconds(700);
    now += 125000000;
    EXPECT_TRUE(vnfAdjournTimer(timer));
    EXPECT_FLOAT_EQ(vnfGetTimerFactor(timer), 0.125f);
    EXPECT_FLOAT_EQ(vnfGetTimerFps(timer), 8.0f);
}

TEST_F(SetClockTest, AClockThatStandsStillGivesZero) {
    vnfSetClock(tell, &now);
    const int timer = vnfNewTimer(30.0f);
    EXPECT_TRUE(vnfAdjournTimer(timer));
    EXPECT_EQ(vnfGetTimerFactor(timer), 0.0f);
    EXPECT_EQ(vnfGetTimerFps(timer), 0.0f);
    now += 500000000;
    EXPECT_TRUE(vnfAdjournTimer(timer));
    EXPECT_FLOAT_EQ(vnfGetTimerFactor(timer), 15.0f);
}

TEST_F(SetClockTest, AClockThatRunsBackwardsGivesOneAsTheSystemsDoes) {
    vnfSetClock(tell, &now);
    const int timer = vnfNewTimer(1.0f);
    now -= 1;
    EXPECT_TRUE(vnfAdjournTimer(timer));
    EXPECT_EQ(vnfGetTimerFactor(timer), 1.0f);
}

TEST_F(SetClockTest, AClockMayWrapAround) {
    now = std::numeric_limits<std::int64_t>::max() - 124999999;
    vnfSetClock(tell, &now);
    const int timer = vnfNewTimer(1.0f);
    now = std::numeric_limits<std::int64_t>::min() + 125000000;
    EXPECT_TRUE(vnfAdjournTimer(timer));
    EXPECT_FLOAT_EQ(vnfGetTimerFactor(timer), 0.25f);
}

TEST_F(SetClockTest, TimersInUseGoOnFromTheNewClocksTime) {
    const int timer = vnfNewTimer(1.0f);
    passMilliseconds(300);
    vnfSetClock(tell, &now);
    now += 250000000;
    EXPECT_TRUE(vnfAdjournTimer(timer));
    EXPECT_FLOAT_EQ(vnfGetTimerFactor(timer), 0.25f);
    passMilliseconds(300);
    vnfSetClock(nullptr, nullptr);
    passMilliseconds(50);
    EXPECT_TRUE(vnfAdjournTimer(timer));
    EXPECT_FLOAT_EQ(vnfGetTimerFactor(timer), 0.05f);
}

TEST_F(TimerTest, TheRealClockRuns) {
    HeldClock::held = false;
    const int timer = vnfNewTimer(1.0f);
    const timespec pause = {0, 2000000};
    nanosleep(&pause, nullptr);
    EXPECT_TRUE(vnfAdjournTimer(timer));
    EXPECT_GE(vnfGetTimerFactor(timer), 0.002f);
    EXPECT_LT(vnfGetTimerFactor(timer), 60.0f);
}

}  // namespace
}  // namespace keltra::test
