// SPDX-License-Identifier: Zlib
// Every file that says the project's version says that of the library.

#include <gtest/gtest.h>
#include <keltra/keltra.h>

#include <fstream>
#include <regex>

namespace keltra::test {
namespace {

// What the pattern's group holds where a line of the file matches first.
std::string firstIn(const char *file, const char *pattern) {
    std::ifstream lines(std::string(KELTRA_PROJECT_FOLDER "/") + file);
    std::smatch match;
    for (std::string line; std::getline(lines, line);)
        if (std::regex_search(line, match, std::regex(pattern))) return match[1];
    return "none";
}

TEST(VersionsTest, AreTheLibrarys) {
    const std::string version = KTVERSION::getString();
    EXPECT_EQ(firstIn("docs/Doxyfile", "^PROJECT_NUMBER +=\\s*(\\S+)"), version);
    EXPECT_EQ(firstIn("CHANGELOG.md", "^## ([0-9.]+) - [0-9]{4}-[0-9]{2}-[0-9]{2}$"), version);
    EXPECT_EQ(firstIn("packaging/debian/changelog", "^keltra \\(([0-9.]+)-[0-9]+\\) "), version);
    EXPECT_EQ(firstIn("packaging/keltra-demo.metainfo.xml", "<release version=\"([0-9.]+)\""), version);
}

}  // namespace
}  // namespace keltra::test
