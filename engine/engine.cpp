#include <keltra/engine.h>

#include <SDL/SDL.h>

#include <keltra/anim.h>
#include <keltra/element.h>
#include <keltra/emitter.h>
#include <keltra/fbo.h>
#include <keltra/font.h>
#include <keltra/foundation.h>
#include <keltra/light.h>
#include <keltra/material.h>
#include <keltra/mesh.h>
#include <keltra/opengl.h>
#include <keltra/settings.h>
#include <keltra/shader.h>
#include <keltra/texture.h>
#include <keltra/video.h>

#include "foundation/text.h"

bool KELTRA::active = false;
bool KELTRA::wireframe = false;
bool KELTRA::shadowing = false;
bool KELTRA::blooming = false;
bool KELTRA::HDR = false;
bool KELTRA::DOF = false;
bool KELTRA::skipShadows = false;
bool KELTRA::renderingOnFbo = false;
int KELTRA::timer = -1;
// Not 0: a stamp that was just zeroed never equals the current frame.
long int KELTRA::timeStamp = 65536;
float KELTRA::bloomingIntensity = 1.0f;
float KELTRA::HDRExposure = 1.0f;
float KELTRA::HDRCurrentLuminance = 1.0f;
float KELTRA::DOFFocus = 1.0f;
float KELTRA::DOFRange = 2.0f;
unsigned int KELTRA::videoMemoryTotal = 0;
unsigned int KELTRA::videoMemoryUsed = 0;
KTNODE *KELTRA::skybox = nullptr;
char KELTRA::ktePath[256];
bool KELTRA::timerUpdated = false;

namespace {

const unsigned int kVideoMemory = 8388608;

// The switches cached outside KTOPENGL were true of the last context; a new one has everything off.
void forgetGLState() {
    KTLIGHT::lighting = false;
    KTMATERIAL::reset();
    for (bool &channel : KTTEXTURE::channelActive) channel = false;
    for (KTTEXTURE *&cached : KTTEXTURE::channelCache) cached = nullptr;
}

}  // namespace

bool KELTRA::init(KTSETTINGS *settings) {
    if (active) return false;
    if (SDL_Init(SDL_INIT_VIDEO) == -1) return false;
    KTSETTINGS defaults;
    if (!settings) settings = &defaults;
    if (KTSETTINGS::init(settings)) {
        forgetGLState();
        if (KTOPENGL::init()) {
            KTOPENGL::resize(0, 0, settings->getWindowX(), settings->getWindowY());
            if (KTSHADER::init()) {
                if (KTELEMENT::init(static_cast<unsigned int>(settings->getRenderingElements()))) {
                    if (KTFONT::init()) {
                        if (KTMESH::init()) {
                            if (KTEMITTER::init()) {
                                timer = vnfNewTimer(1.0f);
                                timerUpdated = false;
                                videoMemoryTotal = kVideoMemory;
                                active = true;
                                return true;
                            }
                            KTMESH::free();
                        }
                        KTFONT::free();
                    }
                    KTELEMENT::free();
                }
                KTSHADER::free();
            }
            KTOPENGL::free();
        }
        KTSETTINGS::free();
    }
    SDL_Quit();
    return false;
}

// The order of both halves is fixed: fonts, then nodes, then what nodes refer to; then the subsystems,
// emitters and fonts before the meshes; videos after the animations.
bool KELTRA::free() {
    if (!active) return false;
    vnfFreeTimer(timer);
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
    KTEMITTER::free();
    KTFONT::free();
    KTMESH::free();
    KTELEMENT::free();
    KTSHADER::free();
    KTOPENGL::free();
    KTSETTINGS::free();
    SDL_Quit();
    active = false;
    return true;
}

void KELTRA::updateTimer() {
    if (timerUpdated) return;
    vnfAdjournTimer(timer);
    timerUpdated = true;
}

float KELTRA::getFPS() { return vnfGetTimerFps(timer); }

float KELTRA::getFPSfactor() { return vnfGetTimerFactor(timer); }

void KELTRA::setKTEPath(const char *path) { keltra::copyText(ktePath, path); }

void KELTRA::setSkybox(KTNODE *node) { skybox = node; }

void KELTRA::shadowingOn() {
    if (KTSHADER::shadowsFlag) shadowing = true;
}
