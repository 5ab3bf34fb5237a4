#include "tools/samples/figure.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <map>
#include <set>

#include "tools/samples/figure_parts.h"

namespace keltra::samples {
namespace {

constexpr size_t kMostVertices = 1550;  // sixteen figures are skinned in every frame

const std::vector<SampleFile> &files() {
    static const std::vector<SampleFile> made = makeFigureFiles();
    return made;
}

const Scene &figure() {
    static const Scene made = makeFigure();
    return made;
}

void visit(const Node &node, const std::function<void(const Node &)> &each) {
    each(node);
    for (const Node &child : node.children) visit(child, each);
}

const Node &skin() { return figure().root.children.at(0).children.at(1); }

// FNV-1a, 64 bits.
uint64_t checksum(const std::vector<SampleFile> &list) {
    uint64_t sum = 14695981039346656037u;
    const auto add = [&sum](uint8_t byte) { sum = (sum ^ byte) * 1099511628211u; };
    for (const SampleFile &file : list) {
        for (char c : file.name) add(static_cast<uint8_t>(c));
        for (uint8_t byte : file.bytes) add(byte);
    }
    return sum;
}

// A change of the figure changes this on purpose; a change of compiler or machine must not.
TEST(Figure, FilesAreTheSameOnEveryMachine) { EXPECT_EQ(checksum(files()), 3739525070195580142u); }

TEST(Figure, FilesHaveOtherNamesThanThoseOfTheScene) {
    std::set<std::string> names;
    for (const SampleFile &file : makeSampleFiles()) names.insert(file.name);
    for (const SampleFile &file : files()) EXPECT_TRUE(names.insert(file.name).second) << file.name;
}

TEST(Figure, EveryTextureOfItsScenesIsAmongItsFiles) {
    std::set<std::string> names;
    for (const SampleFile &file : files()) names.insert(file.name);
    for (const Scene &scene : {makeFigure(), makeMeadow(), makeGarden()}) {
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

TEST(Figure, BonesAreHiddenMeshesWithoutGeometryBelowHumanoidRoot) {
    const Node &root = figure().root.children.at(0);
    EXPECT_EQ(root.name, "HumanoidRoot");
    EXPECT_EQ(root.kind, NodeKind::kPlain);
    std::map<std::string, Vec3> bound;
    visit(root.children.at(0), [&](const Node &node) {
        EXPECT_EQ(node.kind, NodeKind::kMesh) << node.name;
        EXPECT_TRUE(node.mesh.hidden && node.mesh.vertices.empty() && node.mesh.faces.empty()) << node.name;
        EXPECT_TRUE(bound.emplace(node.name, node.position).second) << node.name << " twice";
    });
    ASSERT_EQ(bound.size(), size_t{kFigureBones});
    EXPECT_EQ(skin().mesh.boneNames.size(), size_t{kFigureBones});
    for (const std::string &bone : skin().mesh.boneNames) EXPECT_EQ(bound.count(bone), 1u) << bone;
}

TEST(Figure, EveryVertexIsHeldByTwoBonesWithWeightsOfOne) {
    const MeshData &mesh = skin().mesh;
    ASSERT_GT(mesh.vertices.size(), 500u);
    EXPECT_LE(mesh.vertices.size(), kMostVertices);
    EXPECT_EQ(mesh.influences, 2);
    ASSERT_EQ(mesh.influenceBones.size(), 2 * mesh.vertices.size());
    ASSERT_EQ(mesh.influenceWeights.size(), 2 * mesh.vertices.size());
    for (uint8_t bone : mesh.influenceBones) EXPECT_LT(bone, kFigureBones);
    for (size_t i = 0; i < mesh.influenceWeights.size(); i += 2) {
        EXPECT_GE(mesh.influenceWeights[i], 0.0f);
        EXPECT_GE(mesh.influenceWeights[i + 1], 0.0f);
        EXPECT_EQ(mesh.influenceWeights[i] + mesh.influenceWeights[i + 1], 1.0f);
    }
}

TEST(Figure, GeometryIsConsistent) {
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
TEST(Figure, IsAlmostSymmetric) {
    const MeshData &mesh = skin().mesh;
    EXPECT_NEAR(mesh.minimum.x, -mesh.maximum.x, 0.001f);
    for (int bone = kUpperArm; bone < kUpperArm + kSide; ++bone) {
        const Vec3 left = kFigureJoints[bone].place, right = kFigureJoints[bone + kSide].place;
        EXPECT_TRUE(left == (Vec3{-right.x, right.y, right.z})) << kFigureJoints[bone].name;
    }
}

TEST(Figure, AnimationsFitTheFigureAndRunInACircle) {
    for (const Animation &animation : {makeWalk(), makeWave()}) {
        EXPECT_EQ(animation.bones, skin().mesh.boneNames);
        ASSERT_GE(animation.frames.size(), 16u);
        for (size_t frame = 0; frame < animation.frames.size(); ++frame) {
            const std::vector<Keyframe> &now = animation.frames[frame];
            const std::vector<Keyframe> &then = animation.frames[(frame + 1) % animation.frames.size()];
            ASSERT_EQ(now.size(), size_t{kFigureBones});
            for (size_t bone = 0; bone < now.size(); ++bone) {
                EXPECT_TRUE(now[bone].set);
                EXPECT_LT(length(now[bone].rotation - then[bone].rotation), 25.0f) << frame << ' ' << bone;
                EXPECT_LT(length(now[bone].position - then[bone].position), 0.1f) << frame << ' ' << bone;
            }
        }
    }
}

TEST(Figure, TheWalkStepsEquallyWithBothLegs) {
    const Animation walk = makeWalk();
    const size_t half = walk.frames.size() / 2;
    for (size_t frame = 0; frame < half; ++frame) {
        for (int bone : {kThigh, kShin, kFoot}) {
            const Vec3 left = walk.frames[frame][static_cast<size_t>(bone)].rotation;
            const Vec3 right = walk.frames[frame + half][static_cast<size_t>(bone + kSide)].rotation;
            EXPECT_NEAR(left.x, right.x, 0.01f) << frame;
        }
    }
}

TEST(KtaWriter, WritesTheLayoutByteForByte) {
    Animation animation;
    animation.bones = {"a", ""};
    animation.frames = {{{{1.0f, 2.0f, -1.0f}, {0.5f, 0.0f, 0.0f}, true}, {{}, {}, false}}};
    const std::vector<uint8_t> bytes = writeKta(animation);
    std::vector<uint8_t> expected = {'K', 'T', 'A', ' ', 'f', 'i', 'l', 'e', ' ', 'v', '1', '.',
                                     '6', 'a', 26,  2,   0,   1,   0,   'a', 0,   0,   0,   0,
                                     128, 63,  0,   0,   0,   64,  0,   0,   128, 191};
    const uint8_t position[] = {0, 0, 0, 63, 0, 0, 0, 0, 0, 0, 0, 0, 1};
    expected.insert(expected.end(), position, position + sizeof(position));
    expected.insert(expected.end(), kKtaKeyframeSize, 0);
    EXPECT_EQ(bytes, expected);
}

TEST(KtaWriter, CountsAreTheSizesOfTheLists) {
    Animation animation;
    animation.bones.assign(300, "b");
    animation.frames.resize(513);
    const std::vector<uint8_t> bytes = writeKta(animation);
    EXPECT_EQ(bytes[kKtaBoneCountOffset] + 256 * bytes[kKtaBoneCountOffset + 1], 300);
    EXPECT_EQ(bytes[kKtaFrameCountOffset] + 256 * bytes[kKtaFrameCountOffset + 1], 513);
    EXPECT_EQ(bytes.size(), kKtaNamesOffset + 300 * 2);
}

}  // namespace
}  // namespace keltra::samples
