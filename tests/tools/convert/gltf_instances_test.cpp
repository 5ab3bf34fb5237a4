// SPDX-License-Identifier: Zlib
// Instances of meshes in glTF files become nodes.

#include <gtest/gtest.h>

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

}  // namespace
}  // namespace keltra::test
