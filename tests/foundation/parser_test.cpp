// SPDX-License-Identifier: Zlib
#include <gtest/gtest.h>
#include <keltra/fault.h>
#include <keltra/foundation.h>

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "foundation/lifecycle.h"
#include "tests/foundation/foundation_fixture.h"
#include "tests/support/allocations.h"
#include "tests/support/small_stack.h"
#include "tools/support/interpose.h"

#ifdef _WIN32
namespace {
bool mustFailStream = false;
}

// A stream is no block of malloc's there.
KELTRA_INTERPOSE(FILE *, , fopen, (const char *path, const char *mode)) {
    static auto *const next = keltra::nextFunction<FILE *(const char *, const char *)>("fopen");
    if (!mustFailStream) return next(path, mode);
    mustFailStream = false;
    errno = ENOMEM;
    return nullptr;
}
#endif

namespace keltra::test {
namespace {

// The next file that is opened finds no memory for its stream.
void failNextStream() {
#ifdef _WIN32
    mustFailStream = true;
#else
    Allocations::failNth(1);
#endif
}

bool hasFailedStream() {
#ifdef _WIN32
    return !mustFailStream;
#else
    return Allocations::hasFailed();
#endif
}

class ParserTest : public FoundationTest {
   protected:
    ~ParserTest() override {
        if (parser.buffer) vnfCloseParser(&parser);
    }

    void open(const std::string &text) {
        if (parser.buffer) vnfCloseParser(&parser);
        ASSERT_TRUE(vnfOpenParser(&parser, folder.write("text.txt", text).c_str()));
    }

    std::string contents() const { return std::string(parser.buffer, std::size_t(parser.size)); }

    std::vector<std::string> lines() {
        std::vector<std::string> found;
        char line[256];
        while (vnfReadLine(&parser, line)) found.push_back(line);
        return found;
    }

