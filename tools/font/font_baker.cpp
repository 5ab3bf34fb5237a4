// SPDX-License-Identifier: Zlib
#include "tools/font/font_baker.h"

#include <ft2build.h>
#include FT_FREETYPE_H

#include <algorithm>
#include <memory>
#include <vector>

namespace keltra::font {
namespace {

using Library = std::unique_ptr<FT_LibraryRec_, FT_Error (*)(FT_Library)>;
using Face = std::unique_ptr<FT_FaceRec_, FT_Error (*)(FT_Face)>;

constexpr formats::Rgba kClear = {255, 255, 255, 0};  // white: filtering then makes no dark edges
constexpr int kSmallestSize = 4;

// One letter, relative to the pen on the base line; y grows downward.
struct Glyph {
    int left = 0, top = 0, width = 0, height = 0, advance = 0;
    std::vector<std::uint8_t> coverage;

    int right() const { return left + width; }
    int bottom() const { return top + height; }
};

using Glyphs = std::array<Glyph, kLetters>;

Glyph readGlyph(FT_Face face, int character) {
    Glyph glyph;
    if (FT_Load_Char(face, static_cast<FT_ULong>(character), FT_LOAD_RENDER | FT_LOAD_TARGET_LIGHT))
        return glyph;
    const FT_GlyphSlot slot = face->glyph;
    const FT_Bitmap &bitmap = slot->bitmap;
    glyph.advance = static_cast<int>((slot->advance.x + 32) >> 6);
    if (bitmap.pixel_mode != FT_PIXEL_MODE_GRAY) return glyph;
    // Pixels left of the pen would lie in the neighbouring cell: the glyph is moved to the right.
    const int shift = std::max(0, -slot->bitmap_left);
    glyph.advance += shift;
    glyph.left = slot->bitmap_left + shift;
    glyph.top = -slot->bitmap_top;
    glyph.width = static_cast<int>(bitmap.width);
    glyph.height = static_cast<int>(bitmap.rows);
    for (int y = 0; y < glyph.height; ++y) {
        const unsigned char *row = bitmap.buffer + y * bitmap.pitch;
        glyph.coverage.insert(glyph.coverage.end(), row, row + glyph.width);
    }
    return glyph;
}

bool readGlyphs(FT_Face face, int size, Glyphs *glyphs) {
    if (FT_Set_Pixel_Sizes(face, 0, static_cast<FT_UInt>(size))) return false;
    for (int i = 0; i < kLetters; ++i) (*glyphs)[i] = readGlyph(face, kFirstCharacter + i);
    return true;
}

// Rows above the base line (negative) and below.
struct Extent {
    int top = 0, bottom = 0;
    int height() const { return bottom - top; }
};

Extent extentOf(const Glyphs &glyphs) {
    Extent extent;
    for (const Glyph &glyph : glyphs) {
        extent.top = std::min(extent.top, glyph.top);
        extent.bottom = std::max(extent.bottom, glyph.bottom());
    }
    return extent;
}

bool fits(const Glyphs &glyphs, int cell) {
    return extentOf(glyphs).height() <= cell &&
           std::all_of(glyphs.begin(), glyphs.end(),
                       [cell](const Glyph &glyph) { return glyph.right() <= cell && glyph.advance <= cell; });
}

// Places the letters in their cells, the base line at the same height in each.
class Sheet {
   public:
    Sheet(BakedFont *target, const Glyphs &glyphs) : font(*target) {
        const Extent extent = extentOf(glyphs);
        const int spare = std::max(0, font.cell - extent.height());
        baseLine = spare / 2 - extent.top;
        caretTop = std::max(0, baseLine + extent.top);
        caretBottom = std::min(font.cell, baseLine + extent.bottom);
        const unsigned side = static_cast<unsigned>(kColumns * font.cell);
        font.image = formats::Image(side, side);
        std::fill(font.image.pixels.begin(), font.image.pixels.end(), kClear);
    }

