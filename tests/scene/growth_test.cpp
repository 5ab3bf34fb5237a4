// SPDX-License-Identifier: Zlib
// What one object costs does not grow with the number of objects: each of these takes far less than a second,
// and minutes where each object is searched for among all others.

#include <gtest/gtest.h>
#include <keltra/camera.h>
#include <keltra/foundation.h>
#include <keltra/material.h>
#include <keltra/mesh.h>
#include <keltra/node.h>
#include <keltra/shader.h>
#include <keltra/texture.h>

#include <algorithm>
#include <memory>
#include <random>
#include <vector>

#include "tests/support/cpu_time.h"
#include "tests/support/gl_recorder.h"

namespace keltra::test {
namespace {

constexpr unsigned int kMany = 60000;

class GrowthTest : public ::testing::Test {
   protected:
    void TearDown() override {
        KTNODE::cleanUp();
        KTMATERIAL::cleanUp();
        KTTEXTURE::cleanUp();
        KTSHADER::cleanUp();
    }
    template <class T>
    std::vector<T *> make(unsigned int count) {
        std::vector<T *> objects(count);
        for (T *&object : objects) object = new T;
        return objects;
    }
    template <class T>
    void destroyShuffled(std::vector<T *> &objects) {
        std::shuffle(objects.begin(), objects.end(), generator);
        const CpuTime time;
        for (T *object : objects) delete object;
        EXPECT_LT(time.seconds(), kLongestSeconds);
    }

