// SPDX-License-Identifier: Zlib
#ifndef KELTRA_SUPPORT_WHOLE_FILE_H
#define KELTRA_SUPPORT_WHOLE_FILE_H

#include <cstddef>
#include <string>

namespace keltra::support {

// Writes a temporary file beside `path` and renames it, so that the file is never incomplete and an old one
// stays when there is no room. Returns false, with the reason, on failure, and for what is not a regular
// file.
bool writeWhole(const std::string &path, const void *bytes, std::size_t size, std::string *reason);

}  // namespace keltra::support

#endif
