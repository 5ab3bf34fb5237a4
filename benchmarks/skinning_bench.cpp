// SPDX-License-Identifier: Zlib
#include <benchmark/benchmark.h>
#include <keltra/mesh.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

#include "math/fixed.h"
#include "scene/skin_kernel.h"
#include "tests/support/gl_recorder.h"

namespace {

constexpr std::size_t kVertices = 5000, kInfluences = 4, kBones = 50;

// A character of everyday size: vertices within 4 units, four weights that add up to 1.
struct Character {
    std::vector<float> positions, normals, weights;
    std::vector<std::uint8_t> bones;
    std::vector<R3XMATRIX> matrices;

    Character() : matrices(kBones) {
        std::mt19937 random(1);
        const auto any = [&random](float reach) {
            return std::uniform_real_distribution<float>(-reach, reach)(random);
        };
        for (std::size_t i = 0; i < 3 * kVertices; ++i)
            positions.push_back(any(4.0f)), normals.push_back(any(1.0f));
        for (std::size_t v = 0; v < kVertices; ++v) {
            float w[kInfluences], sum = 0.0f;
            for (float &weight : w) sum += weight = 0.01f + std::abs(any(1.0f));
            for (float weight : w) weights.push_back(weight / sum);
            for (std::size_t k = 0; k < kInfluences; ++k)
                bones.push_back(static_cast<std::uint8_t>(random() % kBones));
        }
        for (R3XMATRIX &matrix : matrices) {
            matrix.setRotation(any(180.0f), 0.6f, 0.0f, 0.8f);
            matrix.setTranslation(any(3.0f), any(3.0f), any(3.0f));
        }
    }
};

// The same work in floats, with the same rearrangement: one vertex at a time, sums in registers, written
// once.
void skinByFloats(const Character &in, float *positions, float *normals) {
    const std::uint8_t *bone = in.bones.data();
    const float *weight = in.weights.data();
    for (std::size_t v = 0; v < kVertices; ++v) {
        const float x = in.positions[3 * v], y = in.positions[3 * v + 1], z = in.positions[3 * v + 2];
        const float nx = in.normals[3 * v], ny = in.normals[3 * v + 1], nz = in.normals[3 * v + 2];
        float p[3] = {}, n[3] = {};
        for (std::size_t k = 0; k < kInfluences; ++k, ++bone, ++weight) {
            const float w = *weight;
            if (w <= 0.0f) continue;
            const float *m = in.matrices[*bone].m;
            for (int i = 0; i < 3; ++i) {
                p[i] += w * (m[i] * x + m[4 + i] * y + m[8 + i] * z + m[12 + i]);
                n[i] += w * (m[i] * nx + m[4 + i] * ny + m[8 + i] * nz);
            }
        }
        std::copy_n(p, 3, positions + 3 * v);
        std::copy_n(n, 3, normals + 3 * v);
    }
}

void reportVertices(benchmark::State &state) {
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kVertices));
    state.counters["time_per_vertex"] = benchmark::Counter(
        kVertices, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void plainFloatSkinning(benchmark::State &state) {
    const Character character;
    std::vector<float> positions(3 * kVertices), normals(3 * kVertices);
    for (auto _ : state) {
        skinByFloats(character, positions.data(), normals.data());
        benchmark::ClobberMemory();
    }
    reportVertices(state);
}
BENCHMARK(plainFloatSkinning);

struct FixedCharacter {
    Character floats;
    std::vector<std::int32_t> positions, normals, skinnedPositions, skinnedNormals;
    keltra::SkinJob job;

    FixedCharacter()
        : positions(3 * kVertices),
          normals(3 * kVertices),
          skinnedPositions(3 * kVertices),
          skinnedNormals(3 * kVertices) {
        keltra::toFixed(floats.positions.data(), positions.data(), positions.size());
        keltra::toFixed(floats.normals.data(), normals.data(), normals.size());
        job = {kVertices,           kInfluences,           positions.data(),        normals.data(),
               floats.bones.data(), floats.weights.data(), skinnedPositions.data(), skinnedNormals.data()};
    }
};

bool isNearFloats(const Character &character, const std::vector<std::int32_t> &skinned) {
    std::vector<float> positions(3 * kVertices), normals(3 * kVertices);
    skinByFloats(character, positions.data(), normals.data());
    for (std::size_t i = 0; i < positions.size(); ++i)
        if (std::abs(static_cast<float>(skinned[i]) / 65536.0f - positions[i]) > 0.001f) return false;
    return true;
}

template <class Kernel>
void kernelSkinning(benchmark::State &state) {
    FixedCharacter character;
    std::vector<typename Kernel::Bone> bones(kBones);
    const auto skin = [&] {
        for (std::size_t b = 0; b < kBones; ++b) {
            std::int32_t matrix[16];
            keltra::toFixed(character.floats.matrices[b].m, matrix, 16);
            Kernel::encode(matrix, bones[b]);
        }
        Kernel::run(character.job, bones.data(), kBones);
    };
    skin();
    if (!isNearFloats(character.floats, character.skinnedPositions))
        return state.SkipWithError("the skin is wrong");
    for (auto _ : state) {
        skin();
        benchmark::ClobberMemory();
    }
    reportVertices(state);
}

void scalarSkinning(benchmark::State &state) { kernelSkinning<keltra::ScalarSkin>(state); }
BENCHMARK(scalarSkinning);

#if defined(KELTRA_SKIN_AVX2)
void wideSkinning(benchmark::State &state) {
    if (!keltra::Avx2Skin::isSupported()) return state.SkipWithError("no AVX2");
    kernelSkinning<keltra::Avx2Skin>(state);
}
BENCHMARK(wideSkinning);

void widestSkinning(benchmark::State &state) {
    if (!keltra::Avx512Skin::isSupported()) return state.SkipWithError("no AVX-512");
    kernelSkinning<keltra::Avx512Skin>(state);
}
BENCHMARK(widestSkinning);
#endif

// A whole KTMESH::animate, with the reference frame, the bones' products and the conversions.
class MeshOfArrays : public KTMESH {
   public:
    explicit MeshOfArrays(FixedCharacter &character) : boneRecords(kBones) {
        for (std::size_t b = 0; b < kBones; ++b) {
            boneRecords[b].node = nullptr;
            boneMatrices[b] = character.floats.matrices[b];
        }
        numberOfVertices = kVertices;
        numberOfInfluences = kInfluences;
        numberOfBones = kBones;
        vertices = character.positions.data();
        vertexNormals = character.normals.data();
        influenceBones = character.floats.bones.data();
        influenceWeights = character.floats.weights.data();
        skinnedVertices = character.skinnedPositions.data();
        skinnedNormals = character.skinnedNormals.data();
        bones = boneRecords.data();
    }
    // The arrays are the character's own.
    ~MeshOfArrays() override {
        influenceBones = nullptr;
        influenceWeights = nullptr;
        skinnedVertices = skinnedNormals = nullptr;
        bones = nullptr;
    }

   private:
    std::vector<KTBONE> boneRecords;
};

void animate(benchmark::State &state) {
    const keltra::test::GlRecorder::Stub stub;
    const keltra::test::GlRecorder::Pause pause;
    KTMESH::init();
    {
        FixedCharacter character;
        MeshOfArrays mesh(character);
        if (!mesh.animate(0) || !isNearFloats(character.floats, character.skinnedPositions))
            state.SkipWithError("the skin is wrong");
        for (auto _ : state) {
            mesh.animate(0);
            benchmark::ClobberMemory();
        }
        reportVertices(state);
    }
    KTMESH::free();
}
BENCHMARK(animate);

}  // namespace
