// SPDX-License-Identifier: Zlib
#ifndef KELTRA_INFO_INSPECT_H
#define KELTRA_INFO_INSPECT_H

// Describes a file of the engine and its faults. All parsers are the engine's own, so that a file is good
// here exactly when the engine loads it.

#include "tools/info/inspection.h"

#include <cstddef>
#include <string>
#include <vector>

namespace keltra::info {

// The word for the kind on the command line and in the output.
const char *kindName(FileKind kind);
FileKind kindOfName(const std::string &name);
std::vector<std::string> kindNames();

// The kind of a file by its contents, or by its extension when they do not decide.
FileKind identify(const std::string &fileName, const void *bytes, std::size_t size);

// A film is good when the engine's decoder gets a picture out of it: the engine opens any file as a film, and
// shows nothing of one that has none. Names of other files are looked for in `folder`; when it is empty, not
// at all.
Inspection inspect(FileKind kind, const void *bytes, std::size_t size, const std::string &folder = "");

}  // namespace keltra::info

#endif
