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

bool readMaxima(KTEMITTER &emitter, const char *key, const TiXmlElement &element) {
    const struct {
        const char *key;
        unsigned int &value;
    } maxima[] = {
        {"maxEnergy", emitter.maximumEnergy},
        {"maxVelocity", emitter.maxVelocity},
        {"maxParticleSize", emitter.maximumParticuleSize},
        {"maxSpin", emitter.maximumSpin},
    };
    for (const auto &maximum : maxima) {
        if (std::strcmp(maximum.key, key) != 0) continue;
        readMaximum(element, maximum.value);
        return true;
    }
    return false;
}

bool readReals(KTEMITTER &emitter, const char *key, const TiXmlElement &element) {
    const struct {
        const char *key, *attribute;
        float &value;
    } reals[] = {
        {"maxAngle", "value", emitter.maximumAngle}, {"radius", "value", emitter.radius},
        {"spinning", "value", emitter.spinning},     {"emitterSize", "x", emitter.sizeX},
        {"emitterSize", "y", emitter.sizeY},
    };
    bool found = false;
    for (const auto &real : reals) {
        if (std::strcmp(real.key, key) != 0) continue;
        readReal(element, real.attribute, real.value);
        found = true;
    }
    return found;
}

// Deliberate: the "center" of a file is the node's position, not the centre of the new particles; emitter
// files rely on it.
bool readVectors(KTEMITTER &emitter, const char *key, const TiXmlElement &element) {
    const struct {
        const char *key;
        R3XVECTOR3D &value;
    } vectors[] = {
        {"center", emitter.position},   {"gravity", emitter.gravity},       {"rotation", emitter.rotation},
        {"upVector", emitter.upVector}, {"colorStart", emitter.colorStart}, {"colorEnd", emitter.colorEnd},
    };
    for (const auto &vector : vectors) {
        if (std::strcmp(vector.key, key) != 0) continue;
        readVector(element, vector.value);
        return true;
    }
    return false;
}

void readTexture(KTEMITTER &emitter, const TiXmlElement &element) {
    const char *file = element.Attribute("value");
    if (!file) return;
    const keltra::FaultOptional optional;
    if (KTTEXTURE *texture = emitter.getTexture()) texture->load(file);
}

void readSetting(KTEMITTER &emitter, const TiXmlElement &element) {
    const char *key = element.Value();
    if (readMaxima(emitter, key, element) || readReals(emitter, key, element) ||
        readVectors(emitter, key, element))
        return;
    if (std::strcmp(key, "type") == 0) {
        readInteger(element, emitter.emitterType);
    } else if (std::strcmp(key, "nbOfParticles") == 0) {
        int number = emitter.getNumberOfParticles();
        readInteger(element, number);
        emitter.setNumberOfParticles(number);
    } else if (std::strcmp(key, "texture") == 0) {
        readTexture(emitter, element);
    } else if (std::strcmp(key, "blendingSrc") == 0) {
        readFactor(element, true, emitter.blendingSrc);
    } else if (std::strcmp(key, "blendingDst") == 0) {
        readFactor(element, false, emitter.blendingDst);
    }
}

}  // namespace

bool KTEMITTER::load(const char *filename) {
    setNumberOfParticles(0);
    setTexture(nullptr);
    setTexture(new (std::nothrow) KTTEXTURE);
    keltra::LoadScope scope("KTEMITTER::load", filename);
    if (!filename) return scope.failNull("filename");
    if (!getTexture()) keltra::warnMemory("KTEMITTER::load");
    TiXmlDocument document;
    if (!keltra::loadXmlDocument(filename, document, &scope)) return false;
    keltra::checkEmitter(document, scope);
    const TiXmlElement *root = keltra::emitterRoot(document);
    if (!root) return true;
    for (const TiXmlElement *child = root->FirstChildElement(); child; child = child->NextSiblingElement()) {
        scope.setLine(keltra::xmlLine(*child));
        readSetting(*this, *child);
    }
    colorDelta = colorEnd - colorStart;
    return true;
}
