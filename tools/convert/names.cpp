// SPDX-License-Identifier: Zlib
#include "tools/convert/names.h"

#include <cstdint>

namespace keltra::convert {
namespace {

constexpr std::size_t kLongestFileName = 64;

bool isContinuation(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; }

// Bytes of the UTF-8 character at `at`; 0 if it is invalid: incomplete, overlong, a surrogate or beyond the
// last code point.
std::size_t characterSize(const std::string &text, std::size_t at, std::uint32_t &code) {
    const unsigned char first = static_cast<unsigned char>(text[at]);
    code = first;
    if (first < 0x80) return 1;
    const std::size_t size = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    if (first < 0xC2 || first > 0xF4 || text.size() - at < size) return 0;
    code = first & (0x7F >> size);
    for (std::size_t i = 1; i < size; ++i) {
        if (!isContinuation(text[at + i])) return 0;
        code = code << 6 | (static_cast<unsigned char>(text[at + i]) & 0x3F);
    }
    constexpr std::uint32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
    if (code < kLeast[size] || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF)) return 0;
    return size;
}

bool isControl(std::uint32_t code) { return code < 0x20 || (code >= 0x7F && code < 0xA0); }

bool isPlain(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '.' ||
           c == '-' || c == '_';
}

char folded(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

std::string folded(std::string text) {
    for (char &c : text) c = folded(c);
    return text;
}

// Windows takes these names for devices, with any extension.
bool isDevice(const std::string &name) {
    const std::string stem = folded(name.substr(0, name.find('.')));
    if (stem == "con" || stem == "prn" || stem == "aux" || stem == "nul") return true;
    return stem.size() == 4 && (stem.compare(0, 3, "com") == 0 || stem.compare(0, 3, "lpt") == 0) &&
           stem[3] >= '0' && stem[3] <= '9';
}

// The first characters of valid text that fit into `longest` bytes.
std::string cut(const std::string &text, std::size_t longest) {
    if (text.size() <= longest) return text;
    while (longest > 0 && isContinuation(text[longest])) --longest;
    return text.substr(0, longest);
}

}  // namespace

std::string cleanText(const std::string &text) {
    std::string clean;
    for (std::size_t at = 0; at < text.size();) {
        std::uint32_t code = 0;
        const std::size_t size = characterSize(text, at, code);
        if (size == 0 || isControl(code))
            clean += '_';
        else
            clean.append(text, at, size);
        at += size ? size : 1;
    }
    return clean;
}

std::string fileName(const std::string &text) {
    std::string name;
    for (const char c : cleanText(text)) {
        if (isContinuation(c)) continue;  // one '_' per character, not per byte
        name += isPlain(c) ? c : '_';
    }
    if (name.empty()) return "_";
    if (name[0] == '.') name[0] = '_';
    if (isDevice(name)) name.insert(0, 1, '_');
    name.resize(name.size() < kLongestFileName ? name.size() : kLongestFileName);
    if (name.back() == '.') name.back() = '_';
    return name;
}

bool endsWith(const std::string &text, const std::string &end) {
    return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

std::string fileStem(const std::string &path) {
    const std::size_t slash = path.find_last_of("/\\");
    const std::string name = slash == std::string::npos ? path : path.substr(slash + 1);
    const std::size_t dot = name.rfind('.');
    return fileName(dot == std::string::npos || dot == 0 ? name : name.substr(0, dot));
}

std::string Names::take(const std::string &wanted, const std::string &otherwise, const std::string &ending) {
    std::string clean = cleanText(wanted.empty() ? otherwise : wanted);
    if (clean.empty()) clean = "_";
    const auto numbered = [&](std::uint64_t number) {
        const std::string tail = (number > 1 ? "." + std::to_string(number) : "") + ending;
        return cut(clean, longest > tail.size() ? longest - tail.size() : 0) + tail;
    };
    const auto isTaken = [&](std::uint64_t number) {
        const std::string name = numbered(number);
        return taken.count(caseMatters ? name : folded(name)) != 0;
    };
    // Some models have tens of thousands of nodes of one name: bisection finds a free number. `last` is
    // taken, `next` is free.
    std::uint64_t next = 1, last = 0;
    while (isTaken(next)) {
        last = next;
        next *= 2;
    }
    while (next - last > 1) {
        const std::uint64_t middle = last + (next - last) / 2;
        (isTaken(middle) ? last : next) = middle;
    }
    const std::string name = numbered(next);
    taken.insert(caseMatters ? name : folded(name));
    if (name != wanted + ending) ++changes;
    return name;
}

}  // namespace keltra::convert
