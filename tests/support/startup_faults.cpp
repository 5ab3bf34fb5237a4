// SPDX-License-Identifier: Zlib
#include "tests/support/startup_faults.h"

#include <EGL/egl.h>
#include <SDL.h>
#include <SDL_syswm.h>

#include <map>
#include <utility>

#include "tools/support/interpose.h"

namespace keltra::test {
namespace {

struct State {
    CallLog log;
    std::map<std::string, int, std::less<>> failures;
    std::map<std::string, int, std::less<>> successes;
    int emptyChoices = 0;
    bool isContextLost = false;
    // Above 0 inside a library's function: what it calls itself (SDL_SetVideoMode asks SDL_VideoModeOK) is
    // not the engine's call, and is passed on unseen.
    int nesting = 0;
};

// Never destroyed: SDL's exit handler calls SDL_Quit after the statics of this file are gone.
State &state() {
    static State *const instance = new State;
    return *instance;
}

// Counted apart from the state, which each start of a test forgets.
long callsSeen = 0, failingCall = 0;

bool mustFail(const char *name) {
    if (++callsSeen == failingCall) return true;
    const auto found = state().failures.find(name);
    if (found == state().failures.end() || found->second == 0) return false;
    --found->second;
    return true;
}

template <class... A>
void keep(const char *name, A... arguments) {
    state().log.add({name, {asNumber(arguments)...}, {}, {}});
}

template <class R, class... A>
R pass(const char *name, A... arguments) {
    struct Nested {
        Nested() { ++state().nesting; }
        ~Nested() { --state().nesting; }
    } nested;
    return nextFunction<R(A...)>(name)(arguments...);
}

// `failure` is what the function returns when it fails.
template <class R, class... A>
R intercept(const char *name, R failure, A... arguments) {
    if (state().nesting > 0) return pass<R>(name, arguments...);
    keep(name, arguments...);
    if (mustFail(name)) return failure;
    const R result = pass<R>(name, arguments...);
    if (result != failure) ++state().successes[name];
    return result;
}

template <class... A>
void interceptVoid(const char *name, A... arguments) {
    if (state().nesting > 0) return pass<void>(name, arguments...);
    keep(name, arguments...);
    if (mustFail(name)) return;
    pass<void>(name, arguments...);
    ++state().successes[name];
}

void keepAttributes(const EGLint *attributes) {
    std::vector<std::int64_t> &contents = state().log.newest()->contents;
    for (; attributes && *attributes != EGL_NONE; attributes += 2) {
        contents.insert(contents.end(), {attributes[0], attributes[1]});
    }
    contents.push_back(EGL_NONE);
}

}  // namespace

void StartupFaults::clear() { state() = State(); }
void StartupFaults::fail(std::string_view name, int times) { state().failures[std::string(name)] = times; }
void StartupFaults::loseContext() {
    fail("eglSwapBuffers");
    state().isContextLost = true;
}
long StartupFaults::failNth(long nth) {
    failingCall = nth;
    return std::exchange(callsSeen, 0);
}
void StartupFaults::findNoConfigs(int times) { state().emptyChoices = times; }
const std::vector<Call> &StartupFaults::calls() { return state().log.calls(); }
std::vector<std::string> StartupFaults::names() { return state().log.names(); }
int StartupFaults::count(std::string_view name) { return state().log.count(name); }
int StartupFaults::count(std::string_view name, std::initializer_list<std::int64_t> first) {
    return state().log.count(name, first);
}
int StartupFaults::succeeded(std::string_view name) {
    const auto found = state().successes.find(name);
    return found == state().successes.end() ? 0 : found->second;
}
const Call &StartupFaults::last(std::string_view name) { return state().log.last(name); }
std::vector<Call> StartupFaults::all(std::string_view name) { return state().log.all(name); }

}  // namespace keltra::test

using keltra::Signature;

#define KELTRA_WRAP(n, f, failure)                                                                        \
    extern "C" __attribute__((visibility("default"))) Signature<decltype(f)>::Result f(                   \
        KELTRA_PARAMETERS_##n(f)) {                                                                       \
        return keltra::test::intercept<Signature<decltype(f)>::Result>(#f, failure KELTRA_ARGUMENTS_##n); \
    }
#define KELTRA_WRAP_VOID(n, f)                                                           \
    extern "C" __attribute__((visibility("default"))) void f(KELTRA_PARAMETERS_##n(f)) { \
        keltra::test::interceptVoid(#f KELTRA_ARGUMENTS_##n);                            \
    }

KELTRA_WRAP(1, SDL_Init, -1)
KELTRA_WRAP(4, SDL_VideoModeOK, 0)
KELTRA_WRAP_VOID(2, SDL_WM_SetCaption)
KELTRA_WRAP(4, SDL_SetVideoMode, nullptr)
KELTRA_WRAP(1, SDL_GetWMInfo, 0)
KELTRA_WRAP_VOID(0, SDL_Quit)
KELTRA_WRAP(1, eglGetDisplay, EGL_NO_DISPLAY)
KELTRA_WRAP(3, eglInitialize, EGL_FALSE)
KELTRA_WRAP(4, eglCreateWindowSurface, EGL_NO_SURFACE)
KELTRA_WRAP(4, eglCreateContext, EGL_NO_CONTEXT)
KELTRA_WRAP(4, eglMakeCurrent, EGL_FALSE)
KELTRA_WRAP(2, eglSwapBuffers, EGL_FALSE)
KELTRA_WRAP(2, eglDestroyContext, EGL_FALSE)
KELTRA_WRAP(2, eglDestroySurface, EGL_FALSE)
KELTRA_WRAP(1, eglTerminate, EGL_FALSE)

extern "C" __attribute__((visibility("default"))) EGLint eglGetError() {
    using namespace keltra::test;
    if (std::exchange(state().isContextLost, false)) return EGL_CONTEXT_LOST;
    return pass<EGLint>("eglGetError");
}

extern "C" __attribute__((visibility("default"))) EGLBoolean eglChooseConfig(EGLDisplay display,
                                                                             const EGLint *attributes,
                                                                             EGLConfig *configs, EGLint room,
                                                                             EGLint *count) {
    using namespace keltra::test;
    const EGLBoolean result = intercept<EGLBoolean>("eglChooseConfig", EGLBoolean(EGL_FALSE), display,
                                                    attributes, configs, room, count);
    if (state().nesting == 0) keepAttributes(attributes);
    if (result && state().emptyChoices > 0) {
        --state().emptyChoices;
        *count = 0;
    }
    return result;
}
