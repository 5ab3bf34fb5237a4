#ifndef KELTRA_CORE_SETTINGS_FILE_H
#define KELTRA_CORE_SETTINGS_FILE_H

// The keys of settings files.

#include <keltra/foundation.h>
#include <keltra/settings.h>

#include <cstddef>

namespace keltra {

constexpr char kSettingsComment = '#';
constexpr std::size_t kSettingsKeyCount = 25;

// One of the three members is set.
struct SettingsKey {
    const char *name;
    int KTSETTINGS::RECORD::*integer;
    bool KTSETTINGS::RECORD::*boolean;
    char (KTSETTINGS::RECORD::*text)[256];
};

extern const SettingsKey kSettingsKeys[kSettingsKeyCount];

// Looks the key up in a text without comments. False when it is not there; `record` may have been written
// then.
bool readSetting(const vnfParser &text, const SettingsKey &key, KTSETTINGS::RECORD &record);

}  // namespace keltra

#endif
