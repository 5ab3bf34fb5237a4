// SPDX-License-Identifier: Zlib
#ifndef KELTRA_KIT_CLOCK_H
#define KELTRA_KIT_CLOCK_H

/** @file
 *
 * One time for a whole game: it can be paused, slowed down, and moved on in fixed steps for captures and
 * replays. Once started it is also the time of the engine's timers, and so of emitters and carets. */

#include <keltra/kit/export.h>

#include <cstdint>

/** A clock that the application moves on once a frame. It stands still within a frame. */
class KTKIT_API KTCLOCK {
   public:
    /** At time 0 and the rate 1, running, by the system's clock. */
    KTCLOCK();
    /** Stops it. */
    ~KTCLOCK();
    KTCLOCK(const KTCLOCK &) = delete;
    KTCLOCK &operator=(const KTCLOCK &) = delete;

    /** The engine's timers go by this clock from now on (`vnfSetClock`), before or after `KELTRA::init`; one
     * that was started before is stopped. */
    void start();
    /** The engine's timers go by the system's clock again; nothing for a clock that was not started. */
    void stop();
    bool isStarted() const;

    /** Moves the clock on; to be called once at the top of a frame, before `KELTRA::updateTimer` and
     * `begin3D`. Returns `getSeconds`. The first frame takes no time, but for fixed steps. */
    float tick();

    /** While paused, frames take no time: `getSeconds` and `KELTRA::getFPSfactor` are 0. */
    void setPaused(bool status) { paused = status; }
    bool isPaused() const { return paused; }
    /** 1 at first; 0.25 is slow motion. Below 0, and not a number, is 0; above 100 is 100. */
    void setRate(float factor);
    float getRate() const { return rate; }
    /** Each frame takes so many seconds, times the rate, whatever the system's clock says: runs repeat
     * exactly. 0 and less, and not a number: by the system's clock, as at first. At most 1. */
    void setStep(float seconds);
    float getStep() const { return step; }
    /** A frame that took longer counts as so many seconds: nothing jumps after a pause or while loading. 0.25
     * at first; from 0.001 to 10. */
    void setLongest(float seconds);
    float getLongest() const { return longest; }
    /** `tick` waits (`SDL_Delay`) until so many seconds have passed since the last one: a limit to the frame
     * rate, which saves power. 0 at first: it does not wait. At most 1. Without effect with fixed steps. */
    void setShortest(float seconds);
    float getShortest() const { return shortest; }

    /** Seconds of the last frame by this clock, and by the system's clock, neither cut nor paused; with fixed
     * steps both are fixed. */
    float getSeconds() const { return seconds; }
    float getRealSeconds() const { return realSeconds; }
    /** The time of this clock. A float tells milliseconds apart for some hours; the nanoseconds are exact. */
    float getTime() const { return static_cast<float>(time) * 1e-9f; }
    std::int64_t getNanoseconds() const { return time; }

   private:
    static std::int64_t tell(void *clock);
    std::int64_t measure();

    std::int64_t time, last;  // nanoseconds
    float rate, step, longest, shortest, seconds, realSeconds;
    bool paused, ticked;
};

/** Divides the time of frames into steps of fixed length: pictures of a film, steps of a simulation. */
class KTKIT_API KTPACE {
   public:
    /** So many steps a second, and at most so many in a frame: of a slower frame the rest is dropped. A rate
     * that is not above 0 counts as 1. */
    explicit KTPACE(float stepsPerSecond, unsigned int most = 3);

    /** Takes the seconds of a frame and returns how many steps are due. */
    unsigned int advance(float frameSeconds);
    /** How much of the next step has passed: from 0 up to 1. */
    float getRest() const { return waiting / length; }
    /** Seconds. */
    float getStep() const { return length; }

   private:
    float length, waiting;
    unsigned int most;
};

#endif
