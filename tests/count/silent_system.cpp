// SPDX-License-Identifier: Zlib
// What the engine asks of GL, EGL, SDL and the system, answered without any of them: each run is the same.

#include <EGL/egl.h>
#include <GLES/gl.h>
#include <SDL/SDL.h>
#include <SDL/SDL_syswm.h>

#include "platform/platform.h"
#include "tests/count/silent.h"

namespace count {
Hook onClear = nullptr, onSwap = nullptr, afterSwap = nullptr;
}

namespace {

constexpr std::int64_t kFrame = 1000000000 / 30;  // nanoseconds
constexpr std::uint64_t kMemory = 64 << 20;

GLuint nextName = 1;
std::int64_t now = kFrame;
int handle;  // what the EGL objects point at
SDL_Surface screen;

}  // namespace

extern "C" {

void GL_APIENTRY glGenTextures(GLsizei n, GLuint *names) {
    for (GLsizei i = 0; i < n; ++i) names[i] = nextName++;
}
void GL_APIENTRY glGetIntegerv(GLenum name, GLint *value) {
    switch (name) {
        case GL_MAX_MODELVIEW_STACK_DEPTH:
            *value = 32;
            break;
        case GL_MAX_PROJECTION_STACK_DEPTH:
            *value = 4;
            break;
        case GL_RED_BITS:
        case GL_GREEN_BITS:
        case GL_BLUE_BITS:
            *value = 5;
            break;
        case GL_DEPTH_BITS:
            *value = 16;
            break;
        default:
            *value = 0;
    }
}
const GLubyte *GL_APIENTRY glGetString(GLenum) { return reinterpret_cast<const GLubyte *>(""); }
void GL_APIENTRY glClear(GLbitfield) {
    if (count::onClear) count::onClear();
}

EGLDisplay EGLAPIENTRY eglGetDisplay(EGLNativeDisplayType) { return &handle; }
EGLBoolean EGLAPIENTRY eglInitialize(EGLDisplay, EGLint *, EGLint *) { return EGL_TRUE; }
EGLBoolean EGLAPIENTRY eglChooseConfig(EGLDisplay, const EGLint *, EGLConfig *found, EGLint, EGLint *number) {
    *found = &handle;
    *number = 1;
    return EGL_TRUE;
}
EGLSurface EGLAPIENTRY eglCreateWindowSurface(EGLDisplay, EGLConfig, EGLNativeWindowType, const EGLint *) {
    return &handle;
}
EGLContext EGLAPIENTRY eglCreateContext(EGLDisplay, EGLConfig, EGLContext, const EGLint *) { return &handle; }
EGLBoolean EGLAPIENTRY eglMakeCurrent(EGLDisplay, EGLSurface, EGLSurface, EGLContext) { return EGL_TRUE; }
EGLBoolean EGLAPIENTRY eglDestroyContext(EGLDisplay, EGLContext) { return EGL_TRUE; }
EGLBoolean EGLAPIENTRY eglDestroySurface(EGLDisplay, EGLSurface) { return EGL_TRUE; }
EGLBoolean EGLAPIENTRY eglTerminate(EGLDisplay) { return EGL_TRUE; }
EGLint EGLAPIENTRY eglGetError() { return EGL_SUCCESS; }
EGLBoolean EGLAPIENTRY eglSwapBuffers(EGLDisplay, EGLSurface) {
    if (count::onSwap) count::onSwap();
    now += kFrame;
    if (count::afterSwap) count::afterSwap();
    return EGL_TRUE;
}

int SDL_Init(Uint32) { return 0; }
void SDL_Quit() {}
Uint32 SDL_WasInit(Uint32 flags) { return flags; }
char *SDL_GetError() { return const_cast<char *>(""); }
int SDL_VideoModeOK(int, int, int bits, Uint32) { return bits; }
SDL_Surface *SDL_SetVideoMode(int, int, int, Uint32) { return &screen; }
int SDL_GetWMInfo(SDL_SysWMinfo *) { return 0; }
void SDL_WM_SetCaption(const char *, const char *) {}
int SDL_PollEvent(SDL_Event *) { return 0; }
Uint32 SDL_GetTicks() { return static_cast<Uint32>(now / 1000000); }
void SDL_Delay(Uint32) {}
Uint8 SDL_GetMouseState(int *, int *) { return 0; }
int SDL_EnableUNICODE(int) { return 1; }
char *SDL_GetKeyName(SDLKey) { return const_cast<char *>("unknown key"); }

// The linker puts these in the place of the functions of platform/linux.cpp.
std::int64_t __wrap__ZN6keltra15platformCounterEv() { return now; }
keltra::PhysicalMemory __wrap__ZN6keltra14platformMemoryEv() { return {kMemory, kMemory}; }
std::uint64_t __wrap__ZN6keltra25platformReclaimableMemoryERKNS_14PhysicalMemoryE(
    const keltra::PhysicalMemory &) {
    return 0;
}

}  // extern "C"
