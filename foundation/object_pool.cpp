// SPDX-License-Identifier: Zlib
#include "foundation/object_pool.h"

#if KELTRA_OBJECT_POOL

#include "platform/platform.h"

#include <cstdint>
#include <cstdlib>
#include <new>

namespace keltra {
namespace {

constexpr std::size_t kChunkBytes = std::size_t{2} << 20;  // a large page
constexpr std::size_t kPlaceUnit = 16;                     // as the C library aligns
constexpr std::size_t kLines = 128;                        // two lines of the cache
constexpr std::size_t kLargestObject = 4096;
constexpr unsigned int kSingleBlocks = 256;  // a size that is seldom takes no chunk
constexpr unsigned int kSmallPages = 2;      // chunks whose pages come one by one: the memory is not wasted

struct Place {
    Place *next;
};

}  // namespace

// At a multiple of its size, so that a block's address tells its chunk.
struct ObjectPool::Chunk {
    Size *size;
    Chunk *next, **link;  // among those with places left; `link` is null in a full one
    Place *left;          // given back
    unsigned int used;
    char *fresh;  // from here on no place was used

    bool isFull() const {
        return !left && fresh + size->bytes > reinterpret_cast<const char *>(this) + kChunkBytes;
    }
    void open() {
        next = size->open;
        if (next) next->link = &next;
        link = &size->open;
        size->open = this;
    }
    void close() {
        *link = next;
        if (next) next->link = link;
        link = nullptr;
    }
};

void *ObjectPool::takePlace(std::size_t bytes) {
    if (bytes > kLargestObject) return nullptr;
    bytes = (bytes + kPlaceUnit - 1) / kPlaceUnit * kPlaceUnit;
    // Else a field would lie in few places of the processor's cache, whichever object it is in.
    if (bytes % kLines == 0) bytes += kPlaceUnit;
    Size *size = sizes;
    while (size->bytes != bytes && size->bytes)
        if (++size == sizes + kSizes) return nullptr;
    size->bytes = bytes;
    if (!size->open && ++size->taken <= kSingleBlocks) return nullptr;
    Chunk *const chunk = size->open ? size->open : addChunk(*size);
    if (!chunk) return nullptr;
    void *place = chunk->left;
    if (place) {
        chunk->left = chunk->left->next;
    } else {
        place = chunk->fresh;
        chunk->fresh += bytes;
    }
    ++chunk->used;
    if (chunk->isFull()) chunk->close();
    return place;
}

bool ObjectPool::leavePlace(void *block, unsigned int objects) {
    auto *const chunk =
        reinterpret_cast<Chunk *>(reinterpret_cast<std::uintptr_t>(block) & ~(kChunkBytes - 1));
    if (!*entryOf(chunk)) return false;
    chunk->left = new (block) Place{chunk->left};
    if (!chunk->link) chunk->open();
    // One empty chunk stays for the next objects while there are many.
    const bool needed = objects >= kFewest / 2 && chunk->size->open == chunk && !chunk->next;
    if (--chunk->used == 0 && !needed) removeChunk(chunk);
    return true;
}

// The entry of the chunk, or the free one behind the search.
ObjectPool::Chunk **ObjectPool::entryOf(const Chunk *chunk) const {
    std::size_t index = reinterpret_cast<std::uintptr_t>(chunk) / kChunkBytes;
    while (table[index & (capacity - 1)] && table[index & (capacity - 1)] != chunk) ++index;
    return table + (index & (capacity - 1));
}

bool ObjectPool::makeRoom() {
    if (2 * (chunks + 1) <= capacity) return true;
    const unsigned int formerCapacity = capacity;
    Chunk **const former = table;
    auto *const wider = static_cast<Chunk **>(std::calloc(capacity ? 2 * capacity : 64, sizeof(Chunk *)));
    if (!wider) return false;
    table = wider;
    capacity = capacity ? 2 * capacity : 64;
    for (unsigned int i = 0; i < formerCapacity; ++i)
        if (former[i]) *entryOf(former[i]) = former[i];
    std::free(former);
    return true;
}

ObjectPool::Chunk *ObjectPool::addChunk(Size &size) {
    void *const memory = makeRoom() ? platformTakePages(kChunkBytes) : nullptr;
    if (!memory) return nullptr;
    if (size.chunks >= kSmallPages) platformExpectUse(memory, kChunkBytes);
    const std::size_t begin = (sizeof(Chunk) + 63) / 64 * 64;
    auto *const chunk =
        new (memory) Chunk{&size, nullptr, nullptr, nullptr, 0, static_cast<char *>(memory) + begin};
    chunk->open();
    *entryOf(chunk) = chunk;
    ++chunks;
    ++size.chunks;
    return chunk;
}

// Those behind it are entered anew: a search ends at a free entry.
void ObjectPool::removeChunk(Chunk *chunk) {
    chunk->close();
    if (--chunk->size->chunks == 0) chunk->size->taken = 0;
    --chunks;
    Chunk **entry = entryOf(chunk);
    *entry = nullptr;
    platformReturnPages(chunk, kChunkBytes);
    if (chunks == 0) {
        std::free(table);
        table = nullptr;
        capacity = 0;
        return;
    }
    for (;;) {
        if (++entry == table + capacity) entry = table;
        Chunk *const moved = *entry;
        if (!moved) return;
        *entry = nullptr;
        *entryOf(moved) = moved;
    }
}

}  // namespace keltra

#endif
