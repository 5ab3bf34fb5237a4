// SPDX-License-Identifier: Zlib
#include "formats/kerning.h"
#include "formats/key_check.h"
#include "formats/settings.h"
#include "tools/info/kinds.h"

#include <cstring>

namespace keltra::info {

namespace {

// Each key is searched from the beginning, so a huge text would take minutes; the verdict needs no search.
constexpr std::size_t kMostText = 16u << 20;

// A text as the engine's parser holds it, without comments.
class Text {
   public:
    Text(const Source &source, char comment) : bytes(source.bytes, source.bytes + source.size) {
        bytes.push_back('\0');  // the spare byte
        parser.buffer = bytes.data();
        parser.size = static_cast<std::int32_t>(source.size);
        vnfRemoveComments(&parser, comment);
    }
    vnfParser &get() { return parser; }

   private:
    std::vector<char> bytes;
    vnfParser parser = {};
};

bool isTooLarge(const Source &source, Inspection &result) {
    if (source.size <= kMostText) return false;
    note(result, "larger than 16 MiB: the keys are not listed");
    return true;
}

// What the engine stores of a key; null when it stores nothing.
Fields settingValue(const vnfParser &text, const SettingKey &key) {
    // No line holds a line feed, so it stays only where nothing is written.
    char string[256] = "\n";
    int integer;
    bool boolean;
    switch (key.kind) {
        case SettingKind::kInteger:
            return readSetting(text, key.name, integer) ? Fields(integer) : Fields();
        case SettingKind::kBoolean:
            return readSetting(text, key.name, boolean) ? Fields(boolean) : Fields();
        default:
            readSetting(text, key.name, string);
            return std::strcmp(string, "\n") != 0 ? Fields(string) : Fields();
    }
}

}  // namespace

// Any text holds settings, an empty one none.
void inspectSettings(const Source &source, Inspection &result) {
    result.good = true;
    result.fields["bytes"] = source.size;
    if (isTooLarge(source, result)) return;
    Text text(source, kSettingsComment);
    Fields found = Fields::array();
    for (const SettingKey &key : kSettingsKeys) {
        const Fields value = settingValue(text.get(), key);
        if (!value.is_null()) found.push_back({{"key", key.name}, {"value", value}});
    }
    result.fields["settings"] = found;
    const Faults faults(result);
    checkSettings(text.get());
}

// A font takes any text but an empty one.
void inspectKerning(const Source &source, Inspection &result) {
    result.fields["bytes"] = source.size;
    if (source.size == 0) {
        setFlaw(result, "text", "is empty");
        return setFlawPlace(result, source);
    }
    result.good = true;
    if (isTooLarge(source, result)) return;
    Text text(source, kKerningComment);
    // As the loader does: a named key may overrule the character's own.
    Fields found = Fields::object();
    KerningValues values;
    readKernings(text.get(), values);
    for (unsigned int i = 0; i < kKerningKeys; ++i)
        if (values.isThere[i]) found[std::string(1, kerningCharacter(i))] = int{values.value[i]};
    Fields characters = Fields::array();
    for (const auto &[character, kerning] : found.items())
        characters.push_back({{"character", character}, {"kerning", kerning}});
    result.fields["characters"] = characters;
    const Faults faults(result);
    checkKerning(text.get());
}

}  // namespace keltra::info
