#ifndef KELTRA_FONT_BAKER_H
#define KELTRA_FONT_BAKER_H

// Draws the characters 32 to 126 of a TrueType font, and a caret as 127, into the 16 x 16 cells of a KTFONT
// texture, and works out how much shorter than its cell each character's advance is.

#include <array>
#include <string>

#include "tools/formats/tga_writer.h"

namespace keltra::font {

constexpr int kColumns = 16;  // and rows
constexpr int kFirstCharacter = 32;
constexpr int kCaret = 127;
constexpr int kLetters = kCaret - kFirstCharacter;

struct BakeOptions {
    std::string file;
    int cell = 16;  // pixels
    int size = 0;   // of the letters, in pixels; 0 for the largest that fit the cells
};

struct BakedFont {
    formats::Image image;  // white, with the glyphs in the alpha
    std::array<int, kLetters> kerning = {};
    std::string family;
    int cell = 0;
    int size = 0;
    int cut = 0;  // letters that are larger than a cell
};

// False, with the reason in `error`, for a file that is no scalable font.
bool bakeFont(const BakeOptions &options, BakedFont *font, std::string *error);

// The text of the kerning file.
std::string kerningText(const BakedFont &font);

// The grid and a few lines set in the font, enlarged, as a picture without transparency.
formats::Image previewOf(const BakedFont &font);

}  // namespace keltra::font

#endif
