// SPDX-License-Identifier: Zlib
#include <keltra/mesh.h>

#include <gtest/gtest.h>
#include <keltra/opengl.h>
#include <keltra/shader.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

#include "math/fixed.h"
#include "scene/skin_kernel.h"
#include "tests/scene/scene_parts.h"
#include "tests/support/allocations.h"

namespace keltra::test {
namespace {

struct Skinned {
    std::vector<std::int32_t> positions, normals;
};

std::int32_t wrap(std::int64_t value) { return static_cast<std::int32_t>(static_cast<std::uint32_t>(value)); }

// (m0 x + m4 y + m8 z) >> 16, exactly: upper and lower parts are summed apart, so that no sum overflows.
std::int32_t turned(const std::int32_t *m, const std::int32_t *v) {
    std::int64_t upper = 0, lower = 0;
    for (int c = 0; c < 3; ++c) {
        const std::int64_t product = std::int64_t{m[4 * c]} * v[c];
        upper += product >> 16;
        lower += product & 0xffff;
    }
    return wrap(upper + (lower >> 16));
}

// The rule, step by step, without optimisation.
Skinned skinSlowly(const SkinJob &job, const std::vector<std::int32_t> &matrices) {
    Skinned result{std::vector<std::int32_t>(job.vertices * 3), std::vector<std::int32_t>(job.vertices * 3)};
    for (std::size_t v = 0; v < job.vertices; ++v) {
        for (std::size_t k = 0; k < job.influences; ++k) {
            const std::int32_t w = toFixed(job.weights[v * job.influences + k]);
            const std::size_t bone = job.bones[v * job.influences + k];
            if (w <= 0 || bone >= matrices.size() / 16) continue;
            const std::int32_t *B = &matrices[16 * bone];
            for (int i = 0; i < 3; ++i) {
                const std::int32_t p = wrap(std::int64_t{turned(B + i, &job.positions[3 * v])} + B[12 + i]);
                const std::int32_t n = turned(B + i, &job.normals[3 * v]);
                std::int32_t &skinnedPosition = result.positions[3 * v + i];
                std::int32_t &skinnedNormal = result.normals[3 * v + i];
                skinnedPosition = wrap(std::int64_t{skinnedPosition} + (std::int64_t{w} * p >> 16));
                skinnedNormal = wrap(std::int64_t{skinnedNormal} + (std::int64_t{w} * n >> 16));
            }
        }
    }
    return result;
}

struct Input {
    std::vector<std::int32_t> positions, normals, matrices;
    std::vector<std::uint8_t> bones;
    std::vector<float> weights;
    std::size_t influences = 0;

