// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FOUNDATION_POINTER_ARRAY_H
#define KELTRA_FOUNDATION_POINTER_ARRAY_H

// Arrays of pointers without gaps, which may be long: finding an entry and closing its gap.

#include "foundation/wide_registers.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace keltra {

#if defined(KELTRA_WIDE_REGISTERS)
// Which of 16 pointers may be the wanted one: those with the same lower half.
template <class T>
unsigned int compareSixteen(T *const *pointers, __m128i wanted) {
    const auto four = [pointers, wanted](int first) {
        const auto two = [pointers](int at) {
            return _mm_castsi128_ps(_mm_loadu_si128(reinterpret_cast<const __m128i *>(pointers + at)));
        };
        const __m128 lower = _mm_shuffle_ps(two(first), two(first + 2), _MM_SHUFFLE(2, 0, 2, 0));
        return _mm_cmpeq_epi32(_mm_castps_si128(lower), wanted);
    };
    return static_cast<unsigned int>(_mm_movemask_epi8(
        _mm_packs_epi16(_mm_packs_epi32(four(0), four(4)), _mm_packs_epi32(four(8), four(12)))));
}
#endif

// Index of an entry, or `count` when there is none. The search goes outward from `place`, which is below
// `count`.
template <class T>
std::size_t findNear(T *const *pointers, std::size_t count, std::size_t place, const T *wanted) {
    if (pointers[place] == wanted) return place;
    std::int64_t before = static_cast<std::int64_t>(place) - 1, behind = before + 2;
    const auto end = static_cast<std::int64_t>(count);
#if defined(KELTRA_WIDE_REGISTERS)
    const auto lower = static_cast<std::int32_t>(reinterpret_cast<std::uintptr_t>(wanted));
    for (const __m128i all = _mm_set1_epi32(lower); before >= 15 && behind + 16 <= end;
         before -= 16, behind += 16) {
        const unsigned int found =
            compareSixteen(pointers + before - 15, all) | compareSixteen(pointers + behind, all) << 16;
        for (unsigned int rest = found; rest; rest &= rest - 1) {
            const int bit = __builtin_ctz(rest);
            const std::int64_t index = bit < 16 ? before - 15 + bit : behind + bit - 16;
            if (pointers[index] == wanted) return static_cast<std::size_t>(index);
        }
    }
#endif
    for (; before >= 0 || behind < end; --before, ++behind) {
        if (before >= 0 && pointers[before] == wanted) return static_cast<std::size_t>(before);
        if (behind < end && pointers[behind] == wanted) return static_cast<std::size_t>(behind);
    }
    return count;
}

#if defined(KELTRA_WIDE_REGISTERS)
// As fast as the cache of the second level is read. What the C library does loads each line of the cache
// twice, since source and destination do not begin at the same place of one.
constexpr std::size_t kLongMove = 64, kLine = 64, kPerLine = kLine / sizeof(void *);

template <class T>
std::size_t untilLine(T **pointer) {
    return (0 - reinterpret_cast<std::uintptr_t>(pointer)) % kLine / sizeof(T *);
}

// The lines of `count` pointers at `to` from those behind each; returns how many were moved.
template <class T>
__attribute__((target("avx512f"))) std::size_t moveLinesDown(T **to, std::size_t count) {
    std::size_t moved = 0;
    for (__m512i line = _mm512_load_si512(to); moved + 2 * kPerLine <= count; moved += kPerLine) {
        const __m512i next = _mm512_load_si512(to + moved + kPerLine);
        _mm512_store_si512(to + moved, _mm512_alignr_epi64(next, line, 1));
        line = next;
    }
    return moved;
}

// The same from the end: the lines before `end` from those before each.
template <class T>
__attribute__((target("avx512f"))) std::size_t moveLinesUp(T **end, std::size_t count) {
    std::size_t moved = 0;
    for (__m512i line = _mm512_load_si512(end - kPerLine); moved + 2 * kPerLine <= count; moved += kPerLine) {
        const __m512i next = _mm512_load_si512(end - moved - 2 * kPerLine);
        _mm512_store_si512(end - moved - kPerLine, _mm512_alignr_epi64(line, next, kPerLine - 1));
        line = next;
    }
    return moved;
}

inline bool hasWideLines() {
    static const bool has = hasAvx512();
    return has;
}
#endif

// Takes the first of `count` + 1 entries: the others move one place towards the front.
template <class T>
void closeGapFromBehind(T **gap, std::size_t count) {
#if defined(KELTRA_WIDE_REGISTERS)
    if (count >= kLongMove && hasWideLines()) {
        const std::size_t head = untilLine(gap);
        std::copy_n(gap + 1, head, gap);
        const std::size_t moved = head + moveLinesDown(gap + head, count - head);
        gap += moved;
        count -= moved;
    }
#endif
    std::copy_n(gap + 1, count, gap);
}

// Takes the last of `count` + 1 entries: those before it move one place towards the end.
template <class T>
void closeGapFromFront(T **first, std::size_t count) {
#if defined(KELTRA_WIDE_REGISTERS)
    if (count >= kLongMove && hasWideLines()) {
        T **const end = first + count + 1;
        const std::size_t tail = (kPerLine - untilLine(end)) % kPerLine;
        std::copy_backward(end - 1 - tail, end - 1, end);
        count -= tail + moveLinesUp(end - tail, count - tail);
    }
#endif
    std::copy_backward(first, first + count, first + count + 1);
}

}  // namespace keltra

#endif
