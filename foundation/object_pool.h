// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FOUNDATION_OBJECT_POOL_H
#define KELTRA_FOUNDATION_OBJECT_POOL_H

// Memory for the objects of a class of which there are thousands. The C library's blocks are found and joined
// again one by one, in pages of four kilobytes, each of which the system clears on its own and the processor
// looks up on its own: among 65,000 nodes that takes longer than what is done with them.

#include <cstddef>

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define KELTRA_OBJECT_POOL 0
#endif
#endif
#if !defined(KELTRA_OBJECT_POOL)
#if defined(__linux__) && __SIZEOF_POINTER__ == 8 && !defined(__SANITIZE_ADDRESS__)
#define KELTRA_OBJECT_POOL 1
#else
#define KELTRA_OBJECT_POOL 0  // a sanitizer knows the C library's blocks; small machines have no use for it
#endif
#endif

namespace keltra {

class ObjectPool {
   public:
#if KELTRA_OBJECT_POOL
    static constexpr unsigned int kFewest = 1024;  // objects of the class

    // A block for one more object beside so many; null when it is to come from the C library.
    void *take(std::size_t size, unsigned int objects) {
        return objects < kFewest ? nullptr : takePlace(size);
    }
    // False for a block of the C library. So many objects are left.
    bool giveBack(void *block, unsigned int objects) { return chunks > 0 && leavePlace(block, objects); }

   private:
    struct Chunk;
    struct Size {
        std::size_t bytes;  // 0 for none
        unsigned int taken, chunks;
        Chunk *open;  // those with places left
    };
    static constexpr unsigned int kSizes = 4;  // derived classes differ in size

    void *takePlace(std::size_t bytes);
    bool leavePlace(void *block, unsigned int objects);
    Chunk *addChunk(Size &size);
    void removeChunk(Chunk *chunk);
    bool makeRoom();
    Chunk **entryOf(const Chunk *chunk) const;

    Size sizes[kSizes];
    Chunk **table;  // open addressing by address, at most half full
    unsigned int chunks, capacity;
#else
    void *take(std::size_t, unsigned int) { return nullptr; }
    bool giveBack(void *, unsigned int) { return false; }
#endif
};

}  // namespace keltra

#endif
