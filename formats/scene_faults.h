// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FORMATS_SCENE_FAULTS_H
#define KELTRA_FORMATS_SCENE_FAULTS_H

// Missing parts of a scene that loads, which no parser reports. `nearest` is the known name most like the
// missing one, or empty.

#include "formats/fault.h"

namespace keltra {

KTFAULT &unknownMaterial(const char *mesh, const char *material, const char *nearest);
KTFAULT &unknownBone(const char *mesh, const char *bone);
// An error.
KTFAULT &treeTooDeep();

}  // namespace keltra

#endif
