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

template <class F, class... A>
auto pass(F *next, A... arguments) {
    struct Nested {
        Nested() { ++state().nesting; }
        ~Nested() { --state().nesting; }
    } nested;
    return next(arguments...);
}

// `failure` is what the function returns when it fails.
template <class F, class R, class... A>
auto intercept(const char *name, F *next, R failed, A... arguments) {
    using Result = decltype(next(arguments...));
    const Result failure = static_cast<Result>(failed);
    if (state().nesting > 0) return pass(next, arguments...);
    keep(name, arguments...);
    if (mustFail(name)) return failure;
    const Result result = pass(next, arguments...);
    if (result != failure) ++state().successes[name];
    return result;
}

template <class F, class... A>
void interceptVoid(const char *name, F *next, A... arguments) {
    if (state().nesting > 0) return pass(next, arguments...);
    keep(name, arguments...);
    if (mustFail(name)) return;
    pass(next, arguments...);
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

#define KELTRA_WRAP(n, convention, f, failure)                                                    \
    KELTRA_INTERPOSE(Signature<decltype(f)>::Result, convention, f, (KELTRA_PARAMETERS_##n(f))) { \
        static auto *const next = keltra::nextFunction<decltype(f)>(#f);                          \
        return keltra::test::intercept(#f, next, failure KELTRA_ARGUMENTS_##n);                   \
    }
#define KELTRA_WRAP_VOID(n, convention, f)                               \
    KELTRA_INTERPOSE(void, convention, f, (KELTRA_PARAMETERS_##n(f))) {  \
        static auto *const next = keltra::nextFunction<decltype(f)>(#f); \
        keltra::test::interceptVoid(#f, next KELTRA_ARGUMENTS_##n);      \
    }

KELTRA_WRAP(1, SDLCALL, SDL_Init, -1)
KELTRA_WRAP(4, SDLCALL, SDL_VideoModeOK, 0)
KELTRA_WRAP_VOID(2, SDLCALL, SDL_WM_SetCaption)
KELTRA_WRAP(4, SDLCALL, SDL_SetVideoMode, nullptr)
KELTRA_WRAP(1, SDLCALL, SDL_GetWMInfo, 0)
KELTRA_WRAP_VOID(0, SDLCALL, SDL_Quit)
KELTRA_WRAP(1, EGLAPIENTRY, eglGetDisplay, EGL_NO_DISPLAY)
KELTRA_WRAP(3, EGLAPIENTRY, eglInitialize, EGL_FALSE)
KELTRA_WRAP(4, EGLAPIENTRY, eglCreateWindowSurface, EGL_NO_SURFACE)
KELTRA_WRAP(4, EGLAPIENTRY, eglCreateContext, EGL_NO_CONTEXT)
KELTRA_WRAP(4, EGLAPIENTRY, eglMakeCurrent, EGL_FALSE)
KELTRA_WRAP(2, EGLAPIENTRY, eglSwapBuffers, EGL_FALSE)
KELTRA_WRAP(2, EGLAPIENTRY, eglDestroyContext, EGL_FALSE)
KELTRA_WRAP(2, EGLAPIENTRY, eglDestroySurface, EGL_FALSE)
KELTRA_WRAP(1, EGLAPIENTRY, eglTerminate, EGL_FALSE)

KELTRA_INTERPOSE(EGLint, EGLAPIENTRY, eglGetError, ()) {
    using namespace keltra::test;
    static auto *const next = keltra::nextFunction<decltype(eglGetError)>("eglGetError");
    if (std::exchange(state().isContextLost, false)) return EGL_CONTEXT_LOST;
    return pass(next);
}

KELTRA_INTERPOSE(EGLBoolean, EGLAPIENTRY, eglChooseConfig,
                 (EGLDisplay display, const EGLint *attributes, EGLConfig *configs, EGLint room,
                  EGLint *count)) {
    using namespace keltra::test;
    static auto *const next = keltra::nextFunction<decltype(eglChooseConfig)>("eglChooseConfig");
    const EGLBoolean result =
        intercept("eglChooseConfig", next, EGL_FALSE, display, attributes, configs, room, count);
    if (state().nesting == 0) keepAttributes(attributes);
    if (result && state().emptyChoices > 0) {
        --state().emptyChoices;
        *count = 0;
    }
    return result;
}
