#include <keltra/light.h>

#include <keltra/element.h>
#include <keltra/glbridge.h>
#include <keltra/mesh.h>

#include "core/gl_state.h"
#include "foundation/fault.h"
#include "math/fixed.h"
#include "scene/local_transform.h"
#include "scene/node_class.h"

bool KTLIGHT::lighting = false;

namespace {

const unsigned int kGlLights = 8;  // what every GL has
const float kNoCutOff = 180.0f;
const float kWidestCone = 90.0f;
const float kSharpest = 128.0f;
const float kLargest = 32767.998f;  // that 16.16 holds

const keltra::OnNewContext forgetLighting([] { KTLIGHT::lighting = false; });

// A value that the GL refuses is replaced: its error would be found far from the file that caused it, and the
// value of an earlier light must not remain. As the GL reads it, in 16.16.
float withinCutOff(float degrees) {
    const GLfixed fixed = keltra::toFixed(degrees);
    return fixed >= 0 && fixed <= keltra::toFixed(kWidestCone) ? degrees : kNoCutOff;
}

float within(float value, float most, float otherwise) {
    const GLfixed fixed = keltra::toFixed(value);
    if (fixed >= 0 && fixed <= keltra::toFixed(most)) return value;
    return value > most ? most : otherwise;
}

void loadParameters(const KTLIGHT &light, GLenum unit, float cutOff) {
    KT_glLightfv(unit, GL_AMBIENT, &light.ambient.x);
    KT_glLightfv(unit, GL_DIFFUSE, &light.diffuse.x);
    KT_glLightfv(unit, GL_SPECULAR, &light.specular.x);
    KT_glLightf(unit, GL_SPOT_CUTOFF, withinCutOff(cutOff));
    KT_glLightf(unit, GL_SPOT_EXPONENT, within(light.exponent, kSharpest, 0.0f));
    KT_glLightf(unit, GL_CONSTANT_ATTENUATION, within(light.attenuation.x, kLargest, 1.0f));
    KT_glLightf(unit, GL_LINEAR_ATTENUATION, within(light.attenuation.y, kLargest, 0.0f));
    KT_glLightf(unit, GL_QUADRATIC_ATTENUATION, within(light.attenuation.z, kLargest, 0.0f));
}

// From `eye` to `point`, normalised in four components.
R3XVECTOR3D directionTo(const R3XVECTOR3D &point, const R3XVECTOR3D &eye, float w) {
    R3XVECTOR4D way(point.x - eye.x, point.y - eye.y, point.z - eye.z, w);
    way.normalize();
    return R3XVECTOR3D(way.x, way.y, way.z);
}

}  // namespace

KTLIGHT::KTLIGHT()
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
      shadowData(nullptr) {
    joinClass(KT_LIGHT);
    setIdentity(KT_LIGHT, "[light %d]");
}

KTLIGHT::KTLIGHT(const KTLIGHT &other) : KTNODE(other) {
    joinClass(KT_LIGHT);
    *this = other;
}

KTLIGHT::~KTLIGHT() {}

void KTLIGHT::lightingOn() { keltra::setCapability(lighting, GL_LIGHTING, true); }

void KTLIGHT::lightingOff() { keltra::setCapability(lighting, GL_LIGHTING, false); }

bool KTLIGHT::activateNearest(KTELEMENT *element) {
    if (!element) return keltra::failNull("KTLIGHT::activateNearest", "element");
    if (!lighting) return false;
    KTELEMENT::sortLights(element->matrix.getTranslation());
    for (unsigned int i = 0; i < KTELEMENT::nearestLights && i < KTELEMENT::numberOfLights; ++i) {
        KTELEMENT *light = KTELEMENT::getLight(i);
        // A mesh with a light's type code would sort its own lights here, and recurse without end.
        if (!light->node || light->node->type != KT_LIGHT || keltra::as<KTMESH>(light->node)) return false;
        light->setParam1(i);
        light->node->render(light);
        element->setNearestLight(i, light);
    }
    return true;
}

bool KTLIGHT::render(void *data) {
    KTELEMENT *element = static_cast<KTELEMENT *>(data);
    if (!element) return keltra::failNull("KTLIGHT::render", "data");
    if (element->param1 >= kGlLights)
        return keltra::failRange("KTLIGHT::render", "param1", element->param1, kGlLights - 1);

    R3XVECTOR3D eye = transformMode == 1 ? matrix.getTranslation() : position;
    // Deliberate: the fourth component differs, 0 here and 1 there. A light that aims at a node close by gets
    // a shorter direction; scenes have been lit with it.
    if (targetNode == this)
        direction = directionTo(target, eye, 0.0f);
    else if (targetNode)
        direction = directionTo(targetNode->getFinalMatrix(nullptr).getTranslation(), eye, 1.0f);

    R3XVECTOR4D place(0.0f, 0.0f, 0.0f, 1.0f), spot(0.0f, 0.0f, 0.0f, 1.0f);
    float angle = lightType == KT_LIGHT_POINT || lightType == KT_LIGHT_DIRECTIONAL ? kNoCutOff : cutOff;
    if (lightType == KT_LIGHT_DIRECTIONAL) {
        place.set(-direction.x, -direction.y, -direction.z, 0.0f);
        spot.reset();
    } else if (lightType == KT_LIGHT_SPOT) {
        spot = direction;
    }

    lightingOn();
    GLenum unit = GL_LIGHT0 + element->param1;
    glEnable(unit);
    loadParameters(*this, unit, angle);
    KT_glLoadMatrixf(element->matrix.m);
    keltra::applyRotation(rotation);
    KT_glLightfv(unit, GL_POSITION, &place.x);
    KT_glLightfv(unit, GL_SPOT_DIRECTION, &spot.x);
    return true;
}
