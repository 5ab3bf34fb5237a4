// SPDX-License-Identifier: Zlib
#include "tools/convert/gltf_extensions.h"

#include "tools/convert/names.h"

#include <cstdint>
#include <map>
#include <set>
#include <vector>

namespace keltra::convert {
namespace {

using Json = nlohmann::json;

enum class Use {
    kRead,     // by the importer, or by this converter
    kWithout,  // the model is converted without it
    kRefused,  // the model's geometry cannot be read without it, if it is required
};

struct Extension {
    const char *name;
    Use use;
    const char *why;
};

constexpr char kLighting[] = "the engine's lighting has no such thing";

constexpr Extension kExtensions[] = {
    {"KHR_binary_glTF", Use::kRead, ""},
    {"KHR_materials_common", Use::kRead, ""},
    {"KHR_draco_mesh_compression", Use::kRead, ""},
    {"KHR_lights_punctual", Use::kRead, ""},
    {"KHR_materials_pbrSpecularGlossiness", Use::kRead, ""},
    {"KHR_materials_transmission", Use::kRead, ""},
    {"KHR_materials_unlit", Use::kRead, ""},
    {"KHR_texture_transform", Use::kRead, ""},
    {"FB_ngon_encoding", Use::kRead, ""},
    {"EXT_texture_webp", Use::kRead, ""},
    {"MSFT_texture_dds", Use::kRead, ""},
    {"EXT_texture_avif", Use::kRead, ""},    // a picture that cannot be read is reported as one
    {"KHR_texture_basisu", Use::kRead, ""},  // the same
    {"KHR_materials_anisotropy", Use::kWithout, kLighting},
    {"KHR_materials_clearcoat", Use::kWithout, kLighting},
    {"KHR_materials_diffuse_transmission", Use::kWithout, kLighting},
    {"KHR_materials_dispersion", Use::kWithout, kLighting},
    {"KHR_materials_emissive_strength", Use::kWithout, "a surface emits light up to 1"},
    {"KHR_materials_ior", Use::kWithout, kLighting},
    {"KHR_materials_iridescence", Use::kWithout, kLighting},
    {"KHR_materials_sheen", Use::kWithout, kLighting},
    {"KHR_materials_specular", Use::kWithout, kLighting},
    {"KHR_materials_volume", Use::kWithout, kLighting},
    {"KHR_materials_variants", Use::kWithout, "the material without variant is used"},
    {"EXT_lights_ies", Use::kWithout, kLighting},
    {"EXT_lights_image_based", Use::kWithout, kLighting},
    {"EXT_mesh_gpu_instancing", Use::kWithout, "the mesh is there once, at its node"},
    {"EXT_mesh_manifold", Use::kRead, ""},
    {"KHR_animation_pointer", Use::kWithout, "clips move nodes only"},
    {"KHR_audio_emitter", Use::kWithout, "the engine has no sound"},
    {"KHR_technique_webgl", Use::kWithout, "the engine has no programs of materials"},
    {"KHR_techniques_webgl", Use::kWithout, "the engine has no programs of materials"},
    {"KHR_xmp", Use::kWithout, "scene files have no metadata"},
    {"KHR_xmp_json_ld", Use::kWithout, "scene files have no metadata"},
    {"MSFT_lod", Use::kWithout, "scene files have one level of detail: the finest is used"},
    {"KHR_mesh_quantization", Use::kRead, ""},    // by GltfBuffers
    {"EXT_meshopt_compression", Use::kRead, ""},  // the same
    {"KHR_meshopt_compression", Use::kRefused, "compressed geometry"},
};

const Extension *find(const std::string &name) {
    for (const Extension &known : kExtensions)
        if (name == known.name) return &known;
    return nullptr;
}

std::vector<std::string> listOf(const Json &document, const char *key) {
    std::vector<std::string> names;
    const auto list = document.find(key);
    if (list == document.end() || !list->is_array()) return names;
    for (const Json &name : *list)
        if (name.is_string()) names.push_back(name.get<std::string>());
    return names;
}

// How often each extension is in the document. Without recursion, as the depth is the file's choice.
std::map<std::string, std::uint64_t> usesIn(const Json &document) {
    std::map<std::string, std::uint64_t> uses;
    std::vector<const Json *> open = {&document};
    while (!open.empty()) {
        const Json &value = *open.back();
        open.pop_back();
        if (!value.is_structured()) continue;
        if (value.is_object()) {
            const auto extensions = value.find("extensions");
            if (extensions != value.end() && extensions->is_object())
                for (const auto &entry : extensions->items()) ++uses[entry.key()];
        }
        for (const Json &part : value) open.push_back(&part);
    }
    return uses;
}

std::size_t sizeOf(const Json &document, const char *key) {
    const auto list = document.find(key);
    return list != document.end() && list->is_array() ? list->size() : 0;
}

void reportMeshes(const Json &document, Report &report) {
    std::set<std::uint64_t> shown;
    const auto nodes = document.find("nodes");
    if (nodes != document.end() && nodes->is_array())
        for (const Json &node : *nodes)
            if (node.is_object() && node.contains("mesh") && node["mesh"].is_number_unsigned())
                shown.insert(node["mesh"].get<std::uint64_t>());
    const std::size_t count = sizeOf(document, "meshes");
    std::uint64_t hidden = 0;
    for (std::uint64_t mesh = 0; mesh < count; ++mesh) hidden += shown.count(mesh) == 0;
    report.drop("meshes", hidden, "no node shows them");
}

}  // namespace

std::string refusalOf(const Json &document) {
    if (!document.is_object()) return "";
    for (const std::string &name : listOf(document, "extensionsRequired")) {
        const Extension *known = find(name);
        if (!known) return "it requires the glTF extension " + cleanText(name) + ", which is not known";
        if (known->use == Use::kRefused)
            return "it requires the glTF extension " + name + " (" + known->why + "), which is not read";
    }
    return "";
}

bool namePictures(Json &document) {
    bool changed = false;
    const auto textures = document.is_object() ? document.find("textures") : document.end();
    if (textures == document.end() || !textures->is_array()) return false;
    for (Json &texture : *textures) {
        if (!texture.is_object() || texture.contains("source") || !texture.contains("extensions")) continue;
        // The formats that can be read come first.
        for (const char *name :
             {"EXT_texture_webp", "MSFT_texture_dds", "EXT_texture_avif", "KHR_texture_basisu"}) {
            const Json &extensions = texture["extensions"];
            if (!extensions.is_object() || !extensions.contains(name)) continue;
            const Json &extension = extensions[name];
            if (!extension.is_object() || !extension.contains("source")) continue;
            const Json source = extension["source"];
            texture["source"] = source;
            changed = true;
            break;
        }
    }
    return changed;
}

void reportGltf(const Json &document, Report &report) {
    if (!document.is_object()) return;
    std::map<std::string, std::uint64_t> uses = usesIn(document);
    for (const std::string &name : listOf(document, "extensionsUsed")) uses.emplace(name, 1);
    for (const std::string &name : listOf(document, "extensionsRequired")) uses.emplace(name, 1);
    for (const auto &[name, count] : uses) {
        const Extension *known = find(name);
        if (known && known->use != Use::kWithout) continue;
        report.drop("glTF extension " + cleanText(name), count, known ? known->why : "it is not known");
    }
    report.drop("scenes", std::max<std::size_t>(sizeOf(document, "scenes"), 1) - 1,
                "a scene file holds one: the model's main scene");
    reportMeshes(document, report);
}

}  // namespace keltra::convert
