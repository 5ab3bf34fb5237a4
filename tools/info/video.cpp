// SPDX-License-Identifier: Zlib
#include "formats/limits.h"
#include "resources/video_stream.h"
#include "tools/info/kinds.h"

#include <cstdio>
#include <cstring>
#include <memory>
#include <string_view>

namespace keltra::info {

namespace {

// What the decoder finds up to the first picture, or to the end of a film without one.
struct Found {
    VideoSequence sequence = {};
    bool hasPicture = false;
};

Found decode(const Source &source) {
    Found found;
    const std::unique_ptr<KTVIDEOSTREAM> stream(new KTVIDEOSTREAM());
    // The decoder only reads.
    std::FILE *file = fmemopen(const_cast<char *>(source.bytes), source.size, "r");
    if (!openStream(*stream, file)) return found;
    while (!found.hasPicture && stream->lastRead != 0) {
        VideoPicture picture;
        found.hasPicture = stepStream(*stream, picture);
        const VideoSequence sequence = sequenceOf(*stream);
        if (sequence.width && (found.hasPicture || !found.sequence.width)) found.sequence = sequence;
    }
    closeStream(*stream);
    return found;
}

std::size_t countCodes(std::string_view bytes, char code) {
    const char wanted[] = {0, 0, 1, code};
    const std::string_view pattern(wanted, sizeof wanted);
    std::size_t count = 0;
    for (std::size_t at = bytes.find(pattern); at != std::string_view::npos; at = bytes.find(pattern, at + 4))
        ++count;
    return count;
}

void describe(const Source &source, const VideoSequence &sequence, Inspection &result) {
    const std::string_view bytes(source.bytes, source.size);
    const std::size_t pictures = countCodes(bytes, 0);
    result.fields["width"] = sequence.width;
    result.fields["height"] = sequence.height;
    result.fields["pixelAspect"] = number(static_cast<float>(sequence.aspect));
    result.fields["picturesASecond"] = number(static_cast<float>(sequence.rate));
    result.fields["bitsASecond"] = nullptr;
    if (sequence.bytesPerSecond) result.fields["bitsASecond"] = std::uint64_t{sequence.bytesPerSecond} * 8;
    result.fields["pictures"] = pictures;
    if (sequence.rate > 0.0)
        result.fields["seconds"] = number(static_cast<float>(static_cast<double>(pictures) / sequence.rate));
    result.fields["bytes"] = source.size;
    if (sequence.bytesPerSecond == 0) note(result, "the bit rate varies");
    if (sequence.width % 16 || sequence.height % 16)
        note(result, "the size is no multiple of 16: coded pixels show beside the picture");
    if (countCodes(bytes, '\xB7') == 0) note(result, "without an end code the last pictures are not shown");
}

void setFlawOf(const Source &source, Inspection &result) {
    const std::string_view bytes(source.bytes, source.size);
    if (bytes.substr(0, 4) == std::string_view("\0\0\1\xBA", 4))
        return setFlaw(result, "start code", "a stream of packets; films are elementary streams of video");
    const std::size_t header = bytes.find(std::string_view("\0\0\1\xB3", 4));
    if (header == std::string_view::npos) return setFlaw(result, "sequence header", "there is none");
    // The decoder does not keep what it skips, so the header itself is read: two sizes of 12 bits.
    const auto byte = [&](std::size_t at) {
        return header + at < bytes.size() ? static_cast<unsigned char>(bytes[header + at]) : 0u;
    };
    const unsigned int width = byte(4) << 4 | byte(5) >> 4, height = (byte(5) & 15) << 8 | byte(6);
    if (width > kMaxTextureSize || height > kMaxTextureSize)
        return setFlaw(result, "sequence header",
                       "pictures larger than " + std::to_string(kMaxTextureSize) + " x " +
                           std::to_string(kMaxTextureSize) + " are skipped",
                       header);
    setFlaw(result, "pictures", "the decoder finds none that is whole", header);
}

}  // namespace

void inspectVideo(const Source &source, Inspection &result) {
    if (!hasVideo()) return setFlaw(result, "film", "this program is built without video");
    if (source.size == 0) return setFlaw(result, "sequence header", "there is none");
    const Found found = decode(source);
    result.good = found.hasPicture;
    if (found.sequence.width) describe(source, found.sequence, result);
    if (!result.good) setFlawOf(source, result);
}

}  // namespace keltra::info
