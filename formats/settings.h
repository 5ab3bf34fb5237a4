// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FORMATS_SETTINGS_H
#define KELTRA_FORMATS_SETTINGS_H

// The keys of settings files.

#include <keltra/foundation.h>

#include "foundation/hidden.h"

#include <cstddef>

namespace keltra {

constexpr char kSettingsComment = '#';

enum class SettingKind { kInteger, kBoolean, kText };

struct SettingKey {
    const char *name;
    SettingKind kind;
};

constexpr std::size_t kSettingsKeyCount = 25;
KT_HIDDEN extern const SettingKey kSettingsKeys[kSettingsKeyCount];

// Look a key up in a text without comments; false when it is not there. A text (of 256 characters) without
// its two quotes counts as missing, although its raw rest has been written: deliberate, it is what
// vnfParseString does.
bool readSetting(const vnfParser &text, const char *key, int &value);
bool readSetting(const vnfParser &text, const char *key, bool &value);
bool readSetting(const vnfParser &text, const char *key, char (&value)[256]);

}  // namespace keltra

#endif
