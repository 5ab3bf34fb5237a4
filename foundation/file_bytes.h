// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FOUNDATION_FILE_BYTES_H
#define KELTRA_FOUNDATION_FILE_BYTES_H

#include <cstddef>
#include <cstdio>

namespace keltra {

class FaultScope;

constexpr long kLargestFile = 0x7fffffff;

// The path of a file below a directory prefix, to which the name is appended as it is. Prefixes hold 255
// characters, and so may names; a longer one, or null, makes the path empty, which no file has.
struct FilePath {
    char text[512];

    FilePath(const char *prefix, const char *name);
};

// A whole file in a buffer of the counted allocator; empty when it cannot be read.
class FileBytes {
   public:
    // A file of more than `largest` bytes counts as one that cannot be read. Fails `scope`, if there is one,
    // when it is empty.
    explicit FileBytes(const char *path, long largest = kLargestFile, FaultScope *scope = nullptr);
    ~FileBytes();
    FileBytes(const FileBytes &) = delete;
    FileBytes &operator=(const FileBytes &) = delete;

    const char *data() const { return bytes; }
    std::size_t size() const { return length; }
    // For an empty one: the file exists, but there was no memory for it.
    bool isOutOfMemory() const { return noMemory; }

   private:
    void read(std::FILE *file, std::size_t end);

    char *bytes;
    std::size_t length;
    bool noMemory;
};

}  // namespace keltra

#endif
