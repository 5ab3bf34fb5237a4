// SPDX-License-Identifier: Zlib
#include "tests/headers/architecture.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "tests/support/temp_file.h"

namespace keltra::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

const std::string kFolder = KELTRA_SOURCE_FOLDER;
const std::string kPage = kFolder + "/docs/architecture.md";
const std::string kPicture = kFolder + "/docs/images/architecture.svg";

std::string textOf(const std::string &path) {
    const std::vector<std::uint8_t> bytes = readFile(path);
    return {bytes.begin(), bytes.end()};
}

TEST(ArchitectureTest, EachWalkPassesItsRoomsOnceAndDownward) {
    const IncludeGraph graph(kFolder);
    const std::vector<Walk> walks = readWalks(kPage);
    ASSERT_EQ(walks.size(), 3u);
    for (const Walk &walk : walks) {
        EXPECT_GE(walk.steps.size(), 4u) << walk.title;
        EXPECT_THAT(faultsOf(walk, graph), IsEmpty());
    }
}

TEST(ArchitectureTest, ThePictureShowsTheIncludesAsTheyAre) {
    const std::string picture = drawHouse(IncludeGraph(kFolder), readWalks(kPage));
    if (std::getenv("KELTRA_UPDATE_GOLDEN")) std::ofstream(kPicture) << picture;
    // Not compared with EXPECT_EQ, which would print both.
    EXPECT_TRUE(picture == textOf(kPicture))
        << "docs/images/architecture.svg is out of date; run this test with KELTRA_UPDATE_GOLDEN=1";
}

class WalkTest : public ::testing::Test {
   protected:
    void SetUp() override {
        for (const char *room : {"cellar", "attic"}) std::filesystem::create_directories(folder.path(room));
        folder.write("CONTRIBUTING.md", "| Room | |\n|---|---|\n| `cellar/` | |\n| `attic/` | |\n");
        for (const char *file : {"cellar/jam.cpp", "cellar/pot.h", "attic/owl.cpp"}) folder.write(file, "");
    }
    std::vector<std::string> faults(const std::string &page) const {
        const std::vector<Walk> walks = readWalks(folder.write("page.md", page));
        EXPECT_EQ(walks.size(), 1u);
        return faultsOf(walks.at(0), IncludeGraph(folder.path("")));
    }
    TempFolder folder;
};

TEST_F(WalkTest, AStepNamesSourcesOfOneRoom) {
    EXPECT_THAT(faults("## A\n\n1. `attic/owl.cpp` sits\n2. `cellar/jam.cpp` and\n   `cellar/pot.h`\n"
                       "\nNot in it: `attic/owl.cpp`\n"),
                IsEmpty());
    EXPECT_THAT(faults("## A\n1. `attic/owl.cpp`, `cellar/pot.h`\n2. nothing\n"),
                ElementsAre("A, step 1: names sources of 2 rooms", "A, step 2: names sources of 0 rooms"));
}

TEST_F(WalkTest, AStepUpOrBackToARoomIsFound) {
    EXPECT_THAT(faults("## A\n1. `cellar/jam.cpp`\n2. `attic/owl.cpp`\n"),
                ElementsAre("A, step 2: does not go down"));
    EXPECT_THAT(faults("## A\n1. `cellar/jam.cpp`\n2. `cellar/pot.h`\n"),
                ElementsAre("A, step 2: does not go down"));
}

TEST_F(WalkTest, ASourceThatIsNotThereIsFound) {
    EXPECT_THAT(faults("## A\n1. `attic/bat.cpp`\n"), ElementsAre("A, step 1: attic/bat.cpp is not there"));
}

}  // namespace
}  // namespace keltra::test
