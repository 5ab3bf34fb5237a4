// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TESTS_EMULATED_H
#define KELTRA_TESTS_EMULATED_H

namespace keltra::test {

/// Tests of thousands of inputs try all of them; in an emulator or in wine, which take many times as long,
/// every `step`-th, or a `step`-th part of a number.
#if defined(KELTRA_EMULATED) || defined(_WIN32)  // which is wine
constexpr int sampled(int step) { return step; }
#else
constexpr int sampled(int) { return 1; }
#endif

}  // namespace keltra::test

#endif
