#include <cstring>

#include "core/settings_file.h"
#include "formats/kerning.h"
#include "tools/info/kinds.h"

namespace keltra::info {

namespace {

// Each key is looked for from the beginning, so a huge text would take minutes; the verdict needs no look.
const std::size_t kMostText = 16u << 20;

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

    // Calls `visit` with the number of each line that is not empty, and its text without blanks.
    template <class Visit>
    void forEachLine(Visit visit) {
        char line[256];
        parser.position = 0;
        for (unsigned int number = 1; vnfReadLine(&parser, line); ++number) {
            std::string squeezed;
            for (const char *c = line; *c; ++c)
                if (!std::strchr(" \t\r", *c)) squeezed += *c;
            if (!squeezed.empty()) visit(number, squeezed);
        }
    }

   private:
    std::vector<char> bytes;
    vnfParser parser = {};
};

bool isTooLarge(const Source &source, Inspection &result) {
    if (source.size <= kMostText) return false;
    note(result, "larger than 16 MiB: the keys are not listed");
    return true;
}

// The first line with a key counts, so each line that has none, or has one that was met before, is in vain.
template <class Keys>
void noteLines(Text &text, const Keys &keys, Inspection &result) {
    std::vector<bool> met(keys.size());
    text.forEachLine([&](unsigned int number, const std::string &line) {
        bool known = false, fresh = false;
        for (std::size_t i = 0; i < keys.size(); ++i) {
            if (line.find(keys[i]) == std::string::npos) continue;
            known = true;
            fresh = fresh || !met[i];
            met[i] = true;
        }
        const std::string place = "line " + std::to_string(number) + ", " + quoted(line) + ", ";
        if (!known) note(result, place + "has no key that is known");
        if (known && !fresh) note(result, place + "repeats a key; the first line with it counts");
    });
}

Fields settingValue(const SettingsKey &key, const KTSETTINGS::RECORD &record) {
    if (key.integer) return record.*key.integer;
    if (key.boolean) return record.*key.boolean;
    return record.*key.text;
}

bool differs(const SettingsKey &key, const KTSETTINGS::RECORD &one, const KTSETTINGS::RECORD &other) {
    return key.text && std::strcmp(one.*key.text, other.*key.text) != 0;
}

std::vector<std::string> kerningKeys() {
    std::vector<std::string> keys;
    char key[kKerningKeySize];
    for (unsigned int i = 0; i < kKerningKeys; ++i) keys.push_back(kerningKey(i, key));
    return keys;
}

}  // namespace

// Any text holds settings, an empty one none.
void inspectSettings(const Source &source, Inspection &result) {
    result.good = true;
    result.fields["bytes"] = source.size;
    if (isTooLarge(source, result)) return;
    Text text(source, kSettingsComment);
    KTSETTINGS settings;
    const KTSETTINGS defaults;
    Fields found = Fields::array();
    std::vector<std::string> keys;
    for (const SettingsKey &key : kSettingsKeys) {
        const bool isThere = readSetting(text.get(), key, settings.record);
        if (isThere || differs(key, settings.record, defaults.record))
            found.push_back({{"key", key.name}, {"value", settingValue(key, settings.record)}});
        if (!isThere && differs(key, settings.record, defaults.record))
            note(result, std::string(key.name) + " has no two quotes: the raw rest of its line is taken");
        keys.push_back(key.name);
    }
    result.fields["settings"] = found;
    noteLines(text, keys, result);
}

// A font takes any text but an empty one.
void inspectKerning(const Source &source, Inspection &result) {
    result.fields["bytes"] = source.size;
    if (source.size == 0) return setTextFlaw(result, source, {0, "text", "is empty"});
    result.good = true;
    if (isTooLarge(source, result)) return;
    Text text(source, kKerningComment);
    // As the loader does: a named key may overrule the character's own.
    Fields found = Fields::object();
    const std::vector<std::string> keys = kerningKeys();
    for (unsigned int i = 0; i < kKerningKeys; ++i) {
        signed char kerning = 0;
        if (readKerning(text.get(), keys[i].c_str(), kerning))
            found[std::string(1, kerningCharacter(i))] = int{kerning};
    }
    Fields characters = Fields::array();
    for (const auto &[character, kerning] : found.items())
        characters.push_back({{"character", character}, {"kerning", kerning}});
    result.fields["characters"] = characters;
    noteLines(text, keys, result);
}

}  // namespace keltra::info
