// SPDX-License-Identifier: Zlib
#include <keltra/emitter.h>

#include <keltra/element.h>
#include <keltra/foundation.h>
#include <keltra/glbridge.h>
#include <keltra/light.h>
#include <keltra/material.h>
#include <keltra/opengl.h>
#include <keltra/shader.h>
#include <keltra/texture.h>

#include "core/gl_state.h"
#include "core/holders.h"
#include "formats/blend_factor.h"
#include "formats/limits.h"
#include "foundation/cold.h"
#include "foundation/fault.h"
#include "foundation/quiet.h"
#include "math/square_root.h"
#include "scene/billboard.h"

#include <GLES/gl.h>

#include <algorithm>
#include <cstdlib>
#include <new>

static_assert(KTEMITTER::maxParticles == keltra::kMaxParticles, "as the check of emitter files says");

const unsigned int KTEMITTER::poolSize;
const unsigned int KTEMITTER::maxParticles;
KTPARTICLE *KTEMITTER::particle = nullptr;
unsigned int KTEMITTER::numberbOfParticlesUsed = 0;
R3XVECTOR4D *KTEMITTER::vertexArray = nullptr;
R3XVECTOR2D *KTEMITTER::uvArray = nullptr;
R3XVECTOR2D *KTEMITTER::uvSecondaryArray = nullptr;
unsigned char *KTEMITTER::colorArray = nullptr;
KTLISTED<KTEMITTER> *KTEMITTER::allEmitters = nullptr;
const keltra::OnGone<KTTEXTURE> KTEMITTER::onTextureGone(&KTEMITTER::forgetTexture);

namespace {

using keltra::kColorBytes;
using keltra::kCorners;

enum EmitterType { kPoint, kRectangle, kDisc };

constexpr unsigned int kVertices = KTEMITTER::maxParticles * kCorners;
constexpr float kAlphaLimit = 0.2f;

template <class T>
T *newRecords(unsigned int count) {
    T *records = static_cast<T *>(keltra::allocate(count * static_cast<unsigned int>(sizeof(T))));
    for (unsigned int i = 0; records && i < count; ++i) new (records + i) T();
    return records;
}

template <class T>
void freeRecords(T *&records) {
    if (records) vnfFree(records);
    records = nullptr;
}

// A random number is taken for a maximum of 0 too, so that the others stay the same.
float randomBelow(unsigned int maximum) {
    const unsigned int number = static_cast<unsigned int>(std::rand());
    return maximum ? static_cast<float>(number % maximum) : 0.0f;
}

// From 0 to 1, both included, in the steps of a 15-bit generator wherever the library's is wider.
float randomUnit() { return static_cast<float>(std::rand() & 0x7fff) * (1.0f / 32767.0f); }

float randomWithin(float extent) { return randomUnit() * 2.0f * extent - extent; }

R3XVECTOR3D randomColor() {
    const float r = randomBelow(100) * 0.01f, g = randomBelow(100) * 0.01f;
    return R3XVECTOR3D(r, g, randomBelow(100) * 0.01f);
}

float randomDifference(unsigned int maximum) {
    const float first = randomBelow(maximum) * 0.1f;
    return first - randomBelow(maximum) * 0.1f;
}

R3XVECTOR3D randomAlong(const R3XVECTOR3D &direction, unsigned int maximum) {
    const float x = randomBelow(maximum) * direction.x, y = randomBelow(maximum) * direction.y;
    return R3XVECTOR3D(x, y, randomBelow(maximum) * direction.z);
}

// The GL refuses other factors; the default takes their place.
GLenum blendFactor(unsigned int factor, bool isSource) {
    if (keltra::isBlendFactor(static_cast<int>(factor), isSource)) return factor;
    return isSource ? GL_SRC_ALPHA : GL_ONE_MINUS_SRC_ALPHA;
}

int clampedNumber(int number) { return std::clamp(number, 0, static_cast<int>(KTEMITTER::maxParticles)); }

}  // namespace

