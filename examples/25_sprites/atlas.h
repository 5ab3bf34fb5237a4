// SPDX-License-Identifier: Zlib
#ifndef KELTRA_EXAMPLES_ATLAS_H
#define KELTRA_EXAMPLES_ATLAS_H

// The picture of the sprites, painted point by point; a game would load it.

#include <keltra/texture.h>

#include <cmath>
#include <vector>

constexpr int kCell = 32;  // pixels
enum Cell { kStarWide, kStarNarrow, kBasket, kCloud };

// A picture of four cells with an alpha channel, its bottom row first.
inline KTTEXTURE *paintAtlas() {
    std::vector<char> pixels;
    for (int y = 0; y < kCell; ++y) {
        for (int x = 0; x < 4 * kCell; ++x) {
            const float dx = float(x % kCell) - 15.5f, dy = float(y) - 15.5f;
            const int cell = x / kCell;
            const float wide = cell == kStarNarrow ? 2.6f * dx : dx;  // turned to the side
            const float spikes = std::sqrt(std::fabs(wide)) + std::sqrt(std::fabs(dy));
            const bool isStar = cell <= kStarNarrow && spikes < 4.0f;
            const bool isRim = cell == kBasket && dy > -1.0f && dy < 3.0f && std::fabs(dx) < 15.0f;
            const bool isBasket =
                cell == kBasket && dy <= -1.0f && dy > -13.0f && std::fabs(dx) < 14.0f + 0.35f * dy;
            const bool isCloud = cell == kCloud && (dx * dx / 3.2f + dy * dy < 60.0f ||
                                                    (dx - 5) * (dx - 5) + (dy - 5) * (dy - 5) < 60.0f);
            const int weave = (x / 4 + y / 3) % 2 * 28;
            const int red = isStar ? 255 : isRim ? 214 : isBasket ? 168 + weave : 70;
            const int green = isStar ? 226 : isRim ? 160 : isBasket ? 108 + weave : 84;
            const int blue = isStar ? 120 : isRim ? 92 : isBasket ? 56 : 138;
            const int alpha = isStar || isRim || isBasket ? 255 : isCloud ? 150 : 0;
            for (int value : {red, green, blue, alpha}) pixels.push_back(static_cast<char>(value));
        }
    }
    KTTEXTURE *texture = new KTTEXTURE;
    texture->setFilter(false, false, true);
    return texture->create(4 * kCell, kCell, 4) && texture->modify(pixels.data(), false) ? texture : nullptr;
}

#endif
