// SPDX-License-Identifier: Zlib
#include "tools/convert/source_format.h"

#include <assimp/commonMetaData.h>
#include <assimp/scene.h>

namespace keltra::convert {

std::string importerOf(const aiScene &scene) {
    aiString name;
    if (!scene.mMetaData || !scene.mMetaData->Get(AI_METADATA_SOURCE_FORMAT, name)) return "";
    return name.C_Str();
}

}  // namespace keltra::convert
