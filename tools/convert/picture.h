#ifndef KELTRA_CONVERT_PICTURE_H
#define KELTRA_CONVERT_PICTURE_H

// Pictures of the common formats, and what is done to them on their way to a texture.

#include <cstddef>
#include <stdexcept>
#include <string>

#include "tools/formats/tga_writer.h"

namespace keltra::convert {

constexpr unsigned kMaxPictureSide = 16384;
constexpr std::size_t kMaxPicturePixels = std::size_t{64} << 20;

// A picture that cannot be had, and why: one line, without the picture's name.
struct PictureFault : std::runtime_error {
    PictureFault(const std::string &reason, bool missing) : std::runtime_error(reason), missing(missing) {}
    bool missing;  // there is no such picture, as against one that cannot be read
};

// Extensions that pictures have, in lower case; the first ones are preferred.
bool isPictureExtension(const std::string &extension, unsigned *rank = nullptr);

// The first picture of a file's bytes, as 8 bits a channel in sRGB. The format is told by the bytes;
// `extension`, in lower case and without a dot, only decides where they tell nothing. `remark` gets the
// decoder's word on a damaged picture that could be read all the same. Throws PictureFault, also after
// `seconds`.
formats::Image readPicture(const void *bytes, std::size_t size, const std::string &extension,
                           std::string &remark, double seconds = 60.0);

// Of the powers of two up to `most` the one nearest to `size` in ratio.
unsigned nearestPower(unsigned size, unsigned most);

// With `alphaCounts` pixels weigh as much as they can be seen, so that what is hidden does not darken edges;
// without, the alpha becomes 255.
formats::Image resized(const formats::Image &image, unsigned width, unsigned height, bool alphaCounts);

// Gives invisible pixels the colour of the nearest visible ones, across the edges of a repeating picture too:
// the GL mixes neighbours without asking for their alpha.
void spreadColours(formats::Image &image);

bool hasAlpha(const formats::Image &image);  // other than 255 everywhere
// Mostly the blue of normals that point outwards.
bool looksLikeNormals(const formats::Image &image);

// 64 x 64, magenta and black: it stands in for a missing texture.
formats::Image checker();

}  // namespace keltra::convert

#endif
