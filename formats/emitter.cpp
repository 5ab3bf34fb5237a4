// SPDX-License-Identifier: Zlib
#include "formats/emitter.h"

#include "formats/limits.h"
#include "formats/xml_check.h"
#include "formats/xml_document.h"

#include <tinyxml.h>

#include <climits>
#include <cstring>

namespace keltra {

namespace {

constexpr char kRootName[] = "emitter";

// Blend factors by GL's numbers.
constexpr int kZero = 0, kOne = 1, kSrcColor = 0x300, kOneMinusSrcColor = 0x301, kSrcAlpha = 0x302,
              kOneMinusDstAlpha = 0x305, kDstColor = 0x306, kSrcAlphaSaturate = 0x308;

const char *const kValue[] = {"value", nullptr}, *const kSizes[] = {"x", "y", nullptr},
                  *const kComponents[] = {"x", "y", "z", nullptr};

class EmitterCheck {
   public:
    explicit EmitterCheck(FaultSink &sink) : check(sink, true) {}

    void root(const TiXmlElement &root) { check.unknownElement(root, kRootName); }

    void element(const TiXmlElement &element) {
        const EmitterSetting *setting = findEmitterSetting(element.Value());
        if (!setting) {
            NearestName nearest(element.Value());
            for (const EmitterSetting &known : kEmitterSettings) nearest.offer(known.name);
            return check.unknownElement(element, nearest.name());
        }
        const char *const *names = emitterAttributes(setting->kind);
        check.attributes(element, names);
        for (; *names; ++names) checkValue(element, *names, setting->kind);
    }

   private:
    void checkValue(const TiXmlElement &element, const char *attribute, EmitterValue kind) {
        switch (kind) {
            case EmitterValue::kInteger:
                return check.integer(element, attribute, INT_MIN, INT_MAX);
            case EmitterValue::kNumber:
                return check.integer(element, attribute, 0, kMaxParticles);
            case EmitterValue::kMaximum:
                return check.integer(element, attribute, 0, INT_MAX);
            case EmitterValue::kReal:
            case EmitterValue::kSize:
            case EmitterValue::kVector:
                return check.real(element, attribute);
            case EmitterValue::kText:
                if (!element.Attribute(attribute)) check.missing(element, attribute);
                return;
            default:
                return checkFactor(element, attribute, kind == EmitterValue::kSourceFactor);
        }
    }

    void checkFactor(const TiXmlElement &element, const char *attribute, bool isSource) {
        check.integer(element, attribute, INT_MIN, INT_MAX);
        const char *text = element.Attribute(attribute);
        if (text && !isBlendFactor(xmlInteger(text), isSource))
            check.value(element, attribute, text, faultText("a blend factor of that side"));
    }

    XmlCheck check;
};

}  // namespace

const EmitterSetting kEmitterSettings[kEmitterSettingCount] = {
    {"type", EmitterValue::kInteger},
    {"texture", EmitterValue::kText},
    {"nbOfParticles", EmitterValue::kNumber},
    {"maxEnergy", EmitterValue::kMaximum},
    {"maxVelocity", EmitterValue::kMaximum},
    {"maxAngle", EmitterValue::kReal},
    {"emitterSize", EmitterValue::kSize},
    {"radius", EmitterValue::kReal},
    {"maxParticleSize", EmitterValue::kMaximum},
    {"maxSpin", EmitterValue::kMaximum},
    {"spinning", EmitterValue::kReal},
    {"center", EmitterValue::kVector},
    {"rotation", EmitterValue::kVector},
    {"gravity", EmitterValue::kVector},
    {"upVector", EmitterValue::kVector},
    {"colorStart", EmitterValue::kVector},
    {"colorEnd", EmitterValue::kVector},
    {"blendingSrc", EmitterValue::kSourceFactor},
    {"blendingDst", EmitterValue::kDestinationFactor},
};

const EmitterSetting *findEmitterSetting(const char *name) {
    for (const EmitterSetting &setting : kEmitterSettings)
        if (std::strcmp(setting.name, name) == 0) return &setting;
    return nullptr;
}

const char *const *emitterAttributes(EmitterValue kind) {
    if (kind == EmitterValue::kSize) return kSizes;
    return kind == EmitterValue::kVector ? kComponents : kValue;
}

bool isBlendFactor(int code, bool isSource) {
    const bool isShared = code == kZero || code == kOne || (code >= kSrcAlpha && code <= kOneMinusDstAlpha);
    const bool isOfSource = code >= kDstColor && code <= kSrcAlphaSaturate;
    const bool isOfDestination = code == kSrcColor || code == kOneMinusSrcColor;
    return isShared || (isSource ? isOfSource : isOfDestination);
}

const TiXmlElement *emitterRoot(const TiXmlDocument &document) {
    const TiXmlElement *root = document.RootElement();
    return root && std::strcmp(root->Value(), kRootName) == 0 ? root : nullptr;
}

void checkEmitter(const TiXmlDocument &document, FaultSink &sink) {
    EmitterCheck check(sink);
    const TiXmlElement *root = emitterRoot(document);
    if (!root) {
        if (document.RootElement()) check.root(*document.RootElement());
        return;
    }
    for (const TiXmlElement *child = root->FirstChildElement(); child; child = child->NextSiblingElement())
        check.element(*child);
}

}  // namespace keltra
