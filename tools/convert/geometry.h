// SPDX-License-Identifier: Zlib
#ifndef KELTRA_CONVERT_GEOMETRY_H
#define KELTRA_CONVERT_GEOMETRY_H

// Builds meshes of triangles with baked vertices. Equal vertices are shared, and meshes are split at the
// limits of the engine: 16-bit indices and 100 bones per skin.

#include "formats/limits.h"
#include "tools/convert/rig.h"
#include "tools/convert/uv_place.h"
#include "tools/formats/kte_writer.h"

#include <cstdint>
#include <functional>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

struct aiMesh;

namespace keltra::convert {

constexpr std::size_t kMaxMeshCount = kMaxCount;  // of vertices, and of triangles

// Counts of left-out faces, of meshes whose normals and triangles did not agree, and of corners whose texture
// coordinates are not finite or beyond what a file holds.
struct Rejects {
    std::uint64_t notFinite = 0, degenerate = 0, badIndex = 0, linesAndPoints = 0;
    std::uint64_t insideOut = 0, badUV = 0;
};

struct Corner {
    formats::Vec3 position, normal;
    formats::Vec2 uv;
    VertexSkin skin;
};

bool operator==(const Corner &a, const Corner &b);

class MeshBuilder {
   public:
    // `onTriangles`, unless empty, is called with the number of triangles done since the last call.
    explicit MeshBuilder(std::function<void(std::size_t)> onTriangles = nullptr)
        : onTriangles(std::move(onTriangles)) {}

    // Adds the triangles of a mesh, transformed by `bake`. `skin` holds the mesh's influences, null for a
    // rigid mesh. `uvChannel` may be one that the mesh does not have; `place` is where its picture stands.
    void add(const aiMesh &mesh, const Matrix &bake, const Skin *skin, unsigned uvChannel, Rejects &rejects,
             const UvPlace &place = {});

    // The meshes, complete except for rotation and material, with the names of the joints as bone names.
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

    std::function<void(std::size_t)> onTriangles;
    std::vector<Chunk> chunks;
    bool hasUVs = false;
};

// Sets the bounding box and the radius around the mesh's origin from the vertices.
void setBounds(formats::MeshData &mesh);

}  // namespace keltra::convert

#endif
