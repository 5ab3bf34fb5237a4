// SPDX-License-Identifier: Zlib
#ifndef KELTRA_GLBRIDGE_H
#define KELTRA_GLBRIDGE_H

/** @file
 *
 * The float face of a fixed-point GL: each function converts its floats to 16.16 (times 65536, truncated
 * toward zero; values outside [-32768, 32768) and not-a-number become the most negative value) and makes one
 * GL call. The matrix functions keep a mirror of the model-view and projection stacks, 32 matrices each, one
 * behind the other; everything that touches a GL matrix goes through them. Arrays of colours and positions
 * always hold four values; a null array does nothing. */

#include <keltra/export.h>

#include <GLES/gl.h>

/** Parameters of the light model: glLightModelx with one value, glLightModelxv with four. */
KT_API void KT_glLightModelf(GLenum pname, float param);
KT_API void KT_glLightModelfv(GLenum pname, const float *params);
/** Current colour, and clear colour; RGBA, 0 to 1. */
KT_API void KT_glColor4f(float r, float g, float b, float a);
KT_API void KT_glClearColor(float r, float g, float b, float a);
/** Parameters of GL light `light`: glLightx with one value, glLightxv with four. */
KT_API void KT_glLightf(GLenum light, GLenum pname, float param);
KT_API void KT_glLightfv(GLenum light, GLenum pname, const float *params);
/** Parameters of the material: glMaterialx with one value, glMaterialxv with four. */
KT_API void KT_glMaterialf(GLenum face, GLenum pname, float param);
KT_API void KT_glMaterialfv(GLenum face, GLenum pname, const float *params);
/** Alpha test against `ref`, and the depth that is cleared to; both 0 to 1. */
KT_API void KT_glAlphaFunc(GLenum func, float ref);
KT_API void KT_glClearDepthf(float depth);

/** Selects the stack. GL_TEXTURE has no mirror: the mirror of the stack selected before stays the one that is
 * changed. */
KT_API void KT_glMatrixMode(GLenum mode);
/** The top of the selected stack becomes the identity. */
KT_API void KT_glLoadIdentity();
/** The top becomes `m`, or is multiplied by it; 16 floats, column-major. Null does nothing. */
KT_API void KT_glLoadMatrixf(const float *m);
KT_API void KT_glMultMatrixf(const float *m);
/** Multiplies the top by a rotation of `angle` degrees about the axis (x, y, z), which should have length 1.
 */
KT_API void KT_glRotatef(float angle, float x, float y, float z);
/** Multiplies the top by a translation. */
KT_API void KT_glTranslatef(float x, float y, float z);
/** Multiply the top by a perspective or a parallel projection, as glFrustum and glOrtho do. */
KT_API void KT_glFrustum(float left, float right, float bottom, float top, float nearDistance,
                         float farDistance);
KT_API void KT_glOrtho(float left, float right, float bottom, float top, float nearDistance,
                       float farDistance);
/** Pushes beyond a depth of 32 and pops at depth 0 do nothing, in GL either. Level 32 of the model-view stack
 * is the base of the projection stack: 32 model-view pushes write over it. */
KT_API void KT_glPushMatrix();
KT_API void KT_glPopMatrix();
/** Copies the mirror's top, 16 floats: `which` 0 for model-view, 1 for projection; anything else leaves `out`
 * alone. */
KT_API void KT_glGetFloatv(int which, float *out);

#endif
