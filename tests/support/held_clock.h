// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TESTS_HELD_CLOCK_H
#define KELTRA_TESTS_HELD_CLOCK_H

// The steady clock while a test holds it: it advances only on request. To be included in one source file of a
// test program.

#ifdef _WIN32
#include <windows.h>
#endif
#include <time.h>

#include "tools/support/interpose.h"

namespace keltra::test {

class HeldClock {
   public:
    HeldClock() { held = true; }
    ~HeldClock() { held = false; }
    HeldClock(const HeldClock &) = delete;
    HeldClock &operator=(const HeldClock &) = delete;

    static void passMilliseconds(long milliseconds) {
        now.tv_sec += milliseconds / 1000;  // a long holds four seconds of nanoseconds on some machines
        now.tv_nsec += milliseconds % 1000 * 1000000;
        now.tv_sec += now.tv_nsec / 1000000000;
        now.tv_nsec %= 1000000000;
    }

    static inline bool held = false;
    static inline timespec now = {1000, 0};
};

}  // namespace keltra::test

#ifdef _WIN32
KELTRA_INTERPOSE(BOOL, WINAPI, QueryPerformanceCounter, (LARGE_INTEGER * ticks)) {
    using keltra::test::HeldClock;
    static auto *const next = keltra::nextFunction<BOOL WINAPI(LARGE_INTEGER *)>("QueryPerformanceCounter");
    if (!HeldClock::held) return next(ticks);
    LARGE_INTEGER second;
    QueryPerformanceFrequency(&second);
    ticks->QuadPart =
        HeldClock::now.tv_sec * second.QuadPart + HeldClock::now.tv_nsec * second.QuadPart / 1000000000;
    return TRUE;
}
#else
KELTRA_INTERPOSE(int, , clock_gettime, (clockid_t clock, timespec *now) noexcept) {
    using keltra::test::HeldClock;
    if (!HeldClock::held || clock != CLOCK_MONOTONIC)
        return keltra::nextFunction<int(clockid_t, timespec *)>("clock_gettime")(clock, now);
    *now = HeldClock::now;
    return 0;
}
#endif

#endif
