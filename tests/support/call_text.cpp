// SPDX-License-Identifier: Zlib
#include "tests/support/call_text.h"

#include <algorithm>
#include <cinttypes>
#include <cstdio>

namespace keltra::test {
namespace {

std::size_t bytesOf(std::int64_t type) {
    switch (type) {
        case GL_BYTE:
        case GL_UNSIGNED_BYTE:
            return 1;
        case GL_SHORT:
        case GL_UNSIGNED_SHORT:
            return 2;
        default:
            return 4;
    }
}

template <class T>
const T *addressOf(std::int64_t argument) {
    return reinterpret_cast<const T *>(static_cast<std::intptr_t>(argument));
}

// Of four values kept for a parameter, those that it has.
std::size_t valuesOf(const Call &call) {
    if (call.name != "glLightxv") return call.contents.size();
    const std::int64_t name = call.arguments[1];
    return name == GL_SPOT_DIRECTION ? 3 : name >= GL_SPOT_EXPONENT ? 1 : 4;
}

// The texels without what pads their rows.
std::uint64_t hashTexels(const Call &call) {
    const bool isWhole = call.name == "glTexImage2D";
    const auto width = static_cast<std::size_t>(call.arguments[isWhole ? 3 : 4]);
    const auto height = static_cast<std::size_t>(call.arguments[isWhole ? 4 : 5]);
    const std::int64_t format = call.arguments[6];
    const std::size_t texel = call.arguments[7] != GL_UNSIGNED_BYTE ? 2
                              : format == GL_RGBA                   ? 4
                              : format == GL_RGB                    ? 3
                              : format == GL_LUMINANCE_ALPHA        ? 2
                                                                    : 1;
    const std::size_t row = width * texel;
    const std::size_t stride = height > 1 ? (call.bytes.size() - row) / (height - 1) : row;
    std::uint64_t hash = kEmptyHash;
    for (std::size_t y = 0; y < height; ++y) hash = hashBytes(call.bytes.data() + y * stride, row, hash);
    return hash;
}

}  // namespace

std::uint64_t hashBytes(const void *bytes, std::size_t size, std::uint64_t before) {
    const auto *byte = static_cast<const std::uint8_t *>(bytes);
    for (std::size_t i = 0; i < size; ++i) before = (before ^ byte[i]) * 0x100000001b3u;
    return before;
}

std::string hashText(std::uint64_t hash) {
    char text[17];
    std::snprintf(text, sizeof text, "%016" PRIx64, hash);
    return text;
}

std::string CallText::line(const Call &call, unsigned pointers) {
    follow(call);
    std::string text = call.name;
    for (std::size_t i = 0; i < call.arguments.size(); ++i) {
        const bool isAddress = pointers >> i & 1;
        text += ' ';
        text += isAddress ? std::string(call.arguments[i] ? "*" : "null") : std::to_string(call.arguments[i]);
    }
    if (call.name == "glDrawArrays" || call.name == "glDrawElements") return text + drawn(call);
    for (std::size_t i = 0; i < std::min(valuesOf(call), call.contents.size()); ++i)
        text += (i == 0 ? " : " : " ") + std::to_string(call.contents[i]);
    if (!call.bytes.empty()) text += " texels " + hashText(hashTexels(call));
    return text;
}

unsigned CallText::kindOf(std::int64_t clientState) const {
    switch (clientState) {
        case GL_VERTEX_ARRAY:
            return kVertices;
        case GL_NORMAL_ARRAY:
            return kNormals;
        case GL_COLOR_ARRAY:
            return kColors;
        case GL_TEXTURE_COORD_ARRAY:
            return kTexCoords + channel;
        default:
            return kKinds;
    }
}

void CallText::setPointer(unsigned kind, std::int64_t size, const std::int64_t *typeStridePointer) {
    Array &array = arrays[kind];
    array.size = static_cast<int>(size);
    array.type = static_cast<int>(typeStridePointer[0]);
    array.stride = static_cast<int>(typeStridePointer[1]);
    array.begin = addressOf<std::uint8_t>(typeStridePointer[2]);
}

void CallText::follow(const Call &call) {
    const std::vector<std::int64_t> &a = call.arguments;
    if (call.name == "glEnableClientState" || call.name == "glDisableClientState") {
        const unsigned kind = kindOf(a[0]);
        if (kind < kKinds) arrays[kind].isOn = call.name == "glEnableClientState";
    } else if (call.name == "glClientActiveTexture") {
        channel = static_cast<unsigned>(a[0] - GL_TEXTURE0) % kChannels;
    } else if (call.name == "glVertexPointer") {
        setPointer(kVertices, a[0], &a[1]);
    } else if (call.name == "glNormalPointer") {
        setPointer(kNormals, 3, &a[0]);
    } else if (call.name == "glColorPointer") {
        setPointer(kColors, a[0], &a[1]);
    } else if (call.name == "glTexCoordPointer") {
        setPointer(kTexCoords + channel, a[0], &a[1]);
    }
}

std::uint64_t CallText::hashVertices(const Array &array, const std::vector<bool> &used) const {
    if (!array.begin) return 0;
    const std::size_t bytes = array.size * bytesOf(array.type);
    const std::size_t stride = array.stride ? static_cast<std::size_t>(array.stride) : bytes;
    std::uint64_t hash = kEmptyHash;
    for (std::size_t i = 0; i < used.size(); ++i)
        if (used[i]) hash = hashBytes(array.begin + i * stride, bytes, hash);
    return hash;
}

std::string CallText::drawn(const Call &call) const {
    const std::vector<std::int64_t> &a = call.arguments;
    std::vector<bool> used;
    std::string text;
    if (call.name == "glDrawArrays") {
        used.assign(static_cast<std::size_t>(a[1] + a[2]), false);
        std::fill(used.begin() + static_cast<std::ptrdiff_t>(a[1]), used.end(), true);
    } else {
        const auto count = static_cast<std::size_t>(a[1]);
        const void *indices = addressOf<void>(a[3]);
        for (std::size_t i = 0; i < count; ++i) {
            const std::size_t index = a[2] == GL_UNSIGNED_BYTE
                                          ? static_cast<const std::uint8_t *>(indices)[i]
                                          : static_cast<const std::uint16_t *>(indices)[i];
            if (index >= used.size()) used.resize(index + 1);
            used[index] = true;
        }
        text += " indices " + hashText(hashBytes(indices, count * bytesOf(a[2])));
    }
    const char *const names[] = {" vertices ", " normals ", " colours ", " coordinates "};
    for (unsigned kind = 0; kind < kKinds; ++kind)
        if (arrays[kind].isOn)
            text += names[std::min<unsigned>(kind, kTexCoords)] + hashText(hashVertices(arrays[kind], used));
    return text;
}

}  // namespace keltra::test
