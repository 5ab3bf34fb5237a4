// SPDX-License-Identifier: Zlib
#include "tools/view/link_folder.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>

#include <filesystem>

#include "tests/support/temp_file.h"
#include "tests/support/unprivileged.h"
#include "tools/view/failure.h"

namespace fs = std::filesystem;
using namespace keltra::test;
using namespace keltra::view;

namespace {

// TMPDIR for the lifetime of the object.
class TempDirectory {
   public:
    explicit TempDirectory(const std::string &path) {
        const char *present = getenv("TMPDIR");
        had = present != nullptr;
        if (had) before = present;
        setenv("TMPDIR", path.c_str(), 1);
    }
    ~TempDirectory() { had ? setenv("TMPDIR", before.c_str(), 1) : unsetenv("TMPDIR"); }

   private:
    bool had;
    std::string before;
};

}  // namespace

TEST(LinkFolder, IsPrivateAndGoneWithTheObject) {
    std::string path;
    {
        LinkFolder links;
        path = links.prefix();
        EXPECT_EQ(path.back(), '/');
        struct stat status;
        ASSERT_EQ(::stat(path.c_str(), &status), 0);
        EXPECT_EQ(status.st_mode & 077, 0u);
        links.makeFolder("m0");
        TempFolder elsewhere;
        links.link(elsewhere.write("a", "1"), "m0-a");
    }
    EXPECT_FALSE(fs::exists(path));
}

TEST(LinkFolder, LinksLeaveWhatTheyLeadTo) {
    TempFolder folder;
    const std::string file = folder.write("long.xml.kte", "content");
    {
        LinkFolder links;
        links.link(file, "m0-scene.kte");
        links.link(folder.prefix(), "m0");
        EXPECT_EQ(readFile(links.path("m0-scene.kte")).size(), 7u);
        EXPECT_EQ(readFile(links.path("m0/long.xml.kte")).size(), 7u);
        links.clear("m0");
        EXPECT_FALSE(fs::exists(links.path("m0")));
        EXPECT_FALSE(fs::exists(links.path("m0-scene.kte")));
        links.link(folder.prefix(), "m1");
    }
    EXPECT_TRUE(fs::exists(file));
}

TEST(LinkFolder, ClearTakesOneBeginningOnly) {
    TempFolder folder;
    LinkFolder links;
    links.link(folder.write("a", "1"), "m1-a");
    links.link(folder.write("b", "2"), "m2-b");
    links.clear("m1");
    EXPECT_FALSE(fs::exists(links.path("m1-a")));
    EXPECT_TRUE(fs::exists(links.path("m2-b")));
}

TEST(LinkFolder, ANameThatIsTakenIsAFailure) {
    TempFolder folder;
    LinkFolder links;
    links.link(folder.write("a", "1"), "m1-a");
    EXPECT_THROW(links.link(folder.path("a"), "m1-a"), Failure);
}

TEST(LinkFolder, NeedsATemporaryFolderOfBearableLength) {
    TempFolder folder;
    const std::string longPath = folder.path(std::string(210, 'x'));
    fs::create_directory(longPath);
    const TempDirectory here(longPath);
    EXPECT_THROW(LinkFolder(), Failure);
}

TEST(LinkFolder, WithoutATemporaryFolderThereIsNone) {
    const TempDirectory here("/nowhere/at/all");
    try {
        LinkFolder links;
        ADD_FAILURE() << "it was made in " << links.prefix();
    } catch (const Failure &fault) {
        EXPECT_EQ(std::string(fault.what()).find("/nowhere/at/all: "), 0u) << fault.what();
    }
}

TEST(LinkFolder, SaysThatItCannotBeMade) {
    TempFolder folder;
    fs::permissions(folder.prefix(), fs::perms::owner_read | fs::perms::owner_exec | fs::perms::others_read |
                                         fs::perms::others_exec);
    const TempDirectory here(folder.path(""));
    const Unprivileged unprivileged;
    try {
        LinkFolder links;
        ADD_FAILURE() << "it was made in " << links.prefix();
    } catch (const Failure &fault) {
        EXPECT_NE(std::string(fault.what()).find("no temporary folder can be made there"), std::string::npos)
            << fault.what();
    }
}
