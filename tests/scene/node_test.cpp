// SPDX-License-Identifier: Zlib
// Construction, the list of all nodes, searches and setters.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <keltra/engine.h>
#include <keltra/foundation.h>
#include <keltra/helper.h>
#include <keltra/light.h>
#include <keltra/node.h>

#include <memory>
#include <string>
#include <vector>

#include "tests/support/gl_recorder.h"

namespace keltra::test {
namespace {

class NodeTest : public ::testing::Test {
   protected:
    void SetUp() override { ASSERT_EQ(KTNODE::getNumberOfNodes(), 0u); }
    void TearDown() override { KTNODE::cleanUp(); }
    GlRecorder::Stub stub;
};

std::vector<KTNODE *> nodesForward() {
    std::vector<KTNODE *> nodes;
    for (KTNODE *node = KTNODE::getFirstNode(); node; node = node->getNextNode()) nodes.push_back(node);
    return nodes;
}

std::vector<KTNODE *> nodesBackward(KTNODE *last) {
    std::vector<KTNODE *> nodes;
    for (KTNODE *node = last; node; node = node->getPreviousNode()) nodes.push_back(node);
    return nodes;
}

void expectVector(const R3XVECTOR3D &value, float x, float y, float z) {
    EXPECT_EQ(value.x, x);
    EXPECT_EQ(value.y, y);
    EXPECT_EQ(value.z, z);
}

TEST_F(NodeTest, ConstructionGivesTheStatedValues) {
    KTNODE node;
    EXPECT_NE(node.getId(), 0u);
    EXPECT_EQ(node.getName(), "[node " + std::to_string(node.getId()) + "]");
    EXPECT_EQ(node.auxId, 0u);
    EXPECT_EQ(node.type, unsigned(KT_NODE));
    EXPECT_EQ(node.timeStamp, 0u);
    EXPECT_FALSE(node.isShared());
    EXPECT_EQ(node.getData(), nullptr);
    EXPECT_EQ(node.transformMode, 0u);
    for (const R3XVECTOR3D &vector : {node.position, node.rotation, node.origin, node.direction, node.target})
        expectVector(vector, 0.0f, 0.0f, 0.0f);
    EXPECT_EQ(node.targetNode, nullptr);
    const R3XMATRIX identity;
    for (int i = 0; i < 16; ++i) {
        EXPECT_EQ(node.matrix.m[i], identity.m[i]);
        EXPECT_EQ(node.getCachedMatrix()->m[i], identity.m[i]);
    }
    EXPECT_EQ(node.numberOfChildren, 0u);
    EXPECT_EQ(node.children, nullptr);
    EXPECT_TRUE(node.isRoot());
    EXPECT_EQ(node.previousNode, nullptr);
    EXPECT_EQ(node.nextNode, nullptr);
}

TEST_F(NodeTest, TheConstructorsFlagChangesNothing) {
    KTNODE yes(true), no(false);
    EXPECT_EQ(yes.type, no.type);
    EXPECT_EQ(no.getName(), "[node " + std::to_string(no.getId()) + "]");
    EXPECT_THAT(nodesForward(), ::testing::ElementsAre(&yes, &no));
}

TEST_F(NodeTest, APlainNodeDrawsNothing) {
    KTNODE node;
    GlRecorder::clear();
    EXPECT_FALSE(node.render(nullptr));
    EXPECT_TRUE(GlRecorder::calls().empty());
}

TEST_F(NodeTest, TheListKeepsTheOrderOfCreationBothWays) {
    auto first = std::make_unique<KTNODE>(), second = std::make_unique<KTNODE>(),
         third = std::make_unique<KTNODE>();
    EXPECT_THAT(nodesForward(), ::testing::ElementsAre(first.get(), second.get(), third.get()));
    EXPECT_THAT(nodesBackward(third.get()), ::testing::ElementsAre(third.get(), second.get(), first.get()));
    EXPECT_EQ(second->previousNode, first.get());
    EXPECT_EQ(second->nextNode, third.get());

    second.reset();
    EXPECT_THAT(nodesForward(), ::testing::ElementsAre(first.get(), third.get()));
    first.reset();
    EXPECT_EQ(KTNODE::getFirstNode(), third.get());
    EXPECT_EQ(third->previousNode, nullptr);
    KTNODE fourth;
    EXPECT_THAT(nodesBackward(&fourth), ::testing::ElementsAre(&fourth, third.get()));
    EXPECT_EQ(KTNODE::getNumberOfNodes(), 2u);
    third.reset();
    EXPECT_THAT(nodesForward(), ::testing::ElementsAre(&fourth));
}

TEST_F(NodeTest, ADestroyedNodeGivesItsIdentifierBack) {
    KTNODE keeper;
    unsigned int id;
    {
        KTNODE passing;
        id = passing.getId();
        EXPECT_NE(id, keeper.getId());
    }
    KTNODE next;
    EXPECT_EQ(next.getId(), id);
}

TEST_F(NodeTest, CleanUpOfAnEmptyEngineIsFalse) {
    EXPECT_FALSE(KTNODE::cleanUp());
    new KTNODE;
    new KTLIGHT;
    EXPECT_TRUE(KTNODE::cleanUp());
    EXPECT_EQ(KTNODE::getFirstNode(), nullptr);
    EXPECT_EQ(KTNODE::getNumberOfNodes(), 0u);
    EXPECT_FALSE(KTNODE::cleanUp());
}

TEST_F(NodeTest, FindByNameTakesTheFirstCreatedAndComparesExactly) {
    KTNODE other, first, second;
    other.setName("torc");
    first.setName("torch");
    second.setName("torch");
    EXPECT_EQ(KTNODE::findByName("torch"), &first);
    EXPECT_EQ(KTNODE::findByName("torc"), &other);
    EXPECT_EQ(KTNODE::findByName("Torch"), nullptr);
    EXPECT_EQ(KTNODE::findByName("torches"), nullptr);
    EXPECT_EQ(KTNODE::findByName(""), nullptr);
    EXPECT_EQ(KTNODE::findByName(nullptr), nullptr);
    second.setName("");
    EXPECT_EQ(KTNODE::findByName(""), &second);
}

TEST_F(NodeTest, SearchesOfAnEmptyListFindNothing) {
    EXPECT_EQ(KTNODE::findByName("torch"), nullptr);
    EXPECT_EQ(KTNODE::findById(1), nullptr);
}

TEST_F(NodeTest, FindByIdFindsEveryKindOfNode) {
    KTNODE node;
    KTLIGHT light;
    KTHELPER helper;
    EXPECT_EQ(KTNODE::findById(node.getId()), &node);
    EXPECT_EQ(KTNODE::findById(light.getId()), &light);
    EXPECT_EQ(KTNODE::findById(helper.getId()), &helper);
    EXPECT_EQ(KTNODE::findById(0), nullptr);
    EXPECT_EQ(KTNODE::findById(65535), nullptr);
}

TEST_F(NodeTest, TheHierarchyIsSearchedDepthFirst) {
    KTNODE outside, root, left, leftLeaf, right;
    left.link(&root);
    right.link(&root);
    leftLeaf.link(&left);
    for (KTNODE *node : {&outside, &leftLeaf, &right}) node->setName("lamp");
    EXPECT_EQ(root.findByNameInHierarchy("lamp"), &leftLeaf);
    EXPECT_EQ(right.findByNameInHierarchy("lamp"), &right);
    root.setName("lamp");
    EXPECT_EQ(root.findByNameInHierarchy("lamp"), &root);
    EXPECT_EQ(root.findByNameInHierarchy("Lamp"), nullptr);
    EXPECT_EQ(root.findByNameInHierarchy(nullptr), nullptr);

    EXPECT_EQ(root.findByIdInHierarchy(leftLeaf.getId()), &leftLeaf);
    EXPECT_EQ(root.findByIdInHierarchy(root.getId()), &root);
    EXPECT_EQ(root.findByIdInHierarchy(outside.getId()), nullptr);
    EXPECT_EQ(left.findByIdInHierarchy(right.getId()), nullptr);
}

TEST_F(NodeTest, NamesOf256CharactersAreRefused) {
    KTNODE node;
    const std::string longest(255, 'n'), tooLong(256, 'n'), muchTooLong(5000, 'n');
    node.setName(longest.c_str());
    EXPECT_EQ(node.getName(), longest);
    node.setName("short");
    node.setName(tooLong.c_str());
    EXPECT_STREQ(node.getName(), "short");
    node.setName(muchTooLong.c_str());
    EXPECT_STREQ(node.getName(), "short");
    node.setName(nullptr);
    EXPECT_STREQ(node.getName(), "short");
    node.setName(node.getName() + 2);
    EXPECT_STREQ(node.getName(), "ort");
    node.setName("");
    EXPECT_STREQ(node.getName(), "");
}

TEST_F(NodeTest, EveryTypeHasItsName) {
    const char *names[] = {"node",   "root",      "light",      "mesh",       "camera", "emitter", "skydome",
                           "water",  "terrain",   "helper",     "sound",      "box",    "label",   "button",
                           "window", "textfield", "hscrollbar", "vscrollbar", "custom"};
    KTNODE node;
    for (unsigned int code = 0; code < 19; ++code) {
        node.type = code;
        EXPECT_STREQ(node.getTypeName(), names[code]);
    }
    node.type = 19;
    EXPECT_STREQ(node.getTypeName(), "unknown");
    node.type = ~0u;
    EXPECT_STREQ(node.getTypeName(), "unknown");
}

TEST_F(NodeTest, IdentityAndDataAreKept) {
    KTNODE node;
    int data;
    node.setAuxId(77);
    node.setData(&data);
    node.setSharedStatus(true);
    EXPECT_EQ(node.getAuxId(), 77u);
    EXPECT_EQ(node.getData(), &data);
    EXPECT_TRUE(node.isShared());
}

TEST_F(NodeTest, TheThreeFormsOfASetter) {
    struct Property {
        void (KTNODE::*setTwo)(float, float);
        void (KTNODE::*setThree)(float, float, float);
        void (KTNODE::*setVector)(R3XVECTOR3D);
        R3XVECTOR3D (KTNODE::*get)() const;
    };
    const Property properties[] = {
        {&KTNODE::setPosition, &KTNODE::setPosition, &KTNODE::setPosition, &KTNODE::getPosition},
        {&KTNODE::setRotation, &KTNODE::setRotation, &KTNODE::setRotation, &KTNODE::getRotation},
        {&KTNODE::setOrigin, &KTNODE::setOrigin, &KTNODE::setOrigin, &KTNODE::getOrigin},
        {&KTNODE::setDirection, &KTNODE::setDirection, &KTNODE::setDirection, &KTNODE::getDirection},
        {&KTNODE::setTarget, &KTNODE::setTarget, &KTNODE::setTarget, &KTNODE::getTarget},
    };
    KTNODE node;
    for (const Property &property : properties) {
        (node.*property.setThree)(1.0f, 2.0f, 3.0f);
        expectVector((node.*property.get)(), 1.0f, 2.0f, 3.0f);
        (node.*property.setTwo)(4.0f, 5.0f);
        expectVector((node.*property.get)(), 4.0f, 5.0f, 3.0f);
        (node.*property.setVector)(R3XVECTOR3D(7.0f, 8.0f, 9.0f));
        expectVector((node.*property.get)(), 7.0f, 8.0f, 9.0f);
    }
}

TEST_F(NodeTest, MoveAndRotateAddWithoutWrapping) {
    KTNODE node;
    node.setPosition(1.0f, 2.0f, 3.0f);
    node.move(1.0f, 1.0f);
    expectVector(node.getPosition(), 2.0f, 3.0f, 3.0f);
    node.move(0.0f, 0.0f, -4.0f);
    node.move(R3XVECTOR3D(0.5f, 0.0f, 0.0f));
    expectVector(node.getPosition(), 2.5f, 3.0f, -1.0f);

    node.setRotation(350.0f, 0.0f, 10.0f);
    node.rotate(20.0f, -30.0f);
    expectVector(node.getRotation(), 370.0f, -30.0f, 10.0f);
    node.rotate(0.0f, 0.0f, 360.0f);
    node.rotate(R3XVECTOR3D(1.0f, 1.0f, 1.0f));
    expectVector(node.getRotation(), 371.0f, -29.0f, 371.0f);
}

TEST_F(NodeTest, SetMatrixLeavesTheTransformMode) {
    KTNODE node;
    R3XMATRIX matrix;
    matrix.setTranslation(1.0f, 2.0f, 3.0f);
    node.setMatrix(matrix);
    EXPECT_EQ(node.transformMode, 0u);
    expectVector(node.getMatrix().getTranslation(), 1.0f, 2.0f, 3.0f);
}

// Without a table there are no identifiers: nodes still work, all with id 0, and are never confused.
TEST_F(NodeTest, NodesWithoutIdentifiersLiveAllTheSame) {
    ASSERT_TRUE(vnfCloseLog());
    {
        KTNODE first, second;
        EXPECT_EQ(first.getId(), 0u);
        EXPECT_STREQ(second.getName(), "[node 0]");
        EXPECT_TRUE(second.link(&first));
        EXPECT_EQ(KTNODE::getNumberOfNodes(), 2u);
    }
    ASSERT_TRUE(vnfOpenLog(nullptr));
}

TEST_F(NodeTest, TenThousandNodesAreCreatedFoundAndDestroyed) {
    const unsigned int count = 10000;
    std::vector<KTNODE *> nodes(count);
    for (KTNODE *&node : nodes) node = new KTNODE;
    EXPECT_EQ(KTNODE::getNumberOfNodes(), count);
    nodes.back()->setName("the last one");
    EXPECT_EQ(KTNODE::findByName("the last one"), nodes.back());
    EXPECT_EQ(KTNODE::findById(nodes[5000]->getId()), nodes[5000]);
    EXPECT_TRUE(KTNODE::cleanUp());
    EXPECT_EQ(KTNODE::getNumberOfNodes(), 0u);
}

}  // namespace
}  // namespace keltra::test
