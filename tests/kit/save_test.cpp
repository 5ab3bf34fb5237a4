// SPDX-License-Identifier: Zlib
#include <keltra/fault.h>
#include <keltra/kit/save.h>

#include <gtest/gtest.h>
#ifdef _WIN32
#include <windows.h>
#else
#include <unistd.h>
#endif

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "tests/support/allocations.h"
#include "tests/support/temp_file.h"
#include "tools/support/interpose.h"

namespace {

// What the kit asks of the disk, while a test listens: S for a file or folder that is brought to it, R for a
// new name. The step of that letter fails.
bool isListening = false;
char failing = 0;
std::string steps;

bool passes(char step) {
    if (!isListening) return true;
    steps += step;
    if (step != failing) return true;
    errno = EIO;
    return false;
}

}  // namespace

#ifdef _WIN32
constexpr char kSteps[] = "SR";  // with a flag that its name is brought to the disk too
KELTRA_INTERPOSE(BOOL, WINAPI, FlushFileBuffers, (HANDLE file)) {
    return passes('S') && keltra::nextFunction<BOOL WINAPI(HANDLE)>("FlushFileBuffers")(file);
}
KELTRA_INTERPOSE(BOOL, WINAPI, MoveFileExA, (const char *from, const char *to, DWORD flags)) {
    using Move = BOOL WINAPI(const char *, const char *, DWORD);
    return (flags & MOVEFILE_WRITE_THROUGH) && passes('R') &&
           keltra::nextFunction<Move>("MoveFileExA")(from, to, flags);
}
#else
constexpr char kSteps[] = "SRS";
KELTRA_INTERPOSE(int, , fsync, (int file)) {
    return passes('S') ? keltra::nextFunction<int(int)>("fsync")(file) : -1;
}
KELTRA_INTERPOSE(int, , rename, (const char *from, const char *to) noexcept) {
    return passes('R') ? keltra::nextFunction<int(const char *, const char *)>("rename")(from, to) : -1;
}
#endif

