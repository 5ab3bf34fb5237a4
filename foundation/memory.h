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

}  // namespace keltra

#endif
