// SPDX-License-Identifier: Zlib
#ifndef KELTRA_CONVERT_SAMPLED_CLIP_H
#define KELTRA_CONVERT_SAMPLED_CLIP_H

#include "tools/convert/options.h"
#include "tools/convert/report.h"
#include "tools/convert/rig.h"

#include <string>
#include <vector>

namespace keltra::convert {

struct Pose {
    Vector angles, position;
};

// The joints that the files hold, with their poses in the scene file.
struct PosedJoints {
    std::vector<unsigned> joints;
    std::vector<Pose> bind;
};

struct SampledClip {
    std::string name;
    std::vector<std::vector<Pose>> frames;  // one pose per posed joint
};

// How far poses stray, as a share of the size, when every `step`-th frame is kept and those between two of
// them are interpolated: the joints, and points beside them, which turns move.
double strayOf(const SampledClip &clip, const PosedJoints &posed, const Rig &rig, double size, unsigned step);

// With `options.fit`: keeps fewer frames until the files of all clips are within their budget, as long as
// poses stray by no more than `options.clipError`. `bones` is the number that each file holds. Returns which
// frames are kept: 1 for all, 2 for every second one.
unsigned keepFewerFrames(std::vector<SampledClip> &clips, const PosedJoints &posed, const Rig &rig,
                         std::size_t bones, const Options &options, Report &report);

}  // namespace keltra::convert

#endif
