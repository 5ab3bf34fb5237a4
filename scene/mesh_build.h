// SPDX-License-Identifier: Zlib
#ifndef KELTRA_SCENE_MESH_BUILD_H
#define KELTRA_SCENE_MESH_BUILD_H

#include "formats/scene_record.h"

class KTMATERIAL;
class KTNODE;

namespace keltra {

// The mesh of a record, with its number of children and without them; null when out of memory.
KTNODE *buildMesh(const MeshRecord &record, KTMATERIAL *material);

}  // namespace keltra

#endif
