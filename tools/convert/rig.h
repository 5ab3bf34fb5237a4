// SPDX-License-Identifier: Zlib
#ifndef KELTRA_CONVERT_RIG_H
#define KELTRA_CONVERT_RIG_H

// The nodes of a model, and the joints that become nodes of the scene. The engine's nodes have position and
// rotation but no scale: every joint gets a rigid frame, and the rest of the model's transform, its `bake`,
// is applied to the vertices. Frames of bones are those of the bind pose, because the engine takes the pose
// in the file as bind pose.

#include "tools/convert/budget.h"
#include "tools/convert/names.h"
#include "tools/convert/report.h"
#include "tools/convert/transform.h"

#include <array>
#include <map>
#include <set>
#include <string>
#include <vector>

struct aiMesh;
struct aiNode;
struct aiScene;

namespace keltra::convert {

constexpr int kNone = -1;
// The FBX importer makes a node for every pivot and pre-rotation; they are merged into the node below.
constexpr char kPivotMark[] = "_$AssimpFbx$_";
constexpr char kSkeletonRoot[] = "HumanoidRoot";  // the node in whose frame the engine moves skeletons

struct SourceNode {
    const aiNode *node = nullptr;
    int parent = kNone;
    int joint = kNone;    // its own joint, or the nearest one above
    bool moves = false;   // some clip has keyframes for it
    bool scales = false;  // and they change its scale
    Matrix local;         // in the rest pose
    Matrix world;         // in the rest pose
    Matrix bind;          // in the bind pose, in the world
    bool isBone = false;
};

struct Joint {
    std::string name;
    int source = kNone;
    int parent = kNone;      // an earlier joint
    Matrix frame;            // rigid, in the world
    Matrix bake;             // from the source node's coordinates to the frame's
    bool isBone = false;     // some skin follows it
    bool isPosed = false;    // clips can move it
    bool underRoot = false;  // part of a skeleton, below HumanoidRoot
};

// The joints that a vertex follows, by decreasing weight. The weights are multiples of 1/65536, as in the
// engine, and their sum is exactly 1; unused ones are 0.
struct VertexSkin {
    std::array<unsigned, kMaxInfluences> joints{};
    std::array<float, kMaxInfluences> weights{};
};

struct Skin {
    unsigned mesh;  // of the model
    int source;     // the node that holds it
    std::string name;
    Matrix bake;                       // from the mesh's coordinates to the world, in the bind pose
    std::vector<VertexSkin> vertices;  // one per vertex of the mesh
};

struct RigidMesh {
    unsigned mesh;
    unsigned joint;
    Matrix bake;
};

class Rig {
   public:
    // `place` is applied to the whole model: a rotation and a scale. Throws Refusal.
    // `moved` names nodes that clips of other files move.
    Rig(const aiScene &scene, const Matrix &place, Report &report, const std::set<std::string> &moved = {});

    // The world matrices of all source nodes for the given local ones, in their order.
    void pose(const std::vector<Matrix> &locals, std::vector<Matrix> &worlds) const;
    // A joint's frame relative to its parent's, from the rigid frames of all joints.
    Matrix localFrame(unsigned joint, const std::vector<Matrix> &frames) const;
    int findSource(const std::string &name) const;
    // The nodes that the FBX importer made for the pivots and rotations of this one, from below.
    std::vector<int> helpersOf(int source) const;

    std::vector<SourceNode> sources;  // parents before children
    std::vector<Joint> joints;        // parents before children
    std::vector<Skin> skins;
    std::vector<RigidMesh> rigidMeshes;
    Names names;

   private:
    void readNodes();
    void readBelow(const std::map<const aiNode *, std::vector<const aiNode *>> &children);
    void readMotion(const std::set<std::string> &moved);
    void bindSkins();
    void bindSkin(Skin &skin);
    Matrix chooseBake(const Skin &skin) const;
    void spreadBind();
    void measure();
    void makeJoints();
    bool isKept(int source) const;
    unsigned addJoint(int source, int parent, const Matrix &bind, const std::string &wanted);
    void makeInfluences(Skin &skin);
    unsigned boneJoint(int source, const Matrix &bind);
    unsigned holderOf(const Skin &skin);
    void markSkeleton();
    void markPosed();
    void placeRigidMeshes();

    const aiScene &scene;
    const Matrix place;
    Report &report;
    double size = 0.0;
    std::map<std::string, int> byName;
    std::vector<std::vector<unsigned>> bonesOf;  // per source node: the joints that skins follow
    int still = kNone;                           // a joint that never moves, for vertices without bones
};

// Whether some vertex of the mesh has a weight.
bool isSkinned(const aiMesh &mesh);

}  // namespace keltra::convert

#endif
