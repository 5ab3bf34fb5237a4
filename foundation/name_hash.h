// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FOUNDATION_NAME_HASH_H
#define KELTRA_FOUNDATION_NAME_HASH_H

#if defined(__SIZEOF_INT128__)
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace keltra {

template <class T>
std::uint64_t loadPart(const char *from) {
    T value;
    std::memcpy(&value, from, sizeof value);
    return value;
}

inline std::uint64_t mixProduct(std::uint64_t a, std::uint64_t b) {
    __extension__ using Product = unsigned __int128;
    const Product product = Product{a ^ 0x9E3779B97F4A7C15u} * (b ^ 0xD6E8FEB86659FD93u);
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
}

// Sixteen characters a product, each half beside a value that no file knows: no name makes it zero. The last
// ones are read together with some of those before them.
[[gnu::always_inline]] inline std::uint32_t hashName(const char *name, std::size_t length,
                                                     std::uint32_t seed) {
    const char *const end = name + length;
    std::uint64_t hash = mixProduct(seed, length), first, last;
    const std::uint64_t secret = hash * 0x9FB21C651E98DF25u;
    for (; end - name > 16; name += 16)
        hash = mixProduct(loadPart<std::uint64_t>(name) ^ hash, loadPart<std::uint64_t>(name + 8) ^ secret);
    if (length >= 8) {
        first = loadPart<std::uint64_t>(end - name >= 8 ? name : end - 8);
        last = loadPart<std::uint64_t>(end - 8);
    } else if (length >= 4) {
        first = loadPart<std::uint32_t>(name);
        last = loadPart<std::uint32_t>(end - 4);
    } else {
        first = length > 0 ? loadPart<std::uint8_t>(name) << 8 | loadPart<std::uint8_t>(end - 1) : 0;
        last = length > 0 ? loadPart<std::uint8_t>(name + length / 2) : 0;
    }
    hash = mixProduct(first ^ hash, last ^ secret);
    return static_cast<std::uint32_t>(hash ^ hash >> 32);
}

}  // namespace keltra
#endif

#endif
