// SPDX-License-Identifier: Zlib
#ifndef KELTRA_CONVERT_MATERIALS_H
#define KELTRA_CONVERT_MATERIALS_H

#include "tools/convert/made_materials.h"
#include "tools/convert/options.h"
#include "tools/convert/report.h"

struct aiScene;

namespace keltra::convert {

// Makes the materials, and the texture files that they name. Names of materials and textures begin with
// `options.name`, because the engine shares both by name among all files. A checkerboard replaces a texture
// that is missing or cannot be read, with a warning.
Materials convertMaterials(const aiScene &scene, const Options &options, Report &report,
                           const Progress &progress);

}  // namespace keltra::convert

#endif
