// SPDX-License-Identifier: Zlib
// Instances of meshes in glTF files become nodes.

#include <gtest/gtest.h>

#include <cmath>
#include <map>

#include "tests/tools/convert/support/convert_fixture.h"

namespace keltra::test {
namespace {

using nlohmann::json;

class GltfInstancesTest : public ConvertTest {
   protected:
    GltfInstancesTest() { addInstances(); }
    /// Of a box at three places, turned and scaled at the second.
    void addInstances() {
        attributes["TRANSLATION"] = model.floats({0, 0, 0, 10, 0, 0, 0, 20, 0}, "VEC3", 3);
        attributes["ROTATION"] = model.floats({0, 0, 0, 1, 0, 0, 1, 0, 0, 0, 0, 1}, "VEC4", 4);
        attributes["SCALE"] = model.floats({1, 1, 1, 2, 3, 4, 1, 1, 1}, "VEC3", 3);
    }
    Made makeIt(const std::string &file = "trees.gltf") {
        model.document()["extensionsUsed"] = model.document()["extensionsRequired"] = {kName};
        model.node({{"name", "tree"},
                    {"translation", {0, 0, 5}},
                    {"mesh", model.mesh(boxMesh())},
                    {"extensions", {{kName, {{"attributes", attributes}}}}}});
        return make(file, file.back() == 'b' ? model.glb() : model.text());
    }

    static constexpr char kName[] = "EXT_mesh_gpu_instancing";
    GltfBuilder model;
    json attributes;
};

constexpr char GltfInstancesTest::kName[];

TEST_F(GltfInstancesTest, EachStandsInItsPlace) {
    for (const char *file : {"trees.gltf", "trees.glb"}) {
        model = GltfBuilder();
        addInstances();
        const Made made = makeIt(file);
        EXPECT_EQ(made.report().meshes, 3u) << file;
        EXPECT_EQ(made.report().tally().dropped, 0u) << file;
        EXPECT_EQ(made.report().tally().changed, 3u) << file;
        for (const char *name : {"tree_1", "tree_2", "tree_3"})
            EXPECT_NE(made.root()->findByNameInHierarchy(name), nullptr) << name;
        Point low{1e9, 1e9, 1e9}, high{-1e9, -1e9, -1e9};
        for (const Point &at : shapeOf(poseWithoutWindow(made.root())).corners) {
            low = {std::min(low.x, at.x), std::min(low.y, at.y), std::min(low.z, at.z)};
            high = {std::max(high.x, at.x), std::max(high.y, at.y), std::max(high.z, at.z)};
        }
        EXPECT_NEAR(low.x, -1.0, 1e-3);
        EXPECT_NEAR(high.x, 12.0, 1e-3);
        EXPECT_NEAR(low.y, -3.0, 1e-3);
        EXPECT_NEAR(high.y, 21.0, 1e-3);
        EXPECT_NEAR(low.z, 1.0, 1e-3);
        EXPECT_NEAR(high.z, 9.0, 1e-3);
    }
}

TEST_F(GltfInstancesTest, WhatCannotBeReadStaysOnceAndIsSaid) {
    const std::vector<std::pair<const char *, json>> wrong = {
        {"TRANSLATION", 99}, {"TRANSLATION", "x"}, {"SCALE", attributes["ROTATION"]}, {"ROTATION", -1}};
    const json good = attributes;
    for (const auto &[name, value] : wrong) {
        const json document = model.document();
        attributes = good;
        attributes[name] = value;
        const Made made = makeIt();
        EXPECT_EQ(made.report().meshes, 1u) << name << value;
        EXPECT_TRUE(mentions(made.report(), kName)) << name << value;
        model.document() = document;
    }
}

TEST_F(GltfInstancesTest, NumbersOfInstancesMustAgree) {
    attributes["SCALE"] = model.floats({1, 1, 1}, "VEC3", 3);
    EXPECT_EQ(makeIt().report().meshes, 1u);
}

/// A box of which every vertex follows the first joint.
GltfMesh skinnedBox() {
    GltfMesh mesh = boxMesh();
    for (std::size_t v = 0; v < mesh.positions.size() / 3; ++v) {
        mesh.joints.insert(mesh.joints.end(), {0, 0, 0, 0});
        mesh.weights.insert(mesh.weights.end(), {1.0f, 0.0f, 0.0f, 0.0f});
    }
    return mesh;
}

TEST_F(GltfInstancesTest, InstancesOfASkinAreCounted) {
    model.document()["extensionsUsed"] = model.document()["extensionsRequired"] = {kName};
    const int joint = model.node({{"name", "joint"}});
    model.node({{"name", "hero"},
                {"mesh", model.mesh(skinnedBox())},
                {"skin", model.skin({joint})},
                {"extensions", {{kName, {{"attributes", attributes}}}}}});
    const Made made = make("heroes.gltf", model.text());
    EXPECT_EQ(made.report().meshes, 1u);
    EXPECT_TRUE(mentions(made.report(), "instances of skinned meshes"));
    EXPECT_EQ(made.report().tally().dropped, 2u);
}

// Two characters and a statue, all with the same mesh.
TEST_F(GltfInstancesTest, EachSkinMovesAMeshOfItsOwn) {
    const int mesh = model.mesh(skinnedBox());
    const int left = model.node({{"name", "left"}, {"translation", {-10, 0, 0}}});
    const int right = model.node({{"name", "right"}, {"translation", {10, 0, 0}}});
    model.node({{"name", "one"}, {"mesh", mesh}, {"skin", model.skin({left})}});
    model.node({{"name", "other"}, {"mesh", mesh}, {"skin", model.skin({right})}});
    model.node({{"name", "again"}, {"mesh", mesh}, {"skin", 1}});
    model.node({{"name", "statue"}, {"mesh", mesh}, {"translation", {0, 20, 0}}});
    const Made made = make("two.gltf", model.text());
    EXPECT_EQ(made.report().tally().dropped, 0u);
    std::map<int, int> corners;  // by place
    for (const Point &at : shapeOf(poseWithoutWindow(made.root())).corners)
        ++corners[at.y > 10.0 ? 20 : at.x < 0.0 ? -10 : 10];
    EXPECT_EQ(corners[-10], 24);
    EXPECT_EQ(corners[10], 24) << "the same in the same place counts once";
    EXPECT_EQ(corners[20], 24);
}

// Their joints' frames are those of the mesh then.
TEST_F(GltfInstancesTest, SkinsMayLackInverseBindMatrices) {
    for (const char *file : {"bare.gltf", "bare.glb"}) {
        model = GltfBuilder();
        const int joint = model.node({{"name", "joint"}, {"translation", {5, 0, 0}}});
        model.node({{"name", "hero"}, {"mesh", model.mesh(skinnedBox())}, {"skin", model.skin({joint})}});
        model.document()["skins"][0].erase("inverseBindMatrices");
        const Made made = make(file, std::string(file) == "bare.glb" ? model.glb() : model.text());
        EXPECT_EQ(made.report().skins, 1u);
        for (const Point &at : shapeOf(poseWithoutWindow(made.root())).corners)
            EXPECT_NEAR(std::abs(at.x - 5.0), 1.0, 1e-3) << file;
    }
}

}  // namespace
}  // namespace keltra::test
