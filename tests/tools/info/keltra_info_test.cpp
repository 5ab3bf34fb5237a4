// SPDX-License-Identifier: Zlib
// The program as it is called: exit codes, streams, kinds of files, and what is no file.

#include <gmock/gmock.h>
#include <keltra/anim.h>
#include <keltra/mesh.h>
#include <sys/stat.h>
#include <unistd.h>
#include <nlohmann/json.hpp>

#include "tests/formats/tga_bytes.h"
#include "tests/support/unprivileged.h"
#include "tests/tools/info/info_program.h"
#include "tools/formats/kta_writer.h"
#include "tools/formats/kte_writer.h"
#include "tools/info/print.h"
#include "tools/info/read_file.h"

namespace keltra::test {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

class KeltraInfoTest : public InfoProgramTest {
   protected:
    void SetUp() override {
        folder.write("good.tga", uncompressedTga(2, 2, 24));
        folder.write("bad.tga", uncompressedTga(2, 2, 16));
    }
};

TEST_F(KeltraInfoTest, UsageIsTwoAndHelpIsZero) {
    EXPECT_EQ(run("").status, 2);
    EXPECT_EQ(run("--no-such-option good.tga").status, 2);
    EXPECT_EQ(run("--as nonsense good.tga").status, 2);
    EXPECT_THAT(run("").errors, HasSubstr("FILE"));
    const Result help = run("--help");
    EXPECT_EQ(help.status, 0);
    EXPECT_THAT(help.output, HasSubstr("Examples:"));
    EXPECT_EQ(run("--version").status, 0);
    EXPECT_THAT(run("--version").output, StartsWith("keltra-info 1."));
}

TEST_F(KeltraInfoTest, LimitsAreThoseOfTheEngine) {
    const Result result = run("--limits");
    EXPECT_EQ(result.status, 0);
    const nlohmann::json limits = nlohmann::json::parse(result.output, nullptr, false);
    ASSERT_TRUE(limits.is_object());
    EXPECT_EQ(limits["nameBytes"], 255);
    EXPECT_EQ(limits["skinBones"], unsigned{KTMESH::maxBones});
    EXPECT_EQ(limits["skins"], unsigned{KTMESH::maxSkins});
    EXPECT_EQ(limits["clipBones"], unsigned{KTANIM::maxBones});
    EXPECT_EQ(limits["clipFrames"], unsigned{KTANIM::maxFrames});
    EXPECT_EQ(limits["textureBytes"], 8388608);
    EXPECT_EQ(limits["budget"]["triangles"], 5000);
    EXPECT_EQ(run("--limits good.tga").status, 2);
}

TEST_F(KeltraInfoTest, CheckPrintsALineForEachFile) {
    const Result result = run("--check good.tga bad.tga missing.tga");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output,
              "good.tga: good\nbad.tga: 0x10: bits a pixel: neither 24 nor 32\nmissing.tga: No such file or "
              "directory\n");
    EXPECT_EQ(result.errors, "");
    EXPECT_EQ(run("--check good.tga good.tga").status, 0);
}

TEST_F(KeltraInfoTest, ContentsGoOutAndBadFilesAreErrors) {
    const Result result = run("good.tga bad.tga");
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.output, HasSubstr("good.tga: tga\n  encoding: uncompressed\n  width: 2\n"));
    EXPECT_EQ(result.errors, "bad.tga: 0x10: bits a pixel: neither 24 nor 32\n");
}

TEST_F(KeltraInfoTest, JsonIsOneDocument) {
    const Result result = run("--json good.tga bad.tga missing.tga");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.errors, "");
    const nlohmann::json document = nlohmann::json::parse(result.output);
    ASSERT_EQ(document["files"].size(), 3u);
    EXPECT_EQ(document["files"][0]["contents"]["width"], 2);
    EXPECT_EQ(document["files"][1]["fault"]["offset"], 16);
    EXPECT_EQ(document["files"][2]["error"], "No such file or directory");
    EXPECT_EQ(run("--json good.tga").status, 0);
}

