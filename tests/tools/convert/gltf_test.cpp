// SPDX-License-Identifier: Zlib
// Extensions of glTF: each is read, done without and reported, or the reason of a refusal.

#include <gmock/gmock.h>
#include <meshoptimizer.h>

#include <cmath>
#include <cstring>

#include "tests/tools/convert/support/convert_fixture.h"
#include "tests/tools/convert/support/pictures.h"

namespace keltra::test {
namespace {

using nlohmann::json;
using ::testing::HasSubstr;

class GltfTest : public ConvertTest {
   protected:
    GltfTest() { model.node({{"name", "box"}, {"mesh", model.mesh(boxMesh())}}); }

    void require(const char *extension) {
        model.document()["extensionsUsed"].push_back(extension);
        model.document()["extensionsRequired"].push_back(extension);
    }
    std::string reason() { return refusal("model.gltf", model.text()); }
    std::uint64_t dropped(const convert::Report &report, const std::string &what) {
        for (const convert::Dropped &entry : report.dropped)
            if (entry.what == what) return entry.count;
        return 0;
    }
    /// A texture that names its picture by the extension only.
    void texture(const char *extension, const std::string &picture) {
        json &document = model.document();
        require(extension);
        document["images"] = {{{"uri", picture}}};
        document["textures"] = {{{"extensions", {{extension, {{"source", 0}}}}}}};
        document["materials"] = {{{"pbrMetallicRoughness", {{"baseColorTexture", {{"index", 0}}}}}}};
        document["meshes"][0]["primitives"][0]["material"] = 0;
    }

