// SPDX-License-Identifier: Zlib
#include <gtest/gtest.h>

#include "platform/platform.h"
#include "tests/support/temp_file.h"

#ifndef _WIN32
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace keltra::test {
namespace {

TEST(PlatformFilesTest, OnlyARegularFileThatMayBeWrittenCanBeReplaced) {
    TempFolder folder;
    const std::string file = folder.write("file", "text");
    EXPECT_TRUE(platformCanReplace(file.c_str()));
    EXPECT_FALSE(platformCanReplace(folder.path("missing").c_str()));
    EXPECT_FALSE(platformCanReplace(folder.prefix().c_str()));
#ifndef _WIN32
    EXPECT_FALSE(platformCanReplace("/dev/null"));
    const std::string link = folder.path("link");
    ASSERT_EQ(symlink("file", link.c_str()), 0);
    EXPECT_FALSE(platformCanReplace(link.c_str()));
    // Root may write to any file, so another user looks, in a child.
    ASSERT_EQ(chmod(folder.prefix().c_str(), 0755), 0);
    for (const mode_t rights : {0666, 0444}) {
        ASSERT_EQ(chmod(file.c_str(), rights), 0);
        const auto look = [&file] {
            const uid_t nobody = 65534;
            if (geteuid() == 0 && setuid(nobody) != 0) _exit(2);
            _exit(platformCanReplace(file.c_str()) ? 1 : 0);
        };
        EXPECT_EXIT(look(), testing::ExitedWithCode(rights == 0666 ? 1 : 0), "") << rights;
    }
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
