// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FOUNDATION_ARGUMENT_H
#define KELTRA_FOUNDATION_ARGUMENT_H

#include "foundation/fault.h"

namespace keltra {

// What exported setters do with their texts: copyText and copyName, with a fault where less is stored than
// was given. A text that is cut is a warning, a name that is not taken an error.
void takeText(char (&target)[256], const char *text, FaultCall call, FaultText argument = KT_TEXT("path"));
bool takeName(char (&target)[256], const char *text, FaultCall call);

// A new object's name: std::snprintf of the pattern with the identifier, which is quick for one "%d".
void writeName(char (&target)[256], const char *pattern, unsigned int id);

}  // namespace keltra

#endif
