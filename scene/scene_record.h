#ifndef KELTRA_SCENE_SCENE_RECORD_H
#define KELTRA_SCENE_SCENE_RECORD_H

// The records of a KTE scene file. A record's numbers are copied out; names and arrays stay in the file,
// little-endian and without alignment. The readers neither allocate nor recurse, and a record that they
// accept is whole and consistent.

#include <cstddef>
#include <cstdint>

#include "foundation/byte_reader.h"

namespace keltra {

constexpr std::size_t kSceneNameSize = 256;  // of a name with its terminating zero, at most
constexpr unsigned int kSceneBones = 100;    // bones that influences can address
constexpr std::size_t kVectorSize = 12, kUVSize = 8, kFaceSize = 6;

enum NodeRecordType { kPlainRecord = 0, kLightRecord = 1, kMeshRecord = 2 };

// Where a file is damaged: the offset and name of the field, and what is wrong with it.
struct SceneFault {
    std::size_t offset;
    const char *field;
    const char *reason;
};

// Reads fields by name, so that a fault can be told. After an overrun everything reads as zero.
class FieldReader {
   public:
    FieldReader(const void *bytes, std::size_t size)
        : reader(bytes, size), fieldOffset(0), field(""), found{0, "", nullptr} {}

    std::uint8_t u8(const char *name) { return at(name).u8(); }
    std::uint16_t u16(const char *name) { return at(name).u16(); }
    std::uint32_t u32(const char *name) { return at(name).u32(); }
    float f32(const char *name) { return at(name).f32(); }
    void floats(const char *name, float *values, int count) {
        at(name);
        for (int i = 0; i < count; ++i) values[i] = reader.f32();
    }
    const char *string(const char *name) { return at(name).string(kSceneNameSize); }
    const unsigned char *array(const char *name, std::uint64_t elements, std::size_t elementSize) {
        const std::uint64_t bytes = elements * elementSize;
        return at(name).take(bytes > SIZE_MAX ? SIZE_MAX : static_cast<std::size_t>(bytes));
    }

    std::size_t remaining() const { return reader.remaining(); }
    std::size_t position() const { return reader.position(); }
    // False when a field reached past the end or a name is too long; the fault says which.
    bool isWhole() {
        if (!reader.ok() && !found.reason) found = {fieldOffset, field, "ends early or is too long"};
        return reader.ok();
    }
    // Notes the first fault; always false.
    bool refuse(std::size_t offset, const char *name, const char *reason) {
        if (!found.reason) found = {offset, name, reason};
        return false;
    }
    const SceneFault &fault() const { return found; }

   private:
    ByteReader &at(const char *name) {
        if (reader.ok()) {
            fieldOffset = reader.position();
            field = name;
        }
        return reader;
    }

    ByteReader reader;
    std::size_t fieldOffset;
    const char *field;
    SceneFault found;
};

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
// vertices, faces within the vertices, influences within the bones and below 100.
bool readHeader(FieldReader &reader, SceneHeader &header);
bool readMaterial(FieldReader &reader, MaterialRecord &record);
bool readPlain(FieldReader &reader, PlainRecord &record);
bool readLight(FieldReader &reader, LightRecord &record);
bool readMesh(FieldReader &reader, bool oldVersion, MeshRecord &record);

// True for a whole, consistent scene file whose tree nests no deeper than trees may; what follows the tree is
// not looked at. Otherwise `fault` tells what is wrong.
bool checkScene(const void *bytes, std::size_t size, SceneFault &fault);

}  // namespace keltra

#endif
