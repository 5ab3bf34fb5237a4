// SPDX-License-Identifier: Zlib
// Links between nodes, the matrices along them, and walks.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <keltra/element.h>
#include <keltra/engine.h>
#include <keltra/foundation.h>
#include <keltra/glbridge.h>
#include <keltra/helper.h>
#include <keltra/node.h>

#include <climits>
#include <memory>
#include <string>
#include <vector>

#include "core/glbridge.h"
#include "tests/support/allocations.h"
#include "tests/support/gl_recorder.h"
#include "tests/support/small_stack.h"
#include "tests/support/temp_file.h"
#include "tests/support/text_file.h"

namespace keltra::test {
namespace {

using ::testing::ElementsAre;

std::vector<KTNODE *> childrenOf(const KTNODE &node) {
    std::vector<KTNODE *> children;
    for (unsigned int i = 0; i < node.getNumberOfChildren(); ++i) children.push_back(node.getChild(i));
    return children;
}

class NodeTreeTest : public ::testing::Test {
   protected:
    void SetUp() override {
        ASSERT_EQ(KTNODE::getNumberOfNodes(), 0u);
        KT_glMatrixMode(GL_MODELVIEW);
        KT_glLoadIdentity();
        GlRecorder::clear();
    }
    void TearDown() override {
        KTELEMENT::free();
        KTNODE::cleanUp();
    }

    /// A chain on the heap: each node the child of the one before, one unit further along X.
    static std::vector<KTNODE *> makeChain(std::size_t length) {
        std::vector<KTNODE *> chain(length);
        for (std::size_t i = 0; i < length; ++i) {
            chain[i] = new KTNODE;
            chain[i]->setPosition(1.0f, 0.0f, 0.0f);
            if (i > 0) chain[i]->link(chain[i - 1]);
        }
        return chain;
    }

    static float viewX() {
        float m[16];
        KT_glGetFloatv(0, m);
        return m[12];
    }