TEST_F(KeltraInfoTest, KindsComeFromTheContents) {
    formats::Scene scene;
    const struct {
        const char *kind;
        std::vector<std::uint8_t> bytes;
    } cases[] = {
        {"kte", formats::writeKte(scene, formats::KteVersion::k16a)},
        {"kta", formats::writeKta({})},
        {"tga", uncompressedTga(3, 3, 32)},
    };
    for (const auto &[kind, bytes] : cases) {
        folder.write("file.bin", bytes);
        EXPECT_THAT(run("file.bin").output, StartsWith(std::string("file.bin: ") + kind + "\n"));
    }
    const char *const texts[][2] = {
        {"gui", "\xEF\xBB\xBF <?xml version='1.0'?><!-- <emitter> --><root/>"},
        {"emitter", "<!DOCTYPE e><emitter></emitter>"},
        {"kerning", "# a\nKELTRA_kerning_A = 4\n"},
        {"settings", "KELTRA_windowX = 4\n"},
    };
    for (const auto &[kind, text] : texts) {
        folder.write("file.bin", std::string_view(text));
        EXPECT_THAT(run("file.bin").output, StartsWith(std::string("file.bin: ") + kind + "\n"));
    }
}

#ifdef KELTRA_TEST_FILMS
TEST_F(KeltraInfoTest, FilmsAreKnownByTheirStartCodes) {
    folder.write("file.bin", readFile(KELTRA_TEST_FILMS "/small.m1v"));
    EXPECT_THAT(run("file.bin").output, StartsWith("file.bin: video\n  width: 32\n  height: 32\n"));
    folder.write("file.bin", std::string_view("\0\0\1\xBA\0\0", 6));
    EXPECT_THAT(run("--check file.bin").output, StartsWith("file.bin: 0x0: start code: a stream of packets"));
}
#endif

TEST_F(KeltraInfoTest, ExtensionsAreTheLastWord) {
    for (const char *name : {"a.kte", "a.KTA", "a.tga", "a.xml"}) {
        folder.write(name, "nonsense");
        const Result result = run(std::string("--check ") + name);
        EXPECT_EQ(result.status, 1) << name;
        EXPECT_THAT(result.output, ::testing::Not(HasSubstr("not a file of the engine"))) << name;
    }
    folder.write("a.cfg", "nonsense");
    EXPECT_EQ(run("--check a.cfg").output, "a.cfg: good\n");
    folder.write("a.txt", "nonsense");
    EXPECT_EQ(run("--check a.txt").output, "a.txt: 0x0: kind: not a file of the engine\n");
    folder.write("b.txt", "<other/>");
    EXPECT_EQ(run("--check b.txt").output, "b.txt: 0x0: kind: not a file of the engine\n");
    folder.write("program", std::string_view("\x7f"
                                             "ELF\0KELTRA_windowX",
                                             19));
    EXPECT_EQ(run("--check program").output, "program: 0x0: kind: not a file of the engine\n");
    EXPECT_EQ(run("--check --as settings program").output, "program: good\n");
    EXPECT_EQ(run("--check --as kte good.tga").output.substr(0, 20), "good.tga: 0x0: magic");
}

TEST_F(KeltraInfoTest, WhatIsNoFileIsOneLine) {
    mkdir(folder.path("folder").c_str(), 0700);
    ASSERT_EQ(mkfifo(folder.path("pipe").c_str(), 0600), 0);
    folder.write("empty", "");
    folder.write("large.kte", "KTE file v1.6a");
    ASSERT_EQ(truncate(folder.path("large.kte").c_str(), off_t{1} << 31), 0);
    ASSERT_EQ(symlink("loop", folder.path("loop").c_str()), 0);
    const char *const cases[][2] = {
        {"folder", "folder: is a folder\n"},
        {"pipe", "pipe: is not a regular file\n"},
        {"/dev/zero", "/dev/zero: is not a regular file\n"},
        {"empty", "empty: 0x0: kind: an empty file\n"},
        {"large.kte", "large.kte: is larger than the 2 GiB that the engine reads\n"},
        {"loop", "loop: Too many levels of symbolic links\n"},
        {"''", ": No such file or directory\n"},
    };
    for (const auto &[name, line] : cases) {
        const Result result = run(std::string("--check ") + name);
        EXPECT_EQ(result.status, 1) << name;
        EXPECT_EQ(result.output, line);
    }
}

