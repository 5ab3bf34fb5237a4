// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FOUNDATION_BLOCK_H
#define KELTRA_FOUNDATION_BLOCK_H

// Buffers that public pointers lead to. Each is a plain block of vnfMalloc: an application may release it
// with vnfFree and put a block of its own there. All that is known about a block but its address is kept in a
// separate table, which only holds blocks with several holders and blocks that are longer than their
// contents; vnfFree looks them up there. All others cost nothing.

#include <keltra/foundation.h>

#include <cstddef>

namespace keltra {

// A block with one holder, not cleared. Null when out of memory or when the size exceeds 32 bits.
void *newBlock(std::size_t bytes);

// Adds a holder, for copies of an object that share its block: vnfFree then takes one holder away, uncounted,
// and frees the block with the last one. Returns the block; null for null and when out of memory.
void *retainBlock(void *block);

// Takes a holder away as vnfFree does. Null is ignored.
void releaseBlock(void *block);

// How many bytes the block of a single holder has from `block` on; 0 when only the holder knows its length.
// `kShared` when there are more: it must not be changed for one of them.
constexpr std::size_t kShared = ~std::size_t{0};
std::size_t roomOf(const void *block);

// A block whose contents may grow up to `room` bytes.
void *newRoomyBlock(std::size_t room);

// Takes bytes from the front of a roomy block with one holder. Returns where it begins from now on: the
// address that vnfFree expects.
void *dropFront(void *block, std::size_t bytes);

// For vnfFree: the address to be given to the C library; null when the block has other holders left.
void *takeFromHolder(void *block);

// The number of blocks in the table.
extern unsigned int notedBlocks;

}  // namespace keltra

#endif
