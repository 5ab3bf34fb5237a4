// SPDX-License-Identifier: Zlib
// What the engine asks the system for, answered without it: most of the time of an execution would go there.
// Files that targets name are in memory, and during an execution the current folder is empty. What is
// written, and all else, is the system's.

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/sysinfo.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstring>

#include "fuzz/harness.h"

namespace {

constexpr unsigned kSlots = 4;
constexpr int kFirstDescriptor = 1 << 20;  // higher than the system's
constexpr char kFolder[] = "/fuzz/";

struct MemoryFile {
    const std::uint8_t *data = nullptr;
    std::size_t size = 0;
} files[kSlots];
bool isExecuting = false;

// The file of a path or descriptor; null for the system's.
const MemoryFile *fileAt(const char *path) {
    constexpr std::size_t kLength = sizeof kFolder - 1;
    if (std::strncmp(path, kFolder, kLength) != 0) return nullptr;
    const char digit = path[kLength];
    const bool isFile = digit >= '0' && digit < '0' + static_cast<int>(kSlots) && !path[kLength + 1];
    return isFile ? &files[digit - '0'] : nullptr;
}
const MemoryFile *fileAt(int descriptor) {
    return descriptor >= kFirstDescriptor ? &files[descriptor - kFirstDescriptor] : nullptr;
}

int describe(const MemoryFile &file, struct stat *status) {
    *status = {};
    status->st_mode = S_IFREG | S_IRUSR;
    status->st_size = static_cast<off_t>(file.size);
    return 0;
}

// A name in the current folder, or that of the system's figures of memory.
bool isNowhere(const char *path) {
    return isExecuting && (*path != '/' || std::strcmp(path, "/proc/meminfo") == 0);
}

int notThere() {
    errno = ENOENT;
    return -1;
}

}  // namespace

namespace keltra::fuzz {

const char *fileOf(const std::uint8_t *data, std::size_t size, unsigned slot) {
    static const char *const paths[kSlots] = {"/fuzz/0", "/fuzz/1", "/fuzz/2", "/fuzz/3"};
    files[slot].data = data;
    files[slot].size = size;
    return paths[slot];
}

void setExecuting(bool executing) { isExecuting = executing; }

const char *fileToWrite() {
    static const std::string path = "/proc/self/fd/" + std::to_string(memfd_create("fuzz", 0));
    return path.c_str();
}

}  // namespace keltra::fuzz

extern "C" {

int stat(const char *path, struct stat *status) {
    if (const MemoryFile *file = fileAt(path)) return describe(*file, status);
    return isNowhere(path) ? notThere() : fstatat(AT_FDCWD, path, status, 0);
}

int fstat(int descriptor, struct stat *status) {
    if (const MemoryFile *file = fileAt(descriptor)) return describe(*file, status);
    return fstatat(descriptor, "", status, AT_EMPTY_PATH);
}

int open(const char *path, int flags, ...) {
    if (const MemoryFile *file = fileAt(path)) return kFirstDescriptor + static_cast<int>(file - files);
    mode_t mode = 0;
    if (flags & O_CREAT) {
        va_list arguments;
        va_start(arguments, flags);
        mode = va_arg(arguments, mode_t);
        va_end(arguments);
    } else if (isNowhere(path)) {
        return notThere();
    }
    return openat(AT_FDCWD, path, flags, mode);
}

int close(int descriptor) {
    return fileAt(descriptor) ? 0 : static_cast<int>(syscall(SYS_close, descriptor));
}

FILE *fopen(const char *path, const char *mode) {
    if (fileAt(path)) return fdopen(open(path, O_RDONLY), mode);
    static const auto next =
        reinterpret_cast<FILE *(*)(const char *, const char *)>(dlsym(RTLD_NEXT, "fopen"));
    return next(path, mode);
}

FILE *fdopen(int descriptor, const char *mode) {
    if (const MemoryFile *file = fileAt(descriptor))
        return fmemopen(const_cast<std::uint8_t *>(file->data), file->size, mode);
    static const auto next = reinterpret_cast<FILE *(*)(int, const char *)>(dlsym(RTLD_NEXT, "fdopen"));
    return next(descriptor, mode);
}

int sysinfo(struct sysinfo *info) {
    *info = {};
    info->totalram = 4u << 20;
    info->freeram = 1u << 20;
    info->mem_unit = 1024;
    return 0;
}
}