    SkinJob job(Skinned &result) const {
        result.positions.assign(positions.size(), 0x55555555);
        result.normals.assign(normals.size(), 0x55555555);
        return {positions.size() / 3, influences,     positions.data(),        normals.data(),
                bones.data(),         weights.data(), result.positions.data(), result.normals.data()};
    }
};

// Any 32-bit values, the extremes often among them, and weights of every sort.
Input wildInput(unsigned seed, std::size_t vertices, std::size_t influences, std::size_t bones) {
    std::mt19937 random(seed);
    const auto any = [&random] {
        const std::int32_t extremes[] = {INT32_MIN, INT32_MAX, -1, 0, 1, 65536, -65536};
        return random() % 4 ? static_cast<std::int32_t>(random()) : extremes[random() % 7];
    };
    const auto anyWeight = [&random] {
        const float special[] = {
            0.0f, -0.0f, 1.0f, -1.0f, 1e-9f, 1e9f, std::numeric_limits<float>::quiet_NaN(), 32767.9f};
        return random() % 4 ? static_cast<float>(random() % 2000) * 0.001f - 0.5f : special[random() % 8];
    };
    Input input;
    input.influences = influences;
    for (std::size_t i = 0; i < vertices * 3; ++i)
        input.positions.push_back(any()), input.normals.push_back(any());
    for (std::size_t i = 0; i < bones * 16; ++i) input.matrices.push_back(any());
    for (std::size_t i = 0; i < vertices * influences; ++i) {
        input.bones.push_back(static_cast<std::uint8_t>(random() % (bones + 2)));
        input.weights.push_back(anyWeight());
    }
    // Every third vertex has one whole influence.
    for (std::size_t v = 0; v < vertices; v += 3)
        for (std::size_t k = 0; k < influences; ++k) input.weights[v * influences + k] = k == 0 ? 1.0f : 0.0f;
    return input;
}

template <class Kernel>
void expectSameBits(const Input &input) {
    Skinned result;
    const SkinJob job = input.job(result);
    const std::size_t boneCount = input.matrices.size() / 16;
    std::vector<typename Kernel::Bone> bones(boneCount);
    for (std::size_t b = 0; b < boneCount; ++b) Kernel::encode(&input.matrices[16 * b], bones[b]);
    Kernel::run(job, bones.data(), boneCount);
    const Skinned expected = skinSlowly(job, input.matrices);
    EXPECT_EQ(result.positions, expected.positions);
    EXPECT_EQ(result.normals, expected.normals);
}

template <class Kernel>
void expectTheRule() {
    for (unsigned seed = 1; seed <= 5; ++seed)
        for (std::size_t influences : {1u, 3u, 4u, 7u, 8u, 9u, 20u})
            expectSameBits<Kernel>(wildInput(seed, 200, influences, 20));
}

TEST(SkinKernelTest, ScalarKernelFollowsTheRuleForAnyInput) { expectTheRule<ScalarSkin>(); }

#if defined(KELTRA_SKIN_AVX2)
TEST(SkinKernelTest, KnowsTheProcessorAsTheCompilerDoes) {
    EXPECT_EQ(Avx2Skin::isSupported(), __builtin_cpu_supports("avx2") != 0);
    EXPECT_EQ(Avx512Skin::isSupported(), __builtin_cpu_supports("avx512f") != 0);
}
#endif

TEST(SkinKernelTest, WideKernelFollowsTheRuleForAnyInput) {
#if defined(KELTRA_SKIN_AVX2)
    if (!Avx2Skin::isSupported()) GTEST_SKIP() << "this processor has no AVX2";
    expectTheRule<Avx2Skin>();
#else
    GTEST_SKIP() << "not built for this processor";
#endif
}

TEST(SkinKernelTest, WidestKernelFollowsTheRuleForAnyInput) {
#if defined(KELTRA_SKIN_AVX2)
    if (!Avx512Skin::isSupported()) GTEST_SKIP() << "this processor has no AVX-512";
    expectTheRule<Avx512Skin>();
#else
    GTEST_SKIP() << "not built for this processor";
#endif
}

TEST(SkinKernelTest, ArmKernelFollowsTheRuleForAnyInput) {
#if defined(KELTRA_SKIN_ARM)
    expectTheRule<ArmSkin>();
#else
    GTEST_SKIP() << "not built for this processor";
#endif
}

class SkinningTest : public SceneTest {
   protected:
    SkinningTest() : random(1) {}

    float uniform(float low, float high) { return std::uniform_real_distribution<float>(low, high)(random); }
    R3XVECTOR3D anyVector(float reach) {
        return {uniform(-reach, reach), uniform(-reach, reach), uniform(-reach, reach)};
    }

    /// A tree "HumanoidRoot" with a chain of bones and a skin of random influences, everything moved and
    /// turned.
    KTMESH *loadCharacter(unsigned seed, unsigned vertices, unsigned influences, unsigned boneCount) {
        random.seed(seed);
        std::vector<std::string> names;
        formats::Node chain;
        for (unsigned b = boneCount; b-- > 0;) {
            names.insert(names.begin(), "bone" + std::to_string(b));
            std::vector<formats::Node> below;
            if (b + 1 < boneCount) below.push_back(chain);
            const R3XVECTOR3D place = anyVector(0.5f), turn = anyVector(40.0f);
            chain = boneNode(names.front(), {place.x, place.y, place.z}, below);
            chain.mesh.rotation = {turn.x, turn.y, turn.z};
        }
        formats::Node skin = skinNode("skin", names, vertices);
        skin.mesh.influences = static_cast<std::uint16_t>(influences);
        skin.mesh.influenceBones.resize(vertices * influences);
        skin.mesh.influenceWeights.resize(vertices * influences);
        for (std::uint8_t &bone : skin.mesh.influenceBones)
            bone = static_cast<std::uint8_t>(random() % boneCount);
        for (float &weight : skin.mesh.influenceWeights) weight = uniform(-0.1f, 0.6f);
        for (formats::Vec3 &vertex : skin.mesh.vertices)
            vertex = {uniform(-50, 50), uniform(-50, 50), uniform(-50, 50)};
        KTNODE *root = loadNode(folder, plainNode("HumanoidRoot", {chain, skin}));
        KTMESH *mesh = root ? static_cast<KTMESH *>(root->getChild(1)) : nullptr;
        if (mesh) mesh->setPosition(anyVector(3.0f)), mesh->setRotation(anyVector(90.0f));
        return mesh;
    }

