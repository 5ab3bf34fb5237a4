// SPDX-License-Identifier: Zlib
#include <keltra/foundation.h>
#include <keltra/opengl.h>
#include <keltra/settings.h>

#include "core/paths.h"
#include "foundation/fault.h"
#include "foundation/text.h"
#include "platform/platform.h"

#include <EGL/egl.h>
#include <GLES/gl.h>
#include <SDL/SDL.h>
#include <SDL/SDL_syswm.h>

#include <cstdint>
#include <cstdio>

namespace {

constexpr EGLint kMaxConfigs = 32;

// The flags of the mode check and of the mode itself differ: swapping belongs to EGL, so SDL makes no second
// buffer. The full-screen and resizable settings change neither.
constexpr Uint32 kCheckedMode = SDL_HWSURFACE | SDL_NOFRAME | SDL_DOUBLEBUF | SDL_FULLSCREEN;
constexpr Uint32 kWindowMode = SDL_HWSURFACE | SDL_NOFRAME | SDL_FULLSCREEN;

bool modeAvailable(const KTSETTINGS::RECORD &record) {
    // Before SDL_Init, SDL would read through a null video device.
    if (!SDL_WasInit(SDL_INIT_VIDEO)) return false;
    if (record.windowX <= 0 || record.windowY <= 0) return false;
    return SDL_VideoModeOK(record.windowX, record.windowY, record.colorDepth, kCheckedMode) != 0;
}

// Number of matching configurations, the best in `config`; -1 when EGL fails.
EGLint chooseConfig(EGLDisplay display, int depthBits, EGLConfig *config) {
    EGLint wanted[] = {EGL_LEVEL,      0,         EGL_NATIVE_RENDERABLE, EGL_FALSE,
                       EGL_DEPTH_SIZE, depthBits, EGL_SURFACE_TYPE,      EGL_WINDOW_BIT,
                       EGL_NONE};
    EGLConfig found[kMaxConfigs];
    EGLint count = 0;
    if (!eglChooseConfig(display, wanted, found, kMaxConfigs, &count)) return -1;
    if (count < 1) {
        // Some drivers mark every configuration as native-renderable; for them the attribute is left free.
        wanted[3] = EGL_DONT_CARE;
        if (!eglChooseConfig(display, wanted, found, kMaxConfigs, &count)) return -1;
    }
    if (count > 0) *config = found[0];
    return count;
}

[[gnu::noinline]] bool failMode(keltra::FaultScope &scope, const KTSETTINGS::RECORD &record) {
    return scope.fail(keltra::newFault(KT_FAULT_DISPLAY, {}, KT_TEXT("no mode of %d x %d pixels and %d bits"),
                                       {}, record.windowX, record.windowY, record.colorDepth));
}

// Names the step of start-up that failed; the reason may be empty.
[[gnu::noinline]] bool failStep(keltra::FaultText step, const char *reason) {
    KTFAULT &fault = keltra::newFault(KT_FAULT_START, step, {}, {});
    keltra::setFaultText(fault.found, reason);
    return keltra::tellFault(KT_CALL("KTSETTINGS::init"), fault);
}
[[gnu::noinline]] bool failEGL(keltra::FaultText step) {
    char reason[32];
    std::snprintf(reason, sizeof reason, "EGL error 0x%x", static_cast<unsigned int>(eglGetError()));
    return failStep(step, reason);
}

int glInteger(GLenum name) {
    GLint value = 0;
    glGetIntegerv(name, &value);
    return value;
}

}  // namespace

bool KTSETTINGS::isOk() { return modeAvailable(record); }

