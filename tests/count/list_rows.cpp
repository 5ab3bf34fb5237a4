// SPDX-License-Identifier: Zlib
#include <keltra/keltra.h>

#include <cstdio>
#include <memory>
#include <vector>

#include "tests/count/region.h"

namespace {

constexpr unsigned int kFew = 40, kMany = 1000;

std::vector<std::unique_ptr<KTNODE>> makeNodes(unsigned int count) {
    std::vector<std::unique_ptr<KTNODE>> nodes(count);
    for (auto &node : nodes) node = std::make_unique<KTNODE>();
    return nodes;
}

void countLife() {
    std::vector<std::unique_ptr<KTNODE>> nodes(kFew);
    {
        const count::Region region("node made", kFew, count::Kind::kLoad);
        for (auto &node : nodes) node = std::make_unique<KTNODE>();
    }
    const count::Region region("node destroyed", kFew, count::Kind::kLoad);
    for (auto &node : nodes) node.reset();
}

void countWindows() {
    const count::Region region("window made and destroyed", kFew, count::Kind::kLoad);
    for (unsigned int i = 0; i < kFew; ++i) KTWINDOW();
}

void countLinks() {
    const auto nodes = makeNodes(kFew);
    KTNODE parent;
    {
        const count::Region region("child linked", kFew, count::Kind::kLoad);
        for (auto &node : nodes) node->link(&parent);
    }
    const count::Region region("child unlinked", kFew, count::Kind::kLoad);
    for (unsigned int i = 0; i < kFew; ++i) nodes[i * 7 % kFew]->unlink();
}

void countSearches(const char *row, unsigned int count) {
    const auto nodes = makeNodes(count);
    for (unsigned int i = 0; i < count; ++i) {
        char name[16];
        std::snprintf(name, sizeof name, "node %u", i);
        nodes[i]->setName(name);
    }
    count::require(KTNODE::findByName("node 1") == nodes[1].get(), "node that is found");
    const count::Region region(row, count);
    for (auto &node : nodes)
        count::require(KTNODE::findByName(node->name) == node.get(), "node that is found");
}

void countTextures() {
    std::vector<std::unique_ptr<KTMATERIAL>> materials(kFew);
    for (auto &material : materials) material = std::make_unique<KTMATERIAL>();
    std::vector<std::unique_ptr<KTTEXTURE>> textures(kFew);
    for (auto &texture : textures) texture = std::make_unique<KTTEXTURE>();
    const count::Region region("texture destroyed beside 40 materials", kFew, count::Kind::kLoad);
    for (auto &texture : textures) texture.reset();
}

}  // namespace

void count::countLists() {
    countLife();
    countWindows();
    countLinks();
    countSearches("node found by name among 40", kFew);
    countSearches("node found by name among 1,000", kMany);
    countTextures();
}
