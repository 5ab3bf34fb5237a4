// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FORMATS_SCENE_FAULTS_H
#define KELTRA_FORMATS_SCENE_FAULTS_H

// Missing parts of a scene that loads, which no parser reports. `nearest` is the known name most like the
// missing one, or empty.

#include "formats/fault.h"
#include "formats/limits.h"

namespace keltra {

inline KTFAULT &unknownMaterial(const char *mesh, const char *material, const char *nearest) {
    return unknownName(KT_TEXT("material of mesh `%s`"), mesh, material, nearest);
}
inline KTFAULT &unknownBone(const char *mesh, const char *bone) {
    return unknownName(KT_TEXT("bone of mesh `%s`"), mesh, bone, "");
}
// An error.
inline KTFAULT &treeTooDeep() {
    return beyondLimit(KT_TEXT("tree"), KT_TEXT("more than %u levels"), kMaxTreeDepth, {});
}

}  // namespace keltra

#endif
