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

}  // namespace keltra

#endif
