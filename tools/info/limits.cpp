// SPDX-License-Identifier: Zlib
#include "tools/info/limits.h"

#include "formats/limits.h"
#include "tools/convert/budget.h"

#include <nlohmann/json.hpp>

namespace keltra::info {

std::string limitsText() {
    const convert::Budget budget;
    const nlohmann::ordered_json document = {
        {"nameBytes", kNameSize - 1},
        {"meshVertices", kMaxCount},
        {"meshTriangles", kMaxCount},
        {"children", kMaxCount},
        {"treeDepth", kMaxTreeDepth},
        {"skinBones", kMaxSkinBones},
        {"influences", convert::kMaxInfluences},
        {"skins", kMaxSkins},
        {"elements", kMaxElements},
        {"clipBones", kMaxAnimBones},
        {"clipFrames", kMaxAnimFrames},
        {"textureSize", kMaxTextureSize},
        {"textureBytes", kVideoMemory},
        {"budget",
         {{"triangles", budget.triangles},
          {"vertices", budget.vertices},
          {"bones", budget.bones},
          {"textures", budget.textures},
          {"clips", budget.clips}}},
    };
    return document.dump(2) + "\n";
}

}  // namespace keltra::info
