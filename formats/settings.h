#ifndef KELTRA_FORMATS_SETTINGS_H
#define KELTRA_FORMATS_SETTINGS_H

// The keys of settings files, and what their lines get wrong.

#include <keltra/foundation.h>

#include <cstddef>

#include "formats/fault.h"

namespace keltra {

constexpr char kSettingsComment = '#';

enum class SettingKind { kInteger, kBoolean, kText };

struct SettingKey {
    const char *name;
    SettingKind kind;
};

constexpr std::size_t kSettingsKeyCount = 25;
extern const SettingKey kSettingsKeys[kSettingsKeyCount];

// Look a key up in a text without comments; false when it is not there. A text (of 256 characters) without
// its two quotes counts as not there, and its raw rest has been written all the same: deliberate, as is the
// parser.
bool readSetting(const vnfParser &text, const char *key, int &value);
bool readSetting(const vnfParser &text, const char *key, bool &value);
bool readSetting(const vnfParser &text, const char *key, char (&value)[256]);

// Tells of each line of a text without comments what has no effect, or another one than it seems. Keys that
// do not begin like the engine's are another program's.
void checkSettings(const vnfParser &text, FaultSink &sink);

}  // namespace keltra

#endif
