// SPDX-License-Identifier: Zlib
// Nodes whose type code is not that of their class: `*node = *mesh` copies the code, and applications may set
// it.

#ifdef _WIN32
#include <windows.h>
#else
#include <sys/mman.h>
#include <unistd.h>
#endif

#include <new>

#include "tests/scene/render_list.h"

namespace keltra::test {
namespace {

/// A plain node at the end of readable memory: code that uses it as a larger class ends the test.
class NodeAtTheEdge {
   public:
    NodeAtTheEdge() {
        size = kRoom + kPage;
#ifdef _WIN32
        DWORD before;
        start = static_cast<char *>(VirtualAlloc(nullptr, size, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
        VirtualProtect(start + kRoom, kPage, PAGE_NOACCESS, &before);
#else
        start = static_cast<char *>(
            mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
        mprotect(start + kRoom, kPage, PROT_NONE);
#endif
        node = new (start + kRoom - sizeof(KTNODE)) KTNODE;
    }
    ~NodeAtTheEdge() {
        node->~KTNODE();
#ifdef _WIN32
        VirtualFree(start, 0, MEM_RELEASE);
#else
        munmap(start, size);
#endif
    }
    NodeAtTheEdge(const NodeAtTheEdge &) = delete;
    NodeAtTheEdge &operator=(const NodeAtTheEdge &) = delete;

    KTNODE *node;

   private:
    static constexpr std::size_t kPage = 65536;  // a multiple of those of all machines
    static constexpr std::size_t kRoom = (sizeof(KTNODE) + kPage - 1) / kPage * kPage;

    char *start;
    std::size_t size;
};

class ImpostorTest : public RenderListTest {
   protected:
    void TearDown() override {
        KTLIGHT::lightingOff();
        RenderListTest::TearDown();
    }
};

TEST_F(ImpostorTest, APlainNodeUnderAnyCodeIsPassedSortedAndFoundAsALight) {
    for (unsigned int code = KT_NODE; code <= KT_CUSTOM + 1; ++code) {
        SCOPED_TRACE(code);
        NodeAtTheEdge edge;
        edge.node->type = code;
        KTLIGHT light;
        KTHELPER helper;
        KTMATERIAL glass;
        glass.setTransparency(0.5f);
        KTMESH mesh;
        mesh.setMaterial(&glass);
        KTLIGHT::lightingOn();
        for (bool clipping : {false, true}) {
            clipping ? KTELEMENT::clippingOn() : KTELEMENT::clippingOff();
            newFrame();
            for (KTNODE *node : {edge.node, static_cast<KTNODE *>(&helper), static_cast<KTNODE *>(&mesh),
                                 static_cast<KTNODE *>(&light)})
                node->pass();
            KTELEMENT::sort3D();
            for (unsigned int i = 0; i < KTELEMENT::getNumberOfPassedElements(); ++i) {
                KTELEMENT *element = KTELEMENT::elementPointer[i];
                KTLIGHT::activateNearest(element);
                element->getNode()->render(element);
            }
            KTELEMENT::sort2D();
        }
    }
}

TEST_F(ImpostorTest, ANodeThatAnotherWasAssignedToStaysWhatItIs) {
    KTLIGHT light;
    light.setExclusive(true);
    KTMESH mesh, bone;
    bone.setPosition(1.0f, 0.0f, 0.0f);
    SkinnedMesh skin({&bone});
    for (KTNODE *original :
         {static_cast<KTNODE *>(&light), static_cast<KTNODE *>(&mesh), static_cast<KTNODE *>(&skin)}) {
        NodeAtTheEdge edge;
        *edge.node = *original;
        newFrame();
        edge.node->pass();
        KTELEMENT::sort3D();
        KTELEMENT::sortLights(R3XVECTOR3D());
        EXPECT_EQ(KTELEMENT::getNumberOfPassedElements(), 1u);
        EXPECT_EQ(KTMESH::usedSlots, 0u) << "a node without a skin takes no slot";
        EXPECT_FALSE(edge.node->render(KTELEMENT::elementPointer[0]));
    }
}

TEST_F(ImpostorTest, SkeletonsWithSuchNodesAreWalked) {
    NodeAtTheEdge edge;
    KTNODE root;
    SkinnedMesh skin({edge.node});
    skin.link(&root);
    edge.node->type = KT_MESH;
    edge.node->setPosition(0.0f, 2.0f, 0.0f);
    ASSERT_TRUE(edge.node->link(&root));
    root.pass();
    EXPECT_EQ(KTMESH::usedSlots, 1u);
    EXPECT_EQ(KTMESH::boneMatrices[0].getTranslation(), R3XVECTOR3D(0.0f, 2.0f, 0.0f))
        << "bones are compared only";
    edge.node->unlink();
}

TEST_F(ImpostorTest, AMeshUnderALightsCodeDoesNotAskItselfForLights) {
    KTMESH mesh, lit;
    mesh.type = KT_LIGHT;
    KTLIGHT::lightingOn();
    newFrame();
    mesh.pass();
    lit.pass();
    KTELEMENT::sort3D();
    EXPECT_EQ(KTELEMENT::getNumberOfLights(), 1u);
    EXPECT_FALSE(KTLIGHT::activateNearest(KTELEMENT::elementPointer[1]));
    EXPECT_TRUE(mesh.render(KTELEMENT::elementPointer[0]));
}

}  // namespace
}  // namespace keltra::test
