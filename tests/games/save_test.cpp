// SPDX-License-Identifier: Zlib
// The saved game of Lantern Walk: what was written is read again, and what was damaged is not.

#include "games/lantern_walk/save.h"

#include <gtest/gtest.h>
#include <keltra/kit/save.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

namespace lantern_walk {
namespace {

class SaveTest : public ::testing::Test {
   protected:
    void SetUp() override {
        path = (std::filesystem::temp_directory_path() / ("lantern_walk_save_" + std::to_string(getpid())))
                   .string();
        saved.next = 1;
        saved.stars[0] = 3;
        saved.isLandscape = true;
        saved.hasWalk = true;
        saved.walk.evening = 1;
        saved.walk.lit = 5;
        saved.walk.left = 61.25f;
        saved.walk.oil = 0.3f;
        saved.walk.at = {1.5f, -2.75f};
    }
    void TearDown() override { std::filesystem::remove(path); }

    std::string path;
    SavedGame saved;
};

TEST_F(SaveTest, IsReadAsItWasWritten) {
    ASSERT_TRUE(saveGame(path, saved));
    SavedGame read;
    ASSERT_TRUE(loadGame(path, &read));
    EXPECT_EQ(read.next, 1);
    EXPECT_EQ(read.stars[0], 3);
    EXPECT_EQ(read.stars[2], 0);
    EXPECT_TRUE(read.isLandscape);
    EXPECT_TRUE(read.isBegun());
    EXPECT_EQ(read.walk.evening, 1);
    EXPECT_EQ(read.walk.lit, 5);
    EXPECT_EQ(read.walk.left, 61.25f);
    EXPECT_EQ(read.walk.oil, 0.3f);
    EXPECT_EQ(read.walk.at.x, 1.5f);
    EXPECT_EQ(read.walk.at.z, -2.75f);
}

TEST_F(SaveTest, AMissingFileChangesNothing) {
    SavedGame read;
    read.next = 2;
    EXPECT_FALSE(loadGame(path, &read));
    EXPECT_EQ(read.next, 2);
    EXPECT_FALSE(SavedGame().isBegun());
}

TEST_F(SaveTest, EveryDamagedByteIsNoticed) {
    ASSERT_TRUE(saveGame(path, saved));
    std::ifstream in(path, std::ios::binary);
    const std::string good((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    for (std::size_t i = 0; i < good.size(); ++i) {
        std::string bad = good;
        bad[i] = static_cast<char>(bad[i] ^ 0x10);
        std::ofstream(path, std::ios::binary) << bad;
        SavedGame read;
        EXPECT_FALSE(loadGame(path, &read)) << "byte " << i;
    }
}

TEST_F(SaveTest, WhatCannotBeIsNotBelieved) {
    const auto isRefused = [this](const SavedGame &game) {
        SavedGame read;
        return saveGame(path, game) && !loadGame(path, &read);
    };
    SavedGame bad = saved;
    bad.next = 4;
    EXPECT_TRUE(isRefused(bad));
    bad = saved;
    bad.stars[1] = 9;
    EXPECT_TRUE(isRefused(bad));
    bad = saved;
    bad.walk.left = 1000.0f;
    EXPECT_TRUE(isRefused(bad));
    bad.hasWalk = false;
    EXPECT_FALSE(isRefused(bad)) << "nobody reads it then";
}

}  // namespace
}  // namespace lantern_walk
