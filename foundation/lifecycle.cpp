// SPDX-License-Identifier: Zlib
#include "foundation/lifecycle.h"

#include <keltra/foundation.h>

namespace {

// The library's load and unload steps. With the earliest priority the identifiers exist before every other
// static object of the library; a static object that outlives this one finds no table, which releaseId
// tolerates.
struct LibraryLife {
    LibraryLife() {
        vnfOpenLog(nullptr);
        vnfSetLogEcho(false);
    }
    ~LibraryLife() { vnfCloseLog(); }
};

#if defined(__GNUC__)
__attribute__((init_priority(101)))
#endif
LibraryLife libraryLife;

}  // namespace

bool vnfOpenLog(const char *path) {
    if (path && !keltra::openLogFile(path)) return false;
    keltra::restartMemoryPeak();
    const keltra::LocalTime now = keltra::platformLocalTime();
    keltra::takeIdentifierTable();
    keltra::freeAllTimers();
    keltra::beginLog(now);
    return true;
}

bool vnfCloseLog() {
    keltra::dropIdentifierTable();
    keltra::endLog();
    return true;
}
