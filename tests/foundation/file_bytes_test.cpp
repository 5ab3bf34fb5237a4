// SPDX-License-Identifier: Zlib
#include "foundation/file_bytes.h"

#include "foundation/memory.h"
#include "tests/foundation/foundation_fixture.h"

namespace keltra::test {
namespace {

class FileBytesTest : public FoundationTest {};

TEST_F(FileBytesTest, HoldsTheWholeFile) {
    const FileBytes file(folder.write("data.bin", std::string("a\0b\r\n", 5)).c_str());
    EXPECT_EQ(std::string(file.data(), file.size()), std::string("a\0b\r\n", 5));
    EXPECT_FALSE(file.isOutOfMemory());
}

TEST_F(FileBytesTest, IsEmptyForWhatCannotBeRead) {
    const std::string large = folder.write("large.bin", std::string(11, 'x'));
    for (const std::string &path : {std::string(), folder.path("missing"), folder.write("empty.bin", "")}) {
        const FileBytes file(path.c_str());
        EXPECT_EQ(file.data(), nullptr) << path;
        EXPECT_FALSE(file.isOutOfMemory()) << path;
    }
    EXPECT_EQ(FileBytes(nullptr).data(), nullptr);
    EXPECT_EQ(FileBytes(large.c_str(), 10).data(), nullptr);
    EXPECT_EQ(FileBytes(large.c_str(), 11).size(), 11u);
}

// Opened as a file, a folder claims the largest size that a long can hold.
TEST_F(FileBytesTest, AFolderIsNoFileAndTakesNoMemory) {
    const std::uint32_t before = memoryCounters().allocations;
    for (const std::string &path : {folder.prefix(), std::string("/"), std::string(".")}) {
        const FileBytes file(path.c_str());
        EXPECT_EQ(file.data(), nullptr) << path;
        EXPECT_FALSE(file.isOutOfMemory()) << path;
        EXPECT_EQ(vnfFileSize(path.c_str()), -1) << path;
    }
    EXPECT_EQ(memoryCounters().allocations, before);
}

}  // namespace
}  // namespace keltra::test
