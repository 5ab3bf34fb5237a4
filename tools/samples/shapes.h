#ifndef KELTRA_SAMPLES_SHAPES_H
#define KELTRA_SAMPLES_SHAPES_H

// Builds triangle meshes out of patches. Coordinates are right-handed, y up;
// triangles are counter-clockwise seen from outside.

#include <cstddef>
#include <string>
#include <vector>

#include "tools/formats/kte_writer.h"

namespace keltra::samples {

using namespace formats;

// How a lathe turns: an arc about the y axis and the texture around it.
struct Turn {
    int sides = 8;
    float repeats = 1.0f;  // of the texture, around the whole arc
    float vScale = 1.0f;   // of the texture, per unit along the profile
    float from = 0.0f;     // degrees
    float to = 360.0f;
};

class MeshBuilder {
   public:
    // A grid of across x along cells: point(i, j) and uv(i, j) are called for
    // i = 0 .. across and j = 0 .. along. The side from which i runs to the right
    // while j runs up is the outside. Normals are smooth inside the patch, over
    // its closing seam too, and hard at its borders.
    template <typename Point, typename Uv>
    void patch(int across, int along, Point point, Uv uv) {
        const size_t first = vertices_.size();
        for (int j = 0; j <= along; ++j) {
            for (int i = 0; i <= across; ++i) {
                vertices_.push_back(point(i, j));
                uvs_.push_back(uv(i, j));
            }
        }
        closePatch(first, across, along);
    }

    // Surface of revolution about the y axis. `profile` runs from the bottom up
    // on the outside, x the radius and y the height; a smooth profile is one
    // rounded surface, any other gets an edge at each point.
    void lathe(const std::vector<Vec2> &profile, bool smooth, const Turn &turn);

    // A box with its sides along the axes; one texture repeat every `texel`
    // units.
    void box(Vec3 low, Vec3 high, float texel);

    // An upright square about `center` facing +z, whole texture.
    void billboard(Vec3 center, float halfWidth, float halfHeight);

    // One triangle with its own normal; the texture's corners in order.
    void triangle(Vec3 a, Vec3 b, Vec3 c);

    // A cone of flat sides standing on its base ring.
    void spike(Vec3 base, Vec3 tip, float radius, int sides);

    // Moves what was added since `first` (see vertexCount): turned about y,
    // then shifted.
    void place(size_t first, float degrees, Vec3 offset);

    size_t vertexCount() const { return vertices_.size(); }
    const std::vector<Vec3> &vertices() const { return vertices_; }

    // The mesh node with everything about it filled in; the geometry is stored
    // relative to `center`, which becomes the node's position.
    Node finish(const std::string &name, const std::string &material, Vec3 center = {}) const;

   private:
    void closePatch(size_t first, int across, int along);

    std::vector<Vec3> vertices_;
    std::vector<Vec3> normals_;
    std::vector<Vec2> uvs_;
    std::vector<Face> faces_;
};

// Nodes without geometry.
Node plainNode(const std::string &name, Vec3 position = {});
Node pointLight(const std::string &name, Vec3 position, Vec3 color);

}  // namespace keltra::samples

#endif  // KELTRA_SAMPLES_SHAPES_H
