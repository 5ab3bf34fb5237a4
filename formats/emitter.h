// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FORMATS_EMITTER_H
#define KELTRA_FORMATS_EMITTER_H

// The settings of emitter files.

#include "formats/blend_factor.h"
#include "formats/xml_value.h"
#include "foundation/hidden.h"

#include <cstddef>

class TiXmlDocument;
class TiXmlElement;

namespace keltra {

using EmitterValue = XmlValue;

KT_HIDDEN extern const char kEmitterRoot[sizeof "emitter"];

struct EmitterSetting {
    char name[16];
    EmitterValue kind;
};

enum EmitterKey {
    kEmitterType,
    kEmitterTexture,
    kEmitterParticles,
    kEmitterMaxEnergy,
    kEmitterMaxVelocity,
    kEmitterMaxAngle,
    kEmitterSize,
    kEmitterRadius,
    kEmitterMaxParticleSize,
    kEmitterMaxSpin,
    kEmitterSpinning,
    kEmitterCenter,
    kEmitterRotation,
    kEmitterGravity,
    kEmitterUpVector,
    kEmitterColorStart,
    kEmitterColorEnd,
    kEmitterBlendingSrc,
    kEmitterBlendingDst,
};
constexpr std::size_t kEmitterSettingCount = 19;
// By the key.
KT_HIDDEN extern const EmitterSetting kEmitterSettings[kEmitterSettingCount];

// Null for another name.
const EmitterSetting *findEmitterSetting(const char *name);
// Names of the attributes: `x` and `y` for a size, and `z` too for a vector, otherwise `value`.
XmlNames emitterAttributes(EmitterValue kind);

// Null for a document of another root, which changes no setting.
const TiXmlElement *emitterRoot(const TiXmlDocument &document);

}  // namespace keltra

#endif
