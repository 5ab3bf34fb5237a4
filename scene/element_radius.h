// SPDX-License-Identifier: Zlib
#ifndef KELTRA_SCENE_ELEMENT_RADIUS_H
#define KELTRA_SCENE_ELEMENT_RADIUS_H

#include <keltra/helper.h>
#include <keltra/mesh.h>

#include "scene/node_class.h"

namespace keltra {

// Bounding radius of a mesh or a helper, whatever its type code; 0 for nodes that have none.
inline float boundingRadius(const KTNODE *node) {
    if (const KTMESH *mesh = as<KTMESH>(node)) return mesh->radius;
    if (const KTHELPER *helper = as<KTHELPER>(node)) return helper->radius;
    return 0.0f;
}

}  // namespace keltra

#endif
