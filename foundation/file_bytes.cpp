// SPDX-License-Identifier: Zlib
#include "foundation/file_bytes.h"

#include <keltra/foundation.h>

#include "foundation/fault.h"
#include "foundation/quiet.h"
#include "platform/platform.h"

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>

namespace keltra {

FilePath::FilePath(const char *prefix, const char *name) : text() {
    if (!prefix || !name || std::strlen(prefix) + std::strlen(name) >= sizeof text) return;
    std::strcpy(text, prefix);
    std::strcat(text, name);
}

FileBytes::FileBytes(const char *path, long largest, FaultScope *scope)
    : bytes(nullptr), length(0), noMemory(false) {
    std::int64_t end = 0;
    const bool isNamed = path && *path;
    std::FILE *file = isNamed ? platformOpenFile(path, end) : nullptr;
    noMemory = isNamed && !file && errno == ENOMEM;
    if (file) {
        if (end > 0 && end <= largest) read(file, static_cast<std::size_t>(end));
        std::fclose(file);
    }
    if (scope && !bytes) scope->failFile(noMemory, largest);
}

FileBytes::~FileBytes() {
    if (bytes) vnfFree(bytes);
}

// A file that has become shorter counts as one that cannot be read.
void FileBytes::read(std::FILE *file, std::size_t end) {
    bytes = static_cast<char *>(allocate(static_cast<unsigned int>(end)));
    noMemory = !bytes;
    if (noMemory) return;
    platformExpectUse(bytes, end);
    length = std::fread(bytes, 1, end, file);
    if (length == end) return;
    vnfFree(bytes);
    bytes = nullptr;
    length = 0;
}

}  // namespace keltra
