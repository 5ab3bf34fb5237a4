#include "foundation/memory.h"

#include <keltra/foundation.h>

#include "foundation/block.h"
#include "platform/platform.h"

#include <cstdio>
#include <cstdlib>
#include <limits>

namespace keltra {
namespace {

// Constant-initialised: objects of other sources may allocate before anything in here has run.
MemoryCounters counters = {0, 0, 0, 0, 0};

// The summary prints the peak as a signed number, so a device with more memory in use shows the largest one.
std::uint32_t physicalMemoryInUse() {
    constexpr std::uint64_t kMost = std::numeric_limits<std::int32_t>::max();
    PhysicalMemory memory = platformMemory();
    if (memory.available >= memory.total) return 0;
    std::uint64_t used = memory.total - memory.available;
    return std::uint32_t(used < kMost ? used : kMost);
}

}  // namespace

const MemoryCounters &memoryCounters() { return counters; }

void restartMemoryPeak() { counters.peak = physicalMemoryInUse(); }

}  // namespace keltra

void *vnfMalloc(unsigned int size) {
    using keltra::counters;
    constexpr std::uint32_t kMost = std::numeric_limits<std::uint32_t>::max();
    counters.totalBytes = size < kMost - counters.totalBytes ? counters.totalBytes + size : kMost;
    ++counters.live;
    ++counters.allocations;
    void *block = std::malloc(size);
    std::uint32_t used = keltra::physicalMemoryInUse();
    if (used > counters.peak) counters.peak = used;
    return block;
}

// Null is counted too: a failed vnfMalloc has raised the counters, and its caller may release what it got.
// A block that other holders keep is not released yet, and not counted.
void vnfFree(void *block) {
    if (keltra::notedBlocks > 0 && block && !(block = keltra::takeFromHolder(block))) return;
    --keltra::counters.live;
    ++keltra::counters.releases;
    std::free(block);
}

int vnfFileSize(const char *path) {
    std::FILE *file = path ? std::fopen(path, "rb") : nullptr;
    if (!file) return -1;
    std::int64_t size = std::fseek(file, 0, SEEK_END) == 0 ? std::ftell(file) : -1;
    std::fclose(file);
    return size < 0 || size > std::numeric_limits<int>::max() ? -1 : int(size);
}

bool vnfFileExists(const char *path) {
    std::FILE *file = path ? std::fopen(path, "rb") : nullptr;
    if (!file) return false;
    std::fclose(file);
    return true;
}
