// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FORMATS_EMITTER_H
#define KELTRA_FORMATS_EMITTER_H

// The settings of emitter files.

#include <cstddef>

#include "formats/blend_factor.h"
#include "formats/fault.h"

class TiXmlDocument;
class TiXmlElement;

namespace keltra {

// Attributes: `x` and `y` for a size, and `z` too for a vector, otherwise `value`.
enum class EmitterValue {
    kInteger,
    kNumber,   // an integer from 0 to the most particles of an emitter, clamped
    kMaximum,  // an integer of which a negative one counts as 0
    kReal,
    kSize,
    kVector,
    kText,
    kSourceFactor,
    kDestinationFactor,
};

struct EmitterSetting {
    const char *name;
    EmitterValue kind;
};

constexpr std::size_t kEmitterSettingCount = 19;
extern const EmitterSetting kEmitterSettings[kEmitterSettingCount];

// Null for another name.
const EmitterSetting *findEmitterSetting(const char *name);
// Names of the attributes, null behind the last.
const char *const *emitterAttributes(EmitterValue kind);

// Null for a document of another root, which changes no setting.
const TiXmlElement *emitterRoot(const TiXmlDocument &document);

// Warns of what has no effect in a document with lines, whatever its root is.
void checkEmitter(const TiXmlDocument &document, FaultSink &sink);

}  // namespace keltra

#endif
