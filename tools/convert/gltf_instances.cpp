// SPDX-License-Identifier: Zlib
#include "tools/convert/gltf_instances.h"

#include "formats/limits.h"

#include <algorithm>
#include <map>
#include <string>
#include <vector>

namespace keltra::convert {
namespace {

using Json = nlohmann::json;

constexpr char kInstancing[] = "EXT_mesh_gpu_instancing";

struct Attribute {
    const char *name, *property;
    std::size_t components;
};
constexpr Attribute kAttributes[] = {
    {"TRANSLATION", "translation", 3}, {"ROTATION", "rotation", 4}, {"SCALE", "scale", 3}};

// The instances as nodes; empty when there are none, or when some attribute cannot be read.
std::vector<Json> instancesOf(const Json &extension, GltfBuffers &buffers) {
    std::vector<Json> instances;
    const auto attributes = extension.find("attributes");
    if (attributes == extension.end() || !attributes->is_object()) return {};
    for (const Attribute &attribute : kAttributes) {
        const auto accessor = attributes->find(attribute.name);
        if (accessor == attributes->end()) continue;
        if (!accessor->is_number_unsigned()) return {};
        const std::vector<float> values =
            buffers.numbers(accessor->get<std::uint64_t>(), attribute.components);
        const std::size_t count = values.size() / attribute.components;
        if (count == 0 || count > kMaxCount || (!instances.empty() && instances.size() != count)) return {};
        instances.resize(count, Json::object());
        for (std::size_t i = 0; i < count; ++i)
            instances[i][attribute.property] =
                std::vector<float>(values.begin() + static_cast<long>(i * attribute.components),
                                   values.begin() + static_cast<long>((i + 1) * attribute.components));
    }
    return instances;
}

Json *instancing(Json &node) {
    if (!node.is_object() || !node.contains("mesh")) return nullptr;
    const auto extensions = node.find("extensions");
    if (extensions == node.end() || !extensions->is_object()) return nullptr;
    const auto found = extensions->find(kInstancing);
    return found != extensions->end() && found->is_object() ? &*found : nullptr;
}

void forgetInstances(Json &node) {
    node["extensions"].erase(kInstancing);
    if (node["extensions"].empty()) node.erase("extensions");
}

void forget(Json &document, const char *list) {
    const auto names = document.find(list);
    if (names == document.end() || !names->is_array()) return;
    names->erase(std::remove(names->begin(), names->end(), Json(kInstancing)), names->end());
    if (names->empty()) document.erase(list);
}

}  // namespace

bool expandInstances(Json &document, GltfBuffers &buffers, Report &report) {
    const auto nodes = document.is_object() ? document.find("nodes") : document.end();
    if (nodes == document.end() || !nodes->is_array()) return false;
    std::uint64_t total = 0, left = 0, skins = 0;
    const std::size_t before = nodes->size();
    for (std::size_t n = 0; n < before; ++n) {
        const Json *extension = instancing((*nodes)[n]);
        if (!extension) continue;
        std::vector<Json> instances = instancesOf(*extension, buffers);
        if (instances.empty() || total + instances.size() > kMaxCount) {
            ++left;
            continue;
        }
        if ((*nodes)[n].contains("skin")) {
            skins += instances.size() - 1;
            forgetInstances((*nodes)[n]);
            continue;
        }
        const Json mesh = (*nodes)[n]["mesh"], name = (*nodes)[n].value("name", Json(nullptr));
        Json children = (*nodes)[n].value("children", Json::array());
        if (!children.is_array()) children = Json::array();
        for (std::size_t i = 0; i < instances.size(); ++i) {
            instances[i]["mesh"] = mesh;
            if (name.is_string())
                instances[i]["name"] = name.get<std::string>() + "_" + std::to_string(i + 1);
            children.push_back(nodes->size());
            nodes->push_back(std::move(instances[i]));
        }
        Json &node = (*nodes)[n];
        node.erase("mesh");
        forgetInstances(node);
        node["children"] = std::move(children);
        total += nodes->size() - before - total;
    }
    report.drop("instances of skinned meshes", skins, "a skin follows its joints, which are there once");
    report.change("instances of meshes", total, "each became a node with a mesh of its own");
    if (total + skins == 0) return false;
    if (left > 0) return true;
    forget(document, "extensionsUsed");
    forget(document, "extensionsRequired");
    return true;
}

bool separateSkins(Json &document) {
    const auto list = [&document](const char *name) {
        const auto found = document.is_object() ? document.find(name) : document.end();
        return found != document.end() && found->is_array() ? &*found : nullptr;
    };
    Json *const nodes = list("nodes"), *const meshes = list("meshes");
    if (!nodes || !meshes) return false;
    const std::size_t before = meshes->size();
    std::map<std::uint64_t, std::map<Json, std::uint64_t>> known;  // by mesh and skin, the mesh to show
    for (Json &node : *nodes) {
        if (!node.is_object() || !node.contains("mesh") || !node["mesh"].is_number_unsigned()) continue;
        const std::uint64_t mesh = node["mesh"].get<std::uint64_t>();
        if (mesh >= before || meshes->size() - before >= kMaxCount) continue;
        std::map<Json, std::uint64_t> &skins = known[mesh];
        const auto [found, isNew] = skins.emplace(node.value("skin", Json()), mesh);
        if (isNew && skins.size() > 1) {
            found->second = meshes->size();
            meshes->push_back(Json((*meshes)[mesh]));
        }
        node["mesh"] = found->second;
    }
    return meshes->size() > before;
}

std::string completeSkins(Json &document, const std::string &name) {
    if (!document.is_object() || !document.contains("skins") || !document["skins"].is_array()) return "";
    std::size_t most = 0;
    std::vector<Json *> incomplete;
    for (Json &skin : document["skins"]) {
        const bool known = skin.is_object() && !skin.contains("inverseBindMatrices") &&
                           skin.contains("joints") && skin["joints"].is_array();
        if (!known || skin["joints"].empty() || skin["joints"].size() > kMaxCount) continue;
        incomplete.push_back(&skin);
        most = std::max(most, skin["joints"].size());
    }
    for (const char *list : {"buffers", "bufferViews", "accessors"})
        if (incomplete.empty() || !document.contains(list) || !document[list].is_array()) return "";
    const float identity[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    std::string bytes;
    for (std::size_t i = 0; i < most; ++i)
        bytes.append(reinterpret_cast<const char *>(identity), sizeof identity);
    const std::size_t view = document["bufferViews"].size();
    document["bufferViews"].push_back({{"buffer", document["buffers"].size()}, {"byteLength", bytes.size()}});
    document["buffers"].push_back({{"uri", name}, {"byteLength", bytes.size()}});
    for (Json *skin : incomplete) {
        (*skin)["inverseBindMatrices"] = document["accessors"].size();
        document["accessors"].push_back({{"bufferView", view},
                                         {"componentType", 5126},
                                         {"type", "MAT4"},
                                         {"count", (*skin)["joints"].size()}});
    }
    return bytes;
}

}  // namespace keltra::convert
