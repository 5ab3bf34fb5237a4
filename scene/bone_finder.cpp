// SPDX-License-Identifier: Zlib
#include "scene/bone_finder.h"

#include "formats/scene_faults.h"
#include "scene/tree_walk.h"

namespace keltra {
namespace {

constexpr char kReferenceFrame[] = "HumanoidRoot";

R3XMATRIX bindMatrix(KTNODE &node) { return node.getFinalMatrix(kReferenceFrame).inverse(); }

}  // namespace

void BoneFinder::fill() {
    filled = true;
    walkTree(root, [this](KTNODE *node, unsigned int) {
        whole = whole && nodes.add(node->name, node);
        return whole ? node->numberOfChildren : kStopWalk;
    });
}

KTNODE *BoneFinder::findNode(const char *name) {
    if (!filled) fill();
    return whole ? static_cast<KTNODE *>(nodes.find(name)) : root->findByNameInHierarchy(name);
}

void BoneFinder::bind(KTBONE &bone) {
    if (const Target *known = static_cast<const Target *>(targets.find(bone.name))) {
        bone.node = known->node;
        bone.inverseBindMatrix = known->inverse;
        return;
    }
    bone.node = findNode(bone.name);
    bone.inverseBindMatrix = bone.node ? bindMatrix(*bone.node) : R3XMATRIX();
    if (!bone.node) return;
    if (Target *added = arena.add(Target{bone.node, bone.inverseBindMatrix}))
        targets.add(added->node->name, added);
}

void BoneFinder::bind(KTMESH &mesh) {
    if (mesh.numberOfInfluences == 0 || !mesh.bones) return;
    for (unsigned int b = 0; b < mesh.numberOfBones; ++b) {
        KTBONE &bone = mesh.bones[b];
        bind(bone);
        if (!bone.node) warnFault(KT_CALL("KTMESH::resetBones"), unknownBone(mesh.name, bone.name));
    }
}

}  // namespace keltra
