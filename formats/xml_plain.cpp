// SPDX-License-Identifier: Zlib
#include "formats/xml_plain.h"

#include "formats/limits.h"

#include <tinyxml.h>

#include <cstdint>
#include <cstring>

namespace keltra {

namespace {

bool startsName(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; }

bool isInName(char c) { return startsName(c) || (c >= '-' && c <= ':' && c != '/'); }  // - . digits :

// The character of the entity at `from`, which moves behind it; 0 when that is not a plain one.
char readEntity(char *&from) {
    static const struct {
        char text[7];
        char character;
    } kNamed[] = {{"&amp;", '&'}, {"&lt;", '<'}, {"&gt;", '>'}, {"&quot;", '"'}, {"&apos;", '\''}};
    if (from[1] != '#') {
        for (const auto &named : kNamed) {
            const std::size_t length = std::strlen(named.text);
            if (std::strncmp(from, named.text, length) != 0) continue;
            from += length;
            return named.character;
        }
        return 0;
    }
    int code = 0;
    char *c = from + 2;
    for (; *c >= '0' && *c <= '9' && code < 100; ++c) code = 10 * code + (*c - '0');
    if (*c != ';' || code > 126) return 0;
    from = c + 1;
    return static_cast<char>(code);
}

class PlainReader {
   public:
    PlainReader(char *text, const char *end, TiXmlDocument &document)
        : cursor(text), end(end), node(&document) {}

    bool run();

   private:
    void skipBlanks();
    bool skipPast(const char *closing);
    bool readElement();
    bool readAttribute(TiXmlElement &element);
    char *readValue(char quote);
    bool readEnd();
    bool isNew(const char *name) const;

    static constexpr unsigned int kMostAttributes = 8;

    char *cursor;
    const char *const end;
    TiXmlNode *node;  // whose contents these are
    unsigned int line = 1, depth = 0, tags = 0, elements = 0, attributes = 0;
    const char *names[kMostAttributes];  // of the element's attributes
};

// A carriage return ends a line by itself too, which is not plain.
void PlainReader::skipBlanks() {
    for (char c; (c = *cursor) == ' ' || (c >= '\t' && c < '\r') || (c == '\r' && cursor[1] == '\n');
         ++cursor)
        line += c == '\n';
}

bool PlainReader::skipPast(const char *closing) {
    char *const place = std::strstr(cursor, closing);
    if (!place) return false;
    for (; cursor < place; ++cursor) {
        if (*cursor == '\r' && cursor[1] != '\n') return false;
        line += *cursor == '\n';
    }
    cursor += std::strlen(closing);
    return true;
}

bool PlainReader::isNew(const char *name) const {
    for (unsigned int i = 0; i < attributes; ++i)
        if (*names[i] == *name && std::strcmp(names[i], name) == 0) return false;
    return true;
}

// The value up to the quote, which becomes its end; null for one that is not plain.
char *PlainReader::readValue(char quote) {
    char *const value = cursor;
    for (char c; (c = *cursor) != quote && c != '&'; ++cursor) {
        if (c == '\0' || c == '\r') return nullptr;
        line += c == '\n';
    }
    char *to = cursor;
    for (; *cursor != quote; ++to) {
        *to = *cursor == '&' ? readEntity(cursor) : *cursor++;
        if (*to == '\0' || cursor[-1] == '\r') return nullptr;
        line += cursor[-1] == '\n';
    }
    ++cursor;
    *to = '\0';
    return value;
}

bool PlainReader::readAttribute(TiXmlElement &element) {
    const char *const name = cursor;
    if (!startsName(*cursor) || attributes == kMostAttributes) return false;
    while (isInName(*cursor)) ++cursor;
    if (*cursor != '=') return false;
    *cursor++ = '\0';
    const char quote = *cursor++;
    if ((quote != '"' && quote != '\'') || !isNew(name)) return false;
    const char *const value = readValue(quote);
    if (!value) return false;
    names[attributes++] = name;
    element.SetAttribute(name, value);
    return true;
}

bool PlainReader::readElement() {
    const char *const name = ++cursor;
    if (!startsName(*name)) return false;
    while (isInName(*cursor)) ++cursor;
    const char behind = *cursor;
    *cursor = '\0';
    TiXmlElement *const element = new TiXmlElement(name);
    *cursor = behind;
    element->SetUserData(reinterpret_cast<void *>(std::uintptr_t{line}));
    node->LinkEndChild(element);
    ++elements;
    attributes = 0;
    for (;;) {
        skipBlanks();
        if (*cursor == '>' || *cursor == '/') break;
        if (!readAttribute(*element)) return false;
    }
    if (*cursor++ == '/') return *cursor++ == '>';
    node = element;
    return ++depth <= kMaxXmlNesting;
}

bool PlainReader::readEnd() {
    if (depth == 0) return false;
    cursor += 2;
    for (const char *c = node->Value(); *c; ++c, ++cursor)
        if (*cursor != *c) return false;
    skipBlanks();
    node = node->Parent();
    --depth;
    return *cursor++ == '>';
}

bool PlainReader::run() {
    for (bool isPlain = true; isPlain;) {
        skipBlanks();
        if (*cursor != '<') return cursor == end && depth == 0 && elements > 0;
        if (++tags > kMaxXmlTags) return false;
        const char kind = cursor[1];
        if (kind == '/') {
            isPlain = readEnd();
        } else if (kind == '?') {
            cursor += 2;
            isPlain = skipPast("?>");
        } else if (kind == '!') {
            if (cursor[2] != '-' || cursor[3] != '-') return false;
            cursor += 4;
            isPlain = skipPast("-->");
        } else {
            isPlain = readElement();
        }
    }
    return false;
}

}  // namespace

bool readPlainXml(char *text, const char *end, TiXmlDocument &document) {
    return PlainReader(text, end, document).run();
}

}  // namespace keltra
