// SPDX-License-Identifier: Zlib
// A whole program over and over in one process: nothing that it takes from the system may grow.
// KELTRA_SOAK_MINUTES goes on for so long, KELTRA_SOAK_CYCLES for so many starts, KELTRA_SOAK_FRAMES for so
// many frames of one start; otherwise some runs are made.

#include <GLES/gl.h>
#include <gtest/gtest.h>
#include <keltra/keltra.h>

#ifdef _WIN32
#include <windows.h>

#include <psapi.h>
#endif

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "tests/failures/injector.h"
#include "tests/failures/program.h"
#include "tests/support/allocations.h"
#include "tests/support/emulated.h"
#include "tests/support/gl_recorder.h"
#include "tests/support/startup_faults.h"

namespace keltra::test {
namespace {

// What the process holds.
struct Held {
    long mappings = 0, files = 0, kilobytes = 0, kilobytesOfCode = 0;
    std::size_t blocks = 0;  // of the engine
};

Held held() {
    Held now;
#ifdef _WIN32
    DWORD handles = 0;
    PROCESS_MEMORY_COUNTERS memory = {};
    GetProcessHandleCount(GetCurrentProcess(), &handles);
    GetProcessMemoryInfo(GetCurrentProcess(), &memory, sizeof memory);
    now.files = static_cast<long>(handles);
    now.kilobytes = static_cast<long>(memory.WorkingSetSize / 1024);
#else
    // Not the driver's pages of code: Mesa reserves 10 MB more at each start, with SDL and EGL alone too, and
    // the system joins neighbours to one mapping or not.
    std::ifstream mappings("/proc/self/smaps");
    bool isCode = false;
    for (std::string line; std::getline(mappings, line);) {
        std::istringstream words(line);
        std::string first, second;
        words >> first >> second;
        if (first.back() != ':') {
            isCode = second == "rwxp";
            now.mappings += !isCode;
        } else if (first == "Rss:") {
            (isCode ? now.kilobytesOfCode : now.kilobytes) += std::stol(second);
        }
    }
    for ([[maybe_unused]] const auto &file : std::filesystem::directory_iterator("/proc/self/fd"))
        ++now.files;
#endif
    now.blocks = Injector::live();
    return now;
}

// `kOfDriver` kilobytes of each run lie in no block of the engine.
void expectNotGrown(const Held &before, const Held &after, long runs) {
    constexpr long kOfDriver = 1;
    std::printf("%ld runs: mappings %ld to %ld, files %ld to %ld, memory %ld to %ld KB, code %ld to %ld KB\n",
                runs, before.mappings, after.mappings, before.files, after.files, before.kilobytes,
                after.kilobytes, before.kilobytesOfCode, after.kilobytesOfCode);
    EXPECT_EQ(after.blocks, before.blocks);
    EXPECT_LE(after.files, before.files);
    if (!Allocations::canFail()) return;  // a sanitizer keeps what was released
    // The C library's arenas come and go, in an emulator its own too.
    EXPECT_LE(after.mappings, before.mappings + sampled(5) * 4 + runs / 100);
    EXPECT_LE(after.kilobytes, before.kilobytes + 4096 + kOfDriver * runs);
}

TEST(SoakTest, NothingGrows) {
    constexpr long kFirst = 5;  // until the driver has what it keeps
    const char *given = std::getenv("KELTRA_SOAK_MINUTES");
    const auto end =
        std::chrono::steady_clock::now() + std::chrono::seconds(given ? 60 * std::atol(given) : 0);
    if (Allocations::canFail()) Injector::start(Failing::kNothing, 0);
    GlRecorder::setRecording(false);
    Program program;
    Held before;
    Image picture;
    long runs = 0;
    for (; runs < 3 * kFirst || std::chrono::steady_clock::now() < end; ++runs) {
        if (runs == kFirst) before = held();
        const ProgramRun run = program.run();
        StartupFaults::clear();
        ASSERT_TRUE(run.failed.empty()) << run.failed[0];
        ASSERT_EQ(run.faults, 0u);
        if (runs == 0) picture = run.picture;
        ASSERT_TRUE(run.picture.pixels == picture.pixels) << "run " << runs;
    }
    const Held after = held();
    expectNotGrown(before, after, runs);
    AllocationWatch::install(nullptr);
    GlRecorder::setRecording(true);
}

// KELTRA_SOAK_CYCLES of them; a frame and a texture each.
TEST(SoakTest, ManyStartsAndStopsTakeNothing) {
    constexpr long kFirst = 5;
    const char *given = std::getenv("KELTRA_SOAK_CYCLES");
    const long cycles = given ? std::atol(given) : 3 * kFirst;
    if (Allocations::canFail()) Injector::start(Failing::kNothing, 0);
    GlRecorder::setRecording(false);
    Held before;
    GLuint name = 0;
    for (long cycle = 0; cycle < cycles; ++cycle) {
        if (cycle == kFirst) before = held();
        KTSETTINGS settings;
        ASSERT_TRUE(KELTRA::init(&settings));
        KTTEXTURE texture;
        ASSERT_TRUE(texture.create(16, 16, 3));
        ASSERT_TRUE(texture.render(nullptr));
        GLuint next = 0;
        glGenTextures(1, &next);
        if (cycle == 0) name = next;
        ASSERT_EQ(next, name) << "the context of cycle " << cycle << " is not new";
        KELTRA::clear(true, true, false);
        KELTRA::begin3D(nullptr);
        KELTRA::end3D();
        KELTRA::swap();
        ASSERT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR)) << cycle;
        ASSERT_TRUE(KELTRA::free());
        StartupFaults::clear();
        if (cycle % 1000 == 999) expectNotGrown(before, held(), cycle + 1);
    }
    expectNotGrown(before, held(), cycles);
    AllocationWatch::install(nullptr);
    GlRecorder::setRecording(true);
}

// KELTRA_SOAK_FRAMES of them, with one start; everything is loaded anew for each 250.
TEST(SoakTest, ManyFramesAndLoadsTakeNothing) {
    constexpr long kPeriod = 250, kPictured = 10, kFirst = 4 * kPeriod;
    const char *given = std::getenv("KELTRA_SOAK_FRAMES");
    const long frames = std::max(given ? std::atol(given) / kPeriod * kPeriod : 0, 2 * kFirst);
    if (Allocations::canFail()) Injector::start(Failing::kNothing, 0);
    GlRecorder::setRecording(false);
    Held before;
    GLuint last = 0;
    const auto look = [&](long frame) {
        StartupFaults::clear();
        // The driver gives each name once.
        GLuint next = 0;
        glGenTextures(1, &next);
        for (GLuint name = last + 1; name < next; ++name)
            ASSERT_FALSE(glIsTexture(name)) << "left at frame " << frame;
        last = next;
        glDeleteTextures(1, &next);
        if (frame == kFirst) before = held();
        if (frame > kFirst && frame % (50 * kFirst) == 0) expectNotGrown(before, held(), frame / kPeriod);
        if (frame == frames) expectNotGrown(before, held(), frame / kPeriod);
    };
    Program program;
    const ProgramRun run = program.runFrames(frames, kPeriod, kPictured, look);
    EXPECT_TRUE(run.failed.empty()) << run.failed.size() << " calls, first " << run.failed[0];
    EXPECT_EQ(run.faults, 0u);
    AllocationWatch::install(nullptr);
    GlRecorder::setRecording(true);
}

}  // namespace
}  // namespace keltra::test
