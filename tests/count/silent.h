// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TESTS_COUNT_SILENT_H
#define KELTRA_TESTS_COUNT_SILENT_H

namespace count {

// Called by glClear, which begins a frame, and by eglSwapBuffers, which ends it and is followed by what the
// program does before the next one; null for nothing.
using Hook = void (*)();
extern Hook onClear, onSwap, afterSwap;

}  // namespace count

#endif
