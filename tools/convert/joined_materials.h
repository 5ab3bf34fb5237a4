// SPDX-License-Identifier: Zlib
#ifndef KELTRA_CONVERT_JOINED_MATERIALS_H
#define KELTRA_CONVERT_JOINED_MATERIALS_H

// Materials whose pictures share a texture, and those that are equal then.

#include "tools/convert/made_materials.h"
#include "tools/convert/textures.h"

#include <vector>

struct aiScene;

namespace keltra::convert {

// Puts pictures together that no mesh repeats. `apart` has a reason for each material whose picture must stay
// alone, or null.
void joinPictures(const aiScene &scene, const std::vector<const char *> &apart, const Options &options,
                  Textures &textures, Materials &materials);

// Finds the materials that differ in nothing but their names.
void joinEqualMaterials(Materials &materials, Report &report);

}  // namespace keltra::convert

#endif
