// SPDX-License-Identifier: Zlib
#include "formats/xml_document.h"

#include <keltra/foundation.h>

#include "formats/plain_integer.h"
#include "formats/xml_plain.h"
#include "formats/xml_scan.h"
#include "formats/xml_tree.h"
#include "foundation/file_bytes.h"
#include "foundation/quiet.h"

#include <tinyxml.h>

#include <algorithm>
#include <climits>
#include <clocale>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>

namespace keltra {

namespace {

// Copies the text with one line feed for every kind of line end, as XML requires; returns its end.
char *copyLines(char *target, const char *bytes, std::size_t size) {
    const void *const firstReturn = std::memchr(bytes, '\r', size);
    std::size_t i =
        firstReturn ? static_cast<std::size_t>(static_cast<const char *>(firstReturn) - bytes) : size;
    std::memcpy(target, bytes, i);
    target += i;
    for (; i < size; ++i) {
        if (bytes[i] == '\r' && i + 1 < size && bytes[i + 1] == '\n') continue;
        *target++ = bytes[i] == '\r' ? '\n' : bytes[i];
    }
    *target = '\0';
    return target;
}

// The offset in the bytes of what is at `offset` in their copy.
std::size_t offsetInBytes(const char *bytes, std::size_t size, std::size_t offset) {
    std::size_t i = 0;
    for (; i < size; ++i) {
        if (bytes[i] == '\r' && i + 1 < size && bytes[i + 1] == '\n') continue;
        if (offset-- == 0) break;
    }
    return i;
}

struct XmlText {
    char *begin, *end;
    std::size_t longestPiece;
};

constexpr int kNoMemory = -1;

// The parser loses the element that it is working on when an exception passes through it. While one of these
// exists, memory that runs out ends the text instead: the handler of `operator new` releases a reserve, of
// which the parser takes a few small blocks more, and writes over the text what ends every name, value,
// comment and element, so that the parser stops by itself and hands over all that it has made.
class TextEndsWithMemory {
   public:
    explicit TextEndsWithMemory(const XmlText &given) : before(std::get_new_handler()) {
        text = given;
        // The string that is growing doubles its room.
        reserve = std::malloc(2 * given.longestPiece + kReserve);
        exhausted = false;
        std::set_new_handler(endText);
    }
    ~TextEndsWithMemory() {
        std::set_new_handler(before);
        std::free(reserve);
    }
    TextEndsWithMemory(const TextEndsWithMemory &) = delete;
    TextEndsWithMemory &operator=(const TextEndsWithMemory &) = delete;

    static bool hasReserve() { return reserve; }
    static bool isExhausted() { return exhausted; }

   private:
    static constexpr std::size_t kReserve = 8192;

    static void endText() {
        if (!reserve) throw std::bad_alloc();
        std::free(reserve);
        reserve = nullptr;
        exhausted = true;
        // No zeros: the parser asserts that there is something where a comment begins.
        static constexpr char kEnds[] = "'\"-->]]></>";
        for (char *c = text.begin; c < text.end; ++c)
            *c = kEnds[static_cast<std::size_t>(c - text.begin) % (sizeof kEnds - 1)];
    }

