// SPDX-License-Identifier: Zlib
#include "tools/font/font_baker.h"

#include <algorithm>

namespace keltra::font {
namespace {

using formats::Image;
using formats::Rgba;

constexpr int kScale = 2;
constexpr Rgba kLight = {34, 38, 52, 255}, kDark = {26, 29, 40, 255}, kInk = {240, 240, 230, 255};
const char *const kLines[] = {"The quick brown fox jumps over", "the lazy dog. 0123456789",
                              "WAVE (x + y) = {z}; \"@#%&|\""};

std::uint8_t mix(std::uint8_t below, std::uint8_t above, unsigned alpha) {
    return static_cast<std::uint8_t>((above * alpha + below * (255 - alpha)) / 255);
}

void paint(Image *picture, int x, int y, std::uint8_t alpha) {
    for (int dy = 0; dy < kScale; ++dy) {
        for (int dx = 0; dx < kScale; ++dx) {
            const unsigned column = static_cast<unsigned>(x * kScale + dx),
                           row = static_cast<unsigned>(y * kScale + dy);
            if (column >= picture->width || row >= picture->height) continue;
            Rgba &pixel = picture->at(column, row);
            pixel = {mix(pixel.r, kInk.r, alpha), mix(pixel.g, kInk.g, alpha), mix(pixel.b, kInk.b, alpha),
                     255};
        }
    }
}

void paintCell(Image *picture, const BakedFont &font, int character, int left, int top) {
    const int index = character - kFirstCharacter;
    const int column = index % kColumns * font.cell, row = index / kColumns * font.cell;
    for (int y = 0; y < font.cell; ++y)
        for (int x = 0; x < font.cell; ++x)
            paint(picture, left + x, top + y,
                  font.image.at(static_cast<unsigned>(column + x), static_cast<unsigned>(row + y)).a);
}

// The cells in two shades, so that each glyph's position in its cell can be seen.
void paintBoard(Image *picture, int cell) {
    for (unsigned y = 0; y < picture->height; ++y) {
        for (unsigned x = 0; x < picture->width; ++x) {
            const unsigned side = static_cast<unsigned>(cell * kScale);
            const bool grid = y < 6 * side;
            picture->at(x, y) = grid && (x / side + y / side) % 2 ? kLight : kDark;
        }
    }
}

}  // namespace

formats::Image previewOf(const BakedFont &font) {
    constexpr int kRows = (kCaret - kFirstCharacter) / kColumns + 1;
    const int lines = static_cast<int>(std::size(kLines));
    Image picture(static_cast<unsigned>(kColumns * font.cell * kScale),
                  static_cast<unsigned>((kRows + lines + 1) * font.cell * kScale));
    paintBoard(&picture, font.cell);
    for (int character = kFirstCharacter; character <= kCaret; ++character) {
        const int index = character - kFirstCharacter;
        paintCell(&picture, font, character, index % kColumns * font.cell, index / kColumns * font.cell);
    }
    int y = kRows * font.cell + font.cell / 2;
    for (const char *line : kLines) {
        int x = font.cell / 4;
        for (; *line; ++line) {
            paintCell(&picture, font, *line, x, y);
            x += font.cell - font.kerning[static_cast<std::size_t>(*line - kFirstCharacter)];
        }
        y += font.cell;
    }
    return picture;
}

}  // namespace keltra::font
