// SPDX-License-Identifier: Zlib
// Linked to the README's program: closes its window at the third frame, which has to be drawn without an
// error.
#include <SDL.h>

#include <EGL/egl.h>
#include <GLES/gl.h>
#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>

namespace {

constexpr int kFrames = 3;
int frames = 0;

void leave(const char *what) {
    std::fprintf(stderr, "the README's program %s\n", what);
    std::_Exit(1);
}

struct Visit {
    ~Visit() {
        if (frames != kFrames) leave("does not draw until its window is closed");
        std::printf("the README's program: drawn\n");
    }
} visit;

}  // namespace

extern "C" __attribute__((visibility("default"))) EGLBoolean eglSwapBuffers(EGLDisplay display,
                                                                            EGLSurface surface) {
    typedef EGLBoolean (*Swap)(EGLDisplay, EGLSurface);
    static const Swap next = reinterpret_cast<Swap>(dlsym(RTLD_NEXT, "eglSwapBuffers"));
    if (glGetError() != GL_NO_ERROR) leave("makes an error of the GL");
    if (++frames == kFrames) {
        SDL_Event event;
        event.type = SDL_QUIT;
        SDL_PushEvent(&event);
    }
    return next(display, surface);
}
