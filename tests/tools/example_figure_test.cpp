// SPDX-License-Identifier: Zlib
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <set>

#include "tests/tools/example_data.h"

// The sample character: bones, skin and animations that fit one another.

namespace keltra::test {
namespace {

using namespace formats;

constexpr std::size_t kMostVertices = 1550;  // sixteen figures are skinned in every frame

constexpr std::size_t kBones = 20;

const Scene &figure() {
    static const Scene read = exampleScene("figure.kte");
    return read;
}

const Node &skin() { return figure().root.children.at(0).children.at(1); }

// Bones of the bind pose by their names, with their places in the figure.
void placeBones(const Node &bone, Vec3 above, std::map<std::string, Vec3> *places) {
    const Vec3 place = above + bone.position;
    EXPECT_TRUE(places->emplace(bone.name, place).second) << bone.name << " twice";
    for (const Node &child : bone.children) placeBones(child, place, places);
}

std::map<std::string, Vec3> bonePlaces() {
    std::map<std::string, Vec3> places;
    placeBones(figure().root.children.at(0).children.at(0), {}, &places);
    return places;
}

TEST(ExampleFigure, EveryTextureOfItsScenesIsAmongItsFiles) {
    std::set<std::string> names;
    for (const ExampleFile &file : exampleFiles("", ".tga")) names.insert(file.name);
    for (const char *name : {"figure.kte", "meadow.kte", "garden.kte"}) {
        const Scene scene = exampleScene(name);
        std::set<std::string> materials;
        for (const Material &material : scene.materials) {
            EXPECT_TRUE(materials.insert(material.name).second) << material.name;
            EXPECT_TRUE(material.texture == "[none]" || names.count(material.texture)) << material.texture;
        }
        visit(scene.root, [&](const Node &node) {
            EXPECT_TRUE(node.mesh.vertices.empty() || materials.count(node.mesh.material)) << node.name;
        });
    }
}

TEST(ExampleFigure, BonesAreHiddenMeshesWithoutGeometryBelowHumanoidRoot) {
    const Node &root = figure().root.children.at(0);
    EXPECT_EQ(root.name, "HumanoidRoot");
    EXPECT_EQ(root.kind, NodeKind::kPlain);
    visit(root.children.at(0), [](const Node &node) {
        EXPECT_EQ(node.kind, NodeKind::kMesh) << node.name;
        EXPECT_TRUE(node.mesh.hidden && node.mesh.vertices.empty() && node.mesh.faces.empty()) << node.name;
    });
    const std::map<std::string, Vec3> bound = bonePlaces();
    ASSERT_EQ(bound.size(), kBones);
    EXPECT_EQ(skin().mesh.boneNames.size(), kBones);
    for (const std::string &bone : skin().mesh.boneNames) EXPECT_EQ(bound.count(bone), 1u) << bone;
}

TEST(ExampleFigure, EveryVertexIsHeldByTwoBonesWithWeightsOfOne) {
    const MeshData &mesh = skin().mesh;
    ASSERT_GT(mesh.vertices.size(), 500u);
    EXPECT_LE(mesh.vertices.size(), kMostVertices);
    EXPECT_EQ(mesh.influences, 2);
    ASSERT_EQ(mesh.influenceBones.size(), 2 * mesh.vertices.size());
    ASSERT_EQ(mesh.influenceWeights.size(), 2 * mesh.vertices.size());
    for (uint8_t bone : mesh.influenceBones) EXPECT_LT(bone, kBones);
    for (std::size_t i = 0; i < mesh.influenceWeights.size(); i += 2) {
        EXPECT_GE(mesh.influenceWeights[i], 0.0f);
        EXPECT_GE(mesh.influenceWeights[i + 1], 0.0f);
        EXPECT_EQ(mesh.influenceWeights[i] + mesh.influenceWeights[i + 1], 1.0f);
    }
}

TEST(ExampleFigure, GeometryIsConsistent) {
    const MeshData &mesh = skin().mesh;
    EXPECT_EQ(mesh.normals.size(), mesh.vertices.size());
    EXPECT_EQ(mesh.uvs.size(), mesh.vertices.size());
    EXPECT_EQ(mesh.faceNormals.size(), mesh.faces.size());
    for (const Face &face : mesh.faces)
        for (uint16_t index : face) EXPECT_LT(index, mesh.vertices.size());
    for (Vec3 normal : mesh.normals) EXPECT_NEAR(length(normal), 1.0f, 0.001f);
    for (Vec2 uv : mesh.uvs) EXPECT_TRUE(uv.x > 0.0f && uv.x < 1.0f && uv.y > 0.0f && uv.y < 1.0f);
    EXPECT_NEAR(mesh.minimum.y, 0.0f, 0.03f) << "he stands on the ground";
    EXPECT_GT(mesh.maximum.y, 2.9f);
}

// Both sides hold the same, mirrored.
TEST(ExampleFigure, IsAlmostSymmetric) {
    const MeshData &mesh = skin().mesh;
    EXPECT_NEAR(mesh.minimum.x, -mesh.maximum.x, 0.001f);
    const std::map<std::string, Vec3> bound = bonePlaces();
    for (const char *bone : {"UpperArm", "Forearm", "Hand", "Thigh", "Shin", "Foot"}) {
        const Vec3 left = bound.at(std::string("left") + bone), right = bound.at(std::string("right") + bone);
        EXPECT_LT(length(left - Vec3{-right.x, right.y, right.z}), 0.0001f) << bone;
    }
}

TEST(ExampleFigure, AnimationsFitTheFigureAndRunInACircle) {
    const std::vector<std::string> &held = skin().mesh.boneNames;
    for (const char *name : {"figure_walk.kta", "figure_wave.kta"}) {
        const Animation animation = exampleAnimation(name);
        EXPECT_EQ(std::set<std::string>(animation.bones.begin(), animation.bones.end()),
                  std::set<std::string>(held.begin(), held.end()));
        ASSERT_GE(animation.frames.size(), 16u);
        for (std::size_t frame = 0; frame < animation.frames.size(); ++frame) {
            const std::vector<Keyframe> &now = animation.frames[frame];
            const std::vector<Keyframe> &then = animation.frames[(frame + 1) % animation.frames.size()];
            ASSERT_EQ(now.size(), kBones);
            for (std::size_t bone = 0; bone < now.size(); ++bone) {
                EXPECT_TRUE(now[bone].set);
                EXPECT_LT(length(now[bone].rotation - then[bone].rotation), 25.0f) << frame << ' ' << bone;
                EXPECT_LT(length(now[bone].position - then[bone].position), 0.1f) << frame << ' ' << bone;
            }
        }
    }
}

TEST(ExampleFigure, TheWalkStepsEquallyWithBothLegs) {
    const Animation walk = exampleAnimation("figure_walk.kta");
    const std::size_t half = walk.frames.size() / 2;
    ASSERT_GT(half, 0u);
    const auto turnOf = [&walk](std::size_t frame, const std::string &name) {
        const auto bone = std::find(walk.bones.begin(), walk.bones.end(), name);
        EXPECT_NE(bone, walk.bones.end()) << name;
        return walk.frames[frame][static_cast<std::size_t>(bone - walk.bones.begin())].rotation.x;
    };
    for (std::size_t frame = 0; frame < half; ++frame)
        for (const std::string bone : {"Thigh", "Shin", "Foot"})
            EXPECT_NEAR(turnOf(frame, "left" + bone), turnOf(frame + half, "right" + bone), 0.01f) << frame;
}

}  // namespace
}  // namespace keltra::test
