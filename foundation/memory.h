#ifndef KELTRA_FOUNDATION_MEMORY_H
#define KELTRA_FOUNDATION_MEMORY_H

#include <cstdint>

namespace keltra {

struct MemoryCounters {
    std::uint32_t live, allocations, releases, totalBytes, peak;
};

const MemoryCounters &memoryCounters();
void restartMemoryPeak();

}  // namespace keltra

#endif
