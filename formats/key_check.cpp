// SPDX-License-Identifier: Zlib
#include "formats/key_check.h"

#include "formats/fault.h"
#include "formats/kerning.h"
#include "formats/limits.h"
#include "formats/plain_integer.h"
#include "formats/settings.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>

namespace keltra {

namespace {

constexpr char kSettingsPrefix[] = "KELTRA_";
constexpr std::size_t kKerningPrefixLength = sizeof kKerningPrefix - 1;

// The lines of the text as its readers see them, one by one, without blanks and tabs, and the warnings about
// them, worded alike for all keys.
class KeyLines {
   public:
    explicit KeyLines(const vnfParser &text) : parser(text), line(0) { parser.position = 0; }

    // Moves to the next line that is not empty, and warns when it is cut; false at the end.
    bool next();

    void unknown(const char *word, const char *nearest) const {
        tell(unknownName(KT_TEXT("key"), nullptr, word, nearest));
    }
    void tell(KT_FAULT_CODE code, const char *key, const char *found, FaultText expected, long least = 0,
              long most = 0) const {
        KTFAULT &fault = newFault(code);
        setFaultText(fault.field, key);
        setFaultText(fault.found, found);
        writeFaultText(fault.expected, expected, least, most);
        tell(fault);
    }
    void repeated(const char *word) const { tell(KT_FAULT_REPEATED, "", word, {}); }
    void unread() const { tell(KT_FAULT_LINE, "", text, KT_TEXT("a key, `=` and a value")); }
    // True for an integer within the range; otherwise warns.
    bool integer(const char *key, const char *found, long least, long most) const {
        const FaultText flaw = integerFlaw(found, least, most);
        if (flaw == FaultText()) return true;
        tell(KT_FAULT_VALUE, key, found, flaw, least, most);
        return false;
    }

    char text[kLineSize];
    std::size_t firstWord;  // characters before the first blank
    bool lostBlanks;        // there were some between the first and the last quote

   private:
    void tell(KTFAULT &fault) const {
        fault.line = line;
        warnFault({}, fault);
    }

