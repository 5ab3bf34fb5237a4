// SPDX-License-Identifier: Zlib
#ifndef KELTRA_SCENE_BONE_FINDER_H
#define KELTRA_SCENE_BONE_FINDER_H

#include <keltra/mesh.h>

#include "foundation/arena.h"
#include "foundation/name_index.h"

namespace keltra {

// Finds the nodes below a root that drive bones, while they are neither renamed nor moved. The tree is walked
// once, at the first skin, and a node's bind matrix is computed once, however many bones it drives.
class BoneFinder {
   public:
    explicit BoneFinder(KTNODE *root) : root(root), filled(false), whole(true) {}

    // Binds the skin of a mesh: `KTMESH::resetBones`.
    void bind(KTMESH &mesh);

   private:
    struct Target {
        KTNODE *node;
        R3XMATRIX inverse;
    };
    void fill();
    KTNODE *findNode(const char *name);
    void bind(KTBONE &bone);

    KTNODE *root;
    NameTable nodes;    // the first node of each name
    NameTable targets;  // those that drive a bone, with their matrices
    Arena arena;
    bool filled, whole;
};

}  // namespace keltra

#endif
