// SPDX-License-Identifier: Zlib
// Many models in one run, and the rules of make that a run writes.

#include "tools/convert/many.h"

#include <gmock/gmock.h>
#include <unistd.h>
#include <nlohmann/json.hpp>

#include <csignal>
#include <filesystem>
#include <sstream>
#include <thread>

#include "tests/tools/convert/program.h"
#include "tools/convert/depfile.h"
#include "tools/convert/report.h"

namespace keltra::convert {
namespace {

namespace fs = std::filesystem;
using test::ProgramRun;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::StartsWith;

constexpr char kTriangle[] = "v 0 0 0\nv 2 0 0\nv 0 1 0\nvt 0 0\nvt 1 0\nvt 0 1\nf 1/1 2/2 3/3\n";

Outcome outcomeNamed(const std::string &file) {
    Outcome outcome;
    outcome.converted = true;
    outcome.files = {file};
    return outcome;
}

TEST(ConvertMany, TellsAllInOrderWhicheverEndsFirst) {
    std::vector<std::size_t> order;
    const auto convert = [](std::size_t index) {
        std::this_thread::sleep_for(std::chrono::milliseconds(index % 2 == 0 ? 60 : 1));
        return outcomeNamed(std::to_string(index));
    };
    std::size_t last = 0;
    convertMany(
        9, 3, convert,
        [&](std::size_t index, const Outcome &outcome) {
            EXPECT_EQ(outcome.files, std::vector<std::string>{std::to_string(index)});
            order.push_back(index);
        },
        [&](std::size_t finished) {
            EXPECT_GE(finished, last);
            last = finished;
        });
    EXPECT_THAT(order, ElementsAre(0, 1, 2, 3, 4, 5, 6, 7, 8));
    EXPECT_EQ(last, 9u);
}

TEST(ConvertMany, RunsSeveralAtATime) {
    const auto start = std::chrono::steady_clock::now();
    const auto convert = [](std::size_t) {
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        return outcomeNamed("x");
    };
    const auto ignore = [](std::size_t, const Outcome &) {};
    convertMany(8, 8, convert, ignore, [](std::size_t) {});
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(1500));
}

TEST(ConvertMany, AProcessThatDiesIsARefusal) {
    std::vector<bool> converted;
    const auto convert = [](std::size_t index) {
        if (index == 1) ::raise(SIGKILL);
        if (index == 2) throw std::runtime_error("broken");
        return outcomeNamed("x");
    };
    std::vector<std::string> reasons;
    convertMany(
        4, 2, convert, [&](std::size_t, const Outcome &outcome) { reasons.push_back(outcome.reason); },
        [](std::size_t) {});
    EXPECT_THAT(reasons, ElementsAre("", "the process that converted it ended early", "broken", ""));
}

TEST(ProgressBar, FillsFromLeftToRight) {
    EXPECT_EQ(progressBar(0, 4, 8), "[........] 0 of 4");
    EXPECT_EQ(progressBar(1, 4, 8), "[##......] 1 of 4");
    EXPECT_EQ(progressBar(4, 4, 8), "[########] 4 of 4");
}

TEST(Dependencies, AreARuleOfMake) {
    Outcome outcome;
    outcome.files = {"a b.tga", "hero.kte"};
    outcome.report.inputs = {"in/hero.obj", "in/a #1.png", "in/c$d.mtl", "in/x\\ y", "in/new\nline"};
    EXPECT_EQ(dependenciesOf("out", outcome),
              "out/hero.kte \\\n out/a\\ b.tga: \\\n in/hero.obj \\\n in/a\\ \\#1.png \\\n in/c$$d.mtl \\\n"
              " in/x\\\\\\ y\n");
    EXPECT_THAT(dependenciesOf("out/", outcome), StartsWith("out/hero.kte"));
}

class EachTest : public ::testing::Test {
   protected:
    EachTest() {
        fs::create_directories(folder.path("in/other"));
        for (const char *name : {"in/one.obj", "in/two.obj", "in/three.obj", "in/other/one.obj"})
            folder.write(name, kTriangle);
    }
    ProgramRun run(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), KELTRA_CONVERT);
        return test::runProgram(arguments, folder.path(""));
    }
    bool exists(const std::string &name) const { return fs::exists(folder.path(name)); }

    test::TempFolder folder;
};

TEST_F(EachTest, ConvertsEveryModelIntoOneFolder) {
    const ProgramRun result = run({"--each", "in/one.obj", "in/two.obj", "in/three.obj", "-o", "out/deep"});
    EXPECT_EQ(result.exit, 0) << result.err;
    EXPECT_EQ(result.err, "");
    for (const char *name : {"one", "two", "three"})
        EXPECT_TRUE(exists(std::string("out/deep/") + name + ".kte"));
    EXPECT_LT(result.out.find("in/one.obj -> "), result.out.find("in/two.obj -> "));
    EXPECT_THAT(result.out,
                EndsWith("3 models: 3 converted, 0 refused; nothing was dropped, changed or missing\n"));
}

TEST_F(EachTest, GivesTheSameFilesAsOneRunForEach) {
    EXPECT_EQ(run({"--each", "in/one.obj", "in/two.obj", "-o", "many", "--jobs", "2"}).exit, 0);
    EXPECT_EQ(run({"in/one.obj", "-o", "single"}).exit, 0);
    EXPECT_EQ(test::readFile(folder.path("many/one.kte")), test::readFile(folder.path("single/one.kte")));
}

