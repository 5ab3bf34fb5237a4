// SPDX-License-Identifier: Zlib
#ifndef KELTRA_VIEW_CLIP_CLOCK_H
#define KELTRA_VIEW_CLIP_CLOCK_H

namespace keltra::view {

// The frame of a clip that is shown. Clips are repeated, at 25 frames per second.
class ClipClock {
   public:
    static constexpr double kRate = 25.0;  // the converter's default

    // Starts a clip of that many frames at its first one; a paused clock stays paused.
    void start(unsigned frames);
    void advance(double seconds);
    // Shows a frame; the last one if `frame` is beyond the end.
    void seek(unsigned frame);
    // Pauses and moves by whole frames, from the end to the beginning and back.
    void step(int frames);
    void toggle() { playing = !playing; }
    bool isPlaying() const { return playing; }
    unsigned frame() const { return static_cast<unsigned>(position); }
    unsigned frames() const { return length; }

   private:
    unsigned length = 0;
    double position = 0.0;  // in frames
    bool playing = true;
};

}  // namespace keltra::view

#endif