    std::mt19937 generator{1907};
    GlRecorder::Stub stub;
};

TEST_F(GrowthTest, SixtyThousandSearches) {
    std::vector<KTNODE *> nodes = make<KTNODE>(kMany);
    std::shuffle(nodes.begin(), nodes.end(), generator);
    const CpuTime time;
    for (KTNODE *node : nodes) {
        ASSERT_EQ(KTNODE::findByName(node->getName()), node);
        ASSERT_EQ(KTNODE::findById(node->getId()), node);
    }
    EXPECT_LT(time.seconds(), kLongestSeconds);
    destroyShuffled(nodes);
}

TEST_F(GrowthTest, SearchesBetweenAllOtherChanges) {
    std::vector<KTNODE *> nodes = make<KTNODE>(kMany);
    const CpuTime time;
    for (unsigned int i = 0; i < kMany; ++i) {
        KTNODE *&node = nodes[generator() % kMany];
        delete node;
        node = new KTNODE;
        ASSERT_EQ(KTNODE::findByName(node->getName()), node);
        node->setName(("renamed " + std::to_string(i)).c_str());
        ASSERT_EQ(KTNODE::findByName(node->getName()), node);
    }
    EXPECT_LT(time.seconds(), kLongestSeconds);
}

struct LargeNode : KTNODE {
    explicit LargeNode(unsigned int number) : numbers{number, ~number} {
        if (number == ~0u) throw number;
    }
    unsigned int numbers[2], more[100] = {};
};

// Thousands have memory of their own kind, from which derived ones are destroyed, too.
TEST_F(GrowthTest, NodesOfAllSizesMadeAndDestroyedInRandomOrder) {
    std::vector<KTNODE *> nodes;
    for (unsigned int step = 0; step < kMany; ++step) {
        if (step % 1000 == 0) {
            EXPECT_THROW(new LargeNode(~0u), unsigned int);
        }
        if (nodes.empty() || generator() % 3 > 0) {
            const unsigned int kind = generator() % 8;
            nodes.push_back(kind == 0 ? new KTCAMERA : kind < 4 ? new LargeNode(step) : new KTNODE);
            nodes.back()->setAuxId(kind == 0 || kind >= 4 ? 0 : step + 1);
        } else {
            std::swap(nodes[generator() % nodes.size()], nodes.back());
            if (const unsigned int number = nodes.back()->getAuxId()) {
                const auto &large = static_cast<LargeNode &>(*nodes.back());
                ASSERT_EQ(large.numbers[0], number - 1);
                ASSERT_EQ(large.numbers[1], ~(number - 1));
            }
            delete nodes.back();
            nodes.pop_back();
        }
    }
    EXPECT_EQ(KTNODE::getNumberOfNodes(), nodes.size());
    KTNODE stays;
    EXPECT_TRUE(KTNODE::cleanUp()) << "which deletes those that were made with new";
    EXPECT_EQ(KTNODE::getNumberOfNodes(), 0u);
}

TEST_F(GrowthTest, SixtyThousandTextureFiles) {
    const std::vector<KTTEXTURE *> textures = make<KTTEXTURE>(kMany);
    const CpuTime time;
    for (KTTEXTURE *texture : textures) ASSERT_EQ(KTTEXTURE::findByFilename(texture->getFilename()), texture);
    EXPECT_LT(time.seconds(), kLongestSeconds);
}

TEST_F(GrowthTest, SixtyThousandTargets) {
    std::vector<KTNODE *> nodes = make<KTNODE>(kMany);
    for (unsigned int i = 1; i < kMany; ++i) nodes[i]->setTargetNode(nodes[i / 2]);
    destroyShuffled(nodes);
}

TEST_F(GrowthTest, NodesBesideManyCopiesOfOne) {
    std::vector<KTNODE *> nodes = make<KTNODE>(kMany / 2);
    const std::vector<KTNODE> copies(kMany / 2, *nodes[0]);
    destroyShuffled(nodes);
    EXPECT_EQ(copies[7].getNextNode(), nullptr);
}

TEST_F(GrowthTest, ResourcesBesideManyThatMayHoldThem) {
    std::vector<KTMATERIAL *> materials = make<KTMATERIAL>(20000);
    const std::vector<KTMESH *> meshes = make<KTMESH>(20000);
    std::vector<KTTEXTURE *> textures = make<KTTEXTURE>(10000);
    std::vector<KTSHADER *> shaders = make<KTSHADER>(10000);
    destroyShuffled(textures);
    destroyShuffled(shaders);
    destroyShuffled(materials);
}

// Wherever they lie, and in each of their slots.
TEST_F(GrowthTest, ATextureAndAShaderOfThousandsOfMaterials) {
    std::vector<KTMATERIAL> inARow(1000);
    std::vector<KTMATERIAL *> materials = make<KTMATERIAL>(4000);
    for (KTMATERIAL &material : inARow) materials.push_back(&material);
    auto *const texture = new KTTEXTURE, *const other = new KTTEXTURE;
    auto *const shader = new KTSHADER;
    for (KTMATERIAL *material : materials) {
        const unsigned int level = static_cast<unsigned int>(generator() % KTMATERIAL::levels);
        material->setTexture(level, texture);
        material->setTexture((level + 1) % KTMATERIAL::levels, other);
        material->setShader(shader);
    }
    delete texture;
    delete shader;
    for (const KTMATERIAL *material : materials) {
        ASSERT_EQ(std::count(material->texture, material->texture + KTMATERIAL::levels, nullptr), 15);
        ASSERT_EQ(std::count(material->texture, material->texture + KTMATERIAL::levels, other), 1);
        ASSERT_EQ(material->shader, nullptr);
    }
}

// The application may write to public fields, of which the engine learns when it draws.
TEST_F(GrowthTest, FieldsWrittenByTheApplicationAreClearedAmongManyOthers) {
    KTMATERIAL painted;
    KTMESH mesh;
    KTCAMERA camera;
    KTTEXTURE *texture = painted.texture[1] = new KTTEXTURE;
    KTSHADER *shader = painted.shader = new KTSHADER;
    KTMATERIAL *material = mesh.material = new KTMATERIAL;
    KTNODE *target = camera.targetNode = new KTNODE;
    make<KTMATERIAL>(200);
    make<KTMESH>(200);
    make<KTCAMERA>(200);

    texture->render(nullptr);
    painted.render(nullptr);
    material->render(nullptr);
    camera.render(nullptr);
    delete texture;
    delete shader;
    delete material;
    delete target;
    EXPECT_EQ(painted.texture[1], nullptr);
    EXPECT_EQ(painted.shader, nullptr);
    EXPECT_EQ(mesh.material, nullptr);
    EXPECT_EQ(camera.targetNode, nullptr);
}

TEST_F(GrowthTest, IdentifiersReleasedAndDrawnInPairs) {
    std::vector<unsigned int> ids(kMany);
    for (unsigned int &id : ids) id = vnfNewId();
    std::shuffle(ids.begin(), ids.end(), generator);
    const CpuTime time;
    for (int round = 0; round < 10; ++round) {
        for (unsigned int i = 1; i < kMany; i += 2) {
            ASSERT_TRUE(releaseId(ids[i - 1]) && releaseId(ids[i]));
            ASSERT_EQ(vnfNewId(), std::min(ids[i - 1], ids[i]));
            ASSERT_EQ(vnfNewId(), std::max(ids[i - 1], ids[i]));
        }
    }
    EXPECT_LT(time.seconds(), kLongestSeconds);
    for (unsigned int id : ids) releaseId(id);
}

TEST_F(GrowthTest, ChildrenUnlinkedInRandomOrder) {
    std::vector<KTNODE *> nodes = make<KTNODE>(kMany);
    KTNODE parent;
    const CpuTime time;
    for (KTNODE *node : nodes) ASSERT_TRUE(node->link(&parent));
    std::shuffle(nodes.begin(), nodes.end(), generator);
    for (KTNODE *node : nodes) ASSERT_TRUE(node->unlink());
    EXPECT_LT(time.seconds(), kLongestSeconds);
    EXPECT_EQ(parent.children, nullptr);
}

}  // namespace
}  // namespace keltra::test