    void draw(int character, const Glyph &glyph) {
        bool cut = glyph.advance > font.cell;
        for (int y = 0; y < glyph.height; ++y) {
            for (int x = 0; x < glyph.width; ++x) {
                const std::uint8_t alpha = glyph.coverage[static_cast<std::size_t>(y * glyph.width + x)];
                if (alpha && !put(character, glyph.left + x, baseLine + glyph.top + y, alpha)) cut = true;
            }
        }
        font.cut += cut;
    }

    void drawCaret() {
        const int width = std::max(1, font.cell / 8);
        for (int y = caretTop; y < caretBottom; ++y)
            for (int x = 0; x < width; ++x) put(kCaret, x, y, 255);
    }

   private:
    bool put(int character, int x, int y, std::uint8_t alpha) {
        if (x < 0 || y < 0 || x >= font.cell || y >= font.cell) return false;
        const int index = character - kFirstCharacter;
        const int column = index % kColumns * font.cell + x, row = index / kColumns * font.cell + y;
        font.image.at(static_cast<unsigned>(column), static_cast<unsigned>(row)).a = alpha;
        return true;
    }

    BakedFont &font;
    int baseLine, caretTop, caretBottom;
};

std::string keyOf(int character) {
    const std::string prefix = "KELTRA_kerning_";
    switch (character) {
        case ' ':
            return prefix + "SPACE";
        case '#':
            return prefix + "DIESIS";
        case '=':
            return prefix + "EQUAL";
        default:
            return prefix + static_cast<char>(character);
    }
}

bool isNamed(int character) { return character == ' ' || character == '#' || character == '='; }

}  // namespace

bool bakeFont(const BakeOptions &options, BakedFont *font, std::string *error) {
    FT_Library startedLibrary = nullptr;
    if (FT_Init_FreeType(&startedLibrary)) {
        *error = "FreeType cannot be initialised";
        return false;
    }
    const Library library(startedLibrary, FT_Done_FreeType);
    FT_Face openedFace = nullptr;
    if (FT_New_Face(library.get(), options.file.c_str(), 0, &openedFace)) {
        *error = options.file + " cannot be read as a font";
        return false;
    }
    const Face face(openedFace, FT_Done_Face);
    Glyphs glyphs;
    int size = options.size ? options.size : 2 * options.cell;
    bool read = FT_IS_SCALABLE(face.get()) && readGlyphs(face.get(), size, &glyphs);
    while (read && !options.size && size > kSmallestSize && !fits(glyphs, options.cell))
        read = readGlyphs(face.get(), --size, &glyphs);
    if (!read) {
        *error = options.file + " has no letters of this size";
        return false;
    }

    *font = BakedFont();
    font->family = face->family_name ? face->family_name : "";
    font->cell = options.cell;
    font->size = size;
    Sheet sheet(font, glyphs);
    for (int i = 0; i < kLetters; ++i) {
        const Glyph &glyph = glyphs[static_cast<std::size_t>(i)];
        sheet.draw(kFirstCharacter + i, glyph);
        font->kerning[static_cast<std::size_t>(i)] = std::clamp(font->cell - glyph.advance, -128, 127);
    }
    sheet.drawCaret();
    return true;
}

std::string kerningText(const BakedFont &font) {
    std::string letters, named;
    for (int i = 0; i < kLetters; ++i) {
        const int character = kFirstCharacter + i;
        const std::string line =
            keyOf(character) + " = " + std::to_string(font.kerning[static_cast<std::size_t>(i)]) + "\n";
        (isNamed(character) ? named : letters) += line;
    }
    // The engine finds keys inside longer words and takes the first line: named keys follow the letters that
    // they begin with.
    return "# " + font.family + ", " + std::to_string(font.size) + " pixels, in cells of " +
           std::to_string(font.cell) + "\n" + letters + named;
}

}  // namespace keltra::font
