// SPDX-License-Identifier: Zlib
#ifndef KELTRA_CONVERT_ISOLATED_H
#define KELTRA_CONVERT_ISOLATED_H

#include "tools/convert/outcome.h"

#include <string>

namespace keltra::convert {

// Converts in a child process, because a damaged model can crash its importer or make it run forever; both
// count as refusals. The child writes into `folder`, which must exist; with an empty name it writes nothing.
// It is stopped after `seconds`.
Outcome convertIsolated(const Options &options, const std::string &folder, const Progress &progress,
                        unsigned seconds = 300);

// The same with another conversion function.
Outcome convertIsolated(const ConvertFunction &convert, const Options &options, const std::string &folder,
                        const Progress &progress, unsigned seconds);

}  // namespace keltra::convert

#endif