    GltfBuilder model;
};

TEST_F(GltfTest, RefusesGeometryThatItCannotRead) {
    require("KHR_meshopt_compression");
    EXPECT_THAT(reason(), HasSubstr("it requires the glTF extension KHR_meshopt_compression ("));
}

TEST_F(GltfTest, RefusesWhatItDoesNotKnowIfItIsRequired) {
    require("ACME_spheres");
    EXPECT_EQ(reason(), "it requires the glTF extension ACME_spheres, which is not known");
}

TEST_F(GltfTest, ReportsWhatItDoesNotKnowIfItIsNotRequired) {
    model.document()["extensionsUsed"] = {"ACME_spheres"};
    EXPECT_EQ(dropped(make("model.gltf", model.text()).report(), "glTF extension ACME_spheres"), 1u);
}

TEST_F(GltfTest, ReportsWhatIsDoneWithoutAlsoIfItIsRequired) {
    require("EXT_mesh_gpu_instancing");
    model.document()["nodes"][0]["extensions"] = {
        {"EXT_mesh_gpu_instancing", {{"attributes", json::object()}}}};
    const Made made = make("model.gltf", model.text());
    EXPECT_EQ(dropped(made.report(), "glTF extension EXT_mesh_gpu_instancing"), 1u);
    EXPECT_EQ(made.report().triangles, 12u);
}

TEST_F(GltfTest, CountsEachUse) {
    model.document()["extensionsUsed"] = {"KHR_materials_clearcoat"};
    const json coat = {{"extensions", {{"KHR_materials_clearcoat", {{"clearcoatFactor", 1.0}}}}}};
    model.document()["materials"] = {coat, coat, coat};
    EXPECT_EQ(dropped(make("model.gltf", model.text()).report(), "glTF extension KHR_materials_clearcoat"),
              3u);
}

TEST_F(GltfTest, SaysNothingOfWhatItReads) {
    model.document()["extensionsUsed"] = {"KHR_materials_unlit", "KHR_texture_transform"};
    EXPECT_FALSE(make("model.gltf", model.text()).report().tally().any());
}

TEST_F(GltfTest, ReadsPicturesThatOnlyAnExtensionNames) {
    folder.write("skin.webp", encode(plain(8, 8, {255, 0, 0, 255}), "webp"));
    texture("EXT_texture_webp", "skin.webp");
    for (const bool binary : {false, true}) {
        const Made made = make(binary ? "model.glb" : "model.gltf", binary ? model.glb() : model.text());
        ASSERT_EQ(made.report().textures.size(), 1u) << binary;
        EXPECT_EQ(made.report().textures[0].source, "skin.webp");
        EXPECT_FALSE(made.report().textures[0].missing);
    }
}

TEST_F(GltfTest, SaysWhichPicturesItCannotRead) {
    folder.write("skin.ktx2", std::string("\xabKTX 20\xbb\r\n\x1a\n and more"));
    texture("KHR_texture_basisu", "skin.ktx2");
    const Made made = make("model.gltf", model.text());
    EXPECT_EQ(made.report().missing, 1u);
    EXPECT_TRUE(mentions(made.report(), "texture skin.ktx2 cannot be read: its format is not read: KTX 2"));
}

TEST_F(GltfTest, ReportsMeshesAndScenesThatAreNotShown) {
    model.mesh(boxMesh());
    model.document()["scenes"].push_back({{"nodes", {0}}});
    const Made made = make("model.gltf", model.text());
    EXPECT_EQ(dropped(made.report(), "meshes"), 1u);
    EXPECT_EQ(dropped(made.report(), "scenes"), 1u);
}

TEST_F(GltfTest, DocumentsOfAnyShapeAreConvertedOrRefused) {
    const json shapes[] = {json::array(), 1, "x", json::object(), {1, 2}, {json::object()}, nullptr};
    for (const char *key :
         {"extensionsUsed", "extensionsRequired", "textures", "nodes", "meshes", "scenes"}) {
        for (const json &shape : shapes) {
            GltfBuilder other = model;
            other.document()[key] = shape;
            refusal("model.gltf", other.text());
        }
    }
    refusal("deep.gltf", std::string(200000, '['));
    refusal("deep.gltf", std::string(200000, '[') + std::string(200000, ']'));
}

/// A triangle, (0,0,0) (1,0,0) (0,0.5,0), whose places are `bytes` of that component type, 4 components a
/// vertex.
json triangleOf(int componentType, unsigned stride, std::vector<std::uint8_t> bytes, bool normalized) {
    constexpr char digits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text = "data:application/octet-stream;base64,";
    const std::size_t size = bytes.size();
    bytes.resize((size + 2) / 3 * 3);
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        const unsigned three = bytes[i] << 16u | bytes[i + 1] << 8u | bytes[i + 2];
        for (int shift = 18; shift >= 0; shift -= 6) text += digits[three >> shift & 63u];
    }
    return {{"asset", {{"version", "2.0"}}},
            {"buffers", {{{"uri", text}, {"byteLength", bytes.size()}}}},
            {"bufferViews", {{{"buffer", 0}, {"byteLength", size}, {"byteStride", stride}}}},
            {"accessors",
             {{{"bufferView", 0},
               {"componentType", componentType},
               {"normalized", normalized},
               {"count", 3},
               {"type", "VEC3"}}}},
            {"meshes", {{{"primitives", {{{"attributes", {{"POSITION", 0}}}}}}}}},
            {"nodes", {{{"mesh", 0}}}},
            {"scenes", {{{"nodes", {0}}}}}};
}

template <class T>
std::vector<std::uint8_t> bytesOf(const std::vector<T> &values) {
    std::vector<std::uint8_t> bytes(values.size() * sizeof(T));
    std::memcpy(bytes.data(), values.data(), bytes.size());
    return bytes;
}

TEST_F(GltfTest, ReadsVerticesOfSmallIntegers) {
    const std::vector<std::int16_t> wide = {0, 0, 0, 0, 32767, 0, 0, 0, 0, 16384, 0, 0};
    const std::vector<std::int8_t> narrow = {0, 0, 0, 0, 127, 0, 0, 0, 0, 64, 0, 0};
    const std::vector<std::uint16_t> plain = {0, 0, 0, 0, 2, 0, 0, 0, 0, 1, 0, 0};
    const auto size = [&](const json &document) { return make("model.gltf", document.dump()).report().size; };
    EXPECT_NEAR(size(triangleOf(5122, 8, bytesOf(wide), true)), std::hypot(1.0, 0.5), 1e-4);
    EXPECT_NEAR(size(triangleOf(5120, 4, bytesOf(narrow), true)), std::hypot(1.0, 0.5), 1e-2);
    EXPECT_NEAR(size(triangleOf(5123, 8, bytesOf(plain), false)), std::hypot(2.0, 1.0), 1e-4);
    json cut = triangleOf(5122, 8, bytesOf(wide), true);
    cut["accessors"][0]["count"] = 4;
    EXPECT_FALSE(refusal("model.gltf", cut.dump()).empty());
    cut["accessors"][0]["count"] = 1u << 31;
    EXPECT_FALSE(refusal("model.gltf", cut.dump()).empty());
}

TEST_F(GltfTest, ReadsCompressedGeometry) {
    const std::vector<std::int16_t> places = {0, 0, 0, 0, 32767, 0, 0, 0, 0, 16384, 0, 0};
    std::vector<std::uint8_t> packed(meshopt_encodeVertexBufferBound(3, 8));
    packed.resize(meshopt_encodeVertexBuffer(packed.data(), packed.size(), places.data(), 3, 8));
    json document = triangleOf(5122, 8, packed, true);
    document["extensionsRequired"] =
        document["extensionsUsed"] = {"EXT_meshopt_compression", "KHR_mesh_quantization"};
    const json compression = {{"buffer", 0}, {"byteOffset", 0}, {"byteLength", packed.size()},
                              {"count", 3},  {"byteStride", 8}, {"mode", "ATTRIBUTES"}};
    document["buffers"].push_back({{"byteLength", 24}});  // what other readers would use
    document["bufferViews"][0] = {{"buffer", 1},
                                  {"byteLength", 24},
                                  {"byteStride", 8},
                                  {"extensions", {{"EXT_meshopt_compression", compression}}}};
    EXPECT_NEAR(make("model.gltf", document.dump()).report().size, std::hypot(1.0, 0.5), 1e-4);
    const std::pair<const char *, json> damages[] = {
        {"count", 300000},        {"count", 0},  {"byteStride", 7},   {"byteStride", 0}, {"byteLength", 3},
        {"byteLength", 1u << 30}, {"buffer", 7}, {"mode", "SPHERES"}, {"filter", "SALT"}};
    for (const auto &[key, value] : damages) {
        json damaged = document;
        damaged["bufferViews"][0]["extensions"]["EXT_meshopt_compression"][key] = value;
        EXPECT_THAT(refusal("model.gltf", damaged.dump()), HasSubstr("cannot be decompressed"))
            << key << value;
    }
}

}  // namespace
}  // namespace keltra::test
