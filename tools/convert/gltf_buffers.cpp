// SPDX-License-Identifier: Zlib
#include "tools/convert/gltf_buffers.h"

#include "tools/convert/options.h"

#include <meshoptimizer.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>

namespace keltra::convert {
namespace {

using Json = nlohmann::json;

constexpr std::uint64_t kMostBytes = std::uint64_t{1} << 30;  // of anything
constexpr std::size_t kChunkHeader = 8;
constexpr int kFloat = 5126;
constexpr char kMeshopt[] = "EXT_meshopt_compression";

// A whole number that is not negative and not too large; `otherwise` if there is none.
std::uint64_t number(const Json &object, const char *key, std::uint64_t otherwise = 0) {
    const auto found = object.find(key);
    if (found == object.end() || !found->is_number_unsigned()) return otherwise;
    return std::min(found->get<std::uint64_t>(), kMostBytes + 1);
}

std::string word(const Json &object, const char *key) {
    const auto found = object.find(key);
    return found != object.end() && found->is_string() ? found->get<std::string>() : "";
}

// The element of a list of the document; null if there is none.
Json *element(Json &document, const char *list, std::uint64_t index) {
    const auto found = document.find(list);
    if (found == document.end() || !found->is_array() || index >= found->size()) return nullptr;
    Json &value = (*found)[index];
    return value.is_object() ? &value : nullptr;
}

std::vector<std::uint8_t> decoded64(const std::string &text, std::size_t at) {
    constexpr char digits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::vector<std::uint8_t> bytes;
    std::uint32_t bits = 0;
    unsigned count = 0;
    for (; at < text.size() && text[at] != '='; ++at) {
        const char *digit = static_cast<const char *>(std::memchr(digits, text[at], 64));
        if (!digit) return {};
        bits = bits << 6 | static_cast<std::uint32_t>(digit - digits);
        count += 6;
        if (count < 8) continue;
        count -= 8;
        bytes.push_back(static_cast<std::uint8_t>(bits >> count));
    }
    return bytes;
}

std::size_t componentsOf(const std::string &type) {
    return type == "SCALAR" ? 1 : type == "VEC2" ? 2 : type == "VEC3" ? 3 : type == "VEC4" ? 4 : 0;
}

std::size_t sizeOf(std::uint64_t componentType) {
    return componentType == 5120 || componentType == 5121   ? 1
           : componentType == 5122 || componentType == 5123 ? 2
           : componentType == kFloat                        ? 4
                                                            : 0;
}

float valueAt(const std::uint8_t *at, std::uint64_t type, bool normalized) {
    std::int16_t wide;
    std::uint16_t unsignedWide;
    float value = 0.0f, most = 1.0f;
    if (type == kFloat) std::memcpy(&value, at, 4);
    if (type == 5120) value = static_cast<std::int8_t>(*at), most = 127.0f;
    if (type == 5121) value = *at, most = 255.0f;
    if (type == 5122) std::memcpy(&wide, at, 2), value = wide, most = 32767.0f;
    if (type == 5123) std::memcpy(&unsignedWide, at, 2), value = unsignedWide, most = 65535.0f;
    return normalized && type != kFloat ? std::max(value / most, -1.0f) : value;
}

// The importer reads joints as integers and does not use colours.
bool isVector(const std::string &attribute) {
    return attribute == "POSITION" || attribute == "NORMAL" || attribute == "TANGENT" ||
           attribute.compare(0, 9, "TEXCOORD_") == 0 || attribute.compare(0, 8, "WEIGHTS_") == 0;
}

// The values of animations' keys.
void addKeys(const Json &document, std::set<std::uint64_t> &accessors) {
    const auto animations = document.find("animations");
    if (animations == document.end() || !animations->is_array()) return;
    for (const Json &animation : *animations) {
        if (!animation.is_object() || !animation.contains("samplers") || !animation["samplers"].is_array())
            continue;
        for (const Json &sampler : animation["samplers"])
            if (sampler.is_object()) accessors.insert(number(sampler, "output", kMostBytes));
    }
}

std::set<std::uint64_t> vectorAccessors(const Json &document) {
    std::set<std::uint64_t> accessors;
    addKeys(document, accessors);
    const auto meshes = document.find("meshes");
    if (meshes == document.end() || !meshes->is_array()) return accessors;
    for (const Json &mesh : *meshes) {
        if (!mesh.is_object() || !mesh.contains("primitives") || !mesh["primitives"].is_array()) continue;
        for (const Json &primitive : mesh["primitives"]) {
            if (!primitive.is_object() || !primitive.contains("attributes")) continue;
            const Json &attributes = primitive["attributes"];
            if (!attributes.is_object()) continue;
            for (const auto &[name, accessor] : attributes.items())
                if (isVector(name) && accessor.is_number_unsigned())
                    accessors.insert(accessor.get<std::uint64_t>());
        }
    }
    return accessors;
}

[[noreturn]] void refuse(const std::string &why) {
    throw Refusal(std::string("its geometry is compressed (") + kMeshopt +
                  ") and cannot be decompressed: " + why);
}

}  // namespace

GltfBuffers::GltfBuffers(Json &document, const std::string &rest, const Reach &reach)
    : document(document), rest(rest), reach(reach) {}

const std::vector<std::uint8_t> &GltfBuffers::buffer(std::size_t index) {
    const auto known = buffers.find(index);
    if (known != buffers.end()) return known->second;
    std::vector<std::uint8_t> &bytes = buffers[index];
    const Json *described = element(document, "buffers", index);
    if (!described) return bytes;
    const std::string uri = word(*described, "uri");
    if (uri.empty()) {
        if (index == 0 && rest.size() > kChunkHeader) bytes.assign(rest.begin() + kChunkHeader, rest.end());
    } else if (uri.compare(0, 5, "data:") == 0) {
        const std::size_t comma = uri.find(',');
        if (comma != std::string::npos) bytes = decoded64(uri, comma + 1);
    } else {
        const std::string path = reach.folder() + uri;
        std::error_code error;
        if (!std::filesystem::is_regular_file(path, error) || !reach.allows(path) ||
            std::filesystem::file_size(path, error) > kMostBytes)
            return bytes;
        std::ifstream file(path, std::ios::binary);
        bytes.assign(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    }
    return bytes;
}

std::optional<GltfBuffers::Range> GltfBuffers::view(std::size_t index) {
    const auto known = decompressed.find(index);
    if (known != decompressed.end()) return Range{known->second.data(), known->second.size()};
    const Json *described = element(document, "bufferViews", index);
    if (!described) return std::nullopt;
    const std::vector<std::uint8_t> &bytes = buffer(number(*described, "buffer", kMostBytes));
    const std::uint64_t offset = number(*described, "byteOffset"), size = number(*described, "byteLength");
    if (offset + size > bytes.size()) return std::nullopt;
    return Range{bytes.data() + offset, static_cast<std::size_t>(size)};
}

std::size_t GltfBuffers::append(const void *bytes, std::size_t size, unsigned stride) {
    if (plain.size() + size > kMostBytes) throw Refusal("its geometry is too large");
    Json view = {{"buffer", document["buffers"].size()}, {"byteOffset", plain.size()}, {"byteLength", size}};
    if (stride > 0) view["byteStride"] = stride;
    plain.append(static_cast<const char *>(bytes), size);
    plain.append((4 - plain.size() % 4) % 4, '\0');
    document["bufferViews"].push_back(view);
    return document["bufferViews"].size() - 1;
}

void GltfBuffers::decompress(std::size_t index, Json &view, const Json &compression) {
    const std::uint64_t offset = number(compression, "byteOffset"), size = number(compression, "byteLength");
    const std::uint64_t count = number(compression, "count"), stride = number(compression, "byteStride");
    const std::vector<std::uint8_t> &source = buffer(number(compression, "buffer", kMostBytes));
    if (offset + size > source.size()) refuse("its data is not there");
    const std::string mode = word(compression, "mode"), filter = word(compression, "filter");
    if (count == 0 || stride == 0 || count * stride > kMostBytes) refuse("its size is wrong");
    std::vector<std::uint8_t> result(static_cast<std::size_t>(count * stride));
    const std::uint8_t *from = source.data() + offset;
    int status = 1;
    // The library asserts what is compared here.
    if (mode == "ATTRIBUTES" && stride % 4 == 0 && stride <= 256)
        status = meshopt_decodeVertexBuffer(result.data(), count, stride, from, size);
    else if (mode == "TRIANGLES" && count % 3 == 0 && (stride == 2 || stride == 4))
        status = meshopt_decodeIndexBuffer(result.data(), count, stride, from, size);
    else if (mode == "INDICES" && (stride == 2 || stride == 4))
        status = meshopt_decodeIndexSequence(result.data(), count, stride, from, size);
    if (status != 0) refuse("it is damaged");
    if (filter == "OCTAHEDRAL" && (stride == 4 || stride == 8))
        meshopt_decodeFilterOct(result.data(), count, stride);
    else if (filter == "QUATERNION" && stride == 8)
        meshopt_decodeFilterQuat(result.data(), count, stride);
    else if (filter == "EXPONENTIAL" && stride % 4 == 0)
        meshopt_decodeFilterExp(result.data(), count, stride);
    else if (!filter.empty() && filter != "NONE")
        refuse("its filter is not known");
    const std::size_t target = plain.size();
    if (target + result.size() > kMostBytes) throw Refusal("its geometry is too large");
    plain.append(result.begin(), result.end());
    plain.append((4 - plain.size() % 4) % 4, '\0');
    view["buffer"] = document["buffers"].size();
    view["byteOffset"] = target;
    view["byteLength"] = result.size();
    view["extensions"].erase(kMeshopt);
    decompressed[index] = std::move(result);
}

std::vector<float> GltfBuffers::valuesOf(const Json &accessor) {
    const std::uint64_t type = number(accessor, "componentType"), count = number(accessor, "count");
    const std::size_t size = sizeOf(type), components = componentsOf(word(accessor, "type"));
    if (size == 0 || components == 0 || count == 0 || accessor.contains("sparse") ||
        !accessor.contains("bufferView"))
        return {};
    const std::size_t index = number(accessor, "bufferView");
    const std::optional<Range> range = view(index);
    if (!range) return {};
    const Json *described = element(document, "bufferViews", index);
    const std::uint64_t stride = number(*described, "byteStride", size * components);
    const std::uint64_t offset = number(accessor, "byteOffset");
    if (stride == 0 || offset + stride * (count - 1) + size * components > range->size) return {};
    const bool normalized = accessor.value("normalized", Json(false)) == Json(true);
    std::vector<float> values;
    values.reserve(count * components);
    for (std::uint64_t i = 0; i < count; ++i)
        for (std::size_t c = 0; c < components; ++c)
            values.push_back(valueAt(range->bytes + offset + stride * i + size * c, type, normalized));
    return values;
}

std::vector<float> GltfBuffers::numbers(std::uint64_t index, std::size_t components) {
    const Json *accessor = element(document, "accessors", index);
    if (!accessor || componentsOf(word(*accessor, "type")) != components) return {};
    return valuesOf(*accessor);
}

// False for what is not made of small integers, and for what is damaged.
bool GltfBuffers::makeFloats(Json &accessor) {
    if (number(accessor, "componentType") == kFloat) return false;
    const std::vector<float> values = valuesOf(accessor);
    if (values.empty()) return false;
    accessor["bufferView"] = append(values.data(), values.size() * sizeof(float), 0);
    accessor["byteOffset"] = 0;
    accessor["componentType"] = kFloat;
    for (const char *key : {"normalized", "min", "max"}) accessor.erase(key);
    return true;
}

std::string GltfBuffers::makePlain(const std::string &name) {
    if (!document.is_object() || !document.contains("bufferViews") || !document["bufferViews"].is_array() ||
        !document.contains("buffers") || !document["buffers"].is_array())
        return "";
    const std::size_t views = document["bufferViews"].size();
    for (std::size_t v = 0; v < views; ++v) {
        Json *described = element(document, "bufferViews", v);
        if (!described || !described->contains("extensions") || !(*described)["extensions"].is_object())
            continue;
        const Json extensions = (*described)["extensions"];
        if (extensions.contains(kMeshopt) && extensions[kMeshopt].is_object())
            decompress(v, *described, extensions[kMeshopt]);
    }
    for (const std::uint64_t index : vectorAccessors(document))
        if (Json *accessor = element(document, "accessors", index)) makeFloats(*accessor);
    if (plain.empty()) return "";
    // What stands in for compressed data, to readers without it, may be empty.
    for (std::size_t b = rest.empty() ? 0 : 1; b < document["buffers"].size(); ++b)
        if (Json *described = element(document, "buffers", b))
            if (!described->contains("uri")) (*described)["byteLength"] = 0;
    document["buffers"].push_back({{"uri", name}, {"byteLength", plain.size()}});
    return std::move(plain);
}

}  // namespace keltra::convert
