// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TOOLS_GL_FUNCTIONS_H
#define KELTRA_TOOLS_GL_FUNCTIONS_H

// Every entry point of OpenGL ES 1.1, as X(number of parameters, name), in the order of <GLES/gl.h>.
// clang-format off

// Those that take or return floats. The engine runs on devices without a floating-point unit and calls none.
#define KELTRA_GL_FLOAT_FUNCTIONS(X) \
    X(2, glAlphaFunc) X(4, glClearColor) X(1, glClearDepthf) X(2, glClipPlanef) X(4, glColor4f) \
    X(2, glDepthRangef) X(2, glFogf) X(2, glFogfv) X(6, glFrustumf) X(2, glGetClipPlanef) \
    X(2, glGetFloatv) X(3, glGetLightfv) X(3, glGetMaterialfv) X(3, glGetTexEnvfv) \
    X(3, glGetTexParameterfv) X(2, glLightModelf) X(2, glLightModelfv) X(3, glLightf) X(3, glLightfv) \
    X(1, glLineWidth) X(1, glLoadMatrixf) X(3, glMaterialf) X(3, glMaterialfv) X(1, glMultMatrixf) \
    X(5, glMultiTexCoord4f) X(3, glNormal3f) X(6, glOrthof) X(2, glPointParameterf) \
    X(2, glPointParameterfv) X(1, glPointSize) X(2, glPolygonOffset) X(4, glRotatef) X(3, glScalef) \
    X(3, glTexEnvf) X(3, glTexEnvfv) X(3, glTexParameterf) X(3, glTexParameterfv) X(3, glTranslatef) \
    X(2, glSampleCoverage)

// The integer and fixed-point ones.
#define KELTRA_GL_FIXED_FUNCTIONS(X) \
    X(1, glActiveTexture) X(2, glAlphaFuncx) X(2, glBindBuffer) X(2, glBindTexture) X(2, glBlendFunc) \
    X(4, glBufferData) X(4, glBufferSubData) X(1, glClear) X(4, glClearColorx) X(1, glClearDepthx) \
    X(1, glClearStencil) X(1, glClientActiveTexture) X(2, glClipPlanex) X(4, glColor4ub) X(4, glColor4x) \
    X(4, glColorMask) X(4, glColorPointer) X(8, glCompressedTexImage2D) X(9, glCompressedTexSubImage2D) \
    X(8, glCopyTexImage2D) X(8, glCopyTexSubImage2D) X(1, glCullFace) X(2, glDeleteBuffers) \
    X(2, glDeleteTextures) X(1, glDepthFunc) X(1, glDepthMask) X(2, glDepthRangex) X(1, glDisable) \
    X(1, glDisableClientState) X(3, glDrawArrays) X(4, glDrawElements) X(1, glEnable) \
    X(1, glEnableClientState) X(0, glFinish) X(0, glFlush) X(2, glFogx) X(2, glFogxv) X(1, glFrontFace) \
    X(6, glFrustumx) X(2, glGetBooleanv) X(3, glGetBufferParameteriv) X(2, glGetClipPlanex) \
    X(2, glGenBuffers) X(2, glGenTextures) X(0, glGetError) X(2, glGetFixedv) X(2, glGetIntegerv) \
    X(3, glGetLightxv) X(3, glGetMaterialxv) X(2, glGetPointerv) X(1, glGetString) X(3, glGetTexEnviv) \
    X(3, glGetTexEnvxv) X(3, glGetTexParameteriv) X(3, glGetTexParameterxv) X(2, glHint) X(1, glIsBuffer) \
    X(1, glIsEnabled) X(1, glIsTexture) X(2, glLightModelx) X(2, glLightModelxv) X(3, glLightx) \
    X(3, glLightxv) X(1, glLineWidthx) X(0, glLoadIdentity) X(1, glLoadMatrixx) X(1, glLogicOp) \
    X(3, glMaterialx) X(3, glMaterialxv) X(1, glMatrixMode) X(1, glMultMatrixx) X(5, glMultiTexCoord4x) \
    X(3, glNormal3x) X(3, glNormalPointer) X(6, glOrthox) X(2, glPixelStorei) X(2, glPointParameterx) \
    X(2, glPointParameterxv) X(1, glPointSizex) X(2, glPolygonOffsetx) X(0, glPopMatrix) \
    X(0, glPushMatrix) X(7, glReadPixels) X(4, glRotatex) X(2, glSampleCoveragex) X(3, glScalex) \
    X(4, glScissor) X(1, glShadeModel) X(3, glStencilFunc) X(1, glStencilMask) X(3, glStencilOp) \
    X(4, glTexCoordPointer) X(3, glTexEnvi) X(3, glTexEnvx) X(3, glTexEnviv) X(3, glTexEnvxv) \
    X(9, glTexImage2D) X(3, glTexParameteri) X(3, glTexParameterx) X(3, glTexParameteriv) \
    X(3, glTexParameterxv) X(9, glTexSubImage2D) X(3, glTranslatex) X(4, glVertexPointer) \
    X(4, glViewport) X(3, glPointSizePointerOES)

// clang-format on

#endif
