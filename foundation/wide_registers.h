// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FOUNDATION_WIDE_REGISTERS_H
#define KELTRA_FOUNDATION_WIDE_REGISTERS_H

// Registers of 32 and 64 bytes, which functions use that are compiled for them and called where there are
// any.

// Windows compilers do not align the stack for 32-byte values.
#if defined(__x86_64__) && defined(__GNUC__) && !defined(_WIN32)
#define KELTRA_WIDE_REGISTERS
#pragma GCC diagnostic push
#if !defined(__clang__)
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"  // GCC 12 warns of its own AVX-512 functions
#endif
#include <cpuid.h>
#include <immintrin.h>
#pragma GCC diagnostic pop

namespace keltra {

// Whether the processor has an extension, a bit in EBX of leaf 7, and the system keeps the registers that it
// needs, bits of XCR0. The compiler's own test brings 4.5 KB of it for all processors that there are.
inline bool hasExtension(unsigned int bit, unsigned int registers) {
    unsigned int eax, ebx, ecx, edx;
    if (!__get_cpuid(1, &eax, &ebx, &ecx, &edx) || !(ecx & bit_OSXSAVE)) return false;
    if (!__get_cpuid_count(7, 0, &eax, &ebx, &ecx, &edx) || !(ebx & bit)) return false;
    unsigned int kept;
    __asm__("xgetbv" : "=a"(kept), "=d"(edx) : "c"(0));
    return (kept & registers) == registers;
}

inline bool hasAvx2() { return hasExtension(bit_AVX2, 0x06); }
inline bool hasAvx512() { return hasExtension(bit_AVX512F, 0xe6); }

}  // namespace keltra
#endif

#endif
