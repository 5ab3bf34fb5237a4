// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FOUNDATION_LOG_H
#define KELTRA_FOUNDATION_LOG_H

#include "platform/platform.h"

namespace keltra {

// Opens the file of the run log; false when one is open or `path` cannot be written.
bool openLogFile(const char *path);
// Write the first lines of the log, and the last ones with the memory summary before the file is closed.
// Nothing without an open log.
void beginLog(const LocalTime &time);
void endLog();

}  // namespace keltra

#endif
