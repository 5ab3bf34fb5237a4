// SPDX-License-Identifier: Zlib
#include "tools/support/whole_file.h"

#include <gtest/gtest.h>

#ifndef _WIN32
#include <sys/stat.h>
#endif

#include <filesystem>

#include "tests/support/small_disk.h"
#include "tests/support/temp_file.h"

namespace keltra::test {
namespace {

class WholeFileTest : public ::testing::Test {
   protected:
    static bool write(const std::string &path, const std::string &text, std::string *reason) {
        return support::writeWhole(path, text.data(), text.size(), reason);
    }
    long files() const {
        const std::filesystem::directory_iterator begin(folder.prefix()), end;
        return std::distance(begin, end);
    }
    std::string text() const {
        const std::vector<std::uint8_t> bytes = readFile(path);
        return {bytes.begin(), bytes.end()};
    }

    TempFolder folder;
    const std::string path = folder.path("file");
    std::string reason;
};

TEST_F(WholeFileTest, WritesAndReplaces) {
    EXPECT_TRUE(write(path, "old", &reason));
    EXPECT_TRUE(write(path, "new", &reason));
    EXPECT_EQ(text(), "new");
    EXPECT_EQ(files(), 1);
}

#ifndef _WIN32  // no limit of a file's size
TEST_F(WholeFileTest, WithoutRoomTheOldFileStays) {
    ASSERT_TRUE(write(path, "old", &reason));
    bool written;
    {
        const SmallDisk disk(4096);
        written = write(path, std::string(10000, 'x'), &reason);
    }
    EXPECT_FALSE(written);
    EXPECT_EQ(reason, "File too large");
    EXPECT_EQ(text(), "old");
    EXPECT_EQ(files(), 1);
}
#endif

TEST_F(WholeFileTest, NoFileTakesThePlaceOfAFolderOrAPipe) {
    EXPECT_FALSE(write(folder.prefix(), "text", &reason));
    EXPECT_EQ(reason, "Is a directory");
    long all = 0;
#ifndef _WIN32
    all = 1;
    ASSERT_EQ(mkfifo(path.c_str(), 0666), 0);
    EXPECT_FALSE(write(path, "text", &reason));
    EXPECT_EQ(reason, "File exists");
    struct stat status;
    ASSERT_EQ(lstat(path.c_str(), &status), 0);
    EXPECT_TRUE(S_ISFIFO(status.st_mode));
#endif
    EXPECT_FALSE(write(folder.path("missing/file"), "text", &reason));
    EXPECT_EQ(reason, "No such file or directory");
    EXPECT_EQ(files(), all);
}

}  // namespace
}  // namespace keltra::test
