// SPDX-License-Identifier: Zlib
#include "tools/info/read_file.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstring>

#include "tests/support/temp_file.h"

namespace keltra::test {
namespace {

class ReadFileTest : public ::testing::Test {
   protected:
    /// Why the file is refused; empty when it is read.
    std::string refusal(const std::string &path) {
        std::string error;
        const bool good = info::readWholeFile(path, bytes, error);
        EXPECT_EQ(good, error.empty());
        return error;
    }

    TempFolder folder;
    std::vector<char> bytes;
};

TEST_F(ReadFileTest, GivesAllBytes) {
    const std::string contents("a\0b\n\xff", 5);
    EXPECT_EQ(refusal(folder.write("file", contents)), "");
    EXPECT_EQ(std::string(bytes.begin(), bytes.end()), contents);
}

TEST_F(ReadFileTest, GivesNoneOfAnEmptyFile) {
    bytes = {'x'};
    EXPECT_EQ(refusal(folder.write("file", "")), "");
    EXPECT_TRUE(bytes.empty());
}

TEST_F(ReadFileTest, GivesALargeFileInOrder) {
    std::string contents;
    for (int i = 0; i < 300000; ++i) contents += std::to_string(i);
    EXPECT_EQ(refusal(folder.write("file", contents)), "");
    EXPECT_TRUE(std::equal(bytes.begin(), bytes.end(), contents.begin(), contents.end()));
}

TEST_F(ReadFileTest, FollowsLinksToFiles) {
    folder.write("file", "abc");
    ASSERT_EQ(symlink("file", folder.path("link").c_str()), 0);
    EXPECT_EQ(refusal(folder.path("link")), "");
    EXPECT_EQ(bytes.size(), 3u);
    ASSERT_EQ(symlink("gone", folder.path("dangling").c_str()), 0);
    EXPECT_EQ(refusal(folder.path("dangling")), std::strerror(ENOENT));
    ASSERT_EQ(symlink(".", folder.path("up").c_str()), 0);
    EXPECT_EQ(refusal(folder.path("up")), "is a folder");
}

TEST_F(ReadFileTest, RefusesWhatIsNotARegularFile) {
    EXPECT_EQ(refusal("/dev/null"), "is not a regular file");
    ASSERT_EQ(mkfifo(folder.path("pipe").c_str(), 0600), 0);
    EXPECT_EQ(refusal(folder.path("pipe")), "is not a regular file");
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    const std::string path = folder.path("s");
    ASSERT_LT(path.size(), sizeof address.sun_path);
    std::strcpy(address.sun_path, path.c_str());
    const int socket = ::socket(AF_UNIX, SOCK_STREAM, 0);
    ASSERT_EQ(::bind(socket, reinterpret_cast<sockaddr *>(&address), sizeof address), 0);
    EXPECT_EQ(refusal(path), "is not a regular file");
    ::close(socket);
}

TEST_F(ReadFileTest, SaysWhyAPathLeadsNowhere) {
    folder.write("file", "abc");
    EXPECT_EQ(refusal(folder.path("file/below")), std::strerror(ENOTDIR));
    EXPECT_EQ(refusal(""), std::strerror(ENOENT));
    EXPECT_EQ(refusal(folder.path(std::string(300, 'n'))), std::strerror(ENAMETOOLONG));
}

TEST_F(ReadFileTest, RefusesTwoGibibytes) {
    folder.write("large", "abc");
    ASSERT_EQ(truncate(folder.path("large").c_str(), off_t{1} << 31), 0);
    EXPECT_EQ(refusal(folder.path("large")), "is larger than the 2 GiB that the engine reads");
}

}  // namespace
}  // namespace keltra::test
