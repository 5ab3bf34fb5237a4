// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TESTS_TOOLS_CONVERT_SUPPORT_CLIPS_H
#define KELTRA_TESTS_TOOLS_CONVERT_SUPPORT_CLIPS_H

// Which of a conversion's animation files hold which clip of the model, and how near the engine's poses come
// to the model's.

#include <functional>
#include <set>
#include <string>
#include <vector>

#include "tests/tools/convert/support/engine_pose.h"
#include "tests/tools/convert/support/source_pose.h"

namespace keltra::test {

/// A file with the frames from `firstFrame` on. Files with the same first frame move different bones.
struct ClipFile {
    std::string file;
    unsigned firstFrame = 0, frames = 0;
};

struct Clip {
    std::string name;
    unsigned source = 0;  // index of the model's animation
    unsigned frames = 0;
    std::vector<ClipFile> files;
};

/// The model's clips that move nodes, in its order, each with its files. Throws std::runtime_error when the
/// files are not those that clips of these lengths need.
std::vector<Clip> clipsOf(const convert::Report &report, const SourcePose &source, double fps = 25.0);

/// Applies a frame of the clip; false when some file of it cannot be loaded or has not that frame.
bool applyFrame(Loaded &loaded, const Clip &clip, unsigned frame);

/// `count` frames spread over the clip, the first and the last among them.
std::set<unsigned> spreadFrames(const Clip &clip, unsigned count);

/// The shapes of several moments, by kind of point.
struct Moments {
    std::vector<std::vector<Point>> corners, middles;
    void add(Shape shape);
};

Shape scaled(Shape shape, double scale);

/// The largest distance between drawn and expected points, relative to the model's size, and lines that begin
/// with `what` about points farther than `bound`.
struct Deviation {
    double largest = 0.0;
    std::string outliers;
};
Deviation compare(const SourcePose &source, const Moments &expected, const Moments &actual, double bound,
                  const std::string &what);

/// Poses the scene in these frames of the clip, draws it with `draw`, and compares with the model.
Deviation compareClip(const SourcePose &source, Loaded &loaded, const Clip &clip, double scale,
                      const std::set<unsigned> &frames, double bound,
                      const std::function<Shape(KTNODE *)> &draw, double fps = 25.0);

}  // namespace keltra::test

#endif
