// SPDX-License-Identifier: Zlib
#include "formats/xml_scan.h"

#include "formats/limits.h"
#include "foundation/cold.h"

#include <cstring>

namespace keltra {

namespace {

// As the parser takes it; it drops such text itself, after a call for each character.
bool isBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

// A numeric reference whose digits no semicolon ends reaches for the parser to a later one, wherever that is,
// so that it would meet other markup than is counted here.
[[gnu::noinline]] bool isOpenReference(const char *text) {
    if (text[1] != '#') return false;
    text += text[2] == 'x' ? 3 : 2;
    while ((*text >= '0' && *text <= '9') || (*text >= 'a' && *text <= 'f') || (*text >= 'A' && *text <= 'F'))
        ++text;
    return *text != ';';
}

}  // namespace

// Notes the first reason; always false.
[[gnu::noinline]] KELTRA_COLD bool MarkupScan::refused(FaultText why, long most) {
    if (reason != FaultText()) return false;
    reason = why;
    limit = most;
    return false;
}

template <std::size_t kSize>
bool MarkupScan::at(const char (&text)[kSize]) const {
    for (std::size_t i = 0; i < kSize - 1; ++i)
        if (cursor[i] != text[i]) return false;
    return true;
}

// The parser takes every byte from 127 on for a letter.
bool MarkupScan::startsName() const {
    const unsigned char first = static_cast<unsigned char>(cursor[1]);
    return first >= 127 || first == '_' || (first >= 'a' && first <= 'z') || (first >= 'A' && first <= 'Z');
}

template <std::size_t kOpening, std::size_t kClosing>
bool MarkupScan::skipPast(const char (&opening)[kOpening], const char (&closing)[kClosing]) {
    for (std::size_t i = 0; i < sizeof opening - 1; ++i) keep(*cursor);
    for (; cursor < end; keep(*cursor)) {
        line += *cursor == '\n';
        if (!at(closing)) continue;
        for (std::size_t i = 0; i < sizeof closing - 1; ++i) keep(*cursor);
        return true;
    }
    return false;
}

template <std::size_t kOpening, std::size_t kClosing>
bool MarkupScan::dropPast(const char (&opening)[kOpening], const char (&closing)[kClosing]) {
    char *const place = kept;
    if (!skipPast(opening, closing)) return false;
    if (way == kShorter) {
        kept = place;
        // Else what stands before and behind it could be read as one entity.
        if (kept != textBegin) *kept++ = ' ';
    } else {
        std::memset(place, ' ', static_cast<std::size_t>(kept - place));
    }
    return true;
}

// Characters are written through pointers of the loops' own: as members, each store could change them.
bool MarkupScan::skipQuoted(char quote) {
    const char *from = cursor;
    char *to = kept;
    for (char c; (c = *from) != quote; ++from) {
        if (c <= '\n') {
            if (from == end) break;
            line += c == '\n';
        }
        if (c == '&' && isOpenReference(from)) return false;
        *to++ = c;
    }
    cursor += from - cursor;
    kept = to;
    if (cursor == end) return false;
    keep(quote);
    return true;
}

// Keeps what stands between the values of an element's attributes, with the character behind it.
char MarkupScan::skipNames() {
    const char *from = cursor;
    char *to = kept;
    char c;
    while ((c = *from) > '>' || (c > '\'' && c < '=')) {  // most are letters
        *to++ = c;
        ++from;
    }
    cursor += from - cursor;
    kept = to;
    keep(c);
    return c;
}

bool MarkupScan::skipElement() {
    unsigned attributes = 0;
    lines[elements++] = line;
    keep('<');
    for (;;) {
        const char c = skipNames();
        if (c == '"' || c == '\'') {
            if (!skipQuoted(c)) return cursor == end && refused(KT_TEXT("has a quote that is not closed"));
        } else if (c == '=') {
            if (++attributes > kMaxXmlAttributes)
                return refused(KT_TEXT("has more than %ld attributes"), kMaxXmlAttributes);
        } else if (c == '>') {
            return kept[-2] == '/' || ++depth <= kMaxXmlNesting ||
                   refused(KT_TEXT("nests deeper than %ld elements"), kMaxXmlNesting);
        } else if (cursor > end) {
            return false;
        } else {
            line += c == '\n';
        }
    }
}

bool MarkupScan::skipMarkup() {
    if (startsName()) return skipElement();
    if (cursor[1] == '/') {
        if (depth) --depth;
        return skipPast("</", ">");
    }
    if (at("<?")) return dropPast("<?", "?>");
    if (at("<!--")) return way == kShorter ? dropPast("<!--", "-->") : skipPast("<!--", "-->");
    if (at("<![CDATA[")) return skipPast("<![CDATA[", "]]>");
    return skipPast("<", ">");
}

bool MarkupScan::skipText() {
    const char *from = cursor;
    char *to = kept;
    bool blank = way == kShorter;
    for (char c; (c = *from) != '<' && from < end; ++from) {
        if (c == '&' && isOpenReference(from)) return false;
        line += c == '\n';
        blank = blank && isBlank(c);
        *to++ = c;
    }
    cursor += from - cursor;
    if (blank) return true;
    kept = to;
    measure(textBegin);
    return true;
}

bool MarkupScan::run() {
    for (;;) {
        const bool isText = skipText();
        if (cursor == end) break;
        tag = cursor;
        if (++tags > kMaxXmlTags) return refused(KT_TEXT("more than %ld tags"), kMaxXmlTags);
        char *const place = kept;
        if (!isText || !skipMarkup()) return refused(KT_TEXT("does not end"));
        measure(place);
        if (*place == '<') textBegin = kept;
    }
    *kept = '\0';
    return true;
}

}  // namespace keltra
