// SPDX-License-Identifier: Zlib
#include <keltra/kit/clock.h>

#include <keltra/foundation.h>

#include <SDL.h>

#include <algorithm>
#include <chrono>

namespace {

constexpr float kNanosecondsPerSecond = 1e9f;
constexpr std::int64_t kNanosecondsPerMillisecond = 1000000;

// The clock that the engine's timers read.
const KTCLOCK *started = nullptr;

std::int64_t systemTime() {
    using std::chrono::duration_cast;
    using std::chrono::nanoseconds;
    return duration_cast<nanoseconds>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

// Of less than some 68 years. In two parts: a processor without floats computes in double to convert to 64
// bits.
std::int64_t toNanoseconds(float seconds) {
    const std::int32_t whole = static_cast<std::int32_t>(seconds);
    const float rest = (seconds - static_cast<float>(whole)) * kNanosecondsPerSecond;
    return whole * std::int64_t{1000000000} + static_cast<std::int32_t>(rest);
}

// `low` for what is not a number.
float between(float value, float low, float high) { return value > low ? std::min(value, high) : low; }

}  // namespace

KTCLOCK::KTCLOCK()
    : time(0),
      last(0),
      rate(1.0f),
      step(0.0f),
      longest(0.25f),
      shortest(0.0f),
      seconds(0.0f),
      realSeconds(0.0f),
      paused(false),
      ticked(false) {}

KTCLOCK::~KTCLOCK() { stop(); }

std::int64_t KTCLOCK::tell(void *clock) { return static_cast<const KTCLOCK *>(clock)->time; }

void KTCLOCK::start() {
    started = this;
    vnfSetClock(tell, this);
}

void KTCLOCK::stop() {
    if (started != this) return;
    started = nullptr;
    vnfSetClock(nullptr, nullptr);
}

bool KTCLOCK::isStarted() const { return started == this; }

void KTCLOCK::setRate(float factor) { rate = between(factor, 0.0f, 100.0f); }
void KTCLOCK::setStep(float length) { step = between(length, 0.0f, 1.0f); }
void KTCLOCK::setLongest(float length) { longest = between(length, 0.001f, 10.0f); }
void KTCLOCK::setShortest(float length) { shortest = between(length, 0.0f, 1.0f); }

// What has passed since the last call, once that is long enough. A delay may be a little too short.
std::int64_t KTCLOCK::measure() {
    const std::int64_t least = toNanoseconds(shortest);
    std::int64_t now = systemTime();
    while (ticked && now - last < least) {
        SDL_Delay(static_cast<Uint32>((least - (now - last)) / kNanosecondsPerMillisecond + 1));
        now = systemTime();
    }
    const std::int64_t passed = ticked ? now - last : 0;
    last = now;
    ticked = true;
    return passed;
}

float KTCLOCK::tick() {
    if (step > 0.0f) {
        realSeconds = step;
        ticked = false;
    } else {
        realSeconds = static_cast<float>(measure()) / kNanosecondsPerSecond;
    }
    seconds = paused ? 0.0f : std::min(realSeconds, std::max(longest, step)) * rate;
    time += toNanoseconds(seconds);
    return seconds;
}

KTPACE::KTPACE(float stepsPerSecond, unsigned int most)
    : length(stepsPerSecond > 0.0f ? 1.0f / stepsPerSecond : 1.0f), waiting(0.0f), most(most) {}

unsigned int KTPACE::advance(float frameSeconds) {
    waiting = std::min(waiting + std::max(frameSeconds, 0.0f), static_cast<float>(most) * length);
    unsigned int due = 0;
    for (; waiting >= length && due < most; ++due) waiting -= length;
    return due;
}
