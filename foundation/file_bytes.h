#ifndef KELTRA_FOUNDATION_FILE_BYTES_H
#define KELTRA_FOUNDATION_FILE_BYTES_H

#include <keltra/foundation.h>

#include <cstdio>
#include <cstring>

#include "foundation/quiet.h"

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
        std::FILE *file = path && *path ? std::fopen(path, "rb") : nullptr;
        if (!file) return;
        read(file, largest);
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
    void read(std::FILE *file, long largest) {
        long end = std::fseek(file, 0, SEEK_END) == 0 ? std::ftell(file) : -1;
        if (end <= 0 || end > largest || std::fseek(file, 0, SEEK_SET) != 0) return;
        bytes = static_cast<char *>(allocate(static_cast<unsigned int>(end)));
        noMemory = !bytes;
        if (noMemory) return;
        length = std::fread(bytes, 1, static_cast<std::size_t>(end), file);
        if (length == static_cast<std::size_t>(end)) return;
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
