// SPDX-License-Identifier: Zlib
#include <benchmark/benchmark.h>
#include <keltra/element.h>
#include <keltra/emitter.h>
#include <keltra/engine.h>
#include <keltra/foundation.h>

#include <cmath>
#include <cstdlib>
#include <memory>
#include <vector>

#include "tests/support/gl_recorder.h"

namespace {

using keltra::test::GlRecorder;

constexpr int kEmitters = 20;
constexpr int kMost = 512;

// The pool and the frame timer, without a window; the GL does nothing and notes nothing.
class Running {
   public:
    Running() {
        GlRecorder::setRecording(false);
        std::srand(20040117);
        KTEMITTER::init();
        KELTRA::timer = vnfNewTimer(1.0f);
        vnfAdjournTimer(KELTRA::timer);
    }
    ~Running() {
        KTEMITTER::free();
        vnfFreeTimer(KELTRA::timer);
        KELTRA::timer = -1;
    }

   private:
    const GlRecorder::Stub stub;
};

bool isAllFinite(unsigned count) {
    for (unsigned i = 0; i < 4 * count; ++i)
        if (!std::isfinite(KTEMITTER::vertexArray[i].x)) return false;
    return true;
}

void report(benchmark::State &state, std::int64_t particles) {
    state.SetItemsProcessed(state.iterations() * particles);
    state.counters["time_per_particle"] =
        benchmark::Counter(static_cast<double>(particles),
                           benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

// One frame of a full emitter; a maximum spin above 1 turns the squares one by one.
void particles(benchmark::State &state, int type, unsigned spin) {
    const Running running;
    KTEMITTER emitter;
    emitter.setEmitterType(type);
    emitter.setMaximumSpin(spin);
    emitter.setSpinning(spin > 1 ? 1.0f : 0.0f);
    emitter.setNumberOfParticles(kMost);
    KTELEMENT element;
    if (!emitter.render(&element) || KTEMITTER::numberbOfParticlesUsed != kMost || !isAllFinite(kMost))
        return state.SkipWithError("the particles are not what they should be");
    for (auto _ : state) {
        vnfAdjournTimer(KELTRA::timer);
        emitter.render(&element);
        benchmark::ClobberMemory();
    }
    report(state, kMost);
}
BENCHMARK_CAPTURE(particles, points, 0, 1u);
BENCHMARK_CAPTURE(particles, rectangle, 1, 1u);
BENCHMARK_CAPTURE(particles, disc, 2, 1u);
BENCHMARK_CAPTURE(particles, turningPoints, 0, 90u);

// All of them die in every frame.
void spawning(benchmark::State &state) {
    const Running running;
    KTEMITTER emitter;
    emitter.setMaximumEnergy(0);
    emitter.setNumberOfParticles(kMost);
    KTELEMENT element;
    emitter.render(&element);
    if (KTEMITTER::colorArray[3] != 0) return state.SkipWithError("the particles are alive");
    for (auto _ : state) {
        emitter.render(&element);
        benchmark::ClobberMemory();
    }
    report(state, kMost);
}
BENCHMARK(spawning);

// Twenty emitters that want 512 particles each share the pool's 1,024: two are full, the others have none.
void twentyEmitters(benchmark::State &state) {
    const Running running;
    std::vector<std::unique_ptr<KTEMITTER>> emitters;
    KTELEMENT element;
    for (int i = 0; i < kEmitters; ++i) {
        emitters.push_back(std::make_unique<KTEMITTER>());
        emitters.back()->setNumberOfParticles(kMost);
        emitters.back()->render(&element);
    }
    if (KTEMITTER::numberbOfParticlesUsed != KTEMITTER::poolSize || emitters[2]->slot[0] >= 0)
        return state.SkipWithError("the pool is not shared");
    for (auto _ : state) {
        vnfAdjournTimer(KELTRA::timer);
        for (const auto &emitter : emitters) emitter->render(&element);
        benchmark::ClobberMemory();
    }
    report(state, KTEMITTER::poolSize);
}
BENCHMARK(twentyEmitters);

// The least cost of one motion and four corners: the same sums, without colours, lifetimes and the pool.
void plainMotion(benchmark::State &state) {
    std::vector<KTPARTICLE> records(kMost);
    std::vector<R3XVECTOR4D> corners(4 * kMost);
    const R3XVECTOR3D step(0.0f, -0.1f, 0.0f), right(1.0f, 0.0f, 0.0f), up(0.0f, 1.0f, 0.0f);
    for (auto _ : state) {
        R3XVECTOR4D *corner = corners.data();
        for (KTPARTICLE &moved : records) {
            moved.velocity += step;
            moved.position += moved.velocity * 0.03f;
            *corner++ = moved.position - right - up;
            *corner++ = moved.position + right - up;
            *corner++ = moved.position + right + up;
            *corner++ = moved.position - right + up;
        }
        benchmark::ClobberMemory();
    }
    if (corners[0].y >= 0.0f) return state.SkipWithError("nothing falls");
    report(state, kMost);
}
BENCHMARK(plainMotion);

}  // namespace
