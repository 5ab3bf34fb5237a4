#include <keltra/fbo.h>
#include <keltra/opengl.h>
#include <keltra/texture.h>

#include "foundation/fault.h"
#include "foundation/registry.h"

#include <GLES/gl.h>

#include <cstdio>
#include <cstring>

template class KTREGISTERED<KTFBO>;

KTFBO *KTFBO::firstFbo = nullptr;
KTFBO *KTFBO::currentFbo = nullptr;

KTFBO::KTFBO() : texture(nullptr), sizeX(0), sizeY(0), glId(0) {
    id = enlist();
    std::snprintf(name, sizeof name, "[fbo %u]", id);
}

KTFBO::KTFBO(const KTFBO &other) : KTREGISTERED<KTFBO>(other) { copyFields(other); }

KTFBO &KTFBO::operator=(const KTFBO &other) {
    if (this == &other) return *this;
    if (currentFbo == this) currentFbo = nullptr;
    copyFields(other);
    return *this;
}

KTFBO::~KTFBO() { letGo(*this); }

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

void KTFBO::setLink(KTFBO &target, KTFBO *before, KTFBO *after) {
    target.previous = before;
    target.next = after;
}

void KTFBO::letGo(KTFBO &target) {
    if (currentFbo == &target) currentFbo = nullptr;
    for (KTFBO *&entry : KTOPENGL::fbo)
        if (entry == &target) entry = nullptr;
    target.delist();
}

void KTFBO::forgetTexture(const KTTEXTURE *gone) {
    for (KTFBO *target = firstAlive(); target; target = target->nextAlive())
        if (target->texture == gone) target->texture = nullptr;
}

bool KTFBO::isOk() const { return KTOPENGL::FBOFlag; }

bool KTFBO::bindTexture(int, KTTEXTURE *target) {
    if (!target) return keltra::failNull("KTFBO::bindTexture", "target");
    if (!KTOPENGL::FBOFlag) return false;
    texture = target;
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

bool KTFBO::cleanUp() { return destroyAll(); }

unsigned int KTFBO::getNumberOfFbos() { return count(); }
