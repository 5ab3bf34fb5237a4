// SPDX-License-Identifier: Zlib
// Every n-th call of a kind fails once while a whole program runs. KELTRA_EVERY_FAILURE=1 tries all n,
// KELTRA_FAILURE=n that one; otherwise a sample is tried.

#include <gtest/gtest.h>
#include <keltra/keltra.h>

#include <algorithm>
#include <cstdlib>

#include "tests/failures/injector.h"
#include "tests/failures/program.h"
#include "tests/support/allocations.h"
#include "tests/support/emulated.h"
#include "tests/support/gl_recorder.h"

namespace keltra::test {
namespace {

constexpr long kSample = 8 / sampled(8);  // of each kind

// The first failure to be tried, and every how many.
struct Steps {
    long first, step;
};

Steps stepsOf(long all) {
    if (const char *only = std::getenv("KELTRA_FAILURE")) return {std::atol(only), all};
    const char *every = std::getenv("KELTRA_EVERY_FAILURE");
    if (every && *every == '1') return {1, 1};
    return {kSample == 1 ? (all + 1) / 2 : 1, (all + kSample - 1) / kSample};
}

class FailuresTest : public ::testing::TestWithParam<Failing> {
   protected:
    void SetUp() override {
        if (!Allocations::canFail()) GTEST_SKIP() << "a sanitizer owns malloc";
        GlRecorder::setRecording(false);
    }
    void TearDown() override {
        Injector::start(Failing::kNothing, 0);
        AllocationWatch::install(nullptr);
        GlRecorder::setRecording(true);
    }

    ProgramRun runWith(Failing kind, long nth) {
        Injector::start(kind, nth);
        ProgramRun run = program.run();
        calls = Injector::stop();
        return run;
    }

    // Files have no checksums, and a film that has become shorter ends earlier: such a picture is in order.
    static bool isSeen() { return GetParam() != Failing::kChangedRead && GetParam() != Failing::kShortRead; }

    Program program;
    long calls = 0;
};

TEST_P(FailuresTest, EndWellAndAreTold) {
    runWith(Failing::kNothing, 0);  // what stays for the life of the process is made now
    const std::size_t live = Injector::live();
    const ProgramRun whole = runWith(GetParam(), 0);
    ASSERT_TRUE(whole.failed.empty()) << whole.failed[0];
    ASSERT_FALSE(whole.picture.empty());
    ASSERT_EQ(Injector::live(), live) << "the program itself releases everything";
    ASSERT_EQ(whole.faults, 0u);
    const long all = calls;
    ASSERT_GT(all, 0);
    const Steps steps = stepsOf(all);
    long tried = 0, seen = 0;
    for (long nth = steps.first; nth <= all; nth += steps.step, ++tried) {
        SCOPED_TRACE("failure " + std::to_string(nth) + " of " + std::to_string(all));
        const ProgramRun failing = runWith(GetParam(), nth);
        EXPECT_FALSE(KELTRA::isActive());
        EXPECT_EQ(Injector::live(), live) << "blocks are lost";
        const bool differs = failing.picture.pixels != whole.picture.pixels;
        seen += !failing.failed.empty() || differs;
        if (!failing.isShort && (!failing.failed.empty() || (differs && isSeen()))) {
            EXPECT_GT(failing.faults, 0u)
                << (failing.failed.empty() ? "the picture differs" : failing.failed[0]) << " without a fault";
        }
        const ProgramRun again = runWith(Failing::kNothing, 0);
        EXPECT_TRUE(again.failed.empty()) << again.failed[0];
        EXPECT_TRUE(again.picture.pixels == whole.picture.pixels) << "the next run draws another picture";
        EXPECT_EQ(Injector::live(), live);
    }
    std::printf("%s: %ld of %ld calls failed, %ld with an effect\n", nameOf(GetParam()), tried, all, seen);
}

std::vector<Failing> kinds() {
    std::vector<Failing> result = {Failing::kMemory, Failing::kMemoryForGood, Failing::kOpen,
                                   Failing::kRead,   Failing::kShortRead,     Failing::kChangedRead,
                                   Failing::kWindow, Failing::kUpload};
#if defined(KELTRA_TEST_FILMS) && !defined(_WIN32)  // where the decoder is inside the library
    result.push_back(Failing::kDecoder);
#endif
    return result;
}

std::string testName(const ::testing::TestParamInfo<Failing> &info) {
    std::string name = nameOf(info.param);
    name.erase(std::remove(name.begin(), name.end(), ' '), name.end());
    return name;
}

INSTANTIATE_TEST_SUITE_P(Every, FailuresTest, ::testing::ValuesIn(kinds()), testName);

}  // namespace
}  // namespace keltra::test
