// SPDX-License-Identifier: Zlib
#include "tools/convert/md3_file.h"

#include <cstdint>
#include <cstring>

namespace keltra::convert {
namespace {

constexpr char kMagic[] = "IDP3";
constexpr std::size_t kHeaderSize = 108, kCountAt = 84, kSurfacesAt = 100, kEndAt = 104;  // of the file
// Of a surface.
constexpr std::size_t kSurfaceSize = 108, kFramesAt = 72, kVerticesAt = 80, kTrianglesAt = 84,
                      kPlacesAt = 100;
constexpr std::size_t kNextAt = 104, kVertexSize = 8;

std::uint32_t word(const std::string &bytes, std::size_t at) {
    std::uint32_t value = 0;
    for (unsigned i = 0; i < 4; ++i)
        value |= std::uint32_t{static_cast<unsigned char>(bytes[at + i])} << 8 * i;
    return value;
}

void setWord(std::string &bytes, std::size_t at, std::size_t value) {
    for (unsigned i = 0; i < 4; ++i) bytes[at + i] = static_cast<char>(value >> 8 * i & 0xff);
}

// Whether the surface has that frame, which then stands in the place of the first one.
bool showFrame(std::string &surface, unsigned frame) {
    const std::uint64_t size = std::uint64_t{word(surface, kVerticesAt)} * kVertexSize;
    const std::uint64_t first = word(surface, kPlacesAt), wanted = first + size * frame;
    if (frame >= word(surface, kFramesAt) || wanted + size > surface.size()) return false;
    surface.replace(first, size, surface.substr(wanted, size));
    return true;
}

}  // namespace

std::string readableMd3(const std::string &bytes, unsigned frame) {
    if (bytes.size() < kHeaderSize || bytes.compare(0, 4, kMagic) != 0) return "";
    const std::uint32_t count = word(bytes, kCountAt);
    std::size_t at = word(bytes, kSurfacesAt), kept = 0;
    if (at > bytes.size()) return "";
    std::string result = bytes.substr(0, at);
    for (std::uint32_t i = 0; i < count; ++i) {
        if (at > bytes.size() || bytes.size() - at < kSurfaceSize) return "";
        const std::size_t size = word(bytes, at + kNextAt);
        if (size < kSurfaceSize || size > bytes.size() - at) return "";
        std::string surface = bytes.substr(at, size);
        at += size;
        if (word(surface, kVerticesAt) == 0 || word(surface, kTrianglesAt) == 0) continue;
        if (frame > 0 && !showFrame(surface, frame)) return "";
        result += surface;
        ++kept;
    }
    if (kept == count && frame == 0) return "";
    setWord(result, kCountAt, kept);
    setWord(result, kEndAt, result.size());
    return result;
}

}  // namespace keltra::convert
