#ifndef KELTRA_VIEW_CLIP_CLOCK_H
#define KELTRA_VIEW_CLIP_CLOCK_H

namespace keltra::view {

// Which frame of a clip is shown. Clips are played in a ring, 25 frames a second.
class ClipClock {
   public:
    static constexpr double kRate = 25.0;  // what the converter samples at unless it is told otherwise

    // Begins a clip of so many frames at its first one; it goes on playing, or stays paused.
    void start(unsigned frames);
    void advance(double seconds);
    // Shows a frame, within the clip.
    void seek(unsigned frame);
    // Pauses, and moves by whole frames around the ring.
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
