// SPDX-License-Identifier: Zlib
#include "tools/view/file_watch.h"

#include <gtest/gtest.h>

#include "tests/support/temp_file.h"

using keltra::test::TempFolder;
using keltra::view::FileStamp;
using keltra::view::FileWatch;
using keltra::view::stampOf;

namespace {

FileStamp stamp(std::int64_t seconds, std::int64_t size) {
    FileStamp made;
    made.exists = true;
    made.seconds = seconds;
    made.size = size;
    return made;
}

}  // namespace

TEST(FileWatch, AFileThatStaysIsNeverDue) {
    FileWatch watch(stamp(1, 10));
    for (int i = 0; i < 5; ++i) EXPECT_FALSE(watch.poll(stamp(1, 10)));
}

TEST(FileWatch, AChangeIsDueOnceItIsSeenTwice) {
    FileWatch watch(stamp(1, 10));
    EXPECT_FALSE(watch.poll(stamp(2, 10)));
    EXPECT_TRUE(watch.poll(stamp(2, 10)));
    EXPECT_FALSE(watch.poll(stamp(2, 10)));
}

TEST(FileWatch, AFileThatGrowsIsWaitedFor) {
    FileWatch watch(stamp(1, 10));
    EXPECT_FALSE(watch.poll(stamp(2, 11)));
    EXPECT_FALSE(watch.poll(stamp(2, 12)));
    EXPECT_FALSE(watch.poll(stamp(2, 13)));
    EXPECT_TRUE(watch.poll(stamp(2, 13)));
}

TEST(FileWatch, AFileThatIsAwayIsWaitedFor) {
    FileWatch watch(stamp(1, 10));
    EXPECT_FALSE(watch.poll(FileStamp()));
    EXPECT_FALSE(watch.poll(FileStamp()));
    EXPECT_FALSE(watch.poll(stamp(3, 10)));
    EXPECT_TRUE(watch.poll(stamp(3, 10)));
}

TEST(FileWatch, AFileThatComesBackAsItWasIsNotDue) {
    FileWatch watch(stamp(1, 10));
    EXPECT_FALSE(watch.poll(FileStamp()));
    EXPECT_FALSE(watch.poll(stamp(1, 10)));
    EXPECT_FALSE(watch.poll(stamp(1, 10)));
}

TEST(FileStamp, TellsFilesApart) {
    TempFolder folder;
    EXPECT_FALSE(stampOf(folder.path("none")).exists);
    const FileStamp first = stampOf(folder.write("one", "abc"));
    EXPECT_TRUE(first.exists);
    EXPECT_EQ(first.size, 3);
    EXPECT_TRUE(first == stampOf(folder.path("one")));
    EXPECT_TRUE(first != stampOf(folder.write("two", "abc")));
    EXPECT_TRUE(first != stampOf(folder.write("one", "abcd")));
}
