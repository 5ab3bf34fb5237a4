// SPDX-License-Identifier: Zlib
// Custom properties of nodes and materials, which say what model formats have no field for.

#include <gtest/gtest.h>

#include "tests/tools/convert/support/convert_fixture.h"
#include "tools/formats/kte_reader.h"

namespace keltra::test {
namespace {

using formats::Color;
using formats::Material;
using formats::Node;
using nlohmann::json;

bool same(Color a, Color b) { return a.r == b.r && a.g == b.g && a.b == b.b && a.a == b.a; }

class PropertiesTest : public ConvertTest {
   protected:
    void convertIt(const std::string &fileName = "model.gltf") {
        const bool isBinary = fileName == "model.glb";
        const Made made = make(fileName, isBinary ? model.glb() : model.text());
        const auto file = formats::readKte(made.conversion.files.back().bytes);
        ASSERT_TRUE(file);
        scene = file->scene;
        report = made.report();
        warnings = report.warnings;
    }
    std::uint64_t dropped(const std::string &what) const {
        for (const convert::Dropped &entry : report.dropped)
            if (entry.what == what) return entry.count;
        return 0;
    }
    /// One box of a material with these extras.
    Material materialWith(const json &extras, const std::string &fileName = "model.gltf") {
        model = GltfBuilder();
        json &document = model.document();
        document["materials"] = {{{"name", "stone"}, {"extras", extras}}};
        const int box = model.mesh(boxMesh());
        document["meshes"][box]["primitives"][0]["material"] = 0;
        model.node({{"name", "box"}, {"mesh", box}});
        convertIt(fileName);
        return scene.materials.empty() ? Material() : scene.materials[0];
    }
    /// A node with a box and these extras.
    Node nodeWith(const json &extras) {
        model = GltfBuilder();
        model.node({{"name", "box"}, {"mesh", model.mesh(boxMesh())}, {"extras", extras}});
        model.node({{"name", "other"}, {"mesh", model.mesh(triangleMesh())}});
        convertIt();
        return scene.root.children.empty() ? Node() : scene.root.children[0];
    }
    bool warned(const std::string &text) const {
        return std::any_of(warnings.begin(), warnings.end(), [&text](const std::string &warning) {
            return warning.find(text) != std::string::npos;
        });
    }

