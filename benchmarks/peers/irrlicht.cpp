// SPDX-License-Identifier: Zlib
// Irrlicht with its null driver, which sends nothing to a GL: a frame of 1,000 meshes, text and particles.

#include <benchmark/benchmark.h>
#include <irrlicht.h>

#include <random>
#include <string>

namespace {

using namespace irr;

constexpr unsigned int kNodes = 1000, kParticles = 512, kGlyphs = 1000;

class Device {
   public:
    Device() : device(createDevice(video::EDT_NULL, core::dimension2d<u32>(240, 320))) {
        device->getLogger()->setLogLevel(ELL_NONE);
        scene = device->getSceneManager();
        driver = device->getVideoDriver();
    }
    ~Device() { device->drop(); }
    Device(const Device &) = delete;
    Device &operator=(const Device &) = delete;

    IrrlichtDevice *const device;
    scene::ISceneManager *scene;
    video::IVideoDriver *driver;
};

// Ten triangles, as the meshes of the row have.
scene::SMesh *newMesh() {
    auto *const buffer = new scene::SMeshBuffer;
    for (unsigned int i = 0; i < 11; ++i) {
        const f32 x = 0.1f * static_cast<f32>(i);
        buffer->Vertices.push_back(
            video::S3DVertex(x, x, 0.0f, 0.0f, 0.0f, 1.0f, video::SColor(255, 255, 255, 255), x, x));
    }
    for (unsigned int i = 0; i < 30; ++i) buffer->Indices.push_back(static_cast<u16>(i % 11));
    buffer->Material.Lighting = false;
    buffer->recalculateBoundingBox();
    auto *const mesh = new scene::SMesh;
    mesh->addMeshBuffer(buffer);
    buffer->drop();
    mesh->recalculateBoundingBox();
    return mesh;
}

void frameOfMeshes(benchmark::State &state) {
    Device on;
    scene::SMesh *const mesh = newMesh();
    std::mt19937 generator(20040117);
    std::uniform_real_distribution<f32> place(-20.0f, 20.0f);
    on.scene->addCameraSceneNode(nullptr, core::vector3df(0, 0, -60), core::vector3df(0, 0, 0));
    core::array<scene::ISceneNode *> nodes;
    for (unsigned int i = 0; i < kNodes; ++i)
        nodes.push_back(on.scene->addMeshSceneNode(
            mesh, nullptr, -1, core::vector3df(place(generator), place(generator), place(generator))));
    mesh->drop();
    f32 turn = 0.0f;
    const auto frame = [&] {
        turn += 1.0f;
        for (u32 i = 0; i < nodes.size(); ++i) nodes[i]->setRotation(core::vector3df(0, turn, 0));
        on.driver->beginScene(true, true, video::SColor(0));
        on.scene->drawAll();
        on.driver->endScene();
    };
    frame();
    if (on.driver->getPrimitiveCountDrawn() < 10 * kNodes)
        return state.SkipWithError("not all meshes are drawn");
    for (auto _ : state) frame();
    state.SetItemsProcessed(state.iterations() * kNodes);
}
BENCHMARK(frameOfMeshes)->Name("frameOfMeshes/unlit");

// The built-in font; the null driver takes the glyphs' rectangles and writes no corners.
void putString(benchmark::State &state) {
    Device on;
    gui::IGUIFont *const font = on.device->getGUIEnvironment()->getBuiltInFont();
    std::mt19937 random(1);
    core::stringw text;
    while (text.size() < kGlyphs) text.append(static_cast<wchar_t>(random() % 6 ? 'a' + random() % 26 : ' '));
    for (auto _ : state) {
        font->draw(text, core::rect<s32>(0, 0, 200, 20), video::SColor(255, 255, 255, 255));
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * kGlyphs);
}
BENCHMARK(putString)->Name("text/putString/1000");

// Particles that are emitted once and live on; they move and fade, and their squares are written and drawn.
void particles(benchmark::State &state) {
    Device on;
    on.scene->addCameraSceneNode(nullptr, core::vector3df(0, 0, -60), core::vector3df(0, 0, 0));
    scene::IParticleSystemSceneNode *const system = on.scene->addParticleSystemSceneNode(false);
    scene::IParticleEmitter *const emitter = system->createBoxEmitter(
        core::aabbox3df(-1, -1, -1, 1, 1, 1), core::vector3df(0.0f, 0.003f, 0.0f), kParticles, kParticles,
        video::SColor(0), video::SColor(~0u), 100000000, 100000000);
    system->setEmitter(emitter);
    emitter->drop();
    scene::IParticleAffector *const gravity = system->createGravityAffector();
    system->addAffector(gravity);
    gravity->drop();
    u32 time = 1;
    system->doParticleSystem(time);
    system->doParticleSystem(time += 1000);
    system->setEmitter(nullptr);
    system->doParticleSystem(time += 1);
    on.driver->beginScene(true, true, video::SColor(0));
    system->render();
    on.driver->endScene();
    if (on.driver->getPrimitiveCountDrawn() != 2 * kParticles)
        return state.SkipWithError("not all particles are drawn");
    for (auto _ : state) {
        system->doParticleSystem(time += 1);
        system->render();
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * kParticles);
}
BENCHMARK(particles)->Name("particles/points");

}  // namespace
