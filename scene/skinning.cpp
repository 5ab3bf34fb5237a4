// SPDX-License-Identifier: Zlib
#include "scene/skinning.h"

#include <keltra/mesh.h>
#include <keltra/shader.h>

#include "foundation/block.h"
#include "foundation/cold.h"
#include "foundation/fault.h"
#include "math/fixed.h"
#include "math/sparse.h"
#include "scene/bone_finder.h"
#include "scene/skin_kernel.h"

#include <algorithm>

namespace {

constexpr char kReferenceFrame[] = "HumanoidRoot";

// `KTELEMENT::pass` has reported a mesh without a slot. Always false.
[[gnu::noinline]] KELTRA_COLD bool refuseSlot(unsigned int slot) {
    constexpr keltra::FaultCall call = KT_CALL("KTMESH::animate");
    if (slot > KTMESH::maxSkins) return keltra::failRange(call, KT_TEXT("slot"), slot, KTMESH::maxSkins - 1);
    return slot < KTMESH::maxSkins && keltra::failState(call, keltra::kInactive);
}

template <class Kernel>
void skin(const keltra::SkinJob &job, unsigned int boneCount) {
    static typename Kernel::Bone bones[KTMESH::maxBones];
    for (unsigned int b = 0; b < boneCount; ++b) {
        std::int32_t matrix[16];
        keltra::toFixed(KTMESH::skinMatrices[b].m, matrix, 16);
        Kernel::encode(matrix, bones[b]);
    }
    Kernel::run(job, bones, boneCount);
}

void fillShaderBones(unsigned int boneCount) {
    for (unsigned int b = 0; b < boneCount; ++b) {
        const R3XMATRIX &matrix = KTMESH::skinMatrices[b];
        const R3XVECTOR4D turn = matrix.toQuaternionVelto();
        const float quaternion[4] = {turn.x, turn.y, turn.z, turn.w};
        std::copy_n(quaternion, 4, KTMESH::boneQuaternions[b]);
        std::copy_n(matrix.m + 12, 3, KTMESH::boneTranslations[b]);
    }
}

}  // namespace

KELTRA_COLD bool KTMESH::resetBones(KTNODE *root) {
    if (!root) return keltra::failNull(KT_CALL("KTMESH::resetBones"), KT_TEXT("root"));
    keltra::BoneFinder(root).bind(*this);
    return true;
}

// A file may list more bones than a pool slot holds; its influences never address those.
unsigned int KTMESH::countPoolBones() const {
    return bones ? std::min<unsigned int>(numberOfBones, maxBones) : 0;
}

bool KTMESH::usesSkinningShader() const { return KTSHADER::useSkinning() && numberOfInfluences == 4; }

bool KTMESH::animate(unsigned int slot) {
    if (numberOfInfluences == 0) return true;
    if (slot >= maxSkins || !boneMatrices) return refuseSlot(slot);
    const unsigned int boneCount = countPoolBones();
    const R3XMATRIX *pool = boneMatrices + slot * maxBones;
    // The node is looked up once a draw; everything below works on the pool's matrices.
    const R3XMATRIX toReference = getFinalMatrix(kReferenceFrame).inverse();
    // A mesh that stands where its reference frame does needs one product a bone.
    const bool inPlace = keltra::isIdentity(toReference.m);
    for (unsigned int b = 0; b < boneCount; ++b) {
        const bool kept = inPlace && keltra::isKeptByIdentity(pool[b].m);
        skinMatrices[b] = bones[b].inverseBindMatrix * (kept ? pool[b] : pool[b] * toReference);
    }
    if (usesSkinningShader()) {
        fillShaderBones(boneCount);
        return true;
    }
    return skinVertices(boneCount);
}

// Four influences a vertex leave the skinning to a shader where there is one; the arrays are made here then,
// once, for a mesh with another number.
bool keltra::makeSkinnedArrays(KTMESH &mesh) {
    if (mesh.skinnedVertices && mesh.skinnedNormals) return true;
    const unsigned int values = mesh.numberOfVertices * 3u;
    void *positions = newBlock(values * sizeof(std::int32_t));
    void *normals = newBlock(values * sizeof(std::int32_t));
    if (!positions || !normals) {
        releaseBlock(positions);
        releaseBlock(normals);
        return false;
    }
    releaseBlock(mesh.skinnedVertices);
    releaseBlock(mesh.skinnedNormals);
    mesh.skinnedVertices = static_cast<std::int32_t *>(positions);
    mesh.skinnedNormals = static_cast<std::int32_t *>(normals);
    std::fill_n(mesh.skinnedVertices, values, 0);
    std::fill_n(mesh.skinnedNormals, values, 0);
    return true;
}

bool KTMESH::skinVertices(unsigned int boneCount) {
    if (numberOfVertices == 0 || !vertices || !vertexNormals || !influenceBones || !influenceWeights)
        return true;
    if (!keltra::makeSkinnedArrays(*this)) return keltra::failMemory(KT_CALL("KTMESH::animate"));
    const keltra::SkinJob job = {numberOfVertices, numberOfInfluences, vertices,        vertexNormals,
                                 influenceBones,   influenceWeights,   skinnedVertices, skinnedNormals};
#if defined(KELTRA_SKIN_AVX2)
    static const bool widest = keltra::Avx512Skin::isSupported(), wide = keltra::Avx2Skin::isSupported();
    if (widest) {
        skin<keltra::Avx512Skin>(job, boneCount);
        return true;
    }
    if (wide) {
        skin<keltra::Avx2Skin>(job, boneCount);
        return true;
    }
#endif
#if defined(KELTRA_SKIN_ARM)
    skin<keltra::ArmSkin>(job, boneCount);
#else
    skin<keltra::ScalarSkin>(job, boneCount);
#endif
    return true;
}
