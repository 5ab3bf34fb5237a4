// SPDX-License-Identifier: Zlib
#ifndef KELTRA_SCENE_LOCAL_TRANSFORM_H
#define KELTRA_SCENE_LOCAL_TRANSFORM_H

#include <keltra/glbridge.h>
#include <keltra/node.h>

#include "core/glbridge.h"
#include "math/sparse.h"

namespace keltra {

// Applies a node's own transform to the current matrix; a transform mode other than 0 and 1 applies nothing.
inline void applyLocalTransform(const KTNODE &node) {
    if (node.transformMode == 0) {
        KT_glTranslatef(sum(node.position.x, node.origin.x), sum(node.position.y, node.origin.y),
                        sum(node.position.z, node.origin.z));
        applyRotation(node.rotation);
    } else if (node.transformMode == 1) {
        KT_glMultMatrixf(node.matrix.m);
    }
}

}  // namespace keltra

#endif
