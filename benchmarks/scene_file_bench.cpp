// SPDX-License-Identifier: Zlib
#include <benchmark/benchmark.h>
#include <keltra/engine.h>
#include <keltra/material.h>
#include <keltra/mesh.h>

#if defined(__GLIBC__)
#include <malloc.h>
#endif

#include <cstdio>
#include <vector>

#include "formats/scene_record.h"
#include "foundation/file_bytes.h"
#include "tests/support/gl_recorder.h"
#include "tests/support/temp_file.h"
#include "tools/formats/kte_writer.h"

namespace {

constexpr unsigned kMeshes = 1000, kVertices = 300, kFaces = 500;

keltra::formats::Node gridMesh(unsigned number) {
    keltra::formats::Node node;
    node.kind = keltra::formats::NodeKind::kMesh;
    node.name = "mesh" + std::to_string(number);
    node.mesh.material = "stone";
    for (unsigned v = 0; v < kVertices; ++v) {
        const float x = static_cast<float>(v % 20), y = static_cast<float>(v / 20);
        node.mesh.vertices.push_back({x, y, 0.25f * x * y});
        node.mesh.normals.push_back({0.0f, 0.0f, 1.0f});
        node.mesh.uvs.push_back({x / 20.0f, y / 15.0f});
    }
    for (unsigned f = 0; f < kFaces; ++f) {
        const auto corner = [f](unsigned step) {
            return static_cast<std::uint16_t>((f + step * 7) % kVertices);
        };
        node.mesh.faces.push_back({corner(0), corner(1), corner(2)});
        node.mesh.faceNormals.push_back({0.0f, 0.0f, 1.0f});
    }
    return node;
}

class SceneOnDisk {
   public:
    SceneOnDisk() {
        keltra::formats::Scene scene;
        scene.materials.push_back({"stone"});
        scene.root.name = "root";
        for (unsigned i = 0; i < kMeshes; ++i) scene.root.children.push_back(gridMesh(i));
        bytes = keltra::formats::writeKte(scene, keltra::formats::KteVersion::k16a);
        path = folder.write("scene.kte", bytes);
        KELTRA::setKTEPath(folder.prefix().c_str());
    }

    keltra::test::TempFolder folder;
    std::vector<std::uint8_t> bytes;
    std::string path;
};

void giveMemoryBack() {
#if defined(__GLIBC__)
    malloc_trim(0);
#endif
}

void reportBytes(benchmark::State &state, const SceneOnDisk &scene) {
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(scene.bytes.size()));
}

void plainRead(benchmark::State &state) {
    const SceneOnDisk scene;
    for (auto _ : state) {
        const keltra::FileBytes file(scene.path.c_str());
        if (file.size() != scene.bytes.size()) state.SkipWithError("the file is not read");
        benchmark::DoNotOptimize(file.data());
    }
    reportBytes(state, scene);
}
BENCHMARK(plainRead)->Unit(benchmark::kMillisecond);

void checkScene(benchmark::State &state) {
    const SceneOnDisk scene;
    keltra::SceneFault fault;
    for (auto _ : state)
        if (!keltra::checkScene(scene.bytes.data(), scene.bytes.size(), fault))
            state.SkipWithError("the scene is wrong");
    reportBytes(state, scene);
}
BENCHMARK(checkScene)->Unit(benchmark::kMillisecond);

// With `fresh`, the C library has given all memory back to the system before each load, as when a program
// begins.
void loadScene(benchmark::State &state, bool fresh) {
    const keltra::test::GlRecorder::Stub stub;
    const keltra::test::GlRecorder::Pause pause;
    const SceneOnDisk scene;
    for (auto _ : state) {
        const KTNODE *root = KELTRA::load("scene.kte");
        state.PauseTiming();
        const KTMESH *last = root ? static_cast<KTMESH *>(root->getChild(kMeshes - 1)) : nullptr;
        if (!last || last->vertices[3 * 299] != 19 * 65536) state.SkipWithError("the scene is wrong");
        KTNODE::cleanUp();
        if (fresh) giveMemoryBack();
        state.ResumeTiming();
    }
    KTMATERIAL::cleanUp();
    reportBytes(state, scene);
}
BENCHMARK_CAPTURE(loadScene, again, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(loadScene, fresh, true)->Unit(benchmark::kMillisecond);

}  // namespace
