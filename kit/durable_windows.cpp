// SPDX-License-Identifier: Zlib
#include "kit/durable_file.h"

#include <windows.h>

namespace keltra {
namespace kit {

bool replaceFile(const char *path, const char *newPath, const void *bytes, std::size_t size) {
    const HANDLE file =
        CreateFileA(newPath, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) return false;
    DWORD written = 0;
    bool good = WriteFile(file, bytes, static_cast<DWORD>(size), &written, nullptr) && written == size &&
                FlushFileBuffers(file);
    good = CloseHandle(file) && good;
    good = good && MoveFileExA(newPath, path, MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH);
    if (!good) DeleteFileA(newPath);
    return good;
}

}  // namespace kit
}  // namespace keltra
