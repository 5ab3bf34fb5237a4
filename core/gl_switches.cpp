// SPDX-License-Identifier: Zlib
#include <keltra/glbridge.h>
#include <keltra/opengl.h>
#include <keltra/settings.h>

#include "core/gl_state.h"
#include "core/glbridge.h"
#include "foundation/cold.h"

#include <cmath>

namespace {

using keltra::setCapability;

// True when the state of a client array changed.
bool setArray(bool &cached, GLenum array, bool on) {
    if (cached == on) return false;
    if (on)
        glEnableClientState(array);
    else
        glDisableClientState(array);
    cached = on;
    return true;
}

unsigned int askInteger(GLenum name) {
    GLint value = 0;
    glGetIntegerv(name, &value);
    return value > 0 ? static_cast<unsigned int>(value) : 0;
}

float ratio(int width, int height) { return static_cast<float>(width) / static_cast<float>(height); }

}  // namespace

// The caches outlive the context that they were true of, so a new context starts with all of them as it is.
KELTRA_COLD bool KTOPENGL::init() {
    if (active) return false;
    glGetString(GL_EXTENSIONS);
    keltra::beginContext();
    keltra::resetMatrixMirror();
    // One after the other: compilers evaluate arguments in either order.
    const int projections = askInteger(GL_MAX_PROJECTION_STACK_DEPTH);
    keltra::setStackSizes(askInteger(GL_MAX_MODELVIEW_STACK_DEPTH), projections);
    reset();
    active = true;
    return true;
}

bool KTOPENGL::free() {
    if (!active) return false;
    keltra::setStackSizes(0, 0);
    active = false;
    return true;
}

