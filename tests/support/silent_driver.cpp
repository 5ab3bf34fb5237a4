// SPDX-License-Identifier: Zlib
// Libraries in the place of a driver's, for tests that draw nothing: each function does nothing, as a
// driver's without a context. With KELTRA_SILENT_GL it is libGLESv1_CM.dll, otherwise libEGL.dll.
#include <EGL/egl.h>
#include <GLES/gl.h>

#include "tools/support/gl_functions.h"
#include "tools/support/interpose.h"

#define KELTRA_SILENT(convention, n, f)                                                    \
    extern "C" __declspec(dllexport)::keltra::Signature<decltype(f)>::Result convention f( \
        KELTRA_PARAMETERS_##n(f)) {                                                        \
        return ::keltra::Signature<decltype(f)>::Result();                                 \
    }
#ifdef KELTRA_SILENT_GL
#define KELTRA_SILENT_FUNCTION(n, f) KELTRA_SILENT(GL_APIENTRY, n, f)
KELTRA_GL_FLOAT_FUNCTIONS(KELTRA_SILENT_FUNCTION)
KELTRA_GL_FIXED_FUNCTIONS(KELTRA_SILENT_FUNCTION)
#else
KELTRA_SILENT(EGLAPIENTRY, 5, eglChooseConfig)
KELTRA_SILENT(EGLAPIENTRY, 4, eglCreateContext)
KELTRA_SILENT(EGLAPIENTRY, 4, eglCreateWindowSurface)
KELTRA_SILENT(EGLAPIENTRY, 2, eglDestroyContext)
KELTRA_SILENT(EGLAPIENTRY, 2, eglDestroySurface)
KELTRA_SILENT(EGLAPIENTRY, 1, eglGetDisplay)
KELTRA_SILENT(EGLAPIENTRY, 0, eglGetError)
KELTRA_SILENT(EGLAPIENTRY, 3, eglInitialize)
KELTRA_SILENT(EGLAPIENTRY, 4, eglMakeCurrent)
KELTRA_SILENT(EGLAPIENTRY, 4, eglQuerySurface)
KELTRA_SILENT(EGLAPIENTRY, 2, eglSwapBuffers)
KELTRA_SILENT(EGLAPIENTRY, 1, eglTerminate)
#endif
