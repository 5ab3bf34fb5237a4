// SPDX-License-Identifier: Zlib
#include <gtest/gtest.h>

#include "platform/platform.h"
#include "tests/support/temp_file.h"

#ifndef _WIN32
#include <unistd.h>
#endif

namespace keltra::test {
namespace {

TEST(PlatformFilesTest, OnlyAFileThatMayBeWrittenCanBeReplaced) {
    TempFolder folder;
    const std::string file = folder.write("file", "text");
    EXPECT_TRUE(platformCanReplace(file.c_str()));
    EXPECT_FALSE(platformCanReplace(folder.path("missing").c_str()));
    EXPECT_FALSE(platformCanReplace(folder.prefix().c_str()));
#ifndef _WIN32  // no links of POSIX
    EXPECT_FALSE(platformCanReplace("/dev/null"));
    const std::string link = folder.path("link");
    ASSERT_EQ(symlink("file", link.c_str()), 0);
    EXPECT_FALSE(platformCanReplace(link.c_str()));
#endif
}

#ifndef _WIN32
// A process without standard input has its files from descriptor 0 on.
TEST(PlatformFilesTest, TheFirstDescriptorIsOneLikeAnyOther) {
    TempFolder folder;
    const std::string path = folder.write("file", "text");
    const int input = dup(STDIN_FILENO);
    ASSERT_EQ(close(STDIN_FILENO), 0);
    platformReclaimableMemory(platformMemory());
    const std::int64_t size = platformFileSize(path.c_str());
    std::FILE *const file = platformCreateFile(path.c_str(), "wb");
    if (file) std::fclose(file);
    const int next = dup(STDOUT_FILENO);
    dup2(input, STDIN_FILENO);
    close(input);
    EXPECT_EQ(size, 4);
    EXPECT_NE(file, nullptr);
    EXPECT_EQ(next, STDIN_FILENO) << "what was opened is closed";
}
#endif

}  // namespace
}  // namespace keltra::test
