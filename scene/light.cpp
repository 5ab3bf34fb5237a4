// SPDX-License-Identifier: Zlib
#include <keltra/light.h>

#include <keltra/element.h>
#include <keltra/glbridge.h>
#include <keltra/mesh.h>

#include "core/gl_state.h"
#include "foundation/cold.h"
#include "foundation/fault.h"
#include "math/fixed.h"
#include "math/soft_arm.h"
#include "scene/light_order.h"
#include "scene/local_transform.h"
#include "scene/node_class.h"

bool KTLIGHT::lighting = false;

namespace {

constexpr unsigned int kGlLights = 8;  // what every GL has
constexpr float kNoCutOff = 180.0f;
constexpr float kWidestCone = 90.0f;
constexpr float kSharpest = 128.0f;
constexpr float kLargest = 32767.998f;  // that 16.16 holds

const keltra::OnNewContext forgetLighting([] { KTLIGHT::lighting = false; });

constexpr unsigned int kAmbient = 0, kDiffuse = 4, kSpecular = 8, kAttenuation = 12, kCutOff = 15,
                       kExponent = 16;
constexpr GLfixed kOne = 1 << 16;

// A value that the GL refuses is replaced: its error would be found far from the file that caused it, and the
// value of an earlier light must not remain. As the GL reads it, in 16.16.
GLfixed withinCutOff(float degrees) {
    const GLfixed fixed = keltra::toFixed(degrees);
    return fixed >= 0 && fixed <= keltra::toFixed(kWidestCone) ? fixed : keltra::toFixed(kNoCutOff);
}

GLfixed within(float value, float most, float otherwise) {
    const GLfixed fixed = keltra::toFixed(value);
    if (fixed >= 0 && fixed <= keltra::toFixed(most)) return fixed;
    return keltra::toFixed(value > most ? most : otherwise);
}

// From `eye` to `point`, normalised in four components.
R3XVECTOR3D directionTo(const R3XVECTOR3D &point, const R3XVECTOR3D &eye, float w) {
    R3XVECTOR4D way(point.x - eye.x, point.y - eye.y, point.z - eye.z, w);
    way.normalize();
    return R3XVECTOR3D(way.x, way.y, way.z);
}

// In the light's own frame.
void loadPlace(unsigned int unit, const KTLIGHT &light) {
    static const GLfixed origin[4] = {0, 0, 0, kOne}, nowhere[4] = {0, 0, 0, 0};
    const GLfixed *place = origin, *spot = origin;
    GLfixed own[4] = {0, 0, 0, kOne};
    if (light.lightType == KT_LIGHT_DIRECTIONAL) {
        const R3XVECTOR3D toLight = -light.direction;
        keltra::toFixed(&toLight.x, own, 3);
        own[3] = 0;
        place = own;
        spot = nowhere;
    } else if (light.lightType == KT_LIGHT_SPOT) {
        keltra::toFixed(&light.direction.x, own, 3);
        spot = own;
    }
    glLightxv(unit, GL_POSITION, place);
    glLightxv(unit, GL_SPOT_DIRECTION, spot);
}

}  // namespace

KELTRA_COLD KTLIGHT::KTLIGHT()
    : lightType(KT_LIGHT_POINT),
      ambient(0.2f, 0.2f, 0.2f, 1.0f),
      diffuse(0.7f, 0.7f, 0.7f, 1.0f),
      specular(0.2f, 0.2f, 0.2f, 1.0f),
      attenuation(1.0f, 0.0f, 0.0f),
      cutOff(kNoCutOff),
      exponent(0.0f),
      exclusive(false),
      shadowCaster(false),
      shadowNearPlane(1.0f),
      shadowFarPlane(1024.0f),
      shadowData(nullptr),
      parameters() {
    joinClass(KT_LIGHT);
    setIdentity(KT_LIGHT, "[light %d]");
}

KELTRA_COLD KTLIGHT::KTLIGHT(const KTLIGHT &other) : KTNODE(other), parameters() {
    joinClass(KT_LIGHT);
    *this = other;
}

KTLIGHT::~KTLIGHT() {}

void KTLIGHT::lightingOn() { keltra::setCapability(lighting, GL_LIGHTING, true); }

void KTLIGHT::lightingOff() { keltra::setCapability(lighting, GL_LIGHTING, false); }