namespace keltra::test {
namespace {

class KitSaveTest : public ::testing::Test {
   protected:
    void SetUp() override { KTFAULTS::clear(); }
    void TearDown() override {
        isListening = false;
        failing = 0;
        steps.clear();
    }
    static KTSAVE sample(unsigned int version = 1) {
        KTSAVE save(version);
        const unsigned char board[3] = {7, 0, 9};
        EXPECT_TRUE(save.setInt("level", -3) && save.setFloat("time", 1.5f) &&
                    save.setText("name", "Vesper") && save.setBytes("board", board, sizeof board));
        return save;
    }
    static void expectSample(const KTSAVE &save) {
        EXPECT_EQ(save.getInt("level"), -3);
        EXPECT_EQ(save.getFloat("time"), 1.5f);
        EXPECT_STREQ(save.getText("name"), "Vesper");
        unsigned char board[4] = {1, 1, 1, 1};
        EXPECT_EQ(save.getBytes("board", board, sizeof board), 3u);
        EXPECT_EQ(std::memcmp(board, "\7\0\11\1", 4), 0);
    }
    std::string contents() const {
        std::ifstream file(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    }
    // Whether a file of these bytes is refused, with a fault and nothing changed.
    bool isRefused(const std::string &bytes) {
        folder.write("game.sav", bytes);
        KTSAVE save;
        save.setInt("kept", 5);
        KTFAULTS::clear();
        if (save.read(path.c_str())) return false;
        EXPECT_EQ(save.getInt("kept"), 5);
        EXPECT_EQ(KTFAULTS::getNumberOfFaults(), 1u);
        EXPECT_EQ(KTFAULTS::getLast()->code, KT_FAULT_DATA);
        return true;
    }

    TempFolder folder;
    const std::string path = folder.path("game.sav");
};

TEST_F(KitSaveTest, ValuesComeBack) {
    ASSERT_TRUE(sample().write(path.c_str()));
    KTSAVE save;
    ASSERT_TRUE(save.read(path.c_str()));
    expectSample(save);
    EXPECT_EQ(KTFAULTS::getNumberOfFaults(), 0u);
}

TEST_F(KitSaveTest, WhatIsNotThereIsOtherwise) {
    const KTSAVE save = sample();
    EXPECT_EQ(save.getInt("none", 4), 4);
    EXPECT_EQ(save.getInt("name", 4), 4) << "another kind";
    EXPECT_TRUE(std::isnan(save.getFloat(nullptr, NAN)));
    EXPECT_STREQ(save.getText("level", "other"), "other");
    EXPECT_EQ(save.getBytes("name", nullptr, 0), 0u);
    EXPECT_EQ(save.getBytes("board", nullptr, 0), 3u);
    EXPECT_FALSE(save.has("leve"));
    EXPECT_FALSE(save.has("levels"));
    EXPECT_TRUE(save.has("level"));
}

TEST_F(KitSaveTest, AValueIsReplacedAndRemoved) {
    KTSAVE save = sample();
    const unsigned int size = save.getSize();
    EXPECT_TRUE(save.setInt("level", 8));
    EXPECT_EQ(save.getSize(), size);
    EXPECT_TRUE(save.setText("level", save.getText("name"))) << "of another kind, from another value";
    EXPECT_STREQ(save.getText("level"), "Vesper");
    EXPECT_EQ(save.getInt("level", 1), 1);
    EXPECT_TRUE(save.remove("level"));
    EXPECT_FALSE(save.remove("level"));
    EXPECT_STREQ(save.getText("name"), "Vesper");
    save.clear();
    EXPECT_FALSE(save.has("name"));
}

TEST_F(KitSaveTest, NamesAndRoomAreLimited) {
    KTSAVE save;
    EXPECT_FALSE(save.setInt(nullptr, 1));
    EXPECT_FALSE(save.setInt("", 1));
    EXPECT_FALSE(save.setInt("a name of thirty-two characters!", 1));
    EXPECT_TRUE(save.setInt("a name of thirty-one characters", 1));
    EXPECT_FALSE(save.setText("text", nullptr));
    EXPECT_FALSE(save.setBytes("bytes", nullptr, 4));
    save.clear();
    const std::vector<char> bytes(KTSAVE::capacity + 1, 'x');
    EXPECT_FALSE(save.setBytes("abc", bytes.data(), KTSAVE::capacity - 6));
    EXPECT_FALSE(save.setBytes("abc", bytes.data(), 0xfffffff0u));
    EXPECT_TRUE(save.setBytes("abc", bytes.data(), KTSAVE::capacity - 7));
    EXPECT_TRUE(save.setBytes("abc", bytes.data(), KTSAVE::capacity - 7)) << "in its own place";
    EXPECT_FALSE(save.setInt("a", 1));
    EXPECT_FALSE(save.setText("text", std::string(70000, 'x').c_str()));
    EXPECT_EQ(KTFAULTS::getLast()->code, KT_FAULT_FULL);
    ASSERT_TRUE(save.write(path.c_str()));
    EXPECT_TRUE(save.read(path.c_str())) << "a full one";
}

// --- damage

TEST_F(KitSaveTest, EveryDamagedByteIsRefused) {
    ASSERT_TRUE(sample().write(path.c_str()));
    const std::string good = contents();
    for (std::size_t i = 0; i < good.size(); ++i) {
        for (int bit = 0; bit < 8; ++bit) {
            std::string bad = good;
            bad[i] = static_cast<char>(bad[i] ^ 1 << bit);
            EXPECT_TRUE(isRefused(bad)) << "bit " << bit << " of byte " << i;
        }
    }
}

TEST_F(KitSaveTest, EveryTruncationIsRefused) {
    ASSERT_TRUE(sample().write(path.c_str()));
    const std::string good = contents();
    for (std::size_t size = 0; size < good.size(); ++size)
        EXPECT_TRUE(isRefused(good.substr(0, size))) << size;
    EXPECT_TRUE(isRefused(good + "x"));
    EXPECT_TRUE(isRefused(std::string(100000, 'x')));
}

TEST_F(KitSaveTest, VersionsAreTold) {
    ASSERT_TRUE(sample(2).write(path.c_str()));
    KTSAVE later(3), earlier(1);
    ASSERT_TRUE(later.read(path.c_str()));
    EXPECT_EQ(later.getReadVersion(), 2u);
    EXPECT_FALSE(earlier.read(path.c_str()));
    EXPECT_STREQ(KTFAULTS::getLast()->field, "version");
    EXPECT_FALSE(earlier.has("level"));
}

TEST_F(KitSaveTest, WhatCannotBeReadIsRefused) {
    KTSAVE save;
    EXPECT_FALSE(save.read(folder.path("none.sav").c_str()));
    EXPECT_EQ(KTFAULTS::getLast()->code, KT_FAULT_FILE_MISSING);
    EXPECT_FALSE(save.read(folder.path("").c_str())) << "a folder";
    EXPECT_FALSE(save.read(nullptr));
    EXPECT_FALSE(save.write(nullptr));
    EXPECT_FALSE(save.write(""));
    EXPECT_FALSE(save.write(std::string(300, 'x').c_str()));
    EXPECT_FALSE(save.write(folder.path("none/game.sav").c_str()));
    EXPECT_EQ(KTFAULTS::getNumberOfFaults(), 7u);
}

// --- a pulled battery

TEST_F(KitSaveTest, TheNewFileIsOnTheDiskBeforeItTakesThePlace) {
    isListening = true;
    ASSERT_TRUE(sample().write(path.c_str()));
    EXPECT_EQ(steps, kSteps) << "the file, its name, and the folder with the name";
    EXPECT_FALSE(std::filesystem::exists(path + ".new"));
}

TEST_F(KitSaveTest, AFailureLeavesTheOldFile) {
    ASSERT_TRUE(sample().write(path.c_str()));
    for (char step : {'S', 'R'}) {
        KTSAVE other;
        other.setInt("level", 99);
        isListening = true;
        failing = step;
        EXPECT_FALSE(other.write(path.c_str()));
        EXPECT_EQ(KTFAULTS::getLast()->code, KT_FAULT_FILE_WRITE);
        isListening = false;
        KTSAVE save;
        ASSERT_TRUE(save.read(path.c_str()));
        expectSample(save);
        EXPECT_FALSE(std::filesystem::exists(path + ".new"));
    }
}

TEST_F(KitSaveTest, NothingIsAllocatedForValues) {
    Allocations::startCounting();
    KTSAVE save = sample();
    save.remove("time");
    save.getInt("level");
    EXPECT_EQ(Allocations::stopCounting(), 0);
}

}  // namespace
}  // namespace keltra::test
