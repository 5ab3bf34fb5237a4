// SPDX-License-Identifier: Zlib
#include "tools/formats/tga_writer.h"

#include "tools/formats/byte_writer.h"

namespace keltra::formats {
namespace {

constexpr unsigned kLongestPacket = 128;
constexpr unsigned kRunFlag = 0x80;
constexpr unsigned kTopDownFlag = 0x20;

void putHeader(ByteWriter &out, const Image &image, const TgaOptions &options) {
    out.u16(0);  // no image identification, no colour map
    out.u8(options.runLength ? 10 : 2);
    out.zeros(9);  // colour map description and image origin
    out.u16(image.width);
    out.u16(image.height);
    out.u8(options.bits);
    const unsigned alphaBits = options.bits == 32 ? 8 : 0;
    out.u8(alphaBits | (options.topDown ? kTopDownFlag : 0));
}

void putPixel(ByteWriter &out, Rgba pixel, unsigned bits) {
    out.u8(pixel.b);
    out.u8(pixel.g);
    out.u8(pixel.r);
    if (bits == 32) out.u8(pixel.a);
}

bool sameInFile(Rgba a, Rgba b, unsigned bits) {
    return a.r == b.r && a.g == b.g && a.b == b.b && (bits != 32 || a.a == b.a);
}

unsigned runAt(const Rgba *row, unsigned x, unsigned width, unsigned bits) {
    unsigned run = 1;
    while (run < kLongestPacket && x + run < width && sameInFile(row[x], row[x + run], bits)) ++run;
    return run;
}

void putRunLengthRow(ByteWriter &out, const Rgba *row, unsigned width, unsigned bits) {
    unsigned x = 0;
    while (x < width) {
        const unsigned run = runAt(row, x, width, bits);
        if (run > 1) {
            out.u8(kRunFlag | (run - 1));
            putPixel(out, row[x], bits);
            x += run;
            continue;
        }
        unsigned count = 1;
        while (count < kLongestPacket && x + count < width && runAt(row, x + count, width, bits) == 1)
            ++count;
        out.u8(count - 1);
        for (unsigned i = 0; i < count; ++i) putPixel(out, row[x + i], bits);
        x += count;
    }
}

}  // namespace

std::vector<std::uint8_t> writeTga(const Image &image, const TgaOptions &options) {
    ByteWriter out;
    putHeader(out, image, options);
    for (unsigned i = 0; i < image.height; ++i) {
        const unsigned y = options.topDown ? i : image.height - 1 - i;
        const Rgba *row = image.pixels.data() + static_cast<std::size_t>(y) * image.width;
        if (options.runLength) {
            putRunLengthRow(out, row, image.width, options.bits);
            continue;
        }
        for (unsigned x = 0; x < image.width; ++x) putPixel(out, row[x], options.bits);
    }
    return out.take();
}

}  // namespace keltra::formats
