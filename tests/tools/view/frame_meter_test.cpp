// SPDX-License-Identifier: Zlib
#include "tools/view/frame_meter.h"

#include <gtest/gtest.h>

using keltra::view::FrameMeter;

TEST(FrameMeter, ShowsTheFirstFrameAtOnce) {
    FrameMeter meter;
    EXPECT_EQ(meter.framesPerSecond(), 0.0);
    meter.add(0.01, 0.04);
    EXPECT_NEAR(meter.milliseconds(), 10.0, 1e-9);
    EXPECT_NEAR(meter.framesPerSecond(), 25.0, 1e-9);
}

TEST(FrameMeter, ThenShowsMeansOverHalfASecond) {
    FrameMeter meter;
    meter.add(0.5, 1.0);
    for (int i = 0; i < 8; ++i) meter.add(i % 2 ? 0.02 : 0.04, 0.0625);
    EXPECT_NEAR(meter.milliseconds(), 30.0, 1e-6);
    EXPECT_NEAR(meter.framesPerSecond(), 16.0, 1e-6);
}

TEST(FrameMeter, KeepsWhatItShowsInBetween) {
    FrameMeter meter;
    meter.add(0.01, 0.04);
    meter.add(0.09, 0.10);
    EXPECT_NEAR(meter.milliseconds(), 10.0, 1e-9);
}

TEST(FrameMeter, FramesWithoutTimeGiveNoRate) {
    FrameMeter meter;
    meter.add(0.0, 0.0);
    EXPECT_EQ(meter.framesPerSecond(), 0.0);
}
