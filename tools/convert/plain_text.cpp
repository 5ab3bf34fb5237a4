// SPDX-License-Identifier: Zlib
#include "tools/convert/plain_text.h"

#include <cstddef>

namespace keltra::convert {
namespace {

constexpr char kDigits[] = "0123456789abcdef";

// Bytes of the UTF-8 character at `at`; 0 if it is invalid or a control character.
std::size_t characterAt(const std::string &text, std::size_t at) {
    const unsigned char first = static_cast<unsigned char>(text[at]);
    if (first < 0x80) return first >= 0x20 && first != 0x7f ? 1 : 0;
    const std::size_t size = first >= 0xf0 ? 4 : first >= 0xe0 ? 3 : 2;
    if (first < 0xc2 || first > 0xf4 || text.size() - at < size) return 0;
    std::uint32_t code = first & (0xffu >> (size + 1));
    for (std::size_t i = 1; i < size; ++i) {
        const unsigned char next = static_cast<unsigned char>(text[at + i]);
        if ((next & 0xc0) != 0x80) return 0;
        code = code << 6 | (next & 0x3fu);
    }
    constexpr std::uint32_t smallest[] = {0, 0, 0xa0, 0x800,
                                          0x10000};  // control characters up to 0x9f are refused
    const bool surrogate = code >= 0xd800 && code < 0xe000;
    return code >= smallest[size] && code < 0x110000 && !surrogate ? size : 0;
}

}  // namespace

std::string withCommas(std::uint64_t number) {
    std::string digits = std::to_string(number);
    for (std::size_t at = digits.size(); at > 3;) digits.insert(at -= 3, ",");
    return digits;
}

std::string printable(const std::string &text) {
    std::string result;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t size = characterAt(text, at);
        const unsigned char byte = static_cast<unsigned char>(text[at]);
        if (size > 0)
            result.append(text, at, size);
        else if (byte == '\n' || byte == '\t' || byte == '\r')
            result += byte == '\n' ? "\\n" : byte == '\t' ? "\\t" : "\\r";
        else
            result += {'\\', 'x', kDigits[byte >> 4], kDigits[byte & 15]};
        at += size > 0 ? size : 1;
    }
    return result;
}

}  // namespace keltra::convert
