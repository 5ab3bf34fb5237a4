// SPDX-License-Identifier: Zlib
#ifndef KELTRA_KIT_TRANSFORM_H
#define KELTRA_KIT_TRANSFORM_H

#include <keltra/matrix.h>
#include <keltra/node.h>

namespace keltra {
namespace kit {

// What a pass multiplies the matrix of the parent by.
R3XMATRIX localMatrix(const KTNODE &node);

// From a node's coordinates to those of `ancestor`, or to the world for null.
R3XMATRIX matrixTo(const KTNODE &node, const KTNODE *ancestor);

// Calls `visit(node)` for a node and all below it, as deep as trees are.
template <class Visit>
void visitTree(KTNODE &node, const Visit &visit, unsigned int depth = 0) {
    constexpr unsigned int kDeepest = 256;
    visit(node);
    for (unsigned int i = 0; depth + 1 < kDeepest && i < node.getNumberOfChildren(); ++i)
        if (KTNODE *child = node.getChild(i)) visitTree(*child, visit, depth + 1);
}

}  // namespace kit
}  // namespace keltra

#endif
