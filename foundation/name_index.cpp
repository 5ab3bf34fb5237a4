// SPDX-License-Identifier: Zlib
#include "foundation/name_index.h"

#include "platform/platform.h"

#include <cstdlib>
#include <cstring>

namespace keltra {

std::uint32_t newNameSeed() { return static_cast<std::uint32_t>(platformCounter()) * 0x9E3779B1u + 1; }

#if defined(__SIZEOF_INT128__)
namespace {

template <class T>
std::uint64_t load(const char *from) {
    T value;
    std::memcpy(&value, from, sizeof value);
    return value;
}

std::uint64_t mix(std::uint64_t a, std::uint64_t b) {
    __extension__ using Product = unsigned __int128;
    const Product product = Product{a ^ 0x9E3779B97F4A7C15u} * (b ^ 0xD6E8FEB86659FD93u);
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
}

}  // namespace

// Sixteen characters a product, each half beside a value that no file knows: no name makes it zero. The last
// ones are read together with some of those before them.
std::uint32_t hashName(const char *name, std::size_t length, std::uint32_t seed) {
    const char *const end = name + length;
    std::uint64_t hash = mix(seed, length), first, last;
    const std::uint64_t secret = hash * 0x9FB21C651E98DF25u;
    for (; end - name > 16; name += 16)
        hash = mix(load<std::uint64_t>(name) ^ hash, load<std::uint64_t>(name + 8) ^ secret);
    if (length >= 8) {
        first = load<std::uint64_t>(end - name >= 8 ? name : end - 8);
        last = load<std::uint64_t>(end - 8);
    } else if (length >= 4) {
        first = load<std::uint32_t>(name);
        last = load<std::uint32_t>(end - 4);
    } else {
        first = length > 0 ? load<std::uint8_t>(name) << 8 | load<std::uint8_t>(end - 1) : 0;
        last = length > 0 ? load<std::uint8_t>(name + length / 2) : 0;
    }
    hash = mix(first ^ hash, last ^ secret);
    return static_cast<std::uint32_t>(hash ^ hash >> 32);
}

std::uint32_t hashName(const char *name, std::uint32_t seed) {
    return hashName(name, std::strlen(name), seed);
}
#else
std::uint32_t hashName(const char *name, std::uint32_t seed) {
    std::uint32_t hash = seed;
    for (; *name; ++name) {
        hash = (hash ^ static_cast<unsigned char>(*name)) * 0x01000193u;
        hash ^= hash >> 15;
    }
    return hash;
}
#endif

NameTable::NameTable()
    : firstEntries(), entries(firstEntries), capacity(kFirstEntries), count(0), seed(newNameSeed()) {}

NameTable::~NameTable() {
    if (entries != firstEntries) std::free(entries);
}

// The name's entry, or the free one for it: linear probing, at most half full.
NameTable::Entry &NameTable::entryOf(const char *name, std::uint32_t hash) const {
    for (std::size_t index = hash;; ++index) {
        Entry &entry = entries[index & (capacity - 1)];
        if (!entry.name || (entry.hash == hash && std::strcmp(entry.name, name) == 0)) return entry;
    }
}

void *NameTable::find(const char *name) const { return entryOf(name, hashName(name, seed)).object; }

bool NameTable::add(const char *name, void *object) {
    if (2 * (count + 1) > capacity && !grow()) return false;
    const std::uint32_t hash = hashName(name, seed);
    Entry &entry = entryOf(name, hash);
    if (entry.name) return true;
    entry = {name, object, hash};
    ++count;
    return true;
}

bool NameTable::grow() {
    Entry *old = entries;
    const std::size_t oldCapacity = capacity;
    Entry *wider = static_cast<Entry *>(std::calloc(2 * oldCapacity, sizeof(Entry)));
    if (!wider) return false;
    entries = wider;
    capacity = 2 * oldCapacity;
    for (std::size_t i = 0; i < oldCapacity; ++i) {
        if (!old[i].name) continue;
        std::size_t index = old[i].hash;
        while (entries[index & (capacity - 1)].name) ++index;
        entries[index & (capacity - 1)] = old[i];
    }
    if (old != firstEntries) std::free(old);
    return true;
}

}  // namespace keltra
