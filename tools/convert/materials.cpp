// SPDX-License-Identifier: Zlib
#include "tools/convert/materials.h"

#include "tools/convert/joined_materials.h"
#include "tools/convert/names.h"
#include "tools/convert/properties.h"
#include "tools/convert/setup_code.h"
#include "tools/convert/source_format.h"
#include "tools/convert/surface.h"
#include "tools/convert/textures.h"

#include <assimp/material.h>
#include <assimp/mesh.h>
#include <assimp/scene.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <set>
#include <string>

namespace keltra::convert {
namespace {

constexpr char kOneTexture[] = "a surface has one texture";
constexpr char kUnused[] = "the engine's lighting does not use them";

// What the importer of Blender's files writes for a picture that is computed.
constexpr char kGenerated[] = "Procedural,num=";

// A texture that a material names.
struct Layer {
    aiTextureType type;
    unsigned index;
    std::string path;
};

// Read from the properties: the library's count is the largest index, which is arbitrary in a damaged model.
std::vector<Layer> layersOf(const aiMaterial &material, Report &report) {
    std::vector<Layer> layers;
    for (unsigned i = 0; i < material.mNumProperties; ++i) {
        const aiMaterialProperty &property = *material.mProperties[i];
        if (property.mKey != aiString(_AI_MATKEY_TEXTURE_BASE)) continue;
        const aiTextureType type = static_cast<aiTextureType>(property.mSemantic);
        aiString path;
        if (material.Get(AI_MATKEY_TEXTURE(type, property.mIndex), path) != aiReturn_SUCCESS) continue;
        if (std::string(path.C_Str()).compare(0, sizeof kGenerated - 1, kGenerated) == 0) {
            report.drop("generated pictures", 1,
                        "the modelling program computes them; bake them into a picture");
            continue;
        }
        if (path.C_Str()[0] != '\0') layers.push_back({type, property.mIndex, path.C_Str()});
    }
    std::stable_sort(layers.begin(), layers.end(),
                     [](const Layer &a, const Layer &b) { return a.index < b.index; });
    return layers;
}

const Layer *firstOf(const std::vector<Layer> &layers, std::initializer_list<aiTextureType> types) {
    for (const aiTextureType type : types)
        for (const Layer &layer : layers)
            if (layer.type == type) return &layer;
    return nullptr;
}

int integer(const aiMaterial &material, const char *key, const Layer &layer, int otherwise) {
    int value = otherwise;
    if (material.Get(key, layer.type, layer.index, value) != aiReturn_SUCCESS) return otherwise;
    return value;
}

unsigned uvChannelOf(const aiMaterial &material, const Layer &layer) {
    const int channel = integer(material, _AI_MATKEY_UVWSRC_BASE, layer, 0);
    return channel < 0 || channel >= AI_MAX_NUMBER_OF_TEXTURECOORDS ? 0 : static_cast<unsigned>(channel);
}

int flagsOf(const aiMaterial &material, const Layer &layer) {
    return integer(material, _AI_MATKEY_TEXFLAGS_BASE, layer, 0);
}

bool repeats(const aiMaterial &material, const Layer &layer) {
    for (const char *key : {_AI_MATKEY_MAPPINGMODE_U_BASE, _AI_MATKEY_MAPPINGMODE_V_BASE})
        if (integer(material, key, layer, aiTextureMapMode_Wrap) != aiTextureMapMode_Wrap) return false;
    return true;
}

const char *mapsOf(aiTextureType type) {
    switch (type) {
        case aiTextureType_DIFFUSE:
        case aiTextureType_BASE_COLOR:
            return "further texture layers";
        case aiTextureType_SPECULAR:
            return "specular maps";
        case aiTextureType_AMBIENT:
            return "ambient maps";
        case aiTextureType_EMISSIVE:
        case aiTextureType_EMISSION_COLOR:
            return "emission maps";
        case aiTextureType_HEIGHT:
            return "bump maps";
        case aiTextureType_NORMALS:
        case aiTextureType_NORMAL_CAMERA:
            return "normal maps";
        case aiTextureType_SHININESS:
            return "shininess maps";
        case aiTextureType_OPACITY:
            return "opacity maps";
        case aiTextureType_DISPLACEMENT:
            return "displacement maps";
        case aiTextureType_LIGHTMAP:
        case aiTextureType_AMBIENT_OCCLUSION:
            return "light and occlusion maps";
        case aiTextureType_REFLECTION:
            return "reflection maps";
        case aiTextureType_METALNESS:
        case aiTextureType_DIFFUSE_ROUGHNESS:
            return "metalness and roughness maps";
        case aiTextureType_SHEEN:
        case aiTextureType_CLEARCOAT:
            return "coat and sheen maps";
        case aiTextureType_TRANSMISSION:
            return "transmission maps";
        default:
            return "maps of unknown purpose";
    }
}

class Converter {
   public:
    Converter(const aiScene &scene, const Options &options, Report &report)
        : options(options),
          report(report),
          textures(scene, options, report),
          properties(materialProperties(scene, options.model, report)),
          alphaIsOpacity(importerOf(scene) == kAc3dImporter),
          allTwoSided(isTwoSidedAc3d(scene, options.model, report)) {}

