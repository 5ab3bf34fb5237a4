// SPDX-License-Identifier: Zlib
#ifndef KELTRA_SCENE_SCENE_BUILD_H
#define KELTRA_SCENE_SCENE_BUILD_H

// Builds materials and nodes from the records of scene files.

#include "formats/scene_contents.h"

class KTNODE;

namespace keltra {

// Makes the file's materials and its tree and returns the root. Null when out of memory; nothing of what was
// made is left then.
KTNODE *buildScene(const SceneContents &contents);

// Builds the node record at `buffer + *cursor`, of version 1.6a, and its subtree, and moves the cursor behind
// them. The caller guarantees whole records. Null on bad data or when out of memory.
KTNODE *buildTrustedTree(const char *buffer, long *cursor, KTNODE *parent);

// Binds the skins of all meshes below `node` to the bones below `root`.
void bindSkins(KTNODE *root, KTNODE *node);

}  // namespace keltra

#endif
