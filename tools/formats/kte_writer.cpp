// SPDX-License-Identifier: Zlib
#include "tools/formats/kte_writer.h"

#include "tools/formats/byte_writer.h"

#include <algorithm>

namespace keltra::formats {
namespace {

constexpr std::size_t kMagicSize = 14;

// Version 1.5a stores one vector per vertex after the vertex normals and one plane per face after the face
// normals. No reader uses either.
constexpr std::size_t kOldBytesPerVertex = 12;
constexpr std::size_t kOldBytesPerFace = 16;

class KteWriter {
   public:
    KteWriter(KteVersion version, Marks *marks) : version(version), marks(marks) {}

    std::vector<std::uint8_t> write(const Scene &scene) {
        const bool old = version == KteVersion::k15a;
        field("magic", [&] {
            out.raw(old ? "KTE file v1.5a" : "KTE file v1.6a", kMagicSize);
            out.u8(scene.afterMagic);
        });
        field("materialCount", [&] { u16(scene.materials.size()); });
        for (std::size_t i = 0; i < scene.materials.size(); ++i) {
            prefix = "material[" + std::to_string(i) + "].";
            material(scene.materials[i]);
        }
        node(scene.root);
        out.raw(scene.rest.data(), scene.rest.size());
        return out.take();
    }

   private:
    // Runs `put` and marks what it appended with the current record's name.
    template <typename Put>
    void field(const char *name, Put put) {
        const std::size_t start = out.size();
        put();
        if (marks) marks->push_back({prefix + name, start, out.size() - start});
    }

    void u16(std::size_t value) { out.u16(static_cast<unsigned>(value & 0xFFFF)); }

    void vec(const Vec3 &v) {
        out.f32(v.x);
        out.f32(v.y);
        out.f32(v.z);
    }

    void vecs(const std::vector<Vec3> &list) {
        for (const Vec3 &v : list) vec(v);
    }

    void padded(const std::vector<std::uint8_t> &data, std::size_t size) {
        const std::size_t given = std::min(data.size(), size);
        out.raw(data.data(), given);
        out.zeros(size - given);
    }

    void color(const Color &c) {
        out.f32(c.r);
        out.f32(c.g);
        out.f32(c.b);
        out.f32(c.a);
    }

    void material(const Material &m) {
        field("name", [&] { out.string(m.name); });
        field("texture", [&] { out.string(m.texture); });
        field("shader", [&] { out.string(m.shader); });
        field("ambient", [&] { color(m.ambient); });
        field("diffuse", [&] { color(m.diffuse); });
        field("specular", [&] { color(m.specular); });
        field("emission", [&] { color(m.emission); });
        field("transparency", [&] { out.f32(m.transparency); });
        field("shininess", [&] { out.f32(m.shininess); });
    }

    void node(const Node &n) {
        prefix = "node[" + std::to_string(nodeCount++) + "].";
        field("type", [&] { out.u8(static_cast<unsigned>(n.kind)); });
        field("auxId", [&] { out.u32(n.auxId); });
        switch (n.kind) {
            case NodeKind::kPlain:
                plainBody(n);
                break;
            case NodeKind::kLight:
                lightBody(n);
                break;
            case NodeKind::kMesh:
                meshBody(n);
                break;
        }
        for (const Node &child : n.children) node(child);
    }

    void plainBody(const Node &n) {
        field("name", [&] { out.string(n.name); });
        field("position", [&] { vec(n.position); });
        field("origin", [&] { vec(n.origin); });
        field("children", [&] { u16(n.children.size()); });
    }

    void lightBody(const Node &n) {
        field("lightType", [&] { out.u8(static_cast<unsigned>(n.light.type)); });
        field("name", [&] { out.string(n.name); });
        field("position", [&] { vec(n.position); });
        field("direction", [&] { vec(n.light.direction); });
        field("cutOff", [&] { out.f32(n.light.cutOff); });
        field("color", [&] { vec(n.light.color); });
        field("children", [&] { u16(n.children.size()); });
    }

    void meshBody(const Node &n) {
        const MeshData &m = n.mesh;
        field("name", [&] { out.string(n.name); });
        field("position", [&] { vec(n.position); });
        field("rotation", [&] { vec(m.rotation); });
        field("origin", [&] { vec(n.origin); });
        field("material", [&] { out.string(m.material); });
        field("radius", [&] { out.f32(m.radius); });
        field("minimum", [&] { vec(m.minimum); });
        field("maximum", [&] { vec(m.maximum); });
        field("hidden", [&] { out.u8(m.hidden ? m.hiddenByte : 0); });
        field("vertexCount", [&] { u16(m.vertices.size()); });
        field("uvCount", [&] { u16(m.uvs.size()); });
        field("faceCount", [&] { u16(m.faces.size()); });
        field("children", [&] { u16(n.children.size()); });
        field("influenceCount", [&] { u16(m.influences); });
        geometry(m);
        if (m.influences > 0) skin(m);
    }

    void geometry(const MeshData &m) {
        const bool old = version == KteVersion::k15a;
        field("vertices", [&] { vecs(m.vertices); });
        field("normals", [&] { vecs(m.normals); });
        if (old)
            field("oldVertexData", [&] { padded(m.oldVertexData, m.vertices.size() * kOldBytesPerVertex); });
        field("uvs", [&] {
            for (const Vec2 &uv : m.uvs) {
                out.f32(uv.x);
                out.f32(uv.y);
            }
        });
        field("faces", [&] {
            for (const Face &face : m.faces) {
                for (std::uint16_t index : face) {
                    out.u16(index);
                }
            }
        });
        field("faceNormals", [&] { vecs(m.faceNormals); });
        if (old) field("oldFaceData", [&] { padded(m.oldFaceData, m.faces.size() * kOldBytesPerFace); });
    }

    void skin(const MeshData &m) {
        field("influenceBones", [&] { out.raw(m.influenceBones.data(), m.influenceBones.size()); });
        field("influenceWeights", [&] {
            for (float weight : m.influenceWeights) out.f32(weight);
        });
        field("boneCount", [&] { u16(m.boneNames.size()); });
        field("boneNames", [&] {
            for (const std::string &name : m.boneNames) out.string(name);
        });
    }

    ByteWriter out;
    KteVersion version;
    Marks *marks;
    std::string prefix;
    std::size_t nodeCount = 0;
};

}  // namespace

std::vector<std::uint8_t> writeKte(const Scene &scene, KteVersion version, Marks *marks) {
    return KteWriter(version, marks).write(scene);
}

const Mark *findMark(const Marks &marks, const std::string &name) {
    for (const Mark &mark : marks)
        if (mark.name == name) return &mark;
    return nullptr;
}

}  // namespace keltra::formats
