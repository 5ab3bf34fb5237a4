// SPDX-License-Identifier: Zlib
// Whole frames of 1,000 meshes that turn: placed, passed, sorted and drawn by a GL that does nothing.

#include <benchmark/benchmark.h>
#include <keltra/keltra.h>

#include <memory>
#include <random>
#include <vector>

#include "tests/support/gl_recorder.h"

namespace {

using keltra::test::GlRecorder;

constexpr unsigned int kNodes = 1000, kCorners = 11, kFaces = 10;

class Stage {
   public:
    explicit Stage(unsigned int lightCount)
        : corners(3 * kCorners, 65536), faces(3 * kFaces), camera(new KTCAMERA), root(new KTNODE) {
        GlRecorder::setRecording(false);
        KTSETTINGS::windowX = 240;
        KTSETTINGS::windowY = 320;
        KTELEMENT::init(0);
        KTMESH::init();
        for (std::size_t i = 0; i < faces.size(); ++i) faces[i] = static_cast<std::uint16_t>(i % kCorners);
        std::mt19937 generator(20040117);
        std::uniform_real_distribution<float> place(-20.0f, 20.0f);
        const auto put = [&](KTNODE *node) {
            node->setPosition(place(generator), place(generator), place(generator) - 60.0f);
            node->link(root);
        };
        for (unsigned int i = 0; i < lightCount; ++i) put(new KTLIGHT);
        for (unsigned int i = 0; i < kNodes; ++i) {
            KTMESH *mesh = new KTMESH;
            mesh->numberOfVertices = kCorners;
            mesh->vertices = mesh->vertexNormals = corners.data();
            mesh->numberOfFaces = kFaces;
            mesh->faces = faces.data();
            mesh->radius = 2.0f;
            mesh->setMaterial(&stone);
            put(mesh);
            meshes.push_back(mesh);
        }
    }
    ~Stage() {
        for (KTMESH *mesh : meshes) mesh->vertices = mesh->vertexNormals = nullptr, mesh->faces = nullptr;
        KTNODE::cleanUp();
        KTELEMENT::free();
        KTMESH::free();
        KTSETTINGS::windowX = KTSETTINGS::windowY = 0;
    }

    void frame() {
        turn += 1.0f;
        for (KTMESH *mesh : meshes) mesh->setRotation(0.0f, turn, 0.0f);
        KELTRA::begin3D(camera);
        root->pass();
        KELTRA::end3D();
    }

   private:
    const GlRecorder::Stub stub;
    std::vector<std::int32_t> corners;
    std::vector<std::uint16_t> faces;
    KTCAMERA *camera;
    KTNODE *root;
    KTMATERIAL stone;
    std::vector<KTMESH *> meshes;
    float turn = 0.0f;
};

void frameOfMeshes(benchmark::State &state, unsigned int lights) {
    Stage stage(lights);
    stage.frame();
    GlRecorder::setRecording(true);
    GlRecorder::clear();
    stage.frame();
    const unsigned int drawn = static_cast<unsigned int>(GlRecorder::count("glDrawElements"));
    GlRecorder::setRecording(false);
    GlRecorder::clear();
    if (drawn != kNodes) return state.SkipWithError("not all meshes are drawn");
    for (auto _ : state) stage.frame();
    state.SetItemsProcessed(state.iterations() * kNodes);
}
BENCHMARK_CAPTURE(frameOfMeshes, unlit, 0u);
BENCHMARK_CAPTURE(frameOfMeshes, lit, 20u);

}  // namespace
