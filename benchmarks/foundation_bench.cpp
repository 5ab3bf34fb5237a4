// SPDX-License-Identifier: Zlib
#include <benchmark/benchmark.h>
#include <keltra/foundation.h>

#include <cstdlib>

#include "foundation/quiet.h"

namespace {

// Draws the given number of identifiers from an empty table and gives them back: the time for one must not
// depend on how many there are.
void drawIdentifiers(benchmark::State &state) {
    const unsigned int count = static_cast<unsigned int>(state.range(0));
    vnfOpenLog(nullptr);
    const unsigned int first = vnfNewId(), second = vnfNewId();
    releaseId(first);
    const unsigned int again = vnfNewId();
    if (first != 1 || second != 2 || again != first)
        return state.SkipWithError("the lowest free identifier is not drawn");
    releaseId(first);
    releaseId(second);
    for (auto _ : state) {
        for (unsigned int i = 0; i < count; ++i) benchmark::DoNotOptimize(vnfNewId());
        for (unsigned int id = count; id >= 1; --id) releaseId(id);
    }
    state.SetItemsProcessed(state.iterations() * count);
}
BENCHMARK(drawIdentifiers)->Arg(1000)->Arg(10000)->Arg(60000);

// One identifier is released and taken again while all others are in use.
void replaceIdentifierAmongMany(benchmark::State &state) {
    const unsigned int count = static_cast<unsigned int>(state.range(0));
    vnfOpenLog(nullptr);
    for (unsigned int i = 0; i < count; ++i) vnfNewId();
    unsigned int id = 1;
    for (auto _ : state) {
        releaseId(id);
        if (vnfNewId() != id) return state.SkipWithError("another identifier was free");
        id = id % count + 1;
    }
    state.SetItemsProcessed(state.iterations());
    vnfOpenLog(nullptr);
}
BENCHMARK(replaceIdentifierAmongMany)->Arg(10000)->Arg(60000);

template <class Take, class Give>
void allocation(benchmark::State &state, Take take, Give give) {
    for (auto _ : state) {
        void *block = take(256);
        benchmark::DoNotOptimize(block);
        give(block);
    }
    state.SetItemsProcessed(state.iterations());
}

// Beside the plain allocator: the difference is the sample of the physical memory.
void countedAllocation(benchmark::State &state) { allocation(state, vnfMalloc, vnfFree); }
BENCHMARK(countedAllocation);

// As the engine allocates for itself: the sample comes later.
void engineAllocation(benchmark::State &state) { allocation(state, keltra::allocate, vnfFree); }
BENCHMARK(engineAllocation);

void plainAllocation(benchmark::State &state) { allocation(state, std::malloc, std::free); }
BENCHMARK(plainAllocation);

}  // namespace
