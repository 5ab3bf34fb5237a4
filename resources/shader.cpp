// SPDX-License-Identifier: Zlib
#include <keltra/shader.h>

#include "core/holders.h"
#include "foundation/argument.h"
#include "foundation/registry.h"
#include "foundation/text.h"

#include <cstring>
#include <new>

template <>
struct keltra::PublicFields<KTSHADER>
    : keltra::UsualFields<KTSHADER, &KTSHADER::name, &KTSHADER::firstShader> {};
template class KTREGISTERED<KTSHADER>;

const unsigned int KTSHADER::params;
char KTSHADER::shaderPath[256] = "";
KTSHADER *KTSHADER::firstShader = nullptr;
KTSHADER *KTSHADER::currentShader = nullptr;
bool KTSHADER::active = false;
bool KTSHADER::enabled = false;
bool KTSHADER::skinningFlag = false, KTSHADER::pplFlag = false, KTSHADER::bloomFlag = false;
bool KTSHADER::shadowsFlag = false, KTSHADER::passthroughFlag = false, KTSHADER::emitterFlag = false;
bool KTSHADER::dofFlag = false, KTSHADER::skydomeFlag = false, KTSHADER::waterFlag = false;
bool KTSHADER::terrainFlag = false;

KTSHADER *KTSHADER::pplDirect, *KTSHADER::pplOmni, *KTSHADER::pplSpot;
KTSHADER *KTSHADER::pplDirectA, *KTSHADER::pplOmniA, *KTSHADER::pplSpotA;
KTSHADER *KTSHADER::pplDirectT, *KTSHADER::pplOmniT, *KTSHADER::pplSpotT;
KTSHADER *KTSHADER::pplDirectTA, *KTSHADER::pplOmniTA, *KTSHADER::pplSpotTA;
KTSHADER *KTSHADER::pplSpotS, *KTSHADER::pplSpotSA, *KTSHADER::pplSpotTS, *KTSHADER::pplSpotTSA;
KTSHADER *KTSHADER::passthrough, *KTSHADER::passthroughA;
KTSHADER *KTSHADER::passthroughZPass, *KTSHADER::passthroughZPassA;
KTSHADER *KTSHADER::bloomBright, *KTSHADER::bloomToneMapping, *KTSHADER::bloomCombine;
KTSHADER *KTSHADER::bloomForceAlpha, *KTSHADER::bloomV, *KTSHADER::bloomH;
KTSHADER *KTSHADER::gaussian, *KTSHADER::emitter, *KTSHADER::dofCombine, *KTSHADER::dof;
KTSHADER *KTSHADER::skydome, *KTSHADER::water, *KTSHADER::waterS;
KTSHADER *KTSHADER::terrainComplex, *KTSHADER::terrainSimple;

namespace {

// In the order in which they are made.
KTSHADER **const kNamed[] = {
    &KTSHADER::pplDirect,        &KTSHADER::pplOmni,
    &KTSHADER::pplSpot,          &KTSHADER::pplDirectA,
    &KTSHADER::pplOmniA,         &KTSHADER::pplSpotA,
    &KTSHADER::pplDirectT,       &KTSHADER::pplOmniT,
    &KTSHADER::pplSpotT,         &KTSHADER::pplDirectTA,
    &KTSHADER::pplOmniTA,        &KTSHADER::pplSpotTA,
    &KTSHADER::pplSpotS,         &KTSHADER::pplSpotSA,
    &KTSHADER::pplSpotTS,        &KTSHADER::pplSpotTSA,
    &KTSHADER::passthrough,      &KTSHADER::passthroughA,
    &KTSHADER::passthroughZPass, &KTSHADER::passthroughZPassA,
    &KTSHADER::bloomBright,      &KTSHADER::bloomToneMapping,
    &KTSHADER::bloomCombine,     &KTSHADER::bloomForceAlpha,
    &KTSHADER::bloomV,           &KTSHADER::bloomH,
    &KTSHADER::gaussian,         &KTSHADER::emitter,
    &KTSHADER::dofCombine,       &KTSHADER::dof,
    &KTSHADER::skydome,          &KTSHADER::water,
    &KTSHADER::waterS,           &KTSHADER::terrainComplex,
    &KTSHADER::terrainSimple,
};

constexpr char kNoFile[] = "[none]";

}  // namespace

