// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FORMATS_XML_SCAN_H
#define KELTRA_FORMATS_XML_SCAN_H

#include "formats/fault.h"

#include <algorithm>
#include <cstddef>

namespace keltra {

// Walks the markup exactly as the parser will, so that what it counts is what the parser meets. Processing
// instructions and declarations do not reach the parser: they are unused, and it ends them elsewhere than the
// standard does. The text ends with a zero byte, and has no other.
class MarkupScan {
   public:
    // What does not reach the parser is overwritten with blanks; `kShorter` takes it out, with comments and
    // blanks between tags, which nobody reads.
    enum Way { kSameLength, kShorter };

    // `lines` has room for the line of each element.
    MarkupScan(char *begin, char *end, unsigned int *lines, Way way)
        : begin(begin),
          cursor(begin),
          tag(begin),
          kept(begin),
          textBegin(begin),
          end(end),
          lines(lines),
          way(way) {}

    // False for a text beyond a limit, and one whose markup does not end.
    bool run();
    // Valid after a run: no name, value or text is longer.
    std::size_t longestPiece() const { return longest; }
    // Valid after a run: where the text ends now, and the number of its elements.
    char *keptEnd() const { return kept; }
    unsigned int elementCount() const { return elements; }
    // Valid after a run that returned false; the offset is that of the tag in the text. Always false.
    bool refuse(Fault *fault) const {
        return keltra::refuse(fault, static_cast<std::size_t>(tag - begin), KT_TEXT("tag"), reason, limit);
    }

   private:
    bool refused(FaultText why, long most = 0);
    template <std::size_t kSize>
    bool at(const char (&text)[kSize]) const;
    void measure(const char *from) { longest = std::max(longest, static_cast<std::size_t>(kept - from)); }
    void keep(char c) {
        *kept++ = c;
        ++cursor;
    }
    bool startsName() const;
    // False for a reference that does not end.
    bool skipText();
    bool skipMarkup();
    template <std::size_t kOpening, std::size_t kClosing>
    bool skipPast(const char (&opening)[kOpening], const char (&closing)[kClosing]);
    template <std::size_t kOpening, std::size_t kClosing>
    bool dropPast(const char (&opening)[kOpening], const char (&closing)[kClosing]);
    bool skipElement();
    char skipNames();
    bool skipQuoted(char quote);

    char *const begin;
    char *cursor, *tag;
    char *kept;       // behind what was kept so far, at `cursor` or before it
    char *textBegin;  // behind the last markup that was kept
    char *const end;
    unsigned int *const lines;
    const Way way;
    unsigned int line = 1, elements = 0;
    unsigned depth = 0, tags = 0;
    std::size_t longest = 0;
    FaultText reason = {};
    long limit = 0;
};

}  // namespace keltra

#endif
