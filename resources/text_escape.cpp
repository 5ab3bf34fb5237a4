// SPDX-License-Identifier: Zlib
#include "resources/text_escape.h"

#include <cstdlib>
#include <cstring>

keltra::TextToken keltra::escapeToken(const char *text) {
    TextToken token;
    switch (text[1]) {
        case '\0':
            return TextToken::kEnd;
        case 'c':
        case 'C':
            token = TextToken::kColor;
            break;
        case 'x':
        case 'X':
            token = TextToken::kMoveX;
            break;
        case 'y':
        case 'Y':
            token = TextToken::kMoveY;
            break;
        default:
            return TextToken::kGlyph;
    }
    for (std::size_t i = 2; i < kEscapeLength; ++i)
        if (!text[i]) return TextToken::kEnd;
    return token;
}

int keltra::escapeNumber(const char *escape) {
    char digits[kEscapeLength - 1] = {};
    std::memcpy(digits, escape + 2, sizeof digits - 1);
    return static_cast<int>(std::strtol(digits, nullptr, 10));
}
