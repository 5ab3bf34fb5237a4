// SPDX-License-Identifier: Zlib
#include "foundation/argument.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstdio>
#include <string>

namespace keltra::test {
namespace {

std::string written(const char *pattern, unsigned int id) {
    char name[256];
    std::fill(name, name + sizeof name, 'x');
    writeName(name, pattern, id);
    return name;
}

std::string printed(const std::string &pattern, unsigned int id) {
    char name[256];
    std::snprintf(name, sizeof name, pattern.c_str(), id);
    return name;
}

TEST(NameTest, IsWhatTheCLibraryPrints) {
    const std::string halfOfAll(126, 'n'), tooLong(300, 'n');
    const std::string patterns[] = {"[node %d]",
                                    "%d",
                                    "%d%%",
                                    "none",
                                    "",
                                    "%u of",
                                    "50%% %d",
                                    "%5d",
                                    "[%x]",
                                    halfOfAll + "%d",
                                    halfOfAll + "n%dmm",
                                    tooLong + "%d",
                                    "%d" + tooLong,
                                    "%d]%%"};
    for (const std::string &pattern : patterns)
        for (const unsigned int id : {0u, 7u, 65535u, unsigned{INT_MAX}, 1u + INT_MAX, UINT_MAX})
            EXPECT_EQ(written(pattern.c_str(), id), printed(pattern, id)) << pattern;
}

TEST(NameTest, HasEachNumber) {
    for (unsigned int id = 0; id < 140000; ++id)
        ASSERT_EQ(written("[%d]", id), "[" + std::to_string(id) + "]");
    for (unsigned int id = 9; id < INT_MAX / 11; id += id / 10 + 1)
        ASSERT_EQ(written("%d", id), std::to_string(id));
}

}  // namespace
}  // namespace keltra::test
