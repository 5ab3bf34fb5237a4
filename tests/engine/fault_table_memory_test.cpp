// SPDX-License-Identifier: Zlib
// Calls that run out of memory.

#include "tests/engine/fault_table.h"
#include "tests/support/allocations.h"

namespace keltra::test {
namespace {

constexpr KT_FAULT_CODE kMemory = KT_FAULT_OUT_OF_MEMORY;

class FaultMemoryTest : public FaultTableTest {
   protected:
    void SetUp() override {
        if (!Allocations::canFail()) GTEST_SKIP() << "a sanitizer owns malloc";
        FaultTableTest::SetUp();
    }
    void TearDown() override {
        Allocations::clear();
        FaultTableTest::TearDown();
    }

    // Allocations of `size` bytes or more fail while `call` runs.
    static void starve(std::size_t size, const std::function<void()> &call) {
        Allocations::failNextFrom(size);
        call();
        Allocations::clear();
    }
};

TEST_F(FaultMemoryTest, Foundation) {
    check({
        {"vnfMalloc",
         [](Folder) {
             starve(70000, [] { EXPECT_EQ(vnfMalloc(70000), nullptr); });
             vnfFree(nullptr);
         },
         kError, kMemory, "vnfMalloc: out of memory"},
        {"vnfOpenParser",
         [](Folder folder) {
             const std::string path = folder.write("long", std::string(70000, 'a'));
             vnfParser parser;
             starve(70000, [&] { EXPECT_FALSE(vnfOpenParser(&parser, path.c_str())); });
         },
         kError, kMemory, "vnfOpenParser: %Dlong: out of memory"},
    });
}

TEST_F(FaultMemoryTest, StartUp) {
    check({
        {"KTELEMENT::init",
         [](Folder) {
             EXPECT_TRUE(KTELEMENT::free());
             starve(1024 * sizeof(KTELEMENT), [] { EXPECT_FALSE(KTELEMENT::init(1024)); });
             EXPECT_TRUE(KTELEMENT::init(1024));
         },
         kError, kMemory, "KTELEMENT::init: out of memory"},
        {"KTFONT::init",
         [](Folder) {
             EXPECT_TRUE(KTFONT::free());
             starve(20000, [] { EXPECT_FALSE(KTFONT::init()); });
             EXPECT_TRUE(KTFONT::init());
         },
         kError, kMemory, "KTFONT::init: out of memory"},
        {"KTMESH::init",
         [](Folder) {
             EXPECT_TRUE(KTMESH::free());
             starve(20000, [] { EXPECT_FALSE(KTMESH::init()); });
             EXPECT_TRUE(KTMESH::init());
         },
         kError, kMemory, "KTMESH::init: out of memory"},
        {"KTEMITTER::init",
         [](Folder) {
             EXPECT_TRUE(KTEMITTER::free());
             starve(20000, [] { EXPECT_FALSE(KTEMITTER::init()); });
             EXPECT_TRUE(KTEMITTER::init());
         },
         kError, kMemory, "KTEMITTER::init: out of memory"},
    });
}

TEST_F(FaultMemoryTest, ObjectsThatAreInUse) {
    check({
        {"KTNODE::link",
         [](Folder) {
             KTNODE parent;
             std::vector<KTNODE *> children;
             while (children.size() < 1000) {
                 children.push_back(new KTNODE);
                 EXPECT_TRUE(children.back()->link(&parent));
             }
             bool isLinked = true;
             std::vector<KTNODE *> more;
             more.reserve(2000);
             starve(8000, [&] {
                 while (isLinked && more.size() < 2000) {
                     more.push_back(new KTNODE);
                     isLinked = more.back()->link(&parent);
                 }
             });
             EXPECT_FALSE(isLinked);
             EXPECT_EQ(parent.getNumberOfChildren(), 999 + more.size());
             for (KTNODE *node : children) delete node;
             for (KTNODE *node : more) delete node;
         },
         kError, kMemory, "KTNODE::link: out of memory"},
        {"KTTEXTURE::create",
         [](Folder) {
             KTTEXTURE texture;
             starve(512 * 512 * 3, [&] { EXPECT_FALSE(texture.create(512, 512, 3)); });
         },
         kError, kMemory, "KTTEXTURE::create: out of memory"},
        {"KTTEXTURE::modify",
         [](Folder) {
             const std::vector<char> pixels(512 * 512 * 3);
             KTTEXTURE texture;
             EXPECT_TRUE(texture.create(512, 512, 3));
             EXPECT_TRUE(texture.unload(true));
             starve(pixels.size(), [&] { EXPECT_FALSE(texture.modify(pixels.data(), true)); });
         },
         kError, kMemory, "KTTEXTURE::modify: out of memory"},
        {"KTTEXTURE::garbageCollect",
         [](Folder) {
             for (int i = 0; i < 1000; ++i) new KTTEXTURE;
             starve(8000, [] { EXPECT_FALSE(KTTEXTURE::garbageCollect(0)); });
             EXPECT_TRUE(KTTEXTURE::cleanUp());
         },
         kError, kMemory, "KTTEXTURE::garbageCollect: out of memory"},
    });
}

TEST_F(FaultMemoryTest, SkinnedMeshes) {
    static std::int32_t coordinates[3000];
    static std::uint8_t bones[1000];
    static float weights[1000];
    check({
        {"KTMESH::animate",
         [](Folder) {
             KTMESH mesh;
             mesh.numberOfVertices = 1000;
             mesh.numberOfInfluences = 1;
             mesh.vertices = mesh.vertexNormals = coordinates;
             mesh.influenceBones = bones;
             mesh.influenceWeights = weights;
             starve(12000, [&] { EXPECT_FALSE(mesh.animate(0)); });
             mesh.influenceBones = nullptr;
             mesh.influenceWeights = nullptr;
         },
         kError, kMemory, "KTMESH::animate: out of memory"},
    });
}

TEST_F(FaultMemoryTest, PartsOfWidgetsAndEmitters) {
    const auto warned = KT_FAULT_WARNING;
    check({
        {"KTWINDOW::KTWINDOW",
         [](Folder) {
             Allocations::failNth(1);
             KTWINDOW window;
             EXPECT_EQ(window.getTitleBar(), nullptr);
         },
         warned, kMemory, "KTWINDOW::KTWINDOW: out of memory"},
        {"KTHSCROLLBAR::KTHSCROLLBAR",
         [](Folder) {
             Allocations::failNth(1);
             KTHSCROLLBAR bar;
             EXPECT_EQ(bar.getCursor(), nullptr);
         },
         warned, kMemory, "KTHSCROLLBAR::KTHSCROLLBAR: out of memory"},
        {"KTVSCROLLBAR::KTVSCROLLBAR",
         [](Folder) {
             Allocations::failNth(1);
             KTVSCROLLBAR bar;
             EXPECT_EQ(bar.getCursor(), nullptr);
         },
         warned, kMemory, "KTVSCROLLBAR::KTVSCROLLBAR: out of memory"},
        {"KTEMITTER::load",
         [](Folder folder) {
             const std::string path = folder.write("emitter.xml", "<emitter/>");
             KTEMITTER emitter;
             Allocations::failNth(1);
             EXPECT_TRUE(emitter.load(path.c_str()));
             Allocations::clear();
             EXPECT_EQ(emitter.getTexture(), nullptr);
         },
         warned, kMemory, "KTEMITTER::load: %Demitter.xml: out of memory"},
    });
}

TEST_F(FaultMemoryTest, ImagesInTheGL) {
    check({
        {"KTTEXTURE::update",
         [](Folder) {
             KTTEXTURE texture;
             GlRecorder::failUpload(1);
             EXPECT_TRUE(texture.create(2, 2, 3));
             GlRecorder::failUpload(0);
         },
         KT_FAULT_WARNING, kMemory, "KTTEXTURE::update: out of memory"},
    });
}

}  // namespace
}  // namespace keltra::test
