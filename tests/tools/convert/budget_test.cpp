// SPDX-License-Identifier: Zlib
#include "tools/convert/budget.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "tools/convert/report.h"

namespace keltra::convert {
namespace {

TEST(Budget, IsTheDefaultWithLimitsOfOnesOwn) {
    EXPECT_EQ(budgetOf("default").triangles, Budget().triangles);
    const Budget budget = budgetOf("triangles=800,textures=512K,clips=2MiB,bones=0");
    EXPECT_EQ(budget.triangles, 800u);
    EXPECT_EQ(budget.vertices, Budget().vertices);
    EXPECT_EQ(budget.bones, 0u);
    EXPECT_EQ(budget.textures, 512u << 10);
    EXPECT_EQ(budget.clips, 2u << 20);
}

TEST(Budget, RefusesWhatItDoesNotKnow) {
    for (const char *text :
         {"", "triangle=3", "triangles", "triangles=", "triangles=x", "triangles=3K", "default,",
          "textures=3G", "triangles=-1", "triangles=9999999999999", "=3", "triangles=3,,"})
        EXPECT_THROW(budgetOf(text), std::invalid_argument) << text;
}

TEST(Budget, WarnsOfEachLimitThatIsExceeded) {
    Report report;
    report.triangles = 5001;
    report.vertices = 5000;
    report.meshBones = 41;
    report.textureMemory = (2u << 20) + 1;
    checkBudget(Budget(), report);
    ASSERT_EQ(report.over.size(), 3u);
    EXPECT_EQ(report.over[0].what, "triangles");
    EXPECT_EQ(report.over[0].used, 5001u);
    EXPECT_EQ(report.over[0].limit, 5000u);
    EXPECT_EQ(report.warnings[0], "over the budget: 5,001 triangles, the limit is 5,000");
    EXPECT_EQ(report.warnings[2], "over the budget: 2,049 KiB of textures, the limit is 2,048 KiB");
    EXPECT_EQ(report.tally().warnings, 3u);
}

TEST(Budget, NoneIsWithoutLimits) {
    Report report;
    report.triangles = report.vertices = report.clipBytes = ~0ull;
    checkBudget(budgetOf("none"), report);
    EXPECT_TRUE(report.warnings.empty());
}

}  // namespace
}  // namespace keltra::convert
