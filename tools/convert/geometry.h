#ifndef KELTRA_CONVERT_GEOMETRY_H
#define KELTRA_CONVERT_GEOMETRY_H

// Triangles with baked vertices, shared where they are the same, in meshes of a size that the engine's 16-bit
// indices and its 100 bones a skin can hold.

#include <cstdint>
#include <functional>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

#include "tools/convert/rig.h"
#include "tools/formats/kte_writer.h"

struct aiMesh;

namespace keltra::convert {

constexpr std::size_t kMaxMeshCount = 65535;  // of vertices, and of triangles
constexpr std::size_t kMaxSkinBones = 100;

// What did not become triangles, and meshes whose normals looked away from their triangles' fronts.
struct Rejects {
    std::uint64_t notFinite = 0, degenerate = 0, badIndex = 0, linesAndPoints = 0;
    std::uint64_t insideOut = 0;
};

struct Corner {
    formats::Vec3 position, normal;
    formats::Vec2 uv;
    VertexSkin skin;
};

bool operator==(const Corner &a, const Corner &b);

class MeshBuilder {
   public:
    // `tell`, which may be empty, is called with the triangles done since the last time.
    explicit MeshBuilder(std::function<void(std::size_t)> tell = nullptr) : tell(std::move(tell)) {}

    // Adds what a mesh has, moved by `bake`; `skin` has its influences and is null for a rigid one. Texture
    // coordinates are those of the channel, none when the mesh has no such channel.
    void add(const aiMesh &mesh, const Matrix &bake, const Skin *skin, unsigned uvChannel, Rejects &rejects);

    // The meshes, complete but for rotation and material; bones by the joints' names.
    std::vector<formats::MeshData> finish(const std::vector<Joint> &joints);

   private:
    struct Hash {
        std::size_t operator()(const Corner &corner) const;
    };
    struct Chunk {
        formats::MeshData data;
        std::unordered_map<Corner, std::uint16_t, Hash> known;
        std::vector<VertexSkin> skins;
        std::vector<unsigned> bones;  // joints, in the mesh's order
        std::unordered_map<unsigned, std::uint8_t> boneIndex;
        unsigned refusals = 0;
    };

    void addTriangle(const Corner (&corners)[3], bool isSkinned);
    bool fits(const Chunk &chunk, const Corner (&corners)[3], bool isSkinned) const;
    static std::uint16_t indexOf(Chunk &chunk, const Corner &corner, bool isSkinned);
    static void finishSkin(Chunk &chunk, const std::vector<Joint> &joints);

    std::function<void(std::size_t)> tell;
    std::vector<Chunk> chunks;
    bool hasUVs = false;
};

// Sets bounding box and radius, about the mesh's own origin, from the vertices.
void setBounds(formats::MeshData &mesh);

}  // namespace keltra::convert

#endif
