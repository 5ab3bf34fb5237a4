#include "foundation/xml_document.h"

#include <tinyxml.h>

#include <climits>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>

#include "foundation/file_bytes.h"

namespace keltra {

namespace {

// Walks the markup exactly as the parser will, so that what it counts is what the parser meets. Processing
// instructions and declarations are overwritten with blanks on the way: nobody reads them, and the parser
// ends them at other places than the standard does.
class MarkupScan {
   public:
    MarkupScan(char *begin, char *end) : cursor(begin), end(end), depth(0), tags(0) {}

    bool run() {
        while (char *tag = static_cast<char *>(std::memchr(cursor, '<', left()))) {
            cursor = tag;
            if (++tags > kMaxXmlTags || !skipMarkup()) return false;
        }
        return true;
    }

   private:
    std::size_t left() const { return static_cast<std::size_t>(end - cursor); }
    bool at(const char *text) const {
        const std::size_t length = std::strlen(text);
        return left() >= length && std::memcmp(cursor, text, length) == 0;
    }

    bool skipMarkup() {
        if (at("<?")) return blankInstruction();
        if (at("<!--")) return skipPast("<!--", "-->");
        if (at("<![CDATA[")) return skipPast("<![CDATA[", "]]>");
        if (at("</")) {
            if (depth) --depth;
            return skipPast("</", ">");
        }
        return startsName() ? skipElement() : skipPast("<", ">");
    }

    bool skipPast(const char *opening, const char *closing) {
        cursor += std::strlen(opening);
        while (!at(closing))
            if (cursor++ == end) return false;
        cursor += std::strlen(closing);
        return true;
    }

    bool blankInstruction() {
        char *start = cursor;
        if (!skipPast("<?", "?>")) return false;
        std::memset(start, ' ', static_cast<std::size_t>(cursor - start));
        return true;
    }

    // The parser takes every byte from 127 on for a letter.
    bool startsName() const {
        if (left() < 2) return false;
        const unsigned char first = static_cast<unsigned char>(cursor[1]);
        return first >= 127 || first == '_' || (first >= 'a' && first <= 'z') ||
               (first >= 'A' && first <= 'Z');
    }

    bool skipElement() {
        unsigned attributes = 0;
        for (++cursor; cursor < end; ++cursor) {
            const char c = *cursor;
            if (c == '"' || c == '\'') {
                cursor = static_cast<char *>(std::memchr(cursor + 1, c, left() - 1));
                if (!cursor) return false;
            } else if (c == '=') {
                if (++attributes > kMaxXmlAttributes) return false;
            } else if (c == '>') {
                const bool closed = cursor[-1] == '/';
                ++cursor;
                return closed || ++depth <= kMaxXmlNesting;
            }
        }
        return false;
    }

    char *cursor;
    char *end;
    unsigned depth, tags;
};

// Copies the text with one line feed for every kind of line end, as documents are to be read; returns its
// end.
char *copyLines(char *target, const char *bytes, std::size_t size) {
    for (std::size_t i = 0; i < size; ++i) {
        if (bytes[i] == '\r' && i + 1 < size && bytes[i + 1] == '\n') continue;
        *target++ = bytes[i] == '\r' ? '\n' : bytes[i];
    }
    *target = '\0';
    return target;
}

bool parseText(const char *text, TiXmlDocument &document) {
    try {
        document.Clear();
        // Without tab stops the parser keeps no row and column: that code does not end on some byte
        // sequences. As bytes, the text is never stepped over by a character's claimed length.
        document.SetTabSize(0);
        document.Parse(text, nullptr, TIXML_ENCODING_LEGACY);
        if (!document.Error()) return true;
        document.Clear();
    } catch (const std::bad_alloc &) {
        document.Clear();
    }
    return false;
}

}  // namespace

bool loadXmlDocument(const char *path, TiXmlDocument &document) {
    const FileBytes file(path, kMaxXmlBytes);
    return parseXmlDocument(file.data(), file.size(), document);
}

bool parseXmlDocument(const char *bytes, std::size_t size, TiXmlDocument &document) {
    document.Clear();
    if (!bytes || size > static_cast<std::size_t>(kMaxXmlBytes) || std::memchr(bytes, '\0', size))
        return false;
    static const char kByteOrderMark[] = "\xEF\xBB\xBF";
    if (size >= 3 && std::memcmp(bytes, kByteOrderMark, 3) == 0) {
        bytes += 3;
        size -= 3;
    }
    char *text = static_cast<char *>(vnfMalloc(static_cast<unsigned int>(size + 1)));
    if (!text) return false;
    char *end = copyLines(text, bytes, size);
    const bool parsed = MarkupScan(text, end).run() && parseText(text, document);
    vnfFree(text);
    return parsed;
}

int xmlInteger(const char *text) {
    if (!text) return 0;
    const long value = std::strtol(text, nullptr, 10);
    if (value > INT_MAX) return INT_MAX;
    return value < INT_MIN ? INT_MIN : static_cast<int>(value);
}

float xmlFloat(const char *text, float otherwise) {
    float value = 0.0f;
    return text && std::sscanf(text, "%f", &value) == 1 && std::isfinite(value) ? value : otherwise;
}

}  // namespace keltra
