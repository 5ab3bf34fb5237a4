// SPDX-License-Identifier: Zlib
#ifndef KELTRA_RESOURCES_TEXT_ESCAPE_H
#define KELTRA_RESOURCES_TEXT_ESCAPE_H

// The escapes in texts: '^c' and a colour, '^x' and '^y' and a number.

#include <cstddef>

namespace keltra {

enum class TextToken { kGlyph, kColor, kMoveX, kMoveY, kEnd };

constexpr std::size_t kEscapeLength = 6;

TextToken escapeToken(const char *text);

// The kind of text at `text`, which is not at its end: a glyph, a whole escape, or a '^' that ends the text.
inline TextToken textToken(const char *text) { return *text == '^' ? escapeToken(text) : TextToken::kGlyph; }

// The number in a whole '^x' or '^y' escape.
int escapeNumber(const char *escape);

}  // namespace keltra

#endif
