// SPDX-License-Identifier: Zlib
#include "formats/scene_record.h"

#include "formats/face_indices.h"
#include "formats/limits.h"
#include "math/fixed.h"

#include <cstring>

namespace keltra {

namespace {

constexpr char kMagic[] = "KTE file v1.6a", kOldMagic[] = "KTE file v1.5a";
constexpr std::size_t kMagicSize = 15, kComparedMagic = 14;
constexpr std::size_t kSmallestNode = 32;      // a plain node with an empty name, its type byte included
constexpr std::size_t kSmallestMaterial = 75;  // three empty names, 18 floats
constexpr std::size_t kOldVertexSize = 12, kOldFaceSize = 16;
constexpr std::size_t kCountSize = 2;

bool acceptChildren(FieldReader &reader, std::size_t offset, unsigned int children) {
    if (children <= reader.remaining() / kSmallestNode) return true;
    return reader.refuseValue(offset, KT_TEXT("children"), static_cast<long>(children),
                              KT_TEXT("more than the rest of the file can hold"));
}

bool acceptFaces(FieldReader &reader, const MeshRecord &record) {
    const std::size_t indices = 3 * record.faceCount;
    if (areIndicesBelow(record.faces, indices, record.vertexCount)) return true;
    unsigned int largest = 0;
    for (unsigned int bit = 0x8000; bit > 0; bit /= 2)
        if (!areIndicesBelow(record.faces, indices, largest + bit)) largest += bit;
    return reader.refuseValue(reader.offsetOf(record.faces), KT_TEXT("faces"), static_cast<long>(largest),
                              KT_TEXT("vertex index out of range"));
}

// Skinning skips influences whose weight is 0 or less in 16.16.
bool countsAsInfluence(const unsigned char *bytes) {
    float weight;
    std::memcpy(&weight, bytes, sizeof weight);
    return toFixed(weight) > 0;
}

bool acceptInfluences(FieldReader &reader, const MeshRecord &record) {
    const std::size_t influences = std::size_t(record.vertexCount) * record.influenceCount;
    const unsigned int limit = record.boneCount < kMaxSkinBones ? record.boneCount : kMaxSkinBones;
    unsigned int largest = 0;
    bool good = true;
    for (std::size_t i = 0; i < influences; ++i) {
        const unsigned int bone = record.influenceBones[i];
        if (bone < limit || !countsAsInfluence(record.influenceWeights + i * sizeof(float))) continue;
        good = false;
        if (bone > largest) largest = bone;
    }
    if (good) return true;
    return reader.refuseValue(reader.offsetOf(record.influenceBones), KT_TEXT("bone indices"),
                              static_cast<long>(largest), KT_TEXT("bone index out of range"));
}

void readGeometry(FieldReader &reader, bool oldVersion, MeshRecord &record) {
    record.vertices = reader.array(KT_TEXT("vertices"), record.vertexCount, kVectorSize);
    record.normals = reader.array(KT_TEXT("vertex normals"), record.vertexCount, kVectorSize);
    // Version 1.5a has an unused vector per vertex and an unused plane per face.
    if (oldVersion) reader.array(KT_TEXT("old vertex data"), record.vertexCount, kOldVertexSize);
    record.uvs = reader.array(KT_TEXT("texture coordinates"), record.uvCount, kUVSize);
    record.faces = reader.array(KT_TEXT("faces"), record.faceCount, kFaceSize);
    record.faceNormals = reader.array(KT_TEXT("face normals"), record.faceCount, kVectorSize);
    if (oldVersion) reader.array(KT_TEXT("old face data"), record.faceCount, kOldFaceSize);
}

void readSkin(FieldReader &reader, MeshRecord &record) {
    record.boneCount = 0;
    record.influenceBones = record.influenceWeights = nullptr;
    record.boneNames = nullptr;
    if (record.influenceCount == 0) return;
    const std::uint64_t influences = std::uint64_t(record.vertexCount) * record.influenceCount;
    record.influenceBones = reader.array(KT_TEXT("bone indices"), influences, 1);
    record.influenceWeights = reader.array(KT_TEXT("weights"), influences, sizeof(float));
    record.boneCount = reader.u16(KT_TEXT("bone count"));
    for (unsigned int b = 0; b < record.boneCount; ++b) {
        const char *name = reader.string(KT_TEXT("bone name"));
        if (b == 0) record.boneNames = name;
        if (!name) return;
    }
}

// Reads the node at the cursor, shows it to the visitor and returns whether it is good.
bool readAnyNode(FieldReader &reader, bool oldVersion, unsigned int level, unsigned int &children,
                 std::size_t &bonesLeft, SceneVisitor *visitor) {
    const std::size_t offset = reader.position();
    const unsigned int type = reader.u8(KT_TEXT("type"));
    if (!reader.isWhole()) return false;
    if (type == kPlainRecord) {
        PlainRecord record;
        if (!readPlain(reader, record)) return false;
        children = record.children;
        if (visitor) visitor->plain(record, level);
    } else if (type == kLightRecord) {
        LightRecord record;
        if (!readLight(reader, record)) return false;
        children = record.children;
        if (visitor) visitor->light(record, level);
    } else if (type == kMeshRecord) {
        MeshRecord record;
        if (!readMesh(reader, oldVersion, record)) return false;
        if (record.boneCount > bonesLeft)
            return reader.refuseValue(offset, KT_TEXT("bone count"), static_cast<long>(record.boneCount),
                                      KT_TEXT("more bones than a file of this size may list"));
        bonesLeft -= record.boneCount;
        children = record.children;
        if (visitor) visitor->mesh(record, level);
    } else {
        return reader.refuseValue(offset, KT_TEXT("type"), static_cast<long>(type),
                                  KT_TEXT("unknown node type"));
    }
    return true;
}

bool checkMaterials(FieldReader &reader, unsigned int count, SceneVisitor *visitor) {
    for (unsigned int i = 0; i < count; ++i) {
        MaterialRecord material;
        if (!readMaterial(reader, material)) return false;
        if (visitor) visitor->material(material);
    }
    return true;
}

bool checkTree(FieldReader &reader, bool oldVersion, std::size_t bonesLeft, SceneVisitor *visitor) {
    // By level: nodes still to come; the root is the one of level 0.
    std::uint16_t pending[kMaxTreeDepth + 1] = {1};
    unsigned int level = 0;
    for (;;) {
        while (pending[level] == 0)
            if (level-- == 0) return true;
        --pending[level];
        unsigned int children = 0;
        if (!readAnyNode(reader, oldVersion, level, children, bonesLeft, visitor)) return false;
        if (children == 0) continue;
        if (++level == kMaxTreeDepth)
            return reader.refuse(reader.position(), KT_TEXT("type"), KT_TEXT("nodes nest too deep"));
        pending[level] = static_cast<std::uint16_t>(children);
    }
}

}  // namespace

bool readHeader(FieldReader &reader, SceneHeader &header) {
    const unsigned char *magic = reader.array(KT_TEXT("magic"), kMagicSize, 1);
    header.materials = reader.u16(KT_TEXT("material count"));
    if (!reader.isWhole()) return false;
    header.oldVersion = std::memcmp(magic, kOldMagic, kComparedMagic) == 0;
    if (!header.oldVersion && std::memcmp(magic, kMagic, kComparedMagic) != 0)
        return reader.refuse(0, KT_TEXT("magic"), KT_TEXT("not a scene file of version 1.5a or 1.6a"));
    if (header.materials > reader.remaining() / kSmallestMaterial)
        return reader.refuseValue(kMagicSize, KT_TEXT("material count"), static_cast<long>(header.materials),
                                  KT_TEXT("more than the rest of the file can hold"));
    return true;
}

bool readMaterial(FieldReader &reader, MaterialRecord &record) {
    record.name = reader.string(KT_TEXT("name"));
    record.texture = reader.string(KT_TEXT("texture"));
    record.shader = reader.string(KT_TEXT("shader"));
    reader.floats(KT_TEXT("ambient"), record.ambient, 4);
    reader.floats(KT_TEXT("diffuse"), record.diffuse, 4);
    reader.floats(KT_TEXT("specular"), record.specular, 4);
    reader.floats(KT_TEXT("emission"), record.emission, 4);
    record.transparency = reader.f32(KT_TEXT("transparency"));
    record.shininess = reader.f32(KT_TEXT("shininess"));
    return reader.isWhole();
}

bool readPlain(FieldReader &reader, PlainRecord &record) {
    record.auxId = reader.u32(KT_TEXT("auxId"));
    record.name = reader.string(KT_TEXT("name"));
    reader.floats(KT_TEXT("position"), record.position, 3);
    reader.floats(KT_TEXT("origin"), record.origin, 3);
    record.children = reader.u16(KT_TEXT("children"));
    return reader.isWhole() && acceptChildren(reader, reader.position() - kCountSize, record.children);
}

bool readLight(FieldReader &reader, LightRecord &record) {
    reader.u32(KT_TEXT("unused"));
    record.lightType = reader.u8(KT_TEXT("lightType"));
    record.name = reader.string(KT_TEXT("name"));
    reader.floats(KT_TEXT("position"), record.position, 3);
    reader.floats(KT_TEXT("direction"), record.direction, 3);
    record.cutOff = reader.f32(KT_TEXT("cutOff"));
    reader.floats(KT_TEXT("colour"), record.color, 3);
    record.children = reader.u16(KT_TEXT("children"));
    return reader.isWhole() && acceptChildren(reader, reader.position() - kCountSize, record.children);
}

bool readMesh(FieldReader &reader, bool oldVersion, MeshRecord &record) {
    reader.u32(KT_TEXT("unused"));
    record.name = reader.string(KT_TEXT("name"));
    reader.floats(KT_TEXT("position"), record.position, 3);
    reader.floats(KT_TEXT("rotation"), record.rotation, 3);
    reader.floats(KT_TEXT("origin"), record.origin, 3);
    record.material = reader.string(KT_TEXT("material"));
    record.radius = reader.f32(KT_TEXT("radius"));
    reader.floats(KT_TEXT("minimum"), record.minimum, 3);
    reader.floats(KT_TEXT("maximum"), record.maximum, 3);
    record.hidden = reader.u8(KT_TEXT("hidden")) != 0;
    record.vertexCount = reader.u16(KT_TEXT("vertex count"));
    record.uvCount = reader.u16(KT_TEXT("texture coordinate count"));
    record.faceCount = reader.u16(KT_TEXT("face count"));
    record.children = reader.u16(KT_TEXT("children"));
    record.influenceCount = reader.u16(KT_TEXT("influence count"));
    const std::size_t behindCounts = reader.position();
    // Checked here, since everything after a wrong count is read from the wrong offset.
    if (reader.isWhole() && record.uvCount != 0 && record.uvCount < record.vertexCount)
        return reader.refuseValue(behindCounts - 4 * kCountSize, KT_TEXT("texture coordinate count"),
                                  static_cast<long>(record.uvCount),
                                  KT_TEXT("neither 0 nor one for each vertex"));
    readGeometry(reader, oldVersion, record);
    readSkin(reader, record);
    if (!reader.isWhole()) return false;
    return acceptFaces(reader, record) && acceptInfluences(reader, record) &&
           acceptChildren(reader, behindCounts - 2 * kCountSize, record.children);
}

bool checkScene(const void *bytes, std::size_t size, SceneFault &fault, SceneVisitor *visitor) {
    FieldReader reader(bytes, size);
    SceneHeader header;
    bool good = readHeader(reader, header);
    if (good && visitor) visitor->header(header);
    good = good && checkMaterials(reader, header.materials, visitor) &&
           checkTree(reader, header.oldVersion, kBonesOfAnyScene + size / kSceneBytesPerBone, visitor);
    if (good && visitor) visitor->end(reader.position());
    fault = reader.fault();
    return good;
}

}  // namespace keltra
