// SPDX-License-Identifier: Zlib
#include <keltra/kit/save.h>

#include "kit/fault.h"
#include "kit/little_endian.h"

#include <cstring>

const unsigned int KTSAVE::capacity;

namespace {

enum Kind : unsigned int { kInt = 1, kFloat = 2, kText = 3, kBytes = 4 };

constexpr unsigned int kHead = 4;  // bytes of an entry before its name
constexpr unsigned int kLongestName = 31;

unsigned int nameLength(const unsigned char *entry) { return entry[1]; }
unsigned int valueSize(const unsigned char *entry) { return entry[2] | unsigned(entry[3]) << 8; }
unsigned int entrySize(const unsigned char *entry) { return kHead + nameLength(entry) + valueSize(entry); }

bool isNamed(const unsigned char *entry, const char *name, std::size_t length) {
    return nameLength(entry) == length && std::memcmp(entry + kHead, name, length) == 0;
}

}  // namespace

KTSAVE::KTSAVE(unsigned int version) : used(0), version(version), readVersion(version) {}

// `used` when there is none.
unsigned int KTSAVE::find(const char *name) const {
    const std::size_t length = name ? std::strlen(name) : 0;
    unsigned int at = 0;
    while (at < used && (length == 0 || !isNamed(values + at, name, length))) at += entrySize(values + at);
    return at;
}

bool KTSAVE::has(const char *name) const { return find(name) < used; }

bool KTSAVE::remove(const char *name) {
    const unsigned int at = find(name);
    if (at >= used) return false;
    const unsigned int size = entrySize(values + at);
    std::memmove(values + at, values + at + size, used - at - size);
    used -= size;
    return true;
}

bool KTSAVE::set(const char *call, const char *name, unsigned int kind, const void *value,
                 unsigned int size) {
    if (!name || !value) return keltra::kit::failNull(call, name ? "value" : "name");
    const std::size_t length = std::strlen(name);
    if (length == 0 || length > kLongestName)
        return keltra::kit::fail(KT_FAULT_ARGUMENT, call, {nullptr, 0, "name", name, "1 to 31 characters"});
    const unsigned int at = find(name), former = at < used ? entrySize(values + at) : 0;
    const unsigned int needed = kHead + static_cast<unsigned int>(length);
    if (size > capacity || used - former + needed + size > capacity)
        return keltra::kit::fail(KT_FAULT_FULL, call, {nullptr, 0, "bytes", name, "4096"});
    // The value may be one of those that are moved.
    unsigned char copy[capacity];
    std::memcpy(copy, value, size);
    remove(name);
    unsigned char *const entry = values + used;
    entry[0] = static_cast<unsigned char>(kind);
    entry[1] = static_cast<unsigned char>(length);
    entry[2] = static_cast<unsigned char>(size & 0xff);
    entry[3] = static_cast<unsigned char>(size >> 8);
    // Without its end: the length is before it. NOLINTNEXTLINE(bugprone-not-null-terminated-result)
    std::memcpy(entry + kHead, name, length);
    std::memcpy(entry + needed, copy, size);
    used += needed + size;
    return true;
}

bool KTSAVE::setInt(const char *name, int value) {
    unsigned char bytes[4];
    keltra::kit::put32(bytes, static_cast<std::uint32_t>(value));
    return set("KTSAVE::setInt", name, kInt, bytes, sizeof bytes);
}

bool KTSAVE::setFloat(const char *name, float value) {
    std::uint32_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    unsigned char bytes[4];
    keltra::kit::put32(bytes, bits);
    return set("KTSAVE::setFloat", name, kFloat, bytes, sizeof bytes);
}

bool KTSAVE::setText(const char *name, const char *value) {
    const std::size_t size = value ? std::strlen(value) + 1 : 0;
    return set("KTSAVE::setText", name, kText, value,
               size <= capacity ? static_cast<unsigned int>(size) : capacity + 1);
}

bool KTSAVE::setBytes(const char *name, const void *bytes, unsigned int size) {
    return set("KTSAVE::setBytes", name, kBytes, bytes, size);
}

// Null when there is none of that name and kind.
const unsigned char *KTSAVE::valueOf(const char *name, unsigned int kind, unsigned int *size) const {
    const unsigned int at = find(name);
    if (at >= used || values[at] != kind) return nullptr;
    *size = valueSize(values + at);
    return values + at + kHead + nameLength(values + at);
}

int KTSAVE::getInt(const char *name, int otherwise) const {
    unsigned int size = 0;
    const unsigned char *const value = valueOf(name, kInt, &size);
    return value ? static_cast<int>(keltra::kit::get32(value)) : otherwise;
}

float KTSAVE::getFloat(const char *name, float otherwise) const {
    unsigned int size = 0;
    const unsigned char *const value = valueOf(name, kFloat, &size);
    if (!value) return otherwise;
    const std::uint32_t bits = keltra::kit::get32(value);
    float result;
    std::memcpy(&result, &bits, sizeof result);
    return result;
}

const char *KTSAVE::getText(const char *name, const char *otherwise) const {
    unsigned int size = 0;
    const unsigned char *const value = valueOf(name, kText, &size);
    return value ? reinterpret_cast<const char *>(value) : otherwise;
}

unsigned int KTSAVE::getBytes(const char *name, void *bytes, unsigned int room) const {
    unsigned int size = 0;
    const unsigned char *const value = valueOf(name, kBytes, &size);
    if (value && bytes) std::memcpy(bytes, value, size < room ? size : room);
    return size;
}
