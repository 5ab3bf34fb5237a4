// SPDX-License-Identifier: Zlib
#include <keltra/material.h>

#include <keltra/engine_state.h>
#include <keltra/glbridge.h>
#include <keltra/opengl.h>
#include <keltra/settings.h>
#include <keltra/shader.h>
#include <keltra/texture.h>

#include "core/gl_state.h"
#include "core/holders.h"
#include "formats/limits.h"
#include "foundation/argument.h"
#include "foundation/fault.h"
#include "foundation/registry.h"
#include "foundation/text.h"

#include <cstdio>
#include <cstring>

template <>
struct keltra::PublicFields<KTMATERIAL>
    : keltra::UsualFields<KTMATERIAL, &KTMATERIAL::name, &KTMATERIAL::firstMaterial> {};
template class KTREGISTERED<KTMATERIAL>;

static_assert(KTMATERIAL::levels == keltra::kMaxTextureLevels && KTTEXTURE::channels == KTMATERIAL::levels,
              "a channel for each texture");

const unsigned int KTMATERIAL::levels;
KTMATERIAL *KTMATERIAL::firstMaterial = nullptr;
KTMATERIAL *KTMATERIAL::currentMaterial = nullptr;
KTLISTED<KTMATERIAL> *KTMATERIAL::allMaterials = nullptr;

namespace {

enum LightType { kOmni, kDirectional, kSpot };

// Rows: light type, the last for a spot with shadows. Columns: plain, textured, skinned, textured and
// skinned.
KTSHADER **const kLightingShaders[4][4] = {
    {&KTSHADER::pplOmni, &KTSHADER::pplOmniT, &KTSHADER::pplOmniA, &KTSHADER::pplOmniTA},
    {&KTSHADER::pplDirect, &KTSHADER::pplDirectT, &KTSHADER::pplDirectA, &KTSHADER::pplDirectTA},
    {&KTSHADER::pplSpot, &KTSHADER::pplSpotT, &KTSHADER::pplSpotA, &KTSHADER::pplSpotTA},
    {&KTSHADER::pplSpotS, &KTSHADER::pplSpotTS, &KTSHADER::pplSpotSA, &KTSHADER::pplSpotTSA},
};
constexpr unsigned int kShadowRow = 3;

bool usesShadowMap(const KTSHADER *shader) {
    for (KTSHADER **named : kLightingShaders[kShadowRow])
        if (*named == shader) return true;
    return false;
}

void bindShader(KTSHADER *shader) {
    if (shader) shader->markHeld();
    if (!shader || !shader->isOperative()) {
        KTSHADER::disable();
        return;
    }
    shader->render(nullptr);
    if (usesShadowMap(shader)) {
        KTSHADER::bindSizes(KTSETTINGS::shadowMapSize, KTSETTINGS::shadowMapSize);
        KTSHADER::bindTexture(1);
    }
}

void setColor(GLenum pname, const R3XVECTOR4D &color) {
    const float values[4] = {color.x, color.y, color.z, color.w};
    KT_glMaterialfv(GL_FRONT_AND_BACK, pname, values);
}

const keltra::OnNewContext forgetMaterial(KTMATERIAL::reset);

// Blending and textures as the current material left them: after any other change of them the material is set
// again.
unsigned int renderedStamp = 0;

// GL refuses other values, and the error would be found at the end of the frame, far from the file that
// caused it.
float withinShininess(float value) {
    if (!(value > 0.0f)) return 0.0f;
    return value < 128.0f ? value : 128.0f;
}

}  // namespace

KTMATERIAL::KTMATERIAL()
    : timeStamp(0),
      references(0),
      ambient(0.2f, 0.2f, 0.2f, 1.0f),
      diffuse(0.6f, 0.6f, 0.6f, 1.0f),
      specular(0.2f, 0.2f, 0.2f, 1.0f),
      emission(0.0f, 0.0f, 0.0f, 1.0f),
      transparency(1.0f),
      shininess(0.0f),
      texture(),
      shader(nullptr),
      skinning(false) {
    joinList(allMaterials);
    id = enlist();
    keltra::writeName(name, "[material %d]", id);
}

KTMATERIAL::KTMATERIAL(const KTMATERIAL &other) : KTREGISTERED<KTMATERIAL>(other), KTLISTED<KTMATERIAL>() {
    joinList(allMaterials);
    copyFields(other);
}

KTMATERIAL &KTMATERIAL::operator=(const KTMATERIAL &other) {
    if (this == &other) return *this;
    if (currentMaterial == this) currentMaterial = nullptr;
    copyFields(other);
    fieldsAssigned();
    return *this;
}

