// SPDX-License-Identifier: Zlib
#ifndef KELTRA_VIEW_GL_CALLS_H
#define KELTRA_VIEW_GL_CALLS_H

namespace keltra::view {

// The number of GL calls of the engine and the program so far. The program exports a wrapper for each entry
// point of the GL, which counts and forwards; it must therefore be linked into the program, not a library.
unsigned long glCallsMade();

}  // namespace keltra::view

#endif
