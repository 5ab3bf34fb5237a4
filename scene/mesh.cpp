// SPDX-License-Identifier: Zlib
#include <keltra/mesh.h>

#include <keltra/material.h>
#include <keltra/opengl.h>

#include "core/holders.h"
#include "formats/limits.h"
#include "foundation/block.h"
#include "foundation/fault.h"
#include "foundation/quiet.h"

#include <algorithm>
#include <new>

static_assert(KTMESH::maxSkins == keltra::kMaxSkins && KTMESH::maxBones == keltra::kMaxSkinBones,
              "as the checks of scene files say");

const unsigned int KTMESH::maxSkins;
const unsigned int KTMESH::maxBones;
R3XMATRIX *KTMESH::boneMatrices = nullptr;
KTMESH *KTMESH::slotMesh[maxSkins] = {};
unsigned int KTMESH::usedSlots = 0;
R3XMATRIX KTMESH::skinMatrices[maxBones];
float KTMESH::boneQuaternions[maxBones][4] = {};
float KTMESH::boneTranslations[maxBones][3] = {};
bool KTMESH::normalsShown = false;
KTLISTED<KTMESH> *KTMESH::allMeshes = nullptr;
const keltra::OnGone<KTMATERIAL> KTMESH::onMaterialGone(&KTMESH::forgetMaterial);

namespace {

template <class T>
T *share(T *block) {
    return static_cast<T *>(keltra::retainBlock(block));
}

}  // namespace

KTMESH::KTMESH()
    : radius(-1.0f),
      minimum(0.0f, 0.0f, 0.0f),
      maximum(0.0f, 0.0f, 0.0f),
      material(nullptr),
      shadowCaster(false),
      closed(false),
      hidden(false),
      numberOfVertices(0),
      numberOfUVs(0),
      numberOfFaces(0),
      numberOfInfluences(0),
      numberOfBones(0),
      dataBlock(nullptr),
      vertices(nullptr),
      vertexNormals(nullptr),
      faceNormals(nullptr),
      uvs(nullptr),
      faces(nullptr),
      influenceBones(nullptr),
      influenceWeights(nullptr),
      influenceBonesFloat(nullptr),
      bones(nullptr),
      skinnedVertices(nullptr),
      skinnedNormals(nullptr),
      lineIndices(nullptr),
      linesMadeFrom(),
      normalLines(nullptr),
      normalsMadeFrom() {
    KTLISTED<KTMESH>::joinList(allMeshes);
    joinClass(KT_MESH);
    setIdentity(KT_MESH, "[mesh %d]");
}

KTMESH::KTMESH(const KTMESH &other) : KTNODE(other), KTLISTED<KTMESH>() {
    KTLISTED<KTMESH>::joinList(allMeshes);
    joinClass(KT_MESH);
    copyMesh(other);
}

KTMESH &KTMESH::operator=(const KTMESH &other) {
    if (this == &other) return *this;
    KTNODE::operator=(other);
    releaseMesh();
    copyMesh(other);
    return *this;
}

KTMESH::~KTMESH() {
    for (KTMESH *&mesh : slotMesh)
        if (mesh == this) mesh = nullptr;
    releaseMesh();
}

// The copy joins the holders of every buffer, and holds no use of the material.
void KTMESH::copyMesh(const KTMESH &other) {
    radius = other.radius;
    minimum = other.minimum;
    maximum = other.maximum;
    material = other.material;
    if (material) material->markHeld();
    shadowCaster = other.shadowCaster;
    closed = other.closed;
    hidden = other.hidden;
    numberOfVertices = other.numberOfVertices;
    numberOfUVs = other.numberOfUVs;
    numberOfFaces = other.numberOfFaces;
    numberOfInfluences = other.numberOfInfluences;
    numberOfBones = other.numberOfBones;
    dataBlock = share(other.dataBlock);
    // Without memory to share the block, the copy has no geometry.
    const bool whole = dataBlock || !other.dataBlock;
    vertices = whole ? other.vertices : nullptr;
    vertexNormals = whole ? other.vertexNormals : nullptr;
    faceNormals = whole ? other.faceNormals : nullptr;
    uvs = whole ? other.uvs : nullptr;
    faces = whole ? other.faces : nullptr;
    influenceBones = share(other.influenceBones);
    influenceWeights = share(other.influenceWeights);
    influenceBonesFloat = share(other.influenceBonesFloat);
    bones = share(other.bones);
    skinnedVertices = share(other.skinnedVertices);
    skinnedNormals = share(other.skinnedNormals);
    lineIndices = share(other.lineIndices);
    linesMadeFrom = other.linesMadeFrom;
    normalLines = share(other.normalLines);
    normalsMadeFrom = other.normalsMadeFrom;
}

void KTMESH::releaseMesh() {
    materialUse.take(material);
    keltra::releaseBlock(dataBlock);
    keltra::releaseBlock(influenceBones);
    keltra::releaseBlock(influenceWeights);
    keltra::releaseBlock(influenceBonesFloat);
    keltra::releaseBlock(bones);
    keltra::releaseBlock(skinnedVertices);
    keltra::releaseBlock(skinnedNormals);
    keltra::releaseBlock(lineIndices);
    keltra::releaseBlock(normalLines);
}

void KTMESH::setMaterial(KTMATERIAL *value) { materialUse.set(material, value); }

void KTMESH::forgetMaterial(const keltra::Gone<KTMATERIAL> &gone) {
    KTLISTED<KTMESH>::visitList(allMeshes, gone.mostVisited(), [&gone](KTMESH &mesh) {
        if (gone.has(mesh.material)) mesh.materialUse.forget(mesh.material);
    });
}

bool KTMESH::init() {
    if (boneMatrices) return keltra::failState(KT_CALL("KTMESH::init"), keltra::kActive);
    const unsigned int matrices = maxSkins * maxBones;
    void *pool = keltra::allocate(matrices * static_cast<unsigned int>(sizeof(R3XMATRIX)));
    if (!pool) return keltra::failMemory(KT_CALL("KTMESH::init"));
    boneMatrices = static_cast<R3XMATRIX *>(pool);
    for (unsigned int i = 0; i < matrices; ++i) new (boneMatrices + i) R3XMATRIX;
    return true;
}

bool KTMESH::free() {
    if (boneMatrices) vnfFree(boneMatrices);
    boneMatrices = nullptr;
    usedSlots = 0;
    std::fill_n(slotMesh, maxSkins, nullptr);
    return true;
}

void KTMESH::reset() {
    usedSlots = 0;
    std::fill_n(slotMesh, maxSkins, nullptr);
    KTOPENGL::vertexArrayOff();
    KTOPENGL::normalArrayOff();
    KTOPENGL::colorArrayOff();
    KTOPENGL::textureArrayOff();
}
