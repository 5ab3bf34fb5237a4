// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TESTS_TOOLS_CONVERT_SUPPORT_SOURCE_POSE_H
#define KELTRA_TESTS_TOOLS_CONVERT_SUPPORT_SOURCE_POSE_H

// A model as its importer gives it, turned so that Y is up, posed by its own matrices in double precision, as
// reference for the converter's result. Shares no code with the converter.

#include "tests/tools/convert/support/points.h"

#include <assimp/scene.h>
#include <assimp/Importer.hpp>

#include <string>
#include <vector>

namespace keltra::test {

class SourcePose {
   public:
    /// Throws std::runtime_error when there is no importer for the file.
    explicit SourcePose(const std::string &path);

    const aiScene &scene() const { return *read; }
    bool isSkinned() const;
    /// Keeps only the `count` influences of the largest weights of each vertex.
    void keepHeaviest(std::size_t influences);
    /// Length of the clip.
    double seconds(unsigned clip) const;

    /// The points at a time of a clip, or at rest for a negative clip; always in the same order. Triangles
    /// with a corner that is not finite are left out.
    Shape at(int clip, double seconds) const;

    /// Which of the corners and middles belong to triangles that have an area: the others may be dropped.
    const std::vector<bool> &solidCorners() const { return cornerIsSolid; }
    const std::vector<bool> &solidMiddles() const { return middleIsSolid; }

   private:
    using Matrix = aiMatrix4x4t<double>;
    struct Influence {
        const aiBone *bone;
        const aiNode *node;  // null for a bone that the model has no node for: its part stands with the mesh
        double weight;
    };
    struct Instance {
        const aiNode *node;
        const aiMesh *mesh;
        std::vector<unsigned> vertices;                  // that triangles use
        std::vector<unsigned> corners;                   // three a triangle, indices into `vertices`
        std::vector<std::vector<Influence>> influences;  // of `vertices`; empty for a rigid mesh
    };

    void addInstances(const aiNode &node);
    Instance makeInstance(const aiNode &node, const aiMesh &mesh) const;
    void addInfluences(Instance &instance) const;
    void findSolids();
    Point upright(const Point &point) const;
    static void normalise(std::vector<Influence> &influences);

    Assimp::Importer importer;
    const aiScene *read;
    bool zIsUp = false;
    std::vector<Instance> instances;
    std::vector<bool> cornerIsSolid, middleIsSolid;
};

}  // namespace keltra::test

#endif
