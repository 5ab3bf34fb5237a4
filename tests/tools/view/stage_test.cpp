#include "tools/view/stage.h"

#include "tests/support/temp_file.h"
#include "tools/view/failure.h"

#include <gtest/gtest.h>

#include <stdlib.h>
#include <sys/stat.h>
#include <filesystem>

namespace fs = std::filesystem;
using keltra::test::readFile;
using keltra::test::TempFolder;
using keltra::view::Failure;
using keltra::view::Stage;

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

TEST(Stage, IsPrivateAndGoneWithTheObject) {
    std::string path;
    {
        Stage stage;
        path = stage.prefix();
        EXPECT_EQ(path.back(), '/');
        struct stat status;
        ASSERT_EQ(::stat(path.c_str(), &status), 0);
        EXPECT_EQ(status.st_mode & 077, 0u);
        stage.makeFolder("m0");
        TempFolder elsewhere;
        stage.link(elsewhere.write("a", "1"), "m0-a");
    }
    EXPECT_FALSE(fs::exists(path));
}

TEST(Stage, LinksLeaveWhatTheyLeadTo) {
    TempFolder folder;
    const std::string file = folder.write("long.xml.kte", "content");
    {
        Stage stage;
        stage.link(file, "m0-scene.kte");
        stage.link(folder.prefix(), "m0");
        EXPECT_EQ(readFile(stage.path("m0-scene.kte")).size(), 7u);
        EXPECT_EQ(readFile(stage.path("m0/long.xml.kte")).size(), 7u);
        stage.clear("m0");
        EXPECT_FALSE(fs::exists(stage.path("m0")));
        EXPECT_FALSE(fs::exists(stage.path("m0-scene.kte")));
        stage.link(folder.prefix(), "m1");
    }
    EXPECT_TRUE(fs::exists(file));
}

TEST(Stage, ClearTakesOneBeginningOnly) {
    TempFolder folder;
    Stage stage;
    stage.link(folder.write("a", "1"), "m1-a");
    stage.link(folder.write("b", "2"), "m2-b");
    stage.clear("m1");
    EXPECT_FALSE(fs::exists(stage.path("m1-a")));
    EXPECT_TRUE(fs::exists(stage.path("m2-b")));
}

TEST(Stage, ANameThatIsTakenIsAFailure) {
    TempFolder folder;
    Stage stage;
    stage.link(folder.write("a", "1"), "m1-a");
    EXPECT_THROW(stage.link(folder.path("a"), "m1-a"), Failure);
}

TEST(Stage, NeedsATemporaryFolderOfBearableLength) {
    TempFolder folder;
    const std::string longPath = folder.path(std::string(210, 'x'));
    fs::create_directory(longPath);
    const TempDirectory here(longPath);
    EXPECT_THROW(Stage(), Failure);
}

TEST(Stage, WithoutATemporaryFolderThereIsNone) {
    const TempDirectory here("/nowhere/at/all");
    EXPECT_THROW(Stage(), Failure);
}
