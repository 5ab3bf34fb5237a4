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

// Exchanges the first and the third byte of each pixel of three bytes, in place, at a multiple of four: four
// pixels are three words. At both ends of a word stands what the two bytes of a pixel differ by: in the first
// word of the first pixel and the second one, in the third word of the third and the fourth. Their other
// bytes are 16 bits away. Returns the pixels that it converted, all but a few.
inline std::size_t exchangeWords3(std::uint8_t *place, std::size_t pixels) {
    constexpr std::size_t kTurn = 12;
    if (pixels < kTurn) return 0;
    std::size_t left = pixels - kTurn;
    asm volatile(
        R"(
    .macro exchangeFour a, b, c
        eor lr, \a, \a, lsr #16
        eor lr, lr, \b, lsl #16
        and lr, lr, %[ends]
        eor \a, \a, lr
        eor \a, \a, lr, lsl #16
        eor \b, \b, lr, lsr #16
        eor lr, \c, \c, lsl #16
        eor lr, lr, \b, lsr #16
        and lr, lr, %[ends]
        eor \b, \b, lr, lsl #16
        eor \c, \c, lr
        eor \c, \c, lr, lsr #16
    .endm
    1:
        ldmia %[place], {r3-r10, r12}
        exchangeFour r3, r4, r5
        exchangeFour r6, r7, r8
        exchangeFour r9, r10, r12
        stmia %[place]!, {r3-r10, r12}
        subs %[left], %[left], %[turn]
        bhs 1b
    .purgem exchangeFour)"
        : [place] "+r"(place), [left] "+r"(left)
        : [turn] "I"(kTurn), [ends] "r"(0xff0000ff)
        : "r3", "r4", "r5", "r6", "r7", "r8", "r9", "r10", "r12", "lr", "cc", "memory");
    return pixels - (left + kTurn);
}

#else

inline std::size_t exchangeWords3(std::uint8_t *, std::size_t) { return 0; }

#endif

}  // namespace keltra

#endif
