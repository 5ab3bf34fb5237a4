// SPDX-License-Identifier: Zlib
#include <benchmark/benchmark.h>
#include <keltra/element.h>
#include <keltra/glbridge.h>
#include <keltra/light.h>
#include <keltra/material.h>
#include <keltra/mesh.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>
#include <random>
#include <utility>
#include <vector>

#include "math/fixed.h"
#include "math/sine.h"
#include "tests/support/gl_recorder.h"

namespace {

using keltra::test::GlRecorder;

constexpr unsigned int kNodes = 1000;
constexpr unsigned int kTransparent = 100;
constexpr unsigned int kLights = 4;

// The GL does nothing and notes nothing: only the engine is measured.
class Silence {
   public:
    Silence() { GlRecorder::setRecording(false); }

   private:
    const GlRecorder::Stub stub;
};

// A root and 999 nodes below it, every one with up to ten children: 100 transparent meshes, 4 lights and
// opaque meshes.
class Scene {
   public:
    Scene() {
        KTELEMENT::init(0);
        KTMESH::init();
        glass.setTransparency(0.5f);
        std::mt19937 generator(20040117);
        std::uniform_real_distribution<float> place(-50.0f, 50.0f), turn(0.0f, 360.0f);
        for (unsigned int i = 0; i < kNodes; ++i) {
            nodes.push_back(make(i));
            KTNODE &node = *nodes.back();
            node.setPosition(place(generator), place(generator), place(generator));
            node.setRotation(0.0f, turn(generator), 0.0f);
            if (i > 0) node.link(nodes[(i - 1) / 10].get());
        }
        KT_glMatrixMode(GL_MODELVIEW);
        KT_glLoadIdentity();
    }
    ~Scene() {
        KTELEMENT::free();
        KTMESH::free();
    }

    void pass() {
        KTELEMENT::reset();
        KTMESH::reset();
        nodes[0]->pass();
    }

    // Everything is listed, lights first, transparent meshes last and from back to front.
    bool isSorted() const {
        if (KTELEMENT::getNumberOfPassedElements() != kNodes || KTELEMENT::getNumberOfLights() != kLights)
            return false;
        if (KTELEMENT::numberOfTransparencies != kTransparent) return false;
        for (unsigned int i = 0; i < kLights; ++i)
            if (KTELEMENT::getLight(i)->getNode()->getType() != KT_LIGHT) return false;
        for (unsigned int i = kNodes - kTransparent + 1; i < kNodes; ++i)
            if (depth(i) < depth(i - 1)) return false;
        return true;
    }

    KTNODE *root() { return nodes[0].get(); }

   private:
    std::unique_ptr<KTNODE> make(unsigned int index) {
        if (index % (kNodes / kLights) == 7) return std::make_unique<KTLIGHT>();
        auto mesh = std::make_unique<KTMESH>();
        mesh->radius = 1.0f;
        mesh->setMaterial(index % (kNodes / kTransparent) == 3 ? &glass : &stone);
        return mesh;
    }
    static float depth(unsigned int i) { return KTELEMENT::elementPointer[i]->getMatrix()->m[14]; }

    KTMATERIAL glass, stone;
    std::vector<std::unique_ptr<KTNODE>> nodes;
};

void passTree(benchmark::State &state) {
    const Silence silence;
    Scene scene;
    scene.pass();
    KTELEMENT::sort3D();
    if (!scene.isSorted()) return state.SkipWithError("the list is not what it should be");
    for (auto _ : state) scene.pass();
    state.SetItemsProcessed(state.iterations() * kNodes);
}
BENCHMARK(passTree);

void passAndSortTree(benchmark::State &state) {
    const Silence silence;
    Scene scene;
    for (auto _ : state) {
        scene.pass();
        KTELEMENT::sort3D();
    }
    if (!scene.isSorted()) return state.SkipWithError("the list is not what it should be");
    state.SetItemsProcessed(state.iterations() * kNodes);
}
BENCHMARK(passAndSortTree);

// The same work by hand: what the tree needs lies in one array in the order of the walk, and nothing is asked
// that this tree does not need. The calls of the GL are the same. With known sines no node may turn.
template <bool areSinesKnown>
class BareTree {
   public:
    explicit BareTree(KTNODE *root) { add(root, 0); }

