// SPDX-License-Identifier: Zlib
#ifndef KELTRA_SUPPORT_SHOT_H
#define KELTRA_SUPPORT_SHOT_H

// Pictures of what the engine has drawn, as PNG files.

#include <string>
#include <vector>

namespace keltra::support {

// Rows from the top; red, green, blue.
struct Shot {
    int width = 0, height = 0;
    std::vector<unsigned char> pixels;
};

// The frame just drawn, before it is swapped.
Shot takeShot();

// Writes a temporary file and renames it to `path`, so that the file is never incomplete. Returns false, with
// the reason, on failure.
bool saveShot(const Shot &shot, const std::string &path, std::string *reason);

}  // namespace keltra::support

#endif
