#ifndef KELTRA_FORMATS_SCENE_FAULTS_H
#define KELTRA_FORMATS_SCENE_FAULTS_H

// What a scene that loads goes on without, and what no parser tells. `nearest` is the known name that may be the one, or empty.

#include "formats/fault.h"

namespace keltra {

KTFAULT unknownMaterial(const char *mesh, const char *material, const char *nearest);
KTFAULT unknownBone(const char *mesh, const char *bone);
// An error.
KTFAULT treeTooDeep();

}  // namespace keltra

#endif
