#include "foundation/identifier.h"

#include <keltra/foundation.h>

#include "foundation/fault.h"
#include "foundation/quiet.h"

#include <cstdlib>
#include <cstring>

namespace {

constexpr unsigned int kTableSize = 262144;
using keltra::kLargestId;

// Constant-initialised; one byte an identifier, 0 for free. No identifier below `lowestFree` is free.
unsigned char *table = nullptr;
unsigned int lowestFree = 1;

}  // namespace

namespace keltra {

// Deliberate: a table that was never dropped is freed without being counted, so the log's counters show it as
// held; applications compare them between runs.
void takeIdentifierTable() {
    std::free(table);
    table = static_cast<unsigned char *>(allocate(kTableSize));
    if (table) std::memset(table, 0, kTableSize);
    lowestFree = 1;
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
        return keltra::failState("vnfNewId", "the foundation is not started"), 0;
    }
    void *entry = std::memchr(table + lowestFree, 0, kLargestId + 1 - lowestFree);
    if (!entry) {
        lowestFree = kLargestId + 1;
        vnfLog("vnfNewId: all ID are used\n");
        return keltra::failFull("vnfNewId", "identifiers", kLargestId), 0;
    }
    unsigned int id = static_cast<unsigned int>(static_cast<unsigned char *>(entry) - table);
    table[id] = 1;
    lowestFree = id + 1;
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
    if (id < lowestFree) lowestFree = id;
    return true;
}

bool releaseId(unsigned int id) {
    if (keltra::returnId(id)) return true;
    if (id - 1 >= kLargestId) return keltra::failValue("releaseId", "id", long(id), "1 to %ld", kLargestId);
    return keltra::failState("releaseId", "the identifier is free already");
}
