#ifndef KELTRA_VIEW_GL_CALLS_H
#define KELTRA_VIEW_GL_CALLS_H

namespace keltra::view {

// Calls of the GL since the program began: of the engine's and of its own. The program exports a wrapper for
// each entry point of the GL, which counts and passes on; so it must be linked into the program itself.
unsigned long glCallsMade();

}  // namespace keltra::view

#endif