    vnfParser parser;
    unsigned int line;
};

bool KeyLines::next() {
    char raw[kLineSize];
    do {
        const std::int32_t begin = parser.position;
        if (!vnfReadLine(&parser, raw)) return false;
        ++line;
        std::int32_t end = std::min(parser.position, parser.size);
        if (end > begin && (parser.buffer[end - 1] == '\n' || parser.buffer[end - 1] == '\r')) --end;
        bool isQuoted = false, hasBlank = false;  // since the first quote
        lostBlanks = false;
        firstWord = 0;
        char *kept = text;
        for (const char *c = raw; *c; ++c) {
            if (static_cast<unsigned char>(*c) > ' ' && *c != '"') {  // most are
                *kept++ = *c;
                continue;
            }
            const bool isBlank = *c == ' ' || *c == '\t';
            if (isBlank && firstWord == 0) firstWord = static_cast<std::size_t>(kept - text);
            hasBlank = hasBlank || (isBlank && isQuoted);
            if (*c == '"') {
                isQuoted = true;
                lostBlanks = hasBlank;
            }
            if (!isBlank && *c != '\r') *kept++ = *c;
        }
        *kept = '\0';
        if (firstWord == 0) firstWord = static_cast<std::size_t>(kept - text);
        if (firstWord == 0 || end - begin < static_cast<std::int32_t>(kLineSize)) continue;
        tell(beyondLimit(KT_TEXT("line"), KT_TEXT("longer than 255 characters"), 0,
                         KT_TEXT("the rest is not read")));
    } while (firstWord == 0);
    return true;
}

bool isWordPart(char c) {
    return c == '_' || (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

void checkSetting(const KeyLines &line, const SettingKey &key, const char *rest, bool isMet) {
    if (isMet) return line.repeated(key.name);
    if (*rest != '=') return line.tell(KT_FAULT_MISSING, key.name, "", KT_TEXT("`=`"));
    const char *value = rest + 1;
    FaultText flaw = {};
    if (key.kind == SettingKind::kText) {
        const std::size_t length = std::strlen(value);
        if (length < 2 || value[0] != '"' || value[length - 1] != '"')
            flaw = KT_TEXT("a text between two quotes");
        else if (line.lostBlanks)
            flaw = KT_TEXT("a text without blanks: they are lost");
    } else if (line.integer(key.name, value, INT_MIN, INT_MAX) && key.kind == SettingKind::kBoolean) {
        const long number = std::strtol(value, nullptr, 10);
        if (number != 0 && (number & 0xff) == 0) flaw = KT_TEXT("0 or 1");
    }
    if (flaw != FaultText()) line.tell(KT_FAULT_VALUE, key.name, value, flaw);
}

// The key of `length` characters at `name`, behind the prefix; kKerningKeys for none.
unsigned int kerningKeyOf(const char *name, std::size_t length) {
    const unsigned int character = static_cast<unsigned char>(*name) - unsigned{' '};
    if (length == 1 && character < kKerningCharacters) return character;
    unsigned int key = kKerningCharacters;
    for (const char *named : kKerningNames) {
        if (std::strlen(named) == length && std::memcmp(name, named, length) == 0) break;
        ++key;
    }
    return key;
}

void checkKerningLine(KeyLines &line, bool (&met)[kKerningKeys]) {
    char *const equals = std::strchr(line.text, '=');
    if (!equals) return line.unread();
    const bool isPrefixed = std::strncmp(line.text, kKerningPrefix, kKerningPrefixLength) == 0;
    char *const name = line.text + kKerningPrefixLength;
    if (isPrefixed) {
        char *const end = equals + (equals == name && equals[1] == '=');  // the key of that character
        const unsigned int key = kerningKeyOf(name, static_cast<std::size_t>(end - name));
        if (key < kKerningKeys) {
            *end = '\0';
            if (met[key]) return line.repeated(line.text);
            met[key] = true;
            line.integer(line.text, end + 1, SCHAR_MIN, SCHAR_MAX);
            return;
        }
    }
    *equals = '\0';
    NearestName nearest(line.text);
    // The last character is the one that the key is for.
    const unsigned int last = static_cast<unsigned char>(*line.text ? equals[-1] : ' ') - unsigned{' '};
    char keys[1 + kKerningKeys - kKerningCharacters][kKerningKeySize];
    for (unsigned int i = 0; i < sizeof keys / sizeof *keys; ++i)
        if (i > 0 || last < kKerningCharacters)
            nearest.offer(kerningKey(i ? kKerningKeys - i : last, keys[i]));
    if (isPrefixed || *nearest.name()) return line.unknown(line.text, nearest.name());
    *equals = '=';
    line.unread();
}

}  // namespace

void checkSettings(const vnfParser &text) {
    bool met[kSettingsKeyCount] = {};
    for (KeyLines line(text); line.next();) {
        char word[kLineSize];
        std::size_t length = 0;
        for (; length < line.firstWord && isWordPart(line.text[length]); ++length)
            word[length] = line.text[length];
        word[length] = '\0';
        const char *rest = line.text + length;
        std::size_t key = 0;
        while (key < kSettingsKeyCount && std::strcmp(kSettingsKeys[key].name, word) != 0) ++key;
        NearestName nearest(word);
        if (key == kSettingsKeyCount) nearest.offerAll(kSettingsKeys, kSettingsKeyCount);
        if (key < kSettingsKeyCount)
            checkSetting(line, kSettingsKeys[key], rest, met[key]);
        else if (*nearest.name() || std::strncmp(word, kSettingsPrefix, sizeof kSettingsPrefix - 1) == 0)
            line.unknown(word, nearest.name());
        else if (length == 0 || *rest != '=')
            line.unread();
        // A key counts anywhere in a line.
        for (std::size_t i = 0; i < kSettingsKeyCount; ++i)
            met[i] = met[i] || std::strstr(line.text, kSettingsKeys[i].name);
    }
}

void checkKerning(const vnfParser &text) {
    bool met[kKerningKeys] = {};
    for (KeyLines line(text); line.next();) checkKerningLine(line, met);
}

}  // namespace keltra
