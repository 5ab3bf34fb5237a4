// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TESTS_EMULATED_H
#define KELTRA_TESTS_EMULATED_H

namespace keltra::test {

/// Tests of thousands of inputs try all of them; in an emulator, which takes many times as long, every
/// `step`-th, or a `step`-th part of a number.
#ifdef KELTRA_EMULATED
constexpr int sampled(int step) { return step; }
#else
constexpr int sampled(int) { return 1; }
#endif

}  // namespace keltra::test

#endif
