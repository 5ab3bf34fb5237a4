// SPDX-License-Identifier: Zlib
#include "formats/scene_faults.h"

#include "formats/limits.h"

namespace keltra {

namespace {

KTFAULT &unknown(FaultText what, const char *mesh, const char *name, const char *nearest) {
    KTFAULT &fault = newFault(KT_FAULT_UNKNOWN);
    fault.severity = KT_FAULT_WARNING;
    writeFaultText(fault.field, what, mesh);
    setFaultText(fault.found, name);
    setFaultText(fault.expected, nearest);
    return fault;
}

}  // namespace

KTFAULT &unknownMaterial(const char *mesh, const char *material, const char *nearest) {
    return unknown(KT_TEXT("material of mesh `%s`"), mesh, material, nearest);
}

KTFAULT &unknownBone(const char *mesh, const char *bone) {
    return unknown(KT_TEXT("bone of mesh `%s`"), mesh, bone, "");
}

KTFAULT &treeTooDeep() {
    KTFAULT &fault = newFault(KT_FAULT_LIMIT);
    writeFaultText(fault.field, KT_TEXT("tree"));
    writeFaultText(fault.found, KT_TEXT("more than %u levels"), kMaxTreeDepth);
    return fault;
}

}  // namespace keltra