    void passAndSort() {
        unsigned int depth = 0;
        for (std::size_t i = 0; i < steps.size(); ++i) {
            const Step &step = steps[i];
            for (; depth > step.depth; --depth) glPopMatrix();
            std::memcpy(stack[depth + 1], stack[depth], sizeof stack[0]);
            ++depth;
            glPushMatrix();
            place(step, stack[depth]);
            Entry &entry = entries[i];
            entry.node = step.node;
            entry.auxId = entry.param1 = 0;
            entry.distance = 0.0f;
            entry.nearestLight[0] = entry.nearestLight[1] = entry.nearestLight[2] = entry.nearestLight[3] =
                nullptr;
            std::memcpy(entry.matrix, stack[depth], sizeof entry.matrix);
            std::memcpy(cached[i], stack[depth], sizeof entry.matrix);
        }
        for (; depth > 0; --depth) glPopMatrix();
        sort();
    }

    // The entries of the engine's list, in its order.
    bool isTheList() const {
        for (unsigned int i = 0; i < kNodes; ++i) {
            const KTELEMENT &listed = *KTELEMENT::elementPointer[i];
            if (listed.node != order[i]->node ||
                !std::equal(listed.matrix.m, listed.matrix.m + 16, order[i]->matrix))
                return false;
        }
        return true;
    }

   private:
    enum Rank { kFirst, kMiddle, kBehind };
    struct Step {
        KTNODE *node;
        unsigned int depth;
        float position[3], degrees;
        keltra::Rotation turn;
        float radius;
        Rank rank;
    };
    struct Entry {
        KTNODE *node;
        float matrix[16];
        unsigned int auxId;
        float distance;
        Entry *nearestLight[4];
        unsigned int param1;
    };

    void add(KTNODE *node, unsigned int depth) {
        const KTMESH *mesh = node->type == KT_MESH ? static_cast<KTMESH *>(node) : nullptr;
        const R3XVECTOR3D at = node->position;
        steps.push_back({node,
                         depth,
                         {at.x, at.y, at.z},
                         node->rotation.y,
                         keltra::rotationOf(node->rotation.y),
                         mesh ? mesh->radius : 0.0f,
                         mesh ? mesh->material->isTransparent() ? kBehind : kMiddle : kFirst});
        for (unsigned int i = 0; i < node->numberOfChildren; ++i) add(node->children[i], depth + 1);
    }

    static void place(const Step &step, float *m) {
        const float *const p = step.position;
        for (int j = 0; j < 4; ++j) m[12 + j] = p[0] * m[j] + p[1] * m[4 + j] + p[2] * m[8 + j] + m[12 + j];
        keltra::Rotation turn = step.turn;
        if (!areSinesKnown) {
            const float radians = step.degrees * 0.0055555557f * 3.1415927f;
            turn.sine = static_cast<float>(std::sin(static_cast<double>(radians)));
            turn.cosine = static_cast<float>(std::cos(static_cast<double>(radians)));
            turn.unit = (1.0f - turn.cosine) + turn.cosine;
        }
        for (int j = 0; j < 4; ++j) {
            const float x = m[j], z = m[8 + j];
            m[j] = turn.cosine * x - turn.sine * z;
            m[4 + j] *= turn.unit;
            m[8 + j] = turn.sine * x + turn.cosine * z;
        }
        glTranslatex(keltra::toFixed(p[0]), keltra::toFixed(p[1]), keltra::toFixed(p[2]));
        glRotatex(0, 65536, 0, 0);
        glRotatex(keltra::toFixed(step.degrees), 0, 65536, 0);
        glRotatex(0, 0, 0, 65536);
    }