    GltfBuilder model;
    formats::Scene scene;
    convert::Report report;
    std::vector<std::string> warnings;
};

TEST_F(PropertiesTest, ANodeHidesItsMeshes) {
    EXPECT_TRUE(nodeWith({{"keltra_hidden", true}}).mesh.hidden);
    EXPECT_FALSE(scene.root.children.at(1).mesh.hidden);
    EXPECT_TRUE(nodeWith({{"keltra_hidden", 1}}).mesh.hidden);
    EXPECT_FALSE(nodeWith({{"keltra_hidden", false}}).mesh.hidden);
    EXPECT_FALSE(nodeWith({{"hidden", true}}).mesh.hidden) << "another program's property";
    EXPECT_TRUE(warnings.empty());
}

TEST_F(PropertiesTest, ANodeChoosesItsRadius) {
    const float bounding = nodeWith(json::object()).mesh.radius;
    EXPECT_GT(bounding, 1.0f);
    EXPECT_EQ(nodeWith({{"keltra_radius", 0}}).mesh.radius, 0.0f);
    EXPECT_EQ(nodeWith({{"keltra_radius", 2.5}}).mesh.radius, 2.5f);
    EXPECT_TRUE(warnings.empty());
    for (const json &bad : {json(-1), json("wide"), json(40000.0), json(json::array({1, 2}))}) {
        EXPECT_EQ(nodeWith({{"keltra_radius", bad}}).mesh.radius, bounding) << bad;
        EXPECT_TRUE(warned("keltra_radius of box is not a number from 0 to 32767")) << bad;
    }
}

TEST_F(PropertiesTest, SkinsAreHiddenToo) {
    GltfMesh skin = triangleMesh();
    skin.joints.assign(12, 0);
    skin.weights = {1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0};
    const int bone = model.node({{"name", "bone"}});
    model.node({{"name", "coat"},
                {"mesh", model.mesh(skin)},
                {"skin", model.skin({bone})},
                {"extras", {{"keltra_hidden", true}}}});
    convertIt();
    const Node &skeleton = scene.root.children.at(0);
    EXPECT_EQ(skeleton.children.back().name, "coat");
    EXPECT_TRUE(skeleton.children.back().mesh.hidden);
}

TEST_F(PropertiesTest, AMaterialIsAsItsPropertiesSay) {
    const Material plain = materialWith(json::object());
    for (const char *fileName : {"model.gltf", "model.glb"}) {
        const Material made = materialWith({{"keltra_ambient", {0.1, 0.2, 0.3}},
                                            {"keltra_specular", {0.5, 0.5, 0.5, 0.25}},
                                            {"keltra_shininess", 24},
                                            {"keltra_transparency", 0.75}},
                                           fileName);
        EXPECT_TRUE(same(made.ambient, {0.1f, 0.2f, 0.3f, 1.0f})) << fileName;
        EXPECT_TRUE(same(made.specular, {0.5f, 0.5f, 0.5f, 0.25f})) << fileName;
        EXPECT_EQ(made.shininess, 24.0f) << fileName;
        EXPECT_EQ(made.transparency, 0.75f) << fileName;
        EXPECT_TRUE(same(made.diffuse, plain.diffuse)) << fileName;
        EXPECT_TRUE(same(made.emission, plain.emission)) << fileName;
    }
    const Material lit = materialWith({{"keltra_diffuse", {0, 0.5, 1}}, {"keltra_emission", {1, 0, 0}}});
    EXPECT_TRUE(same(lit.diffuse, {0.0f, 0.5f, 1.0f, 1.0f}));
    EXPECT_TRUE(same(lit.emission, {1.0f, 0.0f, 0.0f, 1.0f}));
    EXPECT_TRUE(same(lit.ambient, plain.ambient));
    EXPECT_TRUE(warnings.empty());
}

TEST_F(PropertiesTest, ValuesOutOfRangeAreLeftOutWithAWarning) {
    const Material plain = materialWith(json::object());
    const std::vector<json> colors = {json(0.5), json::array({1, 1}), json::array({1, 1, 2}),
                                      json::array({1, 1, "1"}), json::array({1, 1, 1, 1, 1})};
    for (const json &bad : colors) {
        EXPECT_TRUE(same(materialWith({{"keltra_ambient", bad}}).ambient, plain.ambient)) << bad;
        EXPECT_TRUE(warned("keltra_ambient of stone is not three or four numbers from 0 to 1")) << bad;
    }
    EXPECT_EQ(materialWith({{"keltra_shininess", 129}}).shininess, plain.shininess);
    EXPECT_TRUE(warned("keltra_shininess of stone is not a number from 0 to 128"));
    EXPECT_EQ(materialWith({{"keltra_transparency", -0.1}}).transparency, plain.transparency);
    EXPECT_TRUE(warned("keltra_transparency of stone is not a number from 0 to 1"));
}

TEST_F(PropertiesTest, NumbersOfPlainNodesAreInTheFile) {
    model = GltfBuilder();
    model.node({{"name", "door"}, {"mesh", model.mesh(boxMesh())}, {"extras", {{"keltra_aux_id", 7}}}});
    model.node({{"name", "place"}, {"extras", {{"keltra_aux_id", 4000000000.0}}}});
    convertIt();
    EXPECT_EQ(scene.root.children.at(0).auxId, 0u);
    EXPECT_EQ(scene.root.children.at(1).auxId, 4000000000u);
    EXPECT_EQ(dropped("auxiliary ids"), 1u);
    for (const json &bad : {json(-1), json(1.5), json("seven")}) {
        nodeWith({{"keltra_aux_id", bad}});
        EXPECT_TRUE(warned("keltra_aux_id of box is not a whole number")) << bad;
    }
}

TEST_F(PropertiesTest, HelpersArePlainNodes) {
    model = GltfBuilder();
    model.node({{"name", "zone"}, {"mesh", model.mesh(boxMesh())}, {"extras", {{"keltra_helper", true}}}});
    model.node({{"name", "wall"}, {"mesh", model.mesh(boxMesh())}});
    convertIt();
    EXPECT_EQ(scene.root.children.at(0).name, "zone");
    EXPECT_EQ(scene.root.children.at(0).kind, formats::NodeKind::kPlain);
    EXPECT_EQ(scene.root.children.at(1).kind, formats::NodeKind::kMesh);
    EXPECT_EQ(dropped("helpers"), 1u);
    EXPECT_TRUE(warnings.empty());
}

TEST_F(PropertiesTest, AFilterIsOneOfThree) {
    materialWith({{"keltra_filter", "blurred"}});
    EXPECT_TRUE(warned("keltra_filter of stone is none of nearest, linear and mipmapped"));
}

TEST_F(PropertiesTest, MistypedNamesAreSaid) {
    materialWith({{"keltra_ambiant", {1, 1, 1}}, {"roughness", 3}});
    EXPECT_EQ(warnings.size(), 1u);
    EXPECT_TRUE(warned("keltra_ambiant of stone is not a property of materials"));
    nodeWith({{"keltra_hiden", true}});
    EXPECT_TRUE(warned("keltra_hiden of box is not a property of nodes"));
    nodeWith(json::object());
    model.node({{"name", "empty"}, {"extras", {{"keltra_hidden", true}}}});
    convertIt();
    EXPECT_TRUE(warned("keltra_hidden of empty has no mesh to act on"));
}

}  // namespace
}  // namespace keltra::test
