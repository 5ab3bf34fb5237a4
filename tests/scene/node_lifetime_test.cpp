// SPDX-License-Identifier: Zlib
// What copies share, and what destruction leaves behind, in every order.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <keltra/camera.h>
#include <keltra/element.h>
#include <keltra/engine.h>
#include <keltra/helper.h>
#include <keltra/light.h>
#include <keltra/node.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "tests/support/gl_recorder.h"

namespace keltra::test {
namespace {

using ::testing::ElementsAre;

class NodeLifetimeTest : public ::testing::Test {
   protected:
    void SetUp() override { ASSERT_EQ(KTNODE::getNumberOfNodes(), 0u); }
    void TearDown() override {
        KTELEMENT::free();
        KTNODE::cleanUp();
    }
    GlRecorder::Stub stub;
};

class Witness : public KTNODE {
   public:
    explicit Witness(int *count, std::function<void()> last = nullptr)
        : deaths(count), lastAct(std::move(last)) {}
    ~Witness() override {
        ++*deaths;
        if (lastAct) lastAct();
    }

   private:
    int *deaths;
    std::function<void()> lastAct;
};

TEST_F(NodeLifetimeTest, ACopyCarriesEveryFieldAndIsOnNoList) {
    KTNODE parent, original, child, aim;
    original.link(&parent);
    child.link(&original);
    original.setName("original");
    original.setAuxId(9);
    original.setPosition(1.0f, 2.0f, 3.0f);
    original.setRotation(4.0f, 5.0f, 6.0f);
    original.setOrigin(7.0f, 8.0f, 9.0f);
    original.setDirection(1.0f, 0.0f, 0.0f);
    original.setTarget(0.0f, 1.0f, 0.0f);
    original.setTargetNode(&aim);
    original.transformMode = 1;
    original.timeStamp = 5;
    original.type = KT_SOUND;
    original.setSharedStatus(true);
    original.setData(&aim);
    original.matrix.m[12] = 10.0f;
    original.cachedMatrix.m[13] = 11.0f;

    KTNODE constructed(original), assigned;
    const unsigned int nodes = KTNODE::getNumberOfNodes();
    assigned = original;
    for (const KTNODE *copy : {&constructed, &assigned}) {
        EXPECT_EQ(copy->id, original.id);
        EXPECT_EQ(copy->auxId, 9u);
        EXPECT_STREQ(copy->name, "original");
        EXPECT_EQ(copy->type, unsigned(KT_SOUND));
        EXPECT_EQ(copy->timeStamp, 5u);
        EXPECT_TRUE(copy->shared);
        EXPECT_EQ(copy->data, &aim);
        EXPECT_EQ(copy->transformMode, 1u);
        EXPECT_TRUE(copy->position == original.position);
        EXPECT_TRUE(copy->rotation == original.rotation);
        EXPECT_TRUE(copy->origin == original.origin);
        EXPECT_TRUE(copy->direction == original.direction);
        EXPECT_TRUE(copy->target == original.target);
        EXPECT_EQ(copy->targetNode, &aim);
        EXPECT_EQ(copy->matrix.m[12], 10.0f);
        EXPECT_EQ(copy->cachedMatrix.m[13], 11.0f);
        EXPECT_EQ(copy->previousNode, &parent);
        EXPECT_EQ(copy->nextNode, &child);
        EXPECT_EQ(copy->parent, &parent);
        EXPECT_EQ(copy->numberOfChildren, 1u);
        EXPECT_EQ(copy->children, original.children);
    }
    EXPECT_FALSE(constructed.isRegistered());
    EXPECT_TRUE(assigned.isRegistered());
    EXPECT_EQ(KTNODE::getNumberOfNodes(), nodes);
    EXPECT_EQ(KTNODE::findByName("original"), &original);
    EXPECT_EQ(constructed.getNextNode(), &child);
}

TEST_F(NodeLifetimeTest, DestroyingACopyTakesNothingFromTheOriginal) {
    KTNODE parent, original, child;
    original.link(&parent);
    child.link(&original);
    {
        KTNODE copy(original);
        auto heapCopy = std::make_unique<KTNODE>(copy);
    }
    EXPECT_EQ(original.getChild(0), &child);
    EXPECT_EQ(child.getParent(), &original);
    EXPECT_EQ(parent.getChild(0), &original);
    EXPECT_EQ(KTNODE::getNumberOfNodes(), 3u);
    KTNODE next;
    EXPECT_NE(next.getId(), original.getId());
}

TEST_F(NodeLifetimeTest, AssigningACopyBackChangesNothingElse) {
    KTNODE parent, node, child;
    node.link(&parent);
    child.link(&node);
    const KTNODE saved(node);
    node.setPosition(5.0f, 5.0f, 5.0f);
    node = saved;
    EXPECT_EQ(node.position.x, 0.0f);
    EXPECT_TRUE(child.unlink());
    EXPECT_TRUE(node.unlink());
    EXPECT_EQ(parent.getNumberOfChildren(), 0u);
    KTNODE &same = node;
    node = same;
    EXPECT_TRUE(node.isRegistered());
}

TEST_F(NodeLifetimeTest, TheOriginalMayGoFirst) {
    KTNODE child;
    auto original = std::make_unique<KTNODE>();
    child.link(original.get());
    KTNODE copy(*original);
    original.reset();
    EXPECT_EQ(child.getParent(), nullptr);
    EXPECT_EQ(copy.getChild(0), &child);
    EXPECT_EQ(copy.findByIdInHierarchy(child.getId()), &child);
}

TEST_F(NodeLifetimeTest, ACopyForgetsWhateverIsDestroyed) {
    auto parent = std::make_unique<KTNODE>(), before = std::make_unique<KTNODE>();
    KTNODE original;
    auto after = std::make_unique<KTNODE>(), child = std::make_unique<KTNODE>(),
         aim = std::make_unique<KTNODE>();
    original.link(parent.get());
    child->link(&original);
    original.setTargetNode(aim.get());
    KTNODE copy(original);
    KTNODE assigned;
    assigned = copy;

    // Linking gives the original a new array; the copies keep the one they share.
    KTNODE second;
    second.link(&original);
    EXPECT_EQ(copy.getNumberOfChildren(), 1u);
    child.reset();
    parent.reset();
    before.reset();
    after.reset();
    aim.reset();
    for (const KTNODE *each : {&copy, &assigned}) {
        EXPECT_EQ(each->getChild(0), nullptr);
        EXPECT_EQ(each->parent, nullptr);
        EXPECT_EQ(each->targetNode, nullptr);
    }
    EXPECT_EQ(copy.previousNode, nullptr);
    EXPECT_EQ(copy.nextNode, nullptr);
    EXPECT_EQ(assigned.getPreviousNode(), &original) << "what is on the list follows it";
    EXPECT_THAT(original.getChild(0), nullptr);
    EXPECT_EQ(original.getChild(1), &second);
    EXPECT_EQ(copy.getFinalMatrix(nullptr).m[15], 1.0f);
}

TEST_F(NodeLifetimeTest, ACopyMayBeLinkedAndTakesItselfOut) {
    KTNODE root, original, child;
    child.link(&original);
    {
        KTNODE copy(original);
        ASSERT_TRUE(copy.link(&root));
        EXPECT_EQ(root.findByIdInHierarchy(child.getId()), &child);
        KTNODE guest;
        ASSERT_TRUE(guest.link(&copy));
        EXPECT_EQ(copy.getNumberOfChildren(), 2u);
        EXPECT_EQ(original.getNumberOfChildren(), 1u);
    }
    EXPECT_EQ(root.getNumberOfChildren(), 1u);
    EXPECT_EQ(root.getChild(0), nullptr);
    EXPECT_EQ(child.getParent(), &original);
}

TEST_F(NodeLifetimeTest, ANodeThatWasAssignedToKeepsItsRealPlace) {
    KTNODE place;
    auto node = std::make_unique<KTNODE>(), child = std::make_unique<KTNODE>(),
         root = std::make_unique<KTNODE>();
    node->link(&place);
    child->link(node.get());
    KTNODE elsewhere;
    root->link(&elsewhere);
    *node = *root;
    EXPECT_EQ(node->getParent(), &elsewhere);
    EXPECT_EQ(place.getChild(0), node.get());
    EXPECT_EQ(child->getParent(), node.get());
    node.reset();
    EXPECT_EQ(place.getChild(0), nullptr);
    EXPECT_EQ(child->getParent(), nullptr);
    EXPECT_EQ(elsewhere.getChild(0), root.get());
}

TEST_F(NodeLifetimeTest, AnAssignedRootMovesWhenItIsLinked) {
    KTNODE place, node, root, other;
    node.link(&place);
    node = root;
    ASSERT_TRUE(node.link(&other));
    EXPECT_EQ(place.getChild(0), nullptr);
    EXPECT_EQ(other.getChild(0), &node);
    EXPECT_TRUE(node.unlink());
    EXPECT_EQ(other.getNumberOfChildren(), 0u);
}

TEST_F(NodeLifetimeTest, SwappedNodesMayBeDestroyedInAnyOrder) {
    for (int order = 0; order < 24; ++order) {
        std::unique_ptr<KTNODE> nodes[4];
        for (auto &node : nodes) node = std::make_unique<KTNODE>();
        nodes[2]->link(nodes[0].get());
        nodes[3]->link(nodes[1].get());
        std::swap(*nodes[0], *nodes[1]);
        std::vector<int> row = {0, 1, 2, 3};
        for (int i = 0; i < order; ++i) std::next_permutation(row.begin(), row.end());
        for (int index : row) {
            nodes[index].reset();
            for (auto &node : nodes)
                if (node) {
                    EXPECT_EQ(node->getFinalMatrix(nullptr).m[15], 1.0f);
                    EXPECT_EQ(node->findByNameInHierarchy("nowhere"), nullptr);
                }
        }
    }
}

TEST_F(NodeLifetimeTest, CopiesKeptInAVectorMoveWithIt) {
    KTNODE original, child;
    child.link(&original);
    std::vector<KTNODE> copies;
    for (int i = 0; i < 100; ++i) copies.push_back(original);
    copies.erase(copies.begin(), copies.begin() + 50);
    EXPECT_EQ(copies.size(), 50u);
    EXPECT_EQ(copies[10].getChild(0), &child);
    EXPECT_EQ(KTNODE::getNumberOfNodes(), 2u);
}

TEST_F(NodeLifetimeTest, ADestroyedChildLeavesAnEmptyEntry) {
    ASSERT_TRUE(KTELEMENT::init(10));
    KTNODE parent, first, last;
    auto middle = std::make_unique<KTHELPER>();
    first.link(&parent);
    middle->link(&parent);
    last.link(&parent);
    middle.reset();
    EXPECT_EQ(parent.getNumberOfChildren(), 3u);
    EXPECT_EQ(parent.getChild(1), nullptr);
    EXPECT_TRUE(parent.pass());
    EXPECT_EQ(KTELEMENT::getNumberOfPassedElements(), 0u);
    KTNODE::displayTreeRecursive(&parent, 0);
    EXPECT_EQ(parent.findByIdInHierarchy(last.getId()), &last);

    KTNODE added;
    EXPECT_TRUE(added.link(&parent));
    EXPECT_TRUE(first.unlink());
    EXPECT_EQ(parent.getNumberOfChildren(), 3u);
    EXPECT_EQ(parent.getChild(0), nullptr);
    EXPECT_EQ(parent.getChild(2), &added);
}

TEST_F(NodeLifetimeTest, ADestroyedParentLeavesRoots) {
    KTNODE a, b;
    auto parent = std::make_unique<KTNODE>();
    a.link(parent.get());
    b.link(parent.get());
    parent.reset();
    EXPECT_TRUE(a.isRoot());
    EXPECT_TRUE(b.isRoot());
    EXPECT_FALSE(a.unlink());
    EXPECT_TRUE(a.link(&b));
}

TEST_F(NodeLifetimeTest, ManyChildrenFindTheirEntriesInAnyOrder) {
    for (int stride : {1, -1, 7}) {
        const int count = 1000;
        KTNODE parent;
        std::vector<std::unique_ptr<KTNODE>> children(count);
        for (auto &child : children) {
            child = std::make_unique<KTNODE>();
            child->link(&parent);
        }
        for (int i = 0; i < 10; ++i) children[i * 3]->unlink();
        for (int i = 0; i < count; ++i) children[(i * stride % count + count) % count].reset();
        EXPECT_EQ(parent.getNumberOfChildren(), unsigned(count - 10));
        for (unsigned int i = 0; i < parent.getNumberOfChildren(); ++i)
            EXPECT_EQ(parent.getChild(i), nullptr);
    }
}

TEST_F(NodeLifetimeTest, ATargetIsForgottenByAllThatAimAtIt) {
    auto aim = std::make_unique<KTNODE>();
    KTCAMERA camera;
    KTLIGHT light;
    camera.setTargetNode(aim.get());
    light.setTargetNode(aim.get());
    KTCAMERA copy(camera);
    aim.reset();
    EXPECT_EQ(camera.getTargetNode(), nullptr);
    EXPECT_EQ(light.getTargetNode(), nullptr);
    EXPECT_EQ(copy.getTargetNode(), nullptr);
    EXPECT_TRUE(camera.render(nullptr));
}

TEST_F(NodeLifetimeTest, AnotherTargetStaysWhenAFormerOneGoes) {
    auto former = std::make_unique<KTNODE>();
    KTNODE aim;
    KTCAMERA camera;
    camera.setTargetNode(former.get());
    camera.setTargetNode(&aim);
    former.reset();
    EXPECT_EQ(camera.getTargetNode(), &aim);
}

TEST_F(NodeLifetimeTest, ANodeMayAimAtItselfToTheEnd) {
    auto camera = std::make_unique<KTCAMERA>();
    camera->setTargetNode(camera.get());
    KTCAMERA copy(*camera);
    camera.reset();
    EXPECT_EQ(copy.getTargetNode(), nullptr);
}

TEST_F(NodeLifetimeTest, TheSkyboxIsForgotten) {
    {
        KTNODE sky;
        KELTRA::setSkybox(&sky);
        { KTNODE copy(sky); }
        EXPECT_EQ(KELTRA::getSkybox(), &sky);
    }
    EXPECT_EQ(KELTRA::getSkybox(), nullptr);
}

TEST_F(NodeLifetimeTest, APassedNodeIsForgottenByTheRenderList) {
    ASSERT_TRUE(KTELEMENT::init(10));
    KTHELPER kept;
    kept.pass();
    {
        KTHELPER gone;
        gone.pass();
        EXPECT_EQ(KTELEMENT::element[1].getNode(), &gone);
    }
    EXPECT_EQ(KTELEMENT::element[0].getNode(), &kept);
    EXPECT_EQ(KTELEMENT::element[1].getNode(), nullptr);
    EXPECT_TRUE(KTELEMENT::sort3D());
}

TEST_F(NodeLifetimeTest, CleanUpDestroysTheHeapAndLetsTheStackGo) {
    int deaths = 0;
    KTNODE onStack;
    KTNODE *heapChild = new Witness(&deaths), *heapParent = new Witness(&deaths);
    KTNODE under;
    heapChild->link(&onStack);
    under.link(heapParent);
    EXPECT_TRUE(KTNODE::cleanUp());
    EXPECT_EQ(deaths, 2);
    EXPECT_EQ(KTNODE::getNumberOfNodes(), 0u);
    EXPECT_FALSE(onStack.isRegistered());
    EXPECT_EQ(onStack.nextNode, nullptr);
    EXPECT_EQ(onStack.getChild(0), nullptr);
    EXPECT_TRUE(under.isRoot());
    EXPECT_FALSE(KTNODE::cleanUp());

    KTNODE later;
    EXPECT_EQ(KTNODE::getFirstNode(), &later);
    EXPECT_TRUE(onStack.link(&later));
}

TEST_F(NodeLifetimeTest, NodesOnTheStackOutliveCleanUpTogether) {
    KTNODE parent, aim;
    {
        KTNODE child;
        auto camera = std::make_unique<KTCAMERA>();
        child.link(&parent);
        KTCAMERA stackCamera;
        stackCamera.setTargetNode(&child);
        camera.release();
        EXPECT_TRUE(KTNODE::cleanUp());
        EXPECT_EQ(child.getParent(), &parent);
        EXPECT_EQ(stackCamera.getTargetNode(), &child);
    }
    EXPECT_EQ(parent.getNumberOfChildren(), 1u);
    EXPECT_EQ(parent.getChild(0), nullptr);
}

TEST_F(NodeLifetimeTest, ATargetThatOutlivedCleanUpIsForgotten) {
    KTCAMERA camera;
    {
        KTNODE aim;
        camera.setTargetNode(&aim);
        KTNODE::cleanUp();
    }
    EXPECT_EQ(camera.getTargetNode(), nullptr);
}

TEST_F(NodeLifetimeTest, ADestructorMayDestroyFurtherNodes) {
    int deaths = 0;
    KTNODE *owned[3];
    KTNODE *first = new Witness(&deaths, [&] {
        delete owned[0];
        delete owned[2];
    });
    for (KTNODE *&node : owned) node = new Witness(&deaths);
    owned[0]->link(first);
    new Witness(&deaths, [] { delete new KTNODE; });
    EXPECT_TRUE(KTNODE::cleanUp());
    EXPECT_EQ(deaths, 5);
    EXPECT_EQ(KTNODE::getNumberOfNodes(), 0u);
}

TEST_F(NodeLifetimeTest, NodesMadeInsideOthersAreNotTakenForHeapObjects) {
    struct Pair : KTNODE {
        KTNODE inner;
    };
    new Pair;
    new Pair;
    EXPECT_EQ(KTNODE::getNumberOfNodes(), 4u);
    EXPECT_TRUE(KTNODE::cleanUp());
    EXPECT_EQ(KTNODE::getNumberOfNodes(), 0u);
}

TEST_F(NodeLifetimeTest, NodesMadeForAConstructorAreDestroyedTogether) {
    int deaths = 0;
    class Owner : public Witness {
       public:
        Owner(int *count, KTNODE *child) : Witness(count) { child->link(this); }
    };
    new Owner(&deaths, new Owner(&deaths, new Witness(&deaths)));
    EXPECT_TRUE(KTNODE::cleanUp());
    EXPECT_EQ(deaths, 3);
}

TEST_F(NodeLifetimeTest, AHeapCopyIsTheCallersAndItsPlaceMayBeReused) {
    KTNODE original;
    KTNODE *copy = new KTNODE(original);
    EXPECT_EQ(KTNODE::getNumberOfNodes(), 1u);
    KTNODE::cleanUp();
    EXPECT_EQ(copy->getId(), original.getId());
    delete copy;
    std::vector<KTNODE> row(1);
    EXPECT_TRUE(KTNODE::cleanUp());
    EXPECT_FALSE(row[0].isRegistered());
}

TEST_F(NodeLifetimeTest, EveryOrderOfDestroyingASmallTree) {
    std::vector<int> order = {0, 1, 2, 3};
    do {
        std::unique_ptr<KTNODE> nodes[4];
        for (auto &node : nodes) node = std::make_unique<KTNODE>();
        nodes[1]->link(nodes[0].get());
        nodes[2]->link(nodes[0].get());
        nodes[3]->link(nodes[1].get());
        nodes[3]->setTargetNode(nodes[2].get());
        for (int index : order) {
            nodes[index].reset();
            for (auto &node : nodes)
                if (node) node->getFinalMatrix(nullptr);
        }
        EXPECT_EQ(KTNODE::getNumberOfNodes(), 0u);
    } while (std::next_permutation(order.begin(), order.end()));
}

}  // namespace
}  // namespace keltra::test
