#ifndef KELTRA_SCENE_ELEMENT_RADIUS_H
#define KELTRA_SCENE_ELEMENT_RADIUS_H

#include <keltra/helper.h>
#include <keltra/mesh.h>

namespace keltra {

// Bounding radius of a node; 0 for nodes that have none.
inline float boundingRadius(const KTNODE *node) {
    if (node && node->type == KT_MESH) return static_cast<const KTMESH *>(node)->radius;
    if (node && node->type == KT_HELPER) return static_cast<const KTHELPER *>(node)->radius;
    return 0.0f;
}

}  // namespace keltra

#endif
