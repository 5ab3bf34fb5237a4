// SPDX-License-Identifier: Zlib
#ifndef KELTRA_CONVERT_CLIPS_H
#define KELTRA_CONVERT_CLIPS_H

#include "tools/convert/clip_sources.h"
#include "tools/convert/options.h"
#include "tools/convert/report.h"
#include "tools/convert/rig.h"

#include <vector>

struct aiScene;

namespace keltra::convert {

// Samples every clip at `options.fps`. All files hold the same joints, also those that a clip does not
// move, so that no joint keeps a pose of the clip before. A clip of more than 1024 frames or 128 bones is
// split. Also fills `report.clips`.
std::vector<OutputFile> convertClips(const aiScene &scene, const ClipSources &sources, const Rig &rig,
                                     const Options &options, Report &report, const Progress &progress);

}  // namespace keltra::convert

#endif
