// SPDX-License-Identifier: Zlib
#include <gtest/gtest.h>
#include <keltra/video.h>

#include "tests/support/temp_file.h"

namespace keltra::test {
namespace {

TEST(NoVideoTest, NoFilmLoads) {
    const TempFolder folder;
    const std::string path = folder.write("film.m1v", "anything");
    KTVIDEO video;
    EXPECT_FALSE(video.load(path.c_str()));
    EXPECT_FALSE(video.load(nullptr));
    video.playLoop();
    EXPECT_EQ(video.getStatus(), 2);
    EXPECT_FALSE(video.update(1));
}

TEST(NoVideoTest, NothingElseChanges) {
    KTVIDEO video;
    EXPECT_EQ(KTVIDEO::getNumberOfVideos(), 1u);
    EXPECT_EQ(KTVIDEO::findById(video.getId()), &video);
    EXPECT_EQ(video.getFilename(), "[video " + std::to_string(video.getId()) + "]");
    KTVIDEO::setMPGPath("films/");
    EXPECT_STREQ(KTVIDEO::getMPGPath(), "films/");
    KTVIDEO::setMPGPath(nullptr);
}

}  // namespace
}  // namespace keltra::test
