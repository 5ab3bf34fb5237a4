// SPDX-License-Identifier: Zlib
#include <keltra/emitter.h>
#include <keltra/texture.h>

#include "formats/emitter.h"
#include "formats/xml_check.h"
#include "formats/xml_document.h"

#include <tinyxml.h>

#include <cstring>
#include <new>

namespace {

// An attribute that is missing leaves its value as it is; text that is not a number is 0.
void readInteger(const TiXmlElement &element, int &value) {
    if (const char *text = element.Attribute("value")) value = keltra::xmlInteger(text);
}

// A negative maximum counts as 0.
void readMaximum(const TiXmlElement &element, unsigned int &value) {
    const char *text = element.Attribute("value");
    if (!text) return;
    const int number = keltra::xmlInteger(text);
    value = number > 0 ? static_cast<unsigned int>(number) : 0;
}

void readReal(const TiXmlElement &element, const char *name, float &value) {
    if (const char *text = element.Attribute(name)) value = keltra::xmlFloat(text, 0.0f);
}

void readVector(const TiXmlElement &element, R3XVECTOR3D &value) {
    readReal(element, "x", value.x);
    readReal(element, "y", value.y);
    readReal(element, "z", value.z);
}

void readFactor(const TiXmlElement &element, bool isSource, unsigned int &factor) {
    int code = static_cast<int>(factor);
    readInteger(element, code);
    if (keltra::isBlendFactor(code, isSource)) factor = static_cast<unsigned int>(code);
}

void readParticles(KTEMITTER &emitter, const TiXmlElement &element) {
    int number = emitter.getNumberOfParticles();
    readInteger(element, number);
    emitter.setNumberOfParticles(number);
}

void readTexture(KTEMITTER &emitter, const TiXmlElement &element) {
    const char *file = element.Attribute("value");
    if (!file) return;
    const keltra::FaultOptional optional;
    if (KTTEXTURE *texture = emitter.getTexture()) texture->load(file);
}

// Deliberate: the "center" of a file is the node's position, not the centre of the new particles; emitter
// files rely on it.
void readSetting(KTEMITTER &emitter, const TiXmlElement &element) {
    const keltra::EmitterSetting *setting = keltra::findEmitterSetting(element.Value());
    if (!setting) return;
    switch (setting - keltra::kEmitterSettings) {
        case keltra::kEmitterType:
            return readInteger(element, emitter.emitterType);
        case keltra::kEmitterTexture:
            return readTexture(emitter, element);
        case keltra::kEmitterParticles:
            return readParticles(emitter, element);
        case keltra::kEmitterMaxEnergy:
            return readMaximum(element, emitter.maximumEnergy);
        case keltra::kEmitterMaxVelocity:
            return readMaximum(element, emitter.maxVelocity);
        case keltra::kEmitterMaxAngle:
            return readReal(element, "value", emitter.maximumAngle);
        case keltra::kEmitterSize:
            readReal(element, "x", emitter.sizeX);
            return readReal(element, "y", emitter.sizeY);
        case keltra::kEmitterRadius:
            return readReal(element, "value", emitter.radius);
        case keltra::kEmitterMaxParticleSize:
            return readMaximum(element, emitter.maximumParticuleSize);
        case keltra::kEmitterMaxSpin:
            return readMaximum(element, emitter.maximumSpin);
        case keltra::kEmitterSpinning:
            return readReal(element, "value", emitter.spinning);
        case keltra::kEmitterCenter:
            return readVector(element, emitter.position);
        case keltra::kEmitterRotation:
            return readVector(element, emitter.rotation);
        case keltra::kEmitterGravity:
            return readVector(element, emitter.gravity);
        case keltra::kEmitterUpVector:
            return readVector(element, emitter.upVector);
        case keltra::kEmitterColorStart:
            return readVector(element, emitter.colorStart);
        case keltra::kEmitterColorEnd:
            return readVector(element, emitter.colorEnd);
        default:
            const bool isSource = setting->kind == keltra::EmitterValue::kSourceFactor;
            return readFactor(element, isSource, isSource ? emitter.blendingSrc : emitter.blendingDst);
    }
}

}  // namespace

bool KTEMITTER::load(const char *filename) {
    setNumberOfParticles(0);
    setTexture(nullptr);
    setTexture(new (std::nothrow) KTTEXTURE);
    keltra::FaultScope scope(KT_CALL("KTEMITTER::load"), filename);
    if (!filename) return scope.failNull(KT_TEXT("filename"));
    if (!getTexture()) keltra::warnMemory(KT_CALL("KTEMITTER::load"));
    TiXmlDocument document;
    if (!keltra::loadXmlDocument(filename, document, &scope)) return false;
    keltra::checkEmitter(document);
    const TiXmlElement *root = keltra::emitterRoot(document);
    if (!root) return true;
    for (const TiXmlElement *child = root->FirstChildElement(); child; child = child->NextSiblingElement()) {
        scope.setLine(keltra::xmlLine(*child));
        readSetting(*this, *child);
    }
    colorDelta = colorEnd - colorStart;
    return true;
}
