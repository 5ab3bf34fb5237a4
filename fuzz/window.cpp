// SPDX-License-Identifier: Zlib
// An SDL and an EGL without a window.

#include <EGL/egl.h>
#include <SDL.h>
#include <SDL_syswm.h>

#include "fuzz/check.h"

extern "C" {

int SDL_Init(Uint32) { return 0; }
Uint32 SDL_WasInit(Uint32 flags) { return flags; }
void SDL_Quit() {}
char *SDL_GetError() {
    static char none[] = "";
    return none;
}
int SDL_VideoModeOK(int width, int height, int depth, Uint32) {
    const int largest = 16384;
    return width >= 0 && height >= 0 && width <= largest && height <= largest ? depth : 0;
}
SDL_Surface *SDL_SetVideoMode(int, int, int, Uint32) {
    static SDL_Surface surface;
    return &surface;
}
void SDL_WM_SetCaption(const char *, const char *) {}
int SDL_GetWMInfo(SDL_SysWMinfo *) { return 1; }

EGLDisplay eglGetDisplay(EGLNativeDisplayType) { return reinterpret_cast<EGLDisplay>(1); }
EGLBoolean eglInitialize(EGLDisplay, EGLint *, EGLint *) { return EGL_TRUE; }
EGLBoolean eglChooseConfig(EGLDisplay, const EGLint *, EGLConfig *configs, EGLint room, EGLint *count) {
    *count = 1;
    if (configs && room > 0) configs[0] = reinterpret_cast<EGLConfig>(1);
    return EGL_TRUE;
}
EGLSurface eglCreateWindowSurface(EGLDisplay, EGLConfig, EGLNativeWindowType, const EGLint *) {
    return reinterpret_cast<EGLSurface>(1);
}
EGLContext eglCreateContext(EGLDisplay, EGLConfig, EGLContext, const EGLint *) {
    keltra::fuzz::newContext();
    return reinterpret_cast<EGLContext>(1);
}
EGLBoolean eglMakeCurrent(EGLDisplay, EGLSurface, EGLSurface, EGLContext) { return EGL_TRUE; }
EGLBoolean eglSwapBuffers(EGLDisplay, EGLSurface) { return EGL_TRUE; }
EGLBoolean eglDestroyContext(EGLDisplay, EGLContext) { return EGL_TRUE; }
EGLBoolean eglDestroySurface(EGLDisplay, EGLSurface) { return EGL_TRUE; }
EGLBoolean eglTerminate(EGLDisplay) { return EGL_TRUE; }
EGLBoolean eglReleaseThread() { return EGL_TRUE; }
EGLint eglGetError() { return EGL_SUCCESS; }
}
