// SPDX-License-Identifier: Zlib
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <keltra/foundation.h>

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <regex>
#include <string>

#include "tests/foundation/foundation_fixture.h"

namespace keltra::test {
namespace {

using LogTest = FoundationTest;

const std::string kRule(55, '-');
const std::string kHtmlRule = "<HR ALIGN=CENTER WIDTH=\"100%\" SIZE=\"2\">";
const std::string kHtmlBanner =
    "<HTML><BODY><H4>[Vontal foundation 0.4 started at TIME]\n" + kHtmlRule + "\n\n</H4>";
const std::string kSummary =
    "Final memory ratio: -?[0-9]+ \\([0-9]+/[0-9]+\\)\n"
    "Max\\. physical memory usage: [0-9]+\\.[0-9]{2} mb \\([0-9]+ bytes\\)\n"
    "Total allocated memory \\(vnfMalloc\\): [0-9]+\\.[0-9]{2} mb \\([0-9]+ bytes\\)\n"
    "\\[Vontal foundation 0\\.4 terminated at TIME\\]\n";

// GoogleTest's own expressions are smaller on some systems.
bool matches(const std::string &text, const std::string &pattern) {
    return std::regex_match(text, std::regex(pattern));
}

// A child process runs its test from the start on some systems: it takes the folder of its parent.
std::string sharedPath(const TempFolder &folder, const char *name) {
#ifdef _WIN32
    constexpr char kParent[] = "KELTRA_PARENT_FOLDER";
    if (!testing::internal::InDeathTestChild()) _putenv_s(kParent, folder.prefix().c_str());
    return std::getenv(kParent) + std::string(name);
#else
    return folder.path(name);
#endif
}

// HTML stays switched on for the rest of a process, so code that switches it on runs in a child process.
template <class Work>
void inChild(Work work) {
    EXPECT_EXIT((work(), std::_Exit(0)), testing::ExitedWithCode(0), "");
}

TEST_F(LogTest, TextLogOpensWithTheBanner) {
    startLog();
    EXPECT_EQ(timelessText(logPath()), "[Vontal foundation 0.4 started at TIME]\n" + kRule + "\n\n");
}

TEST_F(LogTest, TheBannerCarriesTheLocalTime) {
    const std::time_t before = std::time(nullptr);
    startLog();
    const std::time_t after = std::time(nullptr);

    std::tm fields = {};
    int millisecond = -1;
    std::FILE *file = std::fopen(logPath().c_str(), "r");
    ASSERT_NE(file, nullptr);
    const int read = std::fscanf(file, "[Vontal foundation 0.4 started at %d/%d/%d %d:%d:%d.%d]",
                                 &fields.tm_mday, &fields.tm_mon, &fields.tm_year, &fields.tm_hour,
                                 &fields.tm_min, &fields.tm_sec, &millisecond);
    std::fclose(file);

    ASSERT_EQ(read, 7);
    fields.tm_mon -= 1;
    fields.tm_year -= 1900;
    fields.tm_isdst = -1;
    const std::time_t stamped = std::mktime(&fields);
    EXPECT_GE(stamped, before);
    EXPECT_LE(stamped, after);
    EXPECT_GE(millisecond, 0);
    EXPECT_LT(millisecond, 1000);
}

TEST_F(LogTest, TextIsWrittenAtOnce) {
    startLog();
    EXPECT_TRUE(vnfLog("%s: %d  things\n", "test", 3));
    EXPECT_EQ(messages(), "test: 3  things\n");
}

TEST_F(LogTest, TextLogClosesWithTheSummary) {
    startLog();
    EXPECT_TRUE(vnfCloseLog());
    EXPECT_TRUE(matches(messages(), "\n" + kRule + "\n" + kSummary)) << messages();
}

TEST_F(LogTest, ASecondLogIsRefusedAndTheFirstGoesOn) {
    startLog();
    const unsigned int id = vnfNewId();
    const int timer = vnfNewTimer(1.0f);

    EXPECT_FALSE(vnfOpenLog(folder.path("second.txt").c_str()));

    EXPECT_FALSE(vnfFileExists(folder.path("second.txt").c_str()));
    EXPECT_TRUE(vnfLog("on\n"));
    EXPECT_EQ(messages(), "on\n");
    EXPECT_TRUE(releaseId(id));
    EXPECT_TRUE(vnfFreeTimer(timer));
}

TEST_F(LogTest, APathThatCannotBeOpenedChangesNothing) {
    const unsigned int id = vnfNewId();
    const int timer = vnfNewTimer(1.0f);

    EXPECT_FALSE(vnfOpenLog(folder.path("missing/run.html").c_str()));
    EXPECT_FALSE(vnfOpenLog(""));

    EXPECT_TRUE(releaseId(id));
    EXPECT_TRUE(vnfFreeTimer(timer));
    startLog();
    EXPECT_EQ(timelessText(logPath()).substr(0, 1), "[") << "the refused name must not switch to HTML";
}

TEST_F(LogTest, ANullPathOpensNoFileButStartsOver) {
    const unsigned int id = vnfNewId();
    const int timer = vnfNewTimer(1.0f);

    EXPECT_TRUE(vnfOpenLog(nullptr));

    EXPECT_FALSE(vnfLog("dropped\n"));
    EXPECT_EQ(vnfNewId(), id);
    EXPECT_EQ(vnfGetTimerFps(timer), -1.0f);
}

TEST_F(LogTest, ANullPathWithAnOpenLogWritesTheBannerAgain) {
    startLog();
    EXPECT_TRUE(vnfOpenLog(nullptr));
    EXPECT_EQ(messages(), "[Vontal foundation 0.4 started at TIME]\n" + kRule + "\n\n");
}

TEST_F(LogTest, ClosingWithoutALogSucceeds) {
    EXPECT_TRUE(vnfCloseLog());
    EXPECT_TRUE(vnfCloseLog());
}

TEST_F(LogTest, EchoPrintsWhatIsLogged) {
    vnfSetLogEcho(true);
    testing::internal::CaptureStdout();
    EXPECT_FALSE(vnfLog("nobody hears this\n"));
    startLog();
    EXPECT_TRUE(vnfLog("%d\n", 42));
    vnfSetLogEcho(false);
    EXPECT_TRUE(vnfLog("silent\n"));
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "42\n");
    EXPECT_EQ(messages(), "42\nsilent\n");
}

TEST_F(LogTest, LongTextIsCutToTheBuffer) {
    startLog();
    EXPECT_TRUE(vnfLog("%s", std::string(5000, 'x').c_str()));
    EXPECT_EQ(messages(), std::string(1023, 'x'));
}

TEST_F(LogTest, NullsAreHarmless) {
    startLog();
    const char *volatile absent = nullptr;
    EXPECT_FALSE(vnfLog(absent, 0));
    EXPECT_TRUE(vnfLog("<%s>\n", absent));
    EXPECT_EQ(messages(), "<(null)>\n");
}

TEST_F(LogTest, HtmlTranslatesBlanksAndLineFeeds) {
    const std::string path = sharedPath(folder, "run.html");
    inChild([&] {
        vnfOpenLog(path.c_str());
        vnfLog("a  b\n");
    });
    EXPECT_EQ(timelessText(path), kHtmlBanner + "a&nbsp b<BR>\n");
}

TEST_F(LogTest, HtmlKeepsSingleBlanksAndMarkup) {
    const std::string path = sharedPath(folder, "run.html.old");
    inChild([&] {
        vnfOpenLog(path.c_str());
        vnfLog(" a b   <i>&");
    });
    EXPECT_EQ(timelessText(path), kHtmlBanner + " a b&nbsp&nbsp <i>&");
}

TEST_F(LogTest, HtmlEchoIsNotTranslated) {
    const std::string path = sharedPath(folder, "run.html"), printed = sharedPath(folder, "printed.txt");
    inChild([&] {
        if (!std::freopen(printed.c_str(), "w", stdout)) std::_Exit(2);
        vnfOpenLog(path.c_str());
        vnfSetLogEcho(true);
        vnfLog("a  b\n");
        std::fflush(stdout);
    });
    EXPECT_EQ(timelessText(printed), "a  b\n");
}

TEST_F(LogTest, HtmlClosesItsMarkup) {
    const std::string path = sharedPath(folder, "run.html");
    inChild([&] {
        vnfOpenLog(path.c_str());
        vnfCloseLog();
    });
    const std::string text = timelessText(path);
    ASSERT_EQ(text.substr(0, kHtmlBanner.size()), kHtmlBanner);
    EXPECT_TRUE(
        matches(text.substr(kHtmlBanner.size()), "<H4>\n" + kHtmlRule + kSummary + "</H4></BODY></HTML>"))
        << text;
}

TEST_F(LogTest, HtmlStaysOnForLaterLogs) {
    const std::string path = sharedPath(folder, "later.txt");
    inChild([&] {
        vnfOpenLog(sharedPath(folder, "run.html").c_str());
        vnfCloseLog();
        vnfOpenLog(path.c_str());
    });
    EXPECT_EQ(timelessText(path), kHtmlBanner);
}

TEST_F(LogTest, HtmlTranslationIsCutBetweenEntities) {
    const std::string path = sharedPath(folder, "run.html");
    inChild([&] {
        vnfOpenLog(path.c_str());
        vnfLog("%s", std::string(1023, '\n').c_str());
        vnfLog("%s", ("xxxx" + std::string(1000, ' ')).c_str());
    });
    std::string expected = kHtmlBanner;
    for (int i = 0; i < 204; ++i) expected += "<BR>\n";
    expected += "xxxx";
    for (int i = 0; i < 203; ++i) expected += "&nbsp";
    EXPECT_EQ(timelessText(path), expected);
}

// Three allocations (the identifier tables of the load step and of opening the log, a block) and two releases
// (the block, the table in use), counted in a process of its own.
TEST(LogSummaryDeathTest, CountsFromTheLoadStepOn) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            std::string text;
            {
                TempFolder folder;
                vnfFree(vnfMalloc(1000));
                vnfOpenLog(folder.path("run.txt").c_str());
                vnfCloseLog();
                text = timelessText(folder.path("run.txt"));
            }
            std::fputs(text.c_str(), stderr);
            const std::regex summary(
                "Final memory ratio: 1 \\(3/2\\)\n(.*\n)*"
                "Total allocated memory \\(vnfMalloc\\): 0\\.50 mb \\(525288 bytes\\)");
            std::_Exit(std::regex_search(text, summary) ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(LogTest, TheUnloadStepClosesTheLog) {
    const std::string path = sharedPath(folder, "run.txt");
    EXPECT_EXIT(
        {
            vnfOpenLog(path.c_str());
            std::exit(0);
        },
        testing::ExitedWithCode(0), "");
    EXPECT_TRUE(matches(messages(), "\n" + kRule + "\n" + kSummary)) << messages();
}

}  // namespace
}  // namespace keltra::test
