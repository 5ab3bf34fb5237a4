// SPDX-License-Identifier: Zlib
// OGRE without a render system: the skin of 5,000 vertices, and the load of the geometry of 1,000 meshes.

#include <Ogre.h>
#include <OgreDefaultHardwareBufferManager.h>
#include <OgreMeshSerializer.h>
#include <OgreOptimisedUtil.h>
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <fstream>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr std::size_t kVertices = 5000, kInfluences = 4, kBones = 50;

void animate(benchmark::State &state) {
    std::mt19937 random(1);
    const auto any = [&random](float reach) {
        return std::uniform_real_distribution<float>(-reach, reach)(random);
    };
    std::vector<float> positions, normals, weights, skinned(6 * kVertices);
    std::vector<unsigned char> bones;
    for (std::size_t i = 0; i < 3 * kVertices; ++i)
        positions.push_back(any(4.0f)), normals.push_back(any(1.0f));
    for (std::size_t v = 0; v < kVertices; ++v) {
        float w[kInfluences], sum = 0.0f;
        for (float &weight : w) sum += weight = 0.01f + std::abs(any(1.0f));
        for (float weight : w) weights.push_back(weight / sum);
        for (std::size_t k = 0; k < kInfluences; ++k)
            bones.push_back(static_cast<unsigned char>(random() % kBones));
    }
    // Aligned for vector instructions, as the engine's own are.
    std::unique_ptr<Ogre::Affine3, void (*)(void *)> matrices(
        static_cast<Ogre::Affine3 *>(Ogre::AlignedMemory::allocate(kBones * sizeof(Ogre::Affine3))),
        Ogre::AlignedMemory::deallocate);
    std::vector<const Ogre::Affine3 *> shown;
    for (std::size_t b = 0; b < kBones; ++b) {
        const Ogre::Quaternion turn(Ogre::Degree(any(180.0f)), Ogre::Vector3(0.6f, 0.0f, 0.8f));
        matrices.get()[b].makeTransform(Ogre::Vector3(any(3.0f), any(3.0f), any(3.0f)),
                                        Ogre::Vector3::UNIT_SCALE, turn);
        shown.push_back(&matrices.get()[b]);
    }
    const std::size_t stride = 3 * sizeof(float);
    for (auto _ : state) {
        Ogre::OptimisedUtil::getImplementation()->softwareVertexSkinning(
            positions.data(), skinned.data(), normals.data(), skinned.data() + 3 * kVertices, weights.data(),
            bones.data(), shown.data(), stride, stride, stride, stride, kInfluences * sizeof(float),
            kInfluences, kInfluences, kVertices);
        benchmark::ClobberMemory();
    }
    if (!std::isfinite(skinned[0]) || skinned[0] == 0.0f) return state.SkipWithError("nothing is skinned");
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kVertices));
}
BENCHMARK(animate);

constexpr unsigned int kMeshes = 1000, kMeshVertices = 300, kFaces = 500;

class Engine {
   public:
    Engine() : log(new Ogre::LogManager) {
        log->createLog("", true, false, true);
        root.reset(new Ogre::Root("", "", ""));
        if (!Ogre::HardwareBufferManager::getSingletonPtr())
            buffers.reset(new Ogre::DefaultHardwareBufferManager);
    }

   private:
    std::unique_ptr<Ogre::LogManager> log;
    std::unique_ptr<Ogre::Root> root;
    std::unique_ptr<Ogre::HardwareBufferManager> buffers;
};

// A part of the mesh: positions, normals and texture coordinates of a grid, and its triangles.
void addPart(Ogre::Mesh &mesh) {
    Ogre::SubMesh *const part = mesh.createSubMesh();
    part->useSharedVertices = false;
    part->vertexData = new Ogre::VertexData;
    part->vertexData->vertexCount = kMeshVertices;
    Ogre::VertexDeclaration &layout = *part->vertexData->vertexDeclaration;
    std::size_t size = layout.addElement(0, 0, Ogre::VET_FLOAT3, Ogre::VES_POSITION).getSize();
    size += layout.addElement(0, size, Ogre::VET_FLOAT3, Ogre::VES_NORMAL).getSize();
    size += layout.addElement(0, size, Ogre::VET_FLOAT2, Ogre::VES_TEXTURE_COORDINATES).getSize();
    std::vector<float> values;
    for (unsigned int v = 0; v < kMeshVertices; ++v) {
        const float x = static_cast<float>(v % 20), y = static_cast<float>(v / 20);
        values.insert(values.end(), {x, y, 0.25f * x * y, 0.0f, 0.0f, 1.0f, x / 20.0f, y / 15.0f});
    }
    auto &manager = Ogre::HardwareBufferManager::getSingleton();
    const auto vertices = manager.createVertexBuffer(size, kMeshVertices, Ogre::HardwareBuffer::HBU_STATIC);
    vertices->writeData(0, vertices->getSizeInBytes(), values.data(), true);
    part->vertexData->vertexBufferBinding->setBinding(0, vertices);
    std::vector<std::uint16_t> indices;
    for (unsigned int f = 0; f < kFaces; ++f)
        for (unsigned int step = 0; step < 3; ++step)
            indices.push_back(static_cast<std::uint16_t>((f + step * 7) % kMeshVertices));
    part->indexData->indexCount = indices.size();
    part->indexData->indexBuffer = manager.createIndexBuffer(
        Ogre::HardwareIndexBuffer::IT_16BIT, indices.size(), Ogre::HardwareBuffer::HBU_STATIC);
    part->indexData->indexBuffer->writeData(0, 2 * indices.size(), indices.data(), true);
}

// From the file to buffers in main memory, which a render system would upload.
void loadScene(benchmark::State &state) {
    Engine on;
    const char *const path = "peer_ogre.mesh";
    Ogre::MeshSerializer serializer;
    {
        Ogre::MeshPtr mesh = Ogre::MeshManager::getSingleton().createManual("written", "General");
        for (unsigned int i = 0; i < kMeshes; ++i) addPart(*mesh);
        mesh->_setBounds(Ogre::AxisAlignedBox(0, 0, 0, 20, 20, 80));
        serializer.exportMesh(mesh.get(), path);
        Ogre::MeshManager::getSingleton().remove(mesh);
    }
    for (auto _ : state) {
        Ogre::MeshPtr mesh = Ogre::MeshManager::getSingleton().createManual("read", "General");
        auto *const file = new std::ifstream(path, std::ios::binary);
        Ogre::DataStreamPtr stream(new Ogre::FileStreamDataStream(path, file, true));
        serializer.importMesh(stream, mesh.get());
        if (mesh->getNumSubMeshes() != kMeshes) state.SkipWithError("the mesh is not read");
        state.PauseTiming();
        Ogre::MeshManager::getSingleton().remove(mesh);
        mesh.reset();
        state.ResumeTiming();
    }
    std::remove(path);
}
BENCHMARK(loadScene)->Name("loadScene/again")->Unit(benchmark::kMillisecond);

}  // namespace