TEST_F(KeltraInfoTest, AFileWithoutPermissionIsOneLine) {
    const std::string path = folder.path("good.tga");
    ASSERT_EQ(chmod(folder.path("").c_str(), 0755), 0);
    ASSERT_EQ(chmod(path.c_str(), 0), 0);
    info::FileReport report;
    report.file = "good.tga";
    std::vector<char> bytes;
    {
        // A shell would take root's rights back, so the program's steps are taken here.
        const Unprivileged unprivileged;
        EXPECT_FALSE(info::readWholeFile(path, bytes, report.error));
    }
    EXPECT_TRUE(bytes.empty());
    EXPECT_EQ(info::verdictLine(report), "good.tga: Permission denied\n");
    ASSERT_EQ(chmod(path.c_str(), 0644), 0);
    const Unprivileged unprivileged;
    EXPECT_TRUE(info::readWholeFile(path, bytes, report.error));
}

TEST_F(KeltraInfoTest, OddNamesAreEscaped) {
    folder.write("a\x1b[2J\xff.tga", uncompressedTga(2, 2, 24));
    EXPECT_EQ(run("--check ./a*").output, "./a\\x1b[2J\\xff.tga: good\n");
    EXPECT_TRUE(nlohmann::json::accept(run("--json ./a*").output));
}

TEST_F(KeltraInfoTest, OutputThatCannotBeWrittenIsAFailure) {
    for (const char *arguments : {"--check good.tga", "good.tga", "--json good.tga", "--limits"}) {
        const Result full = run(arguments + std::string(" >/dev/full"));
        EXPECT_EQ(full.status, 1) << arguments;
        EXPECT_EQ(full.errors, "keltra-info: cannot write the output\n") << arguments;
        const Result closed = run(arguments + std::string(" >&-"));
        EXPECT_EQ(closed.status, 1) << arguments;
        EXPECT_EQ(closed.errors, "keltra-info: cannot write the output\n") << arguments;
    }
}

TEST_F(KeltraInfoTest, AKindIsThatOfAllFiles) {
    folder.write("a.txt", "KELTRA_windowX = 4\n");
    folder.write("b.txt", "KELTRA_windowX = 5\n");
    const Result result = run("--as kerning a.txt b.txt");
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.output, StartsWith("a.txt: kerning\n"));
    EXPECT_THAT(result.output, HasSubstr("\nb.txt: kerning\n"));
    EXPECT_EQ(run("--check --as emitter a.txt good.tga").status, 1);
    EXPECT_EQ(run("--as").status, 2);
    EXPECT_EQ(run("--as unknown a.txt").status, 2);
}

TEST_F(KeltraInfoTest, JsonWithCheckHasNoContents) {
    const Result result = run("--json --check good.tga bad.tga");
    EXPECT_EQ(result.status, 1);
    const nlohmann::json files = nlohmann::json::parse(result.output)["files"];
    EXPECT_EQ(files[0]["good"], true);
    EXPECT_EQ(files[1]["good"], false);
    for (const nlohmann::json &file : files) {
        EXPECT_EQ(file["kind"], "tga");
        EXPECT_FALSE(file.contains("contents"));
        EXPECT_FALSE(file.contains("notes"));
    }
    EXPECT_EQ(files[1]["faults"][0]["severity"], "error");
    EXPECT_EQ(files[1]["faults"][0]["byte"], 16);
    EXPECT_EQ(files[1]["faults"][0]["found"], "16");
}

TEST_F(KeltraInfoTest, AFileThatDoesNotFitIntoMemoryIsOneLine) {
    if (KELTRA_IS_SANITIZED) GTEST_SKIP() << "a sanitizer needs more address space than the limit leaves";
    folder.write("large.kte", "KTE file v1.6a");
    ASSERT_EQ(truncate(folder.path("large.kte").c_str(), off_t{1} << 30), 0);
    const Result result = run("--check large.kte good.tga", "ulimit -v 524288;");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output, "large.kte: does not fit into memory\ngood.tga: good\n") << result.errors;
}

}  // namespace
}  // namespace keltra::test
