// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TESTS_SAME_VERDICT_H
#define KELTRA_TESTS_SAME_VERDICT_H

// keltra-info and the engine must accept the same bytes. The inspection is a library of its own, with its own
// copy of the engine's parsers, so that it does not change the program under test.

#include <gtest/gtest.h>

#include <cstddef>
#include <string_view>
#include <thread>
#include <vector>

#ifdef KELTRA_TEST_INSPECTION
#include "tests/tools/info/probe.h"
#endif

namespace keltra::test {

#ifdef KELTRA_TEST_INSPECTION
/// `kind` is one of the words of `keltra-info --as`; `accepted` is what the engine made of the bytes.
inline void expectSameVerdict(const char *kind, const void *bytes, std::size_t size, bool accepted) {
    ProbedVerdict verdict = {};
    // In a thread of its own: the caller's stack may be as small as the device's.
    std::thread([&] { keltra_probe(kind, bytes, size, true, &verdict); }).join();
    EXPECT_EQ(verdict.isGood, accepted) << kind << ": " << verdict.field << ": " << verdict.reason;
    EXPECT_TRUE(verdict.isPrintable) << "neither the table nor the JSON may hold what is no text";
    if (verdict.isGood) return;
    EXPECT_LE(verdict.offset, size) << verdict.field;
    EXPECT_STRNE(verdict.field, "");
    EXPECT_STRNE(verdict.reason, "");
}
#else
inline void expectSameVerdict(const char *, const void *, std::size_t, bool) {}
#endif

template <class Byte>
void expectSameVerdict(const char *kind, const std::vector<Byte> &bytes, bool accepted) {
    expectSameVerdict(kind, bytes.data(), bytes.size(), accepted);
}
inline void expectSameVerdict(const char *kind, std::string_view text, bool accepted) {
    expectSameVerdict(kind, text.data(), text.size(), accepted);
}

}  // namespace keltra::test

#endif
