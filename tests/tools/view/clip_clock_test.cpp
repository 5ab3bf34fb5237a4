// SPDX-License-Identifier: Zlib
#include "tools/view/clip_clock.h"

#include <gtest/gtest.h>

using keltra::view::ClipClock;

namespace {

ClipClock clockOf(unsigned frames) {
    ClipClock clock;
    clock.start(frames);
    return clock;
}

}  // namespace

TEST(ClipClock, PlaysTwentyFiveFramesASecondInARing) {
    ClipClock clock = clockOf(20);
    for (unsigned i = 1; i <= 100; ++i) {
        clock.advance(1.0 / 25.0);
        ASSERT_EQ(clock.frame(), i % 20) << i;
    }
}

TEST(ClipClock, KeepsPartsOfAFrame) {
    ClipClock clock = clockOf(100);
    for (int i = 0; i < 10; ++i) clock.advance(0.01);
    EXPECT_EQ(clock.frame(), 2u);
}

TEST(ClipClock, StaysWhilePausedAndGoesOnAfterwards) {
    ClipClock clock = clockOf(10);
    clock.advance(0.2);
    clock.toggle();
    clock.advance(5.0);
    EXPECT_EQ(clock.frame(), 5u);
    EXPECT_FALSE(clock.isPlaying());
    clock.toggle();
    clock.advance(0.04);
    EXPECT_EQ(clock.frame(), 6u);
}

TEST(ClipClock, StepsAroundTheRingAndPauses) {
    ClipClock clock = clockOf(10);
    clock.step(-1);
    EXPECT_EQ(clock.frame(), 9u);
    EXPECT_FALSE(clock.isPlaying());
    clock.step(1);
    EXPECT_EQ(clock.frame(), 0u);
    clock.step(-23);
    EXPECT_EQ(clock.frame(), 7u);
}

TEST(ClipClock, SeeksWithinTheClip) {
    ClipClock clock = clockOf(10);
    clock.seek(4);
    EXPECT_EQ(clock.frame(), 4u);
    clock.seek(4000);
    EXPECT_EQ(clock.frame(), 9u);
}

TEST(ClipClock, AnotherClipBeginsAtItsStart) {
    ClipClock clock = clockOf(10);
    clock.seek(7);
    clock.start(3);
    EXPECT_EQ(clock.frame(), 0u);
    EXPECT_EQ(clock.frames(), 3u);
}

TEST(ClipClock, AnEmptyClipHasOneFrameOnly) {
    ClipClock clock = clockOf(0);
    clock.advance(3.0);
    clock.step(1);
    clock.seek(5);
    EXPECT_EQ(clock.frame(), 0u);
}

TEST(ClipClock, TimeThatDoesNotAdvanceChangesNothing) {
    ClipClock clock = clockOf(10);
    clock.advance(-1.0);
    clock.advance(0.0);
    EXPECT_EQ(clock.frame(), 0u);
}
