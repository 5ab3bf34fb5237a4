// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FOUNDATION_QUIET_H
#define KELTRA_FOUNDATION_QUIET_H

#include <keltra/fault.h>

#include <cstdint>

struct vnfParser;

// Exported functions of the foundation without their faults, for the engine's own use. The caller reports the
// failure, if it is one.

namespace keltra {

void *allocate(unsigned int size);  // vnfMalloc, whose sample of the peak may come later
bool returnId(unsigned int id);     // releaseId
bool adjournTimer(int timer);       // vnfAdjournTimer
bool returnTimer(int timer);        // vnfFreeTimer

constexpr long kLargestText = INT32_MAX - 2;  // the position may end two bytes past the contents
KT_FAULT_CODE readParser(vnfParser &parser, const char *path);  // vnfOpenParser
void squeezeLine(char *line);                                   // leaves blanks and tabs out, as parsers do

}  // namespace keltra

#endif