    GlRecorder::Stub stub;
};

TEST_F(NodeTreeTest, ChildrenStayInLinkingOrder) {
    KTNODE parent, a, b, c;
    EXPECT_TRUE(b.link(&parent));
    EXPECT_TRUE(a.link(&parent));
    EXPECT_TRUE(c.link(&parent));
    EXPECT_THAT(childrenOf(parent), ElementsAre(&b, &a, &c));
    EXPECT_EQ(a.getParent(), &parent);
    EXPECT_FALSE(a.isRoot());
    EXPECT_EQ(parent.getChild(3), nullptr);
    EXPECT_EQ(parent.getChild(UINT_MAX), nullptr);
}

TEST_F(NodeTreeTest, RefusedLinksChangeNothing) {
    KTNODE parent, other, child;
    EXPECT_FALSE(child.link(nullptr));
    EXPECT_FALSE(child.link(&child));
    EXPECT_TRUE(child.isRoot());
    EXPECT_EQ(child.getNumberOfChildren(), 0u);
    ASSERT_TRUE(child.link(&parent));
    KTNODE **before = parent.children;
    EXPECT_FALSE(child.link(&other));
    EXPECT_FALSE(child.link(&parent));
    EXPECT_EQ(child.getParent(), &parent);
    EXPECT_EQ(parent.children, before);
    EXPECT_EQ(parent.getNumberOfChildren(), 1u);
    EXPECT_EQ(other.getNumberOfChildren(), 0u);
}

TEST_F(NodeTreeTest, UnlinkingTheOnlyChildLeavesANullArray) {
    KTNODE parent, child;
    EXPECT_FALSE(child.unlink());
    child.link(&parent);
    EXPECT_TRUE(child.unlink());
    EXPECT_EQ(parent.getNumberOfChildren(), 0u);
    EXPECT_EQ(parent.children, nullptr);
    EXPECT_TRUE(child.isRoot());
    EXPECT_FALSE(child.unlink());
    EXPECT_TRUE(child.link(&parent));
}

TEST_F(NodeTreeTest, UnlinkingKeepsTheOrderOfTheOthers) {
    KTNODE parent, a, b, c, d;
    for (KTNODE *node : {&a, &b, &c, &d}) node->link(&parent);
    EXPECT_TRUE(b.unlink());
    EXPECT_THAT(childrenOf(parent), ElementsAre(&a, &c, &d));
    EXPECT_TRUE(d.unlink());
    EXPECT_THAT(childrenOf(parent), ElementsAre(&a, &c));
    EXPECT_TRUE(a.unlink());
    EXPECT_THAT(childrenOf(parent), ElementsAre(&c));
    EXPECT_TRUE(b.link(&parent));
    EXPECT_THAT(childrenOf(parent), ElementsAre(&c, &b));
}

// Deliberate: an only child is not compared with the node that unlinks, so that a copy of it can be used.
TEST_F(NodeTreeTest, AnOnlyChildIsTakenWithoutBeingCompared) {
    KTNODE parent, child;
    child.link(&parent);
    KTNODE copy(child);
    EXPECT_TRUE(copy.unlink());
    EXPECT_EQ(parent.getNumberOfChildren(), 0u);
    EXPECT_EQ(copy.getParent(), nullptr);
    EXPECT_EQ(child.getParent(), &parent);
    EXPECT_FALSE(child.unlink());
}

TEST_F(NodeTreeTest, AParentThatDoesNotListTheNodeKeepsItsChildren) {
    KTNODE parent, a, b;
    a.link(&parent);
    b.link(&parent);
    KTNODE copy(a);
    EXPECT_FALSE(copy.unlink());
    EXPECT_EQ(copy.getParent(), &parent);
    EXPECT_THAT(childrenOf(parent), ElementsAre(&a, &b));
}

TEST_F(NodeTreeTest, RemoveHandsTheChildrenUp) {
    KTNODE parent, first, second, removed, a, b, c;
    first.link(&parent);
    removed.link(&parent);
    second.link(&parent);
    for (KTNODE *node : {&a, &b, &c}) node->link(&removed);
    EXPECT_TRUE(removed.remove());
    EXPECT_THAT(childrenOf(parent), ElementsAre(&first, &second, &a, &b, &c));
    EXPECT_TRUE(removed.isRoot());
    EXPECT_EQ(removed.getNumberOfChildren(), 0u);
    EXPECT_EQ(removed.children, nullptr);
    EXPECT_EQ(b.getParent(), &parent);
    EXPECT_EQ(KTNODE::getNumberOfNodes(), 7u);
    EXPECT_FALSE(removed.remove());
}

TEST_F(NodeTreeTest, RemoveSkipsDestroyedChildren) {
    KTNODE parent, removed, kept;
    removed.link(&parent);
    auto gone = std::make_unique<KTNODE>();
    gone->link(&removed);
    kept.link(&removed);
    gone.reset();
    EXPECT_TRUE(removed.remove());
    EXPECT_THAT(childrenOf(parent), ElementsAre(&kept));
}

TEST_F(NodeTreeTest, RemoveFromACycleEnds) {
    KTNODE a, b;
    a.link(&b);
    b.link(&a);
    EXPECT_TRUE(b.remove());
    EXPECT_TRUE(a.isRoot());
    EXPECT_TRUE(b.isRoot());
    EXPECT_EQ(a.getNumberOfChildren(), 0u);
    EXPECT_EQ(b.getNumberOfChildren(), 0u);
}

TEST_F(NodeTreeTest, WithoutMemoryLinkAndUnlinkChangeNothing) {
    if (!Allocations::canFail()) GTEST_SKIP() << "a sanitizer owns malloc";
    KTNODE parent, a, b, c;
    a.link(&parent);
    b.link(&parent);
    KTNODE **before = parent.children;

    Allocations::failNext(3 * sizeof(KTNODE *));
    EXPECT_FALSE(c.link(&parent));
    EXPECT_TRUE(c.isRoot());
    auto copy = std::make_unique<KTNODE>(parent);  // it keeps both, so unlinking takes a new array
    Allocations::failNext(1 * sizeof(KTNODE *));
    EXPECT_FALSE(a.unlink());
    EXPECT_EQ(a.getParent(), &parent);
    copy.reset();
    Allocations::clear();
    EXPECT_EQ(parent.children, before);
    EXPECT_THAT(childrenOf(parent), ElementsAre(&a, &b));

    KTNODE heir;
    parent.link(&heir);
    Allocations::failNext(2 * sizeof(KTNODE *));
    EXPECT_FALSE(parent.remove());
    Allocations::clear();
    EXPECT_TRUE(c.link(&heir));
}

TEST_F(NodeTreeTest, ARootsFinalMatrixIsItsOwn) {
    KTNODE node;
    node.setPosition(1.0f, 2.0f, 3.0f);
    node.setOrigin(10.0f, 20.0f, 30.0f);
    node.setRotation(0.0f, 0.0f, 90.0f);
    R3XMATRIX matrix = node.getFinalMatrix(nullptr);
    R3XVECTOR4D point = matrix.transform(R3XVECTOR3D(1.0f, 0.0f, 0.0f));
    EXPECT_NEAR(point.x, 11.0f, 1e-5f);
    EXPECT_NEAR(point.y, 23.0f, 1e-5f);
    EXPECT_NEAR(point.z, 33.0f, 1e-5f);
}

TEST_F(NodeTreeTest, RotationsAreAppliedAboutXThenYThenZ) {
    KTNODE node;
    node.setRotation(30.0f, 40.0f, 50.0f);
    node.getFinalMatrix(nullptr);
    const std::vector<Call> turns = GlRecorder::all("glRotatex");
    ASSERT_EQ(turns.size(), 3u);
    EXPECT_THAT(turns[0].arguments, ElementsAre(30 << 16, 1 << 16, 0, 0));
    EXPECT_THAT(turns[1].arguments, ElementsAre(40 << 16, 0, 1 << 16, 0));
    EXPECT_THAT(turns[2].arguments, ElementsAre(50 << 16, 0, 0, 1 << 16));
    EXPECT_THAT(GlRecorder::names(), ElementsAre("glPushMatrix", "glLoadIdentity", "glTranslatex",
                                                 "glRotatex", "glRotatex", "glRotatex", "glPopMatrix"));
}

TEST_F(NodeTreeTest, EachTransformModeAppliesItsOwn) {
    KTNODE root, middle, leaf;
    middle.link(&root);
    leaf.link(&middle);
    R3XMATRIX matrix;
    matrix.setTranslation(0.0f, 5.0f, 0.0f);
    for (KTNODE *node : {&root, &middle, &leaf}) {
        node->setPosition(1.0f, 0.0f, 0.0f);
        node->setMatrix(matrix);
    }
    root.transformMode = 1;
    middle.transformMode = 2;
    R3XVECTOR3D place = leaf.getFinalMatrix(nullptr).getTranslation();
    EXPECT_EQ(place.x, 1.0f);
    EXPECT_EQ(place.y, 5.0f);
    EXPECT_EQ(place.z, 0.0f);
}

TEST_F(NodeTreeTest, TheNamedAncestorIsIncluded) {
    std::vector<KTNODE *> chain = makeChain(5);
    chain[2]->setName("stop");
    EXPECT_EQ(chain[4]->getFinalMatrix(nullptr).m[12], 5.0f);
    EXPECT_EQ(chain[4]->getFinalMatrix("stop").m[12], 3.0f);
    EXPECT_EQ(chain[4]->getFinalMatrix("nowhere").m[12], 5.0f);
    chain[4]->setName("stop itself");
    EXPECT_EQ(chain[4]->getFinalMatrix("stop itself").m[12], 5.0f);
    chain[0]->setName("stop");
    EXPECT_EQ(chain[4]->getFinalMatrix("stop").m[12], 3.0f) << "the nearest of that name counts";
}

TEST_F(NodeTreeTest, SixtyFourAncestorsGiveTheIdentity) {
    std::vector<KTNODE *> chain = makeChain(66);
    EXPECT_EQ(chain[63]->getFinalMatrix(nullptr).m[12], 64.0f);
    GlRecorder::clear();
    EXPECT_EQ(chain[64]->getFinalMatrix(nullptr).m[12], 0.0f);
    EXPECT_EQ(chain[65]->getFinalMatrix(nullptr).m[12], 0.0f);
    EXPECT_TRUE(GlRecorder::calls().empty());
    chain[0]->setName("top");
    EXPECT_EQ(chain[64]->getFinalMatrix("top").m[12], 0.0f) << "the name of the 64th ancestor comes too late";
    chain[1]->setName("below the top");
    EXPECT_EQ(chain[64]->getFinalMatrix("below the top").m[12], 64.0f);
}

TEST_F(NodeTreeTest, TheModelViewMatrixIsLeftAsItWas) {
    KTNODE node;
    node.setPosition(3.0f, 0.0f, 0.0f);
    KT_glTranslatef(7.0f, 0.0f, 0.0f);
    EXPECT_EQ(node.getFinalMatrix(nullptr).m[12], 3.0f);
    EXPECT_EQ(viewX(), 7.0f);
}

TEST_F(NodeTreeTest, TheCallersMatrixStaysWhenNoLevelIsLeft) {
    KTNODE node;
    node.setPosition(3.0f, 0.0f, 0.0f);
    KT_glTranslatef(7.0f, 0.0f, 0.0f);
    int levels = 0;
    while (pushMatrix()) ++levels;
    EXPECT_EQ(node.getFinalMatrix(nullptr).m[12], 3.0f);
    EXPECT_EQ(viewX(), 7.0f);
    for (; levels > 0; --levels) popMatrix();
    EXPECT_EQ(viewX(), 7.0f);
}

TEST_F(NodeTreeTest, AFullMatrixStackIsLeftAsItWas) {
    KTNODE node;
    node.setPosition(3.0f, 0.0f, 0.0f);
    for (int i = 0; i < 32; ++i) {
        KT_glTranslatef(1.0f, 0.0f, 0.0f);
        KT_glPushMatrix();
    }
    KT_glTranslatef(1.0f, 0.0f, 0.0f);
    GlRecorder::clear();
    EXPECT_EQ(node.getFinalMatrix(nullptr).m[12], 3.0f);
    EXPECT_EQ(GlRecorder::count("glPushMatrix"), 0);
    EXPECT_EQ(GlRecorder::count("glPopMatrix"), 0);
    EXPECT_EQ(GlRecorder::last("glLoadMatrixx").contents[12], 33 << 16);
    EXPECT_EQ(viewX(), 33.0f);
    for (int i = 32; i > 0; --i) {
        KT_glPopMatrix();
        EXPECT_EQ(viewX(), float(i));
    }
}

TEST_F(NodeTreeTest, ACycleEndsEveryWalk) {
    ASSERT_TRUE(KTELEMENT::init(10));
    KTNODE a, b;
    a.link(&b);
    b.link(&a);
    EXPECT_EQ(a.getFinalMatrix(nullptr).m[12], 0.0f);
    EXPECT_EQ(a.findByNameInHierarchy("nowhere"), nullptr);
    EXPECT_EQ(b.findByIdInHierarchy(a.getId()), &a);
    EXPECT_TRUE(a.pass());
    EXPECT_EQ(GlRecorder::count("glPushMatrix"), 2);
    EXPECT_EQ(GlRecorder::count("glPopMatrix"), 2);
}

TEST_F(NodeTreeTest, PassStampsAndQueuesTheSubtree) {
    ASSERT_TRUE(KTELEMENT::init(10));
    KTNODE root;
    KTHELPER helper;
    helper.link(&root);
    root.setPosition(1.0f, 0.0f, 0.0f);
    helper.setPosition(1.0f, 0.0f, 0.0f);
    EXPECT_TRUE(root.pass());
    EXPECT_EQ(root.timeStamp, unsigned(KELTRA::timeStamp));
    EXPECT_EQ(helper.timeStamp, unsigned(KELTRA::timeStamp));
    ASSERT_EQ(KTELEMENT::getNumberOfPassedElements(), 1u);
    EXPECT_EQ(KTELEMENT::element[0].node, &helper);
    EXPECT_EQ(helper.getCachedMatrix()->m[12], 2.0f);
}

TEST_F(NodeTreeTest, PassIsTrueEvenWithoutARenderList) {
    KTNODE node;
    ASSERT_FALSE(KTELEMENT::isActive());
    EXPECT_TRUE(node.pass(true));
    EXPECT_EQ(node.timeStamp, unsigned(KELTRA::timeStamp));
}

TEST_F(NodeTreeTest, TenThousandLevelsEndOnASmallStack) {
    ASSERT_TRUE(KTELEMENT::init(10));
    std::vector<KTNODE *> chain = makeChain(10000);
    chain[255]->setName("deep");
    chain[256]->setName("too deep");
    bool done = runOnSmallStack([&] {
        EXPECT_EQ(chain[0]->findByNameInHierarchy("deep"), chain[255]);
        EXPECT_EQ(chain[0]->findByNameInHierarchy("too deep"), nullptr);
        EXPECT_EQ(chain[1]->findByNameInHierarchy("too deep"), chain[256]);
        EXPECT_TRUE(chain[0]->pass());
        KTNODE::displayTreeRecursive(chain[0], 0);
        KTNODE::cleanUp();
    });
    EXPECT_TRUE(done);
    EXPECT_EQ(KTNODE::getNumberOfNodes(), 0u);
}

class NodeLogTest : public NodeTreeTest {
   protected:
    void SetUp() override {
        NodeTreeTest::SetUp();
        path = folder.path("tree.txt");
        ASSERT_TRUE(vnfOpenLog(path.c_str()));
    }
    void TearDown() override {
        NodeTreeTest::TearDown();
        vnfCloseLog();
        ASSERT_TRUE(vnfOpenLog(nullptr));
    }

