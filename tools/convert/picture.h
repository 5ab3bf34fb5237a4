// SPDX-License-Identifier: Zlib
#ifndef KELTRA_CONVERT_PICTURE_H
#define KELTRA_CONVERT_PICTURE_H

// Reads pictures of the common formats and processes them for textures.

#include "tools/formats/tga_writer.h"

#include <cstddef>
#include <stdexcept>
#include <string>

namespace keltra::convert {

constexpr unsigned kMaxPictureSide = 16384;
constexpr std::size_t kMaxPicturePixels = std::size_t{64} << 20;

// A picture that cannot be used, and why: one line, without the picture's name.
struct PictureFault : std::runtime_error {
    PictureFault(const std::string &reason, bool missing) : std::runtime_error(reason), missing(missing) {}
    bool missing;  // there is no such picture; otherwise it exists but cannot be read
};

// Whether pictures have this extension, in lower case. A lower `rank` is preferred.
bool isPictureExtension(const std::string &extension, unsigned *rank = nullptr);

// The first picture of a file's bytes, with 8 bits per channel in sRGB. The bytes decide the format;
// `extension`, in lower case and without a dot, is used only if they do not. `remark` gets the decoder's
// message about a damaged picture that could still be read. Throws PictureFault, also after `seconds`.
formats::Image readPicture(const void *bytes, std::size_t size, const std::string &extension,
                           std::string &remark, double seconds = 60.0);

// The power of two, up to `most`, whose ratio to `size` is nearest to 1.
unsigned nearestPower(unsigned size, unsigned most);

// With `alphaCounts` the alpha weights the pixels, so that invisible ones do not darken edges; without it,
// the alpha becomes 255.
formats::Image resized(const formats::Image &image, unsigned width, unsigned height, bool alphaCounts);

// Gives invisible pixels the colour of the nearest visible ones, also across the edges of the picture, which
// repeats: the GL filters neighbours without regard to their alpha.
void spreadColours(formats::Image &image);

bool hasAlpha(const formats::Image &image);  // other than 255 everywhere
// Whether the mean colour is the blue of normals that point outwards.
bool looksLikeNormals(const formats::Image &image);

// The checkerboard, 64 x 64, magenta and black, that replaces a missing texture.
formats::Image checker();

}  // namespace keltra::convert

#endif
