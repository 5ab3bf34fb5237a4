// SPDX-License-Identifier: Zlib
#include "formats/kerning.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>

namespace keltra::test {
namespace {

// Texts of keys, halves of keys and anything else, on lines of any length.
std::string randomText(std::mt19937 &random) {
    const char *const pieces[] = {"KELTRA_kerning_",
                                  "KELTRA_kern",
                                  "SPACE",
                                  "DIESIS",
                                  "EQUAL",
                                  "=",
                                  " = ",
                                  "-3",
                                  "12",
                                  "300",
                                  "S",
                                  "E",
                                  "\t",
                                  "\n",
                                  "\r\n",
                                  "~",
                                  "=",
                                  "\x7f",
                                  "\xe4",
                                  "A"};
    std::string text;
    for (unsigned int count = random() % 60 + 1; count; --count) {
        text += pieces[random() % std::size(pieces)];
        if (random() % 40 == 0) text += std::string(random() % 300, 'x');
    }
    return text;
}

TEST(KerningTest, EachKeyHasTheValueThatTheParserFinds) {
    std::mt19937 random(1);
    unsigned int found = 0;
    for (int round = 0; round < 3000; ++round) {
        std::string text = randomText(random);
        vnfParser parser = {};
        parser.buffer = text.data();
        parser.size = static_cast<std::int32_t>(text.size());
        KerningValues values;
        readKernings(parser, values);
        for (unsigned int key = 0; key < kKerningKeys; ++key) {
            char name[kKerningKeySize];
            int value = 0;
            const bool isThere = vnfParseInt(&parser, kerningKey(key, name), &value);
            ASSERT_EQ(values.isThere[key], isThere) << name << " in\n" << text;
            const int expected = isThere ? static_cast<signed char>(value) : 0;
            ASSERT_EQ(values.value[key], expected) << name << " in\n" << text;
            found += isThere;
        }
    }
    EXPECT_GT(found, 1000u);
}

}  // namespace
}  // namespace keltra::test
