// SPDX-License-Identifier: Zlib
#include "tests/tools/convert/support/gltf_builder.h"

#include <algorithm>
#include <cstdint>
#include <limits>

namespace keltra::test {
namespace {

using nlohmann::json;

constexpr int kUnsignedShort = 5123, kUnsignedInt = 5125, kFloat = 5126;  // component types of the format

std::string base64(const std::string &bytes) {
    const char digits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        std::uint32_t three = 0;
        const std::size_t count = std::min<std::size_t>(3, bytes.size() - i);
        for (std::size_t k = 0; k < 3; ++k)
            three = three << 8 | (k < count ? static_cast<unsigned char>(bytes[i + k]) : 0u);
        for (std::size_t k = 0; k < 4; ++k) text += k <= count ? digits[three >> (18 - 6 * k) & 63] : '=';
    }
    return text;
}

}  // namespace

GltfBuilder::GltfBuilder() {
    root["asset"]["version"] = "2.0";
    root["scene"] = 0;
    root["scenes"] = json::array({{{"nodes", json::array()}}});
}

int GltfBuilder::accessor(const void *bytes, std::size_t size, int componentType, const char *type,
                          std::size_t count) {
    while (binary.size() % 4) binary += '\0';
    const int view =
        add("bufferViews", json{{"buffer", 0}, {"byteOffset", binary.size()}, {"byteLength", size}});
    binary.append(static_cast<const char *>(bytes), size);
    return add("accessors", json{{"bufferView", view},
                                 {"byteOffset", 0},
                                 {"componentType", componentType},
                                 {"count", count},
                                 {"type", type}});
}

int GltfBuilder::floats(const Floats &values, const char *type, std::size_t components) {
    return accessor(values.data(), values.size() * sizeof(float), kFloat, type, values.size() / components);
}

int GltfBuilder::vectors(const Floats &values) { return floats(values, "VEC3", 3); }

int GltfBuilder::mesh(const GltfMesh &data) {
    json attributes;
    attributes["POSITION"] = vectors(data.positions);
    if (!data.normals.empty()) attributes["NORMAL"] = vectors(data.normals);
    if (!data.uvs.empty()) attributes["TEXCOORD_0"] = floats(data.uvs, "VEC2", 2);
    if (!data.joints.empty())
        attributes["JOINTS_0"] = accessor(data.joints.data(), data.joints.size() * 2, kUnsignedShort, "VEC4",
                                          data.joints.size() / 4);
    if (!data.weights.empty()) attributes["WEIGHTS_0"] = floats(data.weights, "VEC4", 4);
    json primitive{{"attributes", attributes}, {"mode", data.mode}};
    if (!data.indices.empty())
        primitive["indices"] = accessor(data.indices.data(), data.indices.size() * 4, kUnsignedInt, "SCALAR",
                                        data.indices.size());
    return add("meshes", json{{"primitives", json::array({primitive})}});
}

int GltfBuilder::node(json properties, int parent) {
    const int index = add("nodes", std::move(properties));
    json &list = parent < 0 ? root["scenes"][0]["nodes"] : root["nodes"][parent]["children"];
    list.push_back(index);
    return index;
}

// The matrices may be left out in the format, but there are importers that do not survive it.
int GltfBuilder::skin(const std::vector<int> &joints, const Floats &inverseBinds) {
    Floats binds = inverseBinds;
    while (binds.size() < 16 * joints.size()) binds.push_back(binds.size() % 16 % 5 == 0 ? 1.0f : 0.0f);
    return add("skins", json{{"joints", joints}, {"inverseBindMatrices", floats(binds, "MAT4", 16)}});
}

int GltfBuilder::clip(const std::string &name, const std::vector<GltfChannel> &channels) {
    json clip{{"name", name}, {"channels", json::array()}, {"samplers", json::array()}};
    for (const GltfChannel &channel : channels) {
        const bool turns = channel.path == "rotation";
        const int input = floats(channel.times, "SCALAR", 1);
        const int output = floats(channel.values, turns ? "VEC4" : "VEC3", turns ? 4 : 3);
        clip["channels"].push_back({{"sampler", clip["samplers"].size()},
                                    {"target", {{"node", channel.node}, {"path", channel.path}}}});
        clip["samplers"].push_back({{"input", input}, {"output", output}, {"interpolation", "LINEAR"}});
    }
    return add("animations", clip);
}

std::string GltfBuilder::text() const {
    json whole = root;
    if (!binary.empty())
        whole["buffers"] = json::array({{{"byteLength", binary.size()},
                                         {"uri", "data:application/octet-stream;base64," + base64(binary)}}});
    return whole.dump();
}

std::string GltfBuilder::glb() const {
    const auto word = [](std::size_t value) {
        std::string bytes;
        for (int shift = 0; shift < 32; shift += 8) bytes += static_cast<char>(value >> shift & 0xFF);
        return bytes;
    };
    const auto chunk = [&word](const char *type, std::string data, char filler) {
        data.resize((data.size() + 3) / 4 * 4, filler);
        return word(data.size()) + std::string(type, 4) + data;
    };
    json whole = root;
    whole["buffers"] = json::array({{{"byteLength", binary.size()}}});
    const std::string chunks = chunk("JSON", whole.dump(), ' ') + chunk("BIN\0", binary, '\0');
    return "glTF" + word(2) + word(12 + chunks.size()) + chunks;
}

GltfMesh boxMesh(float halfX, float halfY, float halfZ) {
    GltfMesh box;
    const float half[3] = {halfX, halfY, halfZ};
    for (int axis = 0; axis < 3; ++axis) {
        for (float side : {-1.0f, 1.0f}) {
            const auto first = static_cast<std::uint32_t>(box.positions.size() / 3);
            const int u = (axis + 1) % 3, v = (axis + 2) % 3;
            for (int corner = 0; corner < 4; ++corner) {
                float at[3] = {}, normal[3] = {};
                at[axis] = side * half[axis];
                at[u] = (corner == 1 || corner == 2 ? 1.0f : -1.0f) * half[u];
                at[v] = (corner >= 2 ? 1.0f : -1.0f) * half[v];
                normal[axis] = side;
                box.positions.insert(box.positions.end(), at, at + 3);
                box.normals.insert(box.normals.end(), normal, normal + 3);
            }
            // Seen from outside the corners go round against the clock.
            const std::uint32_t turn[2][6] = {{0, 2, 1, 0, 3, 2}, {0, 1, 2, 0, 2, 3}};
            for (std::uint32_t corner : turn[side > 0.0f]) box.indices.push_back(first + corner);
        }
    }
    return box;
}

GltfMesh triangleMesh(float x) {
    GltfMesh triangle;
    triangle.positions = {x, 0.0f, 0.0f, x + 1.0f, 0.0f, 0.0f, x, 1.0f, 0.0f};
    triangle.indices = {0, 1, 2};
    return triangle;
}

}  // namespace keltra::test