TEST_F(EachTest, ARefusedModelDoesNotStopTheOthers) {
    const ProgramRun result =
        run({"--each", "in/one.obj", "in/none.obj", "in/two.obj", "-o", "out", "--jobs", "1"});
    EXPECT_EQ(result.exit, 1);
    EXPECT_EQ(result.err, "keltra-convert: in/none.obj: there is no such file\n");
    EXPECT_TRUE(exists("out/one.kte"));
    EXPECT_TRUE(exists("out/two.kte"));
    EXPECT_THAT(result.out, HasSubstr("3 models: 2 converted, 1 refused; "));
    EXPECT_EQ(run({"--each", "in/none.obj", "-o", "empty"}).exit, 1);
    EXPECT_FALSE(exists("empty"));
}

TEST_F(EachTest, ModelsOfTheSameNameAreWrongUsage) {
    const ProgramRun result = run({"--each", "in/one.obj", "in/other/one.obj", "-o", "out"});
    EXPECT_EQ(result.exit, 2);
    EXPECT_THAT(result.err, HasSubstr("in/other/one.obj"));
    EXPECT_FALSE(exists("out"));
    EXPECT_EQ(run({"--jobs", "2", "in/one.obj", "-o", "out"}).exit, 2);
    EXPECT_EQ(run({"--each", "in/one.obj", "-o", "out", "--name", "x"}).exit, 2);
    EXPECT_EQ(run({"--each", "in/one.obj", "-o", "out", "--depfile", "x"}).exit, 2);
    for (const char *jobs : {"0", "-1", "x", "1000"})
        EXPECT_EQ(run({"--each", "in/one.obj", "-o", "out", "--jobs", jobs}).exit, 2) << jobs;
}

TEST_F(EachTest, JsonIsALineForEachModel) {
    const ProgramRun result = run({"--each", "in/one.obj", "in/none.obj", "--dry-run", "--json"});
    EXPECT_EQ(result.exit, 1);
    std::istringstream lines(result.out);
    std::vector<nlohmann::json> documents;
    for (std::string line; std::getline(lines, line);) documents.push_back(nlohmann::json::parse(line));
    ASSERT_EQ(documents.size(), 2u);
    EXPECT_EQ(documents[0]["files"][0], "one.kte");
    EXPECT_EQ(documents[1]["converted"], false);
}

TEST_F(EachTest, QuietWarningsNameTheirModel) {
    folder.write("in/two.obj", "mtllib none.mtl\n" + std::string(kTriangle));
    const ProgramRun result = run({"--each", "in/one.obj", "in/two.obj", "-o", "out", "--quiet"});
    EXPECT_THAT(result.out, StartsWith("warning: in/two.obj: material library none.mtl is missing\n"));
    EXPECT_THAT(result.out, EndsWith("warning: 2 models: 2 converted, 0 refused; 0 dropped, 0 changed, 1 "
                                     "missing, 1 warning\n"));
    EXPECT_EQ(run({"--each", "in/one.obj", "in/two.obj", "-o", "other", "--strict"}).exit, 3);
    EXPECT_TRUE(exists("other/one.kte"));
    EXPECT_FALSE(exists("other/two.kte"));
}

TEST_F(EachTest, AnInterruptEndsAll) {
    std::string grid;
    constexpr int kSide = 500;
    for (int i = 0; i < kSide * kSide; ++i)
        grid += "v " + std::to_string(i % kSide) + " 0 " + std::to_string(i / kSide) + "\n";
    for (int i = 1; i < kSide * (kSide - 1); ++i)
        grid +=
            "f " + std::to_string(i) + " " + std::to_string(i + 1) + " " + std::to_string(i + kSide) + "\n";
    std::vector<std::string> command = {
        "/usr/bin/timeout", "--preserve-status", "-s", "INT", "0.3", KELTRA_CONVERT, "--each", "-o", "out"};
    for (int i = 0; i < 6; ++i) {
        folder.write("in/grid" + std::to_string(i) + ".obj", grid);
        command.push_back("in/grid" + std::to_string(i) + ".obj");
    }
    const ProgramRun result = test::runProgram(command, folder.path(""));
    EXPECT_EQ(result.exit, 128 + SIGINT);
    EXPECT_FALSE(exists("out"));
}

TEST_F(EachTest, TheDependenciesNameAllThatWasRead) {
    folder.write("in/paint.mtl", "newmtl red\nmap_Kd skin.png\n");
    folder.write("in/other/skin.png", "no picture, but read");
    folder.write("in/one.obj", "mtllib paint.mtl\nusemtl red\n" + std::string(kTriangle));
    const ProgramRun result = run({"in/one.obj", "-o", "out", "--depfile", "one.d", "--quiet"});
    EXPECT_EQ(result.exit, 0) << result.err;
    const std::string rule = test::textOf(folder.path("one.d"));
    EXPECT_THAT(rule, StartsWith("out/one.kte \\\n out/one_skin_d.tga: \\\n in/one.obj \\\n in/paint.mtl"));
    EXPECT_THAT(rule, HasSubstr(" in/other/skin.png\n"));
    EXPECT_EQ(run({"in/one.obj", "--dry-run", "--depfile", "one.d"}).exit, 2);
    EXPECT_EQ(run({"in/one.obj", "-o", "out", "--depfile", "none/one.d"}).exit, 1);
}

}  // namespace
}  // namespace keltra::convert