KTPARTICLE::KTPARTICLE()
    : color(0.0f, 0.0f, 0.0f, 1.0f),
      spinSpeed(0.0f),
      spinAngle(0.0f),
      size(0.0f),
      initialEnergy(0.0f),
      energy(0.0f),
      used(false) {}

KELTRA_COLD KTEMITTER::KTEMITTER()
    : emitterType(kPoint),
      initialized(false),
      numberOfParticles(0),
      maximumEnergy(100),
      maxVelocity(100),
      maximumParticuleSize(100),
      maximumSpin(1),
      spinning(0.0f),
      maximumAngle(0.0f),
      sizeX(10.0f),
      sizeY(10.0f),
      radius(10.0f),
      upVector(0.0f, 1.0f, 0.0f),
      texture(nullptr),
      blendingSrc(GL_SRC_ALPHA),
      blendingDst(GL_ONE_MINUS_SRC_ALPHA) {
    KTLISTED<KTEMITTER>::joinList(allEmitters);
    std::fill(slot, slot + maxParticles, -1);
    colorStart = randomColor();
    setColorEnd(randomColor());
    joinClass(KT_EMITTER);
    setIdentity(KT_EMITTER, "[emitter %d]");
}

KELTRA_COLD KTEMITTER::KTEMITTER(const KTEMITTER &other) : KTNODE(other), KTLISTED<KTEMITTER>() {
    joinClass(KT_EMITTER);
    KTLISTED<KTEMITTER>::joinList(allEmitters);
    std::fill(slot, slot + maxParticles, -1);
    copyEmitter(other);
}

KELTRA_COLD KTEMITTER &KTEMITTER::operator=(const KTEMITTER &other) {
    if (this == &other) return *this;
    KTNODE::operator=(other);
    releaseSlots(0);
    destroyUnused(textureUse.take(texture));
    copyEmitter(other);
    return *this;
}

KTEMITTER::~KTEMITTER() {
    releaseSlots(0);
    destroyUnused(textureUse.take(texture));
}

// Copies everything but the particles, which the other keeps.
KELTRA_COLD void KTEMITTER::copyEmitter(const KTEMITTER &other) {
    emitterType = other.emitterType;
    initialized = false;
    numberOfParticles = other.numberOfParticles;
    maximumEnergy = other.maximumEnergy;
    maxVelocity = other.maxVelocity;
    maximumParticuleSize = other.maximumParticuleSize;
    maximumSpin = other.maximumSpin;
    spinning = other.spinning;
    center = other.center;
    gravity = other.gravity;
    maximumAngle = other.maximumAngle;
    sizeX = other.sizeX;
    sizeY = other.sizeY;
    radius = other.radius;
    upVector = other.upVector;
    colorDelta = other.colorDelta;
    colorStart = other.colorStart;
    colorEnd = other.colorEnd;
    texture = other.texture;
    blendingSrc = other.blendingSrc;
    blendingDst = other.blendingDst;
}

KELTRA_COLD bool KTEMITTER::init() {
    if (particle) return keltra::failState(KT_CALL("KTEMITTER::init"), keltra::kActive);
    particle = newRecords<KTPARTICLE>(poolSize);
    vertexArray = newRecords<R3XVECTOR4D>(kVertices);
    uvArray = newRecords<R3XVECTOR2D>(kVertices);
    uvSecondaryArray = newRecords<R3XVECTOR2D>(kVertices);
    colorArray = newRecords<unsigned char>(kVertices * kColorBytes);
    if (!particle || !vertexArray || !uvArray || !uvSecondaryArray || !colorArray) {
        freeArrays();
        return keltra::failMemory(KT_CALL("KTEMITTER::init"));
    }
    const R3XVECTOR2D square[kCorners] = {{0.0f, 0.0f}, {1.0f, 0.0f}, {1.0f, 1.0f}, {0.0f, 1.0f}};
    for (unsigned int i = 0; i < kVertices; ++i) {
        const R3XVECTOR2D uv = square[i % kCorners];
        vertexArray[i].set(uv.x * 2.0f - 1.0f, uv.y * 2.0f - 1.0f, 0.0f, 1.0f);
        uvArray[i] = uvSecondaryArray[i] = uv;
    }
    numberbOfParticlesUsed = 0;
    return true;
}

