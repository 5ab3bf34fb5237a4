// SPDX-License-Identifier: Zlib
// What one item costs among 100, 1,000, 10,000 and 65,000: none of these may grow with their number, except
// where a plain loop over the same memory beside it does.

#include <benchmark/benchmark.h>
#include <keltra/camera.h>
#include <keltra/foundation.h>
#include <keltra/material.h>
#include <keltra/mesh.h>
#include <keltra/texture.h>
#include <keltra/window.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "foundation/wide_registers.h"

namespace {

std::mt19937 generator(1907);

template <class T>
class Objects {
   public:
    explicit Objects(benchmark::State &state) : all(static_cast<std::size_t>(state.range(0))) {
        static const bool started = vnfOpenLog(nullptr);
        if (!started) state.SkipWithError("the foundation does not start");
        for (T *&object : all) object = new T;
    }
    ~Objects() {
        KTNODE::cleanUp();
        KTMATERIAL::cleanUp();
        KTTEXTURE::cleanUp();
    }
    void shuffle() { std::shuffle(all.begin(), all.end(), generator); }
    auto begin() { return all.begin(); }
    auto end() { return all.end(); }

    std::vector<T *> all;
};

void perItem(benchmark::State &state) {
    state.SetItemsProcessed(state.iterations() * state.range(0));
    using benchmark::Counter;
    state.counters["each"] =
        Counter(static_cast<double>(state.range(0)), Counter::kIsIterationInvariantRate | Counter::kInvert);
}

void create(benchmark::State &state) {
    for (auto _ : state) {
        auto made = std::make_unique<Objects<KTNODE>>(state);
        state.PauseTiming();
        made.reset();
        state.ResumeTiming();
    }
    perItem(state);
}

template <class T>
void destroyShuffled(benchmark::State &state) {
    for (auto _ : state) {
        state.PauseTiming();
        Objects<T> objects(state);
        objects.shuffle();
        state.ResumeTiming();
        for (T *object : objects) delete object;
    }
    perItem(state);
}
void destroyInRandomOrder(benchmark::State &state) { destroyShuffled<KTNODE>(state); }
void destroyWindows(benchmark::State &state) { destroyShuffled<KTWINDOW>(state); }

// The same with blocks of a node's size from the C library, each cleared: no node takes less.
template <bool isDestroyed>
void plainBlocks(benchmark::State &state) {
    std::vector<void *> blocks(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        if (isDestroyed) state.PauseTiming();
        for (void *&block : blocks) block = std::memset(std::malloc(sizeof(KTNODE)), 0, sizeof(KTNODE));
        if (isDestroyed)
            std::shuffle(blocks.begin(), blocks.end(), generator);
        else
            state.PauseTiming();
        if (isDestroyed) state.ResumeTiming();
        for (void *block : blocks) std::free(block);
        if (!isDestroyed) state.ResumeTiming();
    }
    perItem(state);
}

void createPlainBlocks(benchmark::State &state) { plainBlocks<false>(state); }
void destroyPlainBlocks(benchmark::State &state) { plainBlocks<true>(state); }

void linkToOneParent(benchmark::State &state) {
    for (auto _ : state) {
        state.PauseTiming();
        Objects<KTNODE> nodes(state);
        KTNODE parent;
        state.ResumeTiming();
        for (KTNODE *node : nodes) node->link(&parent);
        state.PauseTiming();
        vnfFree(parent.children);
        parent.children = nullptr;
        parent.numberOfChildren = 0;
        state.ResumeTiming();
    }
    perItem(state);
}

enum Order { kFirst, kLast, kRandom };

void unlinkFromOneParent(benchmark::State &state, Order order) {
    for (auto _ : state) {
        state.PauseTiming();
        Objects<KTNODE> nodes(state);
        KTNODE parent;
        for (KTNODE *node : nodes) node->link(&parent);
        if (order == kLast) std::reverse(nodes.begin(), nodes.end());
        if (order == kRandom) nodes.shuffle();
        state.ResumeTiming();
        for (KTNODE *node : nodes) node->unlink();
        state.PauseTiming();
        if (parent.numberOfChildren) state.SkipWithError("children are left");
        nodes.all.clear();
        state.ResumeTiming();
    }
    perItem(state);
}

// The array has to stay without gaps, and only the node knows whose it is: what reading that and one pass
// over the array's shorter part take by themselves.
template <class Pass>
void passShorterPart(benchmark::State &state, Pass pass) {
    Objects<KTNODE> nodes(state);
    nodes.shuffle();
    const std::size_t count = nodes.all.size();
    std::vector<void *> array(count + 1);
    for (auto _ : state) {
        std::size_t left = count;
        for (const KTNODE *node : nodes) {
            const std::size_t index = generator() % left;
            void **const first =
                array.data() + reinterpret_cast<std::uintptr_t>(node->parent);  // which is null
            pass(first, index, left - index - 1);
            --left;
            benchmark::ClobberMemory();
        }
    }
    perItem(state);
}

void moveShorterPart(benchmark::State &state) {
    passShorterPart(state, [](void **first, std::size_t before, std::size_t behind) {
        if (before <= behind)
            std::memmove(first + 1, first, before * sizeof(void *));
        else
            std::memmove(first + before, first + before + 1, behind * sizeof(void *));
    });
}

#if defined(KELTRA_WIDE_REGISTERS)
__attribute__((target("avx512f"))) void readLines(void *const *begin, std::size_t count) {
    const auto address = (reinterpret_cast<std::uintptr_t>(begin) + 63) / 64 * 64;
    const auto *line = reinterpret_cast<const __m512i *>(address);
    __m512i all[4] = {};
    for (std::size_t left = count / 8; left > 4; left -= 4)
        for (__m512i &each : all) each = _mm512_or_si512(each, _mm512_load_si512(line++));
    benchmark::DoNotOptimize(all);
}
#endif

// No pointer is moved that was not read: no processor unlinks in less.
void readShorterPart(benchmark::State &state) {
#if defined(KELTRA_WIDE_REGISTERS)
    if (!keltra::hasAvx512()) return state.SkipWithError("this processor has no AVX-512");
    passShorterPart(state, [](void **first, std::size_t before, std::size_t behind) {
        readLines(before <= behind ? first : first + before, std::min(before, behind));
    });
#else
    state.SkipWithError("not built for this processor");
#endif
}

void unlinkAtRandom(benchmark::State &state) { unlinkFromOneParent(state, kRandom); }
void unlinkFirst(benchmark::State &state) { unlinkFromOneParent(state, kFirst); }
void unlinkLast(benchmark::State &state) { unlinkFromOneParent(state, kLast); }

template <class T, class Find>
void findEach(benchmark::State &state, Objects<T> &objects, Find find) {
    objects.shuffle();
    for (auto _ : state)
        for (T *object : objects)
            if (find(object) != object) return state.SkipWithError("another object is found");
    perItem(state);
}

void findNodeByName(benchmark::State &state) {
    Objects<KTNODE> nodes(state);
    findEach(state, nodes, [](KTNODE *node) { return KTNODE::findByName(node->name); });
}

void findNodeById(benchmark::State &state) {
    Objects<KTNODE> nodes(state);
    findEach(state, nodes, [](KTNODE *node) { return KTNODE::findById(node->id); });
}

void findTextureByFilename(benchmark::State &state) {
    Objects<KTTEXTURE> textures(state);
    findEach(state, textures,
             [](KTTEXTURE *texture) { return KTTEXTURE::findByFilename(texture->filename); });
}

// The same loop without a search. The names of 65,000 objects come from memory, but many at a time here: a
// search has to wait for the name, then for the table.
void compareNames(benchmark::State &state) {
    Objects<KTNODE> nodes(state);
    findEach(state, nodes, [](KTNODE *node) { return std::strcmp(node->name, "none") ? node : nullptr; });
}

// Below a node with ten children, among as many nodes as the row says.
void findInSmallHierarchy(benchmark::State &state) {
    Objects<KTNODE> nodes(state);
    for (int i = 1; i <= 10; ++i) nodes.all[i]->link(nodes.all[0]);
    KTNODE *root = nodes.all[0], *last = nodes.all[10];
    for (auto _ : state) benchmark::DoNotOptimize(root->findByNameInHierarchy(last->name));
}

void releaseAndDrawId(benchmark::State &state) {
    const unsigned int count = static_cast<unsigned int>(state.range(0));
    vnfOpenLog(nullptr);
    for (unsigned int i = 0; i < count; ++i) vnfNewId();
    std::vector<unsigned int> ids(count);
    for (unsigned int i = 0; i < count; ++i) ids[i] = i + 1;
    std::shuffle(ids.begin(), ids.end(), generator);
    for (auto _ : state) {
        for (unsigned int i = 1; i < count; i += 2) {
            releaseId(ids[i - 1]);
            releaseId(ids[i]);
            benchmark::DoNotOptimize(vnfNewId());
            benchmark::DoNotOptimize(vnfNewId());
        }
    }
    perItem(state);
    vnfOpenLog(nullptr);
}

void destroyTextureBesideMaterials(benchmark::State &state) {
    Objects<KTMATERIAL> materials(state);
    for (auto _ : state) delete new KTTEXTURE;
}

// What looking at each material takes by itself: the textures are public fields.
void readTexturesOfMaterials(benchmark::State &state) {
    Objects<KTMATERIAL> materials(state);
    const KTTEXTURE *const wanted = reinterpret_cast<const KTTEXTURE *>(&state);
    for (auto _ : state) {
        std::size_t found = 0;
        for (const KTMATERIAL *material : materials)
            for (const KTTEXTURE *texture : material->texture) found += texture == wanted;
        if (found) return state.SkipWithError("a texture is found");
    }
}

void destroyTextureOfOneMaterial(benchmark::State &state) {
    Objects<KTMATERIAL> materials(state);
    for (auto _ : state) {
        KTTEXTURE *texture = new KTTEXTURE;
        materials.all.back()->setTexture(0, texture);
        delete texture;
    }
}

void destroyMaterialOfOneMesh(benchmark::State &state) {
    Objects<KTMESH> meshes(state);
    for (auto _ : state) {
        KTMATERIAL *material = new KTMATERIAL;
        meshes.all.back()->setMaterial(material);
        delete material;
    }
}

void destroyTargets(benchmark::State &state) {
    for (auto _ : state) {
        state.PauseTiming();
        Objects<KTNODE> nodes(state);
        for (std::size_t i = 1; i < nodes.all.size(); ++i) nodes.all[i - 1]->setTargetNode(nodes.all[i]);
        nodes.shuffle();
        state.ResumeTiming();
        for (KTNODE *node : nodes) delete node;
    }
    perItem(state);
}

void destroyNodesBesideCopies(benchmark::State &state) {
    Objects<KTNODE> nodes(state);
    std::vector<KTNODE> copies(nodes.all.size(), *nodes.all[0]);
    for (auto _ : state) delete new KTNODE;
}

#define GROWTH(row) BENCHMARK(row)->Arg(100)->Arg(1000)->Arg(10000)->Arg(65000)

GROWTH(create);
GROWTH(createPlainBlocks);
GROWTH(destroyInRandomOrder);
GROWTH(destroyPlainBlocks);
GROWTH(linkToOneParent);
GROWTH(unlinkFirst);
GROWTH(unlinkLast);
GROWTH(unlinkAtRandom);
GROWTH(moveShorterPart);
GROWTH(readShorterPart);
GROWTH(findNodeByName);
GROWTH(findNodeById);
GROWTH(findTextureByFilename);
GROWTH(compareNames);
GROWTH(findInSmallHierarchy);
GROWTH(releaseAndDrawId);
BENCHMARK(destroyWindows)->Arg(100)->Arg(1000)->Arg(10000)->Arg(16000);
GROWTH(destroyTextureBesideMaterials);
GROWTH(destroyTextureOfOneMaterial);
GROWTH(readTexturesOfMaterials);
GROWTH(destroyMaterialOfOneMesh);
GROWTH(destroyTargets);
GROWTH(destroyNodesBesideCopies);

}  // namespace
