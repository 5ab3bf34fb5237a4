// SPDX-License-Identifier: Zlib
#include "tools/convert/isolated.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <new>

#include "tests/support/temp_file.h"
#include "tools/convert/convert.h"

namespace keltra::convert {
namespace {

namespace fs = std::filesystem;
using namespace ::testing;
using test::readFile, test::TempFolder;

#if defined(__SANITIZE_ADDRESS__)
constexpr bool kSanitized = true;
#else
constexpr bool kSanitized = false;
#endif
constexpr unsigned kLong = 60;

Conversion good() {
    Conversion conversion;
    conversion.files = {{"a_d.tga", {1, 2}}, {"a.kte", {3}}};
    conversion.report.sceneFile = "a.kte";
    conversion.report.vertices = 7;
    conversion.report.textures = {{"a_d.tga", "pic\xff.png", 1, 2, 24, false}};
    conversion.report.warn("look");
    return conversion;
}

bool isRunning(pid_t pid) { return ::kill(pid, 0) == 0; }

// Waits for something that must come soon.
template <class Condition>
bool comes(Condition condition) {
    for (int i = 0; i < 1000; ++i, ::usleep(10000))
        if (condition()) return true;
    return false;
}

class IsolatedTest : public ::testing::Test {
   protected:
    Outcome run(const ConvertFunction &convert, unsigned seconds = kLong) {
        return convertIsolated(convert, options, folder.path(""), Progress(), seconds);
    }
    std::string reasonOf(const std::function<void()> &accident, unsigned seconds = kLong) {
        const Outcome outcome = run(
            [&](const Options &, const Progress &) {
                accident();
                return good();
            },
            seconds);
        EXPECT_FALSE(outcome.converted);
        EXPECT_TRUE(outcome.files.empty());
        EXPECT_TRUE(fs::is_empty(folder.path("")));
        return outcome.reason;
    }

