// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TESTS_SCREEN_DEPTH_H
#define KELTRA_TESTS_SCREEN_DEPTH_H

#include <cstdlib>

namespace keltra::test {

/// The colour depth of the screen the tests run on: 16 or 24.
inline int screenDepth() {
    const char *depth = std::getenv("KELTRA_SCREEN_DEPTH");
    return depth ? std::atoi(depth) : 16;
}

}  // namespace keltra::test

#endif
