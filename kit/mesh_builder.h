// SPDX-License-Identifier: Zlib
#ifndef KELTRA_KIT_MESH_BUILDER_H
#define KELTRA_KIT_MESH_BUILDER_H

#include <keltra/vector.h>

#include <cstdint>

class KTMESH;

namespace keltra {
namespace kit {

// Fills a new mesh of a known number of vertices and faces, one after the other.
class MeshBuilder {
   public:
    // Makes the mesh; `call` names it in faults. There is none when it is too large or memory is short.
    MeshBuilder(const char *call, unsigned int vertices, unsigned int faces);
    ~MeshBuilder();
    MeshBuilder(const MeshBuilder &) = delete;
    MeshBuilder &operator=(const MeshBuilder &) = delete;

    bool isGood() const { return mesh != nullptr; }
    unsigned int vertexCount() const { return vertices; }
    void vertex(const R3XVECTOR3D &place, const R3XVECTOR3D &normal, float u, float v);
    void face(unsigned int a, unsigned int b, unsigned int c);
    // Two faces, with the corners in their order around.
    void square(unsigned int a, unsigned int b, unsigned int c, unsigned int d) {
        face(a, b, c);
        face(a, c, d);
    }
    // Hands the mesh over, with its bounds; null when there is none.
    KTMESH *finish(bool hasUVs = true);

   private:
    void boundMesh();

    KTMESH *mesh;
    unsigned int vertices, faces;
};

// As the engine turns floats to 16.16.
std::int32_t toFixed(float value);

}  // namespace kit
}  // namespace keltra

#endif
