// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TESTS_TOOLS_CONVERT_SUPPORT_GLTF_BUILDER_H
#define KELTRA_TESTS_TOOLS_CONVERT_SUPPORT_GLTF_BUILDER_H

// Writes small glTF files with everything in one text: models for tests that say what is in them.

#include <nlohmann/json.hpp>

#include <array>
#include <string>
#include <vector>

namespace keltra::test {

using Floats = std::vector<float>;

/// What one primitive of a mesh is made of; empty lists are left out.
struct GltfMesh {
    Floats positions, normals, uvs;  // 3, 3 and 2 a vertex
    std::vector<std::uint32_t> indices;
    std::vector<std::uint16_t> joints;  // 4 a vertex
    Floats weights;                     // 4 a vertex
    int mode = 4;                       // triangles
};

/// A channel of a clip: `path` is "translation", "rotation" or "scale".
struct GltfChannel {
    int node = 0;
    std::string path;
    Floats times, values;
};

class GltfBuilder {
   public:
    GltfBuilder();

    /// Each returns the index of what it added.
    int mesh(const GltfMesh &data);
    /// `properties` as in the format: name, mesh, skin, translation, rotation, scale.
    int node(nlohmann::json properties, int parent = -1);
    /// `inverseBinds` holds 16 floats a joint; without them the joints' frames are those of the mesh.
    int skin(const std::vector<int> &joints, const Floats &inverseBinds = {});
    int clip(const std::string &name, const std::vector<GltfChannel> &channels);
    /// An accessor of the type "SCALAR", "VEC3" and so on.
    int floats(const Floats &values, const char *type, std::size_t components);

    nlohmann::json &document() { return root; }
    /// The file, as text and as binary.
    std::string text() const;
    std::string glb() const;

   private:
    int accessor(const void *bytes, std::size_t size, int componentType, const char *type, std::size_t count);
    int vectors(const Floats &values);
    template <class T>
    int add(const char *list, T value) {
        root[list].push_back(std::move(value));
        return static_cast<int>(root[list].size()) - 1;
    }

    nlohmann::json root;
    std::string binary;
};

/// A closed box of 12 triangles around the origin with a normal for each side: 24 vertices.
GltfMesh boxMesh(float halfX = 1.0f, float halfY = 1.0f, float halfZ = 1.0f);
/// One triangle, (0,0,0) (1,0,0) (0,1,0) moved by x.
GltfMesh triangleMesh(float x = 0.0f);

}  // namespace keltra::test

#endif
