// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TESTS_CPU_TIME_H
#define KELTRA_TESTS_CPU_TIME_H

#include <ctime>

namespace keltra::test {

/// The limit for an input that takes the engine less than a second, in unoptimised and checked builds and in
/// emulators; and on Windows, where `clock` counts the time that passes. Work that grows with the square of
/// the input takes minutes.
#if defined(__SANITIZE_ADDRESS__) || defined(KELTRA_EMULATED) || defined(_WIN32)
constexpr double kLongestSeconds = 30.0;
#else
constexpr double kLongestSeconds = 6.0;
#endif

/// Processor time of this process, independent of other processes.
class CpuTime {
   public:
    double seconds() const { return static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC; }

   private:
    std::clock_t begin = std::clock();
};

}  // namespace keltra::test

#endif