KTSHADER::KTSHADER() : vertexReady(false), pixelReady(false), param() {
    id = enlist();
    keltra::writeName(name, "[shader %d]", id);
    keltra::copyText(vsFilename, kNoFile);
    keltra::copyText(psFilename, kNoFile);
}

KTSHADER::KTSHADER(const KTSHADER &other) : KTREGISTERED<KTSHADER>(other) { copyFields(other); }

KTSHADER &KTSHADER::operator=(const KTSHADER &other) {
    if (this == &other) return *this;
    copyFields(other);
    fieldsAssigned();
    return *this;
}

KTSHADER::~KTSHADER() { release(); }

void KTSHADER::copyFields(const KTSHADER &other) {
    id = other.id;
    std::memcpy(name, other.name, sizeof name);
    std::memcpy(vsFilename, other.vsFilename, sizeof vsFilename);
    std::memcpy(psFilename, other.psFilename, sizeof psFilename);
    vertexReady = other.vertexReady;
    pixelReady = other.pixelReady;
    std::memcpy(param, other.param, sizeof param);
    previous = other.previous;
    next = other.next;
}

void KTSHADER::release() {
    if (currentShader == this) currentShader = nullptr;
    for (KTSHADER **named : kNamed)
        if (*named == this) *named = nullptr;
    keltra::OnGone<KTSHADER>::notify({*this, isHeld()});
    delist();
}

bool KTSHADER::init() {
    if (active) return false;
    for (KTSHADER **named : kNamed) *named = new (std::nothrow) KTSHADER;
    active = true;
    return true;
}

// A start-up that fails later calls this without `cleanUp`: the objects made by `init` must be destroyed
// here.
bool KTSHADER::free() {
    for (KTSHADER **named : kNamed)
        if (*named) destroy(**named, &KTSHADER::release);
    active = false;
    return true;
}

bool KTSHADER::load(const char *, const char *, bool) { return true; }

bool KTSHADER::loadVertexShader(const char *, const char *) { return true; }

bool KTSHADER::loadPixelShader(const char *, const char *) { return true; }

bool KTSHADER::render(void *) {
    markHeld();
    return true;
}

bool KTSHADER::bindParam(unsigned int, const char *, bool) { return false; }

bool KTSHADER::bindTexture(unsigned int) { return false; }

bool KTSHADER::bindSizes(int, int) { return false; }

bool KTSHADER::bindNearAndFarPlane(float, float) { return false; }

bool KTSHADER::bindFocusAndRange(float, float) { return false; }

bool KTSHADER::bindLuminanceAndExposure(float, float) { return false; }

bool KTSHADER::bindBones(unsigned int, float *, float *, unsigned int, unsigned int) { return false; }

bool KTSHADER::unbindBones() { return false; }

bool KTSHADER::enable() {
    enabled = true;
    return true;
}

bool KTSHADER::disable() {
    if (enabled) {
        currentShader = nullptr;
        enabled = false;
    }
    return true;
}

void KTSHADER::reset() {
    currentShader = nullptr;
    disable();
}

bool KTSHADER::cleanUp() {
    keltra::notifyGoneFrom(firstRegistered());
    return destroyAll(&KTSHADER::release);
}

KTSHADER *KTSHADER::findByName(const char *wanted) { return findRegistered(wanted); }

KTSHADER *KTSHADER::findById(unsigned int wanted) { return findRegistered(wanted); }

unsigned int KTSHADER::getNumberOfShaders() { return count(); }

void KTSHADER::setPath(const char *path) { keltra::takeText(shaderPath, path, KT_CALL("KTSHADER::setPath")); }

void KTSHADER::setName(const char *text) {
    if (keltra::takeName(name, text, KT_CALL("KTSHADER::setName"))) nameChanged();
}
