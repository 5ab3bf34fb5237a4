// SPDX-License-Identifier: Zlib
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <csignal>

#include "tests/tools/convert/program.h"
#include "tools/formats/kte_reader.h"
#include "tools/formats/tga_writer.h"

namespace keltra::convert {
namespace {

namespace fs = std::filesystem;
using test::ProgramRun;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::MatchesRegex;
using ::testing::Not;
using ::testing::StartsWith;

constexpr char kTriangle[] =
    "v 0 0 0\nv 2 0 0\nv 0 1 0\nvt 0 0\nvt 1 0\nvt 0 1\nvn 0 0 1\no blade\nf 1/1/1 2/2/1 3/3/1\n";

class CommandLineTest : public ::testing::Test {
   protected:
    CommandLineTest() { model = folder.write("blade.obj", kTriangle); }

    ProgramRun run(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), KELTRA_CONVERT);
        return test::runProgram(arguments, folder.path(""));
    }
    std::vector<std::string> written(const std::string &name = "out") const {
        std::vector<std::string> names;
        for (const fs::directory_entry &entry : fs::directory_iterator(folder.path(name)))
            names.push_back(entry.path().filename().string());
        std::sort(names.begin(), names.end());
        return names;
    }
    void expectUsage(const std::vector<std::string> &arguments, const std::string &mentioned) const {
        const ProgramRun result = run(arguments);
        EXPECT_EQ(result.exit, 2) << mentioned << result.out << result.err;
        EXPECT_EQ(result.out, "");
        EXPECT_THAT(result.err, HasSubstr(mentioned));
        EXPECT_FALSE(fs::exists(folder.path("out")));
    }
    void expectRefusal(const ProgramRun &result, const std::string &named) const {
        EXPECT_EQ(result.exit, 1) << named;
        EXPECT_EQ(result.out, "");
        EXPECT_THAT(result.err, StartsWith("keltra-convert: " + named + ": "));
        EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
    }

    test::TempFolder folder;
    std::string model;
};

TEST_F(CommandLineTest, ConvertsIntoAFolderThatItMakes) {
    const ProgramRun result = run({"blade.obj", "-o", "out/deep"});
    EXPECT_EQ(result.exit, 0) << result.err;
    EXPECT_EQ(result.err, "");
    EXPECT_THAT(result.out, StartsWith("blade.obj -> out/deep/\n  scene     blade.kte\n"));
    EXPECT_THAT(result.out, HasSubstr("3 vertices, 1 triangle; "));
    EXPECT_EQ(written("out/deep"), std::vector<std::string>{"blade.kte"});
    const auto file = formats::readKte(test::readFile(folder.path("out/deep/blade.kte")));
    ASSERT_TRUE(file);
    EXPECT_EQ(file->version, formats::KteVersion::k16a);
}

TEST_F(CommandLineTest, WritesTheSameFilesEveryTime) {
    EXPECT_EQ(run({"blade.obj", "-o", "out"}).exit, 0);
    const auto first = test::readFile(folder.path("out/blade.kte"));
    EXPECT_EQ(run({"blade.obj", "-o", "out"}).exit, 0);
    EXPECT_EQ(test::readFile(folder.path("out/blade.kte")), first);
    EXPECT_EQ(written().size(), 1u);
}

TEST_F(CommandLineTest, TakesANameAndAScale) {
    const ProgramRun result = run({"blade.obj", "--name", "sword", "--scale", "2.5", "--output", "out"});
    EXPECT_EQ(result.exit, 0) << result.err;
    EXPECT_THAT(result.out, HasSubstr("lengths times 2.5"));
    EXPECT_EQ(written(), std::vector<std::string>{"sword.kte"});
}

TEST_F(CommandLineTest, ADryRunWritesNothing) {
    const ProgramRun result = run({"blade.obj", "-o", "out", "--dry-run"});
    EXPECT_EQ(result.exit, 0) << result.err;
    EXPECT_THAT(result.out, StartsWith("blade.obj: dry run, nothing is written\n"));
    EXPECT_FALSE(fs::exists(folder.path("out")));
    EXPECT_EQ(run({"blade.obj", "--dry-run"}).out, result.out);
}