KELTRA_COLD bool KTEMITTER::free() {
    if (!particle) return keltra::failState(KT_CALL("KTEMITTER::free"), keltra::kInactive);
    KTLISTED<KTEMITTER>::visitList(allEmitters, ~0u, [](KTEMITTER &emitter) {
        emitter.releaseSlots(0);
        emitter.initialized = false;
    });
    numberbOfParticlesUsed = 0;
    freeArrays();
    return true;
}

KELTRA_COLD void KTEMITTER::freeArrays() {
    freeRecords(particle);
    freeRecords(vertexArray);
    freeRecords(uvArray);
    freeRecords(uvSecondaryArray);
    freeRecords(colorArray);
}

KELTRA_COLD void KTEMITTER::setColorStart(R3XVECTOR3D value) {
    colorStart = value;
    colorDelta = colorEnd - colorStart;
}

KELTRA_COLD void KTEMITTER::setColorEnd(R3XVECTOR3D value) {
    colorEnd = value;
    colorDelta = colorEnd - colorStart;
}

KELTRA_COLD void KTEMITTER::setNumberOfParticles(int number) {
    numberOfParticles = number;
    const int wanted = clampedNumber(number);
    releaseSlots(static_cast<unsigned int>(wanted));
    if (wanted > 0 && slot[wanted - 1] < 0) initialized = false;
}

void KTEMITTER::setTexture(KTTEXTURE *value) { destroyUnused(textureUse.set(texture, value)); }

void KTEMITTER::destroyUnused(KTTEXTURE *former) {
    if (former && former->getReferences() <= 0) KTTEXTURE::destroy(*former);
}

void KTEMITTER::forgetTexture(const keltra::Gone<KTTEXTURE> &gone) {
    KTLISTED<KTEMITTER>::visitList(allEmitters, gone.mostVisited(), [&gone](KTEMITTER &emitter) {
        if (gone.has(emitter.texture)) emitter.textureUse.forget(emitter.texture);
    });
}

// The slots are public: an index outside the pool holds nothing.
KTPARTICLE *KTEMITTER::heldParticle(unsigned int index) const {
    const unsigned int record = static_cast<unsigned int>(slot[index]);
    return particle && record < poolSize ? particle + record : nullptr;
}

KELTRA_COLD void KTEMITTER::releaseSlots(unsigned int kept) {
    for (unsigned int i = kept; i < maxParticles; ++i) {
        KTPARTICLE *held = heldParticle(i);
        if (held && held->used) {
            held->used = false;
            --numberbOfParticlesUsed;
        }
        slot[i] = -1;
    }
}

// Deliberate: with too few free records the emitter keeps those that it got and does not retry; applications
// rely on success.
KELTRA_COLD bool KTEMITTER::initialize() {
    if (!particle) return keltra::failState(KT_CALL("KTEMITTER::initialize"), keltra::kInactive);
    if (numberOfParticles != clampedNumber(numberOfParticles))
        keltra::warnRange(KT_CALL("KTEMITTER::initialize"), KT_TEXT("numberOfParticles"), numberOfParticles,
                          maxParticles);
    numberOfParticles = clampedNumber(numberOfParticles);
    const unsigned int wanted = static_cast<unsigned int>(numberOfParticles);
    releaseSlots(wanted);
    unsigned int next = 0;
    for (unsigned int record = 0; record < poolSize; ++record) {
        while (next < wanted && slot[next] >= 0) ++next;
        if (next == wanted) break;
        if (particle[record].used) continue;
        particle[record].used = true;
        ++numberbOfParticlesUsed;
        slot[next] = static_cast<int>(record);
    }
    if (wanted > 0 && slot[wanted - 1] < 0)
        keltra::warnFull(KT_CALL("KTEMITTER::initialize"), KT_TEXT("particles of all emitters"), poolSize);
    for (unsigned int i = 0; i < wanted; ++i) updateParticle(heldParticle(i));
    initialized = true;
    return true;
}

