// SPDX-License-Identifier: Zlib
#ifndef KELTRA_PLATFORM_PLATFORM_H
#define KELTRA_PLATFORM_PLATFORM_H

// The services of the operating system that the engine needs beyond the C library.

#include <cstddef>
#include <cstdint>
#include <cstdio>

namespace keltra {

// Ticks since some fixed moment, never running backwards, and ticks per second.
std::int64_t platformCounter();
std::int64_t platformCounterFrequency();

struct PhysicalMemory {
    std::uint64_t total, available;  // bytes
};

// Called at every counted allocation: costs less than a microsecond. Memory that the system only keeps as a
// cache of files may be missing from what is available.
PhysicalMemory platformMemory();

// How much of such a cache the system would give up for programs; 0 when unknown. Costs some 20 microseconds.
std::uint64_t platformReclaimableMemory(const PhysicalMemory &memory);

// The block, which nothing was written to yet, is soon written from end to end: the system may lay it out in
// large pages.
void platformExpectUse(void *block, std::size_t size);

// A cleared block at a multiple of its size, which is a power of two; null when out of memory. Its pages take
// memory when they are first written to. On systems of 64 bits only, and not on Windows.
void *platformTakePages(std::size_t size);
void platformReturnPages(void *block, std::size_t size);

// Gives the pages of a block back that the C library has cleared: they take no memory until they are used.
// Where the two above are.
void platformDropZeros(void *block, std::size_t size);

struct LocalTime {
    unsigned int day, month, year, hour, minute, second, millisecond;  // month 1 to 12, year with its century
};

LocalTime platformLocalTime();

enum class PathKind { kNothing, kFile, kOther };

// What is at the path, without opening it: a folder, a device or a pipe is kOther.
PathKind platformPathKind(const char *path);

// Opens a regular file for reading, and gives its size. Null for anything else: opening a pipe may wait for
// ever, and a device may have no end; with errno ENOMEM when out of memory. It has no buffer: each read is
// one of the system, straight into its place, so read much at a time.
std::FILE *platformOpenFile(const char *path, std::int64_t &size);

// The size of a regular file that can be opened for reading; -1 for anything else.
std::int64_t platformFileSize(const char *path);

// `fopen` with the mode "wb" or "wt", but null, without waiting, for a pipe that nobody reads.
std::FILE *platformCreateFile(const char *path, const char *mode);

// True for a regular file that may be written to, not a link to one.
bool platformCanReplace(const char *path);
// Gives the file `from` the name of the file `to`, which is gone then; both are in one folder.
bool platformReplaceFile(const char *from, const char *to);

// True when the environment has the variable with the value "1"; false where there is no environment.
bool platformHasSwitch(const char *variable);
// While it exists, SDL starts the driver of the window system or none: no driver that draws to a text console
// and prints to it. A driver that the user named in SDL_VIDEODRIVER is left alone.
class WindowDriverOnly {
   public:
    WindowDriverOnly();
    ~WindowDriverOnly();
    WindowDriverOnly(const WindowDriverOnly &) = delete;
    WindowDriverOnly &operator=(const WindowDriverOnly &) = delete;

   private:
    bool named;
};

// A window as its system names it. The display is null where the system has no such thing.
struct NativeWindow {
    void *display, *window;
};

// Takes the handles out of a filled SDL_SysWMinfo; nulls when it describes no window of this system.
NativeWindow platformNativeWindow(const void *windowInfo);

// Puts the window above all others at the given place. Does nothing without a window or with sizes
// outside 1..32767.
void platformPlaceWindow(const NativeWindow &window, int x, int y, int width, int height);

// Asks for the window's device context, where the system has such a thing, and gives it back.
void platformAskWindowDevice(const NativeWindow &window);

}  // namespace keltra

#endif
