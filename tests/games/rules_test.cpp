// SPDX-License-Identifier: Zlib
// The rules of Lantern Walk: way, oil, lanterns, moths and time, without anything that draws.

#include <gtest/gtest.h>

#include <cmath>

#include "games/lantern_walk/rules/walk.h"

namespace lantern_walk {
namespace {

constexpr float kStep = 1.0f / 30.0f;

class RulesTest : public ::testing::Test {
   protected:
    void SetUp() override { walk.start(0); }

    /// Lets time pass, until the event comes if one is named. Returns the seconds.
    float pass(float seconds, Event until = Event::kNone) {
        float passed = 0.0f;
        while (passed < seconds) {
            walk.advance(kStep);
            passed += kStep;
            for (Happening happening = walk.take(); happening.event != Event::kNone;
                 happening = walk.take()) {
                last = happening;
                if (happening.event == until) return passed;
            }
        }
        return passed;
    }
    void light(int lantern) {
        walk.goToLantern(lantern);
        pass(20.0f, Event::kLit);
        EXPECT_EQ(last.event, Event::kLit) << "lantern " << lantern;
        EXPECT_EQ(last.index, lantern);
        pass(kLightTime);
    }
    void fill() {
        walk.goToWell();
        pass(20.0f, Event::kRefilled);
        EXPECT_EQ(walk.getOil(), 1.0f);
    }

