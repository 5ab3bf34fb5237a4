// SPDX-License-Identifier: Zlib
#ifndef KELTRA_EXAMPLES_METER_H
#define KELTRA_EXAMPLES_METER_H

#include <chrono>

enum Part { kUpdate, kPass, kDraw, kSwap, kParts };
// Milliseconds of the parts of a frame, each the mean of many frames: single ones are chance.
class Meter {
   public:
    // Runs that must repeat exactly count a millisecond for each part.
    explicit Meter(bool isFixed) : fixed(isFixed) {}
    void begin() { last = std::chrono::steady_clock::now(); }
    void end(Part part) {
        const auto now = std::chrono::steady_clock::now();
        const float milliseconds =
            fixed ? 1.0f : std::chrono::duration<float, std::milli>(now - last).count();
        mean[part] += 0.05f * (milliseconds - mean[part]);
        last = now;
    }
    float get(int part) const { return mean[part]; }

   private:
    bool fixed;
    float mean[kParts] = {};
    std::chrono::steady_clock::time_point last;
};

#endif
