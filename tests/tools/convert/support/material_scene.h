// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TESTS_TOOLS_CONVERT_SUPPORT_MATERIAL_SCENE_H
#define KELTRA_TESTS_TOOLS_CONVERT_SUPPORT_MATERIAL_SCENE_H

// A scene of materials and embedded pictures, as importers make them.

#include <assimp/GltfMaterial.h>
#include <assimp/material.h>
#include <assimp/scene.h>

#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "tools/convert/materials.h"
#include "tools/formats/tga_writer.h"

namespace keltra::test {

class MaterialScene {
   public:
    aiMaterial &add(const std::string &name = "") {
        materials.push_back(std::make_unique<aiMaterial>());
        if (!name.empty()) {
            const aiString text(name);
            materials.back()->AddProperty(&text, AI_MATKEY_NAME);
        }
        return *materials.back();
    }

    /// The picture's file, as the model carries it; `*0`, `*1`, ... in order.
    void embed(const std::vector<std::uint8_t> &file, const char *hint, const char *name = "") {
        aiTexture &texture = addTexture(name);
        texture.mWidth = static_cast<unsigned>(file.size());
        texture.pcData = new aiTexel[file.size() / sizeof(aiTexel) + 1];
        std::memcpy(static_cast<void *>(texture.pcData), file.data(), file.size());
        std::strncpy(texture.achFormatHint, hint, sizeof texture.achFormatHint - 1);
    }
    void embed(const formats::Image &image, const char *name = "") {
        aiTexture &texture = addTexture(name);
        texture.mWidth = image.width;
        texture.mHeight = image.height;
        texture.pcData = new aiTexel[image.pixels.size()];
        for (std::size_t i = 0; i < image.pixels.size(); ++i) {
            const formats::Rgba pixel = image.pixels[i];
            texture.pcData[i] = {pixel.b, pixel.g, pixel.r, pixel.a};
        }
    }
    aiTexture &addTexture(const char *name) {
        textures.push_back(std::make_unique<aiTexture>());
        textures.back()->mFilename = aiString(std::string(name));
        return *textures.back();
    }

    /// The scene, valid until this object goes or the next call.
    const aiScene &scene() {
        materialList.clear();
        textureList.clear();
        for (const auto &material : materials) materialList.push_back(material.get());
        for (const auto &texture : textures) textureList.push_back(texture.get());
        lent.mMaterials = materialList.data();
        lent.mNumMaterials = static_cast<unsigned>(materialList.size());
        lent.mTextures = textureList.data();
        lent.mNumTextures = static_cast<unsigned>(textureList.size());
        return lent;
    }
    ~MaterialScene() {
        lent.mMaterials = nullptr;
        lent.mTextures = nullptr;
        lent.mNumMaterials = lent.mNumTextures = 0;
    }

    convert::Materials convert() {
        report = {};
        return convert::convertMaterials(scene(), options, report, progress);
    }

    convert::Options options;
    convert::Report report;
    convert::Progress progress;

   private:
    std::vector<std::unique_ptr<aiMaterial>> materials;
    std::vector<std::unique_ptr<aiTexture>> textures;
    std::vector<aiMaterial *> materialList;
    std::vector<aiTexture *> textureList;
    aiScene lent;
};

inline void setTexture(aiMaterial &material, aiTextureType type, const std::string &path,
                       unsigned index = 0) {
    const aiString text(path);
    material.AddProperty(&text, AI_MATKEY_TEXTURE(type, index));
}
inline void setColour(aiMaterial &material, const char *key, aiColor3D colour) {
    material.AddProperty(&colour, 1, key, 0, 0);
}
inline void setFloat(aiMaterial &material, const char *key, float value) {
    material.AddProperty(&value, 1, key, 0, 0);
}
inline void setInteger(aiMaterial &material, const char *key, int value, unsigned type = 0,
                       unsigned index = 0) {
    material.AddProperty(&value, 1, key, type, index);
}
inline void setAlphaMode(aiMaterial &material, const char *mode) {
    const aiString text{std::string(mode)};
    material.AddProperty(&text, AI_MATKEY_GLTF_ALPHAMODE);
}

inline bool mentions(const std::vector<std::string> &lines, const std::string &text) {
    for (const std::string &line : lines)
        if (line.find(text) != std::string::npos) return true;
    return false;
}
inline std::uint64_t dropped(const convert::Report &report, const std::string &what) {
    std::uint64_t count = 0;
    for (const convert::Dropped &line : report.dropped)
        if (line.what == what) count += line.count;
    return count;
}

}  // namespace keltra::test

#endif
