// SPDX-License-Identifier: Zlib
// Failures of the calls that read one record of a scene file from a buffer of the application's.

#include "formats/limits.h"
#include "tests/engine/fault_table.h"

namespace keltra::test {
namespace {

// A record type without a body, and a name that does not end.
constexpr char kBadType[] = {0, 0, 9};
const std::vector<char> &endlessName() {
    static const std::vector<char> bytes(1024, 'a');
    return bytes;
}

// Plain nodes, each the only child of the one before it.
std::vector<char> chain(unsigned int nodes) {
    std::vector<char> bytes;
    for (unsigned int i = 0; i < nodes; ++i) {
        bytes.push_back(0);                      // type
        bytes.insert(bytes.end(), 4, 0);         // auxId
        bytes.push_back(0);                      // name
        bytes.insert(bytes.end(), 24, 0);        // position, origin
        bytes.push_back(i + 1 < nodes ? 1 : 0);  // children
        bytes.push_back(0);
    }
    return bytes;
}

TEST_F(FaultTableTest, Records) {
    static long cursor;
    const auto reset = [](long at) {
        cursor = at;
        return &cursor;
    };
    const char *name = endlessName().data();
    check({
        {"KTNODE::load", [=](Folder) { EXPECT_FALSE(KTNODE::load(nullptr, reset(0))); }, kError,
         KT_FAULT_NULL, "KTNODE::load: `buffer` is null"},
        {"KTNODE::load", [=](Folder) { EXPECT_FALSE(KTNODE::load(name, nullptr)); }, kError, KT_FAULT_NULL,
         "KTNODE::load: `cursor` is null"},
        {"KTNODE::load", [=](Folder) { EXPECT_FALSE(KTNODE::load(name, reset(-1))); }, kError,
         KT_FAULT_ARGUMENT, "KTNODE::load: `cursor` is -1, expected 0 or more"},
        {"KTNODE::load", [=](Folder) { EXPECT_FALSE(KTNODE::load(name, reset(2))); }, kError, KT_FAULT_DATA,
         nullptr, 6},
        {"KTLIGHT::load", [=](Folder) { EXPECT_FALSE(KTLIGHT::load(nullptr, reset(0))); }, kError,
         KT_FAULT_NULL, "KTLIGHT::load: `buffer` is null"},
        {"KTLIGHT::load", [=](Folder) { EXPECT_FALSE(KTLIGHT::load(name, reset(0))); }, kError, KT_FAULT_DATA,
         nullptr, 5},
        {"KTMESH::load", [=](Folder) { EXPECT_FALSE(KTMESH::load(nullptr, reset(0), false)); }, kError,
         KT_FAULT_NULL, "KTMESH::load: `buffer` is null"},
        {"KTMESH::load", [=](Folder) { EXPECT_FALSE(KTMESH::load(name, reset(0), true)); }, kError,
         KT_FAULT_DATA, nullptr, 4},
        {"KELTRA::recursiveLoad",
         [=](Folder) { EXPECT_FALSE(KELTRA::recursiveLoad(nullptr, reset(0), nullptr)); }, kError,
         KT_FAULT_NULL, "KELTRA::recursiveLoad: `buffer` is null"},
        {"KELTRA::recursiveLoad",
         [=](Folder) { EXPECT_FALSE(KELTRA::recursiveLoad(kBadType, reset(2), nullptr)); }, kError,
         KT_FAULT_DATA, "KELTRA::recursiveLoad: byte 2: type: unknown node type (found 9)", 2},
        {"KELTRA::recursiveLoad",
         [=](Folder) {
             const std::vector<char> bytes = chain(kMaxTreeDepth + 1);
             EXPECT_FALSE(KELTRA::recursiveLoad(bytes.data(), reset(0), nullptr));
         },
         kError, KT_FAULT_LIMIT, "KELTRA::recursiveLoad: tree: more than 256 levels"},
    });
}

TEST_F(FaultTableTest, ATreeAsDeepAsTreesMayBeIsNoFault) {
    const std::vector<char> bytes = chain(kMaxTreeDepth);
    long cursor = 0;
    KTFAULTS::clear();
    EXPECT_TRUE(KELTRA::recursiveLoad(bytes.data(), &cursor, nullptr));
    EXPECT_EQ(KTFAULTS::getNumberOfFaults(), 0u);
}

}  // namespace
}  // namespace keltra::test
