// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FOUNDATION_FILE_BYTES_H
#define KELTRA_FOUNDATION_FILE_BYTES_H

#include <keltra/foundation.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "foundation/quiet.h"
#include "platform/platform.h"

namespace keltra {

// The path of a file below a directory prefix, to which the name is appended as it is. Prefixes hold 255
// characters, and so may names; a longer one, or null, makes the path empty, which no file has.
struct FilePath {
    char text[512];

    FilePath(const char *prefix, const char *name) : text() {
        if (!prefix || !name || std::strlen(prefix) + std::strlen(name) >= sizeof text) return;
        std::strcpy(text, prefix);
        std::strcat(text, name);
    }
};

// A whole file in a buffer of the counted allocator; empty when it cannot be read.
class FileBytes {
   public:
    // A file of more than `largest` bytes counts as one that cannot be read.
    explicit FileBytes(const char *path, long largest = 0x7fffffff)
        : bytes(nullptr), length(0), noMemory(false) {
        std::int64_t end = 0;
        std::FILE *file = path && *path ? platformOpenFile(path, end) : nullptr;
        noMemory = path && *path && !file && errno == ENOMEM;
        if (!file) return;
        if (end > 0 && end <= largest) read(file, static_cast<std::size_t>(end));
        std::fclose(file);
    }
    ~FileBytes() {
        if (bytes) vnfFree(bytes);
    }
    FileBytes(const FileBytes &) = delete;
    FileBytes &operator=(const FileBytes &) = delete;

    const char *data() const { return bytes; }
    std::size_t size() const { return length; }
    // For an empty one: the file exists, but there was no memory for it.
    bool isOutOfMemory() const { return noMemory; }

   private:
    // A file that has become shorter counts as one that cannot be read.
    void read(std::FILE *file, std::size_t end) {
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

    char *bytes;
    std::size_t length;
    bool noMemory;
};

}  // namespace keltra

#endif
