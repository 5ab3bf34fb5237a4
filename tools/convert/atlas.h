// SPDX-License-Identifier: Zlib
#ifndef KELTRA_CONVERT_ATLAS_H
#define KELTRA_CONVERT_ATLAS_H

// Several pictures side by side in one, so that fewer textures are switched between.

#include "tools/convert/uv_place.h"
#include "tools/formats/tga_writer.h"

#include <cstddef>
#include <vector>

namespace keltra::convert {

// Each picture has a border that repeats its edges, a sixteenth of its side and at least a pixel wide: the
// smaller levels of a mipmapped texture do not mix neighbours until a picture has 16 pixels.
enum class Border {
    kInside,   // pictures of 8 pixels and more become smaller by it
    kOutside,  // pictures keep their pixels
};

struct Atlas {
    formats::Image image;
    std::vector<std::size_t> taken;  // the pictures in it, by rising index
    std::vector<UvPlace> places;     // of those
};

// Packs as many of the pictures as fit, the largest first. Their sides and those of the result are powers of
// two. `most` is the longest side.
Atlas packAtlas(const std::vector<const formats::Image *> &pictures, unsigned most,
                Border border = Border::kInside);

}  // namespace keltra::convert

#endif
