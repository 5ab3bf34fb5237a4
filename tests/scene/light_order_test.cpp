// SPDX-License-Identifier: Zlib
#include "scene/light_order.h"

#include <keltra/element.h>

#include <cmath>
#include <limits>
#include <memory>
#include <random>
#include <vector>

#include "tests/scene/render_list.h"
#include "tests/support/allocations.h"

namespace keltra::test {
namespace {

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();

struct Lit {
    const KTELEMENT *light;
    float distance;
    bool operator==(const Lit &other) const {
        return light == other.light &&
               (distance == other.distance || (std::isnan(distance) && std::isnan(other.distance)));
    }
};

class LightOrderTest : public RenderListTest {
   protected:
    // Lights in a cube of that width around a centre, with a mesh behind them on the list.
    void pass(unsigned int count, float width, const R3XVECTOR3D &centre) {
        KTELEMENT::reset();
        lights.clear();
        for (unsigned int i = 0; i < count; ++i) {
            lights.push_back(std::make_unique<KTLIGHT>());
            lights.back()->setPosition(centre + somewhere(width));
            lights.back()->pass();
        }
        mesh.pass();
        KTELEMENT::sort3D();
    }

    R3XVECTOR3D somewhere(float width) {
        std::uniform_real_distribution<float> place(-width, width);
        const float x = place(generator), y = place(generator);
        return R3XVECTOR3D(x, y, place(generator));
    }

    static std::vector<Lit> firstOnes(unsigned int count) {
        std::vector<Lit> result;
        for (unsigned int i = 0; i < count && i < KTELEMENT::numberOfLights; ++i)
            result.push_back({KTELEMENT::elementPointer[i], KTELEMENT::elementPointer[i]->distance});
        return result;
    }

    static std::vector<Lit> allOnes() { return firstOnes(KTELEMENT::numberOfLights); }

    // Whether the four nearest of each position are those of the whole order, and the rest of the last.
    void expectOrdersOf(const std::vector<R3XVECTOR3D> &positions, const char *what) {
        std::vector<std::vector<Lit>> whole, nearest;
        for (const R3XVECTOR3D &position : positions) {
            KTELEMENT::sortLights(position);
            whole.push_back(allOnes());
        }
        KTELEMENT::sortLights(somewhere(1.0f));
        {
            LightOrder order;
            for (const R3XVECTOR3D &position : positions) {
                order.prepare(mesh);
                sortNearestLights(position);
                nearest.push_back(firstOnes(KTELEMENT::nearestLights));
            }
        }
        for (std::size_t i = 0; i < positions.size(); ++i) {
            whole[i].resize(i + 1 < positions.size() ? nearest[i].size() : whole[i].size());
            ASSERT_EQ(i + 1 < positions.size() ? nearest[i] : allOnes(), whole[i])
                << what << ", position " << i;
        }
    }

    void expectOrders(float width, const char *what) {
        std::vector<R3XVECTOR3D> positions;
        for (int i = 0; i < 40; ++i) positions.push_back(somewhere(width));
        for (const auto &light : lights) positions.push_back(light->getPosition());
        expectOrdersOf(positions, what);
    }