    void fillPool(unsigned slot) {
        for (unsigned b = 0; b < KTMESH::maxBones; ++b) {
            R3XMATRIX &matrix = KTMESH::boneMatrices[slot * KTMESH::maxBones + b];
            matrix.setRotation(uniform(-180, 180), 0.6f, 0.0f, 0.8f);
            matrix.setTranslation(anyVector(5.0f));
        }
    }

    /// The mesh's skin as the rule gives it, from its present bones and the pool.
    static Skinned expectedSkin(KTMESH &mesh, unsigned slot) {
        const R3XMATRIX R = mesh.getFinalMatrix("HumanoidRoot").inverse();
        std::vector<std::int32_t> matrices;
        for (unsigned b = 0; b < std::min(mesh.getNumberOfBones(), KTMESH::maxBones); ++b) {
            const R3XMATRIX P = KTMESH::boneMatrices[slot * KTMESH::maxBones + b];
            const R3XMATRIX S = mesh.bones[b].inverseBindMatrix * (P * R);
            for (float element : S.m) matrices.push_back(toFixed(element));
        }
        return skinSlowly({mesh.numberOfVertices, mesh.numberOfInfluences, mesh.vertices, mesh.vertexNormals,
                           mesh.influenceBones, mesh.influenceWeights, nullptr, nullptr},
                          matrices);
    }

    static Skinned actualSkin(const KTMESH &mesh) {
        const std::size_t count = mesh.numberOfVertices * 3u;
        return {{mesh.skinnedVertices, mesh.skinnedVertices + count},
                {mesh.skinnedNormals, mesh.skinnedNormals + count}};
    }

    static void expectRule(KTMESH &mesh, unsigned slot) {
        const Skinned expected = expectedSkin(mesh, slot);
        ASSERT_TRUE(mesh.animate(slot));
        const Skinned actual = actualSkin(mesh);
        EXPECT_EQ(actual.positions, expected.positions);
        EXPECT_EQ(actual.normals, expected.normals);
    }

