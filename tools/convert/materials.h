#ifndef KELTRA_CONVERT_MATERIALS_H
#define KELTRA_CONVERT_MATERIALS_H

#include <vector>

#include "tools/convert/options.h"
#include "tools/convert/report.h"
#include "tools/formats/kte_writer.h"

struct aiScene;

namespace keltra::convert {

struct Materials {
    std::vector<formats::Material> materials;  // one for each of the model's, in its order
    std::vector<unsigned> uvChannel;           // of the same materials: the channel of their base texture
    std::vector<OutputFile> textures;
};

// Makes the materials, and the texture files that they name. Names of materials and textures begin with
// `options.name`, for the engine shares both by name among all files. A texture that is missing or cannot be
// read becomes a checker, with a warning.
Materials convertMaterials(const aiScene &scene, const Options &options, Report &report,
                           const Progress &progress);

}  // namespace keltra::convert

#endif
