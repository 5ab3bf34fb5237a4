// SPDX-License-Identifier: Zlib
#include "resources/font_layout.h"

#include <keltra/font.h>

#include "foundation/fault.h"
#include "resources/text_escape.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstring>
#include <iterator>

namespace {

using keltra::TextToken;

// Sizes of any 32 bits are added up thousands of times.
using Pixels = std::int64_t;

Pixels advanceOf(const KTFONT &font, char c) {
    const unsigned int cell = static_cast<unsigned char>(c) - unsigned{' '};
    const Pixels width = font.charSizeX;
    return cell < std::size(font.kerning) ? width - font.kerning[cell] : width;
}

// Copies a text and breaks its lines.
class LineBreaker {
   public:
    LineBreaker(const KTFONT &usedFont, char *destination, std::size_t size, unsigned int lineWidth)
        : font(usedFont), out(destination), room(size - 1), width(lineWidth) {}

    void copy(const char *source) {
        const std::size_t length = std::strlen(source);
        std::size_t at = 0;
        while (at < length) {
            const TextToken token = keltra::textToken(source + at);
            // What is left of an escape cut short is not drawn, so it takes no width.
            const std::size_t taken = token == TextToken::kGlyph ? 1
                                      : token == TextToken::kEnd ? length - at
                                                                 : keltra::kEscapeLength;
            const bool fits = token == TextToken::kGlyph ? putGlyph(source[at]) : put(source + at, taken);
            if (!fits) break;
            if (token == TextToken::kMoveX) x += keltra::escapeNumber(source + at);
            if (token == TextToken::kMoveY) height += keltra::escapeNumber(source + at);
            at += taken;
        }
        out[used] = '\0';
    }

    int addedHeight() const { return static_cast<int>(std::clamp<Pixels>(height, INT_MIN, INT_MAX)); }

   private:
    static constexpr std::size_t kNowhere = SIZE_MAX;

    bool put(const char *text, std::size_t count) {
        if (count > room - used) return false;
        std::memcpy(out + used, text, count);
        used += count;
        return true;
    }

    bool putGlyph(char c) {
        const Pixels advance = advanceOf(font, c);
        if (static_cast<signed char>(c) >= ' ' && x + advance > width) {
            if (c == ' ') return putBlankAsBreak();
            if (!breakLine()) return false;
        }
        if (c == '\n') {
            height += font.charSizeY;
            x = 0;
        }
        if (!put(&c, 1)) return false;
        if (c == ' ' || c == '\n') remember();
        // Deliberate: a '\n' advances by a whole cell too; existing layouts rely on the heights.
        x += advance;
        return true;
    }

    // A blank that does not fit is itself the end of its line.
    bool putBlankAsBreak() {
        if (!put("\n", 1)) return false;
        height += font.charSizeY;
        x = 0;
        breakAt = kNowhere;
        return true;
    }

    // Deliberate: a remembered '\n' is used as a break again, on the second overflow of a long word. That
    // adds a height without a line, and the line exceeds the width; existing layouts rely on it.
    bool breakLine() {
        if (breakAt != kNowhere) {
            out[breakAt] = '\n';
            x -= widthAtBreak;
            breakAt = kNowhere;
        } else {
            if (!put("\n", 1)) return false;
            x = 0;
            remember();
        }
        height += font.charSizeY;
        return true;
    }

    // The character just written is where the line may be broken.
    void remember() {
        breakAt = used - 1;
        widthAtBreak = x;
    }

    const KTFONT &font;
    char *const out;
    const std::size_t room;
    const Pixels width;
    std::size_t used = 0;
    Pixels x = 0, height = 0;
    std::size_t breakAt = kNowhere;
    Pixels widthAtBreak = 0;
};

}  // namespace

int keltra::formatText(const KTFONT &font, const char *source, char *destination, std::size_t size,
                       unsigned int width) {
    if (!source || !destination || !size) return 0;
    LineBreaker lines(font, destination, size, width);
    lines.copy(source);
    return lines.addedHeight();
}

unsigned int KTFONT::stringLength(const char *text) const {
    if (!text) return 0;
    Pixels length = 0;
    while (const char c = *text) {
        const TextToken token = keltra::textToken(text);
        if (token == TextToken::kGlyph) {
            length += advanceOf(*this, c);
            ++text;
            continue;
        }
        if (token == TextToken::kEnd) break;
        if (token == TextToken::kMoveX) length += keltra::escapeNumber(text);
        text += keltra::kEscapeLength;
    }
    return static_cast<unsigned int>(std::clamp<Pixels>(length, 0, UINT_MAX));
}

int KTFONT::format(const char *source, char *destination, unsigned int width, unsigned int) const {
    if (!source || !destination)
        return keltra::failNull(KT_CALL("KTFONT::format"),
                                source ? KT_TEXT("destination") : KT_TEXT("source")),
               0;
    return keltra::formatText(*this, source, destination, SIZE_MAX, width);
}
