// SPDX-License-Identifier: Zlib
#include <keltra/camera.h>
#include <keltra/element.h>
#include <keltra/engine.h>
#include <keltra/fbo.h>
#include <keltra/font.h>
#include <keltra/glbridge.h>
#include <keltra/light.h>
#include <keltra/material.h>
#include <keltra/mesh.h>
#include <keltra/opengl.h>
#include <keltra/settings.h>
#include <keltra/shader.h>
#include <keltra/texture.h>

#include "core/gl_state.h"
#include "foundation/fault.h"
#include "foundation/memory.h"
#include "scene/light_order.h"
#include "scene/local_transform.h"

#include <EGL/egl.h>

#include <algorithm>

namespace {

// Nothing fills the table of targets yet.
void renderTo(int target) {
    if (KTFBO *fbo = KTOPENGL::getFbo(target)) fbo->render(nullptr);
}

void renderElements() {
    keltra::LightOrder lightOrder;
    for (unsigned int i = 0; i < KTELEMENT::numberOfPassedElements; ++i) {
        KTELEMENT *element = KTELEMENT::elementPointer[i];
        KTNODE *node = element->getNode();
        if (!node) continue;
        lightOrder.prepare(*node);
        node->render(element);
    }
}

void depthOfFieldPass() {
    renderTo(1);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    KTOPENGL::setProfile(KT_PROFILE_DEPTH);
    renderElements();
    KTSHADER::disable();
    KTOPENGL::setProfile(KT_PROFILE_NORMAL);
    renderTo(0);
    glClear(GL_DEPTH_BUFFER_BIT);
}

// Drawn around the eye, turned but not moved, and never on the render list.
void renderSkybox(KTNODE &skybox) {
    KTMATERIAL::reset();
    KTTEXTURE::texturingOff(KTTEXTURE::channels);
    KTLIGHT::lightingOff();
    KT_glColor4f(1.0f, 1.0f, 1.0f, 1.0f);
    KT_glLoadIdentity();
    KT_glMultMatrixf(KTCAMERA::getCameraMatrix()->m);
    keltra::applyRotation(skybox.rotation);
    KTELEMENT element;
    element.node = &skybox;
    KT_glGetFloatv(0, element.matrix.m);
    element.matrix.setTranslation(0.0f, 0.0f, 0.0f);
    if (KTNODE *dome = skybox.getChild(0)) dome->render(&element);
}

// One unit is one pixel, y grows downward.
void loadPixelProjection() {
    KT_glMatrixMode(GL_PROJECTION);
    KT_glPushMatrix();
    KT_glLoadIdentity();
    // The GL refuses an empty volume, as `KTOPENGL::resize` knows too.
    float right = static_cast<float>(std::max(KTSETTINGS::windowX, 1)),
          bottom = static_cast<float>(std::max(KTSETTINGS::windowY, 1));
    if (KTSETTINGS::landscape) {
        KT_glRotatef(90.0f, 0.0f, 0.0f, 1.0f);
        KT_glOrtho(0.0f, bottom, right, 0.0f, 0.0f, 1.0f);
    } else {
        KT_glOrtho(0.0f, right, bottom, 0.0f, 0.0f, 1.0f);
    }
    KT_glMatrixMode(GL_MODELVIEW);
    KT_glLoadIdentity();
}

}  // namespace

bool KELTRA::clear(bool color, bool depth, bool stencil) {
    renderingOnFbo = KTSETTINGS::forceFBO || (blooming && KTSHADER::bloomFlag) || (DOF && KTSHADER::dofFlag);
    if (renderingOnFbo) renderTo(0);
    GLbitfield mask = 0;
    if (color) mask |= GL_COLOR_BUFFER_BIT;
    if (depth) mask |= GL_DEPTH_BUFFER_BIT;
    if (stencil) mask |= GL_STENCIL_BUFFER_BIT;
    if (mask) glClear(mask);
    return true;
}

bool KELTRA::begin3D(KTCAMERA *camera) {
    updateTimer();
    timeStamp = static_cast<long int>(static_cast<unsigned long int>(timeStamp) + 1);  // wraps around
    KTELEMENT::reset();
    KTSHADER::currentShader = nullptr;
    KTSHADER::disable();
    KTMATERIAL::reset();
    KTMESH::reset();
    KTTEXTURE::texturingOff(KTTEXTURE::channels);
    KTOPENGL::blendingOff();
    KTOPENGL::twoSideOff();
    if (camera) {
        camera->render(nullptr);
    } else {
        KTCAMERA fallback;
        fallback.render(nullptr);
    }
    return true;
}

bool KELTRA::end3D(bool) {
    KTELEMENT::sort3D();
    if (wireframe) keltra::suspendCulling(keltra::kByWireframe);
    if (DOF && KTSHADER::dofFlag) depthOfFieldPass();
    if (skybox) renderSkybox(*skybox);
    renderElements();
    keltra::resumeCulling(keltra::kByWireframe);
    return true;
}

bool KELTRA::begin2D() {
    updateTimer();
    KTSHADER::disable();
    KTLIGHT::lightingOff();
    KTTEXTURE::texturingOff(KTTEXTURE::channels);
    KTELEMENT::reset();
    KTFONT::reset();
    KTOPENGL::blendingOff();
    keltra::enter2DPass();
    KTOPENGL::twoSideOff();
    keltra::useFlatArrays();
    loadPixelProjection();
    return true;
}

bool KELTRA::end2D() {
    KTELEMENT::sort2D();
    for (unsigned int i = 0; i < KTELEMENT::numberOfPassedElements; ++i) {
        KTELEMENT *element = KTELEMENT::elementPointer[i];
        KTNODE *node = element->getNode();
        if (node && node->type != KT_LIGHT && node->type != KT_MESH) node->render(element);
        keltra::settle2DPass();
    }
    KT_glMatrixMode(GL_PROJECTION);
    KT_glPopMatrix();
    KT_glMatrixMode(GL_MODELVIEW);
    keltra::leave2DPass();
    return true;
}

// A device that was switched off may return without the context and all that is in it.
[[gnu::cold]] static bool failSwap() {
    const bool isLost = eglGetError() == EGL_CONTEXT_LOST;
    return keltra::failState(KT_CALL("KELTRA::swap"),
                             isLost ? KT_TEXT("the GL context is lost; start the engine again")
                                    : KT_TEXT("the frame cannot be shown"));
}

bool KELTRA::swap() {
    timerUpdated = false;
    glFlush();
    glFinish();
    keltra::sampleLateBlocks();
    return eglSwapBuffers(KTSETTINGS::glesDisplay, KTSETTINGS::glesSurface) == EGL_TRUE || failSwap();
}
