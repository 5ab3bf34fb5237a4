// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TESTS_TOOLS_INFO_PROBE_H
#define KELTRA_TESTS_TOOLS_INFO_PROBE_H

#include <cstddef>

// What keltra-info says of some bytes.
struct ProbedVerdict {
    bool isGood;
    bool isPrintable;  // the JSON parses, and no output holds a control character but line feeds
    std::size_t offset;
    char field[64], reason[160];
};

// Without `prints`, which takes most of the time, nothing is printed, and `isPrintable` is true.
extern "C" void keltra_probe(const char *kind, const void *bytes, std::size_t size, bool prints,
                             ProbedVerdict *verdict);

#endif
