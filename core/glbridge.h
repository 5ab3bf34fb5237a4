// SPDX-License-Identifier: Zlib
#ifndef KELTRA_CORE_GLBRIDGE_H
#define KELTRA_CORE_GLBRIDGE_H

#include <keltra/vector.h>

namespace keltra {

// Brings the mirror in line with a new GL context: both stacks at depth 0, model-view selected.
void resetMatrixMirror();

// How many matrices the GL's stacks hold; 0 when that is not known, and each push is handed on.
void setStackSizes(unsigned int modelView, unsigned int projection);

// Pushes the current matrix, beyond the stack's own levels too, and pops it again; for walks of trees. False
// when nothing was pushed, which happens to no tree within the limit of nesting.
bool pushMatrix();
void popMatrix();

// KT_glGetFloatv for the model-view matrix, to two places.
void copyModelView(float *to, float *also);

// KT_glLoadMatrixf for a matrix that is loaded many times a frame: its 16.16 values are kept, and used while
// it is the same. Matrices of consecutive ids do not displace one another.
void loadMatrixAgain(const float *m, unsigned int id);

// Rotates the current matrix by Euler angles in degrees about X, then Y, then Z.
void applyRotation(const R3XVECTOR3D &degrees);

}  // namespace keltra

#endif
