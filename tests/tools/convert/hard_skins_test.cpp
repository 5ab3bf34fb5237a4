// SPDX-License-Identifier: Zlib
// Skins with more bones, more influences or other names than the engine takes.

#include <gtest/gtest.h>

#include <map>
#include <set>

#include "tests/tools/convert/support/clips.h"
#include "tests/tools/convert/support/convert_fixture.h"

namespace keltra::test {
namespace {

using nlohmann::json;

constexpr double kBound = 1e-3;  // of the model's size
constexpr unsigned kMostBones = 100, kMostInfluences = 4;

std::string number(double value) { return std::to_string(value); }

/// A row of triangles, `perBone` for each bone, whose corners follow that bone; some follow the next one too.
GltfMesh rowOfTriangles(unsigned bones, unsigned perBone) {
    GltfMesh mesh;
    for (unsigned b = 0; b < bones; ++b) {
        for (unsigned t = 0; t < perBone; ++t) {
            const float x = static_cast<float>(b), y = static_cast<float>(t);
            const float corners[9] = {x, y, 0, x + 0.8f, y, 0.1f, x, y + 0.9f, 0.2f};
            mesh.positions.insert(mesh.positions.end(), corners, corners + 9);
            for (unsigned k = 0; k < 3; ++k) {
                const auto own = static_cast<std::uint16_t>(b),
                           next = static_cast<std::uint16_t>((b + 1) % bones);
                mesh.indices.push_back(static_cast<std::uint32_t>(mesh.indices.size()));
                mesh.joints.insert(mesh.joints.end(), {own, next, 0, 0});
                mesh.weights.insert(mesh.weights.end(),
                                    {k == 1 ? 0.75f : 1.0f, k == 1 ? 0.25f : 0.0f, 0.0f, 0.0f});
            }
        }
    }
    return mesh;
}

Floats inverseBind(double x) { return {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, static_cast<float>(-x), 0, 0, 1}; }

/// A text of the X format: one triangle that all of `weights` hold, bone by bone, each moved aside by a clip.
std::string xModel(const std::vector<double> &weights, const std::string &header = "") {
    const std::string unit = "1.0,0.0,0.0,0.0,0.0,1.0,0.0,0.0,0.0,0.0,1.0,0.0,0.0,0.0,0.0,1.0;;";
    std::string text = "xof 0303txt 0032\n" + header + "Frame Top { FrameTransformMatrix { " + unit + " }\n";
    for (std::size_t b = 0; b < weights.size(); ++b)
        text += "Frame Bone" + std::to_string(b) + " { FrameTransformMatrix { " + unit + " } }\n";
    text += "Frame Body { FrameTransformMatrix { " + unit +
            " }\nMesh { 3; 0;0;0;, 9;0;0;, 0;9;0;; 1; 3;0,1,2;;\n";
    text += "XSkinMeshHeader { 8; 8; " + std::to_string(weights.size()) + "; }\n";
    for (std::size_t b = 0; b < weights.size(); ++b) {
        const std::string w = number(weights[b]);
        text += "SkinWeights { \"Bone" + std::to_string(b) + "\"; 3; 0,1,2; " + w + "," + w + "," + w + "; " +
                unit + " }\n";
    }
    text += "} } }\nAnimationSet Push {\n";
    for (std::size_t b = 0; b < weights.size(); ++b)
        text += "Animation { { Bone" + std::to_string(b) +
                " } AnimationKey { 2; 2; 0;3;0.0,0.0,0.0;;, 100;3;" + number(0.1 * double(b)) + "," +
                number(0.2 * double(b % 3)) + ",0.0;;; } }\n";
    return text + "}\n";
}

/// Bones that are added to a model one by one.
struct Bones {
    GltfBuilder &model;
    std::vector<int> joints;
    Floats binds;

    int add(const std::string &name, double x, int parent) {
        joints.push_back(model.node({{"name", name}, {"translation", {x, 0, 0}}}, parent));
        const Floats bind = inverseBind(x);
        binds.insert(binds.end(), bind.begin(), bind.end());
        return joints.back();
    }
    int skin() const { return model.skin(joints, binds); }
};

/// A node "body" with a row of triangles that follows these two joints.
void addBody(GltfBuilder &model, int first, int second, Floats binds, const Floats &secondBind) {
    binds.insert(binds.end(), secondBind.begin(), secondBind.end());
    model.node({{"name", "body"},
                {"mesh", model.mesh(rowOfTriangles(2, 3))},
                {"skin", model.skin({first, second}, binds)}});
}

class HardSkinsTest : public ConvertTest {
   protected:
    void expectClips(const Made &made, const std::string &fileName, unsigned clips, double bound = kBound) {
        const SourcePose source(folder.path(fileName));
        const std::vector<Clip> found = clipsOf(made.report(), source);
        ASSERT_EQ(found.size(), clips);
        for (const Clip &clip : found) {
            const Deviation deviation =
                compareClip(source, *made.loaded, clip, made.report().scale, spreadFrames(clip, 10), bound,
                            [](KTNODE *root) { return shapeOf(poseWithoutWindow(root)); });
            EXPECT_LT(deviation.largest, bound) << deviation.outliers;
        }
    }

