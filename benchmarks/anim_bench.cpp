// SPDX-License-Identifier: Zlib
// Animations and picking. The GL is stubbed: what is measured is the engine, and how often it calls the GL.

#include <benchmark/benchmark.h>
#include <keltra/keltra.h>

#include <algorithm>
#include <cstdio>
#include <random>
#include <string>
#include <vector>

#include "tests/support/gl_recorder.h"
#include "tests/support/temp_file.h"
#include "tools/formats/kta_writer.h"

namespace {

using keltra::test::GlRecorder;

std::string boneName(unsigned bone) { return "bone" + std::to_string(bone); }

/// Bones in chains of five below one root, like limbs on a body.
KTNODE *makeSkeleton(unsigned bones) {
    KTNODE *root = new KTNODE, *above = root;
    for (unsigned bone = 0; bone < bones; ++bone) {
        KTMESH *mesh = new KTMESH;
        mesh->setName(boneName(bone).c_str());
        mesh->link(bone % 5 ? above : root);
        above = mesh;
    }
    return root;
}

KTANIM *makeAnimation(unsigned bones, unsigned frames) {
    KTANIM *animation = new KTANIM;
    animation->setNumberOfBones(bones);
    animation->setNumberOfFrames(frames);
    for (unsigned bone = 0; bone < bones; ++bone) animation->setBoneName(bone, boneName(bone).c_str());
    return animation;
}

void apply(benchmark::State &state) {
    const unsigned bones = static_cast<unsigned>(state.range(0));
    KTNODE *root = makeSkeleton(bones);
    KTANIM *animation = makeAnimation(bones, 16);
    animation->setFrame(15, bones - 1, 1.0f, 2.0f, 3.0f);
    KTNODE *last = root->findByNameInHierarchy(boneName(bones - 1).c_str());
    if (!animation->apply(15, root) || last->getRotation().y != 2.0f)
        state.SkipWithError("the pose is wrong");
    unsigned frame = 0;
    for (auto _ : state) benchmark::DoNotOptimize(animation->apply(frame++ % 16, root));
    state.SetItemsProcessed(state.iterations() * state.range(0));
    KTANIM::cleanUp();
    KTNODE::cleanUp();
}

/// The same values written into nodes that are known already: what the look-up by name costs beyond it.
void plainCopyOfAPose(benchmark::State &state) {
    const unsigned bones = static_cast<unsigned>(state.range(0));
    KTNODE *root = makeSkeleton(bones);
    KTANIM *animation = makeAnimation(bones, 16);
    std::vector<KTNODE *> nodes;
    for (unsigned bone = 0; bone < bones; ++bone)
        nodes.push_back(root->findByNameInHierarchy(boneName(bone).c_str()));
    unsigned frame = 0;
    for (auto _ : state) {
        ++frame;
        for (unsigned bone = 0; bone < bones; ++bone)
            nodes[bone]->rotation = animation->keyframes[frame % 16][bone].rotation;
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
    KTANIM::cleanUp();
    KTNODE::cleanUp();
}

void loadKta(benchmark::State &state) {
    const keltra::test::TempFolder folder;
    keltra::formats::Animation written;
    for (unsigned bone = 0; bone < 100; ++bone) written.bones.push_back(boneName(bone));
    std::mt19937 random(5);
    const auto any = [&random] { return static_cast<float>(random() % 3600) * 0.1f; };
    for (std::int64_t frame = 0; frame < state.range(0); ++frame) {
        written.frames.emplace_back(100);
        for (keltra::formats::Keyframe &keyframe : written.frames.back())
            keyframe.rotation = {any(), any(), any()};
    }
    const std::vector<std::uint8_t> bytes = keltra::formats::writeKta(written);
    folder.write("bench.kta", bytes);
    KTANIM::setKTAPath(folder.prefix().c_str());
    KTANIM *animation = new KTANIM;
    if (!animation->load("bench.kta") ||
        animation->getFrameRotation(1, 99).x != written.frames[1][99].rotation.x)
        state.SkipWithError("the file is not read");
    for (auto _ : state) benchmark::DoNotOptimize(animation->load("bench.kta"));
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes.size()));
    KTANIM::cleanUp();
    KTANIM::setKTAPath(nullptr);
}

