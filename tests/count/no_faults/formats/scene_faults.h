// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FORMATS_SCENE_FAULTS_H
#define KELTRA_FORMATS_SCENE_FAULTS_H

#include "formats/fault.h"

namespace keltra {

inline KTFAULT &unknownMaterial(const char *, const NearestName &) { return newFault(KT_FAULT_NONE); }
inline KTFAULT &unknownBone(const char *, const char *) { return newFault(KT_FAULT_NONE); }
inline KTFAULT &treeTooDeep() { return newFault(KT_FAULT_NONE); }

}  // namespace keltra

#endif