bool KTEMITTER::updateParticle(KTPARTICLE *spawned) {
    if (!spawned) return false;
    spawned->energy = spawned->initialEnergy = randomBelow(maximumEnergy) * 0.01f;
    spawned->color = colorStart;
    spawned->size = randomBelow(maximumParticuleSize) * 0.1f;
    spawned->spinSpeed = randomBelow(maximumSpin);
    spawned->spinAngle = spinning;
    if (emitterType == kPoint) {
        const float z = randomDifference(maxVelocity), y = randomDifference(maxVelocity);
        spawned->velocity.set(randomDifference(maxVelocity), y, z);
        spawned->position = center;
    } else if (emitterType == kRectangle) {
        spawned->velocity = randomAlong(upVector, maxVelocity);
        const float x = randomWithin(sizeX);
        spawned->position = center + R3XVECTOR3D(x, 0.0f, randomWithin(sizeY));
    } else if (emitterType == kDisc) {
        placeOnDisc(*spawned);
        spawned->velocity = randomAlong(upVector, maxVelocity);
    }
    return true;
}

// Deliberate: the centre is subtracted, unlike the rectangle's, and its height is not used; emitter files
// rely on both.
void KTEMITTER::placeOnDisc(KTPARTICLE &spawned) const {
    const float a = randomWithin(radius);
    // The sine of the arc cosine of a / radius, times the radius. A disc without a radius is a point.
    const float ratio = radius != 0.0f ? a / radius : 0.0f;
    float b = keltra::squareRoot(std::max(0.0f, 1.0f - ratio * ratio)) * radius;
    if (std::rand() & 1) b = -b;
    const float x = randomUnit() * a - center.x;
    spawned.position.set(x, 0.0f, randomUnit() * b - center.z);
}

bool KTEMITTER::render(void *data) {
    if (!data) return keltra::failNull(KT_CALL("KTEMITTER::render"), KT_TEXT("data"));
    if (!particle) return keltra::failState(KT_CALL("KTEMITTER::render"), keltra::kInactive);
    if (!initialized && !initialize()) return false;
    KT_glLoadMatrixf(static_cast<KTELEMENT *>(data)->getMatrix()->m);
    const bool wasLit = KTLIGHT::getLighting();
    if (wasLit) KTLIGHT::lightingOff();
    KTSHADER::disable();
    KTOPENGL::blendingOn();
    keltra::setBlendFunction(blendFactor(blendingSrc, true), blendFactor(blendingDst, false));
    keltra::setDepthWrites(false);
    keltra::setAlphaTest(true);
    KT_glAlphaFunc(GL_GREATER, kAlphaLimit);
    keltra::suspendCulling(keltra::kByEmitter);

    updateParticles();
    draw();

    keltra::setAlphaTest(false);
    keltra::setDepthWrites(true);
    KTOPENGL::blendingOff();
    KTTEXTURE::texturingOff(KTTEXTURE::channels);
    keltra::setBlendFunction(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    if (wasLit) KTLIGHT::lightingOn();
    keltra::resumeCulling(keltra::kByEmitter);
    KTMATERIAL::reset();
    return true;
}

// Deliberate: four vertices a particle as a list of triangles; textures of emitters are made for it, see the
// header.
void KTEMITTER::draw() {
    if (texture)
        texture->render(nullptr);
    else
        KTTEXTURE::texturingOff(KTTEXTURE::channels);
    KTOPENGL::normalArrayOff();  // a mesh's would be shorter than what is drawn
    KTOPENGL::vertexArrayOn();
    KTOPENGL::colorArrayOn();
    KTOPENGL::textureArrayOn();
    glVertexPointer(4, GL_FLOAT, 0, vertexArray);
    glColorPointer(4, GL_UNSIGNED_BYTE, 0, colorArray);
    glTexCoordPointer(2, GL_FLOAT, 0, uvArray);
    keltra::useTexture();
    glDrawArrays(GL_TRIANGLES, 0, static_cast<GLsizei>(kCorners) * clampedNumber(numberOfParticles));
    KTOPENGL::vertexArrayOff();
    KTOPENGL::colorArrayOff();
    KTOPENGL::textureArrayOff();
}
