// SPDX-License-Identifier: Zlib
#include "foundation/timer.h"

#include <keltra/foundation.h>

#include "foundation/fault.h"
#include "foundation/quiet.h"
#include "platform/platform.h"

namespace {

constexpr unsigned int kTimers = 8;

struct Timer {
    float fps;
    float factor;
    float base;  // 0.0 marks a free timer
    std::int64_t frequency;
    std::int64_t now;
    std::int64_t last;
};

Timer timers[kTimers];

struct {
    vnfClock read;  // null for the system's
    void *user;
} source;

constexpr std::int64_t kNanosecondsPerSecond = 1000000000;

void restart(Timer &timer) {
    timer.last = source.read ? source.read(source.user) : keltra::platformCounter();
    timer.frequency = source.read ? kNanosecondsPerSecond : keltra::platformCounterFrequency();
}

// A counter may wrap around in between.
std::int64_t ticksBetween(std::int64_t last, std::int64_t now) {
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(now) - static_cast<std::uint64_t>(last));
}

// Null, with a line in the log, for a bad index or a free timer.
Timer *findTimer(int index, keltra::FaultCall caller) {
    if (static_cast<unsigned int>(index) < kTimers && timers[index].base != 0.0f) return &timers[index];
    vnfLog("%s: wrong params\n", keltra::faultCallName(caller));
    return nullptr;
}

// Always false.
bool refuse(int index, keltra::FaultCall caller) {
    if (static_cast<unsigned int>(index) < kTimers)
        return keltra::failState(caller, KT_TEXT("the timer is free"));
    return keltra::failRange(caller, KT_TEXT("timer"), index, kTimers - 1);
}

}  // namespace

void keltra::freeAllTimers() {
    for (Timer &timer : timers) timer.base = 0.0f;
}

int vnfNewTimer(float base) {
    for (unsigned int index = 0; index < kTimers; ++index) {
        Timer &timer = timers[index];
        if (timer.base != 0.0f) continue;
        timer.base = base;
        restart(timer);
        return int(index);
    }
    vnfLog("vnfNewTimer: no more timers\n");
    return keltra::failFull(KT_CALL("vnfNewTimer"), KT_TEXT("timers"), kTimers), -1;
}

bool keltra::returnTimer(int index) {
    Timer *timer = findTimer(index, KT_CALL("vnfFreeTimer"));
    if (!timer) return false;
    timer->base = 0.0f;
    return true;
}

bool vnfFreeTimer(int index) { return keltra::returnTimer(index) || refuse(index, KT_CALL("vnfFreeTimer")); }

bool keltra::adjournTimer(int index) {
    Timer *timer = findTimer(index, KT_CALL("vnfAdjournTimer"));
    if (!timer) return false;
    timer->now = source.read ? source.read(source.user) : keltra::platformCounter();
    if (source.read && timer->now == timer->last) {
        timer->factor = timer->fps = 0.0f;
        return true;
    }
    timer->factor = float(ticksBetween(timer->last, timer->now)) / (float(timer->frequency) / timer->base);
    // Two frames in one tick, and a negative base, would give a rate without meaning.
    if (timer->factor <= 0.0f) timer->factor = 1.0f;
    timer->fps = timer->base / timer->factor;
    timer->last = timer->now;
    return true;
}

bool vnfAdjournTimer(int index) {
    return keltra::adjournTimer(index) || refuse(index, KT_CALL("vnfAdjournTimer"));
}

float vnfGetTimerFactor(int index) {
    const Timer *timer = findTimer(index, KT_CALL("vnfGetTimerFactor"));
    return timer ? timer->factor : -1.0f;
}

float vnfGetTimerFps(int index) {
    const Timer *timer = findTimer(index, KT_CALL("vnfGetTimerFps"));
    return timer ? timer->fps : -1.0f;
}

void vnfSetClock(vnfClock clock, void *user) {
    source = {clock, user};
    for (Timer &timer : timers)
        if (timer.base != 0.0f) restart(timer);
}
