// SPDX-License-Identifier: Zlib
#include "foundation/block.h"

#include "foundation/quiet.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>

namespace keltra {

unsigned int notedBlocks = 0;

namespace {

struct Note {
    void *block;         // the address that holders have; null for a free entry
    void *allocation;    // the address that the C library has
    std::uint32_t room;  // bytes of the allocation; 0 for a block as long as its contents
    std::uint32_t holders;
};

// Open addressing with linear probing, at most half full. The first entries are static, so that few copies
// take no memory; constant-initialised, since objects of other sources may come here before.
constexpr std::size_t kFirstEntries = 64;
Note firstEntries[kFirstEntries];
Note *entries = firstEntries;
std::size_t capacity = kFirstEntries;  // a power of two

// Blocks lie at multiples of 8; the multiplication spreads what differs into the upper bits.
std::size_t homeOf(const void *block) {
    const std::uint32_t spread =
        static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(block) >> 3) * 0x9E3779B1u;
    return (spread >> 8) & (capacity - 1);
}

// The block's entry, or the free one for it.
Note &entryOf(const void *block) {
    std::size_t index = homeOf(block);
    while (entries[index].block && entries[index].block != block) index = (index + 1) & (capacity - 1);
    return entries[index];
}

Note *find(const void *block) {
    if (notedBlocks == 0 || !block) return nullptr;
    Note &entry = entryOf(block);
    return entry.block ? &entry : nullptr;
}

bool grow() {
    const std::size_t oldCapacity = capacity;
    Note *old = entries;
    const std::size_t bytes = 2 * oldCapacity * sizeof(Note);
    Note *wider = static_cast<Note *>(std::malloc(bytes));
    if (!wider) return false;
    std::memset(wider, 0, bytes);
    entries = wider;
    capacity = 2 * oldCapacity;
    for (std::size_t i = 0; i < oldCapacity; ++i)
        if (old[i].block) entryOf(old[i].block) = old[i];
    if (old == firstEntries)
        std::memset(firstEntries, 0, sizeof firstEntries);
    else
        std::free(old);
    return true;
}

bool add(const Note &note) {
    if (2 * (std::size_t{notedBlocks} + 1) > capacity && !grow()) return false;
    entryOf(note.block) = note;
    ++notedBlocks;
    return true;
}

// Entries after the removed one move up, but none before its home slot.
void remove(Note &removed) {
    std::size_t hole = static_cast<std::size_t>(&removed - entries);
    for (std::size_t i = (hole + 1) & (capacity - 1); entries[i].block; i = (i + 1) & (capacity - 1)) {
        const std::size_t home = homeOf(entries[i].block);
        if (((i - home) & (capacity - 1)) < ((i - hole) & (capacity - 1))) continue;
        entries[hole] = entries[i];
        hole = i;
    }
    entries[hole] = {};
    if (--notedBlocks > 0 || entries == firstEntries) return;
    std::free(entries);
    entries = firstEntries;
    capacity = kFirstEntries;
}

}  // namespace

void *newBlock(std::size_t bytes) {
    if (bytes > std::numeric_limits<std::uint32_t>::max()) return nullptr;
    return allocate(static_cast<unsigned int>(bytes));
}

void *retainBlock(void *block) {
    if (!block) return nullptr;
    if (Note *note = find(block)) {
        ++note->holders;
        return block;
    }
    return add({block, block, 0, 2}) ? block : nullptr;
}

void releaseBlock(void *block) {
    if (block) vnfFree(block);
}

std::size_t roomOf(const void *block) {
    const Note *note = find(block);
    if (!note) return 0;
    if (note->holders > 1) return kShared;
    const std::ptrdiff_t dropped = static_cast<const char *>(block) - static_cast<char *>(note->allocation);
    return note->room ? note->room - static_cast<std::size_t>(dropped) : 0;
}

void *newRoomyBlock(std::size_t room) {
    void *block = newBlock(room);
    if (!block || add({block, block, static_cast<std::uint32_t>(room), 1})) return block;
    vnfFree(block);
    return nullptr;
}

void *dropFront(void *block, std::size_t bytes) {
    Note &note = *find(block);
    Note moved = note;
    remove(note);
    moved.block = static_cast<char *>(block) + bytes;
    add(moved);  // into the place that has just become free
    return moved.block;
}

void *takeFromHolder(void *block) {
    Note *note = find(block);
    if (!note) return block;
    if (note->holders > 1) {
        // With one holder left, a block as long as its contents is like any other.
        if (--note->holders == 1 && note->room == 0) remove(*note);
        return nullptr;
    }
    void *allocation = note->allocation;
    remove(*note);
    return allocation;
}

}  // namespace keltra
