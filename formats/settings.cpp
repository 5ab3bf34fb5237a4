// SPDX-License-Identifier: Zlib
#include "formats/settings.h"

#include "formats/key_lines.h"

#include <climits>
#include <cstdlib>
#include <cstring>

namespace keltra {

namespace {

constexpr char kPrefix[] = "KELTRA_";

const SettingKey *findKey(const char *name) {
    for (const SettingKey &key : kSettingsKeys)
        if (std::strcmp(key.name, name) == 0) return &key;
    return nullptr;
}

const char *nearestKey(const char *word) {
    NearestName nearest(word);
    for (const SettingKey &key : kSettingsKeys) nearest.offer(key.name);
    return nearest.name();
}

class SettingsCheck {
   public:
    SettingsCheck(const vnfParser &text, FaultSink &sink) : lines(text), faults(lines, sink), met() {}

    void run() {
        while (lines.next()) {
            checkLine();
            // A key counts anywhere in a line.
            for (std::size_t i = 0; i < kSettingsKeyCount; ++i)
                met[i] = met[i] || std::strstr(lines.text(), kSettingsKeys[i].name);
        }
    }

   private:
    void checkLine() {
        if (lines.isCut()) faults.cut();
        char word[kLineSize];
        std::size_t length = 0;
        for (const char *c = lines.text(); length < lines.firstWord() && isWordPart(*c); ++c)
            word[length++] = *c;
        word[length] = '\0';
        const char *rest = lines.text() + length;
        if (const SettingKey *key = findKey(word)) return checkKnown(*key, rest);
        const char *nearest = nearestKey(word);
        if (*nearest || std::strncmp(word, kPrefix, sizeof kPrefix - 1) == 0)
            faults.unknown(word, nearest);
        else if (length == 0 || *rest != '=')
            faults.unread();
    }

    void checkKnown(const SettingKey &key, const char *rest) {
        if (met[&key - kSettingsKeys]) return faults.repeated(key.name);
        if (*rest != '=') return faults.withoutEquals(key.name);
        const char *value = rest + 1;
        if (key.kind == SettingKind::kText) return checkText(key.name, value);
        if (!faults.integer(key.name, value, INT_MIN, INT_MAX) || key.kind == SettingKind::kInteger) return;
        const long number = std::strtol(value, nullptr, 10);
        if (number != 0 && (number & 0xff) == 0) faults.value(key.name, value, faultText("0 or 1"));
    }

    void checkText(const char *key, const char *value) {
        const std::size_t length = std::strlen(value);
        if (length < 2 || value[0] != '"' || value[length - 1] != '"')
            faults.value(key, value, faultText("a text between two quotes"));
        else if (lines.hasLostBlanks())
            faults.value(key, value, faultText("a text without blanks: they are lost"));
    }

    static bool isWordPart(char c) {
        return c == '_' || (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
    }

    KeyLines lines;
    KeyLineFaults faults;
    bool met[kSettingsKeyCount];
};

}  // namespace

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

void checkSettings(const vnfParser &text, FaultSink &sink) { SettingsCheck(text, sink).run(); }

}  // namespace keltra
