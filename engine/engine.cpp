// SPDX-License-Identifier: Zlib
#include <keltra/engine.h>

#include <keltra/anim.h>
#include <keltra/element.h>
#include <keltra/emitter.h>
#include <keltra/fbo.h>
#include <keltra/font.h>
#include <keltra/foundation.h>
#include <keltra/material.h>
#include <keltra/mesh.h>
#include <keltra/opengl.h>
#include <keltra/settings.h>
#include <keltra/shader.h>
#include <keltra/texture.h>
#include <keltra/video.h>

#include "core/holders.h"
#include "core/paths.h"
#include "formats/limits.h"
#include "foundation/argument.h"
#include "foundation/fault.h"
#include "foundation/quiet.h"
#include "platform/platform.h"

#include <SDL/SDL.h>

bool KELTRA::active = false;
bool KELTRA::blooming = false;
bool KELTRA::HDR = false;
bool KELTRA::DOF = false;
bool KELTRA::skipShadows = false;
bool KELTRA::renderingOnFbo = false;
float KELTRA::bloomingIntensity = 1.0f;
float KELTRA::HDRExposure = 1.0f;
float KELTRA::HDRCurrentLuminance = 1.0f;
float KELTRA::DOFFocus = 1.0f;
float KELTRA::DOFRange = 2.0f;
KTNODE *KELTRA::skybox = nullptr;
char KELTRA::ktePath[256];
bool KELTRA::timerUpdated = false;

namespace {

const keltra::OnGone<KTNODE> forgetSkybox([](const keltra::Gone<KTNODE> &gone) {
    gone.clear(KELTRA::skybox);
});

}  // namespace

// Start-up in steps. A nested class: some steps are accessible to the facade only.
struct KELTRA::STARTUP {
    struct Step {
        keltra::FaultText name;
        bool (*start)(KTSETTINGS &settings);
        bool (*stop)();
    };
    enum { kSdl, kWindow, kGlState, kShaders, kRenderList, kFonts, kMeshes, kEmitters, kCount };
    static const Step steps[kCount];
    // The reverse order of start-up, but for the fonts, which stop before the meshes.
    static constexpr int kStopping[kCount] = {kEmitters, kFonts,   kMeshes, kRenderList,
                                              kShaders,  kGlState, kWindow, kSdl};

    static bool startSdl(KTSETTINGS &) {
        const keltra::WindowDriverOnly windowDriverOnly;
        if (SDL_Init(SDL_INIT_VIDEO) != -1) return true;
        KTFAULT &fault = keltra::newFault(KT_FAULT_DISPLAY);
        keltra::setFaultText(fault.found, SDL_GetError());
        return keltra::tellFault(KT_CALL("KELTRA::init"), fault);
    }
    static bool stopSdl() {
        SDL_Quit();
        return true;
    }
    static bool startWindow(KTSETTINGS &settings) { return KTSETTINGS::init(&settings); }
    static bool startGlState(KTSETTINGS &settings) {
        if (!KTOPENGL::init()) return false;
        KTOPENGL::resize(0, 0, settings.getWindowX(), settings.getWindowY());
        return true;
    }
    static bool startShaders(KTSETTINGS &) { return KTSHADER::init(); }
    static bool startRenderList(KTSETTINGS &settings) {
        return KTELEMENT::init(static_cast<unsigned int>(settings.getRenderingElements()));
    }
    static bool startFonts(KTSETTINGS &) { return KTFONT::init(); }
    static bool startMeshes(KTSETTINGS &) { return KTMESH::init(); }
    static bool startEmitters(KTSETTINGS &) { return KTEMITTER::init(); }

    // A failed step stops those before it, the latest first.
    static bool startAll(KTSETTINGS &settings, keltra::FaultScope &scope) {
        for (int started = 0; started < kCount; ++started) {
            if (steps[started].start(settings)) continue;
            scope.fail(keltra::newFault(KT_FAULT_START, steps[started].name, {}, {}));
            while (started-- > 0) steps[started].stop();
            return false;
        }
        return true;
    }

    static void stopAll() {
        for (int step : kStopping) steps[step].stop();
    }
};

const KELTRA::STARTUP::Step KELTRA::STARTUP::steps[kCount] = {
    {KT_TEXT("SDL"), startSdl, stopSdl},
    {KT_TEXT("window and GL context"), startWindow, KTSETTINGS::free},
    {KT_TEXT("GL state"), startGlState, KTOPENGL::free},
    {KT_TEXT("shaders"), startShaders, KTSHADER::free},
    {KT_TEXT("render list"), startRenderList, KTELEMENT::free},
    {KT_TEXT("fonts"), startFonts, KTFONT::free},
    {KT_TEXT("meshes"), startMeshes, KTMESH::free},
    {KT_TEXT("emitters"), startEmitters, KTEMITTER::free},
};

// Every class takes its directory before the window opens, and keeps it when that fails.
void keltra::setPaths(const KTSETTINGS::RECORD &record) {
    KELTRA::setKTEPath(record.ktePath);
    KTANIM::setKTAPath(record.ktaPath);
    KTTEXTURE::setPath(record.texturePath);
    KTSHADER::setPath(record.shaderPath);
    KTFONT::setPath(record.fontPath);
}

bool KELTRA::init(KTSETTINGS *settings) {
    if (active) return keltra::failState(KT_CALL("KELTRA::init"), keltra::kActive);
    keltra::FaultScope scope(KT_CALL("KELTRA::init"));
    KTSETTINGS defaults;
    if (!STARTUP::startAll(settings ? *settings : defaults, scope)) return false;
    const keltra::FaultOptional optional;  // without a timer only the frame rate is missing
    timer = vnfNewTimer(1.0f);
    timerUpdated = false;
    videoMemoryTotal = keltra::kVideoMemory;
    active = true;
    return true;
}

// The order is fixed: fonts, then nodes, then what nodes refer to, videos after the animations; then the
// subsystems.
bool KELTRA::free() {
    if (!active) return keltra::failState(KT_CALL("KELTRA::free"), keltra::kInactive);
    // The call that made the fault continues.
    if (keltra::isInFaultHandler())
        return keltra::failState(KT_CALL("KELTRA::free"), KT_TEXT("a fault handler is running"));
    keltra::returnTimer(timer);
    timer = -1;
    KTELEMENT::reset();
    KTFONT::cleanUp();
    KTNODE::cleanUp();
    KTFBO::cleanUp();
    KTSHADER::cleanUp();
    KTMATERIAL::cleanUp();
    KTTEXTURE::cleanUp();
    KTANIM::cleanUp();
    KTVIDEO::cleanUp();
    STARTUP::stopAll();
    active = false;
    return true;
}

void KELTRA::updateTimer() {
    if (timerUpdated) return;
    keltra::adjournTimer(timer);
    timerUpdated = true;
}

void KELTRA::setKTEPath(const char *path) { keltra::takeText(ktePath, path, KT_CALL("KELTRA::setKTEPath")); }

void KELTRA::setSkybox(KTNODE *node) { skybox = node; }

void KELTRA::shadowingOn() {
    if (KTSHADER::shadowsFlag) shadowing = true;
}
