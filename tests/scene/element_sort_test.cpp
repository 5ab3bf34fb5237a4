// SPDX-License-Identifier: Zlib
#include <keltra/element.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <random>

#include "tests/scene/render_list.h"
#include "tests/support/allocations.h"

namespace keltra::test {
namespace {

using ::testing::ElementsAre;

const R3XVECTOR3D kEye(0.0f, 0.0f, 0.0f);
constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

void place(KTNODE &node, float z) { node.setPosition(0.0f, 0.0f, z); }

/// Passes nodes into a fresh list, in this order.
void pass(std::initializer_list<KTNODE *> nodes) {
    KTELEMENT::reset();
    for (KTNODE *node : nodes) node->pass();
}

class SortTest : public RenderListTest {
   protected:
    SortTest() {
        glass.setTransparency(0.5f);
        for (KTMESH *mesh : {&far, &middle, &near}) {
            mesh->setMaterial(&glass);
            mesh->radius = 1.0f;
        }
        place(far, -30.0f);
        place(middle, -20.0f);
        place(near, -10.0f);
        solid.setMaterial(&stone);
    }

    KTMATERIAL glass, stone;
    KTMESH far, middle, near, solid, bare;
    KTLIGHT light, secondLight;
};

TEST_F(SortTest, AnEmptyListIsNotSorted) {
    EXPECT_FALSE(KTELEMENT::sort2D());
    EXPECT_FALSE(KTELEMENT::sort3D());
    EXPECT_FALSE(KTELEMENT::sortLights(kEye));
}

TEST_F(SortTest, OpaqueNodesAloneKeepTheirOrder) {
    place(solid, -1.0f);
    place(bare, -100.0f);
    pass({&solid, &bare});
    EXPECT_TRUE(KTELEMENT::sort3D());
    EXPECT_THAT(drawn(), ElementsAre(&solid, &bare));
}

TEST_F(SortTest, LightsPassedAfterMeshesAreDrawnFirst) {
    pass({&solid, &light, &bare, &secondLight});
    EXPECT_EQ(KTELEMENT::getLight(0)->getNode(), &solid) << "not sorted yet";
    EXPECT_TRUE(KTELEMENT::sort3D());
    EXPECT_THAT(drawn(), ElementsAre(&light, &secondLight, &solid, &bare));
    EXPECT_EQ(KTELEMENT::getLight(0)->getNode(), &light);
    EXPECT_EQ(KTELEMENT::getLight(1)->getNode(), &secondLight);
    EXPECT_EQ(KTELEMENT::getLight(2), nullptr);
}

TEST_F(SortTest, LightsThenOpaqueThenTransparentFromBackToFront) {
    KTHELPER helper;
    KTNODE emitter, custom;
    emitter.type = KT_EMITTER;
    custom.type = KT_CUSTOM;
    place(helper, -25.0f);
    place(emitter, -15.0f);
    pass({&near, &custom, &helper, &far, &light, &emitter, &solid, &middle, &bare});
    EXPECT_TRUE(KTELEMENT::sort3D());
    EXPECT_THAT(drawn(),
                ElementsAre(&light, &custom, &solid, &bare, &far, &helper, &middle, &emitter, &near));
}

// The key is the far side of the bounding sphere.
TEST_F(SortTest, TheBoundingRadiusMovesANodeBack) {
    middle.radius = 12.0f;
    pass({&near, &far, &middle});
    EXPECT_TRUE(KTELEMENT::sort3D());
    EXPECT_THAT(drawn(), ElementsAre(&middle, &far, &near));
}

TEST_F(SortTest, TransparentNodesAreSortedInEyeSpace) {
    KT_glRotatef(180.0f, 0.0f, 1.0f, 0.0f);
    pass({&near, &far, &middle});
    EXPECT_TRUE(KTELEMENT::sort3D());
    EXPECT_THAT(drawn(), ElementsAre(&near, &middle, &far));
}

TEST_F(SortTest, OneTransparentNodeIsDrawnLast) {
    pass({&near, &solid});
    EXPECT_TRUE(KTELEMENT::sort3D());
    EXPECT_THAT(drawn(), ElementsAre(&solid, &near));
}

TEST_F(SortTest, ATransparencyAboveOneIsTransparentToo) {
    glass.setTransparency(1.5f);
    pass({&near, &solid, &far});
    EXPECT_TRUE(KTELEMENT::sort3D());
    EXPECT_THAT(drawn(), ElementsAre(&solid, &far, &near));
}

// The count is taken at the pass, the kind when sorting. Deliberate: the sort from back to front covers the
// count; applications rely on the order.
TEST_F(SortTest, TheTailCoversTheCountWhenItIsGreaterThanTheKind) {
    place(solid, -50.0f);
    pass({&middle, &solid, &near});
    middle.setMaterial(&stone);
    EXPECT_TRUE(KTELEMENT::sort3D());
    EXPECT_THAT(drawn(), ElementsAre(&middle, &solid, &near))
        << "opaque ones first, then the last two by depth";
    place(near, -60.0f);
    middle.setMaterial(&glass);
    pass({&middle, &solid, &near});
    middle.setMaterial(&stone);
    EXPECT_TRUE(KTELEMENT::sort3D());
    EXPECT_THAT(drawn(), ElementsAre(&middle, &near, &solid));
}

TEST_F(SortTest, TheTailCoversTheCountWhenItIsLessThanTheKind) {
    solid.setMaterial(&stone);
    place(solid, -5.0f);
    pass({&near, &solid, &far});
    solid.setMaterial(&glass);
    EXPECT_TRUE(KTELEMENT::sort3D());
    EXPECT_THAT(drawn(), ElementsAre(&near, &far, &solid)) << "only the last two are sorted by depth";
}

TEST_F(SortTest, ANodeThatTurnsTransparentAfterThePassIsNotSortedForItself) {
    pass({&solid, &bare});
    solid.setMaterial(&glass);
    EXPECT_TRUE(KTELEMENT::sort3D());
    EXPECT_THAT(drawn(), ElementsAre(&solid, &bare));
}

TEST_F(SortTest, DepthsThatAreNoNumbersStillGiveOneOrder) {
    KTMESH negativeNan, minusInfinite, infinite;
    for (KTMESH *mesh : {&negativeNan, &minusInfinite, &infinite}) mesh->setMaterial(&glass);
    place(negativeNan, std::copysign(kNan, -1.0f));
    place(minusInfinite, -kInfinity);
    place(infinite, kInfinity);
    place(middle, kNan);
    std::vector<KTMESH *> meshes = {&near, &middle, &far, &negativeNan, &minusInfinite, &infinite};
    std::sort(meshes.begin(), meshes.end());
    do {
        KTELEMENT::reset();
        for (KTMESH *mesh : meshes) mesh->pass();
        for (unsigned int i = 0; i < meshes.size(); ++i)
            KTELEMENT::element[i].matrix.m[14] = meshes[i]->position.z;
        ASSERT_TRUE(KTELEMENT::sort3D());
        const bool negativeFirst = std::find(meshes.begin(), meshes.end(), &negativeNan) <
                                   std::find(meshes.begin(), meshes.end(), &middle);
        const KTNODE *one = negativeFirst ? &negativeNan : &middle,
                     *other = negativeFirst ? &middle : &negativeNan;
        ASSERT_THAT(drawn(), ElementsAre(&minusInfinite, &far, &near, &infinite, one, other))
            << "the sign of what is no number does not count";
    } while (std::next_permutation(meshes.begin(), meshes.end()));
}

TEST_F(SortTest, EqualDepthsKeepTheOrderOfThePass) {
    KTMESH meshes[40];
    KTELEMENT::reset();
    for (KTMESH &mesh : meshes) {
        mesh.setMaterial(&glass);
        place(mesh, -7.0f);
        mesh.pass();
    }
    EXPECT_TRUE(KTELEMENT::sort3D());
    for (unsigned int i = 0; i < 40; ++i) EXPECT_EQ(drawn()[i], &meshes[i]);
}

TEST_F(SortTest, SortingAgainChangesNothing) {
    std::mt19937 generator(7);
    std::vector<std::unique_ptr<KTMESH>> meshes;
    std::vector<std::unique_ptr<KTLIGHT>> lights;
    KTELEMENT::reset();
    for (int i = 0; i < 300; ++i) {
        meshes.push_back(std::make_unique<KTMESH>());
        meshes.back()->setMaterial(generator() % 2 ? &glass : &stone);
        place(*meshes.back(), -static_cast<float>(generator() % 50));
        meshes.back()->pass();
        if (i % 10) continue;
        lights.push_back(std::make_unique<KTLIGHT>());
        lights.back()->pass();
    }
    ASSERT_TRUE(KTELEMENT::sort3D());
    const std::vector<const KTNODE *> once = drawn();
    ASSERT_TRUE(KTELEMENT::sort3D());
    EXPECT_EQ(drawn(), once);
    std::vector<const KTNODE *> unique = once;
    std::sort(unique.begin(), unique.end());
    EXPECT_EQ(std::unique(unique.begin(), unique.end()), unique.end())
        << "every node stands in the list once";
    EXPECT_EQ(unique.size(), meshes.size() + lights.size());
}

TEST_F(SortTest, SortingPermutesThePointersOnly) {
    pass({&near, &far, &light});
    EXPECT_TRUE(KTELEMENT::sort3D());
    EXPECT_EQ(KTELEMENT::element[0].getNode(), &near);
    EXPECT_EQ(KTELEMENT::element[1].getNode(), &far);
    EXPECT_EQ(KTELEMENT::element[2].getNode(), &light);
    EXPECT_EQ(KTELEMENT::elementPointer[0], &KTELEMENT::element[2]);
}

TEST_F(SortTest, LightsAreSortedByTheirDistanceToAPoint) {
    KTLIGHT third;
    light.setPosition(0.0f, 0.0f, -9.0f);
    secondLight.setPosition(3.0f, 4.0f, 0.0f);
    third.setPosition(0.0f, 7.0f, 0.0f);
    pass({&solid, &light, &secondLight, &third});
    KTELEMENT::sort3D();
    EXPECT_TRUE(KTELEMENT::sortLights(kEye));
    EXPECT_THAT(drawn(), ElementsAre(&secondLight, &third, &light, &solid));
    EXPECT_EQ(KTELEMENT::getLight(0)->getDistance(), 5.0f);
    EXPECT_EQ(KTELEMENT::getLight(2)->getDistance(), 9.0f);
    EXPECT_TRUE(KTELEMENT::sortLights(R3XVECTOR3D(0.0f, 0.0f, -8.0f)));
    EXPECT_THAT(drawn(), ElementsAre(&light, &secondLight, &third, &solid));
}

TEST_F(SortTest, ExclusiveLightsComeFirstHoweverFar) {
    KTLIGHT third, fourth;
    light.setPosition(1.0f, 0.0f, 0.0f);
    secondLight.setPosition(400.0f, 0.0f, 0.0f);
    third.setPosition(2.0f, 0.0f, 0.0f);
    fourth.setPosition(300.0f, 0.0f, 0.0f);
    secondLight.setExclusive(true);
    fourth.setExclusive(true);
    pass({&light, &secondLight, &third, &fourth});
    EXPECT_TRUE(KTELEMENT::sortLights(kEye));
    EXPECT_THAT(drawn(), ElementsAre(&fourth, &secondLight, &light, &third));
}

TEST_F(SortTest, LightsAtNoDistanceComeLast) {
    for (float sign : {1.0f, -1.0f}) {
        light.setPosition(kNan, 0.0f, 0.0f);
        secondLight.setPosition(9.0f, 0.0f, 0.0f);
        KTLIGHT third;
        pass({&light, &secondLight, &third});
        KTELEMENT::element[0].matrix.setTranslation(std::copysign(kNan, sign), 0.0f, 0.0f);
        EXPECT_TRUE(KTELEMENT::sortLights(kEye));
        EXPECT_THAT(drawn(), ElementsAre(&third, &secondLight, &light)) << sign;
    }
}

// In any order before, with equal distances and exclusive ones among them.
TEST_F(SortTest, ManyLightsAreSortedFromAnyOrder) {
    std::vector<KTLIGHT> lights(150);
    unsigned random = 1;
    for (KTLIGHT &each : lights) {
        random = random * 1664525 + 1013904223;
        each.setPosition(static_cast<float>(random >> 26), 0.0f, 0.0f);
        each.setExclusive(random >> 16 & 1);
    }
    KTELEMENT::reset();
    for (KTLIGHT &each : lights) each.pass();
    const auto comesBefore = [](const KTELEMENT *a, const KTELEMENT *b) {
        const bool first = static_cast<const KTLIGHT *>(a->getNode())->isExclusive();
        const bool second = static_cast<const KTLIGHT *>(b->getNode())->isExclusive();
        if (first != second) return first;
        return a->getDistance() != b->getDistance() ? a->getDistance() < b->getDistance() : a < b;
    };
    for (float x : {0.0f, 64.0f, 64.5f, 30.0f, -5.0f}) {
        EXPECT_TRUE(KTELEMENT::sortLights(R3XVECTOR3D(x, 0.0f, 0.0f)));
        EXPECT_TRUE(
            std::is_sorted(KTELEMENT::elementPointer, KTELEMENT::elementPointer + lights.size(), comesBefore))
            << x;
        std::vector<KTELEMENT *> entries(KTELEMENT::elementPointer,
                                         KTELEMENT::elementPointer + lights.size());
        std::sort(entries.begin(), entries.end());
        for (std::size_t i = 0; i < lights.size(); ++i) ASSERT_EQ(entries[i], KTELEMENT::element + i);
    }
}

TEST_F(SortTest, WithoutLightsThereIsNothingToSort) {
    pass({&solid, &near});
    EXPECT_FALSE(KTELEMENT::sortLights(kEye));
}

TEST_F(SortTest, NodesThatAreNoBoxesKeepTheirOrderIn2D) {
    pass({&near, &light, &solid, &far});
    EXPECT_TRUE(KTELEMENT::sort2D());
    EXPECT_THAT(drawn(), ElementsAre(&near, &light, &solid, &far));
}

TEST_F(SortTest, CountsLightsAndTransparencies) {
    KTMATERIAL opaque, glass;
    opaque.setTransparency(1.0f);
    glass.setTransparency(0.5f);
    KTMESH bare, solid, window;
    solid.setMaterial(&opaque);
    window.setMaterial(&glass);
    KTLIGHT light;
    KTHELPER helper;
    KTNODE emitter;
    emitter.type = KT_EMITTER;
    const struct {
        KTNODE *node;
        unsigned int lights, transparencies;
    } cases[] = {{&bare, 0, 0},  {&solid, 0, 0},  {&window, 0, 1},
                 {&light, 1, 0}, {&helper, 0, 1}, {&emitter, 0, 1}};
    for (const auto &[node, lights, transparencies] : cases) {
        newFrame();
        node->pass();
        EXPECT_EQ(KTELEMENT::getNumberOfPassedElements(), 1u) << node->getTypeName();
        EXPECT_EQ(KTELEMENT::getNumberOfLights(), lights) << node->getTypeName();
        EXPECT_EQ(KTELEMENT::numberOfTransparencies, transparencies) << node->getTypeName();
    }
    KTELEMENT::reset();
    EXPECT_EQ(KTELEMENT::getNumberOfPassedElements() + KTELEMENT::getNumberOfLights() +
                  KTELEMENT::numberOfTransparencies,
              0u);
}

TEST_F(SortTest, ANodeDestroyedAfterItsPassLeavesAnEmptyEntry) {
    KTHELPER stays;
    {
        KTLIGHT light;
        KTMESH mesh;
        light.pass();
        mesh.pass();
        stays.pass();
    }
    EXPECT_EQ(KTELEMENT::getNumberOfPassedElements(), 3u);
    EXPECT_TRUE(KTELEMENT::sort3D());
    EXPECT_TRUE(KTELEMENT::sortLights(R3XVECTOR3D(0.0f, 0.0f, 0.0f)));
    EXPECT_THAT(drawn(), ElementsAre(nullptr, nullptr, &stays));
}

TEST_F(SortTest, PassesAllocateNothing) {
    KTNODE root;
    KTMATERIAL glass;
    glass.setTransparency(0.5f);
    std::vector<std::unique_ptr<KTNODE>> nodes;
    for (int i = 0; i < 900; ++i) {
        if (i % 9 == 0) {
            auto mesh = std::make_unique<KTMESH>();
            mesh->setMaterial(&glass);
            nodes.push_back(std::move(mesh));
        } else if (i % 100 == 1) {
            nodes.push_back(std::make_unique<KTLIGHT>());
        } else {
            nodes.push_back(std::make_unique<KTHELPER>());
        }
        nodes.back()->link(i % 3 ? nodes[i / 3].get() : &root);
    }
    SkinnedMesh skin({&root});
    skin.link(&root);
    const GlRecorder::Pause pause;
    Allocations::startCounting();
    root.pass();
    KTELEMENT::sort3D();
    KTELEMENT::sortLights(R3XVECTOR3D(1.0f, 2.0f, 3.0f));
    KTELEMENT::sort2D();
    const long allocations = Allocations::stopCounting();
    EXPECT_EQ(allocations, 0);
    EXPECT_EQ(KTELEMENT::getNumberOfPassedElements(), 901u);
}

}  // namespace
}  // namespace keltra::test
