// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FORMATS_TGA_ARM_H
#define KELTRA_FORMATS_TGA_ARM_H

// Pixels in ARM instructions that load or store many registers, which compilers use for structures only.

#include <cstddef>
#include <cstdint>

namespace keltra {

#if defined(__arm__) && !defined(__thumb__) && defined(__GNUC__) && !defined(__ARM_BIG_ENDIAN)
#define KELTRA_TGA_ARM

// Packets of pixels of four bytes. The order of members is that of the registers.
struct TgaPackets {
    static constexpr std::size_t kLongest = 1 + 12 * 4;  // bytes

    const std::uint8_t *source;
    std::uint8_t *target;      // at a multiple of four
    std::size_t missing;       // pixels
    const std::uint8_t *last;  // place of which all of a packet is there
};

// Unpacks runs, and packets of up to twelve pixels: most of a picture of glyphs. Stops behind `last`, and
// before a packet that is longer or has more pixels than are missing.
extern "C" __attribute__((visibility("hidden"))) void keltraUnpackShort4(TgaPackets *packets);

// Exchanges the first and the third byte of each pixel of three bytes, in place, at a multiple of four: eight
// pixels are six words. At the first byte of a pixel stands what it differs by from the third one, which is
// 16 bits higher, for two of four pixels in the next word. Returns the pixels that it converted, all but a
// few.
inline std::size_t exchangeWords3(std::uint8_t *place, std::size_t pixels) {
    const std::size_t done = pixels & ~std::size_t{7};
    if (done == 0) return 0;
    asm volatile(
        R"(
    .macro exchangeFour a, b, c
        eor r10, \a, \a, lsr #16
        eor r10, r10, \b, lsl #16
        and r10, r10, %[outer]
        eor r12, \b, \c, lsl #16
        and r12, r12, #0xff0000
        eor lr, \c, \c, lsr #16
        and lr, lr, #0xff00
        eor \a, \a, r10
        eor \a, \a, r10, lsl #16
        eor \b, \b, r10, lsr #16
        eor \b, \b, r12
        eor \c, \c, r12, lsr #16
        eor \c, \c, lr
        eor \c, \c, lr, lsl #16
    .endm
    1:
        ldmia %[place], {r4-r9}
        exchangeFour r4, r5, r6
        exchangeFour r7, r8, r9
        stmia %[place]!, {r4-r9}
        cmp %[place], %[end]
        bne 1b
    .purgem exchangeFour)"
        : [place] "+r"(place)
        : [end] "r"(place + 3 * done), [outer] "r"(0xff0000ff)
        : "r4", "r5", "r6", "r7", "r8", "r9", "r10", "r12", "lr", "cc", "memory");
    return done;
}

#else

inline std::size_t exchangeWords3(std::uint8_t *, std::size_t) { return 0; }

#endif

}  // namespace keltra

#endif