bool KTSETTINGS::init(KTSETTINGS *settings) {
    if (!settings) return keltra::failNull(KT_CALL("KTSETTINGS::init"), KT_TEXT("settings"));
    if (active) return keltra::failState(KT_CALL("KTSETTINGS::init"), keltra::kActive);
    keltra::FaultScope scope(KT_CALL("KTSETTINGS::init"));
    const RECORD &record = settings->record;
    if (!modeAvailable(record)) return failMode(scope, record);
    keltra::setPaths(record);
    if (!openWindow(record) || !openContext(record)) {
        closeContext();
        return false;
    }
    keltra::copyText(title, record.title);
    windowX = record.windowX;
    windowY = record.windowY;
    colorDepth = glInteger(GL_RED_BITS) + glInteger(GL_GREEN_BITS) + glInteger(GL_BLUE_BITS) +
                 glInteger(GL_ALPHA_BITS);
    zetaDepth = glInteger(GL_DEPTH_BITS);
    stencilDepth = glInteger(GL_STENCIL_BITS);
    fullScreen = record.fullScreen;
    resizable = record.resizable;
    landscape = record.landscape;
    useShaders = record.useShaders;
    active = true;
    return true;
}

// On top of everything else, at the top-left corner of the screen.
bool KTSETTINGS::openWindow(const RECORD &record) {
    SDL_WM_SetCaption(nullptr, nullptr);
    if (!SDL_SetVideoMode(record.windowX, record.windowY, record.colorDepth, kWindowMode))
        return failStep(KT_TEXT("SDL_SetVideoMode"), SDL_GetError());
    SDL_SysWMinfo info = {};
    info.version.major = 1;
    info.version.minor = 2;
    info.version.patch = 12;
    SDL_GetWMInfo(&info);
    keltra::NativeWindow native = keltra::platformNativeWindow(&info);
    window = native.window;
    keltra::platformPlaceWindow(native, 0, 0, record.windowX, record.windowY);
    keltra::platformAskWindowDevice(native);
    return true;
}

bool KTSETTINGS::openContext(const RECORD &record) {
    glesDisplay = eglGetDisplay(EGL_DEFAULT_DISPLAY);
    if (!eglInitialize(glesDisplay, nullptr, nullptr)) return failEGL(KT_TEXT("eglInitialize"));
    EGLConfig config = nullptr;
    EGLint count = chooseConfig(glesDisplay, record.zetaDepth, &config);
    if (count < 0) return failEGL(KT_TEXT("eglChooseConfig"));
    vnfLog("      Number of available configs: %d\n", count);
    if (count < 1)
        return keltra::failTexts(KT_CALL("KTSETTINGS::init"), KT_FAULT_START, KT_TEXT("eglChooseConfig"),
                                 KT_TEXT("no configuration has that depth buffer"));
    EGLNativeWindowType native = (EGLNativeWindowType)(std::uintptr_t)window;
    glesSurface = eglCreateWindowSurface(glesDisplay, config, native, nullptr);
    if (!glesSurface) return failEGL(KT_TEXT("eglCreateWindowSurface"));
    glesContext = eglCreateContext(glesDisplay, config, EGL_NO_CONTEXT, nullptr);
    if (!glesContext) return failEGL(KT_TEXT("eglCreateContext"));
    return eglMakeCurrent(glesDisplay, glesSurface, glesSurface, glesContext) ||
           failEGL(KT_TEXT("eglMakeCurrent"));
}

void KTSETTINGS::closeContext() {
    if (glesDisplay) {
        eglMakeCurrent(glesDisplay, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
        if (glesContext) eglDestroyContext(glesDisplay, glesContext);
        if (glesSurface) eglDestroySurface(glesDisplay, glesSurface);
        eglTerminate(glesDisplay);
    }
    glesDisplay = glesSurface = glesContext = nullptr;
    window = nullptr;
}

bool KTSETTINGS::free() {
    if (!active) return keltra::failState(KT_CALL("KTSETTINGS::free"), keltra::kInactive);
    closeContext();
    active = false;
    return true;
}

bool KTSETTINGS::resize(int x, int y, int width, int height) {
    windowX = width;
    windowY = height;
    return KTOPENGL::resize(x, y, width, height);
}
