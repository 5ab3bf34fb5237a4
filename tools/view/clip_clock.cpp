// SPDX-License-Identifier: Zlib
#include "tools/view/clip_clock.h"

#include <algorithm>
#include <cmath>

namespace keltra::view {

void ClipClock::start(unsigned frames) {
    length = frames;
    position = 0.0;
}

void ClipClock::advance(double seconds) {
    if (!playing || length == 0 || !(seconds > 0.0)) return;
    // Rounded, so that steps of 1/25 s always reach the next frame.
    const double next = position + seconds * kRate;
    const double whole = std::round(next);
    position = std::fmod(std::abs(next - whole) < 1e-4 ? whole : next, static_cast<double>(length));
}

void ClipClock::seek(unsigned frame) {
    position = length == 0 ? 0.0 : static_cast<double>(std::min(frame, length - 1));
}

void ClipClock::step(int frames) {
    playing = false;
    if (length == 0) return;
    const long long count = length;
    const long long wanted = (static_cast<long long>(frame()) + frames) % count;
    position = static_cast<double>((wanted + count) % count);
}

}  // namespace keltra::view
