// SPDX-License-Identifier: Zlib
#include "foundation/identifier.h"

#include <keltra/foundation.h>

#include "foundation/cold.h"
#include "foundation/fault.h"
#include "foundation/quiet.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace {

constexpr unsigned int kTableSize = 262144;
using keltra::kLargestId;

// Constant-initialised; one byte an identifier, 0 for free.
unsigned char *table = nullptr;

// Behind the bytes of the table, one bit for each free identifier, then one for each word of those with a bit
// set, and again: the lowest free identifier is found in the same time however many are taken.
constexpr unsigned int kLevels = 3;
constexpr unsigned int kFirstWord[kLevels + 1] = {0, 2048, 2048 + 64, 2048 + 64 + 2};
static_assert(kLargestId + 1 == 32 * 2048 && kLargestId + 1 + 4 * kFirstWord[kLevels] <= kTableSize,
              "it fits");

std::uint32_t *wordsOf(unsigned int level) {
    return reinterpret_cast<std::uint32_t *>(table + kLargestId + 1) + kFirstWord[level];
}

void setFree(unsigned int id) {
    for (unsigned int level = 0; level < kLevels; ++level, id /= 32) {
        std::uint32_t &word = wordsOf(level)[id / 32];
        const std::uint32_t former = word;
        word |= 1u << id % 32;
        if (former) return;
    }
}

void setTaken(unsigned int id) {
    for (unsigned int level = 0; level < kLevels; ++level, id /= 32)
        if (wordsOf(level)[id / 32] &= ~(1u << id % 32)) return;
}

// 0 when there is none.
unsigned int lowestFree() {
    unsigned int place = wordsOf(2)[0] ? 0 : 1;
    for (unsigned int level = kLevels; level-- > 0;) {
        const std::uint32_t word = wordsOf(level)[place];
        if (!word) return 0;
        place = 32 * place + static_cast<unsigned int>(__builtin_ctz(word));
    }
    return place;
}

}  // namespace

namespace keltra {

// Deliberate: a table that was never dropped is freed without being counted, so the log's counters show it as
// held; applications compare them between runs.
void takeIdentifierTable() {
    std::free(table);
    table = static_cast<unsigned char *>(allocate(kTableSize));
    if (!table) return;
    std::memset(table, 0, kTableSize);
    std::memset(wordsOf(0), 0xff, kFirstWord[kLevels] * sizeof(std::uint32_t));
    setTaken(0);  // never drawn
}

void dropIdentifierTable() {
    if (!table) return;
    vnfFree(table);
    table = nullptr;
}

}  // namespace keltra

unsigned int vnfNewId() {
    if (!table) {
        vnfLog("vnfNewId: ID table not initialized\n");
        return keltra::failState(KT_CALL("vnfNewId"), KT_TEXT("the foundation is not started")), 0;
    }
    const unsigned int id = lowestFree();
    if (!id) {
        vnfLog("vnfNewId: all ID are used\n");
        return keltra::failFull(KT_CALL("vnfNewId"), KT_TEXT("identifiers"), kLargestId), 0;
    }
    table[id] = 1;
    setTaken(id);
    return id;
}

bool keltra::returnId(unsigned int id) {
    if (id == 0 || id > kLargestId) {
        vnfLog("releaseId: invalid params (%d)\n", int(id));
        return false;
    }
    // Without a table every identifier is free: objects that outlive the foundation come here.
    if (!table || !table[id]) {
        vnfLog("releaseId: ID already released (%d)",
               int(id));  // no line feed: existing logs are matched against it
        return false;
    }
    table[id] = 0;
    setFree(id);
    return true;
}

KELTRA_COLD bool releaseId(unsigned int id) {
    if (keltra::returnId(id)) return true;
    if (id - 1 >= kLargestId)
        return keltra::failValue(KT_CALL("releaseId"), KT_TEXT("id"), long(id), KT_TEXT("1 to %ld"),
                                 kLargestId);
    return keltra::failState(KT_CALL("releaseId"), KT_TEXT("the identifier is free already"));
}
