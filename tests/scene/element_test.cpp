// SPDX-License-Identifier: Zlib
#include <keltra/element.h>

#include <keltra/engine.h>

#include <limits>
#include <memory>
#include <string>

#include "core/glbridge.h"
#include "tests/scene/render_list.h"
#include "tests/support/allocations.h"
#include "tests/support/small_stack.h"

namespace keltra::test {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;

constexpr unsigned int kDeepest = 256;  // levels of a tree that are passed

const bool kClippingAtLoad = KTELEMENT::clipping;
const float kRadiusAtLoad = KTELEMENT::getClippingRadius();

KTELEMENT &entry(unsigned int i) { return KTELEMENT::element[i]; }

unsigned int passed() { return KTELEMENT::getNumberOfPassedElements(); }

// A row of helpers, each the child of the one before.
class Chain {
   public:
    explicit Chain(unsigned int length) {
        for (unsigned int i = 0; i < length; ++i) {
            nodes.push_back(std::make_unique<KTHELPER>());
            if (i > 0) nodes[i]->link(nodes[i - 1].get());
        }
    }
    KTNODE &root() { return *nodes[0]; }

   private:
    std::vector<std::unique_ptr<KTHELPER>> nodes;
};

TEST(ElementTest, IsNewWithTheIdentityAndNothingElse) {
    KTELEMENT element;
    EXPECT_EQ(elements(*element.getMatrix()), elements(R3XMATRIX()));
    EXPECT_EQ(element.getNode(), nullptr);
    EXPECT_EQ(element.getAuxId(), 0u);
    EXPECT_EQ(element.getDistance(), 0.0f);
    EXPECT_EQ(element.getParam1(), 0u);
    EXPECT_THAT(element.nearestLight, Each(nullptr));
}

TEST(ElementTest, ACopyHoldsEveryField) {
    KTNODE node;
    KTELEMENT light, element;
    element.node = &node;
    element.matrix = translation(1.0f, 2.0f, 3.0f);
    element.auxId = 4;
    element.distance = 5.0f;
    element.setNearestLight(3, &light);
    element.setParam1(6);
    KTELEMENT assigned;
    assigned = element;
    for (KTELEMENT copy : {KTELEMENT(element), assigned}) {
        EXPECT_EQ(copy.getNode(), &node);
        EXPECT_EQ(elements(*copy.getMatrix()), elements(translation(1.0f, 2.0f, 3.0f)));
        EXPECT_EQ(copy.getAuxId(), 4u);
        EXPECT_EQ(copy.getDistance(), 5.0f);
        EXPECT_EQ(copy.getNearestLight(3), &light);
        EXPECT_EQ(copy.getNearestLight(0), nullptr);
        EXPECT_EQ(copy.getParam1(), 6u);
    }
}

TEST(ElementTest, AFifthNearestLightIsNeitherKeptNorRead) {
    KTELEMENT light, element;
    element.setParam1(7);
    element.setNearestLight(4, &light);
    element.setNearestLight(~0u, &light);
    EXPECT_EQ(element.getNearestLight(4), nullptr);
    EXPECT_EQ(element.getNearestLight(~0u), nullptr);
    EXPECT_EQ(element.getParam1(), 7u) << "the field behind the lights";
}

TEST_F(RenderListTest, CullingIsOffAndItsRadius128AtFirst) {
    EXPECT_FALSE(kClippingAtLoad);
    EXPECT_EQ(kRadiusAtLoad, 128.0f);
}

TEST_F(RenderListTest, TakesItsCapacityFrom1To1024AndOtherwise1024) {
    const struct {
        unsigned int asked, given;
    } cases[] = {{0, 1024}, {2000, 1024}, {10, 10}, {1, 1}, {1024, 1024}, {1025, 1024}, {~0u, 1024}};
    for (const auto &[asked, given] : cases) {
        start(asked);
        EXPECT_EQ(KTELEMENT::getNumberOfElements(), given) << "for " << asked;
    }
}

TEST_F(RenderListTest, StartsAndEndsOnce) {
    EXPECT_TRUE(KTELEMENT::isActive());
    EXPECT_FALSE(KTELEMENT::init(10));
    EXPECT_EQ(KTELEMENT::getNumberOfElements(), 1024u);
    EXPECT_TRUE(KTELEMENT::free());
    EXPECT_FALSE(KTELEMENT::free());
    EXPECT_FALSE(KTELEMENT::isActive());
    EXPECT_EQ(KTELEMENT::getNumberOfElements(), 0u);
    EXPECT_EQ(KTELEMENT::element, nullptr);
    EXPECT_EQ(KTELEMENT::elementPointer, nullptr);
}

TEST_F(RenderListTest, TakesNothingWhileItIsNotStarted) {
    KTHELPER helper;
    ASSERT_TRUE(helper.pass());
    EXPECT_EQ(passed(), 1u);
    KTELEMENT::free();
    EXPECT_FALSE(KTELEMENT::pass(&helper));
    EXPECT_EQ(passed(), 0u);
    EXPECT_EQ(KTELEMENT::getLight(0), nullptr);
    EXPECT_FALSE(KTELEMENT::sort3D());
}

TEST_F(RenderListTest, StartsLaterWhenMemoryHadRunOut) {
    if (!Allocations::canFail()) GTEST_SKIP() << "a sanitizer owns malloc";
    KTELEMENT::free();
    for (std::size_t size : {777 * sizeof(KTELEMENT), 777 * sizeof(KTELEMENT *)}) {
        Allocations::failNext(size);
        EXPECT_FALSE(KTELEMENT::init(777));
        EXPECT_FALSE(KTELEMENT::isActive());
        EXPECT_EQ(KTELEMENT::getNumberOfElements(), 0u);
    }
    Allocations::clear();
    EXPECT_TRUE(KTELEMENT::init(777));
}

TEST_F(RenderListTest, DropsTheEleventhOfTen) {
    start(10);
    KTHELPER nodes[11], child;
    child.link(&nodes[10]);
    for (int i = 0; i < 10; ++i) EXPECT_TRUE(KTELEMENT::pass(&nodes[i]));
    EXPECT_FALSE(KTELEMENT::pass(&nodes[10]));
    EXPECT_TRUE(nodes[10].pass()) << "a node's own pass is always true";
    EXPECT_EQ(passed(), 10u);
    EXPECT_EQ(depth(), 0);
    newFrame();
    EXPECT_TRUE(KTELEMENT::pass(&nodes[10]));
    EXPECT_EQ(passed(), 2u);
}

TEST_F(RenderListTest, DropsWhatIsLeftOfATreeWhenItIsFull) {
    start(3);
    KTNODE root;
    KTHELPER nodes[6];
    nodes[0].link(&root);
    nodes[1].link(&nodes[0]);
    nodes[2].link(&nodes[1]);
    nodes[3].link(&nodes[2]);
    nodes[4].link(&nodes[1]);
    nodes[5].link(&root);
    EXPECT_TRUE(KTELEMENT::pass(&root));
    EXPECT_THAT(drawn(), ElementsAre(&nodes[0], &nodes[1], &nodes[2]));
    EXPECT_EQ(depth(), 0);
}

TEST_F(RenderListTest, RefusesNull) {
    EXPECT_FALSE(KTELEMENT::pass(nullptr));
    EXPECT_FALSE(KTELEMENT::pass(nullptr, true));
    EXPECT_TRUE(GlRecorder::calls().empty());
}

TEST_F(RenderListTest, PlainNodesAreNotListedButMoveTheirChildren) {
    KTNODE root, middle;
    KTHELPER leaf;
    root.setPosition(1.0f, 0.0f, 0.0f);
    middle.setPosition(0.0f, 2.0f, 0.0f);
    leaf.setPosition(0.0f, 0.0f, 3.0f);
    middle.link(&root);
    leaf.link(&middle);
    EXPECT_TRUE(KTELEMENT::pass(&root));
    EXPECT_THAT(drawn(), ElementsAre(&leaf));
    EXPECT_EQ(elements(entry(0).matrix), elements(translation(1.0f, 2.0f, 3.0f)));
}

TEST_F(RenderListTest, ListsATreeDepthFirstInLinkingOrder) {
    KTHELPER root, left, leftLeaf, right;
    left.link(&root);
    leftLeaf.link(&left);
    right.link(&root);
    root.pass();
    EXPECT_THAT(drawn(), ElementsAre(&root, &left, &leftLeaf, &right));
}

TEST_F(RenderListTest, TranslatesThenRotatesAboutXYZ) {
    KTHELPER node;
    node.setPosition(1.0f, 2.0f, 3.0f);
    node.setOrigin(10.0f, 20.0f, 30.0f);
    node.setRotation(15.0f, 25.0f, 35.0f);
    KTELEMENT::pass(&node);
    EXPECT_THAT(GlRecorder::names(), ElementsAre("glPushMatrix", "glTranslatex", "glRotatex", "glRotatex",
                                                 "glRotatex", "glPopMatrix"));
    EXPECT_THAT(GlRecorder::calls()[1].arguments, ElementsAre(11 * 65536, 22 * 65536, 33 * 65536));
    EXPECT_THAT(GlRecorder::calls()[2].arguments, ElementsAre(15 * 65536, 65536, 0, 0));
    EXPECT_THAT(GlRecorder::calls()[3].arguments, ElementsAre(25 * 65536, 0, 65536, 0));
    EXPECT_THAT(GlRecorder::calls()[4].arguments, ElementsAre(35 * 65536, 0, 0, 65536));
    const R3XMATRIX expected = rotation(35.0f, 0.0f, 0.0f, 1.0f) *
                               (rotation(25.0f, 0.0f, 1.0f, 0.0f) *
                                (rotation(15.0f, 1.0f, 0.0f, 0.0f) * translation(11.0f, 22.0f, 33.0f)));
    EXPECT_EQ(elements(entry(0).matrix), elements(expected));
}

TEST_F(RenderListTest, TransformMode1MultipliesByTheNodesMatrixAndOthersApplyNothing) {
    KTHELPER node;
    node.setPosition(1.0f, 2.0f, 3.0f);
    node.setMatrix(translation(4.0f, 5.0f, 6.0f));
    KT_glTranslatef(100.0f, 0.0f, 0.0f);
    node.transformMode = 1;
    node.pass();
    node.transformMode = 2;
    node.pass();
    node.transformMode = ~0u;
    node.pass();
    EXPECT_EQ(elements(entry(0).matrix), elements(translation(104.0f, 5.0f, 6.0f)));
    EXPECT_EQ(elements(entry(1).matrix), elements(translation(100.0f, 0.0f, 0.0f)));
    EXPECT_EQ(elements(entry(2).matrix), elements(translation(100.0f, 0.0f, 0.0f)));
}

TEST_F(RenderListTest, AnEntryTakesNodeMatrixAndAuxiliaryIdentifier) {
    KTHELPER node;
    node.setAuxId(77);
    node.setPosition(1.0f, 2.0f, 3.0f);
    const Top before = modelView();
    node.pass();
    EXPECT_EQ(entry(0).getNode(), &node);
    EXPECT_EQ(entry(0).getAuxId(), 77u);
    EXPECT_EQ(KTELEMENT::elementPointer[0], &entry(0));
    EXPECT_EQ(elements(*node.getCachedMatrix()), elements(entry(0).matrix));
    EXPECT_EQ(node.timeStamp, static_cast<unsigned int>(KELTRA::getTimeStamp()));
    EXPECT_EQ(modelView(), before);
}

TEST_F(RenderListTest, AnEntryKeepsNothingOfAnEarlierFrame) {
    KTHELPER node;
    KTELEMENT light;
    node.pass();
    entry(0).setParam1(16);
    entry(0).distance = 9.0f;
    for (unsigned int i = 0; i < 4; ++i) entry(0).setNearestLight(i, &light);
    newFrame();
    node.pass();
    EXPECT_EQ(entry(0).getParam1(), 0u);
    EXPECT_EQ(entry(0).getDistance(), 0.0f);
    EXPECT_THAT(entry(0).nearestLight, Each(nullptr));
}

TEST_F(RenderListTest, AHiddenMeshIsNotListedButItsChildrenAre) {
    KTMESH mesh, child;
    mesh.setPosition(5.0f, 0.0f, 0.0f);
    child.link(&mesh);
    mesh.setDisplayStatus(false);
    mesh.pass();
    EXPECT_THAT(drawn(), ElementsAre(&child));
    EXPECT_EQ(elements(entry(0).matrix), elements(translation(5.0f, 0.0f, 0.0f)));
    mesh.setDisplayStatus(true);
    newFrame();
    mesh.pass();
    EXPECT_THAT(drawn(), ElementsAre(&mesh, &child));
}

TEST_F(RenderListTest, CullsBeyondTwiceTheRadiusPlusTheClippingRadius) {
    KTMESH mesh;
    KTHELPER helper;
    mesh.radius = helper.radius = 1.0f;
    KTELEMENT::clippingOn();
    for (KTNODE *node : {static_cast<KTNODE *>(&mesh), static_cast<KTNODE *>(&helper)}) {
        const struct {
            float distance;
            unsigned int kept;
        } cases[] = {{130.0f, 1}, {131.0f, 0}, {-130.0f, 1}, {-131.0f, 0}};
        for (const auto &[distance, kept] : cases) {
            newFrame();
            node->setPosition(0.0f, 0.0f, distance);
            EXPECT_TRUE(node->pass());
            EXPECT_EQ(passed(), kept) << node->getTypeName() << " at " << distance;
        }
    }
    KTELEMENT::setClippingRadius(8.0f);
    newFrame();
    mesh.setPosition(0.0f, 10.5f, 0.0f);
    mesh.pass();
    EXPECT_EQ(passed(), 0u);
    KTELEMENT::clippingOff();
    mesh.pass();
    EXPECT_EQ(passed(), 1u);
}

TEST_F(RenderListTest, CullsByTheDistanceFromTheEye) {
    KTMESH mesh;
    mesh.radius = 1.0f;
    KTELEMENT::clippingOn();
    KT_glTranslatef(0.0f, 0.0f, -1000.0f);
    mesh.setPosition(3.0f, 4.0f, 1000.0f);
    mesh.pass();
    EXPECT_EQ(passed(), 1u);
    mesh.setPosition(3.0f, 4.0f, 0.0f);
    mesh.pass();
    EXPECT_EQ(passed(), 1u);
}

TEST_F(RenderListTest, CullsMeshesTerrainsAndHelpersOnlyAndNeverTheirChildren) {
    KTMESH mesh;
    KTHELPER helper;
    KTLIGHT light;
    KTNODE terrain, custom;
    terrain.type = KT_TERRAIN;
    custom.type = KT_CUSTOM;
    KTNODE *row[] = {&mesh, &terrain, &helper, &custom, &light};
    for (int i = 1; i < 5; ++i) row[i]->link(row[i - 1]);
    mesh.setPosition(0.0f, 0.0f, -5000.0f);
    KTELEMENT::clippingOn();
    mesh.pass();
    EXPECT_THAT(drawn(), ElementsAre(&custom, &light));
    EXPECT_EQ(depth(), 0);
}

TEST_F(RenderListTest, CullingSurvivesPositionsThatAreNoNumbers) {
    KTMESH mesh;
    KTELEMENT::clippingOn();
    const float limits = std::numeric_limits<float>::max(), nan = std::numeric_limits<float>::quiet_NaN();
    mesh.setPosition(limits, limits, limits);
    mesh.pass();
    EXPECT_EQ(passed(), 0u);
    mesh.setPosition(nan, 0.0f, 0.0f);
    mesh.pass();
    EXPECT_EQ(passed(), 1u) << "no distance exceeds the limit";
}

TEST_F(RenderListTest, GivesSixteenSkinsASlotAndTheSeventeenthNone) {
    KTNODE root;
    std::vector<std::unique_ptr<SkinnedMesh>> meshes;
    for (int i = 0; i < 18; ++i) {
        meshes.push_back(std::make_unique<SkinnedMesh>(std::initializer_list<KTNODE *>{&root}));
        meshes[i]->link(&root);
    }
    root.pass();
    for (unsigned int i = 0; i < 16; ++i) {
        EXPECT_EQ(entry(i).getParam1(), i);
        EXPECT_EQ(KTMESH::slotMesh[i], meshes[i].get());
    }
    EXPECT_EQ(entry(16).getParam1(), 16u);
    EXPECT_EQ(entry(17).getParam1(), 16u);
    EXPECT_EQ(KTMESH::usedSlots, 16u);
    EXPECT_EQ(passed(), 18u);
    EXPECT_EQ(depth(), 0);

    newFrame();
    meshes[17]->pass();
    EXPECT_EQ(entry(0).getParam1(), 0u);
    EXPECT_EQ(KTMESH::slotMesh[0], meshes[17].get());
}

TEST_F(RenderListTest, BonesAreTakenRelativeToTheFrameOfTheMeshsParent) {
    KTNODE root, body, plain;
    KTMESH hip, hand, foreign;
    SkinnedMesh skin({&plain, &hand, &hip});
    root.setPosition(100.0f, 0.0f, 0.0f);
    body.setPosition(10.0f, 0.0f, 0.0f);
    body.setRotation(0.0f, 0.0f, 90.0f);
    hip.setPosition(1.0f, 0.0f, 0.0f);
    hand.setPosition(0.0f, 2.0f, 0.0f);
    body.link(&root);
    skin.link(&body);
    hip.link(&body);
    hand.link(&hip);
    plain.link(&body);
    foreign.link(&body);
    R3XMATRIX *slot = KTMESH::boneMatrices;
    slot[0] = slot[3] = translation(-1.0f, -1.0f, -1.0f);
    const Top untouched = elements(slot[3]);

    root.pass();
    const R3XMATRIX frame = rotation(90.0f, 0.0f, 0.0f, 1.0f) * translation(10.0f, 0.0f, 0.0f);
    const R3XMATRIX hipMatrix = translation(1.0f, 0.0f, 0.0f) * frame;
    EXPECT_EQ(elements(slot[2]), elements(hipMatrix));
    EXPECT_EQ(elements(slot[1]), elements(translation(0.0f, 2.0f, 0.0f) * hipMatrix));
    EXPECT_EQ(elements(slot[0]), elements(R3XMATRIX())) << "only meshes are bones; others rest";
    EXPECT_EQ(elements(slot[3]), untouched) << "the skin has three bones";
    EXPECT_EQ(entry(0).getNode(), &skin);
    EXPECT_EQ(elements(entry(0).matrix), elements(frame * translation(100.0f, 0.0f, 0.0f)));
    EXPECT_EQ(elements(entry(1).matrix), elements(hipMatrix * translation(100.0f, 0.0f, 0.0f)));
    EXPECT_EQ(depth(), 0);
}

TEST_F(RenderListTest, ASkinWithoutAParentTakesASlotAndNoBones) {
    KTMESH bone;
    SkinnedMesh skin({&bone});
    skin.setPosition(1.0f, 2.0f, 3.0f);
    skin.pass();
    EXPECT_EQ(KTMESH::usedSlots, 1u);
    EXPECT_EQ(entry(0).getParam1(), 0u);
    EXPECT_EQ(elements(entry(0).matrix), elements(translation(1.0f, 2.0f, 3.0f)));
}

TEST_F(RenderListTest, PassSkeletonRefusesANullBoneOnly) {
    KTMESH bone;
    SkinnedMesh skin({&bone});
    EXPECT_FALSE(KTELEMENT::passSkeleton(nullptr, &skin));
    EXPECT_TRUE(KTELEMENT::passSkeleton(&bone, &skin));
    EXPECT_TRUE(KTELEMENT::passSkeleton(&bone, nullptr));
    KTMESH::usedSlots = KTMESH::maxSkins;
    EXPECT_TRUE(KTELEMENT::passSkeleton(&bone, &skin));
    KTMESH::free();
    EXPECT_TRUE(KTELEMENT::passSkeleton(&bone, &skin));
    EXPECT_EQ(depth(), 0);
}

TEST_F(RenderListTest, ADestroyedChildIsPassedOver) {
    KTHELPER root, last;
    {
        KTHELPER child;
        child.link(&root);
        last.link(&root);
    }
    root.pass();
    EXPECT_EQ(root.getNumberOfChildren(), 2u);
    EXPECT_THAT(drawn(), ElementsAre(&root, &last));
}

TEST_F(RenderListTest, DeepTreesArePassedTo256LevelsOnASmallStack) {
    for (unsigned int length : {32u, 33u, 255u, 256u, 257u, 300u, 10000u}) {
        Chain chain(length);
        newFrame();
        ASSERT_TRUE(runOnSmallStack([&] { EXPECT_TRUE(KTELEMENT::pass(&chain.root())); }));
        EXPECT_EQ(passed(), std::min(length, kDeepest));
        EXPECT_EQ(depth(), 0) << length;
    }
}

TEST_F(RenderListTest, ADeepSkeletonIsWalkedOnASmallStack) {
    Chain chain(10000);
    SkinnedMesh skin({&chain.root()});
    skin.link(&chain.root());
    ASSERT_TRUE(runOnSmallStack([&] { EXPECT_TRUE(KTELEMENT::pass(&skin)); }));
    EXPECT_EQ(entry(0).getParam1(), 0u);
    EXPECT_EQ(depth(), 0);
}

TEST_F(RenderListTest, ACycleIsPassedOnce) {
    KTHELPER first, second, third;
    second.link(&first);
    third.link(&second);
    ASSERT_TRUE(first.link(&third));
    first.pass();
    EXPECT_THAT(drawn(), ElementsAre(&first, &second, &third));
    SkinnedMesh skin({&first});
    skin.link(&second);
    newFrame();
    second.pass();
    EXPECT_EQ(passed(), 4u);
    EXPECT_EQ(depth(), 0);
}

TEST_F(RenderListTest, ASkinIsPassedWhenNoMatrixLevelIsLeft) {
    KTNODE bone;
    SkinnedMesh skin({&bone});
    KT_glTranslatef(5.0f, 0.0f, 0.0f);
    int levels = 0;
    while (pushMatrix()) ++levels;
    EXPECT_TRUE(KTELEMENT::pass(&skin));
    float top[16];
    KT_glGetFloatv(0, top);
    EXPECT_EQ(top[12], 5.0f);
    for (; levels > 0; --levels) popMatrix();
    KT_glLoadIdentity();
}

TEST_F(RenderListTest, APassAtAFullMatrixStackLeavesItFull) {
    KTNODE root;
    KTHELPER child;
    SkinnedMesh skin({&root});
    child.link(&root);
    skin.link(&root);
    for (int i = 0; i < 32; ++i) KT_glPushMatrix();
    GlRecorder::clear();
    root.pass();
    EXPECT_EQ(passed(), 2u);
    EXPECT_EQ(GlRecorder::count("glPushMatrix"), 0);
    EXPECT_EQ(GlRecorder::count("glPopMatrix"), 0);
    EXPECT_EQ(depth(), 32);
}

}  // namespace
}  // namespace keltra::test
