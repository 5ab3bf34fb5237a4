// SPDX-License-Identifier: Zlib
#include <keltra/version.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

namespace {

TEST(VersionTest, LibrarySaysTheVersionOfItsHeaders) {
    EXPECT_STREQ(KTVERSION::getString(), KELTRA_VERSION_STRING);
    EXPECT_EQ(KTVERSION::getNumber(), KELTRA_VERSION_NUMBER);
}

TEST(VersionTest, TextAndNumberAreTheSameVersion) {
    char text[32];
    std::snprintf(text, sizeof text, "%d.%d.%d", KTVERSION::getNumber() / 10000,
                  KTVERSION::getNumber() / 100 % 100, KTVERSION::getNumber() % 100);
    EXPECT_STREQ(text, KTVERSION::getString());
    EXPECT_EQ(std::string(text), KELTRA_PROJECT_VERSION);
}

}  // namespace
