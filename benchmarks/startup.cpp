// SPDX-License-Identifier: Zlib
// A program that opens a window of 240 x 320 pixels, draws one frame and prints the milliseconds until then:
// those of the processor, and those since the time in its argument (nanoseconds since 1970); and how many
// pages the system gave it, which no other program has a part in. KELTRA_STARTUP says by what.

#include <EGL/egl.h>
#include <GLES/gl.h>
#include <sys/resource.h>
#include <time.h>

#include <cstdio>
#include <cstdlib>

#define KELTRA_STARTUP_BARE 0
#define KELTRA_STARTUP_SDL 1
#define KELTRA_STARTUP_ENGINE 2

#if KELTRA_STARTUP == KELTRA_STARTUP_BARE
#include <X11/Xlib.h>
#elif KELTRA_STARTUP == KELTRA_STARTUP_SDL
#include <SDL/SDL.h>
#include <SDL/SDL_syswm.h>
#else
#include <keltra/keltra.h>
#endif

namespace {

#if KELTRA_STARTUP == KELTRA_STARTUP_ENGINE
bool drawFrame() {
    return KELTRA::init(nullptr) && KELTRA::clear(true, true, false) && KELTRA::begin3D(nullptr) &&
           KELTRA::end3D() && KELTRA::swap();
}
#else
unsigned long openWindow() {
#if KELTRA_STARTUP == KELTRA_STARTUP_BARE
    Display *const display = XOpenDisplay(nullptr);
    if (!display) return 0;
    const Window window = XCreateSimpleWindow(display, DefaultRootWindow(display), 0, 0, 240, 320, 0, 0, 0);
    XMapWindow(display, window);
    XSync(display, False);
    return window;
#else
    if (SDL_Init(SDL_INIT_VIDEO) != 0 || !SDL_SetVideoMode(240, 320, 0, SDL_HWSURFACE | SDL_NOFRAME))
        return 0;
    SDL_SysWMinfo info = {};
    SDL_VERSION(&info.version);
    return SDL_GetWMInfo(&info) ? info.info.x11.window : 0;
#endif
}

bool drawFrame() {
    const unsigned long window = openWindow();
    const EGLDisplay display = eglGetDisplay(EGL_DEFAULT_DISPLAY);
    if (!window || !eglInitialize(display, nullptr, nullptr)) return false;
    const EGLint wanted[] = {EGL_DEPTH_SIZE, 16, EGL_SURFACE_TYPE, EGL_WINDOW_BIT, EGL_NONE};
    EGLConfig config;
    EGLint count = 0;
    if (!eglChooseConfig(display, wanted, &config, 1, &count) || count < 1) return false;
    const EGLSurface surface =
        eglCreateWindowSurface(display, config, static_cast<EGLNativeWindowType>(window), nullptr);
    const EGLContext context = eglCreateContext(display, config, EGL_NO_CONTEXT, nullptr);
    if (!eglMakeCurrent(display, surface, surface, context)) return false;
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    return eglSwapBuffers(display, surface);
}
#endif

double milliseconds(clockid_t clock) {
    timespec now;
    clock_gettime(clock, &now);
    return 1e3 * static_cast<double>(now.tv_sec) + 1e-6 * static_cast<double>(now.tv_nsec);
}

}  // namespace

int main(int argc, char **argv) {
    if (!drawFrame()) {
        std::fprintf(stderr, "there is no window\n");
        return 1;
    }
    const double start = argc > 1 ? 1e-6 * std::atof(argv[1]) : 0.0;
    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    std::printf("%.2f %.2f %ld\n", milliseconds(CLOCK_PROCESS_CPUTIME_ID),
                milliseconds(CLOCK_REALTIME) - start, usage.ru_minflt);
    std::fflush(stdout);
    std::_Exit(0);  // what stopping costs is another matter
}
