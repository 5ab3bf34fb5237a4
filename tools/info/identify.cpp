// SPDX-License-Identifier: Zlib
#include "tools/info/inspect.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <filesystem>
#include <string_view>

namespace keltra::info {

namespace {

const struct {
    FileKind kind;
    const char *name;
} kKinds[] = {
    {FileKind::kScene, "kte"},       {FileKind::kAnimation, "kta"},     {FileKind::kTexture, "tga"},
    {FileKind::kKerning, "kerning"}, {FileKind::kSettings, "settings"}, {FileKind::kInterface, "gui"},
    {FileKind::kEmitter, "emitter"}, {FileKind::kVideo, "video"},
};

// .txt may be either of two kinds.
const struct {
    const char *extension;
    FileKind kind;
} kExtensions[] = {
    {".kte", FileKind::kScene},     {".kta", FileKind::kAnimation}, {".tga", FileKind::kTexture},
    {".xml", FileKind::kInterface}, {".cfg", FileKind::kSettings},  {".ini", FileKind::kSettings},
    {".m1v", FileKind::kVideo},     {".mpg", FileKind::kVideo},     {".mpeg", FileKind::kVideo},
    {".m2v", FileKind::kVideo},
};

bool startsWith(std::string_view text, std::string_view beginning) {
    return text.substr(0, beginning.size()) == beginning;
}

FileKind kindOfExtension(const std::string &fileName) {
    std::string extension = std::filesystem::path(fileName).extension().string();
    for (char &c : extension) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    for (const auto &known : kExtensions)
        if (extension == known.extension) return known.kind;
    return FileKind::kUnknown;
}

// A true-colour, grey or indexed picture of a size and a depth that Targa files have.
bool looksLikeTarga(std::string_view text) {
    if (text.size() < 18) return false;
    const auto byte = [text](std::size_t at) { return static_cast<unsigned char>(text[at]); };
    const unsigned char depth = byte(16);
    const bool isKind = std::strchr("\1\2\3\11\12\13", byte(2)) && byte(2) != 0;
    const bool isSized = (byte(12) || byte(13)) && (byte(14) || byte(15));
    return byte(1) <= 1 && isKind && isSized &&
           (depth == 8 || depth == 15 || depth == 16 || depth == 24 || depth == 32);
}

// The name of the first element, found without a parser, since the document may be damaged.
std::string_view firstElement(std::string_view text) {
    for (std::size_t at = text.find('<'); at != std::string_view::npos; at = text.find('<', at)) {
        const std::string_view rest = text.substr(at);
        const char *end = startsWith(rest, "<!--") ? "-->" : startsWith(rest, "<?") ? "?>" : nullptr;
        if (!end && rest.size() > 1 && rest[1] != '!') {
            const std::size_t length = rest.find_first_of(" \t\r\n/>", 1);
            return rest.substr(1, length == std::string_view::npos ? length : length - 1);
        }
        at = text.find(end ? end : ">", at);
        if (at == std::string_view::npos) break;
    }
    return "";
}

FileKind kindOfXml(std::string_view text) {
    const std::string_view root = firstElement(text);
    if (root == "root") return FileKind::kInterface;
    return root == "emitter" ? FileKind::kEmitter : FileKind::kUnknown;
}

// A program that is linked to the engine contains keys too, but is not text.
FileKind kindOfText(std::string_view text) {
    if (text.find('\0') != std::string_view::npos) return FileKind::kUnknown;
    if (text.find("KELTRA_kerning_") != std::string_view::npos) return FileKind::kKerning;
    return text.find("KELTRA_") != std::string_view::npos ? FileKind::kSettings : FileKind::kUnknown;
}

FileKind kindOfContents(std::string_view text) {
    if (startsWith(text, "KTE file")) return FileKind::kScene;
    if (startsWith(text, "KTA file")) return FileKind::kAnimation;
    if (startsWith(text, std::string_view("\0\0\1\xB3", 4)) ||
        startsWith(text, std::string_view("\0\0\1\xBA", 4)))
        return FileKind::kVideo;
    if (looksLikeTarga(text)) return FileKind::kTexture;
    if (startsWith(text, "\xEF\xBB\xBF")) text.remove_prefix(3);
    const std::size_t first = text.find_first_not_of(" \t\r\n");
    if (first != std::string_view::npos && text[first] == '<') return kindOfXml(text);
    return kindOfText(text);
}

}  // namespace

const char *kindName(FileKind kind) {
    for (const auto &known : kKinds)
        if (known.kind == kind) return known.name;
    return "unknown";
}

FileKind kindOfName(const std::string &name) {
    for (const auto &known : kKinds)
        if (name == known.name) return known.kind;
    return FileKind::kUnknown;
}

std::vector<std::string> kindNames() {
    std::vector<std::string> names;
    for (const auto &known : kKinds) names.push_back(known.name);
    return names;
}

FileKind identify(const std::string &fileName, const void *bytes, std::size_t size) {
    // Keys and root elements are near the beginning.
    constexpr std::size_t kLookedAt = 65536;
    const std::string_view text(bytes ? static_cast<const char *>(bytes) : "",
                                bytes ? std::min(size, kLookedAt) : 0);
    const FileKind kind = kindOfContents(text);
    return kind == FileKind::kUnknown ? kindOfExtension(fileName) : kind;
}

}  // namespace keltra::info
