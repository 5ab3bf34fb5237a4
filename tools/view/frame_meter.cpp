// SPDX-License-Identifier: Zlib
#include "tools/view/frame_meter.h"

namespace keltra::view {
namespace {

constexpr double kPeriod = 0.5;  // seconds

}  // namespace

void FrameMeter::add(double frameWork, double frameWhole) {
    work += frameWork;
    whole += frameWhole;
    ++frames;
    // The first frame is shown at once.
    if ((whole < kPeriod && shownRate > 0.0) || !(whole > 0.0)) return;
    shownMilliseconds = 1000.0 * work / frames;
    shownRate = frames / whole;
    work = whole = 0.0;
    frames = 0;
}

}  // namespace keltra::view
