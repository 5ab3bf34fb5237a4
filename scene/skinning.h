// SPDX-License-Identifier: Zlib
#ifndef KELTRA_SCENE_SKINNING_H
#define KELTRA_SCENE_SKINNING_H

class KTMESH;

namespace keltra {

// Makes the arrays that take the skinned vertices, unless they are there; false when out of memory.
bool makeSkinnedArrays(KTMESH &mesh);

}  // namespace keltra

#endif
