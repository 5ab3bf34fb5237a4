// SPDX-License-Identifier: Zlib
// Searches among many objects: what is found does not depend on the tables behind them, whatever was renamed,
// assigned or destroyed meanwhile.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <keltra/foundation.h>
#include <keltra/material.h>
#include <keltra/node.h>
#include <keltra/texture.h>

#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "tests/support/allocations.h"

namespace keltra::test {
namespace {

class FindTest : public ::testing::Test {
   protected:
    FindTest() { make(200); }
    void TearDown() override {
        nodes.clear();
        EXPECT_FALSE(KTNODE::cleanUp());
    }
    void make(unsigned int count) {
        while (nodes.size() < count) {
            nodes.push_back(std::make_unique<KTNODE>());
            nodes.back()->setName(("node " + std::to_string(nodes.size() - 1)).c_str());
        }
    }
    KTNODE *node(unsigned int index) { return nodes[index].get(); }

    std::vector<std::unique_ptr<KTNODE>> nodes;
};

TEST_F(FindTest, EveryNodeIsFoundByNameAndIdentifier) {
    for (unsigned int i = 0; i < 200; ++i) {
        EXPECT_EQ(KTNODE::findByName(node(i)->getName()), node(i));
        EXPECT_EQ(KTNODE::findById(node(i)->getId()), node(i));
    }
    EXPECT_EQ(KTNODE::findByName("node 200"), nullptr);
    EXPECT_EQ(KTNODE::findByName(""), nullptr);
    EXPECT_EQ(KTNODE::findByName(nullptr), nullptr);
    for (unsigned int id : {0u, node(199)->getId() + 1, 65535u, 65536u, 0xffffffffu})
        EXPECT_EQ(KTNODE::findById(id), nullptr) << id;
}

TEST_F(FindTest, NodesMadeAfterASearchAreFoundToo) {
    EXPECT_EQ(KTNODE::findByName("node 700"), nullptr);
    make(1000);
    EXPECT_EQ(KTNODE::findByName("node 700"), node(700));
    EXPECT_EQ(KTNODE::findById(node(999)->getId()), node(999));
}

TEST_F(FindTest, TheFirstOfANameIsFoundWhicheverTookItLast) {
    EXPECT_EQ(KTNODE::findByName("node 150"), node(150));
    node(180)->setName("node 150");
    EXPECT_EQ(KTNODE::findByName("node 150"), node(150));
    node(20)->setName("node 150");
    EXPECT_EQ(KTNODE::findByName("node 150"), node(20));
    EXPECT_EQ(KTNODE::findByName("node 20"), nullptr);
    node(20)->setName("elsewhere");
    EXPECT_EQ(KTNODE::findByName("node 150"), node(150));
    nodes.erase(nodes.begin() + 150);
    EXPECT_STREQ(node(179)->getName(), "node 150");
    EXPECT_EQ(KTNODE::findByName("node 150"), node(179));
}

// Where a name's entry lies differs in each round; in some, searches go past the table's end to its
// beginning.
TEST_F(FindTest, TheFirstOfANameIsFoundWhereverItsEntryLies) {
    for (int round = 0; round < 50; ++round) {
        for (unsigned int i = 0; i < 200; ++i)
            node(i)->setName((std::to_string(round) + " " + std::to_string(i)).c_str());
        for (unsigned int i = 0; i < 199; ++i) {
            node(199)->setName(node(i)->getName());
            ASSERT_EQ(KTNODE::findByName(node(i)->getName()), node(i)) << "in round " << round;
        }
    }
}

TEST_F(FindTest, ANameWrittenToTheFieldIsFoundAndTheFormerOneIsNot) {
    EXPECT_EQ(KTNODE::findByName("node 30"), node(30));
    std::strcpy(node(30)->name, "hidden");
    EXPECT_EQ(KTNODE::findByName("node 30"), nullptr);
    EXPECT_EQ(KTNODE::findByName("hidden"), node(30));
    std::strcpy(node(30)->name, "again");
    EXPECT_EQ(KTNODE::findByName("hidden"), nullptr);
    std::strcpy(node(40)->name, "hidden");
    EXPECT_EQ(KTNODE::findByName("hidden"), node(40));
    EXPECT_EQ(KTNODE::findByName("again"), node(30));
    nodes.erase(nodes.begin() + 30);
    EXPECT_EQ(KTNODE::findByName("again"), nullptr);
}

// Names of all lengths that differ in one place, and one that the application made longer or shorter: its
// entry stays in the table.
TEST_F(FindTest, EveryCharacterOfANameCounts) {
    for (std::size_t length = 1; length <= 40; ++length) {
        const std::string plain(length, 'k');
        for (unsigned int i = 0; i < 200; ++i) {
            std::string name = plain;
            if (i <= length) name[i % length] = i < length ? 'm' : 'k';
            node(i)->setName(i <= length ? name.c_str() : std::to_string(i).c_str());
        }
        node(static_cast<unsigned int>(length))->setName(plain.c_str());
        for (unsigned int i = 0; i <= length; ++i)
            ASSERT_EQ(KTNODE::findByName(node(i)->getName()), node(i)) << length << ", " << i;
        for (unsigned int i = 0; i <= length; ++i) {
            const std::string former = node(i)->name;
            std::strcat(node(i)->name, "m");
            ASSERT_EQ(KTNODE::findByName(former.c_str()), nullptr) << length << ", " << i;
            ASSERT_EQ(KTNODE::findByName(node(i)->name), node(i));
            node(i)->name[length - 1] = '\0';
            ASSERT_EQ(KTNODE::findByName(former.c_str()), nullptr) << length << ", " << i;
            node(i)->setName(std::to_string(i).c_str());
        }
    }
}

TEST_F(FindTest, AnIdentifierWrittenToTheFieldIsFound) {
    const unsigned int former = node(50)->getId();
    EXPECT_EQ(KTNODE::findById(former), node(50));
    node(50)->id = 70000;
    EXPECT_EQ(KTNODE::findById(former), nullptr);
    EXPECT_EQ(KTNODE::findById(70000), node(50));
    node(50)->id = former;
    EXPECT_EQ(KTNODE::findById(former), node(50));
}

TEST_F(FindTest, AnAssignedNodeIsFoundByWhatItShows) {
    EXPECT_EQ(KTNODE::findById(node(90)->getId()), node(90));
    EXPECT_EQ(KTNODE::findByName("node 90"), node(90));
    *node(60) = *node(90);
    EXPECT_EQ(KTNODE::findById(node(90)->getId()), node(60)) << "the first of them";
    EXPECT_EQ(KTNODE::findByName("node 90"), node(60));
    EXPECT_EQ(KTNODE::findByName("node 60"), nullptr);
    nodes.erase(nodes.begin() + 60);
    EXPECT_STREQ(node(89)->getName(), "node 90");
    EXPECT_EQ(KTNODE::findById(node(89)->getId()), node(89));
    EXPECT_EQ(KTNODE::findByName("node 90"), node(89));
}

TEST_F(FindTest, IdentifiersThatAreDrawnAgainAreFoundAtTheirFirstNode) {
    const unsigned int id = node(10)->getId();
    EXPECT_EQ(KTNODE::findById(id), node(10));
    vnfOpenLog(nullptr);
    make(300);
    KTNODE *again = nullptr;
    for (unsigned int i = 200; i < 300; ++i)
        if (node(i)->getId() == id) again = node(i);
    ASSERT_NE(again, nullptr);
    EXPECT_EQ(KTNODE::findById(id), node(10));
    EXPECT_EQ(KTNODE::findByName(again->getName()), again);
    nodes.erase(nodes.begin() + 10);
    EXPECT_EQ(KTNODE::findById(id), again);
    nodes.clear();
    vnfOpenLog(nullptr);
}

TEST_F(FindTest, WithoutIdentifiersEveryNodeIsFoundByName) {
    nodes.clear();
    vnfCloseLog();
    make(100);
    EXPECT_EQ(node(0)->getId(), 0u);
    EXPECT_EQ(KTNODE::findByName("node 99"), node(99));
    EXPECT_EQ(KTNODE::findById(0), node(0));
    nodes.clear();
    ASSERT_TRUE(vnfOpenLog(nullptr));
}

TEST_F(FindTest, ManyNodesOfOneNameAreFoundAndDestroyedInOrder) {
    make(3000);
    for (auto &each : nodes) each->setName("bullet");
    for (unsigned int i = 0; i < 3000; ++i) {
        ASSERT_EQ(KTNODE::findByName("bullet"), node(i));
        nodes[i].reset();
    }
    EXPECT_EQ(KTNODE::findByName("bullet"), nullptr);
}

TEST_F(FindTest, AFewNodesTakeNoMemory) {
    nodes.resize(63);
    Allocations::startCounting();
    EXPECT_EQ(KTNODE::findByName("node 62"), node(62));
    EXPECT_EQ(KTNODE::findById(node(30)->getId()), node(30));
    EXPECT_EQ(Allocations::stopCounting(), 0);
}

TEST_F(FindTest, SearchesGoOnWithoutMemory) {
    if (!Allocations::canFail()) GTEST_SKIP() << "a sanitizer owns malloc";
    for (int nth : {1, 2}) {
        Allocations::failNth(nth);
        EXPECT_EQ(KTNODE::findByName("node 199"), node(199));
        EXPECT_TRUE(Allocations::hasFailed());
        Allocations::clear();
        EXPECT_EQ(Allocations::live(), 0);
        EXPECT_EQ(KTNODE::findById(node(150)->getId()), node(150));
        nodes.resize(10);
        make(200);
    }
}

/// Every operation that changes what a search finds, in random order, against a search through the list.
TEST_F(FindTest, IsWhatASearchThroughTheListFinds) {
    std::mt19937 generator(1907);
    const auto name = [&generator] { return "n" + std::to_string(generator() % 150); };
    const auto first = [](const auto &matches) {
        KTNODE *each = KTNODE::getFirstNode();
        while (each && !matches(*each)) each = each->getNextNode();
        return each;
    };
    for (int step = 0; step < 20000; ++step) {
        const unsigned int index = generator() % static_cast<unsigned int>(nodes.size());
        switch (generator() % 12) {
            case 0:
                if (nodes.size() < 900) make(static_cast<unsigned int>(nodes.size()) + 1 + generator() % 20);
                break;
            case 1:
                for (unsigned int i = generator() % 20; i > 0 && nodes.size() > 30; --i)
                    nodes.erase(nodes.begin() + generator() % static_cast<unsigned int>(nodes.size()));
                break;
            case 2:
            case 3:
                node(index)->setName(name().c_str());
                break;
            case 4:
                if (step % 50 == 0)
                    *node(index) = *node(generator() % static_cast<unsigned int>(nodes.size()));
                break;
            case 5: {
                const unsigned int id = node(index)->getId() + generator() % 3;
                ASSERT_EQ(KTNODE::findById(id), first([id](const KTNODE &each) { return each.id == id; }));
                break;
            }
            default: {
                const std::string wanted = name();
                ASSERT_EQ(KTNODE::findByName(wanted.c_str()),
                          first([&wanted](const KTNODE &each) { return each.name == wanted; }))
                    << wanted << " in step " << step;
            }
        }
    }
}

TEST_F(FindTest, MaterialsAndTexturesAreFoundByTheNamesThatTheyAreGiven) {
    std::vector<std::unique_ptr<KTMATERIAL>> materials(100);
    for (auto &material : materials) material = std::make_unique<KTMATERIAL>();
    EXPECT_EQ(KTMATERIAL::findByName(materials[70]->getName()), materials[70].get());
    materials[20]->setName("wood");
    EXPECT_EQ(KTMATERIAL::findByName("wood"), materials[20].get());
    materials[80]->clone(materials[20].get());
    EXPECT_EQ(KTMATERIAL::findByName(("wood" + std::to_string(materials[80]->getId())).c_str()),
              materials[80].get());
    EXPECT_EQ(KTMATERIAL::findById(materials[99]->getId()), materials[99].get());

    std::vector<std::unique_ptr<KTTEXTURE>> textures(100);
    for (auto &texture : textures) texture = std::make_unique<KTTEXTURE>();
    EXPECT_EQ(KTTEXTURE::findByFilename(textures[99]->getFilename()), textures[99].get());
    EXPECT_TRUE(textures[40]->create(2, 2, 5));
    EXPECT_EQ(KTTEXTURE::findByFilename("[dynamic]"), textures[40].get());
    EXPECT_TRUE(textures[10]->create(2, 2, 5));
    EXPECT_EQ(KTTEXTURE::findByFilename("[dynamic]"), textures[10].get());
}

}  // namespace
}  // namespace keltra::test