TEST_F(CommandLineTest, JsonIsOneDocument) {
    const ProgramRun result = run({"blade.obj", "-o", "out", "--json"});
    EXPECT_EQ(result.exit, 0) << result.err;
    const nlohmann::json json = nlohmann::json::parse(result.out);
    EXPECT_EQ(json["model"], "blade.obj");
    EXPECT_EQ(json["converted"], true);
    EXPECT_EQ(json["folder"], "out");
    EXPECT_EQ(json["files"], nlohmann::json::array({"blade.kte"}));
    EXPECT_EQ(json["scene"]["triangles"], 1);
}

TEST_F(CommandLineTest, APictureBecomesATexture) {
    formats::Image image(3, 8);
    image.at(1, 1) = {10, 20, 30, 255};
    folder.write("badge.tga", formats::writeTga(image, {false, 24, true}));
    const ProgramRun result = run({"badge.tga", "--texture", "-o", "out"});
    EXPECT_EQ(result.exit, 0) << result.err;
    EXPECT_THAT(result.out, StartsWith("badge.tga -> out/\n  textures  badge.tga  4 x 8  24 bits"));
    EXPECT_EQ(written(), std::vector<std::string>{"badge.tga"});
    image.at(1, 1).a = 0;
    folder.write("badge.tga", formats::writeTga(image, {false, 32, true}));
    const nlohmann::json json = nlohmann::json::parse(
        run({"badge.tga", "--texture", "--max-texture", "2", "--name", "star", "-o", "out", "--json"}).out);
    EXPECT_EQ(json["files"], nlohmann::json::array({"star.tga"}));
    EXPECT_EQ(json["textures"][0]["width"], 2);
    EXPECT_EQ(json["textures"][0]["bits"], 32);
    EXPECT_FALSE(json.contains("scene"));
    const auto bytes = test::readFile(folder.path("out/star.tga"));
    ASSERT_GT(bytes.size(), 18u);
    EXPECT_EQ(bytes[12], 2);
    EXPECT_EQ(bytes[14], 2);
}

TEST_F(CommandLineTest, OnlyAPictureBecomesATexture) {
    expectRefusal(run({"blade.obj", "--texture", "-o", "out"}), "blade.obj");
    expectRefusal(run({"none.png", "--texture", "-o", "out"}), "none.png");
    EXPECT_FALSE(fs::exists(folder.path("out")));
    expectUsage({"blade.obj", "--texture", "-o", "out", "--fps", "10"}, "--fps");
}

TEST_F(CommandLineTest, JsonOfARefusalSaysWhy) {
    const ProgramRun result = run({"none.obj", "-o", "out", "--json"});
    EXPECT_EQ(result.exit, 1);
    const nlohmann::json json = nlohmann::json::parse(result.out);
    EXPECT_EQ(json["converted"], false);
    EXPECT_THAT(result.err, HasSubstr(json["reason"].get<std::string>()));
}

TEST_F(CommandLineTest, QuietIsSilentWithoutWarnings) {
    const ProgramRun quiet = run({"blade.obj", "-o", "out", "--quiet"});
    EXPECT_EQ(quiet.exit, 0);
    const ProgramRun json = run({"blade.obj", "--dry-run", "--json"});
    const nlohmann::json document = nlohmann::json::parse(json.out);
    std::string warnings;
    for (const std::string warning : document.at("warnings")) warnings += "warning: " + warning + "\n";
    EXPECT_EQ(quiet.out, warnings);
}

TEST_F(CommandLineTest, QuietWarnsAllTheSame) {
    folder.write("blade.mtl", "newmtl steel\nmap_Kd missing.png\n");
    folder.write("blade.obj", "mtllib blade.mtl\nusemtl steel\n" + std::string(kTriangle));
    const ProgramRun result = run({"blade.obj", "-o", "out", "--quiet"});
    EXPECT_EQ(result.exit, 0) << result.err;
    EXPECT_THAT(result.out, HasSubstr("missing.png"));
    for (std::size_t at = 0; at < result.out.size(); at = result.out.find('\n', at) + 1)
        EXPECT_EQ(result.out.compare(at, 9, "warning: "), 0) << result.out;
}

