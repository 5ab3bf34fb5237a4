// SPDX-License-Identifier: Zlib
// The GL calls of the examples over some seconds, from start to end: the same on every machine.

#include <time.h>
#ifdef KELTRA_TEST_VIDEO
#include <inttypes.h>
extern "C" {
#include <mpeg2.h>
}
#endif

#include <cstdlib>

#include <example_list.h>  // made by CMake

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

const Example kExamples[] = {
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

// An example starts the engine itself.
class ExampleCallsTest : public EngineTest, public ::testing::WithParamInterface<Example> {
   protected:
    void SetUp() override {
        StartupFaults::clear();
        CallHash::start();
        clockIsHeld = true;
        std::srand(1);  // as at the start of a program: emitters draw their particles with it
#ifdef KELTRA_TEST_VIDEO
        mpeg2_accel(0);  // the decoder's instructions for one processor round as no other does
#endif
    }
    void TearDown() override {
        clockIsHeld = false;
        CallHash::stop();
        EngineTest::TearDown();
    }
};

TEST_P(ExampleCallsTest, AreTheSameOnEveryMachine) {
    std::vector<std::string> words = {GetParam().name, "--frames", "40", "--data", KELTRA_EXAMPLE_DATA};
    std::vector<char *> arguments;
    for (std::string &word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    GlRecorder::setDrawing(false);
    EXPECT_EQ(GetParam().main(static_cast<int>(words.size()), arguments.data()), 0);
    EXPECT_TRUE(CallHash::matches("example_" + words[0]));
}

INSTANTIATE_TEST_SUITE_P(, ExampleCallsTest, ::testing::ValuesIn(kExamples),
                         [](const auto &info) { return std::string(info.param.name); });

}  // namespace
}  // namespace keltra::test

extern "C" __attribute__((visibility("default"))) int clock_gettime(clockid_t clock, timespec *now) noexcept {
    if (!keltra::test::clockIsHeld || clock != CLOCK_MONOTONIC)
        return keltra::nextFunction<int(clockid_t, timespec *)>("clock_gettime")(clock, now);
    *now = keltra::test::heldTime();
    return 0;
}
