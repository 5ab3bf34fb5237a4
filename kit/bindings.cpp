// SPDX-License-Identifier: Zlib
// Bindings of keys in a settings file.
#include <keltra/kit/input.h>

#include <keltra/foundation.h>

#include "kit/fault.h"

#include <SDL.h>

#include <cstring>

namespace {

constexpr char kPrefix[] = "action_";
constexpr std::size_t kPrefixLength = sizeof kPrefix - 1;
constexpr char kCall[] = "KTINPUT::loadBindings";

// Blanks in a line have no meaning, as the engine reads settings.
void removeBlanks(char *line) {
    char *out = line;
    for (const char *in = line; *in; ++in)
        if (*in != ' ' && *in != '\t' && *in != '\r') *out++ = *in;
    *out = '\0';
}

// Whether `name`, of `length` characters without blanks, is the one that SDL has for a key.
bool isNameOf(const char *keyName, const char *name, std::size_t length) {
    std::size_t i = 0;
    for (; *keyName; ++keyName) {
        if (*keyName == ' ') continue;
        if (i == length || name[i++] != *keyName) return false;
    }
    return i == length;
}

// 0 when there is none of that name.
int findKey(const char *name, std::size_t length) {
    for (int key = SDLK_FIRST + 1; key < SDLK_LAST; ++key) {
        const char *const keyName = SDL_GetKeyName(static_cast<SDLKey>(key));
        if (keyName && std::strcmp(keyName, "unknown key") != 0 && isNameOf(keyName, name, length))
            return key;
    }
    return 0;
}

// The text between the quotes of `line`, which is cut behind it; null without two quotes.
char *quotedText(char *line) {
    char *const first = std::strchr(line, '"'), *const last = std::strrchr(line, '"');
    if (!first || first == last) return nullptr;
    *last = '\0';
    return first + 1;
}

}  // namespace

bool KTINPUT::loadBindings(const char *path) {
    if (!path) return keltra::kit::failNull(kCall, "path");
    vnfParser parser = {nullptr, 0, 0};
    if (!vnfOpenParser(&parser, path)) return false;
    vnfRemoveComments(&parser, '#');
    char line[256];
    for (unsigned int number = 1; vnfReadLine(&parser, line); ++number) {
        removeBlanks(line);
        if (std::strncmp(line, kPrefix, kPrefixLength) != 0) continue;
        char *const equals = std::strchr(line, '=');
        const char *const names = equals ? quotedText(equals + 1) : nullptr;
        if (equals) *equals = '\0';
        const int action = findAction(line + kPrefixLength);
        if (action < 0)
            keltra::kit::warn(KT_FAULT_UNKNOWN, kCall, {path, number, "action", line + kPrefixLength, ""});
        else if (!names)
            keltra::kit::warn(KT_FAULT_LINE, kCall, {path, number, nullptr, line, nullptr});
        else
            bindNames(static_cast<unsigned int>(action), names, path, number);
    }
    return vnfCloseParser(&parser);
}

void KTINPUT::bindNames(unsigned int action, const char *names, const char *path, unsigned int line) {
    int keys[keysOfAction] = {0, 0};
    unsigned int count = 0;
    while (*names) {
        const std::size_t length = std::strcspn(names, "|");
        const int key = findKey(names, length);
        if (key == 0)
            keltra::kit::warn(KT_FAULT_UNKNOWN, kCall, {path, line, "key", names, ""});
        else if (count == keysOfAction)
            keltra::kit::warn(KT_FAULT_LIMIT, kCall, {path, line, "keys of an action", nullptr, "2"});
        else
            keys[count++] = key;
        names += length;
        if (*names) ++names;
    }
    for (unsigned int place = 0; place < keysOfAction; ++place) bind(action, place, keys[place]);
}
