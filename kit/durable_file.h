// SPDX-License-Identifier: Zlib
#ifndef KELTRA_KIT_DURABLE_FILE_H
#define KELTRA_KIT_DURABLE_FILE_H

#include <cstddef>

namespace keltra {
namespace kit {

// Writes `newPath`, brings it to the disk, and puts it in the place of `path`. False when a step fails:
// `path` is what it was, and `newPath` is gone.
bool replaceFile(const char *path, const char *newPath, const void *bytes, std::size_t size);

}  // namespace kit
}  // namespace keltra

#endif
