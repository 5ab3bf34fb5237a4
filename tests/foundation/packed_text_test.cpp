// SPDX-License-Identifier: Zlib
#include "foundation/packed_text.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdio>
#include <string>
#include <vector>

#include "foundation/fault.h"

namespace {

constexpr std::size_t kSize = 512;

// Packs, unpacks, and returns the packed size.
std::size_t expectReturn(const std::string &text) {
    std::vector<unsigned char> packed(2 * kSize);
    keltra::PackedText<kSize> given, read;
    keltra::PackedWriter writer(packed.data());
    for (std::size_t i = 0; i < text.size(); ++i) given.take(i, writer, text[i]);
    const std::size_t size = writer.finish();
    EXPECT_GT(size, 0u);
    keltra::PackedReader reader(packed.data());
    for (std::size_t i = 0; i < text.size(); ++i) read.take(i, reader);
    EXPECT_EQ(std::string(read.begin(), text.size()), text);
    return size;
}

TEST(PackedTextTest, ReturnsWhatWasPacked) {
    expectReturn("the file does not exist");
    expectReturn(std::string("a\0\0a\0b\0ab", 9));
    expectReturn(std::string(kSize, '~'));
}

TEST(PackedTextTest, RefusesTooMuchOfTheSame) {
    static keltra::PackedText<2000> text;
    unsigned char packed[100];
    keltra::PackedWriter writer(packed);
    for (std::size_t i = 0; i < 2000; ++i) text.take(i, writer, '~');
    EXPECT_EQ(writer.finish(), 0u);
}

TEST(PackedTextTest, TakesAnyCharacterInAnyOrder) {
    for (unsigned int seed = 1; seed < 50; ++seed) {
        std::string text;
        unsigned int random = seed;
        while (text.size() < kSize) {
            random = random * 1664525 + 1013904223;
            text += static_cast<char>(random >> 24 & (seed % 2 ? 127 : 3));
        }
        expectReturn(text);
    }
}

TEST(PackedTextTest, WhatOccursAgainTakesLittle) {
    std::string text;
    while (text.size() < 480) text += "cannot be loaded: ";
    EXPECT_LT(expectReturn(text), expectReturn(text.substr(0, 36)) + 16);
}

TEST(PackedTextTest, EveryNameAndTextOfTheFaultsIsUnpackedAsItIsListed) {
    for (std::size_t i = 0; i < keltra::countOf(keltra::kFaultCalls); ++i)
        EXPECT_STREQ(keltra::faultCallName(static_cast<keltra::FaultCall>(i)), keltra::kFaultCalls[i]);
    for (std::size_t i = 0; keltra::kFaultTexts && i < keltra::countOf(keltra::kFaultTextList); ++i) {
        const std::string format = keltra::kFaultTextList[i];
        if (format.find("%s") != std::string::npos) continue;
        char expected[96];
        const char *const text =
            keltra::newFault(KT_FAULT_DATA, {}, static_cast<keltra::FaultText>(i), {}, 1L, 2L, 3L).found;
        std::snprintf(expected, sizeof expected, format.c_str(), 1L, 2L, 3L);
        EXPECT_STREQ(text, expected);
    }
}

}  // namespace
