// SPDX-License-Identifier: Zlib
#ifndef KELTRA_CONVERT_MADE_MATERIALS_H
#define KELTRA_CONVERT_MADE_MATERIALS_H

#include "tools/convert/options.h"
#include "tools/convert/uv_place.h"
#include "tools/formats/kte_writer.h"

#include <vector>

namespace keltra::convert {

struct Materials {
    std::vector<formats::Material> materials;  // in the model's order
    std::vector<unsigned> uvChannel;           // of each material's base texture
    std::vector<UvPlace> uvPlace;              // of its picture in its texture
    std::vector<bool> twoSided;                // opaque ones: the engine draws both sides of all others
    std::vector<unsigned> same;                // the first one that is equal but for its name, or itself
    std::vector<OutputFile> textures;
};

}  // namespace keltra::convert

#endif
