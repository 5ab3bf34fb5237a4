// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TESTS_CALL_HASH_H
#define KELTRA_TESTS_CALL_HASH_H

// What is drawn, as numbers that are the same on every machine: the stream of GL calls with their arguments,
// the vertices and indices drawn, the texels and matrices handed over. The rasterisers of two machines differ
// in single pixels; this stream does not.

#include <gtest/gtest.h>

#include <string>

namespace keltra::test {

class CallHash {
   public:
    /// Notes all calls from now on that the recorder sees.
    static void start();
    static void stop();
    static bool isOn();

    /// Compares the calls since the start, or since the last comparison, with the line of that name and of
    /// the screen's depth in tests/golden/calls.txt. On failure the calls are left in the build folder as
    /// text, which can be compared with that of another commit or machine. With KELTRA_UPDATE_GOLDEN=1 in the
    /// environment the line is written instead. A name that a test compares again has a line for each time.
    static ::testing::AssertionResult matches(const std::string &name);

    /// True with KELTRA_CALLS_ONLY=1 in the environment: pictures are neither drawn nor compared, as a driver
    /// in an emulator takes seconds for one.
    static bool withoutPictures();
};

}  // namespace keltra::test

#endif
