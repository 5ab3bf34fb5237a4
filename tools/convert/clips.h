#ifndef KELTRA_CONVERT_CLIPS_H
#define KELTRA_CONVERT_CLIPS_H

#include <vector>

#include "tools/convert/options.h"
#include "tools/convert/report.h"
#include "tools/convert/rig.h"

struct aiScene;

namespace keltra::convert {

// Samples every animation at `options.fps`. All files hold the same joints, whichever of them a clip moves,
// so that changing from one to another leaves none in a pose of the first. What is longer than 1024 frames or
// has more than 128 bones is split. Also fills `report.clips`.
std::vector<OutputFile> convertClips(const aiScene &scene, const Rig &rig, const Options &options,
                                     Report &report, const Progress &progress);

}  // namespace keltra::convert

#endif
