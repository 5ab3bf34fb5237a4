// SPDX-License-Identifier: Zlib
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
// its two quotes counts as missing, although its raw rest has been written: deliberate, it is what
// vnfParseString does.
bool readSetting(const vnfParser &text, const char *key, int &value);
bool readSetting(const vnfParser &text, const char *key, bool &value);
bool readSetting(const vnfParser &text, const char *key, char (&value)[256]);

// Warns of each line of a text without comments that has no effect, or not the one that it seems to have.
// Keys that do not begin like the engine's belong to another program.
void checkSettings(const vnfParser &text, FaultSink &sink);

}  // namespace keltra

#endif
