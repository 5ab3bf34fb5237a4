// SPDX-License-Identifier: Zlib
// The GL calls of the examples over some seconds, from start to end: the same on every machine; and the
// picture that stands at the end.

#ifdef _WIN32
#include <windows.h>
#endif
#include <time.h>
#include <unistd.h>
#ifdef KELTRA_TEST_VIDEO
#include <inttypes.h>
extern "C" {
#include <mpeg2.h>
}
#endif
#include <example_list.h>  // made by CMake

#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "tests/support/call_hash.h"
#include "tests/support/engine_fixture.h"
#include "tools/support/interpose.h"

// Each is the main function of an example.
#define KELTRA_DECLARE(name) int example_##name(int argc, char **argv);
KELTRA_EXAMPLE_LIST(KELTRA_DECLARE)
#undef KELTRA_DECLARE

namespace keltra::test {
namespace {

struct Example {
    const char *name;
    int (*main)(int, char **);
};

void PrintTo(const Example &example, std::ostream *stream) { *stream << example.name; }

constexpr Example kExamples[] = {
#define KELTRA_ENTRY(name) {#name, example_##name},
    KELTRA_EXAMPLE_LIST(KELTRA_ENTRY)
#undef KELTRA_ENTRY
};

// Emitters go by the clock, which is 33 milliseconds later after each frame. Threads of the driver have the
// real one.
thread_local bool clockIsHeld = false;

timespec heldTime() {
    const long frame = StartupFaults::count("eglSwapBuffers");
    return {1000 + frame * 33 / 1000, frame * 33 % 1000 * 1000000};
}

#ifdef _WIN32
// The C library's random numbers of the other machines: emitters draw their particles with them.
class Random {
   public:
    void seed(std::int32_t word) {
        for (std::uint32_t &each : words) {
            each = static_cast<std::uint32_t>(word);
            word = static_cast<std::int32_t>(16807LL * word % 2147483647);
        }
        last = kLag - 1;
        for (int i = 0; i < 10 * kWords; ++i) next();
    }
    int next() {
        last = (last + 1) % kWords;
        words[last] += words[(last + kWords - kLag) % kWords];
        return static_cast<int>(words[last] >> 1);
    }

   private:
    static constexpr int kWords = 31, kLag = 3;
    std::uint32_t words[kWords];
    int last;
} randomNumbers;
#endif

// An example starts the engine itself.
class ExampleCallsTest : public EngineTest, public ::testing::WithParamInterface<Example> {
   protected:
    void SetUp() override {
        StartupFaults::clear();
        CallHash::start();
        clockIsHeld = true;
#ifdef _WIN32
        randomNumbers.seed(1);
#else
        std::srand(1);  // as at the start of a program: emitters draw their particles with it
#endif
#ifdef KELTRA_TEST_VIDEO
        mpeg2_accel(0);  // the decoder's instructions for one processor round as no other does
#endif
    }
    void TearDown() override {
        clockIsHeld = false;
        CallHash::stop();
        EngineTest::TearDown();
    }
    static int runExample(std::vector<std::string> &words) {
        std::vector<char *> arguments;
        for (std::string &word : words) arguments.push_back(word.data());
        arguments.push_back(nullptr);
        return GetParam().main(static_cast<int>(words.size()), arguments.data());
    }
};

TEST_P(ExampleCallsTest, AreTheSameOnEveryMachine) {
    std::vector<std::string> words = {GetParam().name, "--frames", "40", "--data", KELTRA_EXAMPLE_DATA};
#ifdef _WIN32
    if (words[0] == "10_lights" || words[0] == "16_attachments")
        GTEST_SKIP() << "its own angles are by the C library, which rounds otherwise there";
#endif
    GlRecorder::setDrawing(false);
    EXPECT_EQ(runExample(words), 0);
    EXPECT_TRUE(CallHash::matches("example_" + words[0]));
}

// Only the last frame is drawn: frames do not depend on what was drawn before them, but for what is picked,
// which is drawn in any case.
class ExamplePictureTest : public ExampleCallsTest {
   protected:
    static constexpr int kFrames = 40;
    static constexpr Tolerance kTolerance = {8, 0.05};

    static void drawTheLast(const Call &, unsigned) {
        GlRecorder::setDrawing(StartupFaults::count("eglSwapBuffers") >= kFrames - 1);
    }
    void SetUp() override {
        ExampleCallsTest::SetUp();
        CallHash::stop();
        if (CallHash::withoutPictures()) GTEST_SKIP() << "only calls are compared on this machine";
        GlRecorder::setListener(drawTheLast);
    }
    void TearDown() override {
        GlRecorder::setListener(nullptr);
        GlRecorder::setDrawing(true);
        std::remove(shot.c_str());
        ExampleCallsTest::TearDown();
    }
    std::string shot =
        (std::filesystem::temp_directory_path() / ("keltra_example_" + std::to_string(getpid()) + ".png"))
            .string();
};

TEST_P(ExamplePictureTest, IsTheGoldenOne) {
    std::vector<std::string> words = {
        GetParam().name, "--frames", std::to_string(kFrames), "--data", KELTRA_EXAMPLE_DATA, "--shot", shot};
    ASSERT_EQ(runExample(words), 0);
    const Image picture = loadPng(shot);
    ASSERT_FALSE(picture.empty());
    EXPECT_TRUE(matchesGolden(picture, "example_" + words[0], kTolerance));
}

INSTANTIATE_TEST_SUITE_P(, ExamplePictureTest, ::testing::ValuesIn(kExamples),
                         [](const auto &info) { return std::string(info.param.name); });
INSTANTIATE_TEST_SUITE_P(, ExampleCallsTest, ::testing::ValuesIn(kExamples),
                         [](const auto &info) { return std::string(info.param.name); });

}  // namespace
}  // namespace keltra::test

#ifdef _WIN32
KELTRA_INTERPOSE(int, , rand, ()) { return keltra::test::randomNumbers.next(); }

KELTRA_INTERPOSE(BOOL, WINAPI, QueryPerformanceCounter, (LARGE_INTEGER * ticks)) {
    static auto *const next = keltra::nextFunction<BOOL WINAPI(LARGE_INTEGER *)>("QueryPerformanceCounter");
    if (!keltra::test::clockIsHeld) return next(ticks);
    const timespec now = keltra::test::heldTime();
    LARGE_INTEGER second;
    QueryPerformanceFrequency(&second);
    ticks->QuadPart = now.tv_sec * second.QuadPart + now.tv_nsec * second.QuadPart / 1000000000;
    return TRUE;
}
#else
KELTRA_INTERPOSE(int, , clock_gettime, (clockid_t clock, timespec *now) noexcept) {
    if (!keltra::test::clockIsHeld || clock != CLOCK_MONOTONIC)
        return keltra::nextFunction<int(clockid_t, timespec *)>("clock_gettime")(clock, now);
    *now = keltra::test::heldTime();
    return 0;
}
#endif
