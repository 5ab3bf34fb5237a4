// SPDX-License-Identifier: Zlib
#include "formats/key_check.h"

#include "formats/fault.h"
#include "formats/kerning.h"
#include "formats/limits.h"
#include "formats/settings.h"
#include "foundation/quiet.h"

#include <climits>
#include <cstdlib>
#include <cstring>

namespace keltra {

namespace {

// Settings' keys begin like it.
constexpr std::size_t kSettingsPrefixLength = sizeof "KELTRA_" - 1;
constexpr std::size_t kKerningPrefixLength = sizeof kKerningPrefix - 1;

// The lines of a text, one by one, and the warnings about them, worded alike for all keys.
class KeyCheck {
   public:
    KeyCheck(const vnfParser &lines, bool isKerning)
        : parser(lines), line(0), isKerning(isKerning), most(isKerning ? SCHAR_MAX : INT_MAX), met() {
        parser.position = 0;
    }

    void run();

   private:
    // Moves to the next line that is not empty, and warns when it is cut; false at the end.
    bool next();
    // The end of the key in `text`; null without one.
    char *endOfKey();
    // That of the name in `text`; `count()` for another one.
    unsigned int findKey();
    unsigned int count() const { return isKerning ? kKerningKeys : unsigned{kSettingsKeyCount}; }
    void offerTo(NearestName &nearest, const char *end);
    // Checks the line whose key ends there; false when it cannot be read.
    bool check(char *end);
    // Of a key that is not met yet.
    void value(unsigned int key, const char *given) const;
    void note(unsigned int key);

    bool isPrefixed() const {
        return std::strncmp(text, kKerningPrefix, isKerning ? kKerningPrefixLength : kSettingsPrefixLength) ==
               0;
    }
    void tell(KT_FAULT_CODE code, const char *key, const char *found, FaultText expected) const {
        KTFAULT &fault = newFault(code, {}, {}, expected, -most - 1, most);
        setFaultText(fault.field, key);
        setFaultText(fault.found, found);
        tell(fault);
    }
    void tell(KTFAULT &fault) const {
        fault.line = line;
        warnFault({}, fault);
    }

    vnfParser parser;
    unsigned int line;
    const bool isKerning;
    const long most;             // of an integer
    bool met[kKerningKeys + 1];  // the last one is of no key
    char text[kLineSize];        // the line as its readers see it, without blanks and tabs
    char raw[kLineSize];
    char keys[1 + kKerningKeys - kKerningCharacters][kKerningKeySize];  // those that were offered
};

[[gnu::noinline]] bool KeyCheck::next() {
    do {
        const std::int32_t begin = parser.position;
        if (!vnfReadLine(&parser, raw)) return false;
        ++line;
        if (char *const end = std::strchr(raw, '\r')) *end = '\0';
        squeezeLine(std::strcpy(text, raw));
        const bool isLast = parser.position > parser.size;  // without the end of a line
        if (!*text || parser.position - begin - isLast <= static_cast<std::int32_t>(kLineSize)) continue;
        tell(newFault(KT_FAULT_LIMIT, KT_TEXT("line"), KT_TEXT("longer than 255 characters"),
                      KT_TEXT("the rest is not read")));
    } while (!*text);
    return true;
}

[[gnu::noinline]] char *KeyCheck::endOfKey() {
    if (isKerning) {
        char *const equals = std::strchr(text, '=');
        // The key of that character.
        return equals + (equals == text + kKerningPrefixLength && equals[1] == '=' && isPrefixed());
    }
    const char *word = raw;
    while (*word == ' ' || *word == '\t') ++word;
    char *end = text;
    for (;; ++end, ++word) {
        const unsigned int c = static_cast<unsigned char>(*word);
        if (c != '_' && c - '0' > 9 && (c | 32) - 'a' > 25) return end;
    }
}

[[gnu::noinline]] unsigned int KeyCheck::findKey() {
    unsigned int key = 0;
    while (key < count() &&
           std::strcmp(isKerning ? kerningKey(key, keys[0]) : kSettingsKeys[key].name, text) != 0)
        ++key;
    return key;
}

[[gnu::noinline]] void KeyCheck::offerTo(NearestName &nearest, const char *end) {
    if (!isKerning) return nearest.offerAll(kSettingsKeys, kSettingsKeyCount);
    // The last character is the one that the key is for.
    const unsigned int last = static_cast<unsigned char>(*text ? end[-1] : ' ') - unsigned{' '};
    for (unsigned int i = 0; i < sizeof keys / sizeof *keys; ++i)
        if (i > 0 || last < kKerningCharacters)
            nearest.offer(kerningKey(i ? kKerningKeys - i : last, keys[i]));
}

[[gnu::noinline]] void KeyCheck::value(unsigned int key, const char *given) const {
    const SettingKind kind = isKerning ? SettingKind::kInteger : kSettingsKeys[key].kind;
    FaultText flaw = {};
    if (kind == SettingKind::kText) {
        const std::size_t length = std::strlen(given);
        if (length < 2 || given[0] != '"' || given[length - 1] != '"')
            flaw = KT_TEXT("a text between two quotes");
        else if (std::strrchr(raw, '"') - std::strchr(raw, '"') >= static_cast<std::ptrdiff_t>(length))
            flaw = KT_TEXT("a text without blanks: they are lost");
    } else {
        flaw = integerFlaw(given, -most - 1, most);
        if (flaw == FaultText() && kind == SettingKind::kBoolean) {
            const long number = std::strtol(given, nullptr, 10);
            if (number != 0 && (number & 0xff) == 0) flaw = KT_TEXT("0 or 1");
        }
    }
    if (flaw != FaultText()) tell(KT_FAULT_VALUE, text, given, flaw);
}

[[gnu::noinline]] void KeyCheck::note(unsigned int key) {
    if (isKerning) met[key] = true;
    // A key of settings counts anywhere in a line.
    for (unsigned int i = 0; !isKerning && i < kSettingsKeyCount; ++i)
        met[i] = met[i] || std::strstr(text, kSettingsKeys[i].name);
}

bool KeyCheck::check(char *end) {
    const char separator = *end;
    *end = '\0';
    const unsigned int key = findKey();
    bool isRead = true;
    if (key == count()) {
        NearestName nearest(text);
        offerTo(nearest, end);
        const bool isOurs = isPrefixed() || *nearest.name();
        if (isOurs) tell(unknownName(KT_TEXT("key"), nullptr, nearest));
        isRead = isOurs || (!isKerning && *text && separator == '=');
    } else if (met[key]) {
        tell(KT_FAULT_REPEATED, nullptr, text, {});
    } else if (separator != '=') {
        tell(KT_FAULT_MISSING, text, nullptr, KT_TEXT("`=`"));
    } else {
        value(key, end + 1);
    }
    *end = separator;
    note(key);
    return isRead;
}

void KeyCheck::run() {
    while (next()) {
        char *const end = endOfKey();
        if (!end || !check(end)) tell(KT_FAULT_LINE, nullptr, text, KT_TEXT("a key, `=` and a value"));
    }
}

}  // namespace

void checkKeys(const vnfParser &text, bool isKerning) { KeyCheck(text, isKerning).run(); }

}  // namespace keltra
