// SPDX-License-Identifier: Zlib
#include "tools/view/lamps.h"

#include <keltra/keltra.h>

#include <GLES/gl.h>

namespace keltra::view {
namespace {

constexpr GLenum kLights = 4;  // as many as the engine uses

KTLIGHT *makeLamp(const R3XVECTOR3D &direction, float r, float g, float b, float shine) {
    KTLIGHT *lamp = new KTLIGHT;
    lamp->setLightType(KT_LIGHT_DIRECTIONAL);
    lamp->setDirection(direction);
    lamp->setAmbient(0.0f, 0.0f, 0.0f, 1.0f);
    lamp->setDiffuse(r, g, b, 1.0f);
    lamp->setSpecular(shine * r, shine * g, shine * b, 1.0f);
    return lamp;
}

}  // namespace

Lamps::Lamps()
    : key(makeLamp(R3XVECTOR3D(0.50f, -0.62f, -0.60f), 1.0f, 0.97f, 0.92f, 0.6f)),
      fill(makeLamp(R3XVECTOR3D(-0.78f, 0.10f, -0.62f), 0.24f, 0.28f, 0.34f, 0.1f)) {}

// The engine does not switch GL lights off.
void Lamps::begin(bool modelHasLights) {
    lit = !modelHasLights;
    for (GLenum i = 0; i < kLights; ++i) glDisable(GL_LIGHT0 + i);
    // Lights of scenes have ambient colours.
    if (lit)
        KTOPENGL::setGlobalAmbientLight(0.34f, 0.35f, 0.38f, 1.0f);
    else
        KTOPENGL::setGlobalAmbientLight(0.2f, 0.2f, 0.2f, 1.0f);
}

void Lamps::pass() const {
    if (!lit) return;
    KT_glPushMatrix();
    KT_glLoadIdentity();
    key->pass();
    fill->pass();
    KT_glPopMatrix();
}

}  // namespace keltra::view
