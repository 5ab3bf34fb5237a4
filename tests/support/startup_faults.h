// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TESTS_STARTUP_FAULTS_H
#define KELTRA_TESTS_STARTUP_FAULTS_H

// The test program's own definitions of the SDL and EGL calls of start-up and shut-down: each keeps its name
// and arguments, and can be made to fail, so that the unwinding after every step can be tested.
//
// Recorded are SDL_Init, SDL_VideoModeOK, SDL_WM_SetCaption, SDL_SetVideoMode, SDL_GetWMInfo, SDL_Quit,
// eglGetDisplay, eglInitialize, eglChooseConfig, eglCreateWindowSurface, eglCreateContext, eglMakeCurrent,
// eglSwapBuffers, eglDestroyContext, eglDestroySurface and eglTerminate.

#include "tests/support/call_log.h"

namespace keltra::test {

class StartupFaults {
   public:
    /// Forgets the calls seen and the failures asked for.
    static void clear();

    /// The next `times` calls of `name` return their failure without reaching the library. SDL_WM_SetCaption
    /// and SDL_Quit have no failure: they then do nothing.
    static void fail(std::string_view name, int times = 1);

    /// The next eglSwapBuffers fails, and eglGetError says once that the context is lost.
    static void loseContext();

    /// Lets the `nth` call from now on fail, whichever it is; with 0 they are only counted. Returns how many
    /// there were since the last time.
    static long failNth(long nth);

    /// The next `times` calls of eglChooseConfig succeed with a count of 0.
    static void findNoConfigs(int times = 1);

    static const std::vector<Call> &calls();
    static std::vector<std::string> names();
    static int count(std::string_view name);
    static int count(std::string_view name, std::initializer_list<std::int64_t> first);
    /// How many of the calls succeeded: what was created must have been destroyed as often.
    static int succeeded(std::string_view name);
    /// The newest call; `contents` holds the attribute list of eglChooseConfig with its closing EGL_NONE.
    static const Call &last(std::string_view name);
    static std::vector<Call> all(std::string_view name);
};

}  // namespace keltra::test

#endif
