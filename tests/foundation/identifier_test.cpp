// SPDX-License-Identifier: Zlib
#include <gtest/gtest.h>
#include <keltra/foundation.h>

#include "foundation/lifecycle.h"
#include "tests/foundation/foundation_fixture.h"

namespace keltra::test {
namespace {

using IdentifierTest = FoundationTest;

TEST_F(IdentifierTest, TheLowestFreeOneIsDrawn) {
    for (unsigned int id = 1; id <= 10; ++id) EXPECT_EQ(vnfNewId(), id);
    EXPECT_TRUE(releaseId(5));
    EXPECT_EQ(vnfNewId(), 5u);
    EXPECT_EQ(vnfNewId(), 11u);
}

TEST_F(IdentifierTest, ReleasedOnesAreDrawnInRisingOrder) {
    for (int i = 0; i < 10; ++i) vnfNewId();
    for (unsigned int id : {7u, 2u, 9u}) EXPECT_TRUE(releaseId(id));
    EXPECT_EQ(vnfNewId(), 2u);
    EXPECT_EQ(vnfNewId(), 7u);
    EXPECT_EQ(vnfNewId(), 9u);
    EXPECT_EQ(vnfNewId(), 11u);
}

TEST_F(IdentifierTest, AllOfThemCanBeDrawn) {
    startLog();
    for (unsigned int id = 1; id <= 65535; ++id) ASSERT_EQ(vnfNewId(), id);
    EXPECT_EQ(vnfNewId(), 0u);
    EXPECT_EQ(vnfNewId(), 0u);
    EXPECT_EQ(messages(), "vnfNewId: all ID are used\nvnfNewId: all ID are used\n");

    EXPECT_TRUE(releaseId(65535));
    EXPECT_TRUE(releaseId(1));
    EXPECT_EQ(vnfNewId(), 1u);
    EXPECT_EQ(vnfNewId(), 65535u);
    EXPECT_EQ(vnfNewId(), 0u);
}

TEST_F(IdentifierTest, ReleasingWhatIsNoIdentifierFails) {
    startLog();
    EXPECT_FALSE(releaseId(0));
    EXPECT_FALSE(releaseId(65536));
    EXPECT_FALSE(releaseId(0xffffffffu));
    EXPECT_EQ(messages(),
              "releaseId: invalid params (0)\n"
              "releaseId: invalid params (65536)\n"
              "releaseId: invalid params (-1)\n");
}

TEST_F(IdentifierTest, ReleasingTwiceFailsWithAMessageWithoutLineFeed) {
    startLog();
    const unsigned int id = vnfNewId();
    EXPECT_TRUE(releaseId(id));
    EXPECT_FALSE(releaseId(id));
    EXPECT_FALSE(releaseId(65535));
    EXPECT_EQ(messages(), "releaseId: ID already released (1)releaseId: ID already released (65535)");
}

TEST_F(IdentifierTest, NoneIsDrawnOnceTheFoundationHasEnded) {
    const unsigned int id = vnfNewId();
    vnfCloseLog();
    EXPECT_EQ(vnfNewId(), 0u);
    EXPECT_FALSE(releaseId(id));
    EXPECT_FALSE(releaseId(0));
}

TEST_F(IdentifierTest, AMissingTableIsLogged) {
    startLog();
    dropIdentifierTable();
    EXPECT_EQ(vnfNewId(), 0u);
    EXPECT_EQ(messages(), "vnfNewId: ID table not initialized\n");
}

TEST_F(IdentifierTest, ReopeningForgetsAllOfThem) {
    for (int i = 0; i < 10; ++i) vnfNewId();
    vnfOpenLog(nullptr);
    EXPECT_FALSE(releaseId(1));
    EXPECT_EQ(vnfNewId(), 1u);
}

// The table that is replaced is freed (the leak checker watches), yet it stays in the counters.
TEST_F(IdentifierTest, ReopeningCountsANewTable) {
    const MemoryCounters before = memoryCounters();
    vnfOpenLog(nullptr);
    const MemoryCounters after = memoryCounters();
    EXPECT_EQ(after.allocations, before.allocations + 1);
    EXPECT_EQ(after.live, before.live + 1);
    EXPECT_EQ(after.releases, before.releases);
}

TEST_F(IdentifierTest, ClosingReleasesTheTableOnce) {
    const MemoryCounters before = memoryCounters();
    vnfCloseLog();
    vnfCloseLog();
    EXPECT_EQ(memoryCounters().live, before.live - 1);
    EXPECT_EQ(memoryCounters().releases, before.releases + 1);
}

}  // namespace
}  // namespace keltra::test
