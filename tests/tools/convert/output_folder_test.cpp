// SPDX-License-Identifier: Zlib
#include "tools/convert/output_folder.h"

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <random>

#include "tests/support/small_disk.h"
#include "tests/support/temp_file.h"

namespace keltra::convert {
namespace {

namespace fs = std::filesystem;
using test::readFile;
using test::SmallDisk;
using test::TempFolder;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

using Bytes = std::vector<std::uint8_t>;

std::vector<std::string> namesIn(const std::string &folder) {
    std::vector<std::string> names;
    for (const fs::directory_entry &entry : fs::directory_iterator(folder))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

// Why it was refused; empty when it was not.
std::string refusalOf(const std::string &folder, const std::vector<OutputFile> &files) {
    try {
        commitFiles(folder, files);
    } catch (const Refusal &refusal) {
        return refusal.what();
    }
    return "";
}

TEST(CommitFiles, WritesThemAll) {
    TempFolder folder;
    commitFiles(folder.path(""), {{"a.tga", {1, 2, 3}}, {"empty.tga", {}}, {"a.kte", Bytes(3000000, 7)}});
    EXPECT_THAT(namesIn(folder.path("")), ElementsAre("a.kte", "a.tga", "empty.tga"));
    EXPECT_EQ(readFile(folder.path("a.tga")), (Bytes{1, 2, 3}));
    EXPECT_EQ(readFile(folder.path("a.kte")), Bytes(3000000, 7));
    EXPECT_TRUE(readFile(folder.path("empty.tga")).empty());
}

TEST(CommitFiles, ReplacesFilesAndLinksButNotWhatLinksPointTo) {
    TempFolder folder;
    folder.write("a.tga", "old and longer");
    folder.write("elsewhere", "kept");
    fs::create_symlink(folder.path("elsewhere"), folder.path("a.kte"));
    commitFiles(folder.path(""), {{"a.tga", {1}}, {"a.kte", {2}}});
    EXPECT_EQ(readFile(folder.path("a.tga")), Bytes{1});
    EXPECT_FALSE(fs::is_symlink(folder.path("a.kte")));
    EXPECT_EQ(readFile(folder.path("a.kte")), Bytes{2});
    EXPECT_EQ(readFile(folder.path("elsewhere")).size(), 4u);
}

TEST(CommitFiles, FilesAreAsReadableAsTheUserWants) {
    TempFolder folder;
    const mode_t before = ::umask(027);
    commitFiles(folder.path(""), {{"a.kte", {1}}});
    ::umask(before);
    EXPECT_EQ(fs::status(folder.path("a.kte")).permissions(), fs::perms(0640));
}

TEST(CommitFiles, TakesTheLongestNames) {
    TempFolder folder;
    const std::string name = std::string(251, 'n') + ".kte";
    commitFiles(folder.path(""), {{name, {1}}});
    EXPECT_THAT(namesIn(folder.path("")), ElementsAre(name));
}

TEST(CommitFiles, AFolderInTheWayLeavesEverythingAsItWas) {
    TempFolder folder;
    folder.write("a.tga", "old");
    fs::create_directory(folder.path("a.kte"));
    const std::string reason = refusalOf(folder.path(""), {{"a.tga", {1}}, {"b.tga", {2}}, {"a.kte", {3}}});
    EXPECT_THAT(reason, HasSubstr("a.kte: Is a directory"));
    EXPECT_THAT(namesIn(folder.path("")), ElementsAre("a.kte", "a.tga"));
    EXPECT_EQ(readFile(folder.path("a.tga")).size(), 3u);
}

TEST(CommitFiles, AFifoInTheWayIsNoFileToReplace) {
    TempFolder folder;
    ASSERT_EQ(::mkfifo(folder.path("a.kte").c_str(), 0600), 0);
    EXPECT_THAT(refusalOf(folder.path(""), {{"a.kte", {1}}}), HasSubstr("File exists"));
    EXPECT_TRUE(fs::is_fifo(folder.path("a.kte")));
}

TEST(CommitFiles, RefusesFoldersThatAreNone) {
    TempFolder folder;
    EXPECT_THAT(refusalOf(folder.path("missing"), {{"a", {1}}}), HasSubstr("No such file or directory"));
    EXPECT_THAT(refusalOf(folder.write("file", "x"), {{"a", {1}}}), HasSubstr("Not a directory"));
    EXPECT_THAT(refusalOf("/proc/self", {{"a", {1}}}), HasSubstr("cannot write /proc/self/a"));
}

TEST(CommitFiles, AFileThatCannotBeWrittenWholeLeavesNothing) {
    TempFolder folder;
    folder.write("first.tga", "old");
    std::string reason;
    {
        const SmallDisk disk(1000);
        reason = refusalOf(folder.path(""), {{"first.tga", {1}}, {"a.kte", Bytes(5000)}});
    }
    EXPECT_THAT(reason, HasSubstr("a.kte: File too large"));
    EXPECT_THAT(namesIn(folder.path("")), ElementsAre("first.tga"));
    EXPECT_EQ(readFile(folder.path("first.tga")).size(), 3u);
}

TEST(CommitFiles, AnInterruptComesBeforeOrAfterNeverBetween) {
    std::mt19937 random(7);
    std::vector<OutputFile> files;
    for (int i = 0; i < 40; ++i) files.push_back({std::to_string(i) + ".tga", Bytes(20000, 1)});
    for (int round = 0; round < 40; ++round) {
        TempFolder folder;
        const pid_t pid = ::fork();
        if (pid == 0) {
            ::signal(SIGTERM, SIG_DFL);
            commitFiles(folder.path(""), files);
            ::_exit(0);
        }
        ::usleep(static_cast<useconds_t>(random() % 6000));
        ::kill(pid, SIGTERM);
        int status = 0;
        ASSERT_EQ(::waitpid(pid, &status, 0), pid);
        const std::vector<std::string> names = namesIn(folder.path(""));
        ASSERT_TRUE(names.empty() || names.size() == files.size()) << names.size();
        for (const std::string &name : names) ASSERT_EQ(readFile(folder.path(name)), files[0].bytes);
    }
}

TEST(CommitFiles, LetsASignalThroughAtTheEnd) {
    TempFolder folder;
    const pid_t pid = ::fork();
    if (pid == 0) {
        ::signal(SIGINT, SIG_DFL);
        {
            HeldSignals held;
            ::raise(SIGINT);
            commitFiles(folder.path(""), {{"a.kte", {1}}});
        }
        ::_exit(0);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(pid, &status, 0), pid);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGINT);
    EXPECT_THAT(namesIn(folder.path("")), ElementsAre("a.kte"));
}

TEST(OutputFolderTest, IsMadeWithItsParentsAndKept) {
    for (const char *path : {"a/b/c", "a/b/c/", "a//b/./c"}) {
        TempFolder folder;
        {
            OutputFolder made(folder.path(path));
            made.keep();
        }
        EXPECT_TRUE(fs::is_directory(folder.path("a/b/c"))) << path;
    }
}

TEST(OutputFolderTest, GoesAwayUnlessKept) {
    TempFolder folder;
    fs::create_directory(folder.path("a"));
    { OutputFolder made(folder.path("a/b/c")); }
    EXPECT_TRUE(fs::exists(folder.path("a")));
    EXPECT_FALSE(fs::exists(folder.path("a/b")));
}

TEST(OutputFolderTest, WhatOthersPutThereStays) {
    TempFolder folder;
    {
        OutputFolder made(folder.path("a/b"));
        folder.write("a/file", "x");
    }
    EXPECT_THAT(namesIn(folder.path("a")), ElementsAre("file"));
}

TEST(OutputFolderTest, AnExistingOneStays) {
    TempFolder folder;
    { OutputFolder existing(folder.path("")); }
    EXPECT_TRUE(fs::exists(folder.path("")));
}

TEST(OutputFolderTest, RefusesWhatCannotBeAFolder) {
    TempFolder folder;
    const std::string file = folder.write("file", "x");
    const std::string longest(256, 'x');
    for (const std::string &path :
         {file, file + "/below", std::string("/proc/none/x"), folder.path(longest)}) {
        try {
            OutputFolder none(path);
            ADD_FAILURE() << path;
        } catch (const Refusal &refusal) {
            EXPECT_THAT(refusal.what(), HasSubstr("cannot write to " + path + ": "));
        }
    }
    EXPECT_THAT(namesIn(folder.path("")), ElementsAre("file"));
}

TEST(OutputFolderTest, TakesBackTheParentsOfWhatCannotBeMade) {
    TempFolder folder;
    EXPECT_THROW(OutputFolder(folder.path("a/b/" + std::string(256, 'x'))), Refusal);
    EXPECT_THAT(namesIn(folder.path("")), IsEmpty());
}

}  // namespace
}  // namespace keltra::convert
