// SPDX-License-Identifier: Zlib
#include "formats/xml_tree.h"

#include <tinyxml.h>

#include <cstdint>
#include <cstring>

namespace keltra {

namespace {

// As the parser takes them.
bool isBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
bool startsName(char c) {
    return static_cast<unsigned char>(c) >= 127 || c == '_' || (c >= 'a' && c <= 'z') ||
           (c >= 'A' && c <= 'Z');
}

bool isAt(const char *c, const char *text) { return std::strncmp(c, text, std::strlen(text)) == 0; }

// The parser calls itself for the contents of an element. So it is given each tag as if the text ended there
// with an empty element.
class LoneTag {
   public:
    explicit LoneTag(char *tag) : close(tag) {
        char quote = '\0';
        for (; *close && (quote || *close != '>'); ++close) {
            const char c = *close;
            if (quote ? c == quote : c == '"' || c == '\'') quote = quote ? '\0' : c;
        }
        isEmpty = close[-1] == '/';
        std::memcpy(kept, close, sizeof kept);
        std::memcpy(close, isEmpty ? ">" : "/>", isEmpty ? 2 : 3);
    }
    bool hasContents() const { return !isEmpty; }
    // Where the text goes on.
    char *restore() {
        std::memcpy(close, kept, sizeof kept);
        return close + 1;
    }

   private:
    char *close;
    char kept[3];
    bool isEmpty;
};

class TreeReader {
   public:
    TreeReader(char *text, const unsigned int *lines, TiXmlDocument &document)
        : cursor(text), lines(lines), document(document), node(&document) {}

    XmlEnd run();

   private:
    bool readElement();
    bool readEnd();
    bool readOther();

    char *cursor;
    const unsigned int *lines;
    TiXmlDocument &document;
    TiXmlNode *node;  // whose contents these are
};

// Linked first: what the parser finds wrong is noted in the document.
bool TreeReader::readElement() {
    TiXmlElement *const element = new TiXmlElement("");
    node->LinkEndChild(element);
    element->SetUserData(reinterpret_cast<void *>(std::uintptr_t{*lines++}));
    LoneTag tag(cursor);
    if (!element->Parse(cursor, nullptr, TIXML_ENCODING_LEGACY)) return false;
    cursor = tag.restore();
    if (tag.hasContents()) node = element;
    return true;
}

bool TreeReader::readEnd() {
    const char *const name = node->Value();
    if (!isAt(cursor + 2, name)) return false;
    cursor += 2 + std::strlen(name);
    while (isBlank(*cursor)) ++cursor;
    if (*cursor != '>') return false;
    ++cursor;
    node = node->Parent();
    return true;
}

bool TreeReader::readOther() {
    TiXmlNode *other;
    if (*cursor != '<' || isAt(cursor, "<![CDATA["))
        other = new TiXmlText("");
    else if (isAt(cursor, "<!--"))
        other = new TiXmlComment;
    else
        other = new TiXmlUnknown;
    node->LinkEndChild(other);
    const char *const end = other->Parse(cursor, nullptr, TIXML_ENCODING_LEGACY);
    if (!end) return false;
    cursor += end - cursor;
    return true;
}

// The document ends with its text, or before words that are in no element. Of an element that is not closed,
// the parser says different things with blanks at the end and without.
XmlEnd TreeReader::run() {
    static constexpr int kEndTag = TiXmlBase::TIXML_ERROR_READING_END_TAG;
    for (;;) {
        const bool isInElement = node != &document, hasBlank = isBlank(*cursor);
        while (isBlank(*cursor)) ++cursor;
        const char kind = *cursor == '<' ? cursor[1] : '\0';
        if (*cursor == '\0' && isInElement && hasBlank) return {kEndTag, cursor, false};
        if (*cursor == '\0' || (*cursor != '<' && !isInElement)) break;
        if (startsName(kind)) {
            if (!readElement()) return {document.ErrorId(), cursor, true};
        } else if (kind == '/' && isInElement) {
            if (!readEnd()) return {kEndTag, cursor, false};
        } else if (!readOther()) {
            break;
        }
    }
    if (node != &document) return {TiXmlBase::TIXML_ERROR_READING_ELEMENT_VALUE, nullptr, false};
    return {document.FirstChild() ? 0 : TiXmlBase::TIXML_ERROR_DOCUMENT_EMPTY, nullptr, false};
}

}  // namespace

XmlEnd readXmlTree(char *text, const unsigned int *lines, TiXmlDocument &document) {
    return TreeReader(text, lines, document).run();
}

}  // namespace keltra
