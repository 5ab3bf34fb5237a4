// SPDX-License-Identifier: Zlib
// The file: "KTSAVE", a byte 1 for the format and a byte 0, then the version, the size of the entries and
// their checksum (CRC-32) in four bytes each, lowest first, and the entries.
#include <keltra/kit/save.h>

#include <keltra/foundation.h>

#include "kit/durable_file.h"
#include "kit/fault.h"
#include "kit/little_endian.h"

#include <cstdio>
#include <cstring>

namespace {

constexpr unsigned char kMagic[8] = {'K', 'T', 'S', 'A', 'V', 'E', 1, 0};
constexpr unsigned int kVersionAt = 8, kSizeAt = 12, kChecksumAt = 16, kHeader = 20;
constexpr char kEnding[] = ".new";
constexpr std::size_t kLongestPath = 255 - (sizeof kEnding - 1);
constexpr char kReadCall[] = "KTSAVE::read";

// Over the version, the size and the entries.
std::uint32_t checksum(const unsigned char *file, unsigned int size) {
    std::uint32_t crc = 0xffffffffu;
    for (unsigned int i = kVersionAt; i < kHeader + size; ++i) {
        if (i == kChecksumAt) i = kHeader;
        if (i >= kHeader + size) break;
        crc ^= file[i];
        for (int bit = 0; bit < 8; ++bit) crc = crc >> 1 ^ (crc & 1 ? 0xedb88320u : 0);
    }
    return ~crc;
}

// What a checksum does not tell: a file with a good one that was made by something else.
bool areEntries(const unsigned char *values, unsigned int size) {
    unsigned int at = 0;
    while (at < size) {
        if (size - at < 4) return false;
        const unsigned int kind = values[at], name = values[at + 1],
                           length = values[at + 2] | unsigned(values[at + 3]) << 8;
        if (name < 1 || name > 31 || kind < 1 || kind > 4 || size - at - 4 < name + length) return false;
        const unsigned char *const value = values + at + 4 + name;
        if ((kind < 3 && length != 4) || (kind == 3 && (length == 0 || value[length - 1] != 0))) return false;
        at += 4 + name + length;
    }
    return true;
}

bool refuse(const char *path, const char *field, const char *rule) {
    return keltra::kit::fail(KT_FAULT_DATA, kReadCall, {path, 0, field, nullptr, rule});
}

// Reads the file into `bytes`, of one byte more than a whole one. -1, with a fault, when it cannot be read.
int readFile(const char *path, unsigned char *bytes, unsigned int room) {
    // Opening a pipe would wait, and a folder can be opened.
    const bool isThere = vnfFileExists(path);
    std::FILE *const file = isThere ? std::fopen(path, "rb") : nullptr;
    const std::size_t size = file ? std::fread(bytes, 1, room, file) : 0;
    const bool good = file && !std::ferror(file);
    if (file) std::fclose(file);
    if (good) return static_cast<int>(size);
    keltra::kit::fail(isThere ? KT_FAULT_FILE_READ : KT_FAULT_FILE_MISSING, kReadCall,
                      {path, 0, nullptr, nullptr, nullptr});
    return -1;
}

}  // namespace

bool KTSAVE::write(const char *path) const {
    const char *const call = "KTSAVE::write";
    if (!path) return keltra::kit::failNull(call, "path");
    if (!*path || std::strlen(path) > kLongestPath)
        return keltra::kit::fail(KT_FAULT_FILE_NAME, call, {path, 0, nullptr, nullptr, nullptr});
    unsigned char bytes[kHeader + capacity];
    std::memcpy(bytes, kMagic, sizeof kMagic);
    keltra::kit::put32(bytes + kVersionAt, version);
    keltra::kit::put32(bytes + kSizeAt, used);
    std::memcpy(bytes + kHeader, values, used);
    keltra::kit::put32(bytes + kChecksumAt, checksum(bytes, used));
    char newPath[256];
    std::snprintf(newPath, sizeof newPath, "%s%s", path, kEnding);
    return keltra::kit::replaceFile(path, newPath, bytes, kHeader + used) ||
           keltra::kit::fail(KT_FAULT_FILE_WRITE, call, {path, 0, nullptr, nullptr, nullptr});
}

bool KTSAVE::read(const char *path) {
    if (!path) return keltra::kit::failNull(kReadCall, "path");
    unsigned char bytes[kHeader + capacity + 1];
    const int size = readFile(path, bytes, sizeof bytes);
    if (size < 0) return false;
    if (unsigned(size) < kHeader || std::memcmp(bytes, kMagic, sizeof kMagic) != 0)
        return refuse(path, "magic", "not a saved game");
    const std::uint32_t entries = keltra::kit::get32(bytes + kSizeAt);
    if (entries > capacity || entries + kHeader != unsigned(size))
        return refuse(path, "size", "not the size of the file");
    if (checksum(bytes, entries) != keltra::kit::get32(bytes + kChecksumAt))
        return refuse(path, "checksum", "not that of the contents");
    if (!areEntries(bytes + kHeader, entries)) return refuse(path, "entries", "not those of a saved game");
    if (keltra::kit::get32(bytes + kVersionAt) > version)
        return refuse(path, "version", "that of a later program");
    readVersion = keltra::kit::get32(bytes + kVersionAt);
    std::memcpy(values, bytes + kHeader, entries);
    used = entries;
    return true;
}
