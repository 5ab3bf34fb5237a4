// SPDX-License-Identifier: Zlib
#include "tools/convert/joined_materials.h"

#include <assimp/mesh.h>
#include <assimp/scene.h>

#include <map>
#include <string>
#include <tuple>

namespace keltra::convert {
namespace {

using formats::Color;
using formats::Material;

constexpr float kOutside = 1e-3f;  // of a picture's width, that texture coordinates may leave it by
constexpr char kRepeated[] = "texture coordinates beyond 0 to 1 repeat them, or there are none";

bool isInside(float value) { return value >= -kOutside && value <= 1.0f + kOutside; }

// By material, whether some mesh shows its picture more than once.
std::vector<bool> repeatedPictures(const aiScene &scene, const std::vector<unsigned> &channels) {
    std::vector<bool> repeated(channels.size());
    for (unsigned i = 0; i < scene.mNumMeshes; ++i) {
        const aiMesh &mesh = *scene.mMeshes[i];
        const unsigned material = mesh.mMaterialIndex;
        if (material >= channels.size() || repeated[material]) continue;
        const unsigned channel = channels[material];
        const aiVector3D *uvs =
            channel < AI_MAX_NUMBER_OF_TEXTURECOORDS ? mesh.mTextureCoords[channel] : nullptr;
        bool inside = uvs != nullptr;
        for (unsigned v = 0; inside && v < mesh.mNumVertices; ++v)
            inside = isInside(uvs[v].x) && isInside(uvs[v].y);
        repeated[material] = !inside;
    }
    return repeated;
}

auto tied(const Color &c) { return std::tie(c.r, c.g, c.b, c.a); }

bool isEqual(const Material &a, const Material &b) {
    return a.texture == b.texture && a.shader == b.shader && tied(a.ambient) == tied(b.ambient) &&
           tied(a.diffuse) == tied(b.diffuse) && tied(a.specular) == tied(b.specular) &&
           tied(a.emission) == tied(b.emission) && a.transparency == b.transparency &&
           a.shininess == b.shininess;
}

}  // namespace

void joinPictures(const aiScene &scene, const std::vector<const char *> &apart, const Options &options,
                  Textures &textures, Materials &materials) {
    const std::vector<bool> repeated = repeatedPictures(scene, materials.uvChannel);
    Textures::Apart files;
    for (std::size_t m = 0; m < materials.materials.size(); ++m) {
        const char *const reason = apart[m] ? apart[m] : repeated[m] ? kRepeated : nullptr;
        const char *&known = files.emplace(materials.materials[m].texture, reason).first->second;
        if (!known) known = reason;
    }
    const auto joined = textures.join(files, options.atlas, options.fit ? options.budget.textures : 0);
    for (std::size_t m = 0; m < materials.materials.size(); ++m) {
        const auto found = joined.find(materials.materials[m].texture);
        if (found == joined.end()) continue;
        materials.materials[m].texture = found->second.file;
        materials.uvPlace[m] = found->second.place;
    }
}

void joinEqualMaterials(Materials &materials, Report &report) {
    std::map<std::string, std::vector<unsigned>> byTexture;  // the first ones of their kind
    std::uint64_t joined = 0;
    for (unsigned m = 0; m < materials.materials.size(); ++m) {
        std::vector<unsigned> &firsts = byTexture[materials.materials[m].texture];
        for (const unsigned first : firsts)
            if (materials.twoSided[first] == materials.twoSided[m] &&
                isEqual(materials.materials[first], materials.materials[m]))
                materials.same[m] = first;
        if (materials.same[m] == m)
            firsts.push_back(m);
        else
            ++joined;
    }
    report.change("materials", joined, "they were equal to others but for their names, and share these");
}

}  // namespace keltra::convert