TEST_F(CommandLineTest, TheLastLineCountsWhatIsLost) {
    EXPECT_THAT(run({"blade.obj", "-o", "out"}).out, EndsWith("nothing was dropped, changed or missing\n"));
    folder.write("blade.mtl", "newmtl steel\nmap_Kd missing.png\nmap_Ks shine.png\n");
    folder.write("blade.obj",
                 "mtllib blade.mtl\nusemtl steel\n" + std::string(kTriangle) + "f 1/1/1 1/1/1 1/1/1\n");
    for (const char *mode : {"--dry-run", "--quiet"}) {
        const ProgramRun result = run({"blade.obj", "-o", "out", mode});
        EXPECT_EQ(result.exit, 0);
        EXPECT_THAT(result.out, EndsWith("2 dropped, 0 changed, 1 missing, 1 warning\n"));
    }
    const nlohmann::json json = nlohmann::json::parse(run({"blade.obj", "--dry-run", "--json"}).out);
    EXPECT_EQ(json["total"]["dropped"], 2);
    EXPECT_EQ(json["total"]["missing"], 1);
}

TEST_F(CommandLineTest, StrictFailsOnALossAndWritesNothing) {
    EXPECT_EQ(run({"blade.obj", "-o", "good", "--strict"}).exit, 0);
    EXPECT_EQ(written("good"), std::vector<std::string>{"blade.kte"});
    folder.write("blade.mtl", "newmtl steel\nmap_Ks shine.png\n");
    folder.write("blade.obj", "mtllib blade.mtl\nusemtl steel\n" + std::string(kTriangle));
    const ProgramRun result = run({"blade.obj", "-o", "out", "--strict"});
    EXPECT_EQ(result.exit, 3);
    EXPECT_THAT(result.out, StartsWith("blade.obj: nothing is written\n"));
    EXPECT_THAT(result.out, HasSubstr("specular maps (1): "));
    EXPECT_EQ(result.err,
              "keltra-convert: blade.obj: --strict: 1 dropped, 0 changed, 0 missing, 0 warnings\n");
    EXPECT_FALSE(fs::exists(folder.path("out")));
    const ProgramRun json = run({"blade.obj", "-o", "out", "--strict", "--json"});
    EXPECT_EQ(json.exit, 3);
    const nlohmann::json document = nlohmann::json::parse(json.out);
    EXPECT_EQ(document["converted"], false);
    EXPECT_EQ(document["strict"], true);
    EXPECT_EQ(document["dropped"][0]["what"], "specular maps");
    EXPECT_EQ(run({"blade.obj", "-o", "out"}).exit, 0);
}

TEST_F(CommandLineTest, RefusesModelsThatAreNone) {
    folder.write("text.obj", "nothing of interest\n");
    folder.write("empty.fbx", "");
    fs::create_directory(folder.path("folder.fbx"));
    for (const char *name : {"none.obj", "text.obj", "empty.fbx", "folder.fbx", "blade.unknown"}) {
        expectRefusal(run({name, "-o", "out"}), name);
        EXPECT_FALSE(fs::exists(folder.path("out"))) << name;
    }
}

TEST_F(CommandLineTest, NamesTheFileInOneLine) {
    expectRefusal(run({"a\nb\x1b.obj", "-o", "out"}), "a\\nb\\x1b.obj");
    expectRefusal(run({"a\xff.obj", "-o", "out"}), "a\\xff.obj");
}

TEST_F(CommandLineTest, RefusesFoldersThatItCannotWriteTo) {
    expectRefusal(run({"blade.obj", "-o", "blade.obj"}), "blade.obj");
    expectRefusal(run({"blade.obj", "-o", "/proc/none"}), "blade.obj");
    EXPECT_THAT(run({"blade.obj", "-o", "blade.obj/x"}).err, HasSubstr("cannot write to blade.obj/x: "));
}

TEST_F(CommandLineTest, AReportThatCannotBeWrittenIsAFailure) {
    const ProgramRun result =
        test::runProgram({KELTRA_CONVERT, "blade.obj", "-o", "out"}, folder.path(""), "/dev/full");
    EXPECT_EQ(result.exit, 1);
    EXPECT_THAT(result.err, HasSubstr("the report cannot be written"));
    EXPECT_EQ(written().size(), 1u);
}

