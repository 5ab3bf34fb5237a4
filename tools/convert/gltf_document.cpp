// SPDX-License-Identifier: Zlib
#include "tools/convert/gltf_document.h"

#include "tools/convert/options.h"

#include <cctype>
#include <cstdint>
#include <fstream>
#include <iterator>

namespace keltra::convert {
namespace {

using Json = nlohmann::json;

constexpr std::size_t kHeader = 12, kChunkHeader = 8;
constexpr std::size_t kVersionAt = 4;
constexpr std::size_t kMaxDepth = 1000;

std::uint32_t numberAt(const std::string &bytes, std::size_t at) {
    std::uint32_t number = 0;
    for (unsigned i = 0; i < 4; ++i)
        number |= std::uint32_t{static_cast<unsigned char>(bytes[at + i])} << 8 * i;
    return number;
}

// Brackets in texts count too, which no text comes near.
bool isTooDeep(const std::string &text) {
    std::size_t depth = 0;
    for (const char c : text) {
        if (c == '[' || c == '{') ++depth;
        if ((c == ']' || c == '}') && depth > 0) --depth;
        if (depth > kMaxDepth) return true;
    }
    return false;
}

// Throws Refusal: the importer takes a level of the stack for each level of the text.
Json parsed(const std::string &text) {
    if (isTooDeep(text))
        throw Refusal("its JSON is nested more than " + std::to_string(kMaxDepth) + " levels deep");
    return Json::parse(text, nullptr, false);
}

std::string asBytes(std::size_t number) {
    std::string bytes;
    for (unsigned i = 0; i < 4; ++i) bytes += static_cast<char>(number >> 8 * i & 0xff);
    return bytes;
}

}  // namespace

bool isGltfFile(const std::string &path) {
    const std::size_t dot = path.rfind('.');
    std::string ending = dot == std::string::npos ? "" : path.substr(dot + 1);
    for (char &c : ending) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return ending == "gltf" || ending == "glb" || ending == "vrm";
}

GltfDocument::GltfDocument(const std::string &path) {
    std::ifstream file(path, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    binary = bytes.compare(0, 4, "glTF") == 0;
    if (!binary) {
        json = parsed(bytes);
        return;
    }
    if (bytes.size() < kHeader + kChunkHeader || numberAt(bytes, kVersionAt) != 2 ||
        bytes.compare(kHeader + 4, 4, "JSON") != 0)
        return;
    const std::size_t size = numberAt(bytes, kHeader);
    const std::size_t start = kHeader + kChunkHeader;
    if (size > bytes.size() - start) return;
    json = parsed(bytes.substr(start, size));
    rest = bytes.substr(start + size);
}

std::string GltfDocument::bytes() const {
    std::string text = json.dump(-1, ' ', false, Json::error_handler_t::replace);
    if (!binary) return text;
    text.append((4 - text.size() % 4) % 4, ' ');
    return "glTF" + asBytes(2) + asBytes(kHeader + kChunkHeader + text.size() + rest.size()) +
           asBytes(text.size()) + "JSON" + text + rest;
}

}  // namespace keltra::convert
