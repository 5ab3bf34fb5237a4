// SPDX-License-Identifier: Zlib
#include "tools/formats/kte_reader.h"

#include "formats/scene_record.h"
#include "tools/formats/fault_text.h"

namespace keltra::formats {
namespace {

constexpr std::size_t kAfterMagic = 14;
constexpr std::size_t kOldBytesPerVertex = 12, kOldBytesPerFace = 16;
constexpr std::size_t kCountsSize = 10;  // five counts between a mesh's hidden byte and its vertices

Vec3 vecOf(const float *v) { return {v[0], v[1], v[2]}; }
Color colorOf(const float *c) { return {c[0], c[1], c[2], c[3]}; }

std::vector<Vec3> vecsOf(const unsigned char *bytes, std::size_t count) {
    ByteReader reader(bytes, count * kVectorSize);
    std::vector<Vec3> list(count);
    for (Vec3 &v : list) {
        v.x = reader.f32();
        v.y = reader.f32();
        v.z = reader.f32();
    }
    return list;
}

// Reads a file that has been checked, so no record can fail.
class KteReader {
   public:
    explicit KteReader(const std::vector<std::uint8_t> &bytes)
        : bytes(bytes), fields(bytes.data(), bytes.size()) {}

    KteFile read() {
        KteFile file;
        SceneHeader header;
        readHeader(fields, header);
        old = header.oldVersion;
        file.version = old ? KteVersion::k15a : KteVersion::k16a;
        file.scene.afterMagic = bytes[kAfterMagic];
        for (unsigned i = 0; i < header.materials; ++i) file.scene.materials.push_back(material());
        file.scene.root = node();
        file.scene.rest.assign(bytes.begin() + static_cast<std::ptrdiff_t>(fields.position()), bytes.end());
        return file;
    }

   private:
    Material material() {
        MaterialRecord record;
        readMaterial(fields, record);
        Material m;
        m.name = record.name;
        m.texture = record.texture;
        m.shader = record.shader;
        m.ambient = colorOf(record.ambient);
        m.diffuse = colorOf(record.diffuse);
        m.specular = colorOf(record.specular);
        m.emission = colorOf(record.emission);
        m.transparency = record.transparency;
        m.shininess = record.shininess;
        return m;
    }

    Node node() {
        Node n;
        n.kind = static_cast<NodeKind>(fields.u8(KT_TEXT("type")));
        // The engine skips this word in lights and meshes.
        n.auxId = ByteReader(bytes.data() + fields.position(), sizeof n.auxId).u32();
        unsigned children = 0;
        switch (n.kind) {
            case NodeKind::kPlain:
                children = plainBody(n);
                break;
            case NodeKind::kLight:
                children = lightBody(n);
                break;
            case NodeKind::kMesh:
                children = meshBody(n);
                break;
        }
        n.children.reserve(children);
        for (unsigned i = 0; i < children; ++i) n.children.push_back(node());
        return n;
    }

    unsigned plainBody(Node &n) {
        PlainRecord record;
        readPlain(fields, record);
        n.name = record.name;
        n.position = vecOf(record.position);
        n.origin = vecOf(record.origin);
        return record.children;
    }

    unsigned lightBody(Node &n) {
        LightRecord record;
        readLight(fields, record);
        n.name = record.name;
        n.position = vecOf(record.position);
        n.light.type = static_cast<LightType>(record.lightType);
        n.light.direction = vecOf(record.direction);
        n.light.cutOff = record.cutOff;
        n.light.color = vecOf(record.color);
        return record.children;
    }

    unsigned meshBody(Node &n) {
        MeshRecord record;
        readMesh(fields, old, record);
        n.name = record.name;
        n.position = vecOf(record.position);
        n.origin = vecOf(record.origin);
        MeshData &m = n.mesh;
        m.rotation = vecOf(record.rotation);
        m.material = record.material;
        m.radius = record.radius;
        m.minimum = vecOf(record.minimum);
        m.maximum = vecOf(record.maximum);
        m.hidden = record.hidden;
        if (m.hidden) m.hiddenByte = *(record.vertices - kCountsSize - 1);
        geometry(record, m);
        skin(record, m);
        return record.children;
    }

    void geometry(const MeshRecord &record, MeshData &m) {
        m.vertices = vecsOf(record.vertices, record.vertexCount);
        m.normals = vecsOf(record.normals, record.vertexCount);
        m.faceNormals = vecsOf(record.faceNormals, record.faceCount);
        ByteReader uvs(record.uvs, record.uvCount * kUVSize);
        m.uvs.resize(record.uvCount);
        for (Vec2 &uv : m.uvs) {
            uv.x = uvs.f32();
            uv.y = uvs.f32();
        }
        ByteReader faces(record.faces, record.faceCount * kFaceSize);
        m.faces.resize(record.faceCount);
        for (Face &face : m.faces)
            for (std::uint16_t &index : face) index = faces.u16();
        if (old) {
            const unsigned char *vertexData = record.normals + record.vertexCount * kVectorSize;
            m.oldVertexData.assign(vertexData, vertexData + record.vertexCount * kOldBytesPerVertex);
            const unsigned char *faceData = record.faceNormals + record.faceCount * kVectorSize;
            m.oldFaceData.assign(faceData, faceData + record.faceCount * kOldBytesPerFace);
        }
    }

    static void skin(const MeshRecord &record, MeshData &m) {
        m.influences = static_cast<std::uint16_t>(record.influenceCount);
        if (m.influences == 0) return;
        const std::size_t count = std::size_t{record.vertexCount} * record.influenceCount;
        m.influenceBones.assign(record.influenceBones, record.influenceBones + count);
        ByteReader weights(record.influenceWeights, count * sizeof(float));
        m.influenceWeights.resize(count);
        for (float &weight : m.influenceWeights) weight = weights.f32();
        const char *name = record.boneNames;
        for (unsigned i = 0; i < record.boneCount; ++i) {
            m.boneNames.emplace_back(name);
            name += m.boneNames.back().size() + 1;
        }
    }

    const std::vector<std::uint8_t> &bytes;
    FieldReader fields;
    bool old = false;
};

}  // namespace

std::optional<KteFile> readKte(const std::vector<std::uint8_t> &bytes, std::string *reason) {
    Fault fault = {};
    if (checkScene(bytes.data(), bytes.size(), fault)) return KteReader(bytes).read();
    if (reason) *reason = textOf(fault);
    return std::nullopt;
}

}  // namespace keltra::formats
