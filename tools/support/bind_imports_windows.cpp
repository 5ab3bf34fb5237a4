// SPDX-License-Identifier: Zlib
#include "tools/support/interpose.h"

#include <windows.h>

#include <cstring>

namespace keltra {
namespace {

// Whose calls are bound; the null is the program.
constexpr const char *kCallers[] = {nullptr, "keltra.dll", "keltra-kit.dll"};
constexpr const char *kLibraries[] = {"libGLESv1_CM.dll", "libEGL.dll",   "SDL.dll",
                                      "msvcrt.dll",       "kernel32.dll", "user32.dll"};

template <class T>
T *at(HMODULE module, std::size_t offset) {
    return reinterpret_cast<T *>(reinterpret_cast<char *>(module) + offset);
}

void set(void **address, void *function) {
    DWORD before;
    if (!VirtualProtect(address, sizeof *address, PAGE_READWRITE, &before)) std::abort();
    *address = function;
    VirtualProtect(address, sizeof *address, before, &before);
}

// With 32 bits the name of an import may end in @ and the bytes of its arguments.
bool isName(const char *import, const char *name) {
    const std::size_t length = std::strlen(name);
    return !std::strncmp(import, name, length) && (!import[length] || import[length] == '@');
}

void bindImports(HMODULE module, const char *name, void *function) {
    const auto *headers = at<IMAGE_NT_HEADERS>(module, at<IMAGE_DOS_HEADER>(module, 0)->e_lfanew);
    const auto &directory = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    if (!directory.VirtualAddress) return;
    const auto *library = at<IMAGE_IMPORT_DESCRIPTOR>(module, directory.VirtualAddress);
    for (; library->Name; ++library) {
        const auto *names = at<IMAGE_THUNK_DATA>(module, library->OriginalFirstThunk);
        auto *addresses = at<void *>(module, library->FirstThunk);
        for (; names->u1.AddressOfData; ++names, ++addresses) {
            if (IMAGE_SNAP_BY_ORDINAL(names->u1.Ordinal)) continue;
            const auto *import = at<IMAGE_IMPORT_BY_NAME>(module, names->u1.AddressOfData);
            if (isName(reinterpret_cast<const char *>(import->Name), name)) set(addresses, function);
        }
    }
}

}  // namespace

BoundImport::BoundImport(const char *name, void *function) {
    for (const char *caller : kCallers)
        if (HMODULE module = GetModuleHandleA(caller)) bindImports(module, name, function);
}

void *findInLibraries(const char *name) {
    for (const char *library : kLibraries) {
        const HMODULE module = GetModuleHandleA(library);
        const FARPROC found = module ? GetProcAddress(module, name) : nullptr;
        if (found) return reinterpret_cast<void *>(found);
    }
    return nullptr;
}

}  // namespace keltra
