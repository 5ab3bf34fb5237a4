#include <keltra/foundation.h>
#include <keltra/settings.h>

namespace {

struct IntKey {
    const char *name;
    int KTSETTINGS::RECORD::*member;
};

struct BoolKey {
    const char *name;
    bool KTSETTINGS::RECORD::*member;
};

struct StringKey {
    const char *name;
    char (KTSETTINGS::RECORD::*member)[256];
};

// A key leads to the member of its name. There is no key for forceFBO.
#define KEY(name) \
    { "KELTRA_" #name, &KTSETTINGS::RECORD::name }

const IntKey kIntKeys[] = {
    KEY(windowX),       KEY(windowY),      KEY(colorDepth),    KEY(zetaDepth), KEY(stencilDepth),
    KEY(FBOSizeX),      KEY(FBOSizeY),     KEY(shadowMapSize), KEY(waterSize), KEY(renderingElements),
    KEY(audioChannels), KEY(audioBuffers), KEY(audioElements),
};

const BoolKey kBoolKeys[] = {
    KEY(fullScreen), KEY(resizable), KEY(landscape), KEY(CAVESplashScreen), KEY(useShaders),
};

const StringKey kStringKeys[] = {
    KEY(title), KEY(ktePath), KEY(ktaPath), KEY(mpgPath), KEY(texturePath), KEY(shaderPath), KEY(fontPath),
};

#undef KEY

}  // namespace

// Each key is looked up by itself from the beginning of the file, so the order of the keys does not matter.
bool KTSETTINGS::load(const char *path) {
    if (!path || !vnfFileExists(path)) return false;
    vnfParser parser = {};
    // The parser refuses an empty file and says so in the log; to the settings it is a file without keys.
    if (!vnfOpenParser(&parser, path)) return true;
    vnfRemoveComments(&parser, '#');
    for (const IntKey &key : kIntKeys) vnfParseInt(&parser, key.name, &(record.*key.member));
    for (const BoolKey &key : kBoolKeys) {
        int value;
        // The low 8 bits count: 256 is false.
        if (vnfParseInt(&parser, key.name, &value)) record.*key.member = (value & 0xff) != 0;
    }
    // A string without its two quotes counts as not found, yet its raw text stays in the member: meant, as is
    // the parser.
    for (const StringKey &key : kStringKeys) vnfParseString(&parser, key.name, record.*key.member);
    vnfCloseParser(&parser);
    return true;
}
