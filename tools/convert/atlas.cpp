// SPDX-License-Identifier: Zlib
#include "tools/convert/atlas.h"

#include <algorithm>
#include <numeric>

namespace keltra::convert {
namespace {

using formats::Image;

struct Corner {
    unsigned x = 0, y = 0;
};

// Whether the pictures fit; `corners` receives their upper left ones. Shelves of falling heights: each height
// divides those before it, and each width the present place in its shelf.
bool place(const std::vector<const Image *> &pictures, unsigned width, unsigned height,
           std::vector<Corner> &corners) {
    std::vector<std::size_t> order(pictures.size());
    std::iota(order.begin(), order.end(), 0u);
    std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
        const Image &one = *pictures[a], &other = *pictures[b];
        return one.height != other.height ? one.height > other.height : one.width > other.width;
    });
    corners.assign(pictures.size(), {});
    unsigned x = 0, y = 0, shelf = 0;
    for (const std::size_t i : order) {
        const Image &picture = *pictures[i];
        x = (x + picture.width - 1) / picture.width * picture.width;
        if (x + picture.width > width) {
            x = 0;
            y += shelf;
            shelf = 0;
        }
        shelf = std::max(shelf, picture.height);
        if (picture.width > width || y + shelf > height) return false;
        corners[i] = {x, y};
        x += picture.width;
    }
    return true;
}

UvPlace placeOf(const Image &picture, const Corner &corner, const Image &atlas) {
    const float width = static_cast<float>(atlas.width), height = static_cast<float>(atlas.height);
    const float below = static_cast<float>(atlas.height - corner.y - picture.height);  // v grows upward
    return {static_cast<float>(picture.width - 1) / width, static_cast<float>(picture.height - 1) / height,
            (static_cast<float>(corner.x) + 0.5f) / width, (below + 0.5f) / height};
}

}  // namespace

Atlas packAtlas(const std::vector<const Image *> &pictures, unsigned most) {
    std::vector<const Image *> taken = pictures;
    for (; !taken.empty(); taken.pop_back()) {
        std::vector<Corner> corners;
        // The smaller area first, and the wider of two.
        for (unsigned area = 1; area <= most * most; area *= 2) {
            for (unsigned height = 1; height <= most; height *= 2) {
                const unsigned width = area / height;
                if (width == 0 || width > most || width < height || !place(taken, width, height, corners))
                    continue;
                Atlas atlas;
                atlas.image = Image(width, height);
                for (std::size_t i = 0; i < taken.size(); ++i) {
                    const Image &picture = *taken[i];
                    for (unsigned y = 0; y < picture.height; ++y)
                        for (unsigned x = 0; x < picture.width; ++x)
                            atlas.image.at(corners[i].x + x, corners[i].y + y) = picture.at(x, y);
                    atlas.places.push_back(placeOf(picture, corners[i], atlas.image));
                }
                return atlas;
            }
        }
    }
    return {};
}

}  // namespace keltra::convert
