// SPDX-License-Identifier: Zlib
#include "formats/settings.h"

namespace keltra {

// There is no key for forced off-screen rendering.
const SettingKey kSettingsKeys[kSettingsKeyCount] = {
    {"KELTRA_windowX", SettingKind::kInteger},
    {"KELTRA_windowY", SettingKind::kInteger},
    {"KELTRA_colorDepth", SettingKind::kInteger},
    {"KELTRA_zetaDepth", SettingKind::kInteger},
    {"KELTRA_stencilDepth", SettingKind::kInteger},
    {"KELTRA_FBOSizeX", SettingKind::kInteger},
    {"KELTRA_FBOSizeY", SettingKind::kInteger},
    {"KELTRA_shadowMapSize", SettingKind::kInteger},
    {"KELTRA_waterSize", SettingKind::kInteger},
    {"KELTRA_renderingElements", SettingKind::kInteger},
    {"KELTRA_audioChannels", SettingKind::kInteger},
    {"KELTRA_audioBuffers", SettingKind::kInteger},
    {"KELTRA_audioElements", SettingKind::kInteger},
    {"KELTRA_fullScreen", SettingKind::kBoolean},
    {"KELTRA_resizable", SettingKind::kBoolean},
    {"KELTRA_landscape", SettingKind::kBoolean},
    {"KELTRA_CAVESplashScreen", SettingKind::kBoolean},
    {"KELTRA_useShaders", SettingKind::kBoolean},
    {"KELTRA_title", SettingKind::kText},
    {"KELTRA_ktePath", SettingKind::kText},
    {"KELTRA_ktaPath", SettingKind::kText},
    {"KELTRA_mpgPath", SettingKind::kText},
    {"KELTRA_texturePath", SettingKind::kText},
    {"KELTRA_shaderPath", SettingKind::kText},
    {"KELTRA_fontPath", SettingKind::kText},
};

bool readSetting(const vnfParser &text, const char *key, int &value) {
    vnfParser parser = text;
    return vnfParseInt(&parser, key, &value);
}

bool readSetting(const vnfParser &text, const char *key, bool &value) {
    int number;
    if (!readSetting(text, key, number)) return false;
    // The low 8 bits count: 256 is false.
    value = (number & 0xff) != 0;
    return true;
}

bool readSetting(const vnfParser &text, const char *key, char (&value)[256]) {
    vnfParser parser = text;
    return vnfParseString(&parser, key, value);
}

}  // namespace keltra
