// SPDX-License-Identifier: Zlib
#if __SIZEOF_POINTER__ == 4
#define _FILE_OFFSET_BITS 64  // the sizes of large files are told, not taken for missing files
#endif

#include "platform/platform.h"

#include <SDL_syswm.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/sysinfo.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace keltra {
namespace {

constexpr std::int64_t kNanosecondsPerSecond = 1000000000;
constexpr int kLargestWindow = 32767;  // the X server ends the process over a size that it cannot hold

#if defined(SDL_VIDEO_DRIVER_X11)
// SDL brings libX11 into the process when it opens a window on X, so the engine does not link it.
class LoadedX11 {
   public:
    LoadedX11() : library(dlopen("libX11.so.6", RTLD_LAZY | RTLD_NOLOAD)) {}
    ~LoadedX11() {
        if (library) dlclose(library);
    }
    LoadedX11(const LoadedX11 &) = delete;
    LoadedX11 &operator=(const LoadedX11 &) = delete;

    template <class Function>
    Function *find(const char *name) const {
        return library ? reinterpret_cast<Function *>(dlsym(library, name)) : nullptr;
    }

   private:
    void *library;
};

static_assert(sizeof(Window) <= sizeof(void *), "an X window identifier travels in a pointer");
#endif

constexpr char kDriverVariable[] = "SDL_VIDEODRIVER";

// The bytes of a line of /proc/meminfo; 0 without it.
std::uint64_t memoryLine(const char *text, const char *key) {
    const char *line = std::strstr(text, key);
    return line ? std::strtoull(line + std::strlen(key), nullptr, 10) * 1024 : 0;
}

// The descriptor of a regular file, -1 for anything else.
int openRegular(const char *path, std::int64_t &size) {
    errno = 0;
    // Some devices act when they are opened, so they are not.
    if (platformPathKind(path) != PathKind::kFile) return -1;
    const int file = open(path, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    struct stat status;
    if (file < 0) return -1;
    if (fstat(file, &status) == 0 && S_ISREG(status.st_mode)) {
        size = status.st_size;
        return file;
    }
    close(file);
    return -1;
}

}  // namespace

std::int64_t platformCounter() {
    timespec now;
    if (clock_gettime(CLOCK_MONOTONIC, &now) != 0) return 0;
    return now.tv_sec * kNanosecondsPerSecond + now.tv_nsec;
}

std::int64_t platformCounterFrequency() { return kNanosecondsPerSecond; }

PhysicalMemory platformMemory() {
    struct sysinfo info;
    if (sysinfo(&info) != 0) return {0, 0};
    std::uint64_t unit = info.mem_unit;
    return {info.totalram * unit, (std::uint64_t(info.freeram) + info.bufferram) * unit};
}

// A container may show the process another machine in /proc than the system call does; the two must not be
// mixed.
std::uint64_t platformReclaimableMemory(const PhysicalMemory &memory) {
    char text[512];
    const int file = open("/proc/meminfo", O_RDONLY | O_CLOEXEC);
    if (file < 0) return 0;
    const ssize_t length = read(file, text, sizeof text - 1);
    close(file);
    text[length > 0 ? length : 0] = '\0';
    const std::uint64_t total = memoryLine(text, "MemTotal:"), available = memoryLine(text, "MemAvailable:");
    return total == memory.total && available > memory.available ? available - memory.available : 0;
}

// Pages of two megabytes, the usual large ones. Where there are none, the advice is refused.
void platformExpectUse(void *block, std::size_t size) {
#if defined(MADV_HUGEPAGE)
    constexpr std::uintptr_t kLarge = 2 << 20;
    const std::uintptr_t address = reinterpret_cast<std::uintptr_t>(block);
    const std::uintptr_t begin = (address + kLarge - 1) / kLarge * kLarge,
                         end = (address + size) / kLarge * kLarge;
    if (begin >= end) return;
    const int earlier = errno;
    madvise(reinterpret_cast<void *>(begin), end - begin, MADV_HUGEPAGE);
    errno = earlier;
#else
    (void)block;
    (void)size;
#endif
}

#if __SIZEOF_POINTER__ == 8
namespace {

char *mapPages(std::size_t size) {
    void *const pages = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    return pages == MAP_FAILED ? nullptr : static_cast<char *>(pages);
}

}  // namespace

// Memory of a C library's heap is private, and such pages read as zeros when they come back.
void platformDropZeros(void *block, std::size_t size) {
    const std::uintptr_t page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
    const std::uintptr_t address = reinterpret_cast<std::uintptr_t>(block);
    const std::uintptr_t begin = (address + page - 1) / page * page, end = (address + size) / page * page;
    if (begin >= end) return;
    const int earlier = errno;
    madvise(reinterpret_cast<void *>(begin), end - begin, MADV_DONTNEED);
    errno = earlier;
}

// Behind one such block the system most often puts the next; else the ends of a larger one are given back.
void *platformTakePages(std::size_t size) {
    const int earlier = errno;
    const auto excess = [size](const char *block) { return reinterpret_cast<std::uintptr_t>(block) % size; };
    char *block = mapPages(size);
    if (block && excess(block)) {
        munmap(block, size);
        block = mapPages(2 * size);
        if (block) {
            const std::size_t before = (size - excess(block)) % size;
            if (before) munmap(block, before);
            block += before;
            munmap(block + size, size - before);
        }
    }
    errno = earlier;
    return block;
}

void platformReturnPages(void *block, std::size_t size) { munmap(block, size); }
#endif

LocalTime platformLocalTime() {
    timespec now;
    tm fields;
    if (clock_gettime(CLOCK_REALTIME, &now) != 0 || !localtime_r(&now.tv_sec, &fields)) return {};
    return {unsigned(fields.tm_mday),       unsigned(fields.tm_mon + 1), unsigned(fields.tm_year + 1900),
            unsigned(fields.tm_hour),       unsigned(fields.tm_min),     unsigned(fields.tm_sec),
            unsigned(now.tv_nsec / 1000000)};
}

PathKind platformPathKind(const char *path) {
    struct stat status;
    if (stat(path, &status) == 0) return S_ISREG(status.st_mode) ? PathKind::kFile : PathKind::kOther;
    // A folder of the path may deny access; then it is unknown what the path names.
    return errno == EACCES ? PathKind::kFile : PathKind::kNothing;
}

std::FILE *platformOpenFile(const char *path, std::int64_t &size) {
    const int file = openRegular(path, size);
    if (file < 0) return nullptr;
    std::FILE *stream = fdopen(file, "rb");
    if (!stream) {
        close(file);
        return nullptr;
    }
    std::setvbuf(stream, nullptr, _IONBF, 0);
    return stream;
}

std::int64_t platformFileSize(const char *path) {
    std::int64_t size;
    const int file = openRegular(path, size);
    if (file < 0) return -1;
    close(file);
    return size;
}

std::FILE *platformCreateFile(const char *path, const char *mode) {
    const int file = open(path, O_WRONLY | O_CREAT | O_TRUNC | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, 0666);
    if (file < 0) return nullptr;
    fcntl(file, F_SETFL, 0);
    std::FILE *stream = fdopen(file, mode);
    if (!stream) close(file);
    return stream;
}

bool platformCanReplace(const char *path) {
    struct stat status;
    return lstat(path, &status) == 0 && S_ISREG(status.st_mode) && access(path, W_OK) == 0;
}

bool platformReplaceFile(const char *from, const char *to) { return std::rename(from, to) == 0; }

bool platformHasSwitch(const char *variable) {
    const char *value = std::getenv(variable);
    return value && std::strcmp(value, "1") == 0;
}

#if defined(SDL_VIDEO_DRIVER_X11)

WindowDriverOnly::WindowDriverOnly() {
    const char *name = std::getenv(kDriverVariable);
    named = name && *name;
    if (!named) setenv(kDriverVariable, "x11", 1);
}

WindowDriverOnly::~WindowDriverOnly() {
    if (!named) unsetenv(kDriverVariable);
}

NativeWindow platformNativeWindow(const void *windowInfo) {
    const SDL_SysWMinfo *info = static_cast<const SDL_SysWMinfo *>(windowInfo);
    if (!info || info->subsystem != SDL_SYSWM_X11) return {nullptr, nullptr};
    return {info->info.x11.display, reinterpret_cast<void *>(info->info.x11.window)};
}

void platformPlaceWindow(const NativeWindow &window, int x, int y, int width, int height) {
    if (!window.display || !window.window) return;
    if (width < 1 || height < 1 || width > kLargestWindow || height > kLargestWindow) return;
    LoadedX11 x11;
    auto moveResize = x11.find<decltype(XMoveResizeWindow)>("XMoveResizeWindow");
    auto raise = x11.find<decltype(XRaiseWindow)>("XRaiseWindow");
    auto flush = x11.find<decltype(XFlush)>("XFlush");
    if (!moveResize || !raise || !flush) return;
    Display *display = static_cast<Display *>(window.display);
    Window handle = reinterpret_cast<Window>(window.window);
    moveResize(display, handle, x, y, unsigned(width), unsigned(height));
    raise(display, handle);
    flush(display);
}

#else

WindowDriverOnly::WindowDriverOnly() : named(false) {}
WindowDriverOnly::~WindowDriverOnly() = default;

NativeWindow platformNativeWindow(const void *) { return {nullptr, nullptr}; }

void platformPlaceWindow(const NativeWindow &, int, int, int, int) {}

#endif

void platformAskWindowDevice(const NativeWindow &) {}

}  // namespace keltra
