// SPDX-License-Identifier: Zlib
#include "tools/convert/gltf_instances.h"

#include "formats/limits.h"

#include <algorithm>
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
    if (!node.is_object() || !node.contains("mesh") || node.contains("skin")) return nullptr;
    const auto extensions = node.find("extensions");
    if (extensions == node.end() || !extensions->is_object()) return nullptr;
    const auto found = extensions->find(kInstancing);
    return found != extensions->end() && found->is_object() ? &*found : nullptr;
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
    std::uint64_t total = 0, left = 0;
    const std::size_t before = nodes->size();
    for (std::size_t n = 0; n < before; ++n) {
        const Json *extension = instancing((*nodes)[n]);
        if (!extension) continue;
        std::vector<Json> instances = instancesOf(*extension, buffers);
        if (instances.empty() || total + instances.size() > kMaxCount) {
            ++left;
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
        node["extensions"].erase(kInstancing);
        if (node["extensions"].empty()) node.erase("extensions");
        node["children"] = std::move(children);
        total += nodes->size() - before - total;
    }
    if (total == 0) return false;
    report.change("instances of meshes", total, "each became a node with a mesh of its own");
    if (left > 0) return true;
    forget(document, "extensionsUsed");
    forget(document, "extensionsRequired");
    return true;
}

}  // namespace keltra::convert
