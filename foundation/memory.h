// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FOUNDATION_MEMORY_H
#define KELTRA_FOUNDATION_MEMORY_H

#include <cstdint>

namespace keltra {

struct MemoryCounters {
    std::uint32_t live, allocations, releases, totalBytes;
    std::uint64_t peak;  // 32 bits would hold no more than 4 GiB
};

const MemoryCounters &memoryCounters();
void restartMemoryPeak();
// To be called where time passes anyway, at each log and frame: samples the peak for blocks that the engine
// has allocated since it was sampled last. `vnfMalloc` samples at once.
void sampleLateBlocks();

// What `new` of a listed class does without memory. Of the classes' sources only this throws: they need
// tables that lead through their functions, but no code that cleans up.
[[noreturn]] void throwNoMemory();

}  // namespace keltra

#endif
