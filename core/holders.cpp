// SPDX-License-Identifier: Zlib
#include "core/holders.h"

#include <cstdint>
#include <cstdlib>
#include <new>

// One object needs no table.
keltra::AddressTable::AddressTable(unsigned int most)
    : addresses(most > 1 ? new (std::nothrow) const void *[most] : nullptr) {}

keltra::AddressTable::~AddressTable() { delete[] addresses; }

void keltra::AddressTable::sort() {
    std::qsort(addresses, count, sizeof *addresses, [](const void *a, const void *b) {
        const auto left = *static_cast<const std::uintptr_t *>(a),
                   right = *static_cast<const std::uintptr_t *>(b);
        return left < right ? -1 : left > right ? 1 : 0;
    });
}

bool keltra::AddressTable::has(const void *address) const {
    const auto wanted = reinterpret_cast<std::uintptr_t>(address);
    unsigned int from = 0, to = count;
    while (from < to) {
        const unsigned int middle = from + (to - from) / 2;
        const auto found = reinterpret_cast<std::uintptr_t>(addresses[middle]);
        if (found == wanted) return true;
        if (found < wanted)
            from = middle + 1;
        else
            to = middle;
    }
    return false;
}