    vnfParser parser = {};
};

using Lines = std::vector<std::string>;

TEST_F(ParserTest, OpensAWholeFile) {
    const MemoryCounters before = memoryCounters();
    open("one\r\ntwo");
    EXPECT_EQ(contents(), "one\r\ntwo");
    EXPECT_EQ(parser.position, 0);
    EXPECT_EQ(memoryCounters().totalBytes - before.totalBytes, 9u) << "one spare byte";

    EXPECT_TRUE(vnfCloseParser(&parser));
    EXPECT_EQ(parser.buffer, nullptr);
    EXPECT_EQ(parser.size, 0);
    EXPECT_EQ(parser.position, 0);
    EXPECT_EQ(memoryCounters().live, before.live);
}

TEST_F(ParserTest, OpeningFailuresAreLogged) {
    startLog();
    const std::string missing = folder.path("missing.txt"), empty = folder.write("empty.txt", std::string());
    EXPECT_FALSE(vnfOpenParser(nullptr, empty.c_str()));
    EXPECT_FALSE(vnfOpenParser(&parser, nullptr));
    EXPECT_FALSE(vnfOpenParser(&parser, missing.c_str()));
    EXPECT_FALSE(vnfOpenParser(&parser, empty.c_str()));
    EXPECT_FALSE(vnfOpenParser(&parser, folder.prefix().c_str())) << "a folder has no text";
    EXPECT_EQ(messages(),
              "vnfOpenParser: invalid params\nvnfOpenParser: invalid params\n"
              "vnfOpenParser: unable to open file " +
                  missing +
                  "\n"
                  "vnfOpenParser: file '" +
                  empty +
                  "' is empty\n"
                  "vnfOpenParser: file '" +
                  folder.prefix() + "' is corrupted\n");
    EXPECT_EQ(parser.buffer, nullptr);
}

TEST_F(ParserTest, AFailedOpenLeavesAnOpenTextAlone) {
    open("key=7\n");
    EXPECT_FALSE(vnfOpenParser(&parser, folder.path("missing.txt").c_str()));
    EXPECT_FALSE(vnfOpenParser(&parser, folder.write("empty.txt", std::string()).c_str()));
    int value = 0;
    EXPECT_TRUE(vnfParseInt(&parser, "key", &value));
    EXPECT_EQ(value, 7);
}

// Files of the kernel claim a page and hold less. The block is released uncounted, so the counters stay one
// too high.
TEST_F(ParserTest, AShortReadIsLoggedAndStaysInTheCounters) {
    const char path[] = "/sys/devices/system/cpu/online";
    if (vnfFileSize(path) < 100) GTEST_SKIP() << "no file here is shorter than it claims";
    startLog();
    const MemoryCounters before = memoryCounters();
    EXPECT_FALSE(vnfOpenParser(&parser, path));
    EXPECT_EQ(messages(), std::string("vnfOpenParser: file '") + path + "' is corrupted\n");
    EXPECT_EQ(memoryCounters().live, before.live + 1);
    EXPECT_EQ(memoryCounters().releases, before.releases);
    EXPECT_EQ(parser.buffer, nullptr);
}

TEST_F(ParserTest, OutOfMemoryIsLogged) {
    if (!Allocations::canFail()) GTEST_SKIP() << "a sanitizer owns malloc";
    startLog();
    const std::string path = folder.write("text.txt", std::string(76543, 'x'));
    Allocations::failNext(76544);
    EXPECT_FALSE(vnfOpenParser(&parser, path.c_str()));
    failNextStream();
    EXPECT_FALSE(vnfOpenParser(&parser, path.c_str()));
    EXPECT_TRUE(hasFailedStream());
    Allocations::clear();
    EXPECT_EQ(KTFAULTS::getLast()->code, KT_FAULT_OUT_OF_MEMORY);
    EXPECT_EQ(messages(),
              "vnfOpenParser: out of memory (76544 bytes needed)\nvnfOpenParser: unable to open file " +
                  path + "\n");
}

TEST_F(ParserTest, AMissingFileIsNoLackOfMemoryAfterOne) {
    errno = ENOMEM;
    EXPECT_FALSE(vnfOpenParser(&parser, folder.path("missing.txt").c_str()));
    EXPECT_EQ(KTFAULTS::getLast()->code, KT_FAULT_FILE_MISSING);
    errno = ENOMEM;
    EXPECT_FALSE(vnfOpenParser(&parser, folder.prefix().c_str()));
    EXPECT_EQ(KTFAULTS::getLast()->code, KT_FAULT_FILE_KIND);
}

TEST_F(ParserTest, ClosingWhatIsNotOpenIsLogged) {
    startLog();
    EXPECT_FALSE(vnfCloseParser(nullptr));
    EXPECT_FALSE(vnfCloseParser(&parser));
    EXPECT_EQ(messages(), "vnfCloseParser: invalid params\nvnfCloseParser: parser already free\n");
}

TEST_F(ParserTest, CommentsBecomeBlanksUpToTheEndOfTheLine) {
    open("a # one # more\r\nb\n#two\rc#");
    EXPECT_TRUE(vnfRemoveComments(&parser, '#'));
    EXPECT_EQ(contents(),
              "a            "
              " \r\nb\n    \rc ");
    EXPECT_FALSE(vnfRemoveComments(&parser, '#'));
}

TEST_F(ParserTest, AMarkThatEndsLinesIsBlankedWithWhatFollows) {
    open("a\nb\n\nc");
    EXPECT_TRUE(vnfRemoveComments(&parser, '\n'));
    EXPECT_EQ(contents(), "a     ");
    open("\r\r\r");
    EXPECT_TRUE(vnfRemoveComments(&parser, '\r'));
    EXPECT_EQ(contents(), "   ");
    EXPECT_TRUE(vnfRemoveComments(&parser, ' '));
}

TEST_F(ParserTest, LinesEndAtLineFeeds) {
    open("one\n\ntwo\r\nlast");
    EXPECT_EQ(lines(), (Lines{"one", "", "two\r", "last"}));
    char line[256];
    EXPECT_FALSE(vnfReadLine(&parser, line));
    open("one\n");
    EXPECT_EQ(lines(), (Lines{"one"}));
}

TEST_F(ParserTest, ALineFeedAnywhereAheadOutweighsCarriageReturns) {
    open("one\rtwo\rthree\nfour");
    EXPECT_EQ(lines(), (Lines{"one\rtwo\rthree", "four"}));
}

TEST_F(ParserTest, BeforeALoneCarriageReturnTheLastCharacterIsLost) {
    open("one\rtwo\rlast");
    EXPECT_EQ(lines(), (Lines{"on", "tw", "last"}));
    open("\r\rx\ry");
    EXPECT_EQ(lines(), (Lines{"", "", "", "y"})) << "an empty line has nothing to lose";
}

TEST_F(ParserTest, LongLinesAreCutAndSkipped) {
    const std::string longLine(1000, 'x');
    open(longLine + "\nshort\n" + longLine);
    EXPECT_EQ(lines(), (Lines{std::string(255, 'x'), "short", std::string(255, 'x')}));
    open(longLine + "\rab\r");
    EXPECT_EQ(lines(), (Lines{std::string(255, 'x'), "a"}));
    open(std::string(255, 'y') + "\n" + std::string(256, 'y') + "\r" + std::string(257, 'y'));
    EXPECT_EQ(lines(), (Lines{std::string(255, 'y'), std::string(255, 'y'), std::string(255, 'y')}));
}

TEST_F(ParserTest, ReadingChecksWhatItIsGiven) {
    char line[256] = "untouched";
    EXPECT_FALSE(vnfReadLine(nullptr, line));
    EXPECT_FALSE(vnfReadLine(&parser, line)) << "not open";
    open("text");
    EXPECT_FALSE(vnfReadLine(&parser, nullptr));
    for (std::int32_t position : {4, -1, INT_MAX, INT_MIN}) {
        parser.position = position;
        EXPECT_FALSE(vnfReadLine(&parser, line)) << position;
    }
    EXPECT_STREQ(line, "untouched");
}

TEST_F(ParserTest, TheFirstMatchingLineWins) {
    open("KELTRA_windowX=1\nKELTRA_windowX=2\n");
    int value = 0;
    EXPECT_TRUE(vnfParseInt(&parser, "KELTRA_windowX", &value));
    EXPECT_EQ(value, 1);
}

TEST_F(ParserTest, KeysMatchAnywhereInSqueezedLines) {
    open("ignored\n \t my KELTRA_ window\tX : 4 2 px\n");
    int value = 0;
    EXPECT_TRUE(vnfParseInt(&parser, "KELTRA_windowX", &value));
    EXPECT_EQ(value, 42);
    EXPECT_FALSE(vnfParseInt(&parser, "KELTRA_ window", &value)) << "the key is not squeezed";
    EXPECT_FALSE(vnfParseInt(&parser, "keltra_windowX", &value)) << "case matters";
}

TEST_F(ParserTest, AMissingKeyLeavesTheValue) {
    open("# KELTRA_windowX=1\n");
    ASSERT_TRUE(vnfRemoveComments(&parser, '#'));
    int value = 77;
    char text[256] = "kept";
    EXPECT_FALSE(vnfParseInt(&parser, "KELTRA_windowX", &value));
    EXPECT_FALSE(vnfParseString(&parser, "KELTRA_windowX", text));
    EXPECT_EQ(value, 77);
    EXPECT_STREQ(text, "kept");
}

TEST_F(ParserTest, LookupsLeaveThePositionAlone) {
    open("a=1\nb=2\nc=3\n");
    char line[256];
    vnfReadLine(&parser, line);
    int value = 0;
    EXPECT_TRUE(vnfParseInt(&parser, "c", &value));
    EXPECT_TRUE(vnfParseInt(&parser, "a", &value));
    EXPECT_EQ(value, 1);
    EXPECT_EQ(parser.position, 4);
}

TEST_F(ParserTest, IntegersAreReadAsFarAsTheyGo) {
    open("a=-12x\nb=word\nc\nq=99999999999999999999\ne=-99999999999999999999\nf==5\ng=4294967296");
    int value = 5;
    EXPECT_TRUE(vnfParseInt(&parser, "a", &value));
    EXPECT_EQ(value, -12);
    EXPECT_TRUE(vnfParseInt(&parser, "b", &value));
    EXPECT_EQ(value, 0);
    value = 5;
    EXPECT_TRUE(vnfParseInt(&parser, "c", &value)) << "nothing after the key";
    EXPECT_EQ(value, 0);
    EXPECT_TRUE(vnfParseInt(&parser, "q", &value));
    EXPECT_EQ(value, INT_MAX);
    EXPECT_TRUE(vnfParseInt(&parser, "e", &value));
    EXPECT_EQ(value, INT_MIN);
    EXPECT_TRUE(vnfParseInt(&parser, "f", &value)) << "one separator only";
    EXPECT_EQ(value, 0);
    EXPECT_TRUE(vnfParseInt(&parser, "g", &value));
    EXPECT_EQ(value, INT_MAX);
}

TEST_F(ParserTest, StringsStandBetweenTheOuterQuotes) {
    open("title = \"My Engine\"\nquoted=x\"a\"b\"c\"y\nnone=\"\"\n");
    char text[256];
    EXPECT_TRUE(vnfParseString(&parser, "title", text));
    EXPECT_STREQ(text, "MyEngine");
    EXPECT_TRUE(vnfParseString(&parser, "quoted", text));
    EXPECT_STREQ(text, "a\"b\"c");
    EXPECT_TRUE(vnfParseString(&parser, "none", text));
    EXPECT_STREQ(text, "");
}

TEST_F(ParserTest, FewerThanTwoQuotesLeaveTheRawText) {
    open("one=\"My Engine\r\nzero=My Engine\nend");
    char text[256] = "before";
    EXPECT_FALSE(vnfParseString(&parser, "one", text));
    EXPECT_STREQ(text, "\"MyEngine\r");
    EXPECT_FALSE(vnfParseString(&parser, "zero", text));
    EXPECT_STREQ(text, "MyEngine");
    EXPECT_FALSE(vnfParseString(&parser, "end", text));
    EXPECT_STREQ(text, "");
}

TEST_F(ParserTest, StringsNeverOutgrowTheirArray) {
    open("k=" + std::string(5000, 'x') + "\nq=\"" + std::string(5000, 'x') + "\"\n");
    char text[257];
    text[256] = '!';
    EXPECT_FALSE(vnfParseString(&parser, "k", text));
    EXPECT_EQ(text, std::string(253, 'x'));
    EXPECT_FALSE(vnfParseString(&parser, "q", text)) << "the closing quote is cut off";
    EXPECT_EQ(text[256], '!');
}

TEST_F(ParserTest, AnEmptyKeyMatchesTheFirstLine) {
    open("\n12345\n");
    int value = 9;
    EXPECT_TRUE(vnfParseInt(&parser, "", &value));
    EXPECT_EQ(value, 0);
    open("12345\n");
    EXPECT_TRUE(vnfParseInt(&parser, "", &value));
    EXPECT_EQ(value, 2345);
}

TEST_F(ParserTest, ZeroBytesEndTheirLine) {
    open(std::string("a\0b=1\nb=2", 9));
    int value = 0;
    EXPECT_TRUE(vnfParseInt(&parser, "b", &value));
    EXPECT_EQ(value, 2);
}

TEST_F(ParserTest, LookupsCheckWhatTheyAreGiven) {
    int value = 3;
    char text[256] = "kept";
    EXPECT_FALSE(vnfParseInt(nullptr, "key", &value));
    EXPECT_FALSE(vnfParseInt(&parser, "key", &value)) << "not open";
    EXPECT_FALSE(vnfParseString(nullptr, "key", text));
    EXPECT_FALSE(vnfParseString(&parser, "key", text));
    EXPECT_FALSE(vnfRemoveComments(nullptr, '#'));
    EXPECT_FALSE(vnfRemoveComments(&parser, '#'));
    open("key=1");
    EXPECT_FALSE(vnfParseInt(&parser, nullptr, &value));
    EXPECT_FALSE(vnfParseInt(&parser, "key", nullptr));
    EXPECT_FALSE(vnfParseString(&parser, nullptr, text));
    EXPECT_FALSE(vnfParseString(&parser, "key", nullptr));
    EXPECT_EQ(value, 3);
    EXPECT_STREQ(text, "kept");
}

// Every ending of a text, with the address sanitizer watching the byte past the spare one.
TEST_F(ParserTest, EveryTruncationIsRead) {
    const std::string whole = "a = 1\r\nb = \"two\"\rc\r\r\n\n# d\re=\"";
    for (std::size_t size = 1; size <= whole.size(); ++size) {
        open(whole.substr(0, size));
        EXPECT_LE(lines().size(), size);
        int value = 0;
        EXPECT_TRUE(vnfParseInt(&parser, "a", &value));
        char text[256];
        vnfParseString(&parser, "e", text);
        vnfRemoveComments(&parser, '#');
        EXPECT_EQ(parser.size, std::int32_t(size));
    }
}

TEST_F(ParserTest, WorksOnTheDevicesStack) {
    const std::string path = folder.write("text.txt", std::string(100000, 'x') + "\nkey=5\n");
    int value = 0;
    ASSERT_TRUE(runOnSmallStack([&] {
        vnfParser local = {};
        if (!vnfOpenParser(&local, path.c_str())) return;
        vnfRemoveComments(&local, '#');
        vnfParseInt(&local, "key", &value);
        vnfCloseParser(&local);
    }));
    EXPECT_EQ(value, 5);
}

}  // namespace
}  // namespace keltra::test
