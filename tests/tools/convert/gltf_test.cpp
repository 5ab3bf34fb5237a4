// SPDX-License-Identifier: Zlib
// Extensions of glTF: each is read, done without and reported, or the reason of a refusal.

#include "tests/tools/convert/support/convert_fixture.h"
#include "tests/tools/convert/support/pictures.h"

#include <gmock/gmock.h>

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
    for (const char *name : {"KHR_mesh_quantization", "EXT_meshopt_compression"}) {
        GltfTest::model = GltfBuilder();
        require(name);
        EXPECT_THAT(reason(), HasSubstr(std::string("it requires the glTF extension ") + name + " ("));
    }
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

}  // namespace
}  // namespace keltra::test
