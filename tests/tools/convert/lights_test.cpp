// SPDX-License-Identifier: Zlib
// Lights of models: they are nodes of the scene, with the model's own names.

#include <gtest/gtest.h>

#include <cmath>

#include "tests/tools/convert/support/convert_fixture.h"
#include "tools/formats/kte_reader.h"

namespace keltra::test {
namespace {

using formats::LightType;
using formats::Node;
using formats::NodeKind;
using nlohmann::json;

constexpr float kHalf = 0.70710678f;  // of a right angle, in a quaternion

/// The nodes of that name below `node`, itself included.
std::vector<const Node *> named(const Node &node, const std::string &name) {
    std::vector<const Node *> found;
    if (node.name == name) found.push_back(&node);
    for (const Node &child : node.children)
        for (const Node *more : named(child, name)) found.push_back(more);
    return found;
}

class LightsTest : public ConvertTest {
   protected:
    LightsTest() { model.node({{"name", "box"}, {"mesh", model.mesh(boxMesh())}}); }

    /// What a node needs to hold a light of that type.
    json light(const char *type, json color = {1.0, 0.5, 0.25}) {
        json &document = model.document();
        document["extensionsUsed"] = {"KHR_lights_punctual"};
        json &list = document["extensions"]["KHR_lights_punctual"]["lights"];
        list.push_back({{"type", type}, {"color", color}, {"spot", json::object()}});
        return {{"KHR_lights_punctual", {{"light", list.size() - 1}}}};
    }

    void convertIt() { read(make("lamps.gltf", model.text())); }
    void read(const Made &made) {
        const auto file = formats::readKte(made.conversion.files.back().bytes);
        ASSERT_TRUE(file);
        root = file->scene.root;
    }

    const Node *only(const std::string &name) {
        const std::vector<const Node *> found = named(root, name);
        EXPECT_EQ(found.size(), 1u) << name;
        return found.empty() ? nullptr : found[0];
    }

