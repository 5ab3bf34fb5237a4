// SPDX-License-Identifier: Zlib
#include "foundation/memory.h"

#include <keltra/foundation.h>

#include "foundation/block.h"
#include "foundation/fault.h"
#include "foundation/quiet.h"
#include "platform/platform.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <limits>

namespace keltra {
namespace {

// Constant-initialised: objects of other sources may allocate before anything in here has run.
MemoryCounters counters = {0, 0, 0, 0, 0};

// The system's file cache does not count as memory in use, but querying its size costs more than an
// allocation. It is queried only when the peak would rise if the cache were as large as it was last, and
// after so many samples.
constexpr unsigned int kSamplesPerCacheSize = 256;
std::uint64_t cacheOfFiles = 0;
unsigned int samplesLeft = 0;

std::uint64_t difference(std::uint64_t more, std::uint64_t less) { return more > less ? more - less : 0; }

// The engine's own blocks are sampled together: asking the system takes longer than twenty allocations.
constexpr unsigned int kSampledTogether = 64 << 10;
unsigned int unsampledBytes = 0;

void samplePeak() {
    unsampledBytes = 0;
    const PhysicalMemory memory = platformMemory();
    const std::uint64_t filled = difference(memory.total, memory.available);
    if (samplesLeft > 0 && difference(filled, cacheOfFiles) <= counters.peak) {
        --samplesLeft;
        return;
    }
    samplesLeft = kSamplesPerCacheSize;
    cacheOfFiles = platformReclaimableMemory(memory);
    const std::uint64_t used = difference(filled, cacheOfFiles);
    if (used > counters.peak) counters.peak = used;
}

void *countedBlock(unsigned int size) {
    constexpr std::uint32_t kMost = std::numeric_limits<std::uint32_t>::max();
    counters.totalBytes = size < kMost - counters.totalBytes ? counters.totalBytes + size : kMost;
    ++counters.live;
    ++counters.allocations;
    return std::malloc(size);
}

}  // namespace

const MemoryCounters &memoryCounters() { return counters; }

void restartMemoryPeak() {
    counters.peak = 0;
    samplesLeft = 0;
    samplePeak();
}

void sampleLateBlocks() {
    if (unsampledBytes > 0) samplePeak();
}

void *allocate(unsigned int size) {
    void *block = countedBlock(size);
    if (size < kSampledTogether - unsampledBytes)
        unsampledBytes += std::max(size, 1u);
    else
        samplePeak();
    return block;
}

}  // namespace keltra

void *vnfMalloc(unsigned int size) {
    void *block = keltra::countedBlock(size);
    keltra::samplePeak();
    if (!block) keltra::failMemory(KT_CALL("vnfMalloc"));
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
    const std::int64_t size = path ? keltra::platformFileSize(path) : -1;
    return size > std::numeric_limits<int>::max() ? -1 : int(size);
}

bool vnfFileExists(const char *path) { return path && keltra::platformFileSize(path) >= 0; }
