// SPDX-License-Identifier: Zlib
#include "formats/face_indices.h"

#include <cstdint>

namespace keltra {

namespace {

unsigned int indexAt(const unsigned char *bytes) { return bytes[0] | bytes[1] << 8; }

#if defined(__arm__) && !defined(__thumb__) && defined(__GNUC__) && !defined(__ARM_BIG_ENDIAN)

constexpr std::size_t kTurn = 12;  // indices in six words

// The indices of one turn after the other, at a multiple of four. Each comparison is made while all before it
// were good. Moves on behind what was looked at; false when one is not below the limit.
bool areTurnsBelow(const unsigned char *&indices, std::size_t turns, unsigned int limit) {
    if (turns == 0) return true;
    asm volatile(
        R"(
    1:
        ldmia %[indices]!, {r3-r8}
        cmp %[limit], r3, lsr #16
        cmphi %[upper], r3, lsl #16
        .irp word, r4, r5, r6, r7, r8
        cmphi %[limit], \word, lsr #16
        cmphi %[upper], \word, lsl #16
        .endr
        bls 2f
        subs %[turns], %[turns], #1
        bne 1b
    2:)"
        : [indices] "+r"(indices), [turns] "+r"(turns)
        : [limit] "r"(limit), [upper] "r"(limit << 16)
        : "r3", "r4", "r5", "r6", "r7", "r8", "cc", "memory");
    return turns == 0;
}

// The same one byte behind a multiple of four: a word begins with the last byte of an index.
bool areShiftedTurnsBelow(const unsigned char *&indices, std::size_t turns, unsigned int limit) {
    if (turns == 0) return true;
    const unsigned char *words = indices - 1;
    asm volatile(
        R"(
    .macro nextTwo word
        orr r9, r9, \word, lsl #24
        cmphi %[limit], r9, lsr #16
        cmphi %[upper], r9, lsl #16
        mov r9, \word, lsr #8
    .endm
        ldr r9, [%[words]], #4
        mov r9, r9, lsr #8
    1:
        ldmia %[words]!, {r3-r8}
        cmp %[words], #0
        nextTwo r3
        nextTwo r4
        nextTwo r5
        nextTwo r6
        nextTwo r7
        nextTwo r8
        bls 2f
        subs %[turns], %[turns], #1
        bne 1b
    2:
    .purgem nextTwo)"
        : [words] "+r"(words), [turns] "+r"(turns)
        : [limit] "r"(limit), [upper] "r"(limit << 16)
        : "r3", "r4", "r5", "r6", "r7", "r8", "r9", "cc", "memory");
    indices = words - 3;
    return turns == 0;
}

bool areMostBelow(const unsigned char *&indices, std::size_t &count, unsigned int limit) {
    if (reinterpret_cast<std::uintptr_t>(indices) % 4 >= 2 && count) {
        if (indexAt(indices) >= limit) return false;
        indices += 2;
        --count;
    }
    const std::size_t turns = count / kTurn;
    count %= kTurn;
    return reinterpret_cast<std::uintptr_t>(indices) % 2 ? areShiftedTurnsBelow(indices, turns, limit)
                                                         : areTurnsBelow(indices, turns, limit);
}

#else

bool areMostBelow(const unsigned char *&, std::size_t &, unsigned int) { return true; }

#endif

}  // namespace

bool areIndicesBelow(const unsigned char *indices, std::size_t count, unsigned int limit) {
    if (!areMostBelow(indices, count, limit)) return false;
    for (; count; --count, indices += 2)
        if (indexAt(indices) >= limit) return false;
    return true;
}

}  // namespace keltra
