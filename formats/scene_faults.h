// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FORMATS_SCENE_FAULTS_H
#define KELTRA_FORMATS_SCENE_FAULTS_H

// Missing parts of a scene that loads, which no parser reports.

#include "formats/fault.h"
#include "formats/limits.h"

namespace keltra {

inline KTFAULT &unknownMaterial(const char *mesh, const NearestName &material) {
    return unknownName(KT_TEXT("material of mesh `%s`"), mesh, material);
}
inline KTFAULT &unknownBone(const char *mesh, const char *bone) {
    return unknownName(KT_TEXT("bone of mesh `%s`"), mesh, NearestName(bone));
}
// An error.
inline KTFAULT &treeTooDeep() {
    return newFault(KT_FAULT_LIMIT, KT_TEXT("tree"), KT_TEXT("more than %u levels"), {}, kMaxTreeDepth);
}

}  // namespace keltra

#endif
