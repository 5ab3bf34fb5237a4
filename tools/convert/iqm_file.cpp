// SPDX-License-Identifier: Zlib
#include "tools/convert/iqm_file.h"

#include "tools/convert/options.h"

#include <cmath>
#include <cstring>

namespace keltra::convert {
namespace {

constexpr char kMagic[] = "INTERQUAKEMODEL";
constexpr std::size_t kHeaderSize = 124, kChannels = 10;
constexpr std::uint32_t kVersion = 2;
constexpr std::size_t kLongestText = 256;

// Places of the header's fields.
enum Field : std::size_t {
    kVersionAt = 16,
    kTextAt = 28,
    kMeshesAt = 36,
    kArraysAt = 44,
    kVerticesAt = 48,
    kArraysOffsetAt = 52,
    kTrianglesAt = 56,
    kJointsAt = 68,
    kPosesAt = 76,
    kAnimationsAt = 84,
    kFramesAt = 92,
    kFrameChannelsAt = 96,
    kFramesOffsetAt = 100,
};

// Sizes of the format's number types: byte, unsigned byte, short, unsigned short, int, unsigned int, half,
// float, double.
constexpr std::size_t kSizes[] = {1, 1, 2, 2, 4, 4, 2, 4, 8};
constexpr std::uint32_t kFormats = 9;

template <class T>
T valueAt(const std::uint8_t *from) {
    T value;
    std::memcpy(&value, from, sizeof value);
    return value;
}

float halfAt(const std::uint8_t *from) {
    const auto bits = valueAt<std::uint16_t>(from);
    const int exponent = bits >> 10 & 31;
    const float mantissa = static_cast<float>(bits & 1023);
    const float magnitude = exponent == 0    ? std::ldexp(mantissa, -24)
                            : exponent == 31 ? std::nanf("")
                                             : std::ldexp(mantissa + 1024.0f, exponent - 25);
    return bits & 0x8000 ? -magnitude : magnitude;
}

template <class T>
float shareOf(const std::uint8_t *from, bool isShare, double largest) {
    const double value = static_cast<double>(valueAt<T>(from));
    return static_cast<float>(isShare ? value / largest : value);
}

float componentAt(const std::uint8_t *from, std::uint32_t format, bool isShare) {
    switch (format) {
        case 0:
            return shareOf<std::int8_t>(from, isShare, 127.0);
        case 1:
            return shareOf<std::uint8_t>(from, isShare, 255.0);
        case 2:
            return shareOf<std::int16_t>(from, isShare, 32767.0);
        case 3:
            return shareOf<std::uint16_t>(from, isShare, 65535.0);
        case 4:
            return shareOf<std::int32_t>(from, isShare, 2147483647.0);
        case 5:
            return shareOf<std::uint32_t>(from, isShare, 4294967295.0);
        case 6:
            return halfAt(from);
        case 7:
            return valueAt<float>(from);
        default:
            return static_cast<float>(valueAt<double>(from));
    }
}

}  // namespace

IqmFile::IqmFile(const std::vector<std::uint8_t> &bytes) : bytes(bytes) {
    if (bytes.size() < kHeaderSize || std::memcmp(bytes.data(), kMagic, sizeof kMagic) != 0)
        throw Refusal("it is no IQM file, or ends within its header");
    if (word(kVersionAt) != kVersion)
        throw Refusal("IQM files of version " + std::to_string(word(kVersionAt)) +
                      " are not read, only those of 2");
    const List text = list(kTextAt, 1, "texts");
    textSize = text.count, textOffset = text.offset;
    const List meshList = list(kMeshesAt, 24, "meshes");
    for (std::uint32_t i = 0; i < meshList.count; ++i) {
        const std::size_t at = meshList.offset + std::size_t{i} * 24;
        meshes.push_back({word(at), word(at + 4), word(at + 8), word(at + 12), word(at + 16), word(at + 20)});
    }
    const List triangleList = list(kTrianglesAt, 12, "triangles");
    triangles = triangleList.count, triangleOffset = triangleList.offset;
    readArrays();
    readSkeleton();
}

void IqmFile::readArrays() {
    vertices = word(kVerticesAt);
    const std::uint32_t count = word(kArraysAt), offset = word(kArraysOffsetAt);
    checkRange(offset, count, 20, "vertex arrays");
    for (std::uint32_t i = 0; i < count; ++i) {
        const std::size_t at = offset + std::size_t{i} * 20;
        const IqmVertexArray array = {word(at), word(at + 4), word(at + 8), word(at + 12), word(at + 16)};
        if (array.format >= kFormats || array.size == 0 || array.size > 64) continue;
        checkRange(array.offset, vertices, kSizes[array.format] * array.size, "vertices");
        arrays.push_back(array);
    }
}

void IqmFile::readSkeleton() {
    const auto ten = [this](std::size_t at) {
        std::array<float, kChannels> values;
        for (std::size_t k = 0; k < kChannels; ++k) values[k] = number(at + 4 * k);
        return values;
    };
    const List jointList = list(kJointsAt, 48, "joints");
    for (std::uint32_t i = 0; i < jointList.count; ++i) {
        const std::size_t at = jointList.offset + std::size_t{i} * 48;
        joints.push_back({text(word(at)), static_cast<std::int32_t>(word(at + 4)), ten(at + 8)});
    }
    const List poseList = list(kPosesAt, 88, "poses");
    std::uint64_t used = 0;
    for (std::uint32_t i = 0; i < poseList.count; ++i) {
        const std::size_t at = poseList.offset + std::size_t{i} * 88;
        poses.push_back({static_cast<std::int32_t>(word(at)), word(at + 4), ten(at + 8), ten(at + 48)});
        for (unsigned k = 0; k < kChannels; ++k) used += poses.back().mask >> k & 1u;
    }
    frames = word(kFramesAt), channels = word(kFrameChannelsAt), frameOffset = word(kFramesOffsetAt);
    if (used > channels) throw Refusal("its frames have fewer channels than its poses");
    checkRange(frameOffset, std::uint64_t{frames} * channels, 2, "frames");
    const List animationList = list(kAnimationsAt, 20, "animations");
    for (std::uint32_t i = 0; i < animationList.count; ++i) {
        const std::size_t at = animationList.offset + std::size_t{i} * 20;
        animations.push_back({text(word(at)), word(at + 4), word(at + 8), number(at + 12)});
        const IqmAnimation &animation = animations.back();
        if (std::uint64_t{animation.firstFrame} + animation.frames > frames)
            throw Refusal("one of its animations has frames beyond the last");
    }
}

IqmFile::List IqmFile::list(std::size_t field, std::size_t size, const char *what) const {
    const List list = {word(field), word(field + 4)};
    checkRange(list.offset, list.count, size, what);
    return list;
}

void IqmFile::checkRange(std::uint64_t offset, std::uint64_t count, std::uint64_t size,
                         const char *what) const {
    if (count == 0) return;
    if (offset > bytes.size() || count > (bytes.size() - offset) / size)
        throw Refusal(std::string("its ") + what + " lie beyond its end");
}

std::uint32_t IqmFile::word(std::size_t at) const { return valueAt<std::uint32_t>(bytes.data() + at); }

float IqmFile::number(std::size_t at) const {
    const float value = valueAt<float>(bytes.data() + at);
    return std::isfinite(value) ? value : 0.0f;
}

std::string IqmFile::text(std::uint32_t offset) const {
    std::string text;
    for (std::uint64_t at = offset; at < textSize && text.size() < kLongestText; ++at) {
        const char c = static_cast<char>(bytes[textOffset + at]);
        if (c == '\0') break;
        text += c;
    }
    return text;
}

void IqmFile::element(const IqmVertexArray &array, std::uint32_t index, bool isShare, unsigned components,
                      float *values) const {
    const std::size_t size = kSizes[array.format];
    const std::uint8_t *from = bytes.data() + array.offset + std::size_t{index} * size * array.size;
    for (unsigned k = 0; k < components; ++k)
        values[k] = k < array.size ? componentAt(from + k * size, array.format, isShare) : 0.0f;
}

std::array<std::uint32_t, 3> IqmFile::triangle(std::uint32_t index) const {
    const std::size_t at = triangleOffset + std::size_t{index} * 12;
    return {word(at), word(at + 4), word(at + 8)};
}

std::vector<std::array<float, 10>> IqmFile::frame(std::uint32_t index) const {
    const std::uint8_t *from = bytes.data() + frameOffset + std::size_t{index} * channels * 2;
    std::vector<std::array<float, 10>> values;
    for (const IqmPose &pose : poses) {
        values.push_back(pose.offset);
        for (std::size_t k = 0; k < kChannels; ++k) {
            if ((pose.mask >> k & 1u) == 0) continue;
            values.back()[k] += static_cast<float>(valueAt<std::uint16_t>(from)) * pose.scale[k];
            from += 2;
        }
    }
    return values;
}

const IqmVertexArray *IqmFile::array(std::uint32_t type) const {
    for (const IqmVertexArray &array : arrays)
        if (array.type == type) return &array;
    return nullptr;
}

}  // namespace keltra::convert
