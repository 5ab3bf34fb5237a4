#ifndef KELTRA_FOUNDATION_LIFECYCLE_H
#define KELTRA_FOUNDATION_LIFECYCLE_H

// What opening and closing the log does to the other services of the foundation.

#include <cstdint>

namespace keltra {

struct MemoryCounters {
    std::uint32_t live, allocations, releases, totalBytes, peak;
};

const MemoryCounters &memoryCounters();
void restartMemoryPeak();

void freeAllTimers();

void takeIdentifierTable();
void dropIdentifierTable();

}  // namespace keltra

#endif
