// SPDX-License-Identifier: Zlib
#include "kit/transform.h"

namespace keltra {
namespace kit {

R3XMATRIX localMatrix(const KTNODE &node) {
    if (node.transformMode == 1) return node.matrix;
    R3XMATRIX x, y, z;
    x.setRotation(node.rotation.x, 1.0f, 0.0f, 0.0f);
    y.setRotation(node.rotation.y, 0.0f, 1.0f, 0.0f);
    z.setRotation(node.rotation.z, 0.0f, 0.0f, 1.0f);
    R3XMATRIX place;
    place.setTranslation(node.position + node.origin);
    return z * y * x * place;
}

R3XMATRIX matrixTo(const KTNODE &node, const KTNODE *ancestor) {
    R3XMATRIX matrix;
    unsigned int depth = 0;
    for (const KTNODE *at = &node; at && at != ancestor && depth < 256; at = at->getParent(), ++depth)
        matrix = matrix * localMatrix(*at);
    return matrix;
}

}  // namespace kit
}  // namespace keltra
