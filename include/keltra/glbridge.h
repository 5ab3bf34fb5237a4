#ifndef KELTRA_GLBRIDGE_H
#define KELTRA_GLBRIDGE_H

// The float face of a fixed-point GL: each function converts its floats to 16.16 (times 65536, truncated
// toward zero; values outside [-32768, 32768) and not-a-number become the most negative value) and makes one
// GL call. The matrix functions keep a mirror of the model-view and projection stacks, 32 matrices each, one
// behind the other; everything that touches a GL matrix goes through them. Arrays of colours and positions
// always hold four values.

#include <GLES/gl.h>

#include <keltra/export.h>

KT_API void KT_glLightModelf(GLenum pname, float param);
KT_API void KT_glLightModelfv(GLenum pname, const float *params);
KT_API void KT_glColor4f(float r, float g, float b, float a);
KT_API void KT_glClearColor(float r, float g, float b, float a);
KT_API void KT_glLightf(GLenum light, GLenum pname, float param);
KT_API void KT_glLightfv(GLenum light, GLenum pname, const float *params);
KT_API void KT_glMaterialf(GLenum face, GLenum pname, float param);
KT_API void KT_glMaterialfv(GLenum face, GLenum pname, const float *params);
KT_API void KT_glAlphaFunc(GLenum func, float ref);
KT_API void KT_glClearDepthf(float depth);

/** Selects the stack. GL_TEXTURE has no mirror: the mirror of the stack selected before stays the one that is
 * changed. */
KT_API void KT_glMatrixMode(GLenum mode);
KT_API void KT_glLoadIdentity();
/** `m` holds 16 floats, column-major. */
KT_API void KT_glLoadMatrixf(const float *m);
KT_API void KT_glMultMatrixf(const float *m);
/** `angle` in degrees about the axis (x, y, z), which should have length 1. */
KT_API void KT_glRotatef(float angle, float x, float y, float z);
KT_API void KT_glTranslatef(float x, float y, float z);
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
