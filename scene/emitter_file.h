#ifndef KELTRA_SCENE_EMITTER_FILE_H
#define KELTRA_SCENE_EMITTER_FILE_H

// What the reader of emitter files knows, for tools that look at them.

#include <cstddef>

#include "scene/blend_factor.h"

class TiXmlDocument;
class TiXmlElement;

namespace keltra {

// Attributes: `x` and `y` for a size, and `z` too for a vector, otherwise `value`.
enum class EmitterValue {
    kInteger,
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

// Null for a document of another root, which changes no setting.
const TiXmlElement *emitterRoot(const TiXmlDocument &document);

}  // namespace keltra

#endif