    const std::new_handler before;
    static XmlText text;
    static void *reserve;
    static bool exhausted;
};
XmlText TextEndsWithMemory::text = {};
void *TextEndsWithMemory::reserve = nullptr;
bool TextEndsWithMemory::exhausted = false;

// What `work` returns; the text is lost when memory runs out.
template <class Work>
XmlEnd withReserve(const XmlText &text, Work work) {
    static constexpr XmlEnd kWithoutMemory = {kNoMemory, nullptr, false};
    const TextEndsWithMemory guard(text);
    if (!guard.hasReserve()) return kWithoutMemory;
    try {
        const XmlEnd end = work();
        return guard.isExhausted() ? kWithoutMemory : end;
    } catch (const std::bad_alloc &) {
        return kWithoutMemory;
    }
}

void refuseText(Fault &fault, int error) {
    static const struct {
        unsigned char error;
        FaultText field, reason;
    } kErrors[] = {
        {TiXmlBase::TIXML_ERROR_READING_ELEMENT_VALUE, KT_TEXT("element"),
         KT_TEXT("is not closed, or its contents are wrong")},
        {TiXmlBase::TIXML_ERROR_PARSING_ELEMENT, KT_TEXT("element"),
         KT_TEXT("has no name, or an attribute twice")},
        {TiXmlBase::TIXML_ERROR_FAILED_TO_READ_ELEMENT_NAME, KT_TEXT("element"), KT_TEXT("has no name")},
        {TiXmlBase::TIXML_ERROR_READING_ATTRIBUTES, KT_TEXT("attribute"),
         KT_TEXT("is no name with a quoted value")},
        {TiXmlBase::TIXML_ERROR_PARSING_EMPTY, KT_TEXT("tag"),
         KT_TEXT("ends in a slash without its bracket")},
        {TiXmlBase::TIXML_ERROR_READING_END_TAG, KT_TEXT("end tag"),
         KT_TEXT("is not that of the element it ends")},
        {TiXmlBase::TIXML_ERROR_DOCUMENT_EMPTY, KT_TEXT("document"), KT_TEXT("holds no markup")},
        {0, KT_TEXT("document"), KT_TEXT("is no XML")},
    };
    if (error == kNoMemory) return void(refuseMemory(&fault));
    const auto *known = kErrors;
    while (known->error && known->error != error) ++known;
    refuse(&fault, 0, known->field, known->reason);
}

// The parser reports the position of an error only when it tracks row and column, and then loops without end
// on some bytes beyond ASCII. So the tag is parsed again with letters, as which these bytes count, in their
// place. Where that makes different names equal, the position is the beginning of the tag.
std::size_t offsetInTag(char *tag, std::size_t longestPiece) {
    char *const end = tag + std::strlen(tag);
    for (char *c = tag; c < end; ++c) {
        const unsigned char byte = static_cast<unsigned char>(*c);
        if (byte >= 127) *c = static_cast<char>('a' + byte % 26);
    }
    TiXmlDocument document;
    document.SetTabSize(1);
    const XmlEnd found = withReserve({tag, end, longestPiece}, [&]() -> XmlEnd {
        document.Parse(tag, nullptr, TIXML_ENCODING_LEGACY);
        return {document.ErrorId(), nullptr, true};
    });
    if (found.error <= 0) return 0;
    const char *at = tag;
    for (int row = document.ErrorRow(); row > 1 && *at; ++at) row -= *at == '\n';
    for (int column = document.ErrorCol(); column > 1 && *at && *at != '\n'; --column) ++at;
    return static_cast<std::size_t>(at - tag);
}

void findError(const XmlText &text, const XmlEnd &end, Fault &fault) {
    refuseText(fault, end.error);
    if (!end.at) return;
    fault.offset = static_cast<std::size_t>(end.at - text.begin);
    if (end.isInTag) fault.offset += offsetInTag(end.at, text.longestPiece);
}

// A text of `size` bytes, with room for its copy and for the line of each element.
struct XmlSource {
    const char *bytes;
    std::size_t size;
    char *copy;
    unsigned int *lines;
};

std::size_t mostElements(std::size_t size) {
    return std::min<std::size_t>(size / (sizeof "<a>" - 1) + 1, kMaxXmlTags);
}

// Without tab stops the parser tracks no row and column: that code loops without end on some byte sequences.
// Parsed as bytes, no character can claim a length beyond the end of the text.
XmlEnd parseScanned(const XmlSource &source, const MarkupScan &scan, TiXmlDocument &document) {
    const XmlEnd end =
        withReserve({source.copy, scan.keptEnd(), scan.longestPiece()}, [&source, &document]() -> XmlEnd {
            document.ClearError();
            return readXmlTree(source.copy, source.lines, document);
        });
    if (end.error) document.Clear();
    return end;
}

bool parseWhole(const XmlSource &source, TiXmlDocument &document, Fault *fault) {
    char *const end = copyLines(source.copy, source.bytes, source.size);
    MarkupScan scan(source.copy, end, source.lines, MarkupScan::kSameLength);
    if (!scan.run()) return scan.refuse(fault);
    const XmlEnd reached = parseScanned(source, scan, document);
    if (reached.error == 0) return true;
    if (fault) findError({source.copy, end, scan.longestPiece()}, reached, *fault);
    return false;
}

// 0 when the document is there, kNoMemory, or another number for a text that is not plain.
int readPlain(const XmlSource &source, TiXmlDocument &document) {
    std::memcpy(source.copy, source.bytes, source.size);
    source.copy[source.size] = '\0';
    try {
        if (readPlainXml(source.copy, source.copy + source.size, document)) return 0;
    } catch (const std::bad_alloc &) {
        document.Clear();
        return kNoMemory;
    }
    document.Clear();
    return 1;
}

// The parser takes some hundred instructions for a character, so it is given what is not plain, and no more
// of it than is used. What is wrong with a text can only be told from the whole of it, and without an element
// the parser has to say it.
bool parseSource(const XmlSource &source, TiXmlDocument &document, Fault *fault) {
    char *const end = copyLines(source.copy, source.bytes, source.size);
    MarkupScan scan(source.copy, end, source.lines, MarkupScan::kShorter);
    if (scan.run() && scan.elementCount() > 0) {
        const int error = parseScanned(source, scan, document).error;
        if (error == 0) return true;
        if (error == kNoMemory) return refuseMemory(fault);
    }
    return parseWhole(source, document, fault);
}

constexpr int kMostDecimals = 10;
struct PlainDecimal {
    std::int32_t digits;
    int decimals;  // of them; -1 without a point
    bool isNegative;
};

// False for more digits than a float holds.
bool readPlainDecimal(const char *text, PlainDecimal &number) {
    constexpr std::int32_t kExact = 1 << 24;
    std::int32_t digits = 0;
    int decimals = -1;
    number.isNegative = *text == '-';
    const char *c = text + number.isNegative;
    if (*c < '0' || *c > '9') return false;
    for (; *c; ++c) {
        if (*c == '.' && decimals < 0 && *std::localeconv()->decimal_point == '.') {
            decimals = 0;
            continue;
        }
        if (*c < '0' || *c > '9') return false;
        digits = 10 * digits + (*c - '0');
        if (digits > kExact || (decimals >= 0 && ++decimals > kMostDecimals)) return false;
    }
    number.digits = digits;
    number.decimals = decimals;
    return true;
}

// The length of the finite number that the text begins with; 0 without one.
int scanFloat(const char *text, float &value) {
    int length = 0;
    return std::sscanf(text, "%f%n", &value, &length) == 1 && std::isfinite(value) ? length : 0;
}

bool parseAny(const XmlSource &source, TiXmlDocument &document, Fault *fault) {
    const int error = readPlain(source, document);
    if (error == 0) return true;
    if (error == kNoMemory) return refuseMemory(fault);
    if (const void *zero = std::memchr(source.bytes, '\0', source.size))
        return refuse(fault, static_cast<std::size_t>(static_cast<const char *>(zero) - source.bytes),
                      KT_TEXT("document"), KT_TEXT("holds a zero byte"));
    if (parseSource(source, document, fault)) return true;
    if (fault) fault->offset = offsetInBytes(source.bytes, source.size, fault->offset);
    return false;
}

}  // namespace

bool loadXmlDocument(const char *path, TiXmlDocument &document, FaultScope *scope) {
    const FileBytes file(path, kMaxXmlBytes, scope);
    if (scope && !file.data()) return false;
    Fault fault;
    if (parseXmlDocument(file.data(), file.size(), document, scope ? &fault : nullptr)) return true;
    return scope && refuse(*scope, fault, file.data(), file.size());
}

bool parseXmlDocument(const char *bytes, std::size_t size, TiXmlDocument &document, Fault *fault) {
    document.Clear();
    if (!bytes) return refuse(fault, 0, KT_TEXT("document"), KT_TEXT("is empty or cannot be read"));
    if (size > static_cast<std::size_t>(kMaxXmlBytes))
        return refuse(fault, static_cast<std::size_t>(kMaxXmlBytes), KT_TEXT("document"),
                      KT_TEXT("is larger than %ld MiB"), kMaxXmlBytes >> 20);
    static constexpr char kByteOrderMark[] = "\xEF\xBB\xBF";
    const std::size_t mark = size >= 3 && std::memcmp(bytes, kByteOrderMark, 3) == 0 ? 3 : 0;
    const std::size_t textSize = size - mark, linesSize = mostElements(textSize) * sizeof(unsigned int);
    void *const block = allocate(static_cast<unsigned int>(linesSize + textSize + 2));
    if (!block) return refuseMemory(fault);
    const XmlSource source = {bytes + mark, textSize, static_cast<char *>(block) + linesSize,
                              static_cast<unsigned int *>(block)};
    const bool parsed = parseAny(source, document, fault);
    if (!parsed && fault) fault->offset += mark;
    vnfFree(block);
    return parsed;
}

int xmlInteger(const char *text) {
    if (!text) return 0;
    long value;
    if (plainInteger(text, value)) return static_cast<int>(value);
    value = std::strtol(text, nullptr, 10);
    if (value > INT_MAX) return INT_MAX;
    return value < INT_MIN ? INT_MIN : static_cast<int>(value);
}

bool isXmlPlainFloat(const char *text) {
    PlainDecimal number;
    return readPlainDecimal(text, number);
}

// The quotient of two numbers that a float holds exactly is rounded as the text would be.
bool xmlPlainFloat(const char *text, float &value) {
    static constexpr float kPowers[kMostDecimals + 1] = {1e0f, 1e1f, 1e2f, 1e3f, 1e4f, 1e5f,
                                                         1e6f, 1e7f, 1e8f, 1e9f, 1e10f};
    PlainDecimal number;
    if (!readPlainDecimal(text, number)) return false;
    value = static_cast<float>(number.digits);
    if (number.decimals > 0) value /= kPowers[number.decimals];
    if (number.isNegative) value = -value;
    return true;
}

float xmlFloat(const char *text, float otherwise) {
    float value;
    return text && (xmlPlainFloat(text, value) || scanFloat(text, value)) ? value : otherwise;
}

bool isXmlFloat(const char *text) {
    if (isXmlPlainFloat(text)) return true;
    float value;
    const int length = scanFloat(text, value);
    return length > 0 && !text[length];
}

}  // namespace keltra
