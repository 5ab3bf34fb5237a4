// SPDX-License-Identifier: Zlib
// The buffers behind public pointers are plain blocks of vnfMalloc: an application may put its own in their
// place, in an object or in a copy of it, and everything is released once.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <keltra/keltra.h>

#include <cstring>
#include <memory>
#include <utility>
#include <vector>

#include "foundation/block.h"
#include "foundation/lifecycle.h"
#include "tests/support/allocations.h"
#include "tests/support/gl_recorder.h"

namespace keltra::test {
namespace {

constexpr unsigned int kBytes = 64;

class BuffersTest : public ::testing::Test {
   protected:
    void SetUp() override { before = memoryCounters(); }
    void TearDown() override {
        KTNODE::cleanUp();
        EXPECT_EQ(memoryCounters().live, before.live);
        EXPECT_EQ(notedBlocks, 0u);
    }
    const GlRecorder::Stub stub;
    MemoryCounters before{};
};

template <class T>
void replace(T *&buffer) {
    vnfFree(buffer);
    buffer = static_cast<T *>(vnfMalloc(kBytes));
    std::memset(static_cast<void *>(buffer), 7, kBytes);
}

template <class T>
void expectUsable(T *buffer) {
    std::memset(static_cast<void *>(buffer), 9, kBytes);  // the address sanitizer watches
}

/// Copies an object whose `buffer` is set, replaces the buffer in one of the two and destroys both.
template <class Object, class T>
void expectReplaceable(T *Object::*buffer) {
    for (int run = 0; run < 8; ++run) {
        const bool assigned = run & 1, inTheCopy = run & 2, copyFirst = run & 4;
        auto original = std::make_unique<Object>();
        (*original).*buffer = static_cast<T *>(vnfMalloc(kBytes));
        auto copy = assigned ? std::make_unique<Object>() : std::make_unique<Object>(*original);
        if (assigned) *copy = *original;
        ASSERT_EQ((*copy).*buffer, (*original).*buffer);
        Object &changed = inTheCopy ? *copy : *original;
        replace(changed.*buffer);
        expectUsable((*original).*buffer);
        expectUsable((*copy).*buffer);
        (copyFirst ? copy : original).reset();
        expectUsable((*(copyFirst ? original : copy)).*buffer);
    }
}

TEST_F(BuffersTest, TexturesTakeAnotherBitmap) { expectReplaceable(&KTTEXTURE::bitmap); }

TEST_F(BuffersTest, MeshesTakeOtherArrays) {
    expectReplaceable(&KTMESH::dataBlock);
    expectReplaceable(&KTMESH::influenceBones);
    expectReplaceable(&KTMESH::influenceWeights);
    expectReplaceable(&KTMESH::influenceBonesFloat);
    expectReplaceable(&KTMESH::skinnedVertices);
    expectReplaceable(&KTMESH::skinnedNormals);
}

TEST_F(BuffersTest, MeshesTakeOtherBones) {
    KTMESH mesh;
    mesh.bones = static_cast<KTBONE *>(vnfMalloc(sizeof(KTBONE)));
    auto copy = std::make_unique<KTMESH>(mesh);
    vnfFree(copy->bones);
    copy->bones = static_cast<KTBONE *>(vnfMalloc(2 * sizeof(KTBONE)));
    std::memset(static_cast<void *>(mesh.bones), 1, sizeof(KTBONE));
    copy.reset();
    std::memset(static_cast<void *>(mesh.bones), 1, sizeof(KTBONE));
}

TEST_F(BuffersTest, ABufferMayBeReleasedAndLeftOut) {
    KTTEXTURE original;
    original.bitmap = static_cast<unsigned char *>(vnfMalloc(kBytes));
    KTTEXTURE copy(original);
    vnfFree(original.bitmap);
    original.bitmap = nullptr;
    expectUsable(copy.bitmap);
}

TEST_F(BuffersTest, ABufferOfTheApplicationIsSharedByLaterCopies) {
    KTTEXTURE original;
    original.bitmap = static_cast<unsigned char *>(vnfMalloc(kBytes));
    std::vector<KTTEXTURE> copies(10, original);
    copies.erase(copies.begin(), copies.begin() + 5);
    replace(copies[1].bitmap);
    expectUsable(original.bitmap);
    expectUsable(copies[4].bitmap);
}

KTNODE **newArray(unsigned int count) {
    return static_cast<KTNODE **>(vnfMalloc(count * static_cast<unsigned int>(sizeof(KTNODE *))));
}

TEST_F(BuffersTest, ANodeTakesAnotherArrayOfChildren) {
    for (unsigned int count : {2u, 63u, 64u, 65u, 1000u}) {
        KTNODE parent;
        std::vector<std::unique_ptr<KTNODE>> children(count);
        for (auto &child : children) {
            child = std::make_unique<KTNODE>();
            ASSERT_TRUE(child->link(&parent));
        }
        children[0]->unlink();
        ASSERT_TRUE(children[0]->link(&parent));
        // Exactly as long as the count, and most likely at the address that has just become free.
        vnfFree(parent.children);
        parent.children = newArray(count);
        for (unsigned int i = 0; i < count; ++i) parent.children[i] = children[i].get();
        KTNODE added;
        ASSERT_TRUE(added.link(&parent));
        EXPECT_EQ(parent.getNumberOfChildren(), count + 1);
        EXPECT_EQ(parent.getChild(count), &added);
        for (unsigned int i = 0; i < count; ++i) EXPECT_EQ(parent.getChild(i), children[i].get());
        EXPECT_TRUE(children[count / 2]->unlink());
        EXPECT_TRUE(added.unlink());
        EXPECT_EQ(parent.getNumberOfChildren(), count - 1);
    }
}

TEST_F(BuffersTest, AnArrayOfChildrenMayBeReplacedInANodeOrItsCopy) {
    for (unsigned int count : {3u, 200u}) {
        for (bool inTheCopy : {false, true}) {
            auto parent = std::make_unique<KTNODE>();
            std::vector<std::unique_ptr<KTNODE>> children(count);
            for (auto &child : children) {
                child = std::make_unique<KTNODE>();
                child->link(parent.get());
            }
            children[0]->unlink();  // from the front: the array of many begins later now
            auto copy = std::make_unique<KTNODE>(*parent);
            KTNODE &changed = inTheCopy ? *copy : *parent;
            vnfFree(changed.children);
            changed.children = newArray(count - 1);
            for (unsigned int i = 1; i < count; ++i) changed.children[i - 1] = children[i].get();
            const KTNODE &kept = inTheCopy ? *parent : *copy;
            EXPECT_EQ(kept.getChild(count - 2), children[count - 1].get());
            parent.reset();
            EXPECT_EQ(copy->getChild(0), children[1].get());
        }
    }
}

TEST_F(BuffersTest, ACopyKeepsItsChildrenWhenTheOriginalsChange) {
    KTNODE parent;
    std::vector<std::unique_ptr<KTNODE>> children(100);
    for (auto &child : children) {
        child = std::make_unique<KTNODE>();
        child->link(&parent);
    }
    KTNODE copy(parent);
    KTNODE added;
    added.link(&parent);
    EXPECT_TRUE(children[10]->unlink());
    EXPECT_TRUE(children[90]->unlink());
    EXPECT_EQ(copy.getNumberOfChildren(), 100u);
    for (unsigned int i = 0; i < 100; ++i) EXPECT_EQ(copy.getChild(i), children[i].get());
}

TEST_F(BuffersTest, WithoutMemoryForTheNoteACopyHasNoBuffer) {
    if (!Allocations::canFail()) GTEST_SKIP() << "a sanitizer owns malloc";
    std::vector<void *> shared(32);  // the table takes no memory for as many
    for (void *&block : shared) block = retainBlock(newBlock(8));
    KTMESH mesh;
    KTNODE child;
    child.link(&mesh);
    mesh.dataBlock = vnfMalloc(kBytes);
    mesh.vertices = static_cast<std::int32_t *>(mesh.dataBlock);
    const std::size_t tableBytes = 128 * (2 * sizeof(void *) + 8);
    Allocations::failNext(tableBytes);
    const KTNODE node(mesh);
    EXPECT_EQ(node.children, nullptr);
    EXPECT_EQ(node.getNumberOfChildren(), 0u);
    KTMESH geometry;
    std::swap(geometry.dataBlock, mesh.dataBlock);
    std::swap(geometry.vertices, mesh.vertices);
    Allocations::failNext(tableBytes);
    const KTMESH copy(geometry);
    Allocations::clear();
    EXPECT_EQ(copy.dataBlock, nullptr);
    EXPECT_EQ(copy.vertices, nullptr);
    for (void *block : shared) {
        releaseBlock(block);
        releaseBlock(block);
    }
}

}  // namespace
}  // namespace keltra::test
