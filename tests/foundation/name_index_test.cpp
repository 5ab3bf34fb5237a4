// SPDX-License-Identifier: Zlib
#include "foundation/name_index.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "tests/support/allocations.h"

namespace keltra::test {
namespace {

constexpr std::size_t kWithoutMemory = 16;  // names that a table has room for by itself

struct Named {
    explicit Named(const std::string &name) : name(name) {
        next = first;
        first = this;
    }
    ~Named() { first = next; }
    static Named *getFirst() { return first; }
    Named *getNext() const { return next; }
    static Named *search(const char *wanted) {
        ++searches;
        Named *one = first;
        while (one && one->name != wanted) one = one->next;
        return one;
    }
    std::string name;
    Named *next;
    static Named *first;
    static int searches;
};
Named *Named::first = nullptr;
int Named::searches = 0;

std::vector<std::string> someNames(std::size_t count) {
    std::vector<std::string> names;
    for (std::size_t i = 0; i < count; ++i) names.push_back("name " + std::to_string(i));
    return names;
}

TEST(NameTableTest, FindsEveryNameAmongMany) {
    std::vector<std::string> names = someNames(3000);
    NameTable table;
    for (std::string &name : names) ASSERT_TRUE(table.add(name.c_str(), &name));
    for (std::string &name : names) EXPECT_EQ(table.find(name.c_str()), &name);
    EXPECT_EQ(table.find("name"), nullptr);
}

/// From blocks as long as the names: a sanitizer sees what is read behind them.
TEST(HashNameTest, EveryCharacterAndTheLengthCount) {
    for (std::size_t length = 0; length < 70; ++length) {
        std::vector<char> name(length + 1, 'a');
        name[length] = '\0';
        const std::uint32_t hash = hashName(name.data(), 1);
        EXPECT_EQ(hashName(name.data(), 1), hash);
        EXPECT_NE(hashName(name.data(), 2), hash);
        EXPECT_NE(hashName(std::string(length + 1, 'a').c_str(), 1), hash);
        for (std::size_t i = 0; i < length; ++i) {
            name[i] = 'b';
            EXPECT_NE(hashName(name.data(), 1), hash) << i << " of " << length;
            name[i] = 'a';
        }
    }
}

TEST(HashNameTest, SpreadsNumberedNames) {
    std::vector<int> homes(1024);
    for (const std::string &name : someNames(1024)) ++homes[hashName(name.c_str(), 1) * 0x9E3779B1u >> 22];
    EXPECT_GT(std::count(homes.begin(), homes.end(), 0), 250);  // 377 by chance
    EXPECT_LT(std::count(homes.begin(), homes.end(), 0), 500);
    EXPECT_LT(*std::max_element(homes.begin(), homes.end()), 12);
}

TEST(NameTableTest, KeepsTheFirstObjectOfAName) {
    int first = 0, second = 0;
    NameTable table;
    EXPECT_TRUE(table.add("stone", &first));
    EXPECT_TRUE(table.add("stone", &second));
    EXPECT_EQ(table.find("stone"), &first);
}

TEST(NameTableTest, FewNamesTakeNoMemory) {
    std::vector<std::string> names = someNames(kWithoutMemory);
    Allocations::startCounting();
    NameTable table;
    for (std::string &name : names) table.add(name.c_str(), &name);
    EXPECT_EQ(Allocations::stopCounting(), 0);
}

TEST(NameTableTest, SaysThatItIsOutOfMemoryAndKeepsWhatItHas) {
    if (!Allocations::canFail()) GTEST_SKIP() << "a sanitizer owns malloc";
    std::vector<std::string> names = someNames(kWithoutMemory + 1);
    NameTable table;
    for (std::size_t i = 0; i < kWithoutMemory; ++i) ASSERT_TRUE(table.add(names[i].c_str(), &names[i]));
    Allocations::failNth(1);
    EXPECT_FALSE(table.add(names.back().c_str(), &names.back()));
    EXPECT_TRUE(Allocations::hasFailed());
    EXPECT_EQ(table.find(names.back().c_str()), nullptr);
    for (std::size_t i = 0; i < kWithoutMemory; ++i) EXPECT_EQ(table.find(names[i].c_str()), &names[i]);
    EXPECT_TRUE(table.add(names.back().c_str(), &names.back()));
    EXPECT_EQ(table.find(names.back().c_str()), &names.back());
}

TEST(NameIndexTest, SearchesTheListWhenMemoryIsOut) {
    if (!Allocations::canFail()) GTEST_SKIP() << "a sanitizer owns malloc";
    std::vector<std::unique_ptr<Named>> all;
    for (const std::string &name : someNames(40)) all.push_back(std::make_unique<Named>(name));
    NameIndex<Named> index([](const Named &one) { return one.name.c_str(); }, Named::search);
    Named::searches = 0;
    Allocations::failNth(1);
    EXPECT_EQ(index.find("name 0"), all[0].get());
    EXPECT_EQ(index.find("name 39"), all[39].get());
    EXPECT_EQ(Named::searches, 2);
    NameIndex<Named> another([](const Named &one) { return one.name.c_str(); }, Named::search);
    EXPECT_EQ(another.find("name 0"), all[0].get());
    EXPECT_EQ(Named::searches, 2);
    while (!all.empty()) all.pop_back();
}

}  // namespace
}  // namespace keltra::test
