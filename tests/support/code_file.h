// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TESTS_CODE_FILE_H
#define KELTRA_TESTS_CODE_FILE_H

// Which program or library a piece of code belongs to. Nothing here allocates.

#ifdef _WIN32
#include <windows.h>
#else
#include <dlfcn.h>
#endif

#include <cstring>

namespace keltra::test {

#ifdef _WIN32

inline HMODULE moduleOf(const void *address) {
    HMODULE module = nullptr;
    GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       static_cast<const char *>(address), &module);
    return module;
}
/// The name of its file, without folders, valid until the next call; null when it is of none.
inline const char *fileOfCode(const void *address) {
    static char path[MAX_PATH];
    const HMODULE module = moduleOf(address);
    if (!module || !GetModuleFileNameA(module, path, MAX_PATH)) return nullptr;
    const char *const slash = std::strrchr(path, '\\');
    return slash ? slash + 1 : path;
}
inline bool isOfProgram(const void *address) { return moduleOf(address) == GetModuleHandleA(nullptr); }

#else

inline const char *fileOfCode(const void *address) {
    Dl_info info;
    if (!dladdr(address, &info) || !info.dli_fname) return nullptr;
    const char *const slash = std::strrchr(info.dli_fname, '/');
    return slash ? slash + 1 : info.dli_fname;
}
inline bool isOfProgram(const void *address) {
    Dl_info of, own;
    return dladdr(address, &of) && dladdr(reinterpret_cast<const void *>(&fileOfCode), &own) &&
           of.dli_fbase == own.dli_fbase;
}

#endif

}  // namespace keltra::test

#endif
