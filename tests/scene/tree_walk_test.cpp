// SPDX-License-Identifier: Zlib
#include "scene/tree_walk.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <list>
#include <memory>
#include <string>
#include <vector>

#include "tests/support/small_stack.h"

namespace keltra::test {
namespace {

/// The walk as text: the names of entered nodes with their depth, and a dash before those left.
std::string trace(KTNODE *root, unsigned int visits = UINT_MAX - 1) {
    std::string text;
    KTNODE *stopped = walkTree(
        root,
        [&](KTNODE *node, unsigned int depth) {
            text += node->name + std::to_string(depth) + " ";
            return visits;
        },
        [&](KTNODE *node, unsigned int depth) { text += "-" + (node->name + std::to_string(depth)) + " "; });
    EXPECT_EQ(stopped, nullptr);
    return text;
}

class TreeWalkTest : public ::testing::Test {
   protected:
    KTNODE &make(const char *name, KTNODE *parent = nullptr) {
        nodes.emplace_back();
        nodes.back().setName(name);
        if (parent) nodes.back().link(parent);
        return nodes.back();
    }
    std::list<KTNODE> nodes;
};

TEST_F(TreeWalkTest, NodesComeBeforeTheirChildrenAndAreLeftAfterThem) {
    KTNODE &a = make("a");
    KTNODE &b = make("b", &a);
    make("c", &b);
    make("d", &a);
    EXPECT_EQ(trace(&a), "a0 b1 c2 -c2 -b1 d1 -d1 -a0 ");
    EXPECT_EQ(trace(&b), "b0 c1 -c1 -b0 ");
    EXPECT_EQ(trace(&a, 1), "a0 b1 c2 -c2 -b1 -a0 ");
    EXPECT_EQ(trace(&a, 0), "a0 -a0 ");
}

TEST_F(TreeWalkTest, NothingIsVisitedBelowNull) { EXPECT_EQ(trace(nullptr), ""); }

TEST_F(TreeWalkTest, EmptyEntriesAreSkipped) {
    KTNODE &a = make("a");
    auto gone = std::make_unique<KTNODE>(), goneToo = std::make_unique<KTNODE>();
    gone->link(&a);
    make("b", &a);
    goneToo->link(&a);
    gone.reset();
    goneToo.reset();
    EXPECT_EQ(trace(&a), "a0 b1 -b1 -a0 ");
}

TEST_F(TreeWalkTest, TheWalkStopsWhereItIsTold) {
    KTNODE &a = make("a");
    KTNODE &b = make("b", &a);
    make("c", &a);
    int entered = 0;
    auto stopAtB = [&](KTNODE *node, unsigned int) {
        ++entered;
        return node == &b ? kStopWalk : node->numberOfChildren;
    };
    EXPECT_EQ(walkTree(&a, stopAtB), &b);
    EXPECT_EQ(entered, 2);
}

TEST_F(TreeWalkTest, ACycleIsCutAtTheStart) {
    KTNODE &a = make("a");
    KTNODE &b = make("b", &a);
    make("c", &b);
    a.link(&b);
    EXPECT_EQ(trace(&a), "a0 b1 c2 -c2 -b1 -a0 ");
    EXPECT_EQ(trace(&b), "b0 c1 -c1 a1 -a1 -b0 ");
}

TEST_F(TreeWalkTest, ACopyShowsItsOriginalsChildren) {
    KTNODE &a = make("a");
    make("b", &a);
    KTNODE copy(a);
    EXPECT_EQ(trace(&copy), "a0 b1 -b1 -a0 ");
    KTNODE &top = make("t");
    copy.link(&top);
    EXPECT_EQ(trace(&top), "t0 a1 b2 -b2 -a1 -t0 ");
}

// A copy of the root below each of its children: without a limit the walk would take as many steps as there
// are orders of the children, and with one child it would not end.
TEST_F(TreeWalkTest, CopiesBelowTheirOwnChildrenEnd) {
    const unsigned int count = 20;
    KTNODE &root = make("r");
    for (unsigned int i = 0; i < count; ++i) make("c", &root);
    std::list<KTNODE> copies;
    for (unsigned int i = 0; i < count; ++i) {
        copies.push_back(root);
        ASSERT_TRUE(copies.back().link(root.getChild(i)));
    }
    unsigned int entered = 0;
    walkTree(&root, [&](KTNODE *node, unsigned int) {
        ++entered;
        return node->numberOfChildren;
    });
    const unsigned int own = 1 + 2 * count;
    EXPECT_EQ(entered, own + count * 2 * count + count * count * 2 * count);
}

TEST_F(TreeWalkTest, DeeperNodesThanTheLimitAreNotEntered) {
    KTNODE *node = &make("n");
    KTNODE *root = node;
    for (unsigned int i = 1; i < kMaxTreeDepth + 20; ++i) node = &make("n", node);
    unsigned int entered = 0, left = 0, deepest = 0;
    const bool done = runOnSmallStack([&] {
        walkTree(
            root,
            [&](KTNODE *each, unsigned int depth) {
                ++entered;
                deepest = depth;
                return each->numberOfChildren;
            },
            [&](KTNODE *, unsigned int) { ++left; });
    });
    EXPECT_TRUE(done);
    EXPECT_EQ(entered, kMaxTreeDepth);
    EXPECT_EQ(left, kMaxTreeDepth);
    EXPECT_EQ(deepest, kMaxTreeDepth - 1);
}

TEST_F(TreeWalkTest, ChildrenThatAreTakenAwayDuringTheWalkAreNotVisited) {
    KTNODE &a = make("a");
    make("b", &a);
    KTNODE &c = make("c", &a);
    std::string text;
    walkTree(&a, [&](KTNODE *node, unsigned int) {
        text += node->name;
        if (*node->name == 'b') c.unlink();
        return 2u;
    });
    EXPECT_EQ(text, "ab");
}

}  // namespace
}  // namespace keltra::test
