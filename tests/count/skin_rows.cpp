// SPDX-License-Identifier: Zlib
#include <keltra/keltra.h>

#include <cstdint>
#include <vector>

#include "tests/count/region.h"

namespace {

constexpr unsigned int kBones = 40, kFewBones = 4, kVertices = 4000;

// The arrays are the object's own; the base class releases what it made itself.
class Skin : public KTMESH {
   public:
    Skin(unsigned int vertexCount, unsigned int influences, unsigned int boneCount)
        : positions(3 * vertexCount),
          normals(3 * vertexCount, 40000),
          skinned(6 * vertexCount),
          indices(vertexCount * influences),
          weights(vertexCount * influences, 1.0f / static_cast<float>(influences)),
          records(boneCount) {
        for (unsigned int i = 0; i < positions.size(); ++i)
            positions[i] = static_cast<std::int32_t>(i * 2654435761u >> 13) - 262144;
        for (unsigned int i = 0; i < indices.size(); ++i)
            indices[i] = static_cast<std::uint8_t>(i % boneCount);
        for (unsigned int b = 0; b < boneCount; ++b) {
            records[b].node = nullptr;
            boneMatrices[b].setRotation(static_cast<float>(7 * b), 0.6f, 0.0f, 0.8f);
            boneMatrices[b].setTranslation(1.0f, static_cast<float>(b) * 0.3f, -0.7f);
            records[b].inverseBindMatrix = boneMatrices[b].inverse();
        }
        numberOfVertices = static_cast<std::uint16_t>(vertexCount);
        numberOfInfluences = static_cast<std::uint16_t>(influences);
        numberOfBones = static_cast<std::uint16_t>(boneCount);
        vertices = positions.data();
        vertexNormals = normals.data();
        influenceBones = indices.data();
        influenceWeights = weights.data();
        skinnedVertices = skinned.data();
        skinnedNormals = skinned.data() + 3 * vertexCount;
        bones = records.data();
    }
    ~Skin() override {
        influenceBones = nullptr;
        influenceWeights = nullptr;
        skinnedVertices = skinnedNormals = nullptr;
        bones = nullptr;
    }

    // The matrices undo each other: vertices stay where they are, but for what is truncated.
    bool isInPlace() const {
        for (unsigned int i = 0; i < positions.size(); ++i) {
            const std::int32_t difference = skinned[i] - positions[i];
            if (difference > 64 || difference < -64) return false;
        }
        return true;
    }

   private:
    std::vector<std::int32_t> positions, normals, skinned;
    std::vector<std::uint8_t> indices;
    std::vector<float> weights;
    std::vector<KTBONE> records;
};

void countVertices(const char *row, unsigned int influences) {
    Skin skin(kVertices, influences, kFewBones);
    {
        const count::Region region(row, kVertices);
        skin.animate(0);
    }
    count::require(skin.isInPlace(), row);
}

}  // namespace

// The bones' share in the rows of vertices is small: 4 bones, 4,000 vertices.
void count::countSkins() {
    {
        Skin skin(1, 1, kBones);
        const Region region("skin, a bone of 40", kBones);
        skin.animate(0);
    }
    countVertices("skin, a vertex with 2 influences", 2);
    countVertices("skin, a vertex with 4 influences", 4);
}
