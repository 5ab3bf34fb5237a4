// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FUZZ_CHECK_H
#define KELTRA_FUZZ_CHECK_H

#include <cstddef>
#include <cstdio>
#include <cstdlib>

namespace keltra::fuzz {

// Ends the program, which the fuzzer keeps the input of.
inline void require(bool holds, const char *what) {
    if (holds) return;
    std::fprintf(stderr, "fuzz: not as it has to be: %s\n", what);
    std::abort();
}

// True with KELTRA_FUZZ_PLAIN=1, to replay inputs: all is judged, and the address checker has all memory.
inline bool isPlain() {
    static const bool plain = [] {
        const char *value = std::getenv("KELTRA_FUZZ_PLAIN");
        return value && *value == '1';
    }();
    return plain;
}

// The depths of the matrix stacks, as one number.
int matrixDepths();
void newContext();
std::size_t texturesInGL();

}  // namespace keltra::fuzz

#endif
