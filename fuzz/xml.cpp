// SPDX-License-Identifier: Zlib
// XML without an engine: the text that is parsed without comments, instructions and blanks has the elements,
// attributes and lines of the whole one, and their values are those of the C library.

#include <tinyxml.h>

#include <climits>
#include <cmath>
#include <cstring>
#include <vector>

#include "formats/xml_check.h"
#include "formats/xml_document.h"
#include "formats/xml_scan.h"
#include "fuzz/harness.h"

using namespace keltra::fuzz;

namespace {

// The document as the parser makes it of all that it can be given.
struct Whole {
    std::string text;
    std::vector<unsigned int> lines;
    TiXmlDocument document;
    bool isGood;

    Whole(const char *bytes, std::size_t size) : isGood(false) {
        const std::size_t mark = size >= 3 && std::memcmp(bytes, "\xEF\xBB\xBF", 3) == 0 ? 3 : 0;
        for (std::size_t i = mark; i < size; ++i) {
            if (bytes[i] == '\0') return;
            if (bytes[i] != '\n' || i == mark || bytes[i - 1] != '\r')
                text += bytes[i] == '\r' ? '\n' : bytes[i];
        }
        lines.resize(text.size() / 3 + 1);
        keltra::MarkupScan scan(&text[0], &text[0] + text.size(), lines.data(),
                                keltra::MarkupScan::kSameLength);
        if (!scan.run()) return;
        document.SetTabSize(0);
        document.Parse(text.c_str(), nullptr, TIXML_ENCODING_LEGACY);
        isGood = !document.Error();
    }
};

const TiXmlElement *nextElement(const TiXmlNode *node) {
    do {
        const TiXmlNode *next = node->FirstChild();
        for (; !next && node; node = node->Parent()) next = node->NextSibling();
        node = next;
    } while (node && !node->ToElement());
    return node ? node->ToElement() : nullptr;
}

void checkValue(const char *text) {
    const long whole = std::strtol(text, nullptr, 10);
    require(keltra::xmlInteger(text) == (whole > INT_MAX   ? INT_MAX
                                         : whole < INT_MIN ? INT_MIN
                                                           : whole),
            "xmlInteger");
    float expected = 0.0f;
    if (std::sscanf(text, "%f", &expected) != 1 || !std::isfinite(expected)) expected = 7.0f;
    const float real = keltra::xmlFloat(text, 7.0f);
    require(std::memcmp(&real, &expected, sizeof real) == 0, "xmlFloat");
}

void compare(const TiXmlDocument &document, const Whole &whole) {
    const TiXmlElement *element = nextElement(&document), *other = nextElement(&whole.document);
    for (unsigned int line : whole.lines) {
        require(!element == !other, "a document has more elements");
        if (!element) return;
        require(element->ValueStr() == other->ValueStr(), "names of elements");
        require(keltra::xmlLine(*element) == line, "the line of an element");
        const TiXmlAttribute *wanted = other->FirstAttribute();
        for (const TiXmlAttribute *found = element->FirstAttribute(); found; found = found->Next()) {
            require(
                wanted && found->NameTStr() == wanted->NameTStr() && found->ValueStr() == wanted->ValueStr(),
                "attributes");
            checkValue(found->Value());
            wanted = wanted->Next();
        }
        require(!wanted, "attributes that are missing");
        element = nextElement(element);
        other = nextElement(other);
    }
    require(!element && !other, "more elements than the text has room for");
}

void checkSentence() {
    char sentence[256];
    const KTFAULT *const fault = KTFAULTS::getLast();
    if (!fault) return;
    const unsigned int length = KTFAULTS::format(fault, sentence, sizeof sentence);
    require(std::strlen(sentence) == (length < sizeof sentence ? length : sizeof sentence - 1), "a sentence");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const char *const bytes = reinterpret_cast<const char *>(data);
    const Whole whole(bytes, size);
    TiXmlDocument document;
    keltra::Fault fault;
    const bool isGood = keltra::parseXmlDocument(bytes, size, document, &fault);
    require(isGood == whole.isGood, "the whole text has the same verdict");
    if (isGood) {
        compare(document, whole);
        keltra::checkGui(document, true);
        keltra::checkEmitter(document);
    } else {
        require(!document.FirstChild() && fault.code == KT_FAULT_DATA && fault.offset <= size, "a fault");
        keltra::warnFault({}, keltra::toPublic(fault, bytes, size));
    }
    checkSentence();
    return 0;
}