bool KTLIGHT::activateNearest(KTELEMENT *element) {
    if (!element) return keltra::failNull(KT_CALL("KTLIGHT::activateNearest"), KT_TEXT("element"));
    if (!lighting) return false;
    keltra::sortNearestLights(element->matrix.getTranslation());
    for (unsigned int i = 0; i < KTELEMENT::nearestLights && i < KTELEMENT::numberOfLights; ++i) {
        KTELEMENT *light = KTELEMENT::elementPointer[i];
        // A mesh with a light's type code would sort its own lights here, and recurse without end.
        if (!light->node || light->node->type != KT_LIGHT || keltra::as<KTMESH>(light->node)) return false;
        light->setParam1(i);
        light->node->render(light);
        element->nearestLight[i] = light;
    }
    return true;
}

bool KTLIGHT::render(void *data) {
    KTELEMENT *element = static_cast<KTELEMENT *>(data);
    if (!element) return keltra::failNull(KT_CALL("KTLIGHT::render"), KT_TEXT("data"));
    if (element->param1 >= kGlLights)
        return keltra::failRange(KT_CALL("KTLIGHT::render"), KT_TEXT("param1"), element->param1,
                                 kGlLights - 1);

    if (targetNode) {
        const R3XVECTOR3D eye = transformMode == 1 ? matrix.getTranslation() : position;
        // Deliberate: the fourth component differs, 0 here and 1 there. A light that aims at a node close by
        // gets a shorter direction; scenes have been lit with it.
        direction = targetNode == this
                        ? directionTo(target, eye, 0.0f)
                        : directionTo(targetNode->getFinalMatrix(nullptr).getTranslation(), eye, 1.0f);
    }
    if (!lighting) lightingOn();
    const GLenum unit = GL_LIGHT0 + element->param1;
    glEnable(unit);
    loadParameters(unit);
    keltra::loadMatrixAgain(element->matrix.m, id);
    keltra::applyRotation(rotation);
    loadPlace(unit, *this);
    return true;
}

// The fields are public: whatever they hold now counts.
void KTLIGHT::updateParameters() {
    std::uint32_t *const from = parameters.madeFrom;
#if defined(KELTRA_SOFT_ARM)
    // All of them stand one behind the other.
    const bool isKnown = &exponent == &ambient.x + kExponent && from[kExponent] == keltra::bitsOf(exponent);
    if (isKnown && parameters.made && keltraSameWords(&ambient.x, from)) return;
#endif
    const std::uint32_t changes = keltra::updateBits<4>(from + kAmbient, &ambient.x) |
                                  keltra::updateBits<4>(from + kDiffuse, &diffuse.x) |
                                  keltra::updateBits<4>(from + kSpecular, &specular.x) |
                                  keltra::updateBits<3>(from + kAttenuation, &attenuation.x) |
                                  keltra::updateBits<1>(from + kCutOff, &cutOff) |
                                  keltra::updateBits<1>(from + kExponent, &exponent);
    if (changes == 0 && parameters.made) return;
    GLfixed *fixed = parameters.fixed;
    keltra::toFixed(&ambient.x, fixed + kAmbient, 4);
    keltra::toFixed(&diffuse.x, fixed + kDiffuse, 4);
    keltra::toFixed(&specular.x, fixed + kSpecular, 4);
    fixed[kAttenuation] = within(attenuation.x, kLargest, 1.0f);
    fixed[kAttenuation + 1] = within(attenuation.y, kLargest, 0.0f);
    fixed[kAttenuation + 2] = within(attenuation.z, kLargest, 0.0f);
    fixed[kCutOff] = withinCutOff(cutOff);
    fixed[kExponent] = within(exponent, kSharpest, 0.0f);
    parameters.made = true;
}

void KTLIGHT::loadParameters(unsigned int unit) {
    updateParameters();
    const GLfixed *fixed = parameters.fixed;
    const bool isCone = lightType != KT_LIGHT_POINT && lightType != KT_LIGHT_DIRECTIONAL;
    glLightxv(unit, GL_AMBIENT, fixed + kAmbient);
    glLightxv(unit, GL_DIFFUSE, fixed + kDiffuse);
    glLightxv(unit, GL_SPECULAR, fixed + kSpecular);
    glLightx(unit, GL_SPOT_CUTOFF, isCone ? fixed[kCutOff] : keltra::toFixed(kNoCutOff));
    glLightx(unit, GL_SPOT_EXPONENT, fixed[kExponent]);
    glLightx(unit, GL_CONSTANT_ATTENUATION, fixed[kAttenuation]);
    glLightx(unit, GL_LINEAR_ATTENUATION, fixed[kAttenuation + 1]);
    glLightx(unit, GL_QUADRATIC_ATTENUATION, fixed[kAttenuation + 2]);
}