    GltfBuilder model;
    Node root;
};

TEST_F(LightsTest, TakeNameAndPlaceOfTheirNodes) {
    const int post = model.node({{"name", "post"}, {"translation", {0, 5, 0}}});
    model.node({{"name", "lamp"}, {"translation", {1, 2, 3}}, {"extensions", light("point")}}, post);
    convertIt();
    const Node *lamp = only("lamp");
    ASSERT_TRUE(lamp);
    EXPECT_EQ(lamp->kind, NodeKind::kLight);
    EXPECT_EQ(lamp->light.type, LightType::kPoint);
    EXPECT_TRUE(lamp->position == (formats::Vec3{1, 2, 3}));
    EXPECT_TRUE(lamp->light.color == (formats::Vec3{1.0f, 0.5f, 0.25f}));
    EXPECT_EQ(root.children.size(), 2u) << "the box and the post";
    EXPECT_TRUE(named(root, "lamp.2").empty());
}

TEST_F(LightsTest, AreTurnedAsTheirNodesAre) {
    // Lights look along -z; a right angle about x makes that down.
    const int sky = model.node({{"name", "sky"}, {"rotation", {-kHalf, 0, 0, kHalf}}});
    model.node({{"name", "sun"}, {"extensions", light("directional")}}, sky);
    model.node({{"name", "spot"}, {"rotation", {-kHalf, 0, 0, kHalf}}, {"extensions", light("spot")}});
    convertIt();
    const Node *sun = only("sun"), *spot = only("spot");
    ASSERT_TRUE(sun && spot);
    EXPECT_EQ(sun->light.type, LightType::kDirectional);
    EXPECT_NEAR(sun->light.direction.z, -1.0f, 1e-5f) << "the node above turns it";
    EXPECT_EQ(spot->light.type, LightType::kSpot);
    EXPECT_NEAR(spot->light.direction.y, -1.0f, 1e-5f);
}

TEST_F(LightsTest, KeepWhatHangsAtTheirNodes) {
    const int mesh = model.mesh(triangleMesh());
    const int lamp =
        model.node({{"name", "lamp"}, {"translation", {0, 3, 0}}, {"extensions", light("point")}});
    model.node({{"name", "shade"}, {"mesh", mesh}, {"translation", {0, 1, 0}}}, lamp);
    convertIt();
    const Node *holder = only("lamp"), *shade = only("shade");
    ASSERT_TRUE(holder && shade);
    EXPECT_EQ(holder->kind, NodeKind::kLight);
    ASSERT_EQ(holder->children.size(), 1u);
    EXPECT_EQ(&holder->children[0], shade);
    EXPECT_TRUE(shade->position == (formats::Vec3{0, 1, 0}));
}

// Records of lights have no turn, and none of geometry.
TEST_F(LightsTest, StandBelowNodesThatMustStay) {
    const int mesh = model.mesh(triangleMesh());
    const int arm =
        model.node({{"name", "arm"}, {"rotation", {0, kHalf, 0, kHalf}}, {"extensions", light("point")}});
    model.node({{"name", "hand"}, {"mesh", mesh}, {"translation", {1, 0, 0}}}, arm);
    model.node({{"name", "bulb"}, {"mesh", mesh}, {"extensions", light("point")}});
    convertIt();
    for (const char *name : {"arm", "bulb"}) {
        const Node *holder = only(name), *inside = only(name + std::string(".2"));
        ASSERT_TRUE(holder && inside) << name;
        EXPECT_EQ(holder->kind, NodeKind::kMesh) << name;
        EXPECT_EQ(inside->kind, NodeKind::kLight) << name;
        EXPECT_EQ(&holder->children[0], inside) << name;
    }
}

TEST_F(LightsTest, AnAnimatedNodeStaysAndMovesItsLight) {
    const int lamp = model.node({{"name", "lamp"}, {"extensions", light("point")}});
    model.clip("swing", {{lamp, "translation", {0, 1}, {0, 0, 0, 1, 2, 3}}});
    convertIt();
    const Node *holder = only("lamp");
    ASSERT_TRUE(holder);
    EXPECT_EQ(holder->kind, NodeKind::kMesh);
    ASSERT_EQ(holder->children.size(), 1u);
    EXPECT_EQ(holder->children[0].kind, NodeKind::kLight);
}

TEST_F(LightsTest, TwoOfOneNodeStandInOnePlace) {
    const std::string lamps =
        "<light id='a' name='a'><technique_common><point><color>1 1 "
        "1</color></point></technique_common></light>"
        "<light id='b' name='b'><technique_common><directional><color>1 1 1</color></directional>"
        "</technique_common></light>";
    const std::string geometry =
        "<geometry id='g'><mesh><source id='p'><float_array id='pa' count='9'>0 0 0 1 0 0 0 1 0</float_array>"
        "<technique_common><accessor source='#pa' count='3' stride='3'><param name='X' type='float'/>"
        "<param name='Y' type='float'/><param name='Z' type='float'/></accessor></technique_common></source>"
        "<vertices id='v'><input semantic='POSITION' source='#p'/></vertices>"
        "<triangles count='1'><input semantic='VERTEX' source='#v' offset='0'/><p>0 1 2</p></triangles>"
        "</mesh></geometry>";
    read(make("pair.dae",
              "<?xml version='1.0'?><COLLADA xmlns='http://www.collada.org/2005/11/COLLADASchema' "
              "version='1.4.1'><asset><up_axis>Y_UP</up_axis></asset><library_lights>" +
                  lamps + "</library_lights><library_geometries>" + geometry +
                  "</library_geometries><library_visual_scenes><visual_scene id='s'>"
                  "<node id='t' name='t'><instance_geometry url='#g'/></node>"
                  "<node id='pair' name='pair'><translate>1 2 3</translate><rotate>1 0 0 -90</rotate>"
                  "<instance_light url='#a'/><instance_light url='#b'/></node></visual_scene>"
                  "</library_visual_scenes><scene><instance_visual_scene url='#s'/></scene></COLLADA>"));
    const Node *first = only("pair"), *second = only("pair.2");
    ASSERT_TRUE(first && second);
    EXPECT_EQ(first->kind, NodeKind::kLight);
    EXPECT_EQ(second->kind, NodeKind::kLight);
    EXPECT_TRUE(first->position == second->position);
    EXPECT_NEAR(second->light.direction.y, -1.0f, 1e-5f);
}

}  // namespace
}  // namespace keltra::test
