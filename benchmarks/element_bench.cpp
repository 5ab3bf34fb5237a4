// SPDX-License-Identifier: Zlib
#include <benchmark/benchmark.h>
#include <keltra/element.h>
#include <keltra/glbridge.h>
#include <keltra/light.h>
#include <keltra/material.h>
#include <keltra/mesh.h>

#include <memory>
#include <random>
#include <vector>

#include "tests/support/gl_recorder.h"

namespace {

using keltra::test::GlRecorder;

const unsigned int kNodes = 1000;
const unsigned int kTransparent = 100;
const unsigned int kLights = 4;

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