    /// The lines written since the log's opening banner.
    std::string logged() const {
        const std::string text = readText(path);
        const std::size_t banner = text.find("\n\n");
        return banner == std::string::npos ? text : text.substr(banner + 2);
    }

    TempFolder folder;
    std::string path;
};

TEST_F(NodeLogTest, TheTreeIsWrittenWithTwoBlanksALevel) {
    KTNODE root, hand, finger, foot;
    root.setName("body");
    hand.setName("hand");
    finger.setName("finger");
    foot.setName("foot");
    hand.link(&root);
    foot.link(&root);
    finger.link(&hand);
    KTNODE::displayTreeRecursive(&root, 1);
    KTNODE::displayTreeRecursive(nullptr, 1);
    auto line = [](const char *start, const KTNODE &node) {
        return std::string(start) + " [id: " + std::to_string(node.getId()) + "]\n";
    };
    EXPECT_EQ(logged(), line(" + body", root) + line("   + hand", hand) + line("     + finger", finger) +
                            line("   + foot", foot));
}

TEST_F(NodeLogTest, ANegativeIndentShowsAsNone) {
    KTNODE root, child, grandchild;
    for (KTNODE *node : {&root, &child, &grandchild}) node->setName("n");
    child.link(&root);
    grandchild.link(&child);
    KTNODE::displayTreeRecursive(&root, -3);
    auto id = [](const KTNODE &node) { return " [id: " + std::to_string(node.getId()) + "]\n"; };
    EXPECT_EQ(logged(), "+ n" + id(root) + "+ n" + id(child) + " + n" + id(grandchild));
    KTNODE::displayTreeRecursive(&root, INT_MIN);
}

TEST_F(NodeLogTest, TheLongestNameAndIndentStayOneLine) {
    KTNODE node, child;
    node.setName(std::string(255, 'x').c_str());
    child.link(&node);
    KTNODE::displayTreeRecursive(&node, INT_MAX);
    const std::string text = logged();
    const std::string tail = " [id: " + std::to_string(node.getId()) + "]\n";
    EXPECT_EQ(text.substr(0, text.find('\n') + 1),
              std::string(512, ' ') + "+ " + std::string(255, 'x') + tail);
}

TEST_F(NodeLogTest, ACycleIsWrittenOnce) {
    KTNODE a, b;
    a.setName("a");
    b.setName("b");
    a.link(&b);
    b.link(&a);
    KTNODE::displayTreeRecursive(&a, 0);
    EXPECT_EQ(logged(),
              "+ a [id: " + std::to_string(a.getId()) + "]\n  + b [id: " + std::to_string(b.getId()) + "]\n");
}

}  // namespace
}  // namespace keltra::test
