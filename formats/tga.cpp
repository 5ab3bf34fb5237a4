// SPDX-License-Identifier: Zlib
#include "formats/tga.h"

#include "formats/tga_arm.h"
#include "foundation/cold.h"

#include <algorithm>
#include <cstring>

#if defined(__x86_64__) && defined(__GNUC__)
#define KELTRA_TGA_SHUFFLES
#include <cpuid.h>
#include <tmmintrin.h>
#endif

namespace keltra {

namespace {

constexpr std::size_t kHeaderSize = kTgaHeaderSize;
constexpr std::size_t kTemplateSize = 12;
constexpr unsigned int kPacketPixels = 128;
constexpr unsigned int kFlippedDescriptor = 16;

// An image name, a colour map or an origin make a file of another kind.
constexpr std::uint8_t kUncompressedTemplate[kTemplateSize] = {0, 0, 2};
constexpr std::uint8_t kRunLengthTemplate[kTemplateSize] = {0, 0, 10};

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

// Where a word may not lie at any address, its bytes are loaded in the largest parts that their place allows.
#if defined(__ARM_ARCH) && !defined(__ARM_FEATURE_UNALIGNED)
constexpr bool kAnyAddress = false;
#else
constexpr bool kAnyAddress = true;
#endif

static_assert(kAnyAddress || __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "the first part is the lowest");

template <unsigned int kPart>
std::uint32_t loadPixel(const std::uint8_t *source) {
    if constexpr (kPart == 4) {
        std::uint32_t pixel;
        std::memcpy(&pixel, kAnyAddress ? source : __builtin_assume_aligned(source, 4), 4);
        return pixel;
    } else if constexpr (kPart == 2) {
        std::uint16_t low, high;
        std::memcpy(&low, __builtin_assume_aligned(source, 2), 2);
        std::memcpy(&high, __builtin_assume_aligned(source + 2, 2), 2);
        return low | std::uint32_t{high} << 16;
    } else {
        return source[0] | std::uint32_t{source[1]} << 8 | std::uint32_t{source[2]} << 16 |
               std::uint32_t{source[3]} << 24;
    }
}

void storePixel(std::uint8_t *target, std::uint32_t pixel) {
    std::memcpy(kAnyAddress ? target : __builtin_assume_aligned(target, 4), &pixel, 4);
}

// Exchanging the first and the third byte is a rotation of both by 16 bits, on either byte order.
std::uint32_t exchanged(std::uint32_t pixel) {
    const std::uint8_t movedBytes[4] = {255, 0, 255, 0};
    std::uint32_t mask;
    std::memcpy(&mask, movedBytes, 4);
    const std::uint32_t moved = pixel & mask;
    return (pixel ^ moved) | (moved << 16 | moved >> 16);
}

#if defined(KELTRA_TGA_SHUFFLES)
constexpr bool kShuffles = true;

// Bytes change their places 16 at a time; processors of 2004 cannot yet.
bool hasShuffles() {
    static const bool has = [] {
        unsigned int eax, ebx, ecx, edx;
        return __get_cpuid(1, &eax, &ebx, &ecx, &edx) && (ecx & bit_SSSE3);
    }();
    return has;
}

// Whole groups of `kPixels`, as many as leave one behind: the 16th byte of five pixels is that of the next.
// Returns the pixels that it converted.
template <unsigned int kBytes, unsigned int kPixels>
__attribute__((target("ssse3"))) std::size_t shuffle(const std::uint8_t *source, std::uint8_t *target,
                                                     std::size_t pixels, const std::int8_t (&places)[16]) {
    const __m128i order = _mm_loadu_si128(reinterpret_cast<const __m128i *>(places));
    std::size_t done = 0;
    for (; done + kPixels < pixels; done += kPixels) {
        const std::size_t at = done * kBytes;
        const __m128i group = _mm_loadu_si128(reinterpret_cast<const __m128i *>(source + at));
        _mm_storeu_si128(reinterpret_cast<__m128i *>(target + at), _mm_shuffle_epi8(group, order));
    }
    return done;
}

std::size_t shuffle3(const std::uint8_t *source, std::uint8_t *target, std::size_t pixels) {
    static constexpr std::int8_t kPlaces[16] = {2, 1, 0, 5, 4, 3, 8, 7, 6, 11, 10, 9, 14, 13, 12, 15};
    return hasShuffles() ? shuffle<3, 5>(source, target, pixels, kPlaces) : 0;
}

std::size_t shuffle4(const std::uint8_t *source, std::uint8_t *target, std::size_t pixels) {
    static constexpr std::int8_t kPlaces[16] = {2, 1, 0, 3, 6, 5, 4, 7, 10, 9, 8, 11, 14, 13, 12, 15};
    return hasShuffles() ? shuffle<4, 4>(source, target, pixels, kPlaces) : 0;
}
#else
constexpr bool kShuffles = false;

std::size_t shuffle3(const std::uint8_t *, std::uint8_t *, std::size_t) { return 0; }
std::size_t shuffle4(const std::uint8_t *, std::uint8_t *, std::size_t) { return 0; }
#endif

void convertPixel3(const std::uint8_t *source, std::uint8_t *target) {
    const std::uint8_t blue = source[0], green = source[1];
    target[0] = source[2];
    target[1] = green;
    target[2] = blue;
}

std::size_t exchange3(std::uint8_t *place, std::size_t pixels) {
    return kShuffles ? shuffle3(place, place, pixels) : exchangeWords3(place, pixels);
}

// The source may be the target, which is at a multiple of four then.
void convert3(const std::uint8_t *source, std::uint8_t *target, std::size_t pixels) {
    const std::size_t done = source == target ? exchange3(target, pixels) : shuffle3(source, target, pixels);
    source += 3 * done;
    target += 3 * done;
    pixels -= done;
    if constexpr (!kShuffles)
        for (; pixels >= 8; pixels -= 8, source += 24, target += 24)
            for (unsigned int i = 0; i < 24; i += 3) convertPixel3(source + i, target + i);
    for (; pixels; --pixels, source += 3, target += 3) convertPixel3(source, target);
}

// Compilers turn plain loops into wide ones where any address will do; elsewhere a turn does four pixels.
constexpr std::size_t kTurn = kAnyAddress ? 1 : 4;

template <unsigned int kPart>
void convertParts4(const std::uint8_t *source, std::uint8_t *target, std::size_t pixels) {
    const std::uint8_t *const turnsEnd = source + pixels / kTurn * (4 * kTurn);
    for (; source != turnsEnd; source += 4 * kTurn, target += 4 * kTurn)
        for (std::size_t i = 0; i < 4 * kTurn; i += 4)
            storePixel(target + i, exchanged(loadPixel<kPart>(source + i)));
    for (pixels %= kTurn; pixels; --pixels, source += 4, target += 4)
        storePixel(target, exchanged(loadPixel<kPart>(source)));
}

void convertInPlace4(std::uint8_t *place, std::size_t pixels) {
    std::uint8_t *const turnsEnd = place + pixels / kTurn * (4 * kTurn);
    for (; place != turnsEnd; place += 4 * kTurn)
        for (std::size_t i = 0; i < 4 * kTurn; i += 4)
            storePixel(place + i, exchanged(loadPixel<4>(place + i)));
    for (pixels %= kTurn; pixels; --pixels, place += 4) storePixel(place, exchanged(loadPixel<4>(place)));
}

// The source may be the target.
void convert4(const std::uint8_t *source, std::uint8_t *target, std::size_t pixels) {
    const std::size_t done = shuffle4(source, target, pixels);
    source += 4 * done;
    target += 4 * done;
    pixels -= done;
    const std::uintptr_t place = reinterpret_cast<std::uintptr_t>(source);
    if (source == target) return convertInPlace4(target, pixels);
    if (kAnyAddress || place % 4 == 0) return convertParts4<4>(source, target, pixels);
    if constexpr (!kAnyAddress) {
        if (place % 2 == 0) return convertParts4<2>(source, target, pixels);
        convertParts4<1>(source, target, pixels);
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
    const std::uint32_t pixel = exchanged(loadPixel < kAnyAddress ? 4 : 1 > (source));
    for (; pixels >= kTurn; pixels -= kTurn, target += 4 * kTurn)
        for (std::size_t i = 0; i < 4 * kTurn; i += 4) storePixel(target + i, pixel);
    for (; kTurn > 1 && pixels; --pixels, target += 4) storePixel(target, pixel);
}

template <unsigned int kBytes>
void convert(const std::uint8_t *source, std::uint8_t *target, std::size_t pixels) {
    kBytes == 4 ? convert4(source, target, pixels) : convert3(source, target, pixels);
}

template <unsigned int kBytes>
void repeat(const std::uint8_t *source, std::uint8_t *target, std::size_t pixels) {
    kBytes == 4 ? repeat4(source, target, pixels) : repeat3(source, target, pixels);
}

void convert(const std::uint8_t *source, std::uint8_t *target, std::size_t pixels,
             unsigned int bytesPerPixel) {
    bytesPerPixel == 4 ? convert4(source, target, pixels) : convert3(source, target, pixels);
}

#if defined(KELTRA_TGA_ARM)
void unpackShort4(const std::uint8_t *&source, std::uint8_t *&target, std::size_t &missing,
                  const std::uint8_t *end) {
    if (static_cast<std::size_t>(end - source) < TgaPackets::kLongest) return;
    TgaPackets packets = {source, target, missing, end - TgaPackets::kLongest};
    keltraUnpackShort4(&packets);
    source = packets.source;
    target = packets.target;
    missing = packets.missing;
}
#else
void unpackShort4(const std::uint8_t *&, std::uint8_t *&, std::size_t &, const std::uint8_t *) {}
#endif

void flipRows(std::uint8_t *pixels, std::size_t rowBytes, unsigned int rows) {
    std::uint8_t *top = pixels, *bottom = pixels + rowBytes * (rows - 1);
    std::uint8_t part[256];
    for (; top < bottom; bottom -= 2 * rowBytes) {
        for (std::size_t left = rowBytes, some; left; left -= some, top += some, bottom += some) {
            some = std::min(left, sizeof part);
            std::memcpy(part, top, some);
            std::memcpy(top, bottom, some);
            std::memcpy(bottom, part, some);
        }
    }
}

void flipRows(const TgaImage &image, std::uint8_t *pixels) {
    if (image.topDown) flipRows(pixels, std::size_t{image.sizeX} * image.bytesPerPixel, image.sizeY);
}

}  // namespace

KELTRA_COLD bool parseTga(const void *file, std::size_t size, TgaImage &image, Fault *fault) {
    if (size < kHeaderSize)
        return refuse(fault, size, KT_TEXT("header"), KT_TEXT("ends before its 18 bytes"));
    const std::uint8_t *header = static_cast<const std::uint8_t *>(file);
    const unsigned int bits = header[16];
    if (bits != 24 && bits != 32)
        return refuseValue(fault, 16, KT_TEXT("bits a pixel"), bits, KT_TEXT("neither 24 nor 32"));
    image.sizeX = header[12] | header[13] << 8;
    image.sizeY = header[14] | header[15] << 8;
    const bool isWide = isSize(image.sizeX);
    if (!isWide || !isSize(image.sizeY))
        return refuseValue(fault, isWide ? 14 : 12, isWide ? KT_TEXT("height") : KT_TEXT("width"),
                           isWide ? image.sizeY : image.sizeX, KT_TEXT("outside 1 to %ld"), kMaxTextureSize);
    image.kind = kindOf(header);
    image.bytesPerPixel = bits / 8;
    // Bit 5 says that the top row comes first, but any of bits 4 to 7 turns the picture: files rely on it.
    image.topDown = header[17] >= kFlippedDescriptor;
    image.data = header + kHeaderSize;
    image.dataSize = size - kHeaderSize;
    if (image.dataSize >= leastData(image)) return true;
    return refuse(fault, size, KT_TEXT("pixels"), KT_TEXT("the file is too short for its image"));
}

KELTRA_COLD Fault otherTgaKind() {
    Fault fault;
    refuse(&fault, 2, KT_TEXT("kind"),
           KT_TEXT("neither uncompressed nor run-length true-colour: no pixels are loaded"));
    return fault;
}

TgaUnpacker::TgaUnpacker(const TgaImage &image, std::uint8_t *target)
    : bytesPerPixel(image.bytesPerPixel), target(target), left(std::size_t{image.sizeX} * image.sizeY) {}

template <unsigned int kBytes>
std::size_t TgaUnpacker::unpackAs(const std::uint8_t *bytes, std::size_t size, bool isLast) {
    const std::uint8_t *source = bytes, *const end = bytes + size;
    // As members, each pixel that is stored could change them.
    std::uint8_t *place = target;
    std::size_t missing = left;
    // Nothing is short of what any packet takes: packets of a few pixels are most of a picture.
    for (;;) {
        if constexpr (kBytes == 4) unpackShort4(source, place, missing, end);
        if (missing < kPacketPixels || static_cast<std::size_t>(end - source) < kLongestPacket) break;
        const unsigned int packet = *source++, pixels = packet % kPacketPixels + 1;
        const bool run = packet >= kPacketPixels;
        run ? repeat<kBytes>(source, place, pixels) : convert<kBytes>(source, place, pixels);
        source += run ? kBytes : pixels * kBytes;
        place += pixels * kBytes;
        missing -= pixels;
    }
    const std::size_t wanted = isLast ? 1 : kLongestPacket;
    while (missing && static_cast<std::size_t>(end - source) >= wanted) {
        const unsigned int packet = *source;
        const bool run = packet >= kPacketPixels;
        // A last packet that is longer than the image is cut.
        const std::size_t pixels = std::min<std::size_t>(missing, packet % kPacketPixels + 1);
        const std::size_t taken = run ? kBytes : pixels * kBytes;
        if (static_cast<std::size_t>(end - source) < 1 + taken) break;
        ++source;
        run ? repeat<kBytes>(source, place, pixels) : convert<kBytes>(source, place, pixels);
        source += taken;
        place += pixels * kBytes;
        missing -= pixels;
    }
    target = place;
    left = missing;
    return static_cast<std::size_t>(source - bytes);
}

std::size_t TgaUnpacker::unpack(const std::uint8_t *bytes, std::size_t size, bool isLast) {
    return bytesPerPixel == 4 ? unpackAs<4>(bytes, size, isLast) : unpackAs<3>(bytes, size, isLast);
}

KELTRA_COLD bool TgaUnpacker::finish(const TgaImage &image, std::uint8_t *pixels, std::size_t taken,
                                     std::size_t size, Fault *fault) const {
    if (left == 0) {
        flipRows(image, pixels);
        return true;
    }
    // Of a packet that began, its pixels are missing.
    const std::size_t offset = kHeaderSize + taken + (taken < size);
    return refuse(fault, offset, taken < size ? KT_TEXT("pixels of a packet") : KT_TEXT("packet"),
                  KT_TEXT("the file ends before the image is full"));
}

bool decodeTga(const TgaImage &image, std::uint8_t *target, Fault *fault) {
    if (image.kind == TgaKind::kOther)
        return refuse(fault, 0, KT_TEXT("kind"), KT_TEXT("has no pixels that are read"));
    if (image.dataSize < leastData(image))
        return refuse(fault, kHeaderSize + image.dataSize, KT_TEXT("pixels"),
                      KT_TEXT("the file is too short for its image"));
    if (image.kind == TgaKind::kRunLength) {
        TgaUnpacker unpacker(image, target);
        const std::size_t taken = unpacker.unpack(image.data, image.dataSize, true);
        return unpacker.finish(image, target, taken, image.dataSize, fault);
    }
    const std::size_t rowBytes = std::size_t{image.sizeX} * image.bytesPerPixel;
    if (!image.topDown || rowBytes % 4 != 0) {
        convert(image.data, target, std::size_t{image.sizeX} * image.sizeY, image.bytesPerPixel);
        flipRows(image, target);
        return true;
    }
    const std::uint8_t *row = image.data + image.bytes();
    for (unsigned int y = 0; y < image.sizeY; ++y, target += rowBytes)
        convert(row -= rowBytes, target, image.sizeX, image.bytesPerPixel);
    return true;
}

void decodeTgaInPlace(const TgaImage &image, std::uint8_t *pixels) {
    convert(pixels, pixels, std::size_t{image.sizeX} * image.sizeY, image.bytesPerPixel);
    flipRows(image, pixels);
}

}  // namespace keltra
