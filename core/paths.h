// SPDX-License-Identifier: Zlib
#ifndef KELTRA_CORE_PATHS_H
#define KELTRA_CORE_PATHS_H

#include <keltra/settings.h>

namespace keltra {

// Gives the directories of settings whose video mode is available to the classes that read files. Defined in
// engine/, which knows those classes.
void setPaths(const KTSETTINGS::RECORD &record);

}  // namespace keltra

#endif
