#include "formats/kerning.h"

#include <climits>

#include "formats/key_lines.h"

namespace keltra {

namespace {

constexpr std::size_t kPrefixLength = sizeof kKerningPrefix - 1;

class KerningCheck {
   public:
    KerningCheck(const vnfParser &text, FaultSink &sink) : lines(text), faults(lines, sink), met() {}

    void run() {
        while (lines.next()) checkLine();
    }

   private:
    void checkLine() {
        if (lines.isCut()) faults.cut();
        if (std::strncmp(lines.text(), kKerningPrefix, kPrefixLength) != 0) return checkStranger();
        const char *name = lines.text() + kPrefixLength;
        for (unsigned int key = kKerningKeys; key-- > 0;) {
            char text[kKerningKeySize];
            const char *keyName = kerningKey(key, text) + kPrefixLength;
            const std::size_t length = std::strlen(keyName);
            if (std::strncmp(name, keyName, length) != 0 || name[length] != '=') continue;
            if (met[key]) return faults.repeated(text);
            met[key] = true;
            faults.integer(text, name + length + 1, SCHAR_MIN, SCHAR_MAX);
            return;
        }
        checkName();
    }

    // The name is unknown, or nothing separates it from its value.
    void checkName() {
        char word[kLineSize];
        std::strcpy(word, lines.text());
        char *equals = std::strchr(word, '=');
        if (!equals) return faults.unread();
        *equals = '\0';
        NearestName nearest(word);
        char keys[kKerningKeys - kKerningCharacters][kKerningKeySize];
        for (unsigned int i = 0; i < kKerningKeys - kKerningCharacters; ++i)
            nearest.offer(kerningKey(kKerningCharacters + i, keys[i]));
        faults.unknown(word, nearest.name());
    }

    // A line that does not begin like a key may still be one that is misspelt.
    void checkStranger() {
        char word[kLineSize];
        std::strcpy(word, lines.text());
        if (char *equals = std::strchr(word, '=')) {
            *equals = '\0';
            char nearestKey[kKerningKeySize] = "";
            const std::size_t length = std::strlen(word);
            if (length > 0) {
                // The last character is the one that the key is for.
                std::strcpy(nearestKey, kKerningPrefix);
                nearestKey[kPrefixLength] = word[length - 1];
                nearestKey[kPrefixLength + 1] = '\0';
            }
            NearestName nearest(word);
            nearest.offer(nearestKey);
            if (*nearest.name()) return faults.unknown(word, nearest.name());
        }
        faults.unread();
    }

    KeyLines lines;
    KeyLineFaults faults;
    bool met[kKerningKeys];
};

}  // namespace

void checkKerning(const vnfParser &text, FaultSink &sink) { KerningCheck(text, sink).run(); }

}  // namespace keltra