    void add(const aiMaterial &material);
    Materials finish(const aiScene &scene);

   private:
    struct Chosen {
        const Layer *base = nullptr, *opacity = nullptr, *normals = nullptr;
        bool glow = false;  // the base is an emission map
    };
    Chosen choose(const aiMaterial &material, const std::vector<Layer> &layers);
    static SurfaceUse useOf(const std::string &name, const std::vector<Layer> &layers, const Chosen &chosen);
    void chooseOpacity(const aiMaterial &material, const std::vector<Layer> &layers, Chosen &chosen);
    TextureRequest requestFor(const aiMaterial &material, const Chosen &chosen, float &opacity) const;
    void applyTexture(const aiMaterial &material, const Chosen &chosen, float opacity,
                      formats::Material &result);
    void dropRest(const std::vector<Layer> &layers, const Chosen &chosen);
    void setFilter(const std::string &filter, const std::string &texture, bool clamped);

    const Options &options;
    Report &report;
    Textures textures;
    const std::map<std::string, MaterialProperties> properties;
    const bool alphaIsOpacity;  // in all pictures: the format has no word for it
    const bool allTwoSided;
    Names names;
    Materials made;
    std::vector<const char *>
        apart;  // why a material's picture cannot be part of a larger one; null if it can
};

// An emission map becomes the base texture only of a material that is otherwise black: a grey wall with a map
// of its lit windows would become black.
Converter::Chosen Converter::choose(const aiMaterial &material, const std::vector<Layer> &layers) {
    Chosen chosen;
    // Old OBJ exporters write only an ambient map.
    chosen.base = firstOf(layers, {aiTextureType_BASE_COLOR, aiTextureType_DIFFUSE, aiTextureType_AMBIENT});
    if (!chosen.base && isDark(material)) {
        chosen.base = firstOf(layers, {aiTextureType_EMISSION_COLOR, aiTextureType_EMISSIVE});
        chosen.glow = chosen.base != nullptr;
    }
    chooseOpacity(material, layers, chosen);
    if (options.normalMaps && chosen.base)
        chosen.normals =
            firstOf(layers, {aiTextureType_NORMALS, aiTextureType_NORMAL_CAMERA, aiTextureType_HEIGHT});
    return chosen;
}

void Converter::chooseOpacity(const aiMaterial &material, const std::vector<Layer> &layers, Chosen &chosen) {
    const AlphaMode mode = alphaModeOf(material);
    if (mode == AlphaMode::kOpaque) return;
    const Layer *opacity = firstOf(layers, {aiTextureType_OPACITY});
    if (!opacity) return;
    if (chosen.base && uvChannelOf(material, *chosen.base) != uvChannelOf(material, *opacity)) {
        report.drop("opacity maps", 1, "they use other texture coordinates than the texture");
        return;
    }
    chosen.opacity = opacity;
}

TextureRequest Converter::requestFor(const aiMaterial &material, const Chosen &chosen, float &opacity) const {
    TextureRequest request;
    const AlphaMode mode = alphaModeOf(material);
    if (chosen.base) {
        request.base = chosen.base->path;
        const int flags = flagsOf(material, *chosen.base);
        const bool uses = alphaIsOpacity || (flags & aiTextureFlags_UseAlpha) != 0;
        if (mode == AlphaMode::kBlend || (mode == AlphaMode::kNone && uses)) request.alpha = AlphaUse::kKeep;
        if (flags & aiTextureFlags_IgnoreAlpha) request.alpha = AlphaUse::kDrop;
    }
    if (chosen.base && mode == AlphaMode::kMask) {
        // The opacity scales the alpha before the comparison; pixels that pass are opaque.
        request.alpha = AlphaUse::kCut;
        request.cutOff = opacity > 0.0f ? alphaCutOff(material) / opacity : 2.0f;
        opacity = 1.0f;
    }
    if (chosen.opacity) {
        request.opacity = chosen.opacity->path;
        request.opacityInverted = (flagsOf(material, *chosen.opacity) & aiTextureFlags_Invert) != 0;
    }
    if (chosen.normals) {
        request.normals = chosen.normals->path;
        request.normalsMayBeHeights = chosen.normals->type == aiTextureType_HEIGHT;
    }
    return request;
}

void Converter::applyTexture(const aiMaterial &material, const Chosen &chosen, float opacity,
                             formats::Material &result) {
    const AlphaMode mode = alphaModeOf(material);
    TextureMade texture;
    if (chosen.base || chosen.opacity) texture = textures.make(requestFor(material, chosen, opacity));
    if (!texture.file.empty()) result.texture = texture.file;
    if (!chosen.base && mode == AlphaMode::kMask) opacity = opacity < alphaCutOff(material) ? 0.0f : 1.0f;
    result.transparency = opacity;
    // The engine blends only materials that are not exactly opaque.
    if (texture.seeThrough && opacity == 1.0f) result.transparency = 254.0f / 255.0f;
    const Layer *shown = chosen.base ? chosen.base : chosen.opacity;
    if (shown && !texture.file.empty() && !repeats(material, *shown))
        report.drop("clamped or mirrored textures", 1, "scene files have no wrap modes: textures repeat");
}

void Converter::dropRest(const std::vector<Layer> &layers, const Chosen &chosen) {
    // Importers list one picture under several types, and exporters list the base picture under others.
    std::set<std::string> seen;
    for (const Layer *used : {chosen.base, chosen.opacity, chosen.normals})
        if (used) seen.insert(used->path);
    for (const Layer &layer : layers) {
        if (layer.type == aiTextureType_OPACITY && chosen.base && !chosen.opacity)
            continue;  // dropped already
        if (layer.type == aiTextureType_UNKNOWN) continue;
        if (!seen.insert(layer.path).second) continue;
        const bool second = layer.type == aiTextureType_DIFFUSE || layer.type == aiTextureType_BASE_COLOR;
        const bool normals = layer.type == aiTextureType_NORMALS || layer.type == aiTextureType_NORMAL_CAMERA;
        report.drop(mapsOf(layer.type), 1,
                    second                              ? kOneTexture
                    : normals && !options.normalMaps    ? "normal maps were not requested"
                    : normals && chosen.base == nullptr ? "the material has no base texture"
                                                        : kUnused);
    }
    // Most pictures of unknown type are listed under their own type too.
    for (const Layer &layer : layers)
        if (layer.type == aiTextureType_UNKNOWN && seen.insert(layer.path).second)
            report.drop(mapsOf(layer.type), 1, kUnused);
}

// A texture has one filter, whatever materials show it.
void Converter::setFilter(const std::string &filter, const std::string &texture, bool clamped) {
    if (!options.setup) {
        report.drop("texture filters", 1, "scene files have none: an application calls setFilter");
        return;
    }
    const bool mipmapped = filter == "mipmapped";
    const SetupCall entry = filterCall(texture, mipmapped || filter == "linear", mipmapped, clamped);
    for (const SetupCall &known : report.setup) {
        if (known.name != entry.name || known.kind != entry.kind) continue;
        if (known.call != entry.call)
            report.warn("materials want two filters of the texture " + texture + "; the first one counts");
        return;
    }
    report.setup.push_back(entry);
}

SurfaceUse Converter::useOf(const std::string &name, const std::vector<Layer> &layers, const Chosen &chosen) {
    SurfaceUse use;
    use.name = name;
    use.textured = chosen.base != nullptr;
    use.glowTexture = chosen.glow;
    const Layer *glow = firstOf(layers, {aiTextureType_EMISSION_COLOR, aiTextureType_EMISSIVE});
    use.glowDropped = glow && !(chosen.base && chosen.base->path == glow->path);
    use.metalMaps = firstOf(layers, {aiTextureType_METALNESS, aiTextureType_DIFFUSE_ROUGHNESS}) != nullptr;
    return use;
}

void Converter::add(const aiMaterial &material) {
    const std::string ownName = material.GetName().C_Str();
    formats::Material result;
    const std::size_t changed = names.changed();
    result.name = names.take(ownName.empty() ? "" : options.name + "." + ownName, options.name + ".material");
    if (!ownName.empty())
        report.change("material names", names.changed() - changed,
                      "taken by another one, too long or not UTF-8");
    const std::vector<Layer> layers = layersOf(material, report);
    const Chosen chosen = choose(material, layers);
    const float opacity = opacityOf(material, result.name, report);
    applyTexture(material, chosen, opacity, result);
    dropRest(layers, chosen);
    setColours(material, useOf(result.name, layers, chosen), result, report);
    const auto own = properties.find(ownName);
    if (own != properties.end()) {
        own->second.applyTo(result);
        const Layer *shown = chosen.base ? chosen.base : chosen.opacity;
        if (!own->second.filter.empty() && shown)
            setFilter(own->second.filter, result.texture, !repeats(material, *shown));
    }

    int blend = aiBlendMode_Default;
    if (material.Get(AI_MATKEY_BLEND_FUNC, blend) == aiReturn_SUCCESS && blend == aiBlendMode_Additive)
        report.drop("additive blending", 1, "the engine blends by alpha only");
    const Layer *mapped = chosen.base ? chosen.base : chosen.opacity;
    made.uvChannel.push_back(mapped ? uvChannelOf(material, *mapped) : 0);
    int twoSided = allTwoSided ? 1 : 0;
    material.Get(AI_MATKEY_TWOSIDED, twoSided);
    made.twoSided.push_back(twoSided != 0 && result.transparency == 1.0f);
    made.uvPlace.emplace_back();
    made.same.push_back(static_cast<unsigned>(made.same.size()));
    const bool filtered = own != properties.end() && !own->second.filter.empty();
    apart.push_back(chosen.normals ? "they have normal maps beside them"
                    : filtered     ? "a filter is set, which is that of a whole texture"
                                   : nullptr);
    made.materials.push_back(std::move(result));
}

Materials Converter::finish(const aiScene &scene) {
    if (options.fit || options.atlas) joinPictures(scene, apart, options, textures, made);
    if (options.fit && options.budget.textures > 0) textures.shrinkTo(options.budget.textures);
    if (options.atlas) joinEqualMaterials(made, report);
    made.textures = textures.take();
    const bool normals = std::any_of(made.textures.begin(), made.textures.end(), [](const OutputFile &f) {
        return f.name.size() > 6 && f.name.compare(f.name.size() - 6, 6, "_n.tga") == 0;
    });
    if (normals)
        report.warn(
            "normal maps are written: without shaders the engine shows them in place of the textures");
    const auto megabytes = [](std::uint64_t bytes) {
        char text[32];
        std::snprintf(text, sizeof text, "%.1f MiB", static_cast<double>(bytes) / (1 << 20));
        return std::string(text);
    };
    if (report.textureMemory > kTextureBudget)
        report.warn("the textures take " + megabytes(report.textureMemory) + " of the engine's " +
                    megabytes(kTextureBudget) + ": some of them will be loaded repeatedly");
    else if (report.textureMemory * 2 > kTextureBudget)
        report.note("the textures take " + megabytes(report.textureMemory) +
                    "; mipmapped, the engine counts " + megabytes(report.textureMemory * 2) +
                    ", more than its " + megabytes(kTextureBudget));
    return std::move(made);
}

}  // namespace

Materials convertMaterials(const aiScene &scene, const Options &options, Report &report,
                           const Progress &progress) {
    Converter converter(scene, options, report);
    for (unsigned i = 0; i < scene.mNumMaterials; ++i) {
        converter.add(*scene.mMaterials[i]);
        if (progress) progress("textures", static_cast<double>(i + 1) / scene.mNumMaterials);
    }
    Materials made = converter.finish(scene);
    report.materials = static_cast<unsigned>(made.materials.size());
    return made;
}

}  // namespace keltra::convert
