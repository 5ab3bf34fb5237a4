// SPDX-License-Identifier: Zlib
#include "foundation/name_index.h"

#include "foundation/name_hash.h"
#include "platform/platform.h"

#include <cstdlib>
#include <cstring>

namespace keltra {

std::uint32_t newNameSeed() { return static_cast<std::uint32_t>(platformCounter()) * 0x9E3779B1u + 1; }

#if defined(__SIZEOF_INT128__)
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
