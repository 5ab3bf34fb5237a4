// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TESTS_SPECIAL_FILES_H
#define KELTRA_TESTS_SPECIAL_FILES_H

#ifndef _WIN32
#include <sys/stat.h>
#endif

#include <stdexcept>
#include <string>
#include <vector>

#include "tests/support/temp_file.h"

namespace keltra::test {

/// Paths of what is there, but not a regular file: a folder and, where the system has them, a pipe that
/// nobody writes to and a device that never ends.
inline std::vector<std::string> specialFiles(const TempFolder &folder) {
    std::vector<std::string> paths = {folder.prefix()};
#ifndef _WIN32
    paths.push_back(folder.path("pipe"));
    if (mkfifo(paths.back().c_str(), 0600) != 0) throw std::runtime_error("no pipe: " + paths.back());
    paths.push_back("/dev/zero");
#endif
    return paths;
}

}  // namespace keltra::test

#endif
