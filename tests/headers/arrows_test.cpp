// SPDX-License-Identifier: Zlib
#include <gmock/gmock.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tests/headers/include_graph.h"
#include "tests/support/temp_file.h"

namespace keltra::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// --- this checkout

const IncludeGraph &house() {
    static const IncludeGraph graph(KELTRA_SOURCE_FOLDER);
    return graph;
}

TEST(ArrowsTest, TheTableNamesEachRoomAndEachPublicHeaderOnce) {
    EXPECT_THAT(house().faultsOfTheTable(), IsEmpty());
}

TEST(ArrowsTest, EveryFileStandsInARoom) {
    EXPECT_GT(house().files().size(), 100u);
    EXPECT_THAT(house().filesWithoutRoom(), IsEmpty());
}

TEST(ArrowsTest, WhatIsIncludedIsThere) { EXPECT_THAT(house().unknownIncludes(), IsEmpty()); }

TEST(ArrowsTest, NoIncludePointsUp) {
    EXPECT_GT(house().includes().size(), 200u);
    EXPECT_THAT(house().upwardIncludes(), IsEmpty());
}

TEST(ArrowsTest, NoFilesIncludeOneAnotherInACircle) { EXPECT_THAT(house().circles(), IsEmpty()); }

TEST(ArrowsTest, IncludesStandInOneOrder) { EXPECT_THAT(house().misplacedIncludes(), IsEmpty()); }

// --- a checkout with faults, which are found

class ArrowsFaultTest : public ::testing::Test {
   protected:
    void SetUp() override {
        for (const char *room : {"include/keltra", "cellar", "attic", "tests", "build"})
            std::filesystem::create_directories(folder.path(room));
        folder.write("CONTRIBUTING.md",
                     "# Rooms\n\n| Room | Headers |\n|---|---|\n| `cellar/` | `jam.h` |\n"
                     "| `attic/` | `owl.h` `bat.h` |\n\n| `shed/` | |\n");
        folder.write("include/keltra/jam.h", "");
        folder.write("include/keltra/owl.h", "#include <keltra/jam.h>\n");
        folder.write("include/keltra/bat.h", "  # include \"keltra/none.h\"\n");
        folder.write("include/keltra/bat.h", "#include <keltra/owl.h> // why\n#include <cstdio>\n");
        folder.write("cellar/jam.cpp", "#include <keltra/jam.h>\n");
        folder.write("attic/owl.cpp", "#include <keltra/owl.h>\n#include \"cellar/pot.h\"\n");
        folder.write("cellar/pot.h", "");
        folder.write("build/made.cpp", "");
    }
    IncludeGraph read() const { return IncludeGraph(folder.path("")); }

    TempFolder folder;
};

TEST_F(ArrowsFaultTest, AGoodCheckoutHasNone) {
    const IncludeGraph graph = read();
    EXPECT_EQ(graph.rooms().size(), 2u) << "the table ends with its last line";
    EXPECT_THAT(graph.files(),
                ElementsAre("attic/owl.cpp", "cellar/jam.cpp", "cellar/pot.h", "include/keltra/bat.h",
                            "include/keltra/jam.h", "include/keltra/owl.h"));
    EXPECT_EQ(graph.includes().size(), 5u);
    EXPECT_EQ(graph.roomOf("include/keltra/jam.h"), 0);
    EXPECT_EQ(graph.roomOf("attic/owl.cpp"), 1);
    EXPECT_EQ(graph.unitOf("include/keltra/owl.h"), graph.unitOf("attic/owl.cpp"));
    EXPECT_THAT(graph.faultsOfTheTable(), IsEmpty());
    EXPECT_THAT(graph.filesWithoutRoom(), IsEmpty());
    EXPECT_THAT(graph.unknownIncludes(), IsEmpty());
    EXPECT_THAT(graph.upwardIncludes(), IsEmpty());
    EXPECT_THAT(graph.circles(), IsEmpty());
    EXPECT_THAT(graph.misplacedIncludes(), IsEmpty());
}

TEST_F(ArrowsFaultTest, AnIncludeThatPointsUpIsFound) {
    folder.write("cellar/jam.cpp", "\n#  include \"keltra/jam.h\"\n#include <keltra/owl.h>\n");
    EXPECT_THAT(read().upwardIncludes(),
                ElementsAre("cellar/jam.cpp:3 includes include/keltra/owl.h, of attic"));
}

TEST_F(ArrowsFaultTest, ACircleIsFoundThroughHeadersAndSources) {
    folder.write("cellar/pot.cpp", "#include \"cellar/pot.h\"\n#include <keltra/jam.h>\n");
    folder.write("include/keltra/jam.h", "#include \"cellar/lid.h\"\n");
    folder.write("cellar/lid.h", "");
    folder.write("cellar/lid.cpp", "#include \"pot.h\"\n");
    EXPECT_THAT(read().circles(), ElementsAre("cellar/jam, cellar/lid, cellar/pot"));
}

TEST_F(ArrowsFaultTest, AFileOutsideOfTheTableIsFound) {
    folder.write("loose.cpp", "");
    folder.write("include/keltra/cat.h", "");
    EXPECT_THAT(read().filesWithoutRoom(), ElementsAre("include/keltra/cat.h stands in no room of the table",
                                                       "loose.cpp stands in no room of the table"));
}

TEST_F(ArrowsFaultTest, AHeaderThatIsNotThereIsFound) {
    folder.write("attic/owl.cpp", "#include \"nest.h\"\n");
    EXPECT_THAT(read().unknownIncludes(), ElementsAre("attic/owl.cpp:1 includes nest.h, which is not there"));
}

TEST_F(ArrowsFaultTest, AnIncludeInTheWrongPlaceIsFound) {
    folder.write("attic/owl.cpp",
                 "#include \"cellar/pot.h\"\n#include \"cellar/pot.h\"\n#include <keltra/owl.h>\n#include "
                 "<keltra/jam.h>\n"
                 "#include <string>\n#include <SDL.h>\n#if 1\n#include <SDL.h>\n#include <string>\n#endif\n");
    folder.write("tests/owl_test.cpp",
                 "#include \"cellar/pot.h\"\n#include <gtest/gtest.h>\n#include <string>\n"
                 "#include \"cellar/pot.h\"\n#include <keltra/jam.h>\n#include <map>\n");
    EXPECT_THAT(read().misplacedIncludes(),
                ElementsAre("attic/owl.cpp:3 includes keltra/owl.h below cellar/pot.h",
                            "attic/owl.cpp:4 includes keltra/jam.h below cellar/pot.h",
                            "attic/owl.cpp:6 includes SDL.h below string",
                            "tests/owl_test.cpp:5 includes keltra/jam.h below cellar/pot.h",
                            "tests/owl_test.cpp:6 includes map below cellar/pot.h"));
}

TEST_F(ArrowsFaultTest, ATableThatDoesNotFitIsFound) {
    folder.write("CONTRIBUTING.md",
                 "| Room | Headers |\n|---|---|\n| `cellar/` | `jam.h` `fox.h` |\n| `attic/` | `jam.h` |\n");
    EXPECT_THAT(read().faultsOfTheTable(),
                ElementsAre("fox.h of cellar is not there", "jam.h stands in the table 2 times"));
    std::filesystem::remove(folder.path("CONTRIBUTING.md"));
    EXPECT_THAT(read().faultsOfTheTable(), ElementsAre("CONTRIBUTING.md has no table of rooms"));
}

}  // namespace
}  // namespace keltra::test
