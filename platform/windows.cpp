// SPDX-License-Identifier: Zlib
#include "platform/platform.h"

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <SDL_syswm.h>

#include <cerrno>

namespace keltra {
namespace {

constexpr int kLargestWindow = 32767;

// The size is that of a file. Asked of the system: the C library's positions end at 2 GiB there.
PathKind kindAndSize(const char *path, std::int64_t &size) {
    WCHAR wide[MAX_PATH];
    WIN32_FILE_ATTRIBUTE_DATA found;
    if (!MultiByteToWideChar(CP_ACP, 0, path, -1, wide, MAX_PATH)) return PathKind::kNothing;
    if (!GetFileAttributesExW(wide, GetFileExInfoStandard, &found)) return PathKind::kNothing;
    size = static_cast<std::int64_t>(found.nFileSizeHigh) << 32 | found.nFileSizeLow;
    return found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY ? PathKind::kOther : PathKind::kFile;
}

}  // namespace

std::int64_t platformCounter() {
    LARGE_INTEGER ticks;
    return QueryPerformanceCounter(&ticks) ? ticks.QuadPart : 0;
}

std::int64_t platformCounterFrequency() {
    LARGE_INTEGER ticks;
    return QueryPerformanceFrequency(&ticks) ? ticks.QuadPart : 0;
}

PhysicalMemory platformMemory() {
    MEMORYSTATUS status;
    status.dwLength = sizeof status;
    GlobalMemoryStatus(&status);
    return {status.dwTotalPhys, status.dwAvailPhys};
}

std::uint64_t platformReclaimableMemory(const PhysicalMemory &) { return 0; }

WindowDriverOnly::WindowDriverOnly() : named(false) {}
WindowDriverOnly::~WindowDriverOnly() = default;

void platformExpectUse(void *, std::size_t) {}

LocalTime platformLocalTime() {
    SYSTEMTIME now;
    GetLocalTime(&now);
    return {now.wDay, now.wMonth, now.wYear, now.wHour, now.wMinute, now.wSecond, now.wMilliseconds};
}

PathKind platformPathKind(const char *path) {
    std::int64_t size;
    return kindAndSize(path, size);
}

std::FILE *platformOpenFile(const char *path, std::int64_t &size) {
    errno = 0;  // the calls of the system leave it alone
    std::FILE *file = kindAndSize(path, size) == PathKind::kFile ? std::fopen(path, "rb") : nullptr;
    if (file) std::setvbuf(file, nullptr, _IONBF, 0);
    return file;
}

std::int64_t platformFileSize(const char *path) {
    std::int64_t size;
    std::FILE *file = platformOpenFile(path, size);
    if (!file) return -1;
    std::fclose(file);
    return size;
}

std::FILE *platformCreateFile(const char *path, const char *mode) { return std::fopen(path, mode); }

bool platformCanReplace(const char *path) { return platformPathKind(path) == PathKind::kFile; }

// Not in one step: `rename` refuses the name of a file that exists.
bool platformReplaceFile(const char *from, const char *to) {
    return std::remove(to) == 0 && std::rename(from, to) == 0;
}

// The device has no environment.
bool platformHasSwitch(const char *) { return false; }

NativeWindow platformNativeWindow(const void *windowInfo) {
    const SDL_SysWMinfo *info = static_cast<const SDL_SysWMinfo *>(windowInfo);
    return {nullptr, info ? static_cast<void *>(info->window) : nullptr};
}

void platformPlaceWindow(const NativeWindow &window, int x, int y, int width, int height) {
    if (!window.window) return;
    if (width < 1 || height < 1 || width > kLargestWindow || height > kLargestWindow) return;
    SetWindowPos(static_cast<HWND>(window.window), HWND_TOPMOST, x, y, width, height, SWP_SHOWWINDOW);
}

void platformAskWindowDevice(const NativeWindow &window) {
    const HWND handle = static_cast<HWND>(window.window);
    if (!handle) return;
    if (const HDC device = GetDC(handle)) ReleaseDC(handle, device);
}

}  // namespace keltra
