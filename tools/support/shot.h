#ifndef KELTRA_SUPPORT_SHOT_H
#define KELTRA_SUPPORT_SHOT_H

// Pictures of what the engine has drawn, as PNG files.

#include <string>
#include <vector>

namespace keltra {
namespace support {

// Rows from the top; red, green, blue.
struct Shot {
    int width = 0, height = 0;
    std::vector<unsigned char> pixels;
};

// The frame just drawn, before it is swapped.
Shot takeShot();

// Writes the picture aside and renames it to `path`, so that there is never half a file. False, and `reason`,
// when it cannot.
bool saveShot(const Shot &shot, const std::string &path, std::string *reason);

}  // namespace support
}  // namespace keltra

#endif
