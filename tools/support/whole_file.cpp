// SPDX-License-Identifier: Zlib
#include "tools/support/whole_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#if defined(_WIN32)
#define O_CLOEXEC O_NOINHERIT
#define lstat stat  // links are followed
#define S_ISLNK(mode) false
#else
#define O_BINARY 0
#endif

namespace keltra::support {
namespace {

bool writeAll(int file, const char *bytes, std::size_t size) {
    while (size > 0) {
        const ssize_t count = ::write(file, bytes, size);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return false;
        bytes += count;
        size -= static_cast<std::size_t>(count);
    }
    return true;
}

// Renaming would put a file in the place of a device.
bool canReplace(const std::string &path) {
    struct stat status;
    if (::lstat(path.c_str(), &status) != 0) return true;
    if (S_ISREG(status.st_mode) || S_ISLNK(status.st_mode)) return true;
    errno = S_ISDIR(status.st_mode) ? EISDIR : EEXIST;
    return false;
}

bool writeAside(const std::string &aside, const void *bytes, std::size_t size) {
    const int file = ::open(aside.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_BINARY, 0666);
    if (file < 0) return false;
    const bool good = writeAll(file, static_cast<const char *>(bytes), size);
    const int fault = errno;
    if (::close(file) != 0) return false;
    errno = fault;
    return good;
}

// On Windows `rename` replaces no file: the old one goes first, which is the moment that is left.
bool replace(const std::string &aside, const std::string &path) {
#if defined(_WIN32)
    ::unlink(path.c_str());
#endif
    return std::rename(aside.c_str(), path.c_str()) == 0;
}

}  // namespace

bool writeWhole(const std::string &path, const void *bytes, std::size_t size, std::string *reason) {
    const std::string aside = path + "." + std::to_string(::getpid()) + ".tmp";
    if (canReplace(path)) {
        if (writeAside(aside, bytes, size) && replace(aside, path)) return true;
        const int fault = errno;
        if (fault != EEXIST) ::unlink(aside.c_str());
        errno = fault;
    }
    *reason = std::strerror(errno);
    return false;
}

}  // namespace keltra::support
