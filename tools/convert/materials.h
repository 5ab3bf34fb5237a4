// SPDX-License-Identifier: Zlib
#ifndef KELTRA_CONVERT_MATERIALS_H
#define KELTRA_CONVERT_MATERIALS_H

#include "tools/convert/options.h"
#include "tools/convert/report.h"
#include "tools/convert/uv_place.h"
#include "tools/formats/kte_writer.h"

#include <vector>

struct aiScene;

namespace keltra::convert {

struct Materials {
    std::vector<formats::Material> materials;  // in the model's order
    std::vector<unsigned> uvChannel;           // of each material's base texture
    std::vector<UvPlace> uvPlace;              // of its picture in its texture
    std::vector<bool> twoSided;                // opaque ones: the engine draws both sides of all others
    std::vector<unsigned> same;                // the first one that is equal but for its name, or itself
    std::vector<OutputFile> textures;
};

// Makes the materials, and the texture files that they name. Names of materials and textures begin with
// `options.name`, because the engine shares both by name among all files. A checkerboard replaces a texture
// that is missing or cannot be read, with a warning.
Materials convertMaterials(const aiScene &scene, const Options &options, Report &report,
                           const Progress &progress);

}  // namespace keltra::convert

#endif
