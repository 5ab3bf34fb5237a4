// SPDX-License-Identifier: Zlib
#include "scene/mesh_build.h"

#include <keltra/material.h>
#include <keltra/mesh.h>
#include <keltra/shader.h>

#include "formats/limits.h"
#include "formats/scene_faults.h"
#include "formats/trusted_record.h"
#include "foundation/block.h"
#include "foundation/cold.h"
#include "math/fixed.h"
#include "scene/skinning.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace {

void convertToFixed(const unsigned char *bytes, std::int32_t *fixed, std::size_t count) {
#if defined(KELTRA_SOFT_ARM)
    const unsigned int fours = static_cast<unsigned int>(count / 4);
    if (fours > 0) keltraBytesToFixed(bytes, fixed, fours);
    bytes += fours * 4 * sizeof(float);
    fixed += fours * 4;
    count %= 4;
#endif
    float values[64];
    while (count > 0) {
        const std::size_t some = std::min<std::size_t>(count, 64);
        std::memcpy(values, bytes, some * sizeof(float));
        keltra::toFixed(values, fixed, some);
        bytes += some * sizeof(float);
        fixed += some;
        count -= some;
    }
}

template <class T>
T *copyToBlock(const unsigned char *bytes, std::size_t count) {
    T *block = static_cast<T *>(keltra::newBlock(count * sizeof(T)));
    if (block) std::memcpy(block, bytes, count * sizeof(T));
    return block;
}

// Offsets of the arrays in a mesh's data block, one behind the other from the vertices on. The face normals
// are floats and start at a multiple of four.
struct MeshLayout {
    std::size_t normals, uvs, faces, faceNormals, end;

    explicit MeshLayout(const keltra::MeshRecord &record) {
        normals = record.vertexCount * keltra::kVectorSize;
        uvs = 2 * normals;
        faces = uvs + record.uvCount * keltra::kUVSize;
        faceNormals = (faces + record.faceCount * keltra::kFaceSize + 3) & ~std::size_t{3};
        end = faceNormals + record.faceCount * keltra::kVectorSize;
    }
};

[[gnu::noinline]] KELTRA_COLD void warnOfMaterial(const keltra::MeshRecord &record) {
    keltra::NearestName nearest(record.material);
    KTMATERIAL *known = keltra::mayCompareNames() ? KTMATERIAL::getFirst() : nullptr;
    for (; known; known = known->getNext()) nearest.offer(known->getName());
    keltra::warnFault(KT_CALL("KTMESH::load"), keltra::unknownMaterial(record.name, nearest));
}

bool buildGeometry(KTMESH &mesh, const keltra::MeshRecord &record) {
    const MeshLayout layout(record);
    if (layout.end == 0) return true;
    char *block = static_cast<char *>(keltra::newBlock(layout.end));
    if (!block) return false;
    mesh.dataBlock = block;
    mesh.numberOfVertices = static_cast<std::uint16_t>(record.vertexCount);
    mesh.numberOfUVs = static_cast<std::uint16_t>(record.uvCount);
    mesh.numberOfFaces = static_cast<std::uint16_t>(record.faceCount);
    if (record.vertexCount) {
        mesh.vertices = reinterpret_cast<std::int32_t *>(block);
        mesh.vertexNormals = reinterpret_cast<std::int32_t *>(block + layout.normals);
        convertToFixed(record.vertices, mesh.vertices, record.vertexCount * 3);
        convertToFixed(record.normals, mesh.vertexNormals, record.vertexCount * 3);
    }
    if (record.uvCount) {
        // Deliberate: only one pair for each vertex is converted; no face uses the others, and applications
        // find them as the file has them.
        mesh.uvs = reinterpret_cast<std::int32_t *>(block + layout.uvs);
        std::memcpy(mesh.uvs, record.uvs, record.uvCount * keltra::kUVSize);
        convertToFixed(record.uvs, mesh.uvs, record.vertexCount * 2);
    }
    if (record.faceCount) {
        mesh.faces = reinterpret_cast<std::uint16_t *>(block + layout.faces);
        mesh.faceNormals = reinterpret_cast<float *>(block + layout.faceNormals);
        std::memcpy(mesh.faces, record.faces, record.faceCount * keltra::kFaceSize);
        std::memcpy(mesh.faceNormals, record.faceNormals, record.faceCount * keltra::kVectorSize);
    }
    return true;
}

