// SPDX-License-Identifier: Zlib
#ifndef KELTRA_CONVERT_SCENE_BUILDER_H
#define KELTRA_CONVERT_SCENE_BUILDER_H

#include "tools/convert/materials.h"
#include "tools/convert/options.h"
#include "tools/convert/report.h"
#include "tools/convert/rig.h"
#include "tools/formats/kte_writer.h"

struct aiScene;

namespace keltra::convert {

// The scene file's contents: a plain root, below it the nodes without bones, and "HumanoidRoot" with the
// skeletons and the skins. Also fills the report's counts.
formats::Scene buildScene(const aiScene &scene, Rig &rig, const Materials &materials, const Options &options,
                          Report &report, const Progress &progress);

}  // namespace keltra::convert

#endif