/// Every twentieth frame is set.
KTANIM *makeSparseAnimation(unsigned bones, unsigned frames) {
    KTANIM *animation = makeAnimation(bones, frames);
    std::mt19937 random(6);
    for (unsigned frame = 0; frame < frames; frame += 20)
        for (unsigned bone = 0; bone < bones; ++bone)
            animation->setFrame(frame, bone, static_cast<float>(random() % 360), 0.0f,
                                static_cast<float>(random() % 360));
    return animation;
}

void createKeyframes(benchmark::State &state) {
    KTANIM *animation = makeSparseAnimation(100, 1000);
    if (!animation->createKeyframes(0, 1000)) state.SkipWithError("nothing is interpolated");
    for (auto _ : state) benchmark::DoNotOptimize(animation->createKeyframes(0, 1000));
    state.SetItemsProcessed(state.iterations() * 1000 * 100);
    KTANIM::cleanUp();
}

/// As many frames summed up, frame by frame: the order in which they lie in memory.
void plainSumOfKeyframes(benchmark::State &state) {
    KTANIM *animation = makeSparseAnimation(100, 1000);
    for (auto _ : state) {
        R3XVECTOR3D value(0.0f, 0.0f, 0.0f);
        for (unsigned frame = 0; frame < 1000; ++frame) {
            for (unsigned bone = 0; bone < 100; ++bone) {
                const R3XVECTOR3D &rotation = animation->keyframes[frame][bone].rotation;
                value.set(value.x + rotation.x, value.y + rotation.y, value.z + rotation.z);
            }
        }
        benchmark::DoNotOptimize(value);
    }
    state.SetItemsProcessed(state.iterations() * 1000 * 100);
    KTANIM::cleanUp();
}

/// A frame's list of meshes, ten triangles each, without an engine around it.
class MeshList {
   public:
    explicit MeshList(unsigned count) : corners(33, 65536), faces(30) {
        for (std::size_t i = 0; i < faces.size(); ++i) faces[i] = static_cast<std::uint16_t>(i % 11);
        KTMESH::init();
        KTELEMENT::init(count);
        KTSETTINGS::windowX = 240;
        KTSETTINGS::windowY = 320;
        KTSETTINGS::colorDepth = 16;
        KT_glMatrixMode(GL_MODELVIEW);
        KT_glLoadIdentity();
        for (unsigned i = 0; i < count; ++i) {
            KTMESH *mesh = new KTMESH;
            mesh->numberOfVertices = 11;
            mesh->vertices = mesh->vertexNormals = corners.data();
            mesh->numberOfFaces = 10;
            mesh->faces = faces.data();
            KTELEMENT::pass(mesh);
        }
    }
    ~MeshList() {
        KTELEMENT::free();
        KTNODE::cleanUp();
        KTMESH::free();
        KTSETTINGS::windowX = KTSETTINGS::windowY = KTSETTINGS::colorDepth = 0;
    }

   private:
    const GlRecorder::Stub stub;
    std::vector<std::int32_t> corners;
    std::vector<std::uint16_t> faces;
};

void selectPoint(benchmark::State &state) {
    const MeshList list(static_cast<unsigned>(state.range(0)));
    GlRecorder::setPixels({0xff, 0, 0, 0});
    GlRecorder::clear();
    if (KELTRA::select(120, 160) != 0xf800) state.SkipWithError("the pixel is not read");
    if (GlRecorder::count("glDrawElements") != state.range(0)) state.SkipWithError("meshes are missing");
    const std::size_t calls = GlRecorder::calls().size();
    const GlRecorder::Pause pause;
    for (auto _ : state) benchmark::DoNotOptimize(KELTRA::select(120, 160));
    state.SetItemsProcessed(state.iterations() * state.range(0));
    state.counters["GL calls"] = static_cast<double>(calls);
}

BENCHMARK(apply)->Arg(20)->Arg(50)->Arg(100);
BENCHMARK(plainCopyOfAPose)->Arg(50);
BENCHMARK(loadKta)->Arg(24)->Arg(1000)->Unit(benchmark::kMicrosecond);
BENCHMARK(createKeyframes)->Unit(benchmark::kMicrosecond);
BENCHMARK(plainSumOfKeyframes)->Unit(benchmark::kMicrosecond);
BENCHMARK(selectPoint)->Arg(100)->Arg(1000)->Unit(benchmark::kMicrosecond);

}  // namespace