    Options options;
    TempFolder folder;
};

TEST_F(IsolatedTest, WritesTheFilesAndHandsOverTheReport) {
    options.name = "a";
    const Outcome outcome = run([](const Options &given, const Progress &) {
        EXPECT_EQ(given.name, "a");
        return good();
    });
    EXPECT_TRUE(outcome.converted);
    EXPECT_EQ(outcome.reason, "");
    EXPECT_THAT(outcome.files, ElementsAre("a_d.tga", "a.kte"));
    EXPECT_EQ(outcome.report.vertices, 7u);
    EXPECT_EQ(outcome.report.textures.at(0).source, "pic\xff.png");
    EXPECT_THAT(outcome.report.warnings, ElementsAre("look"));
    EXPECT_EQ(readFile(folder.path("a_d.tga")), (std::vector<std::uint8_t>{1, 2}));
    EXPECT_EQ(readFile(folder.path("a.kte")), (std::vector<std::uint8_t>{3}));
}

TEST_F(IsolatedTest, WithoutAFolderNothingIsWritten) {
    const auto convert = [](const Options &, const Progress &) { return good(); };
    const Outcome outcome = convertIsolated(convert, options, "", Progress(), kLong);
    EXPECT_TRUE(outcome.converted);
    EXPECT_EQ(outcome.files.size(), 2u);
}

TEST_F(IsolatedTest, ThisProcessIsNotTheOneThatConverts) {
    const pid_t here = ::getpid();
    int touched = 0;
    run([&](const Options &, const Progress &) {
        if (::getpid() == here) touched = 1;
        return good();
    });
    EXPECT_EQ(touched, 0);
}

TEST_F(IsolatedTest, ReasonsAreOneLine) {
    EXPECT_EQ(reasonOf([] { throw Refusal("no\n meshes \t in it\n"); }), "no meshes in it");
    EXPECT_EQ(reasonOf([] { throw std::runtime_error("odd"); }), "its importer failed: odd");
    EXPECT_EQ(reasonOf([] { throw 1; }), "its importer failed");
    EXPECT_EQ(reasonOf([] { throw std::bad_alloc(); }), "out of memory");
}

TEST_F(IsolatedTest, ACrashIsARefusal) {
    EXPECT_EQ(reasonOf([] { ::raise(SIGSEGV); }), "its importer crashed on it (SIGSEGV)");
    EXPECT_EQ(reasonOf([] { ::raise(SIGFPE); }), "its importer crashed on it (SIGFPE)");
    EXPECT_THAT(reasonOf([] { std::abort(); }), StartsWith("its importer crashed on it"));
    EXPECT_THAT(reasonOf([] { *reinterpret_cast<volatile int *>(::getpid() & 3) = 1; }),
                StartsWith("its importer crashed on it"));
    EXPECT_THAT(reasonOf([] { ::raise(SIGKILL); }), HasSubstr("was killed"));
}

TEST_F(IsolatedTest, AnEndWithoutAnOutcomeIsACrash) {
    EXPECT_EQ(reasonOf([] { ::_exit(0); }), "its importer crashed on it");
    EXPECT_EQ(reasonOf([] { ::_exit(3); }), "its importer crashed on it");
}

TEST_F(IsolatedTest, AHandlerOfThisProcessDoesNotActInTheOther) {
    struct sigaction action = {}, before;
    action.sa_handler = [](int) { ::_exit(0); };
    ::sigaction(SIGSEGV, &action, &before);
    const std::string reason = reasonOf([] { ::raise(SIGSEGV); });
    ::sigaction(SIGSEGV, &before, nullptr);
    EXPECT_EQ(reason, "its importer crashed on it (SIGSEGV)");
}

TEST_F(IsolatedTest, WhatIsNoMessageIsACrash) {
    const auto send = [](const char *bytes, std::size_t size) {
        for (int number = 3; number < 64; ++number) {
            char target[64] = {};
            const std::string link = "/proc/self/fd/" + std::to_string(number);
            if (::readlink(link.c_str(), target, sizeof target - 1) < 0) continue;
            const int flags = ::fcntl(number, F_GETFL);
            const bool pipe = std::string(target).find("pipe:") == 0 && (flags & O_ACCMODE) == O_WRONLY;
            if (pipe && ::write(number, bytes, size) < 0) ::_exit(9);
        }
        ::_exit(0);
    };
    EXPECT_EQ(reasonOf([&] { send("\xff\xff\xff\xff", 4); }), "its importer crashed on it");
    EXPECT_EQ(reasonOf([&] { send("\3\0\0\0abc", 7); }), "its importer crashed on it");
    EXPECT_EQ(reasonOf([&] { send("\1\0\0\0\xf6", 5); }), "its importer crashed on it");
    EXPECT_EQ(reasonOf([&] { send("\7\0", 2); }), "its importer crashed on it");
}

TEST_F(IsolatedTest, AHangIsStopped) {
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(reasonOf(
                  [] {
                      for (;;) ::pause();
                  },
                  1),
              "took longer than 1 second");
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(4));
}

TEST_F(IsolatedTest, AHangThatHoldsBackSignalsIsStoppedToo) {
    const std::string reason = reasonOf(
        [] {
            sigset_t all;
            ::sigfillset(&all);
            ::sigprocmask(SIG_BLOCK, &all, nullptr);
            for (;;) ::pause();
        },
        2);
    EXPECT_EQ(reason, "took longer than 2 seconds");
}

TEST_F(IsolatedTest, LyingCountsCannotTakeAllTheMemory) {
    if (kSanitized) GTEST_SKIP() << "the sanitizer reserves more addresses than any limit allows";
    EXPECT_EQ(reasonOf([] {
                  std::vector<void *> blocks;
                  for (int i = 0; i < 64; ++i) blocks.push_back(::operator new(std::size_t(1) << 30));
              }),
              "out of memory");
}

TEST_F(IsolatedTest, NoiseReachesNobody) {
    ::testing::internal::CaptureStdout();
    ::testing::internal::CaptureStderr();
    run([](const Options &, const Progress &) {
        std::printf("importing...\n");
        std::fprintf(stderr, "oh!\n");
        std::fflush(stdout);
        return good();
    });
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
}

TEST_F(IsolatedTest, TellsTheProgress) {
    std::vector<std::pair<std::string, double>> reported;
    const auto progress = [&](const char *what, double done) { reported.emplace_back(what, done); };
    const auto convert = [](const Options &, const Progress &progress) {
        progress("meshes", 0.25);
        progress("meshes", 0.3);  // too soon to be of interest
        ::usleep(100000);
        progress("textures", 0.5);
        return good();
    };
    EXPECT_TRUE(convertIsolated(convert, options, "", progress, kLong).converted);
    EXPECT_THAT(reported, ElementsAre(std::make_pair(std::string("meshes"), 0.25),
                                      std::make_pair(std::string("textures"), 0.5)));
}

TEST_F(IsolatedTest, TakesLargeOutcomes) {
    const Outcome outcome = run([](const Options &, const Progress &) {
        Conversion conversion = good();
        conversion.files[1].bytes.assign(100u << 20, 5);
        for (int i = 0; i < 50000; ++i) conversion.report.warn("warning " + std::to_string(i));
        return conversion;
    });
    EXPECT_TRUE(outcome.converted);
    EXPECT_EQ(outcome.report.warnings.size(), 50001u);
    EXPECT_EQ(fs::file_size(folder.path("a.kte")), 100u << 20);
}

TEST_F(IsolatedTest, WhatCannotBeWrittenIsARefusal) {
    const std::string reason = reasonOf([] {
        const rlimit limit = {1, 1};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    });
    EXPECT_THAT(reason, HasSubstr("a_d.tga: File too large"));
}

// A process whose conversion does not end, and its child process.
class InterruptedTest : public IsolatedTest {
   protected:
    void SetUp() override {
        outer = ::fork();
        if (outer != 0) return;
        for (int number : {SIGTERM, SIGINT, SIGHUP}) ::signal(number, SIG_DFL);
        run([&](const Options &, const Progress &) {
            folder.write("worker", std::to_string(::getpid()) + " ");
            for (;;) ::pause();
            return good();
        });
        ::_exit(0);
    }
    void interrupt(int number) {
        const std::string file = folder.path("worker");
        ASSERT_TRUE(comes([&] { return !readFile(file).empty() && readFile(file).back() == ' '; }));
        const std::vector<std::uint8_t> digits = readFile(file);
        worker = static_cast<pid_t>(std::stol(std::string(digits.begin(), digits.end())));
        fs::remove(file);
        ::kill(outer, number);
        ASSERT_EQ(::waitpid(outer, &status, 0), outer);
    }

    pid_t outer = 0, worker = 0;
    int status = 0;
};

TEST_F(InterruptedTest, BothEnd) {
    interrupt(SIGTERM);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGTERM);
    EXPECT_FALSE(isRunning(worker));
    EXPECT_TRUE(fs::is_empty(folder.path("")));
}

TEST_F(InterruptedTest, AKilledProcessTakesTheOtherWithIt) {
    interrupt(SIGKILL);
    // The process that inherits the worker has to wait for it too.
    EXPECT_TRUE(comes([&] {
        const std::vector<std::uint8_t> state = readFile("/proc/" + std::to_string(worker) + "/stat");
        return !isRunning(worker) || std::string(state.begin(), state.end()).find(") Z") != std::string::npos;
    }));
    EXPECT_TRUE(fs::is_empty(folder.path("")));
}

}  // namespace
}  // namespace keltra::convert
