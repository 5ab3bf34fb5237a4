// SPDX-License-Identifier: Zlib
#include <keltra/fbo.h>

#include <keltra/opengl.h>
#include <keltra/texture.h>

#include "core/holders.h"
#include "foundation/argument.h"
#include "foundation/fault.h"
#include "foundation/registry.h"

#include <GLES/gl.h>

#include <cstring>

template <>
struct keltra::PublicFields<KTFBO> : keltra::UsualFields<KTFBO, &KTFBO::name, &KTFBO::firstFbo> {};
template class KTREGISTERED<KTFBO>;

KTFBO *KTFBO::firstFbo = nullptr;
KTFBO *KTFBO::currentFbo = nullptr;
KTLISTED<KTFBO> *KTFBO::allFbos = nullptr;
const keltra::OnGone<KTTEXTURE> KTFBO::onTextureGone(&KTFBO::forgetTexture);

KTFBO::KTFBO() : texture(nullptr), sizeX(0), sizeY(0), glId(0) {
    joinList(allFbos);
    id = enlist();
    keltra::writeName(name, "[fbo %d]", id);
}

KTFBO::KTFBO(const KTFBO &other) : KTREGISTERED<KTFBO>(other), KTLISTED<KTFBO>() {
    joinList(allFbos);
    copyFields(other);
}

KTFBO &KTFBO::operator=(const KTFBO &other) {
    if (this == &other) return *this;
    if (currentFbo == this) currentFbo = nullptr;
    copyFields(other);
    fieldsAssigned();
    return *this;
}

KTFBO::~KTFBO() { release(); }

void KTFBO::copyFields(const KTFBO &other) {
    id = other.id;
    std::memcpy(name, other.name, sizeof name);
    previous = other.previous;
    next = other.next;
    texture = other.texture;
    sizeX = other.sizeX;
    sizeY = other.sizeY;
    glId = other.glId;
}

void KTFBO::release() {
    if (currentFbo == this) currentFbo = nullptr;
    for (KTFBO *&entry : KTOPENGL::fbo)
        if (entry == this) entry = nullptr;
    delist();
}

void KTFBO::forgetTexture(const keltra::Gone<KTTEXTURE> &gone) {
    visitList(allFbos, gone.mostVisited(), [&gone](KTFBO &target) { gone.clear(target.texture); });
}

bool KTFBO::isOk() const { return KTOPENGL::FBOFlag; }

bool KTFBO::bindTexture(int, KTTEXTURE *target) {
    if (!target) return keltra::failNull(KT_CALL("KTFBO::bindTexture"), KT_TEXT("target"));
    if (!KTOPENGL::FBOFlag) return false;
    texture = target;
    texture->markHeld();
    sizeX = static_cast<int>(target->sizeX);
    sizeY = static_cast<int>(target->sizeY);
    return true;
}

bool KTFBO::bindRenderBuffer(int, int width, int height) {
    if (!KTOPENGL::FBOFlag) return false;
    sizeX = width;
    sizeY = height;
    return true;
}

bool KTFBO::render(void *) {
    if (!KTOPENGL::FBOFlag || currentFbo == this) return true;
    glViewport(0, 0, sizeX, sizeY);
    currentFbo = this;
    return true;
}

void KTFBO::unbind() {
    if (KTOPENGL::FBOFlag) currentFbo = nullptr;
}

bool KTFBO::blur(KTFBO *, KTSHADER *, int) { return true; }

bool KTFBO::computeLuminance(float *) { return true; }

bool KTFBO::cleanUp() { return destroyAll(&KTFBO::release); }

unsigned int KTFBO::getNumberOfFbos() { return count(); }