    std::mt19937 random;
};

TEST_F(SkinningTest, RandomCharactersAreSkinnedBitForBit) {
    for (unsigned seed = 1; seed <= 5; ++seed) {
        KTMESH *mesh = loadCharacter(seed, 300, 1 + seed, 30);
        ASSERT_NE(mesh, nullptr);
        fillPool(seed);
        expectRule(*mesh, seed);
    }
}

TEST_F(SkinningTest, EverySlotHasItsOwnBones) {
    KTMESH *mesh = loadCharacter(1, 20, 4, 10);
    ASSERT_NE(mesh, nullptr);
    for (unsigned slot : {0u, 15u}) {
        fillPool(slot);
        expectRule(*mesh, slot);
    }
}

TEST_F(SkinningTest, ChangedWeightsCountAtOnce) {
    KTMESH *mesh = loadCharacter(2, 20, 2, 5);
    ASSERT_NE(mesh, nullptr);
    fillPool(0);
    expectRule(*mesh, 0);
    mesh->influenceWeights[0] = 0.75f;
    mesh->influenceWeights[5] = -1.0f;
    expectRule(*mesh, 0);
}

TEST_F(SkinningTest, OnlyAHundredBonesTakePart) {
    KTMESH *mesh = loadCharacter(3, 20, 2, 100);
    ASSERT_NE(mesh, nullptr);
    fillPool(15);
    expectRule(*mesh, 15);
    // Beyond what a file may hold: such influences count for nothing, and nothing is read past the pool.
    mesh->influenceBones[0] = 100;
    mesh->influenceBones[1] = 255;
    ASSERT_TRUE(mesh->animate(15));
    EXPECT_EQ(mesh->skinnedVertices[0], 0);
    EXPECT_EQ(mesh->skinnedNormals[2], 0);
}

TEST_F(SkinningTest, AFileMayListMoreBonesThanInfluencesCanAddress) {
    formats::Node skin = skinNode("skin", {"a", "b"});
    for (int i = 0; i < 118; ++i) skin.mesh.boneNames.push_back("unused");
    KTMESH *mesh = loadMesh(folder, skin);
    ASSERT_NE(mesh, nullptr);
    EXPECT_EQ(mesh->getNumberOfBones(), 120u);
    expectRule(*mesh, 15);
}

TEST_F(SkinningTest, ARigidMeshNeedsNoSlot) {
    KTMESH mesh;
    EXPECT_TRUE(mesh.animate(16));
    KTMESH::free();
    EXPECT_TRUE(mesh.animate(0));
}

TEST_F(SkinningTest, Slot16AndBeyondFail) {
    KTMESH *mesh = loadMesh(folder, skinNode("skin", {"a"}));
    ASSERT_NE(mesh, nullptr);
    EXPECT_TRUE(mesh->animate(15));
    EXPECT_FALSE(mesh->animate(16));
    EXPECT_FALSE(mesh->animate(17));
    EXPECT_FALSE(mesh->animate(~0u));
}

TEST_F(SkinningTest, FailsWithoutThePool) {
    KTMESH *mesh = loadMesh(folder, skinNode("skin", {"a"}));
    ASSERT_NE(mesh, nullptr);
    KTMESH::free();
    EXPECT_FALSE(mesh->animate(0));
}

TEST_F(SkinningTest, TwoHalvesOfIdentityKeepThePositionUpToTheLastBit) {
    KTMESH *mesh = loadMesh(folder, skinNode("skin", {"a", "b"}));
    ASSERT_NE(mesh, nullptr);
    mesh->vertices[0] = 65537;
    mesh->vertices[1] = -65537;
    mesh->vertices[2] = 131072;
    ASSERT_TRUE(mesh->animate(0));
    // Each half of an odd value loses the same way, downwards.
    EXPECT_EQ(mesh->skinnedVertices[0], 65536);
    EXPECT_EQ(mesh->skinnedVertices[1], -65538);
    EXPECT_EQ(mesh->skinnedVertices[2], 131072);
}

TEST_F(SkinningTest, NormalsAreTurnedButNeitherMovedNorNormalised) {
    KTMESH *mesh = loadMesh(folder, skinNode("skin", {"a"}));
    ASSERT_NE(mesh, nullptr);
    KTMESH::boneMatrices[0].setRotation(90.0f, 0.0f, 0.0f, 1.0f);
    KTMESH::boneMatrices[0].setTranslation(7.0f, 8.0f, 9.0f);
    mesh->vertexNormals[0] = 3 * 65536;
    mesh->vertexNormals[1] = mesh->vertexNormals[2] = 0;
    ASSERT_TRUE(mesh->animate(0));
    EXPECT_NEAR(mesh->skinnedNormals[0], 0, 4);
    EXPECT_NEAR(mesh->skinnedNormals[1], 3 * 65536, 4);
    EXPECT_EQ(mesh->skinnedNormals[2], 0);
}

TEST_F(SkinningTest, TakesTheReferenceFrameOnceAndAllocatesNothing) {
    KTMESH *mesh = loadCharacter(4, 50, 4, 20);
    ASSERT_NE(mesh, nullptr);
    ASSERT_TRUE(mesh->animate(0));
    GlRecorder::clear();
    ASSERT_TRUE(mesh->animate(0));
    EXPECT_EQ(GlRecorder::count("glPushMatrix"), 1);
    EXPECT_EQ(GlRecorder::count("glPopMatrix"), 1);
    const GlRecorder::Pause pause;
    Allocations::startCounting();
    mesh->animate(0);
    EXPECT_EQ(Allocations::stopCounting(), 0);
}

TEST_F(SkinningTest, ResetBonesTakesThePoseRelativeToTheReferenceFrame) {
    KTNODE *root = loadNode(
        folder, plainNode("world", {plainNode("HumanoidRoot", {boneNode("hip", {1, 2, 3}),
                                                               skinNode("skin", {"hip", "lost"})})}));
    ASSERT_NE(root, nullptr);
    root->setPosition(100.0f, 0.0f, 0.0f);
    root->getChild(0)->setPosition(0.0f, 10.0f, 0.0f);
    KTMESH *mesh = static_cast<KTMESH *>(root->findByNameInHierarchy("skin"));
    ASSERT_TRUE(mesh->resetBones(root));
    EXPECT_EQ(mesh->bones[0].node, root->findByNameInHierarchy("hip"));
    const R3XVECTOR3D back = mesh->bones[0].inverseBindMatrix.getTranslation();
    EXPECT_EQ(back, R3XVECTOR3D(-1.0f, -12.0f, -3.0f))
        << "the root's own transform counts, the world's does not";
    // The missing bone.
    EXPECT_EQ(mesh->bones[1].node, nullptr);
    for (int k = 0; k < 16; ++k) EXPECT_EQ(mesh->bones[1].inverseBindMatrix.m[k], k % 5 == 0 ? 1.0f : 0.0f);
}

TEST_F(SkinningTest, ResetBonesForgetsABoneThatIsGone) {
    KTNODE *root =
        loadNode(folder, plainNode("HumanoidRoot", {boneNode("hip", {1, 2, 3}), skinNode("skin", {"hip"})}));
    ASSERT_NE(root, nullptr);
    KTMESH *mesh = static_cast<KTMESH *>(root->getChild(1));
    ASSERT_NE(mesh->bones[0].node, nullptr);
    delete root->getChild(0);
    ASSERT_TRUE(mesh->resetBones(root));
    EXPECT_EQ(mesh->bones[0].node, nullptr);
    EXPECT_EQ(mesh->bones[0].inverseBindMatrix.getTranslation(), R3XVECTOR3D(0, 0, 0));
}

TEST_F(SkinningTest, ResetBonesNeedsARootAndOnlyASkinHasBones) {
    KTMESH rigid;
    KTNODE root;
    EXPECT_FALSE(rigid.resetBones(nullptr));
    EXPECT_TRUE(rigid.resetBones(&root));
}

class ShaderSkinningTest : public SkinningTest {
   protected:
    ShaderSkinningTest() { KTSHADER::skinningFlag = true; }
    ~ShaderSkinningTest() override { KTSHADER::skinningFlag = false; }
};

TEST_F(ShaderSkinningTest, FourInfluencesAreLeftToTheShader) {
    KTMESH *mesh = loadCharacter(1, 10, 4, 6);
    ASSERT_NE(mesh, nullptr);
    EXPECT_EQ(mesh->skinnedVertices, nullptr);
    fillPool(0);
    ASSERT_TRUE(mesh->animate(0));
    EXPECT_EQ(mesh->skinnedVertices, nullptr);
    const R3XMATRIX R = mesh->getFinalMatrix("HumanoidRoot").inverse();
    for (unsigned b = 0; b < 6; ++b) {
        const R3XMATRIX S = mesh->bones[b].inverseBindMatrix * (KTMESH::boneMatrices[b] * R);
        const R3XVECTOR4D turn = S.toQuaternionVelto();
        EXPECT_EQ(R3XVECTOR4D(KTMESH::boneQuaternions[b]), turn);
        EXPECT_EQ(R3XVECTOR3D(KTMESH::boneTranslations[b]), S.getTranslation());
    }
}

TEST_F(ShaderSkinningTest, OtherNumbersOfInfluencesAreSkinnedHere) {
    KTMESH *mesh = loadCharacter(1, 10, 3, 6);
    ASSERT_NE(mesh, nullptr);
    EXPECT_EQ(mesh->skinnedVertices, nullptr) << "made when first needed, where there is a skinning shader";
    fillPool(0);
    expectRule(*mesh, 0);
}

}  // namespace
}  // namespace keltra::test