    /// Converts a model with one clip, whose poses have to be the model's.
    void expectSkinsAndClip(const std::string &fileName, const GltfBuilder &model) {
        const Made made = make(fileName, model.text());
        ASSERT_NE(made.root(), nullptr);
        expectGoodSkins(made);
        expectClips(made, fileName, 1);
    }

    /// What holds of every skin that the engine is to draw.
    static void expectGoodSkins(const Made &made) {
        for (KTMESH *mesh : meshesOf(made.root())) {
            if (!mesh->isSkinned()) continue;
            const unsigned influences = mesh->numberOfInfluences;
            EXPECT_LE(mesh->getNumberOfBones(), kMostBones);
            EXPECT_LE(influences, kMostInfluences);
            for (unsigned b = 0; b < mesh->getNumberOfBones(); ++b)
                EXPECT_NE(mesh->bones[b].node, nullptr) << mesh->bones[b].name;
            for (unsigned v = 0; v < mesh->getNumberOfVertices(); ++v) {
                double sum = 0.0;
                for (unsigned k = 0; k < influences; ++k) sum += mesh->influenceWeights[v * influences + k];
                ASSERT_NEAR(sum, 1.0, 1.0 / 65536) << "vertex " << v;
            }
        }
    }
};

TEST_F(HardSkinsTest, ASkinOf150BonesBecomesMeshesOfAHundredAtMost) {
    GltfBuilder model;
    Bones bones{model, {}, {}};
    std::vector<GltfChannel> channels;
    const int top = model.node({{"name", "top"}});
    for (unsigned b = 0; b < 150; ++b) {
        const int bone = bones.add("bone" + std::to_string(b), b, top);
        const float x = static_cast<float>(b), y = static_cast<float>(b % 7);
        channels.push_back({bone, "translation", {0, 1}, {x, 0, 0, x, y, 1}});
    }
    const GltfMesh row = rowOfTriangles(150, 4);
    model.node({{"name", "body"}, {"mesh", model.mesh(row)}, {"skin", bones.skin()}});
    model.clip("wave", channels);

    const Made made = make("many.gltf", model.text());
    ASSERT_NE(made.root(), nullptr);
    std::size_t triangles = 0;
    for (KTMESH *mesh : meshesOf(made.root())) triangles += mesh->getNumberOfFaces();
    EXPECT_EQ(triangles, row.indices.size() / 3);
    EXPECT_GE(meshesOf(made.root()).size(), 2u);
    expectGoodSkins(made);
    expectClips(made, "many.gltf", 1);
}

TEST_F(HardSkinsTest, TheFourLargestOfSixInfluencesAreKept) {
    const std::vector<double> weights = {0.05, 0.3, 0.1, 0.25, 0.1, 0.2};
    const Made made = make("six.x", xModel(weights));
    ASSERT_NE(made.root(), nullptr);
    expectGoodSkins(made);
    EXPECT_TRUE(mentions(made.report(), "influences"));
    for (KTMESH *mesh : meshesOf(made.root())) {
        ASSERT_EQ(mesh->numberOfInfluences, 4u);
        std::map<std::string, double> kept;
        for (unsigned k = 0; k < 4; ++k)
            kept[mesh->bones[mesh->influenceBones[k]].name] += mesh->influenceWeights[k];
        const double sum = 0.3 + 0.25 + 0.2 + 0.1;
        EXPECT_NEAR(kept["Bone1"], 0.3 / sum, 2e-5);
        EXPECT_NEAR(kept["Bone3"], 0.25 / sum, 2e-5);
        EXPECT_NEAR(kept["Bone5"], 0.2 / sum, 2e-5);
        EXPECT_NEAR(kept["Bone2"] + kept["Bone4"], 0.1 / sum, 2e-5);
        EXPECT_EQ(kept.count("Bone0"), 0u);
    }
}

TEST_F(HardSkinsTest, WeightsThatDoNotSumToOneCountByTheirShare) {
    for (double factor : {0.1, 1.5, 3.0}) {
        SCOPED_TRACE(factor);
        const Made made = make("odd.x", xModel({0.2 * factor, 0.3 * factor, 0.5 * factor}));
        ASSERT_NE(made.root(), nullptr);
        expectGoodSkins(made);
        expectClips(made, "odd.x", 1);
    }
}

TEST_F(HardSkinsTest, WeightsThatAreNoNumberOrNegativeDoNotReachTheScene) {
    GltfBuilder model;
    GltfMesh row = rowOfTriangles(3, 2);
    row.weights[0] = std::nanf("");
    row.weights[4] = -1.0f;
    row.weights[8] = INFINITY;
    std::vector<int> joints;
    for (int b = 0; b < 3; ++b) joints.push_back(model.node({{"name", "bone" + std::to_string(b)}}));
    model.node({{"mesh", model.mesh(row)}, {"skin", model.skin(joints)}});
    const Made made = make("weights.gltf", model.text());
    ASSERT_NE(made.root(), nullptr);
    expectGoodSkins(made);
}

TEST_F(HardSkinsTest, VerticesWithoutAnyWeightStayWithTheirNode) {
    GltfBuilder model;
    GltfMesh row = rowOfTriangles(2, 3);
    std::fill(row.weights.begin(), row.weights.begin() + 12, 0.0f);
    const int top = model.node({{"name", "top"}});
    Bones bones{model, {}, {}};
    for (int b = 0; b < 2; ++b) bones.add("bone" + std::to_string(b), b, top);
    model.node({{"name", "body"}, {"mesh", model.mesh(row)}, {"skin", bones.skin()}});
    model.clip("lift", {{bones.joints[1], "translation", {0, 1}, {1, 0, 0, 1, 5, 0}}});
    const Made made = make("loose.gltf", model.text());
    ASSERT_NE(made.root(), nullptr);
    expectGoodSkins(made);
    EXPECT_TRUE(mentions(made.report(), "weight"));
    expectClips(made, "loose.gltf", 1);
}

TEST_F(HardSkinsTest, ABoneThatIsCalledLikeTheFrameOfReferenceMovesItsSkin) {
    GltfBuilder model;
    const int root = model.node({{"name", "HumanoidRoot"}, {"translation", {2, 1, 0}}});
    const int arm = model.node({{"name", "arm"}, {"translation", {1, 0, 0}}}, root);
    Floats binds = inverseBind(2);
    binds[13] = -1.0f;
    addBody(model, root, arm, binds, {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, -3, -1, 0, 1});
    const float half = std::sqrt(0.5f);
    model.clip("walk", {{root, "translation", {0, 1}, {2, 1, 0, 9, 3, 1}},
                        {root, "rotation", {0, 1}, {0, 0, 0, 1, 0, half, 0, half}},
                        {arm, "rotation", {0, 1}, {0, 0, 0, 1, half, 0, 0, half}}});
    expectSkinsAndClip("human.gltf", model);
}

// Importers match bones and nodes by name: of two nodes of one name the first is the bone, in the converter
// too.
TEST_F(HardSkinsTest, OfTwoBonesOfOneNameTheFirstNodeCounts) {
    GltfBuilder model;
    const int top = model.node({{"name", "top"}});
    Bones bones{model, {}, {}};
    const int first = bones.add("bone", 0, top);
    bones.add("bone", 1, top);
    model.node({{"name", "body"}, {"mesh", model.mesh(rowOfTriangles(2, 2))}, {"skin", bones.skin()}});
    model.clip("lift", {{first, "translation", {0, 1}, {0, 0, 0, 0, 3, 0}}});
    expectSkinsAndClip("twins.gltf", model);
}

TEST_F(HardSkinsTest, TwoSkinsThatBindOneSkeletonInDifferentPlacesBothFollowIt) {
    GltfBuilder model;
    const int bone = model.node({{"name", "bone"}, {"translation", {1, 0, 0}}});
    GltfMesh row = rowOfTriangles(1, 3);
    model.node({{"name", "shirt"}, {"mesh", model.mesh(row)}, {"skin", model.skin({bone}, inverseBind(1))}});
    model.node({{"name", "shoes"}, {"mesh", model.mesh(row)}, {"skin", model.skin({bone}, inverseBind(-4))}});
    const float half = std::sqrt(0.5f);
    model.clip("turn", {{bone, "rotation", {0, 1}, {0, 0, 0, 1, 0, 0, half, half}}});
    expectSkinsAndClip("pair.gltf", model);
}

TEST_F(HardSkinsTest, ScaledBonesAboveTurnsKeepTheSkinInPlace) {
    GltfBuilder model;
    const int top = model.node({{"name", "top"}, {"scale", {2.0, 2.0, 2.0}}});
    const int hip = model.node({{"name", "hip"}, {"translation", {1, 0, 0}}}, top);
    const int knee = model.node({{"name", "knee"}, {"translation", {0, -1, 0}}}, hip);
    addBody(model, hip, knee, {0.5f, 0, 0, 0, 0, 0.5f, 0, 0, 0, 0, 0.5f, 0, -1, 0, 0, 1},
            {0.5f, 0, 0, 0, 0, 0.5f, 0, 0, 0, 0, 0.5f, 0, -1, 1, 0, 1});
    const float half = std::sqrt(0.5f);
    model.clip("kick", {{hip, "rotation", {0, 1}, {0, 0, 0, 1, 0, 0, half, half}},
                        {knee, "rotation", {0, 1}, {0, 0, 0, 1, half, 0, 0, half}}});
    expectSkinsAndClip("scaled.gltf", model);
}

TEST_F(HardSkinsTest, ADeepSkeletonIsPosedBeyondTheDepthOfTheMatrixStack) {
    constexpr int kLinks = 60;
    GltfBuilder model;
    std::vector<int> joints;
    Floats binds;
    std::vector<GltfChannel> channels;
    int node = -1;
    for (int i = 0; i < kLinks; ++i) {
        const std::string name = "link" + std::to_string(i);
        node = model.node({{"name", name}, {"translation", {i ? 1.0 : 0.0, 0, 0}}}, node);
        joints.push_back(node);
        const Floats bind = inverseBind(i);
        binds.insert(binds.end(), bind.begin(), bind.end());
        channels.push_back({node, "rotation", {0, 1}, {0, 0, 0, 1, 0, 0, 0.05f, std::sqrt(1 - 0.0025f)}});
    }
    model.node({{"name", "snake"},
                {"mesh", model.mesh(rowOfTriangles(kLinks, 2))},
                {"skin", model.skin(joints, binds)}});
    model.clip("curl", channels);
    expectSkinsAndClip("snake.gltf", model);
}

TEST_F(HardSkinsTest, JoinedSkinsAreSplitAtAHundredBones) {
    constexpr int kSkins = 20, kBonesASkin = 10;
    GltfBuilder model;
    std::vector<GltfChannel> channels;
    const int top = model.node({{"name", "top"}});
    for (int s = 0; s < kSkins; ++s) {
        GltfMesh row = rowOfTriangles(kBonesASkin, 2);
        for (std::size_t k = 2; k < row.positions.size(); k += 3) row.positions[k] += 2.0f * float(s);
        Bones bones{model, {}, {}};
        for (int b = 0; b < kBonesASkin; ++b) {
            const int bone = bones.add("bone" + std::to_string(s) + "." + std::to_string(b), b, top);
            const float x = float(b), y = float(s % 3);
            channels.push_back({bone, "translation", {0, 1}, {x, 0, 0, x, y, 1}});
        }
        model.node({{"name", "part" + std::to_string(s)}, {"mesh", model.mesh(row)}, {"skin", bones.skin()}});
    }
    model.clip("wave", channels);
    const Made made = make("joined.gltf", model.text());
    ASSERT_NE(made.root(), nullptr);
    EXPECT_TRUE(mentions(made.report(), "joined by material"));
    EXPECT_LT(meshesOf(made.root()).size(), std::size_t{kSkins});
    EXPECT_EQ(made.report().triangles, std::uint64_t{kSkins} * kBonesASkin * 2);
    expectGoodSkins(made);
    expectClips(made, "joined.gltf", 1);
}

TEST_F(HardSkinsTest, MoreSkinsThanAFrameHoldsAreJoinedByMaterial) {
    GltfBuilder model;
    const int bone = model.node({{"name", "bone"}});
    for (int i = 0; i < 40; ++i) {
        GltfMesh row = rowOfTriangles(1, 2);
        for (std::size_t k = 0; k < row.positions.size(); k += 3)
            row.positions[k] += 2.0f * static_cast<float>(i);
        model.node(
            {{"name", "part" + std::to_string(i)}, {"mesh", model.mesh(row)}, {"skin", model.skin({bone})}});
    }
    model.clip("lift", {{bone, "translation", {0, 1}, {0, 0, 0, 0, 3, 0}}});
    const Made made = make("parts.gltf", model.text());
    ASSERT_NE(made.root(), nullptr);
    EXPECT_LE(meshesOf(made.root()).size(), KTMESH::maxSkins);
    expectGoodSkins(made);
    expectClips(made, "parts.gltf", 1);
}

}  // namespace
}  // namespace keltra::test
