// SPDX-License-Identifier: Zlib
#ifndef KELTRA_CORE_SETTINGS_MEMBERS_H
#define KELTRA_CORE_SETTINGS_MEMBERS_H

#include <keltra/settings.h>

#include <cstddef>

namespace keltra {

// Where a key's value goes. One of the three is set.
struct SettingMember {
    int KTSETTINGS::RECORD::*integer;
    bool KTSETTINGS::RECORD::*boolean;
    char (KTSETTINGS::RECORD::*text)[256];
};

// By the index of the key in `kSettingsKeys`.
SettingMember settingMember(std::size_t key);

}  // namespace keltra

#endif
