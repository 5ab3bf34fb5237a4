// SPDX-License-Identifier: Zlib
#ifndef KELTRA_LANTERN_WALK_NODES_H
#define KELTRA_LANTERN_WALK_NODES_H

// Finding what the models hold by name.

#include <keltra/keltra.h>

#include <string>

namespace lantern_walk {

/// Null when there is none, or it is of another class.
template <class Node>
Node *find(KTNODE *root, const std::string &name, KT_NODE_TYPE type) {
    KTNODE *node = root->findByNameInHierarchy(name.c_str());
    return node && node->isOfClass(type) ? static_cast<Node *>(node) : nullptr;
}

inline KTMESH *findMesh(KTNODE *root, const std::string &name) { return find<KTMESH>(root, name, KT_MESH); }

/// What a tap hits, by the code that picking returns: beyond the numbers of nodes.
constexpr unsigned kLanternCode = 2001, kMothCode = 2101, kWellCode = 2201;

}  // namespace lantern_walk

#endif
