// SPDX-License-Identifier: Zlib
// Items are nodes: the time of one must not grow with their number.

#include <benchmark/benchmark.h>
#include <keltra/node.h>

#include <cstdio>
#include <cstring>
#include <forward_list>

namespace {

void createAll(unsigned int count) {
    for (unsigned int i = 0; i < count; ++i) new KTNODE;
}

void finish(benchmark::State &state) { state.SetItemsProcessed(state.iterations() * state.range(0)); }

void nodeCreation(benchmark::State &state) {
    const unsigned int count = static_cast<unsigned int>(state.range(0));
    createAll(count);
    if (KTNODE::getNumberOfNodes() != count) return state.SkipWithError("nodes are missing");
    KTNODE::cleanUp();
    for (auto _ : state) {
        createAll(count);
        state.PauseTiming();
        KTNODE::cleanUp();
        state.ResumeTiming();
    }
    finish(state);
}

void nodeDestruction(benchmark::State &state) {
    for (auto _ : state) {
        state.PauseTiming();
        createAll(static_cast<unsigned int>(state.range(0)));
        state.ResumeTiming();
        benchmark::DoNotOptimize(KTNODE::cleanUp());
    }
    finish(state);
}

// The parent is the youngest node: its children are destroyed before it, one by one out of its array.
void childrenDestruction(benchmark::State &state) {
    for (auto _ : state) {
        state.PauseTiming();
        createAll(static_cast<unsigned int>(state.range(0)));
        KTNODE *parent = new KTNODE;
        for (KTNODE *node = KTNODE::getFirstNode(); node != parent; node = node->getNextNode())
            node->link(parent);
        state.ResumeTiming();
        benchmark::DoNotOptimize(KTNODE::cleanUp());
    }
    finish(state);
}

void findByName(benchmark::State &state) {
    createAll(static_cast<unsigned int>(state.range(0)) - 1);
    KTNODE *last = new KTNODE;
    last->setName("[node that is looked for]");
    if (KTNODE::findByName(last->getName()) != last) state.SkipWithError("the node is not found");
    for (auto _ : state) benchmark::DoNotOptimize(KTNODE::findByName(last->getName()));
    KTNODE::cleanUp();
    finish(state);
}

void plainListByName(benchmark::State &state) {
    struct Named {
        char name[sizeof(KTNODE)];
    };
    std::forward_list<Named> list;
    for (int i = 0; i < state.range(0); ++i) {
        list.emplace_front();
        std::snprintf(list.front().name, sizeof list.front().name, "[node %d]", i);
    }
    for (auto _ : state)
        for (const Named &named : list)
            benchmark::DoNotOptimize(std::strcmp(named.name, "[node that is looked for]") == 0);
    finish(state);
}

BENCHMARK(nodeCreation)->Arg(1000)->Arg(10000)->Unit(benchmark::kMicrosecond);
BENCHMARK(nodeDestruction)->Arg(1000)->Arg(10000)->Unit(benchmark::kMicrosecond);
BENCHMARK(childrenDestruction)->Arg(1000)->Arg(10000)->Unit(benchmark::kMicrosecond);
BENCHMARK(findByName)->Arg(1000)->Arg(10000)->Unit(benchmark::kMicrosecond);
BENCHMARK(plainListByName)->Arg(1000)->Arg(10000)->Unit(benchmark::kMicrosecond);

}  // namespace
