// SPDX-License-Identifier: Zlib
#ifndef KELTRA_CONVERT_ATLAS_H
#define KELTRA_CONVERT_ATLAS_H

// Small pictures side by side in one, so that fewer textures are switched between.

#include "tools/convert/uv_place.h"
#include "tools/formats/tga_writer.h"

#include <vector>

namespace keltra::convert {

// Sides of pictures are powers of two. Each stands at a multiple of its own sides, so that the smaller levels
// of a mipmapped texture do not mix neighbours until a picture is one pixel.
struct Atlas {
    formats::Image image;
    std::vector<UvPlace>
        places;  // of the pictures, from the middle of their first pixels to that of their last
};

// Packs as many of the pictures as fit, the first ones first; `places` has as many entries. `most` is the
// longest side.
Atlas packAtlas(const std::vector<const formats::Image *> &pictures, unsigned most);

}  // namespace keltra::convert

#endif
