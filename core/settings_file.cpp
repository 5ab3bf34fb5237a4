#include "core/settings_file.h"

namespace keltra {

// A key leads to the member of its name. There is no key for forceFBO.
#define NAME(name) "KELTRA_" #name
#define INTEGER(name) \
    { NAME(name), &KTSETTINGS::RECORD::name, nullptr, nullptr }
#define BOOLEAN(name) \
    { NAME(name), nullptr, &KTSETTINGS::RECORD::name, nullptr }
#define TEXT(name) \
    { NAME(name), nullptr, nullptr, &KTSETTINGS::RECORD::name }

const SettingsKey kSettingsKeys[kSettingsKeyCount] = {
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

#undef NAME
#undef INTEGER
#undef BOOLEAN
#undef TEXT

bool readSetting(const vnfParser &text, const SettingsKey &key, KTSETTINGS::RECORD &record) {
    vnfParser parser = text;
    // A string without its two quotes counts as not found, yet its raw text stays in the member: meant, as is
    // the parser.
    if (key.text) return vnfParseString(&parser, key.name, record.*key.text);
    if (key.integer) return vnfParseInt(&parser, key.name, &(record.*key.integer));
    int value;
    if (!vnfParseInt(&parser, key.name, &value)) return false;
    // The low 8 bits count: 256 is false.
    record.*key.boolean = (value & 0xff) != 0;
    return true;
}

}  // namespace keltra

// Each key is looked up by itself from the beginning of the file, so the order of the keys does not matter.
bool KTSETTINGS::load(const char *path) {
    if (!path || !vnfFileExists(path)) return false;
    vnfParser parser = {};
    // The parser refuses an empty file and says so in the log; to the settings it is a file without keys.
    if (!vnfOpenParser(&parser, path)) return true;
    vnfRemoveComments(&parser, keltra::kSettingsComment);
    for (const keltra::SettingsKey &key : keltra::kSettingsKeys) keltra::readSetting(parser, key, record);
    vnfCloseParser(&parser);
    return true;
}