// Large enough to be interrupted on the way.
TEST_F(CommandLineTest, AnInterruptLeavesNothing) {
    constexpr int kSide = 700;
    std::string grid;
    for (int i = 0; i < kSide * kSide; ++i)
        grid += "v " + std::to_string(i % kSide) + " 0 " + std::to_string(i / kSide) + "\n";
    for (int i = 1; i < kSide * (kSide - 1); ++i)
        grid +=
            "f " + std::to_string(i) + " " + std::to_string(i + 1) + " " + std::to_string(i + kSide) + "\n";
    folder.write("grid.obj", grid);
    for (const char *seconds : {"0.05", "0.3"}) {
        const ProgramRun result = test::runProgram({"/usr/bin/timeout", "--preserve-status", "-s", "INT",
                                                    seconds, KELTRA_CONVERT, "grid.obj", "-o", "out"},
                                                   folder.path(""));
        EXPECT_EQ(result.exit, 128 + SIGINT);
        EXPECT_EQ(result.out + result.err, "");
        EXPECT_FALSE(fs::exists(folder.path("out")));
    }
}

TEST_F(CommandLineTest, RefusesWrongUsage) {
    expectUsage({}, "MODEL");
    expectUsage({"blade.obj"}, "--output");
    expectUsage({"-o", "out"}, "MODEL");
    expectUsage({"", "-o", "out"}, "MODEL");
    expectUsage({"blade.obj", "-o", ""}, "--output");
    expectUsage({"blade.obj", "other.obj", "--texture", "-o", "out"}, "other.obj");
    expectUsage({"blade.obj", "-o", "out", "--none"}, "--none");
    expectUsage({"blade.obj", "-o", "out", "--json", "--quiet"}, "--json");
    expectUsage({"blade.obj", "-o", "out", "-o", "out2"}, "--output");
}

TEST_F(CommandLineTest, RefusesValuesOutOfRange) {
    const std::pair<const char *, std::vector<const char *>> wrong[] = {
        {"--fps", {"0", "0.5", "1001", "-1", "nan", "inf", "x", "", "25x"}},
        {"--max-texture", {"0", "3", "100", "1024", "-2", "x", "4294967297", "2.5"}},
        {"--scale", {"0", "-1", "nan", "inf", "-inf", "1e999", "x"}},
        {"--simplify", {"0", "-1", "1.5", "nan", "x"}},
        {"--budget", {"", "triangles", "triangles=x", "none,default"}},
        {"--two-sided", {"", "both", "3"}},
        {"--timeout", {"0", "-1", "86401", "x", "1.5"}},
        {"--name", {"", "a/b", "..", ".a", "a b", "caf\xc3\xa9", "con"}},
    };
    for (const auto &[option, values] : wrong)
        for (const char *value : values)
            expectUsage({"blade.obj", "-o", "out", option + std::string("=") + value}, option);
}

TEST_F(CommandLineTest, TakesTheEndsOfTheRanges) {
    for (const char *good : {"--fps=1", "--fps=1000", "--fps=29.97", "--max-texture=1", "--max-texture=512",
                             "--scale=0.001", "--timeout=86400"}) {
        const ProgramRun result = run({"blade.obj", "--dry-run", good});
        EXPECT_EQ(result.exit, 0) << good << result.err;
    }
}

TEST_F(CommandLineTest, WarnsOfWhatExceedsTheBudget) {
    const ProgramRun result = run({"blade.obj", "--dry-run", "--budget", "vertices=2"});
    EXPECT_EQ(result.exit, 0);
    EXPECT_THAT(result.out, HasSubstr("over the budget: 3 vertices, the limit is 2"));
    EXPECT_THAT(result.out, EndsWith("0 missing, 1 warning\n"));
    EXPECT_EQ(run({"blade.obj", "--dry-run", "--budget", "vertices=2", "--strict"}).exit, 3);
    EXPECT_EQ(run({"blade.obj", "--dry-run", "--budget", "none", "--strict"}).exit, 0);
}

TEST_F(CommandLineTest, HelpsAndTellsItsVersion) {
    const ProgramRun version = run({"--version"}), help = run({"--help"});
    EXPECT_EQ(version.exit, 0);
    EXPECT_EQ(version.out, "keltra-convert " KELTRA_EXPECTED_VERSION "\n");
    EXPECT_EQ(help.exit, 0);
    for (const char *option : {"--output", "--name", "--fps", "--max-texture", "--normal-maps", "--scale",
                               "--timeout", "--dry-run", "--json", "--quiet", "--version", "Examples:"})
        EXPECT_THAT(help.out, HasSubstr(option));
}

}  // namespace
}  // namespace keltra::convert
