#ifndef KELTRA_FOUNDATION_BLOCK_H
#define KELTRA_FOUNDATION_BLOCK_H

// Reference-counted buffers for what copies of an object share, taken from the counted allocator.

#include <keltra/foundation.h>

#include <cstddef>
#include <cstdint>
#include <new>

namespace keltra {

// Stands directly before the contents. The allocation begins up to 15 bytes earlier where malloc aligns to 8
// only.
struct BlockHeader {
    void *allocation;
    std::size_t holders;
};

constexpr std::size_t kBlockAlignment = 16;
static_assert(sizeof(BlockHeader) <= kBlockAlignment, "the header fits ahead of the contents");

inline BlockHeader *blockHeader(void *block) { return static_cast<BlockHeader *>(block) - 1; }

// A block with one holder, aligned to 16 bytes, not cleared. Null when memory is out or the size exceeds 32
// bits.
inline void *newBlock(std::size_t bytes) {
    constexpr std::size_t kOverhead = 2 * kBlockAlignment;
    if (bytes > UINT32_MAX - kOverhead) return nullptr;
    void *allocation = vnfMalloc(static_cast<unsigned int>(bytes + kOverhead));
    if (!allocation) return nullptr;
    std::size_t past = reinterpret_cast<std::uintptr_t>(allocation) % kBlockAlignment;
    void *block = static_cast<char *>(allocation) + kOverhead - past;
    new (blockHeader(block)) BlockHeader{allocation, 1};
    return block;
}

// Adds a holder. Returns the block; null stays null.
inline void *retainBlock(void *block) {
    if (block) ++blockHeader(block)->holders;
    return block;
}

// Takes a holder away and frees the block with the last one. Null is ignored.
inline void releaseBlock(void *block) {
    if (block && --blockHeader(block)->holders == 0) vnfFree(blockHeader(block)->allocation);
}

}  // namespace keltra

#endif
