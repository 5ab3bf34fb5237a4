#ifndef KELTRA_CORE_GLBRIDGE_H
#define KELTRA_CORE_GLBRIDGE_H

namespace keltra {

// Brings the mirror in line with a new GL context: both stacks at depth 0, model-view selected.
void resetMatrixMirror();

// Pushes the current matrix; false when the stack is full and nothing was pushed.
bool pushMatrix();

}  // namespace keltra

#endif
