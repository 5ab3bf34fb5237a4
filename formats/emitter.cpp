// SPDX-License-Identifier: Zlib
#include "formats/emitter.h"

#include <tinyxml.h>

#include <cstring>

namespace keltra {

namespace {

// Blend factors by GL's numbers.
constexpr int kZero = 0, kOne = 1, kSrcColor = 0x300, kOneMinusSrcColor = 0x301, kSrcAlpha = 0x302,
              kOneMinusDstAlpha = 0x305, kDstColor = 0x306, kSrcAlphaSaturate = 0x308;

}  // namespace

const char kEmitterRoot[] = "emitter";

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

XmlNames emitterAttributes(EmitterValue kind) {
    static constexpr char kLists[] = "value\0\0x\0y\0\0x\0y\0z\0";
    return kLists + (kind == EmitterValue::kSize ? 7 : kind == EmitterValue::kVector ? 12 : 0);
}

bool isBlendFactor(int code, bool isSource) {
    const bool isShared = code == kZero || code == kOne || (code >= kSrcAlpha && code <= kOneMinusDstAlpha);
    const bool isOfSource = code >= kDstColor && code <= kSrcAlphaSaturate;
    const bool isOfDestination = code == kSrcColor || code == kOneMinusSrcColor;
    return isShared || (isSource ? isOfSource : isOfDestination);
}

const TiXmlElement *emitterRoot(const TiXmlDocument &document) {
    const TiXmlElement *root = document.RootElement();
    return root && std::strcmp(root->Value(), kEmitterRoot) == 0 ? root : nullptr;
}

}  // namespace keltra
