// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TESTS_TOOLS_CONVERT_SUPPORT_FBX_BUILDER_H
#define KELTRA_TESTS_TOOLS_CONVERT_SUPPORT_FBX_BUILDER_H

// Writes small FBX files as text, and says where their nodes stand at a time. The latter is worked out by the
// format's own formula from the values that are written, so it knows nothing of how an importer splits them.

#include "tests/tools/convert/support/points.h"

#include <assimp/matrix4x4.h>
#include <assimp/matrix4x4.inl>

#include <string>
#include <vector>

namespace keltra::test {

struct FbxNode {
    std::string name;
    int parent = -1;
    std::string kind = "LimbNode";  // or "Mesh", "Null"
    Point translation, rotation, scaling{1.0, 1.0, 1.0};
    Point rotationOffset, rotationPivot, preRotation, postRotation, scalingOffset, scalingPivot;
};

/// Keys of "Lcl Translation", "Lcl Rotation" or "Lcl Scaling", one value a time; straight in between.
struct FbxTrack {
    int node = 0;
    std::string property;
    std::vector<double> seconds;
    std::vector<Point> values;
};

/// What a vertex follows: a node of the model and its share.
struct FbxInfluence {
    int node = 0;
    double weight = 1.0;
};

class FbxBuilder {
   public:
    using Matrix = aiMatrix4x4t<double>;

    /// Returns the node's index.
    int node(const FbxNode &node);
    /// A closed box around the origin of a node of the kind "Mesh".
    void box(int node, double half);
    /// The same, skinned: all of its vertices follow these nodes from their rest pose on.
    void skin(int node, double half, const std::vector<FbxInfluence> &influences);
    void clip(const std::string &name, const std::vector<FbxTrack> &tracks);
    /// A property of the global settings: "UpAxis", "UnitScaleFactor" and so on. Without them Y is up and a
    /// unit is a metre.
    void setting(const std::string &name, double value);

    std::string text() const;
    std::size_t numberOfClips() const { return clips.size(); }

    /// The node's matrix in the model at a time of a clip; in the rest pose for a negative clip.
    Matrix world(int node, int clip, double seconds) const;
    /// The vertices of all boxes, in the order of their calls.
    std::vector<Point> vertices(int clip, double seconds) const;

   private:
    struct Box {
        int node;
        double half;
        std::vector<FbxInfluence> influences;
    };
    struct Clip {
        std::string name;
        std::vector<FbxTrack> tracks;
    };
    struct Setting {
        std::string name;
        double value;
    };

    Matrix local(int node, int clip, double seconds) const;
    Point valueOf(int node, const char *property, const Point &rest, int clip, double seconds) const;
    std::string objects() const;
    std::string connections() const;
    std::string skinObjects(std::size_t box) const;
    std::string clipObjects(std::size_t clip) const;

    std::vector<FbxNode> nodes;
    std::vector<Box> boxes;
    std::vector<Clip> clips;
    std::vector<Setting> settings;
};

/// Where a matrix puts a point.
Point operator*(const FbxBuilder::Matrix &matrix, const Point &point);

}  // namespace keltra::test

#endif