KTMATERIAL::~KTMATERIAL() { release(); }

void KTMATERIAL::copyFields(const KTMATERIAL &other) {
    id = other.id;
    std::memcpy(name, other.name, sizeof name);
    timeStamp = other.timeStamp;
    references = other.references;
    copySurface(other);
    skinning = other.skinning;
    previous = other.previous;
    next = other.next;
}

void KTMATERIAL::copySurface(const KTMATERIAL &other) {
    ambient = other.ambient;
    diffuse = other.diffuse;
    specular = other.specular;
    emission = other.emission;
    transparency = other.transparency;
    shininess = other.shininess;
    std::memcpy(texture, other.texture, sizeof texture);
    for (KTTEXTURE *held : texture)
        if (held) held->markHeld();
    setShader(other.shader);
}

void KTMATERIAL::clone(const KTMATERIAL *source) {
    if (!source) return void(keltra::failNull(KT_CALL("KTMATERIAL::clone"), KT_TEXT("source")));
    char text[sizeof name + 16];
    std::snprintf(text, sizeof text, "%s%u", source->name, id);
    keltra::copyText(name, text);
    nameChanged();
    copySurface(*source);
}

// Deliberate: the uses of its textures stay counted; applications keep textures resident this way.
void KTMATERIAL::release() {
    if (currentMaterial == this) currentMaterial = nullptr;
    keltra::OnGone<KTMATERIAL>::notify({*this, isHeld()});
    delist();
}

void KTMATERIAL::setShader(KTSHADER *value) {
    shader = value;
    if (shader) shader->markHeld();
}

bool KTMATERIAL::setTexture(unsigned int level, KTTEXTURE *value) {
    if (level >= levels)
        return keltra::failRange(KT_CALL("KTMATERIAL::setTexture"), KT_TEXT("level"), level, levels - 1);
    KTUSE::exchange(texture[level], value);
    return true;
}

KTSHADER *KTMATERIAL::chooseShader(const void *data) const {
    if (shader) return shader;
    if (!KTSETTINGS::useShaders || !data) return nullptr;
    const std::int32_t type = *static_cast<const std::int32_t *>(data);
    if (type < kOmni || type > kSpot) return nullptr;
    const unsigned int row =
        type == kSpot && KTENGINESTATE::shadowing ? kShadowRow : static_cast<unsigned int>(type);
    return *kLightingShaders[row][(skinning ? 2 : 0) + (isTextured() ? 1 : 0)];
}

bool KTMATERIAL::render(void *data) {
    timeStamp = static_cast<std::int32_t>(KTENGINESTATE::timeStamp);
    markHeld();
    if (currentMaterial == this && renderedStamp == keltra::surfaceStamp()) return true;
    bindShader(chooseShader(data));
    // Deliberate: the stored alphas follow the transparency; applications read them back.
    ambient.w = diffuse.w = specular.w = emission.w = transparency;
    keltra::forgetInitialMaterial();
    setColor(GL_EMISSION, emission);
    setColor(GL_AMBIENT, ambient);
    setColor(GL_DIFFUSE, diffuse);
    setColor(GL_SPECULAR, specular);
    KT_glMaterialf(GL_FRONT_AND_BACK, GL_SHININESS, withinShininess(shininess));
    if (isTransparent()) {
        keltra::setBlendFunction(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
        KTOPENGL::blendingOn();
    } else {
        KTOPENGL::blendingOff();
    }
    bool textured = false;
    for (unsigned int channel = 0; channel < levels; ++channel) {
        if (!texture[channel]) continue;
        textured = true;
        texture[channel]->render(&channel);
    }
    if (!textured) KTTEXTURE::texturingOff(KTTEXTURE::channels);
    currentMaterial = this;
    renderedStamp = keltra::surfaceStamp();
    return true;
}

KTMATERIAL *KTMATERIAL::findByName(const char *wanted) { return findRegistered(wanted); }

KTMATERIAL *KTMATERIAL::findById(unsigned int wanted) { return findRegistered(wanted); }

unsigned int KTMATERIAL::getNumberOfMaterials() { return count(); }

bool KTMATERIAL::cleanUp() {
    keltra::notifyGoneFrom(firstRegistered());
    return destroyAll(&KTMATERIAL::release);
}

void KTMATERIAL::setName(const char *text) {
    if (keltra::takeName(name, text, KT_CALL("KTMATERIAL::setName"))) nameChanged();
}