KELTRA_COLD void KTOPENGL::reset() {
    setBackgroundColor(backgroundColor);
    setGlobalAmbientLight(globalAmbientLight);
    KT_glClearDepthf(1.0f);
    glClearStencil(0);
    glDepthFunc(GL_LESS);
    keltra::setDepthTest(true);
    glShadeModel(GL_SMOOTH);
    // Deliberate: both hints, in this order; some drivers set up their fast path only when the hint changes.
    glHint(GL_PERSPECTIVE_CORRECTION_HINT, GL_NICEST);
    glHint(GL_PERSPECTIVE_CORRECTION_HINT, GL_FASTEST);
    glDisable(GL_DITHER);
    keltra::setBlendFunction(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    KT_glAlphaFunc(GL_GREATER, 0.5f);
    cullingOn();
    for (GLenum light = GL_LIGHT0; light <= GL_LIGHT3; ++light) {
        KT_glLightf(light, GL_SPOT_EXPONENT, 0.0f);
        KT_glLightf(light, GL_SPOT_CUTOFF, 180.0f);
        KT_glLightf(light, GL_CONSTANT_ATTENUATION, 1.0f);
        KT_glLightf(light, GL_LINEAR_ATTENUATION, 0.0f);
        KT_glLightf(light, GL_QUADRATIC_ATTENUATION, 0.0f);
    }
}

KELTRA_COLD bool KTOPENGL::resize(int x, int y, int width, int height) {
    // An empty or negative area keeps a usable projection and gives GL an empty viewport.
    if (width < 0) width = 0;
    if (height < 0) height = 0;
    int across = width > 0 ? width : 1, down = height > 0 ? height : 1;
    KT_glMatrixMode(GL_PROJECTION);
    KT_glLoadIdentity();
    // In 64 bits: the arguments may be any ints.
    glViewport(x, static_cast<GLint>(static_cast<long long>(KTSETTINGS::windowY) - y - height), width,
               height);
    if (KTSETTINGS::landscape) {
        KT_glRotatef(90.0f, 0.0f, 0.0f, 1.0f);
        setPerspective(angleOfView, ratio(down, across), nearPlane, farPlane);
    } else {
        setPerspective(angleOfView, ratio(across, down), nearPlane, farPlane);
    }
    KT_glMatrixMode(GL_MODELVIEW);
    KT_glLoadIdentity();
    return true;
}

void KTOPENGL::setPerspective(float angle, float aspect, float nearDistance, float farDistance) {
    // The factor is pi / 360: half the angle, in radians.
    float top = static_cast<float>(std::tan(static_cast<double>(angle * 0.008726646f))) * nearDistance;
    float right = top * aspect;
    KT_glFrustum(-right, right, -top, top, nearDistance, farDistance);
}

bool KTOPENGL::setFrustum(float left, float right, float bottom, float top, float nearDistance,
                          float farDistance, bool) {
    KT_glMatrixMode(GL_PROJECTION);
    KT_glLoadIdentity();
    KT_glFrustum(left, right, bottom, top, nearDistance, farDistance);
    KT_glMatrixMode(GL_MODELVIEW);
    KT_glLoadIdentity();
    return true;
}

void KTOPENGL::setBackgroundColor(float r, float g, float b, float a) {
    backgroundColor.set(r, g, b, a);
    KT_glClearColor(r, g, b, a);
}

void KTOPENGL::setBackgroundColor(R3XVECTOR4D color) {
    setBackgroundColor(color.x, color.y, color.z, color.w);
}

void KTOPENGL::setGlobalAmbientLight(float r, float g, float b, float a) {
    globalAmbientLight.set(r, g, b, a);
    KT_glLightModelfv(GL_LIGHT_MODEL_AMBIENT, &globalAmbientLight.x);
}

void KTOPENGL::setGlobalAmbientLight(R3XVECTOR4D color) {
    setGlobalAmbientLight(color.x, color.y, color.z, color.w);
}

// While culling is suspended only the wanted state changes; the GL follows when the suspension ends.
void KTOPENGL::cullingOn() {
    if (keltra::isCullingSuspended())
        culling = true;
    else
        setCapability(culling, GL_CULL_FACE, true);
}

void KTOPENGL::cullingOff() {
    if (keltra::isCullingSuspended())
        culling = false;
    else
        setCapability(culling, GL_CULL_FACE, false);
}

void KTOPENGL::blendingOn() {
    if (!blending) keltra::stampSurface();
    setCapability(blending, GL_BLEND, true);
}

void KTOPENGL::blendingOff() {
    if (blending) keltra::stampSurface();
    setCapability(blending, GL_BLEND, false);
}

void KTOPENGL::scissorOn() { setCapability(scissor, GL_SCISSOR_TEST, true); }
void KTOPENGL::scissorOff() { setCapability(scissor, GL_SCISSOR_TEST, false); }

void KTOPENGL::twoSideOn() {
    if (twoSide) return;
    KT_glLightModelf(GL_LIGHT_MODEL_TWO_SIDE, 1.0f);
    twoSide = true;
}

void KTOPENGL::twoSideOff() {
    if (!twoSide) return;
    KT_glLightModelf(GL_LIGHT_MODEL_TWO_SIDE, 0.0f);
    twoSide = false;
}

// The draws with an array on have left the current value of its kind undefined.
void KTOPENGL::vertexArrayOn() { setArray(vertexArrayStatus, GL_VERTEX_ARRAY, true); }
void KTOPENGL::vertexArrayOff() { setArray(vertexArrayStatus, GL_VERTEX_ARRAY, false); }
void KTOPENGL::normalArrayOn() { setArray(normalArrayStatus, GL_NORMAL_ARRAY, true); }
void KTOPENGL::normalArrayOff() {
    if (setArray(normalArrayStatus, GL_NORMAL_ARRAY, false)) keltra::forgetNormal();
}
void KTOPENGL::colorArrayOn() { setArray(colorArrayStatus, GL_COLOR_ARRAY, true); }
void KTOPENGL::colorArrayOff() {
    if (setArray(colorArrayStatus, GL_COLOR_ARRAY, false)) keltra::forgetColor();
}
void KTOPENGL::textureArrayOn() { setArray(textureArrayStatus, GL_TEXTURE_COORD_ARRAY, true); }
void KTOPENGL::textureArrayOff() {
    if (setArray(textureArrayStatus, GL_TEXTURE_COORD_ARRAY, false)) keltra::forgetTexCoord();
}

KTFBO *KTOPENGL::getFbo(int i) { return i >= 0 && i < fbos ? fbo[i] : nullptr; }
