// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FONT_BAKER_H
#define KELTRA_FONT_BAKER_H

// Draws the characters 32 to 126 of a TrueType font, and a caret as 127, into the 16 x 16 cells of a KTFONT
// texture, and computes by how much each character's advance is shorter than its cell.

#include "tools/formats/tga_writer.h"

#include <array>
#include <string>

namespace keltra::font {

constexpr int kColumns = 16;  // and rows
constexpr int kFirstCharacter = 32;
constexpr int kCaret = 127;
constexpr int kLetters = kCaret - kFirstCharacter;

struct BakeOptions {
    std::string file;
    int cell = 16;  // pixels
    int size = 0;   // of the letters, in pixels; 0 for the largest that fit into the cells
};

struct BakedFont {
    formats::Image image;  // white, with the glyphs in the alpha
    std::array<int, kLetters> kerning = {};
    std::string family;
    int cell = 0;
    int size = 0;
    int cut = 0;  // letters that are larger than a cell
};

// Returns false, with the reason in `error`, for a file that is not a scalable font.
bool bakeFont(const BakeOptions &options, BakedFont *font, std::string *error);

// The text of the kerning file.
std::string kerningText(const BakedFont &font);

// The grid of cells and a few lines of text in the font, enlarged, as an opaque picture.
formats::Image previewOf(const BakedFont &font);

}  // namespace keltra::font

#endif
