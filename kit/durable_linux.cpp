// SPDX-License-Identifier: Zlib
#include "kit/durable_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace keltra {
namespace kit {
namespace {

bool writeAll(int file, const char *bytes, std::size_t size) {
    while (size > 0) {
        const ssize_t written = ::write(file, bytes, size);
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return false;
        bytes += written;
        size -= static_cast<std::size_t>(written);
    }
    return true;
}

// The new name is on the disk once the folder is. Not every file system can be asked for that.
void syncFolderOf(const char *path) {
    char folder[256] = ".";
    const char *const slash = std::strrchr(path, '/');
    if (slash) {
        const std::size_t length = static_cast<std::size_t>(slash - path) + 1;
        std::memcpy(folder, path, length);
        folder[length] = '\0';
    }
    const int file = open(folder, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (file < 0) return;
    fsync(file);
    close(file);
}

}  // namespace

bool replaceFile(const char *path, const char *newPath, const void *bytes, std::size_t size) {
    const int file = open(newPath, O_WRONLY | O_CREAT | O_TRUNC | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, 0666);
    if (file < 0) return false;
    bool good = writeAll(file, static_cast<const char *>(bytes), size) && fsync(file) == 0;
    good = close(file) == 0 && good;
    good = good && std::rename(newPath, path) == 0;
    if (good)
        syncFolderOf(path);
    else
        unlink(newPath);
    return good;
}

}  // namespace kit
}  // namespace keltra
