// SPDX-License-Identifier: Zlib
#include "tools/convert/properties.h"

#include "tools/convert/gltf_document.h"
#include "tools/convert/names.h"

#include <assimp/commonMetaData.h>
#include <assimp/scene.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>

namespace keltra::convert {
namespace {

using Json = nlohmann::json;

constexpr char kPrefix[] = "keltra_";
constexpr char kGltf[] = "glTF2 Importer";
constexpr char kReach[] = "PBR_LightRange";  // what the importer of glTF calls it
constexpr double kLargestRadius = 32767.0, kGreatestShininess = 128.0, kLargestId = 4294967295.0;

// The name behind the prefix; empty for a property that is not for the converter.
std::string ownName(const std::string &key) {
    constexpr std::size_t length = sizeof kPrefix - 1;
    return key.compare(0, length, kPrefix) == 0 ? key.substr(length) : "";
}

void refuse(Report &report, const std::string &key, const std::string &owner, const std::string &why) {
    report.warn(cleanText(key) + " of " + cleanText(owner) + " " + why + "; it is left out");
}

// Numbers and truth values alike: modelling programs write either for a check box.
std::optional<double> numberOf(const aiMetadataEntry &entry) {
    switch (entry.mType) {
        case AI_BOOL:
            return *static_cast<const bool *>(entry.mData) ? 1.0 : 0.0;
        case AI_INT32:
            return *static_cast<const std::int32_t *>(entry.mData);
        case AI_UINT64:
            return static_cast<double>(*static_cast<const std::uint64_t *>(entry.mData));
        case AI_FLOAT:
            return *static_cast<const float *>(entry.mData);
        case AI_DOUBLE:
            return *static_cast<const double *>(entry.mData);
        default:
            return std::nullopt;
    }
}

bool isWithin(double value, double most) { return value >= 0.0 && value <= most; }  // no for not-a-number

std::optional<formats::Color> colorOf(const Json &value) {
    if (!value.is_array() || value.size() < 3 || value.size() > 4) return std::nullopt;
    float parts[4] = {0.0f, 0.0f, 0.0f, 1.0f};
    for (std::size_t i = 0; i < value.size(); ++i) {
        if (!value[i].is_number() || !isWithin(value[i].get<double>(), 1.0)) return std::nullopt;
        parts[i] = value[i].get<float>();
    }
    return formats::Color{parts[0], parts[1], parts[2], parts[3]};
}

std::optional<float> numberOf(const Json &value, double most) {
    if (!value.is_number() || !isWithin(value.get<double>(), most)) return std::nullopt;
    return value.get<float>();
}

MaterialProperties readMaterial(const std::string &owner, const Json &extras, Report &report) {
    MaterialProperties result;
    const std::map<std::string, std::optional<formats::Color> *> colors = {{"ambient", &result.ambient},
                                                                           {"diffuse", &result.diffuse},
                                                                           {"specular", &result.specular},
                                                                           {"emission", &result.emission}};
    for (const auto &[key, value] : extras.items()) {
        const std::string name = ownName(key);
        if (name.empty()) continue;
        const auto color = colors.find(name);
        if (color != colors.end()) {
            *color->second = colorOf(value);
            if (!*color->second) refuse(report, key, owner, "is not three or four numbers from 0 to 1");
        } else if (name == "transparency") {
            result.transparency = numberOf(value, 1.0);
            if (!result.transparency) refuse(report, key, owner, "is not a number from 0 to 1");
        } else if (name == "shininess") {
            result.shininess = numberOf(value, kGreatestShininess);
            if (!result.shininess) refuse(report, key, owner, "is not a number from 0 to 128");
        } else if (name == "filter") {
            if (value == "nearest" || value == "linear" || value == "mipmapped")
                result.filter = value.get<std::string>();
            else
                refuse(report, key, owner, "is none of nearest, linear and mipmapped");
        } else {
            refuse(report, key, owner, "is not a property of materials");
        }
    }
    return result;
}

bool isGltf(const aiScene &scene) {
    aiString format;
    return scene.mMetaData && scene.mMetaData->Get(AI_METADATA_SOURCE_FORMAT, format) &&
           std::strcmp(format.C_Str(), kGltf) == 0;
}

// Why the value is not taken; empty when it is.
std::string setProperty(NodeProperties &result, const std::string &name, std::optional<double> value,
                        bool hasMesh) {
    const bool isNumber = value && isWithin(*value, kLargestRadius);
    if (name == "aux_id") {
        if (!value || !isWithin(*value, kLargestId) || *value != std::floor(*value))
            return "is not a whole number from 0 to 4294967295";
        result.auxId = static_cast<std::uint32_t>(*value);
    } else if (name == "helper") {
        if (!isNumber) return "is neither true nor a number from 0 to 32767";
        if (*value > 0.0) result.helper = *value;
    } else if (!hasMesh) {
        return "has no mesh to act on";
    } else if (name == "hidden") {
        if (!value) return "is neither true nor false";
        result.hidden = *value != 0.0;
    } else if (name == "radius") {
        if (!isNumber) return "is not a number from 0 to 32767";
        result.radius = static_cast<float>(*value);
    } else {
        return "is not a property of nodes";
    }
    return "";
}

}  // namespace

NodeProperties nodeProperties(const aiNode &node, Report &report) {
    NodeProperties result;
    const aiMetadata *metadata = node.mMetaData;
    for (unsigned i = 0; metadata && i < metadata->mNumProperties; ++i) {
        const std::string key = metadata->mKeys[i].C_Str(), name = ownName(key);
        const std::optional<double> value = numberOf(metadata->mValues[i]);
        if (key == kReach && value && *value > 0.0 && isWithin(*value, kLargestRadius)) result.reach = value;
        if (name.empty()) continue;
        const std::string fault = setProperty(result, name, value, node.mNumMeshes > 0);
        if (!fault.empty()) refuse(report, key, node.mName.C_Str(), fault);
    }
    return result;
}

void NodeProperties::applyTo(formats::MeshData &mesh) const {
    mesh.hidden = hidden;
    mesh.radius = radius.value_or(mesh.radius);
}

void MaterialProperties::applyTo(formats::Material &material) const {
    material.ambient = ambient.value_or(material.ambient);
    material.diffuse = diffuse.value_or(material.diffuse);
    material.specular = specular.value_or(material.specular);
    material.emission = emission.value_or(material.emission);
    material.transparency = transparency.value_or(material.transparency);
    material.shininess = shininess.value_or(material.shininess);
}

std::map<std::string, MaterialProperties> materialProperties(const aiScene &scene, const std::string &model,
                                                             Report &report) {
    std::map<std::string, MaterialProperties> result;
    if (!isGltf(scene)) return result;
    const Json document = GltfDocument(model).json;
    if (!document.is_object() || !document.contains("materials")) return result;
    for (const Json &material : document["materials"]) {
        if (!material.is_object() || !material.contains("extras") || !material["extras"].is_object())
            continue;
        const auto name = material.find("name");
        const std::string owner = name != material.end() && name->is_string() ? name->get<std::string>() : "";
        // The first of a name counts.
        result.emplace(owner, readMaterial(owner, material["extras"], report));
    }
    return result;
}

}  // namespace keltra::convert
