// SPDX-License-Identifier: Zlib
#ifndef KELTRA_CONVERT_DEPFILE_H
#define KELTRA_CONVERT_DEPFILE_H

// A rule in the syntax of make: the files that were written depend on those that were read.

#include "tools/convert/outcome.h"

#include <string>

namespace keltra::convert {

// The scene is the first target.
std::string dependenciesOf(const std::string &folder, const Outcome &outcome);

// Replaces the file as a whole. Throws Refusal.
void writeDependencies(const std::string &path, const std::string &folder, const Outcome &outcome);

}  // namespace keltra::convert

#endif
