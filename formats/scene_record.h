// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FORMATS_SCENE_RECORD_H
#define KELTRA_FORMATS_SCENE_RECORD_H

// The records of a KTE scene file. A record's numbers are copied out; names and arrays stay in the file,
// little-endian and without alignment. The readers neither allocate nor recurse, and a record that they
// accept is whole and consistent.

#include "formats/field_reader.h"

#include <cstddef>
#include <cstdint>

namespace keltra {

constexpr std::size_t kVectorSize = 12, kUVSize = 8, kFaceSize = 6;

enum NodeRecordType { kPlainRecord = 0, kLightRecord = 1, kMeshRecord = 2 };

// Codes of `lightType`; others are lights of no kind.
enum LightRecordType { kPointLight = 0, kDirectionalLight = 1, kSpotLight = 2 };

using SceneFault = Fault;

struct SceneHeader {
    bool oldVersion;  // 1.5a
    unsigned int materials;
};

struct MaterialRecord {
    const char *name, *texture, *shader;
    float ambient[4], diffuse[4], specular[4], emission[4];
    float transparency, shininess;
};

struct PlainRecord {
    std::uint32_t auxId;
    const char *name;
    float position[3], origin[3];
    unsigned int children;
};

struct LightRecord {
    unsigned int lightType;
    const char *name;
    float position[3], direction[3];
    float cutOff;
    float color[3];
    unsigned int children;
};

struct MeshRecord {
    const char *name, *material;
    float position[3], rotation[3], origin[3];
    float radius, minimum[3], maximum[3];
    bool hidden;
    unsigned int vertexCount, uvCount, faceCount, children, influenceCount, boneCount;
    const unsigned char *vertices, *normals;  // 3 floats each
    const unsigned char *uvs;                 // 2 floats each
    const unsigned char *faces;               // 3 unsigned 16-bit vertex indices each
    const unsigned char *faceNormals;         // 3 floats each
    const unsigned char *influenceBones;      // bytes, vertex by vertex
    const unsigned char *influenceWeights;    // floats, in the same order
    const char *boneNames;                    // one zero-terminated name behind the other
};

// Each reads one record, of a node without its type byte. False when it is not whole or not consistent: names
// shorter than 256 bytes, children that can fit into what remains, texture coordinates for no or for all
// vertices, faces within the vertices, influences that count within the bones and below 100.
bool readHeader(FieldReader &reader, SceneHeader &header);
bool readMaterial(FieldReader &reader, MaterialRecord &record);
bool readPlain(FieldReader &reader, PlainRecord &record);
bool readLight(FieldReader &reader, LightRecord &record);
bool readMesh(FieldReader &reader, bool oldVersion, MeshRecord &record);

// Receives the records of a scene in file order, each once it is read and accepted. `level` is the depth of a
// node, 0 for the root.
class SceneVisitor {
   public:
    virtual ~SceneVisitor() = default;
    virtual void header(const SceneHeader &) {}
    virtual void material(const MaterialRecord &) = 0;
    virtual void plain(const PlainRecord &, unsigned int level) = 0;
    virtual void light(const LightRecord &, unsigned int level) = 0;
    virtual void mesh(const MeshRecord &, unsigned int level) = 0;
    // The offset behind the tree, when all of it is good.
    virtual void end(std::size_t) {}
};

// True for a whole, consistent scene file whose tree nests no deeper than trees may; bytes after the tree are
// ignored. Otherwise `fault` receives what is wrong. The visitor may be null.
bool checkScene(const void *bytes, std::size_t size, SceneFault &fault, SceneVisitor *visitor = nullptr);

}  // namespace keltra

#endif
