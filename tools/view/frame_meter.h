// SPDX-License-Identifier: Zlib
#ifndef KELTRA_VIEW_FRAME_METER_H
#define KELTRA_VIEW_FRAME_METER_H

namespace keltra::view {

// Means over half a second: values that change with every frame cannot be read.
class FrameMeter {
   public:
    // Adds a frame that took `work` seconds to draw and came `whole` seconds after the last one.
    void add(double work, double whole);
    double milliseconds() const { return shownMilliseconds; }
    double framesPerSecond() const { return shownRate; }

   private:
    double work = 0.0, whole = 0.0;
    unsigned frames = 0;
    double shownMilliseconds = 0.0, shownRate = 0.0;
};

}  // namespace keltra::view

#endif
