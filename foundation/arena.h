// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FOUNDATION_ARENA_H
#define KELTRA_FOUNDATION_ARENA_H

#include <keltra/foundation.h>

#include "foundation/quiet.h"

#include <cstddef>
#include <new>
#include <type_traits>

namespace keltra {

// Small objects that are released together, packed into chunks of the counted allocator. They stay where they
// are; no destructor runs.
class Arena {
   public:
    static constexpr std::size_t kChunkSize = 8192;

    Arena() : newest(nullptr), used(kChunkSize) {}
    ~Arena() {
        while (Chunk *chunk = newest) {
            newest = chunk->older;
            vnfFree(chunk);
        }
    }
    Arena(const Arena &) = delete;
    Arena &operator=(const Arena &) = delete;

    // A copy of `value`; null when out of memory.
    template <class T>
    T *add(const T &value) {
        static_assert(std::is_trivially_destructible<T>::value, "no destructor runs");
        static_assert(alignof(T) <= alignof(Chunk), "a chunk is aligned for it");
        constexpr std::size_t kSize = (sizeof(T) + alignof(Chunk) - 1) / alignof(Chunk) * alignof(Chunk);
        static_assert(sizeof(Chunk) + kSize <= kChunkSize, "a chunk has room for it");
        if (kSize > kChunkSize - used && !addChunk()) return nullptr;
        void *place = reinterpret_cast<char *>(newest) + used;
        used += kSize;
        return new (place) T(value);
    }

   private:
    union Chunk {
        Chunk *older;
        double alignment;
    };

    bool addChunk() {
        void *memory = allocate(static_cast<unsigned int>(kChunkSize));
        if (!memory) return false;
        Chunk *chunk = new (memory) Chunk;
        chunk->older = newest;
        newest = chunk;
        used = sizeof(Chunk);
        return true;
    }

    Chunk *newest;
    std::size_t used;  // bytes of the newest chunk
};

}  // namespace keltra

#endif