    std::mt19937 generator{4};
    std::vector<std::unique_ptr<KTLIGHT>> lights;
    KTMESH mesh;
};

TEST_F(LightOrderTest, TheNearestComeFirst) {
    for (unsigned int count : {1u, 4u, 5u, 9u, 20u, 64u, 65u, 200u}) {
        pass(count, 20.0f, R3XVECTOR3D());
        expectOrders(20.0f, "close by");
        expectOrders(70.0f, "from farther away");
        expectOrders(2000.0f, "from far away");
        expectOrders(0.01f, "from one place");
    }
}

TEST_F(LightOrderTest, TheScaleDoesNotMatter) {
    for (float scale = 1e-30f; scale < 1e20f; scale *= 100.0f) {
        pass(20, scale, R3XVECTOR3D());
        expectOrders(scale, "of that size");
        pass(20, scale, R3XVECTOR3D(1e3f * scale, -1e3f * scale, 10.0f * scale));
        expectOrders(1e3f * scale, "far from the origin");
    }
}

TEST_F(LightOrderTest, EqualDistancesKeepTheOrderOfTheList) {
    pass(20, 3.0f, R3XVECTOR3D());
    for (std::size_t i = 0; i < lights.size(); ++i)
        KTELEMENT::element[i].matrix.setTranslation(float(i / 3), float(i % 2), 0.0f);
    std::vector<R3XVECTOR3D> positions;
    for (int i = -2; i < 12; ++i) positions.push_back(R3XVECTOR3D(0.5f * float(i), 0.5f, 0.0f));
    expectOrdersOf(positions, "a row of pairs");
}

TEST_F(LightOrderTest, ExclusiveLightsComeFirst) {
    for (unsigned int exclusive : {1u, 3u, 4u, 7u, 20u}) {
        pass(20, 10.0f, R3XVECTOR3D());
        for (unsigned int i = 0; i < exclusive; ++i) lights[(i * 7 + 3) % 20]->setExclusive(true);
        expectOrders(10.0f, "some exclusive");
    }
}

TEST_F(LightOrderTest, WhatIsNoOrdinaryNumberIsOrdered) {
    const float infinity = std::numeric_limits<float>::infinity();
    for (float odd : {kNan, infinity, -infinity, 3e38f, 1e-40f, -0.0f}) {
        pass(20, 10.0f, R3XVECTOR3D());
        expectOrdersOf({R3XVECTOR3D(odd, 1.0f, 2.0f), R3XVECTOR3D(1.0f, 2.0f, odd), somewhere(1.0f)}, "odd");
        KTELEMENT::element[7].matrix.m[13] = odd;
        expectOrders(10.0f, "an odd light");
    }
}

TEST_F(LightOrderTest, LightsThatAreGoneAreOrdered) {
    pass(9, 10.0f, R3XVECTOR3D());
    lights[4].reset();
    lights.erase(lights.begin() + 4);
    expectOrders(10.0f, "without one");
}

// Sees all lights in order, in the middle of the drawing, and moves one.
class Watcher : public KTMESH {
   public:
    bool render(void *) override {
        std::vector<Lit> now;
        for (unsigned int i = 0; i < KTELEMENT::numberOfLights; ++i)
            now.push_back({KTELEMENT::elementPointer[i], KTELEMENT::elementPointer[i]->distance});
        KTELEMENT::sortLights(position);
        std::vector<Lit> sorted;
        for (unsigned int i = 0; i < KTELEMENT::numberOfLights; ++i)
            sorted.push_back({KTELEMENT::elementPointer[i], KTELEMENT::elementPointer[i]->distance});
        isInOrder = now == sorted;
        KTELEMENT::element[2].matrix.setTranslation(position.x, position.y, position.z);
        return true;
    }
    bool isInOrder = false;
};

TEST_F(LightOrderTest, ClassesOfApplicationsSeeAllInOrderAndMayMoveThem) {
    pass(20, 10.0f, R3XVECTOR3D());
    Watcher watcher;
    watcher.setPosition(1.0f, 2.0f, 3.0f);
    LightOrder order;
    order.prepare(mesh);
    sortNearestLights(watcher.getPosition());
    order.prepare(watcher);
    watcher.render(nullptr);
    EXPECT_TRUE(watcher.isInOrder);
    order.prepare(mesh);
    sortNearestLights(watcher.getPosition());
    EXPECT_EQ(KTELEMENT::elementPointer[0], &KTELEMENT::element[2]);
    EXPECT_EQ(KTELEMENT::elementPointer[0]->getDistance(), 0.0f);
}

// A light of an application's own class is drawn while the lights are chosen.
class OwnLight : public KTLIGHT {};

TEST_F(LightOrderTest, ALightOfAnotherClassLeavesNothingForLater) {
    pass(20, 10.0f, R3XVECTOR3D());
    OwnLight own;
    KTELEMENT::element[11].node = &own;
    const R3XVECTOR3D position(1.0f, 2.0f, 3.0f);
    LightOrder order;
    order.prepare(mesh);
    sortNearestLights(position);
    const std::vector<Lit> now = allOnes();
    KTELEMENT::sortLights(position);
    EXPECT_EQ(now, allOnes());
}

TEST_F(LightOrderTest, NothingIsAllocated) {
    pass(20, 10.0f, R3XVECTOR3D());
    Allocations::startCounting();
    {
        LightOrder order;
        order.prepare(mesh);
        sortNearestLights(R3XVECTOR3D(1.0f, 2.0f, 3.0f));
    }
    EXPECT_EQ(Allocations::stopCounting(), 0);
}

}  // namespace
}  // namespace keltra::test
