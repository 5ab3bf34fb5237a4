// SPDX-License-Identifier: Zlib
#include <keltra/fault.h>
#include <keltra/kit/flow.h>

#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "tests/support/allocations.h"

namespace keltra::test {
namespace {

TEST(KitTweenTest, EveryCurveLeadsFromStartToEnd) {
    for (int kind = KT_EASE_LINEAR; kind <= KT_EASE_BOUNCE; ++kind) {
        const KT_EASE ease = static_cast<KT_EASE>(kind);
        EXPECT_EQ(KTTWEEN::ease(ease, -1.0f), 0.0f);
        EXPECT_EQ(KTTWEEN::ease(ease, 2.0f), 1.0f);
        EXPECT_EQ(KTTWEEN::ease(ease, NAN), 0.0f);
        float before = 0.0f;
        for (int i = 1; i <= 100; ++i) {
            const float value = KTTWEEN::ease(ease, static_cast<float>(i) / 100.0f);
            EXPECT_LT(std::fabs(value - before), 0.08f) << "curve " << kind << " jumps at " << i;
            EXPECT_LT(value, 1.12f);
            before = value;
        }
    }
    EXPECT_LT(KTTWEEN::ease(KT_EASE_IN, 0.2f), 0.1f);
    EXPECT_GT(KTTWEEN::ease(KT_EASE_OUT, 0.2f), 0.3f);
    EXPECT_EQ(KTTWEEN::ease(KT_EASE_IN_OUT, 0.5f), 0.5f);
    EXPECT_GT(KTTWEEN::ease(KT_EASE_BACK, 0.6f), 1.0f);
}

TEST(KitTweenTest, AValueGoesAndArrives) {
    KTTWEEN tween;
    EXPECT_TRUE(tween.hasEnded());
    EXPECT_EQ(tween.getValue(), 0.0f);
    tween.start(10.0f, 20.0f, 2.0f, KT_EASE_LINEAR);
    EXPECT_EQ(tween.getValue(), 10.0f);
    EXPECT_FLOAT_EQ(tween.update(0.5f), 12.5f);
    tween.go(0.1f, 1.0f);
    EXPECT_FLOAT_EQ(tween.getValue(), 12.5f) << "from where it was";
    EXPECT_EQ(tween.update(7.0f), 0.1f) << "exactly";
    EXPECT_TRUE(tween.hasEnded());
    tween.start(0.0f, 3.0f, 0.0f);
    EXPECT_EQ(tween.getValue(), 3.0f);
}

// Notes what it is told, as letters.
class Screen : public KTSCREEN {
   public:
    Screen(char name, std::string *log, bool overlay = false) : name(name), log(log), overlay(overlay) {}
    void enter() override { note("in "); }
    void cover() override { note("covered "); }
    void uncover() override { note("uncovered "); }
    void leave() override { note("out "); }
    void update(float) override { note("runs "); }
    void draw3D() override { note("3 "); }
    void draw2D() override { note("2 "); }
    bool isOverlay() const override { return overlay; }

   private:
    void note(const char *what) { *log += std::string(1, name) + what; }
    const char name;
    std::string *const log;
    const bool overlay;
};

class KitScreensTest : public ::testing::Test {
   protected:
    std::string take() {
        const std::string taken = log;
        log.clear();
        return taken;
    }
    std::string log;
    Screen title{'T', &log}, play{'P', &log}, menu{'M', &log, true};
    KTSCREENS screens;
};

TEST_F(KitScreensTest, ChangesTakeEffectAtTheNextUpdate) {
    screens.change(&title);
    EXPECT_EQ(take(), "");
    EXPECT_EQ(screens.getTop(), nullptr);
    screens.update(0.1f);
    EXPECT_EQ(take(), "Tin Truns ");
    screens.change(&play);
    screens.update(0.1f);
    EXPECT_EQ(take(), "Tout Pin Pruns ");
    EXPECT_TRUE(screens.push(&menu));
    screens.update(0.1f);
    EXPECT_EQ(take(), "Pcovered Min Mruns ");
    screens.draw3D();
    screens.draw2D();
    EXPECT_EQ(take(), "P3 M3 P2 M2 ") << "the game shows below the menu";
    screens.pop();
    screens.update(0.1f);
    EXPECT_EQ(take(), "Mout Puncovered Pruns ");
    screens.push(&title);
    screens.update(0.1f);
    take();
    screens.draw3D();
    EXPECT_EQ(take(), "T3 ") << "a screen that is no overlay covers all";
    screens.change(nullptr);
    screens.update(0.1f);
    EXPECT_EQ(take(), "Tout Pout ");
    screens.pop();
    screens.update(0.1f);
    screens.draw2D();
    EXPECT_EQ(take(), "");
}

TEST_F(KitScreensTest, TheStackHoldsEight) {
    Screen more[] = {{'a', &log}, {'b', &log}, {'c', &log}, {'d', &log}, {'e', &log},
                     {'f', &log}, {'g', &log}, {'h', &log}, {'i', &log}};
    for (unsigned i = 0; i < 9; ++i) {
        EXPECT_EQ(screens.push(&more[i]), i < KTSCREENS::maxScreens);
        screens.update(0.0f);
    }
    EXPECT_FALSE(screens.push(nullptr));
    EXPECT_FALSE(screens.push(&more[3]));
    EXPECT_EQ(screens.getNumberOfScreens(), KTSCREENS::maxScreens);
    EXPECT_STREQ(KTFAULTS::getLast()->call, "KTSCREENS::push");
}

TEST(KitFlowTest, AFrameAllocatesNothing) {
    KTSCREEN title, menu;
    KTSCREENS screens;
    KTTWEEN tween;
    Allocations::startCounting();
    for (int i = 0; i < 6; ++i) {
        if (i == 1) screens.change(&title);
        if (i == 2) screens.push(&menu);
        if (i == 4) screens.pop();
        tween.go(static_cast<float>(i), 1.0f);
        tween.update(0.1f);
        screens.update(0.1f);
        screens.draw3D();
        screens.draw2D();
    }
    EXPECT_EQ(Allocations::stopCounting(), 0);
    EXPECT_EQ(screens.getTop(), &title);
}

}  // namespace
}  // namespace keltra::test
