// SPDX-License-Identifier: Zlib
#include "tools/convert/atlas.h"

#include "tools/convert/picture.h"

#include <algorithm>
#include <numeric>

namespace keltra::convert {
namespace {

using formats::Image;

constexpr unsigned kUnit = 4;         // pixels; cells begin and end at multiples of it
constexpr unsigned kBorderPart = 16;  // of a side
constexpr unsigned kSmallest = 8;     // side that is made smaller by its border

// A picture's cell along one axis, in pixels.
struct Span {
    unsigned cell = 0, edge = 0, size = 0;
    unsigned step = 0;  // cells begin at multiples of it, so that a pixel of a smaller level is all border
};

Span spanOf(unsigned side, Border border) {
    Span span;
    span.edge = std::max(side / kBorderPart, 1u);
    span.step = std::max(span.edge, kUnit);
    if (border == Border::kInside && side >= kSmallest) {
        span.cell = side;
        span.size = side - 2 * span.edge;
    } else {
        span.cell = (side + 2 * span.edge + span.step - 1) / span.step * span.step;
        span.size = side;
    }
    return span;
}

struct Corner {
    unsigned x = 0, y = 0;
};

class Grid {
   public:
    Grid(unsigned width, unsigned height)
        : columns(width / kUnit), rows(height / kUnit), used(std::size_t{columns} * rows) {}

    // Takes the first free place, if any. Cells have to come by falling size.
    bool take(const Span &across, const Span &down, Corner &corner) {
        const unsigned w = across.cell / kUnit, h = down.cell / kUnit;
        const bool again = w == lastWidth && h == lastHeight;
        for (unsigned y = again ? last.y : 0; y + h <= rows; y += down.step / kUnit) {
            for (unsigned x = again && y == last.y ? last.x : 0; x + w <= columns; x += across.step / kUnit) {
                if (!isFree(x, y, w, h)) continue;
                for (unsigned row = y; row < y + h; ++row)
                    std::fill_n(used.begin() + static_cast<std::ptrdiff_t>(row * columns + x), w, true);
                last = {x, y};
                lastWidth = w;
                lastHeight = h;
                corner = {x * kUnit, y * kUnit};
                return true;
            }
        }
        return false;
    }

   private:
    bool isFree(unsigned x, unsigned y, unsigned w, unsigned h) const {
        for (unsigned row = y; row < y + h; ++row)
            for (unsigned column = x; column < x + w; ++column)
                if (used[row * columns + column]) return false;
        return true;
    }

    const unsigned columns, rows;
    std::vector<bool> used;
    Corner last;  // in units, of the last cell
    unsigned lastWidth = 0, lastHeight = 0;
};

class Packer {
   public:
    Packer(const std::vector<const Image *> &pictures, Border border) : pictures(pictures), border(border) {
        order.resize(pictures.size());
        std::iota(order.begin(), order.end(), 0u);
        std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
            const Image &one = *pictures[a], &other = *pictures[b];
            return one.pixels.size() != other.pixels.size() ? one.pixels.size() > other.pixels.size()
                                                            : one.height > other.height;
        });
    }

    Atlas pack(unsigned most) {
        Atlas atlas;
        place(most, most);
        order = placed;
        if (order.empty()) return atlas;
        atlas.image = smallest(most);
        atlas.taken = order;
        std::sort(atlas.taken.begin(), atlas.taken.end());
        for (const std::size_t i : atlas.taken) atlas.places.push_back(draw(i, atlas.image));
        return atlas;
    }

   private:
    // The pictures that fit go to `placed`.
    void place(unsigned width, unsigned height) {
        Grid grid(width, height);
        corners.assign(pictures.size(), {});
        placed.clear();
        for (const std::size_t i : order)
            if (grid.take(spanOf(pictures[i]->width, border), spanOf(pictures[i]->height, border),
                          corners[i]))
                placed.push_back(i);
    }

    // Places all in the smallest picture that holds them; the wider of two.
    Image smallest(unsigned most) {
        for (unsigned area = kUnit * kUnit; area < most * most; area *= 2) {
            for (unsigned height = kUnit; height <= most; height *= 2) {
                const unsigned width = area / height;
                if (width > most || width < height) continue;
                place(width, height);
                if (placed.size() == order.size()) return Image(width, height);
            }
        }
        place(most, most);
        return Image(most, most);
    }

    UvPlace draw(std::size_t index, Image &atlas) const {
        const Span across = spanOf(pictures[index]->width, border);
        const Span down = spanOf(pictures[index]->height, border);
        Image picture = *pictures[index];
        if (across.size != picture.width || down.size != picture.height) {
            const bool seeThrough = hasAlpha(picture);
            picture = resized(picture, across.size, down.size, seeThrough);
            if (seeThrough) spreadColours(picture);
        }
        const auto inside = [](unsigned at, const Span &span) {
            return at < span.edge ? 0 : std::min(at - span.edge, span.size - 1);
        };
        const Corner &corner = corners[index];
        for (unsigned y = 0; y < down.cell; ++y)
            for (unsigned x = 0; x < across.cell; ++x)
                atlas.at(corner.x + x, corner.y + y) = picture.at(inside(x, across), inside(y, down));
        const float width = static_cast<float>(atlas.width), height = static_cast<float>(atlas.height);
        const unsigned below = atlas.height - corner.y - down.edge - down.size;  // v grows upward
        return {static_cast<float>(across.size) / width, static_cast<float>(down.size) / height,
                static_cast<float>(corner.x + across.edge) / width, static_cast<float>(below) / height};
    }

    const std::vector<const Image *> &pictures;
    const Border border;
    std::vector<std::size_t> order, placed;  // largest first
    std::vector<Corner> corners;             // of all pictures
};

}  // namespace

Atlas packAtlas(const std::vector<const Image *> &pictures, unsigned most, Border border) {
    return Packer(pictures, border).pack(most);
}

}  // namespace keltra::convert
