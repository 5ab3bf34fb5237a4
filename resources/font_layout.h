#ifndef KELTRA_RESOURCES_FONT_LAYOUT_H
#define KELTRA_RESOURCES_FONT_LAYOUT_H

#include <cstddef>

class KTFONT;

namespace keltra {

enum class TextToken { kGlyph, kColor, kMoveX, kMoveY, kEnd };

constexpr std::size_t kEscapeLength = 6;

TextToken escapeToken(const char *text);

// What stands at `text`, which is not at its end: a glyph, a whole escape, or a '^' that ends the text.
inline TextToken textToken(const char *text) { return *text == '^' ? escapeToken(text) : TextToken::kGlyph; }

// The number in a whole '^x' or '^y' escape.
int escapeNumber(const char *escape);

// KTFONT::format into a destination of `size` characters: a text that does not fit ends inside it, never
// within an escape.
int formatText(const KTFONT &font, const char *source, char *destination, std::size_t size,
               unsigned int width);

}  // namespace keltra

#endif