    Walk walk;
    Happening last;
};

TEST_F(RulesTest, BeginsInTheDark) {
    for (int evening = 0; evening < kEvenings; ++evening) {
        walk.start(evening);
        EXPECT_EQ(walk.getPhase(), Phase::kWalking);
        EXPECT_EQ(walk.countLit(), 0);
        EXPECT_EQ(walk.getOil(), 1.0f);
        EXPECT_EQ(walk.getTimeLeft(), walk.getEvening().dusk);
        EXPECT_EQ(walk.getEvening().lanterns, 6 + 2 * evening);
        EXPECT_FALSE(walk.hasGoal());
    }
}

TEST_F(RulesTest, LayoutsLeaveRoomBetweenThings) {
    for (int evening = 0; evening < kEvenings; ++evening) {
        const Evening &layout = getEvening(evening);
        for (int i = 0; i < layout.lanterns; ++i) {
            const Place at = layout.lantern[i];
            EXPECT_TRUE(at.x > kWestEnd && at.x < kEastEnd && at.z > kNorthEnd && at.z + 1.2f < kSouthEnd)
                << i;
            for (int j = 0; j < i; ++j) EXPECT_GT(distance(at, layout.lantern[j]), 2.5f) << i << " and " << j;
            for (int j = 0; j < kObstacles; ++j)
                EXPECT_GT(distance(at, getObstacle(j).at), getObstacle(j).radius + 0.4f)
                    << "evening " << evening << ": lantern " << i << " and obstacle " << j;
        }
    }
}

TEST_F(RulesTest, GoesWhereItIsSentAndStops) {
    walk.goTo({-3.0f, 7.0f});
    EXPECT_TRUE(walk.hasGoal());
    pass(4.0f);
    EXPECT_LT(distance(walk.getPlace(), {-3.0f, 7.0f}), 0.3f);
    EXPECT_FALSE(walk.hasGoal());
    EXPECT_EQ(walk.getSpeed(), 0.0f);
    EXPECT_NEAR(walk.getHeading(), -118.0f, 8.0f) << "he looks along his way";
}

// A stone stood between him and the place, a little aside: he walked on the spot.
TEST_F(RulesTest, StopsWhereHeComesNoNearer) {
    lantern_walk::Snapshot kept;
    kept.left = 100.0f;
    kept.oil = 1.0f;
    kept.at = {-7.3f, -0.6f};
    ASSERT_TRUE(walk.resume(kept));
    walk.goTo({-7.6f, -2.2f});  // the middle of the stone
    pass(3.0f);
    EXPECT_FALSE(walk.hasGoal());
    EXPECT_EQ(walk.getSpeed(), 0.0f);
}

TEST_F(RulesTest, StaysInTheGarden) {
    walk.goTo({500.0f, -500.0f});
    pass(60.0f);
    EXPECT_LE(walk.getPlace().x, kEastEnd);
    EXPECT_GE(walk.getPlace().z, kNorthEnd);
    for (int i = 0; i < 400; ++i) {
        walk.steer(-1.0f, 1.0f);
        walk.advance(kStep);
    }
    EXPECT_EQ(walk.getPlace().x, kWestEnd);
    EXPECT_EQ(walk.getPlace().z, kSouthEnd);
}

TEST_F(RulesTest, SteeringTakesOverAndRunsAfterAWhile) {
    walk.goTo({0.0f, -8.0f});
    walk.steer(1.0f, 0.0f);
    walk.advance(kStep);
    EXPECT_FALSE(walk.hasGoal());
    float slow = 0.0f;
    for (int i = 0; i < 45; ++i) {
        walk.steer(0.0f, -1.0f);
        walk.advance(kStep);
        if (i == 14) slow = walk.getSpeed();
    }
    EXPECT_GT(slow, 1.0f);
    EXPECT_GT(walk.getSpeed(), 1.4f * slow);
    pass(1.0f);
    EXPECT_EQ(walk.getSpeed(), 0.0f) << "nothing is held any more";
}

TEST_F(RulesTest, ComesPastTheWell) {
    for (const Place from : {Place{8.5f, -1.6f}, Place{4.9f, 4.0f}, Place{4.9f, -6.0f}}) {
        walk.start(0);
        walk.goTo(from);
        pass(12.0f);
        ASSERT_LT(distance(walk.getPlace(), from), 0.4f);
        walk.goTo({2.0f * kWell.x - from.x, 2.0f * kWell.z - from.z});
        for (int i = 0; i < 300; ++i) {
            walk.advance(kStep);
            ASSERT_GT(distance(walk.getPlace(), kWell), kWellRadius - 0.1f);
        }
        EXPECT_LT(distance(walk.getPlace(), {2.0f * kWell.x - from.x, 2.0f * kWell.z - from.z}), 0.6f);
    }
}

TEST_F(RulesTest, LightsALanternAndPaysForIt) {
    const float before = walk.getOil();
    walk.goToLantern(0);
    EXPECT_FALSE(walk.getLantern(0).isLit);
    pass(20.0f, Event::kLit);
    EXPECT_TRUE(walk.getLantern(0).isLit);
    EXPECT_EQ(walk.countLit(), 1);
    EXPECT_NEAR(walk.getOil(), before - kLightCost, 0.05f) << "walking costs little";
    EXPECT_LT(distance(walk.getPlace(), walk.getLantern(0).at), kReach);
    EXPECT_GT(walk.getPlace().z, walk.getLantern(0).at.z) << "he stands on the viewer's side";
}

TEST_F(RulesTest, ActsOnWhatIsInReachOnly) {
    EXPECT_FALSE(walk.act());
    walk.goTo({walk.getLantern(1).at.x + 1.0f, walk.getLantern(1).at.z + 0.8f});
    pass(6.0f);
    EXPECT_TRUE(walk.act());
    EXPECT_FALSE(walk.act()) << "he is busy";
    pass(3.0f, Event::kLit);
    EXPECT_TRUE(walk.getLantern(1).isLit);
}

TEST_F(RulesTest, WithoutOilNothingIsLit) {
    walk.start(2);
    for (int lantern : {1, 4, 0, 5}) light(lantern);
    ASSERT_LT(walk.getOil(), kLightCost);
    walk.goToLantern(8);
    pass(20.0f, Event::kNoOil);
    EXPECT_EQ(last.event, Event::kNoOil);
    EXPECT_FALSE(walk.getLantern(8).isLit);
    fill();
    light(8);
}

TEST_F(RulesTest, AllLanternsLitIsVictory) {
    for (int lantern : {0, 1, 2, 4}) light(lantern);
    fill();
    light(3);
    walk.goToLantern(5);
    pass(20.0f, Event::kWon);
    ASSERT_EQ(walk.getPhase(), Phase::kWon);
    const float left = walk.getTimeLeft();
    EXPECT_EQ(walk.getStars(), left > 55.0f ? 3 : left > 27.5f ? 2 : 1);
    pass(5.0f);
    EXPECT_EQ(walk.getTimeLeft(), left) << "the time stands still";
}

TEST_F(RulesTest, TheDuskEnds) {
    const float passed = pass(500.0f, Event::kLost);
    EXPECT_NEAR(passed, walk.getEvening().dusk, 0.2f);
    EXPECT_EQ(walk.getPhase(), Phase::kLost);
    EXPECT_EQ(walk.getStars(), 0);
    walk.goTo({3.0f, 3.0f});
    const Place before = walk.getPlace();
    pass(1.0f);
    EXPECT_EQ(distance(before, walk.getPlace()), 0.0f);
}

TEST_F(RulesTest, AMothPutsALanternOut) {
    light(0);
    pass(walk.getEvening().dusk, Event::kPutOut);
    ASSERT_EQ(last.event, Event::kPutOut);
    EXPECT_EQ(last.index, 0);
    EXPECT_EQ(walk.countLit(), 0);
    EXPECT_EQ(walk.getMoths().get(0).mood, MothMood::kFleeing);
}

TEST_F(RulesTest, AChasedMothLeavesTheLantern) {
    light(0);
    EXPECT_FALSE(walk.chase(0)) << "it is not there yet";
    for (int i = 0; i < 3000 && walk.getMoths().get(0).mood != MothMood::kCircling; ++i) walk.advance(kStep);
    ASSERT_EQ(walk.getMoths().get(0).mood, MothMood::kCircling);
    EXPECT_FALSE(walk.chase(7));
    EXPECT_TRUE(walk.chase(-1)) << "he stands beside it";
    EXPECT_FALSE(walk.chase(-1));
    pass(kCirclingTime + 1.0f);
    EXPECT_TRUE(walk.getLantern(0).isLit);
}

TEST_F(RulesTest, MothsWaitForLight) {
    walk.start(2);
    pass(120.0f, Event::kPutOut);
    EXPECT_NE(last.event, Event::kPutOut);
    for (int i = 0; i < walk.getMoths().getCount(); ++i)
        EXPECT_EQ(walk.getMoths().get(i).mood, MothMood::kAway);
}

TEST_F(RulesTest, TheSameWishesGiveTheSameEvening) {
    Walk other;
    other.start(1);
    walk.start(1);
    for (int i = 0; i < 3000; ++i) {
        for (Walk *one : {&walk, &other}) {
            if (i % 200 == 0) one->goToLantern(i / 200 % 8);
            one->advance(kStep);
        }
        ASSERT_EQ(walk.getPlace().x, other.getPlace().x);
        ASSERT_EQ(walk.getPlace().z, other.getPlace().z);
    }
    EXPECT_EQ(walk.countLit(), other.countLit());
}

TEST_F(RulesTest, ASnapshotGoesOn) {
    light(0);
    walk.goTo({2.0f, 3.0f});
    pass(1.0f);
    const Snapshot kept = walk.snapshot();
    Walk other;
    ASSERT_TRUE(other.resume(kept));
    EXPECT_EQ(other.countLit(), 1);
    EXPECT_TRUE(other.getLantern(0).isLit);
    EXPECT_EQ(other.getOil(), walk.getOil());
    EXPECT_EQ(other.getTimeLeft(), walk.getTimeLeft());
    EXPECT_EQ(other.getPlace().x, walk.getPlace().x);
}

TEST_F(RulesTest, RefusesASnapshotThatCannotBe) {
    const Snapshot good = walk.snapshot();
    Snapshot bad = good;
    bad.evening = 3;
    EXPECT_FALSE(walk.resume(bad));
    bad = good;
    bad.lit = 1 << 6;
    EXPECT_FALSE(walk.resume(bad)) << "there are six";
    bad = good;
    bad.oil = 1.5f;
    EXPECT_FALSE(walk.resume(bad));
    bad = good;
    bad.left = 0.0f;
    EXPECT_FALSE(walk.resume(bad));
    bad = good;
    bad.at.x = 40.0f;
    EXPECT_FALSE(walk.resume(bad));
    bad.at.x = std::nanf("");
    EXPECT_FALSE(walk.resume(bad));
    EXPECT_TRUE(walk.resume(good));
}

}  // namespace
}  // namespace lantern_walk
