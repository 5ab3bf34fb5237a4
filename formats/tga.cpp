#include "formats/tga.h"

#include <algorithm>
#include <cstring>

namespace keltra {

namespace {

const std::size_t kHeaderSize = 18;
const std::size_t kTemplateSize = 12;
const unsigned int kPacketPixels = 128;
const unsigned int kFlippedDescriptor = 16;

// An image name, a colour map or an origin make a file of another kind.
const std::uint8_t kUncompressedTemplate[kTemplateSize] = {0, 0, 2};
const std::uint8_t kRunLengthTemplate[kTemplateSize] = {0, 0, 10};

TgaKind kindOf(const std::uint8_t *header) {
    if (std::memcmp(header, kUncompressedTemplate, kTemplateSize) == 0) return TgaKind::kUncompressed;
    if (std::memcmp(header, kRunLengthTemplate, kTemplateSize) == 0) return TgaKind::kRunLength;
    return TgaKind::kOther;
}

bool isSize(unsigned int pixels) { return pixels >= 1 && pixels <= kMaxTextureSize; }

// The least number of bytes that can hold the image: for run-length files, full run packets throughout.
std::size_t leastData(const TgaImage &image) {
    const std::size_t pixels = std::size_t{image.sizeX} * image.sizeY;
    switch (image.kind) {
        case TgaKind::kUncompressed:
            return image.bytes();
        case TgaKind::kRunLength:
            return (pixels + kPacketPixels - 1) / kPacketPixels * (1 + image.bytesPerPixel);
        default:
            return 0;
    }
}

void convert3(const std::uint8_t *source, std::uint8_t *target, std::size_t pixels) {
    for (; pixels; --pixels, source += 3, target += 3) {
        const std::uint8_t blue = source[0];
        target[0] = source[2];
        target[1] = source[1];
        target[2] = blue;
    }
}

// Exchanging the first and the third byte is a rotation of both by 16 bits, on either byte order.
std::uint32_t converted4(const std::uint8_t *source) {
    const std::uint8_t kept[4] = {0, 255, 0, 255};
    std::uint32_t pixel, mask;
    std::memcpy(&pixel, source, 4);
    std::memcpy(&mask, kept, 4);
    const std::uint32_t moved = pixel & ~mask;
    return (pixel & mask) | moved << 16 | moved >> 16;
}

void convert4(const std::uint8_t *source, std::uint8_t *target, std::size_t pixels) {
    for (; pixels; --pixels, source += 4, target += 4) {
        const std::uint32_t pixel = converted4(source);
        std::memcpy(target, &pixel, 4);
    }
}

void repeat3(const std::uint8_t *source, std::uint8_t *target, std::size_t pixels) {
    const std::uint8_t blue = source[0], green = source[1], red = source[2];
    for (; pixels; --pixels, target += 3) {
        target[0] = red;
        target[1] = green;
        target[2] = blue;
    }
}

void repeat4(const std::uint8_t *source, std::uint8_t *target, std::size_t pixels) {
    const std::uint32_t pixel = converted4(source);
    for (; pixels; --pixels, target += 4) std::memcpy(target, &pixel, 4);
}

bool refusePacket(const TgaImage &image, const std::uint8_t *at, const char *field, Fault *fault) {
    const std::size_t offset = kHeaderSize + static_cast<std::size_t>(at - image.data);
    return refuse(fault, offset, field, "the file ends before the image is full");
}

template <unsigned int kBytes>
bool unpack(const TgaImage &image, std::uint8_t *target, Fault *fault) {
    const std::uint8_t *source = image.data;
    const std::uint8_t *const end = source + image.dataSize;
    std::size_t left = std::size_t{image.sizeX} * image.sizeY;
    while (left) {
        if (source == end) return refusePacket(image, source, "packet", fault);
        const unsigned int packet = *source++;
        const bool run = packet >= kPacketPixels;
        // A last packet that is longer than the image is cut.
        const std::size_t pixels = std::min<std::size_t>(left, packet % kPacketPixels + 1);
        const std::size_t bytes = run ? kBytes : pixels * kBytes;
        if (static_cast<std::size_t>(end - source) < bytes)
            return refusePacket(image, source, "pixels of a packet", fault);
        if (kBytes == 3)
            run ? repeat3(source, target, pixels) : convert3(source, target, pixels);
        else
            run ? repeat4(source, target, pixels) : convert4(source, target, pixels);
        source += bytes;
        target += pixels * kBytes;
        left -= pixels;
    }
    return true;
}

void flipRows(std::uint8_t *pixels, std::size_t rowBytes, unsigned int rows) {
    std::uint8_t *top = pixels, *bottom = pixels + rowBytes * (rows - 1);
    for (; top < bottom; top += rowBytes, bottom -= rowBytes) std::swap_ranges(top, top + rowBytes, bottom);
}

}  // namespace

bool parseTga(const void *file, std::size_t size, TgaImage &image, Fault *fault) {
    if (size < kHeaderSize) return refuse(fault, size, "header", "ends before its 18 bytes");
    const std::uint8_t *header = static_cast<const std::uint8_t *>(file);
    const unsigned int bits = header[16];
    if (bits != 24 && bits != 32) return refuseValue(fault, 16, "bits a pixel", bits, "neither 24 nor 32");
    image.sizeX = header[12] | header[13] << 8;
    image.sizeY = header[14] | header[15] << 8;
    if (!isSize(image.sizeX))
        return refuseValue(fault, 12, "width", image.sizeX, "outside 1 to %ld", kMaxTextureSize);
    if (!isSize(image.sizeY))
        return refuseValue(fault, 14, "height", image.sizeY, "outside 1 to %ld", kMaxTextureSize);
    image.kind = kindOf(header);
    image.bytesPerPixel = bits / 8;
    // Bit 5 says that the top row comes first, but any of bits 4 to 7 turns the picture: files rely on it.
    image.topDown = header[17] >= kFlippedDescriptor;
    image.data = header + kHeaderSize;
    image.dataSize = size - kHeaderSize;
    if (image.dataSize >= leastData(image)) return true;
    return refuse(fault, size, "pixels", "the file is too short for its image");
}

Fault otherTgaKind() {
    Fault fault;
    refuse(&fault, 2, "kind", "neither uncompressed nor run-length true-colour: no pixels are loaded");
    return fault;
}

bool decodeTga(const TgaImage &image, std::uint8_t *target, Fault *fault) {
    if (image.kind == TgaKind::kOther) return refuse(fault, 0, "kind", "has no pixels that are read");
    if (image.dataSize < leastData(image))
        return refuse(fault, kHeaderSize + image.dataSize, "pixels", "the file is too short for its image");
    const bool hasAlpha = image.bytesPerPixel == 4;
    if (image.kind == TgaKind::kUncompressed) {
        const std::size_t pixels = std::size_t{image.sizeX} * image.sizeY;
        hasAlpha ? convert4(image.data, target, pixels) : convert3(image.data, target, pixels);
    } else if (!(hasAlpha ? unpack<4>(image, target, fault) : unpack<3>(image, target, fault))) {
        return false;
    }
    if (image.topDown) flipRows(target, std::size_t{image.sizeX} * image.bytesPerPixel, image.sizeY);
    return true;
}

}  // namespace keltra