// Influences that do not count may name any bone; a shader's arrays end with the last one.
[[gnu::noinline]] void convertBones(const KTMESH &mesh, std::size_t influences) {
    float numbers[keltra::kMaxSkinBones];
    for (unsigned int bone = 0; bone < keltra::kMaxSkinBones; ++bone)
        numbers[bone] = static_cast<float>(bone);
    for (std::size_t i = 0; i < influences; ++i) {
        const unsigned int bone = mesh.influenceBones[i];
        mesh.influenceBonesFloat[i] = bone < keltra::kMaxSkinBones ? numbers[bone] : 0.0f;
    }
}

bool buildSkin(KTMESH &mesh, const keltra::MeshRecord &record) {
    if (record.influenceCount == 0) return true;
    const std::size_t influences = std::size_t(record.vertexCount) * record.influenceCount;
    void *boneBlock = keltra::newBlock(record.boneCount * sizeof(KTBONE));
    if (!boneBlock) return false;
    mesh.bones = static_cast<KTBONE *>(boneBlock);
    mesh.influenceBones = copyToBlock<std::uint8_t>(record.influenceBones, influences);
    mesh.influenceWeights = copyToBlock<float>(record.influenceWeights, influences);
    mesh.influenceBonesFloat = static_cast<float *>(keltra::newBlock(influences * sizeof(float)));
    if (!mesh.influenceBones || !mesh.influenceWeights || !mesh.influenceBonesFloat) return false;
    convertBones(mesh, influences);
    const char *name = record.boneNames;
    for (unsigned int b = 0; b < record.boneCount; ++b) {
        KTBONE *bone = new (mesh.bones + b) KTBONE;
        bone->node = nullptr;
        const std::size_t size = std::strlen(name) + 1;
        std::memcpy(bone->name, name, size);
        name += size;
    }
    mesh.numberOfInfluences = static_cast<std::uint16_t>(record.influenceCount);
    mesh.numberOfBones = static_cast<std::uint16_t>(record.boneCount);
    return KTSHADER::useSkinning() || keltra::makeSkinnedArrays(mesh);
}

bool build(KTMESH &mesh, const keltra::MeshRecord &record, KTMATERIAL *material) {
    mesh.setName(record.name);
    mesh.setPosition(R3XVECTOR3D(record.position));
    mesh.setRotation(R3XVECTOR3D(record.rotation));
    mesh.setOrigin(R3XVECTOR3D(record.origin));
    mesh.setMaterial(material);
    if (!material && *record.material) warnOfMaterial(record);
    mesh.radius = record.radius;
    mesh.minimum.set(record.minimum);
    mesh.maximum.set(record.maximum);
    mesh.hidden = record.hidden;
    if (!buildGeometry(mesh, record) || !buildSkin(mesh, record)) return false;
    mesh.numberOfChildren = record.children;
    if (mesh.isSkinned() && mesh.material) mesh.material->setSkinning(true);
    return true;
}

}  // namespace

KTNODE *keltra::buildMesh(const MeshRecord &record, KTMATERIAL *material) {
    KTMESH *mesh = new (std::nothrow) KTMESH;
    if (!mesh || build(*mesh, record, material)) return mesh;
    delete mesh;
    return nullptr;
}

KELTRA_COLD KTNODE *KTMESH::load(const char *buffer, long *cursor, bool oldVersion) {
    keltra::FaultScope scope(KT_CALL("KTMESH::load"));
    keltra::MeshRecord record;
    const auto read = [&record, oldVersion](keltra::FieldReader &reader) {
        return readMesh(reader, oldVersion, record);
    };
    if (!keltra::readTrusted(scope, buffer, cursor, read)) return nullptr;
    KTNODE *mesh = keltra::buildMesh(record, KTMATERIAL::findByName(record.material));
    if (!mesh) scope.fail(KT_FAULT_OUT_OF_MEMORY);
    return mesh;
}