    void sort() {
        unsigned int places[3] = {0, kLights, kNodes - kTransparent};
        std::pair<float, Entry *> behind[kTransparent];
        for (std::size_t i = 0; i < kNodes; ++i) {
            const unsigned int at = places[steps[i].rank]++;
            order[at] = &entries[i];
            if (steps[i].rank == kBehind)
                behind[at - (kNodes - kTransparent)] = {entries[i].matrix[14] - steps[i].radius, &entries[i]};
        }
        std::sort(behind, behind + kTransparent);
        for (std::size_t i = 0; i < kTransparent; ++i) order[kNodes - kTransparent + i] = behind[i].second;
    }

    std::vector<Step> steps;
    float stack[32][16] = {{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}};
    Entry entries[kNodes], *order[kNodes];
    float cached[kNodes][16];
};

template <bool areSinesKnown>
void bareTree(benchmark::State &state) {
    const Silence silence;
    Scene scene;
    scene.pass();
    KTELEMENT::sort3D();
    const auto tree = std::make_unique<BareTree<areSinesKnown>>(scene.root());
    tree->passAndSort();
    if (!tree->isTheList()) return state.SkipWithError("the list is another one");
    for (auto _ : state) {
        tree->passAndSort();
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * kNodes);
}
void passAndSortByHand(benchmark::State &state) { bareTree<false>(state); }
void passAndSortByHandStill(benchmark::State &state) { bareTree<true>(state); }
BENCHMARK(passAndSortByHand);
BENCHMARK(passAndSortByHandStill);

// The nearest lights of one object, as each mesh asks for them.
void sortLights(benchmark::State &state) {
    const Silence silence;
    Scene scene;
    scene.pass();
    KTELEMENT::sort3D();
    float x = 0.0f;
    for (auto _ : state) {
        x = x < 100.0f ? x + 1.0f : -100.0f;
        KTELEMENT::sortLights(R3XVECTOR3D(x, 0.0f, 0.0f));
    }
    if (KTELEMENT::getLight(0)->getDistance() > KTELEMENT::getLight(kLights - 1)->getDistance())
        return state.SkipWithError("the lights are not sorted");
    state.SetItemsProcessed(state.iterations() * kLights);
}
BENCHMARK(sortLights);

// One matrix call of the bridge: the product on the mirror, the conversion and a GL call that does nothing.
void matrixCall(benchmark::State &state, void (*call)(const float *)) {
    const Silence silence;
    const float quarterTurn[16] = {0.0f, 1.0f, 0.0f, 0.0f, -1.0f, 0.0f, 0.0f, 0.0f,
                                   0.0f, 0.0f, 1.0f, 0.0f, 0.0f,  0.0f, 0.0f, 1.0f};
    KT_glMatrixMode(GL_MODELVIEW);
    KT_glLoadMatrixf(quarterTurn);
    float top[16];
    KT_glGetFloatv(0, top);
    if (top[1] != 1.0f) return state.SkipWithError("the mirror does not hold what was loaded");
    for (auto _ : state) call(quarterTurn);
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK_CAPTURE(matrixCall, load, [](const float *m) { KT_glLoadMatrixf(m); });
BENCHMARK_CAPTURE(matrixCall, multiply, [](const float *m) { KT_glMultMatrixf(m); });
BENCHMARK_CAPTURE(matrixCall, translate, [](const float *m) { KT_glTranslatef(m[0], m[5], m[2]); });
BENCHMARK_CAPTURE(matrixCall, rotate, [](const float *m) { KT_glRotatef(12.0f * m[1], m[2], m[1], m[3]); });
BENCHMARK_CAPTURE(matrixCall, rotateByNothing, [](const float *m) { KT_glRotatef(m[0], m[1], m[2], m[3]); });
BENCHMARK_CAPTURE(matrixCall, pushAndPop, [](const float *) {
    KT_glPushMatrix();
    KT_glPopMatrix();
});

}  // namespace
