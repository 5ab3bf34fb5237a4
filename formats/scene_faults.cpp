// SPDX-License-Identifier: Zlib
#include "formats/scene_faults.h"

#include "formats/limits.h"

#include <cstdio>

namespace keltra {

namespace {

KTFAULT unknown(const char *what, const char *mesh, const char *name) {
    KTFAULT fault = newFault(KT_FAULT_UNKNOWN);
    fault.severity = KT_FAULT_WARNING;
    if (kFaultTexts) std::snprintf(fault.field, sizeof fault.field, "%s of mesh `%s`", what, mesh);
    setFaultText(fault.found, name);
    return fault;
}

}  // namespace

KTFAULT unknownMaterial(const char *mesh, const char *material, const char *nearest) {
    KTFAULT fault = unknown("material", mesh, material);
    setFaultText(fault.expected, nearest);
    return fault;
}

KTFAULT unknownBone(const char *mesh, const char *bone) { return unknown("bone", mesh, bone); }

KTFAULT treeTooDeep() {
    KTFAULT fault = newFault(KT_FAULT_LIMIT);
    setFaultText(fault.field, faultText("tree"));
    if (kFaultTexts) std::snprintf(fault.found, sizeof fault.found, "more than %u levels", kMaxTreeDepth);
    return fault;
}

}  // namespace keltra
