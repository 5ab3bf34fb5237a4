// SPDX-License-Identifier: Zlib
// Many children of one parent: what linking, unlinking and destroying them costs does not grow with their
// number.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <keltra/foundation.h>
#include <keltra/node.h>

#include <algorithm>
#include <memory>
#include <random>
#include <vector>

#include "tests/support/allocations.h"

namespace keltra::test {
namespace {

class ChildArrayTest : public ::testing::Test {
   protected:
    void make(unsigned int count) {
        nodes.resize(count);
        for (auto &node : nodes) node = std::make_unique<KTNODE>();
    }
    void linkAll() {
        for (auto &node : nodes) ASSERT_TRUE(node->link(&parent));
    }
    /// The array against a plain vector of what it should hold.
    void expectChildren(const std::vector<KTNODE *> &expected) {
        ASSERT_EQ(parent.getNumberOfChildren(), expected.size());
        for (std::size_t i = 0; i < expected.size(); ++i) ASSERT_EQ(parent.children[i], expected[i]) << i;
    }

    KTNODE parent;
    std::vector<std::unique_ptr<KTNODE>> nodes;
};

TEST_F(ChildArrayTest, LinkingManyTakesFewAllocations) {
    make(20000);
    Allocations::startCounting();
    linkAll();
    EXPECT_LT(Allocations::stopCounting(), 100) << "one a child while there are few, then by half each time";
}

TEST_F(ChildArrayTest, UnlinkingFromTheFrontMovesNothing) {
    make(1000);
    linkAll();
    Allocations::startCounting();
    for (int i = 0; i < 500; ++i) {
        KTNODE **children = parent.children;
        ASSERT_TRUE(nodes[i]->unlink());
        ASSERT_EQ(parent.children, children + 1) << i;
    }
    EXPECT_EQ(Allocations::stopCounting(), 0);
    KTNODE **children = parent.children;
    for (int i = 999; i > 800; --i) ASSERT_TRUE(nodes[i]->unlink());
    EXPECT_EQ(parent.children, children) << "nor does unlinking from the end";
    EXPECT_EQ(parent.getChild(0), nodes[500].get());
}

TEST_F(ChildArrayTest, AnArrayThatBecameEmptyIsReleased) {
    make(1000);
    linkAll();
    for (auto &node : nodes) ASSERT_TRUE(node->unlink());
    EXPECT_EQ(parent.children, nullptr);
    EXPECT_EQ(parent.getNumberOfChildren(), 0u);
}

TEST_F(ChildArrayTest, AQueueOfChildrenKeepsItsOrder) {
    make(300);
    linkAll();
    std::vector<KTNODE *> expected;
    for (auto &node : nodes) expected.push_back(node.get());
    for (int round = 0; round < 2000; ++round) {
        KTNODE *first = parent.getChild(0);
        ASSERT_TRUE(first->unlink());
        ASSERT_TRUE(first->link(&parent));
        std::rotate(expected.begin(), expected.begin() + 1, expected.end());
    }
    expectChildren(expected);
}

TEST_F(ChildArrayTest, IsWhatAPlainArrayWouldBe) {
    std::mt19937 generator(1907);
    for (unsigned int count : {5u, 70u, 700u}) {
        make(count);
        std::vector<KTNODE *> expected;
        for (int step = 0; step < 6000; ++step) {
            KTNODE *node = nodes[generator() % count].get();
            // Mostly linking at first, mostly unlinking at last.
            const bool linking = generator() % 6000 > static_cast<unsigned int>(step);
            if (linking == (node->getParent() == nullptr)) {
                if (linking) {
                    ASSERT_TRUE(node->link(&parent));
                    expected.push_back(node);
                } else {
                    ASSERT_TRUE(node->unlink());
                    expected.erase(std::find(expected.begin(), expected.end(), node));
                }
            }
            if (step % 50 == 0) expectChildren(expected);
        }
        expectChildren(expected);
        nodes.clear();
        for (KTNODE *&child : expected) child = nullptr;
        expectChildren(expected);
        vnfFree(parent.children);
        parent.children = nullptr;
        parent.numberOfChildren = 0;
    }
}

TEST_F(ChildArrayTest, HandsManyChildrenOnInOrder) {
    make(3000);
    linkAll();
    KTNODE heir, elder;
    elder.link(&heir);
    ASSERT_TRUE(parent.link(&heir));
    ASSERT_TRUE(parent.remove());
    ASSERT_EQ(heir.getNumberOfChildren(), 3001u);
    EXPECT_EQ(heir.getChild(0), &elder);
    for (unsigned int i = 0; i < 3000; ++i) ASSERT_EQ(heir.getChild(i + 1), nodes[i].get());
    EXPECT_EQ(parent.getNumberOfChildren(), 0u);
}

}  // namespace
}  // namespace keltra::test
