// SPDX-License-Identifier: Zlib
#include <keltra/node.h>

#include "scene/tree_walk.h"

#include <cstring>

namespace {

// The first character rejects most names without a call.
bool isNamed(const KTNODE &node, const char *name) {
    return node.name[0] == name[0] && std::strcmp(node.name, name) == 0;
}

}  // namespace

KTNODE *KTNODE::findByNameInHierarchy(const char *name) {
    if (!name) return nullptr;
    return keltra::walkTree(this, [name](KTNODE *node, unsigned int) {
        return isNamed(*node, name) ? keltra::kStopWalk : node->numberOfChildren;
    });
}

KTNODE *KTNODE::findByIdInHierarchy(unsigned int id) {
    return keltra::walkTree(this, [id](KTNODE *node, unsigned int) {
        return node->id == id ? keltra::kStopWalk : node->numberOfChildren;
    });
}
