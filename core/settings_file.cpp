// SPDX-License-Identifier: Zlib
#include <keltra/foundation.h>

#include "core/settings_members.h"
#include "formats/key_check.h"
#include "formats/settings.h"
#include "foundation/fault.h"
#include "foundation/quiet.h"

namespace keltra {

namespace {

#define INTEGER(name) \
    { &KTSETTINGS::RECORD::name, nullptr, nullptr }
#define BOOLEAN(name) \
    { nullptr, &KTSETTINGS::RECORD::name, nullptr }
#define TEXT(name) \
    { nullptr, nullptr, &KTSETTINGS::RECORD::name }

// In the order of the keys.
constexpr SettingMember kMembers[] = {
    INTEGER(windowX),
    INTEGER(windowY),
    INTEGER(colorDepth),
    INTEGER(zetaDepth),
    INTEGER(stencilDepth),
    INTEGER(FBOSizeX),
    INTEGER(FBOSizeY),
    INTEGER(shadowMapSize),
    INTEGER(waterSize),
    INTEGER(renderingElements),
    INTEGER(audioChannels),
    INTEGER(audioBuffers),
    INTEGER(audioElements),
    BOOLEAN(fullScreen),
    BOOLEAN(resizable),
    BOOLEAN(landscape),
    BOOLEAN(CAVESplashScreen),
    BOOLEAN(useShaders),
    TEXT(title),
    TEXT(ktePath),
    TEXT(ktaPath),
    TEXT(mpgPath),
    TEXT(texturePath),
    TEXT(shaderPath),
    TEXT(fontPath),
};
static_assert(sizeof kMembers / sizeof *kMembers == kSettingsKeyCount, "one for each key");

#undef INTEGER
#undef BOOLEAN
#undef TEXT

}  // namespace

SettingMember settingMember(std::size_t key) { return kMembers[key]; }

}  // namespace keltra

// Each key is looked up by itself from the beginning of the file, so the order of the keys does not matter.
bool KTSETTINGS::load(const char *path) {
    keltra::FaultScope scope(KT_CALL("KTSETTINGS::load"), path);
    if (!path) return scope.failNull(KT_TEXT("path"));
    if (!vnfFileExists(path)) return scope.failFile();
    vnfParser parser;
    const KT_FAULT_CODE fault = keltra::readParser(parser, path);
    if (fault == KT_FAULT_OUT_OF_MEMORY || fault == KT_FAULT_FILE_SIZE)
        return scope.failFile(fault == KT_FAULT_OUT_OF_MEMORY, keltra::kLargestText);
    const keltra::FaultOptional optional;
    // The parser refuses and logs an empty file and one that cannot be read; for the settings it is a file
    // without keys.
    if (fault != KT_FAULT_NONE) return !scope.failFile();
    vnfRemoveComments(&parser, keltra::kSettingsComment);
    for (std::size_t i = 0; i < keltra::kSettingsKeyCount; ++i) {
        const keltra::SettingMember member = keltra::settingMember(i);
        const char *key = keltra::kSettingsKeys[i].name;
        if (member.integer) keltra::readSetting(parser, key, record.*member.integer);
        if (member.boolean) keltra::readSetting(parser, key, record.*member.boolean);
        if (member.text) keltra::readSetting(parser, key, record.*member.text);
    }
    keltra::checkSettings(parser);
    vnfCloseParser(&parser);
    return true;
}
