// SPDX-License-Identifier: Zlib
#include "formats/kerning.h"

#include <gtest/gtest.h>
#include <keltra/fault.h>

#include <cstring>
#include <random>
#include <string>

#include "formats/key_check.h"

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

// What tools write, with now and then a line that they do not.
std::string nearlyPlainText(std::mt19937 &random) {
    const char *const names[] = {"S", "D", "E", "A", "=", "\"", "~", "-", "SPACE", "DIESIS", "EQUAL"};
    const char *const odd[] = {"KELTRA_kerning_  = 4\n",
                               "KELTRA_kerning_Q = 4px\n",
                               "KELTRA_kerning_Q = 1 2\n",
                               "KELTRA_kerning_Q = 4\r",
                               "KELTRA_kerning_Q = \n",
                               "KELTRA_kerning_Q = -\n",
                               "KELTRA_kerning_Q : 4\n",
                               "KELTRA_kerning_Q = 128\n",
                               "KELTRA_kerning_Q = -129\n",
                               "KELTRA_kerning_SPACES = 4\n",
                               "KELTRA_kern\n",
                               " KELTRA_kerning_Q = 4\n",
                               "KELTRA_kerning_Q\n",
                               "KELTRA_kerning_Q = 0004\n",
                               "KELTRA_kerning_Q = 4"};
    std::string text;
    for (const char *name : names) {
        if (random() % 8 == 0) name = names[random() % std::size(names)];
        if (random() % 8 == 0) continue;
        if (random() % 8 == 0) text += std::string(random() % 300, ' ') + "\n";
        text += std::string("KELTRA_kerning_") + name + (random() % 4 ? " =\t" : "=");
        if (random() % 99 == 0) text += std::string(random() % 300, ' ');
        text += std::to_string(static_cast<int>(random() % 256) - 128) + (random() % 3 ? "\n" : " \r\n");
        if (random() % 40 == 0) text += odd[random() % std::size(odd)];
    }
    return text;
}

vnfParser parserOf(std::string &text) {
    vnfParser parser = {};
    parser.buffer = text.data();
    parser.size = static_cast<std::int32_t>(text.size());
    return parser;
}

// Returns how many keys are there.
unsigned int expectValuesOfParser(std::string &text) {
    vnfParser parser = parserOf(text);
    KerningValues values;
    readKernings(parser, values);
    unsigned int found = 0;
    for (unsigned int key = 0; key < kKerningKeys; ++key) {
        char name[kKerningKeySize];
        int value = 0;
        const bool isThere = vnfParseInt(&parser, kerningKey(key, name), &value);
        EXPECT_EQ(values.isThere[key], isThere) << name << " in\n" << text;
        const int expected = isThere ? static_cast<signed char>(value) : 0;
        EXPECT_EQ(values.value[key], expected) << name << " in\n" << text;
        found += isThere;
    }
    return found;
}

TEST(KerningTest, EachKeyHasTheValueThatTheParserFinds) {
    std::mt19937 random(1);
    unsigned int found = 0;
    for (int round = 0; round < 3000 && !HasFailure(); ++round) {
        std::string text = round % 2 ? randomText(random) : nearlyPlainText(random);
        if (!text.empty()) found += expectValuesOfParser(text);
    }
    EXPECT_GT(found, 10000u);
}

TEST(KerningTest, NothingIsWrongWithATextThatIsNotChecked) {
    std::mt19937 random(2);
    unsigned int plain = 0, warned = 0;
    for (int round = 0; round < 4000; ++round) {
        std::string text = round % 8 ? nearlyPlainText(random) : randomText(random);
        if (text.empty()) continue;
        KerningValues values;
        const bool isPlain = readKernings(parserOf(text), values);
        KTFAULTS::clear();
        checkKerning(parserOf(text));
        ASSERT_FALSE(isPlain && KTFAULTS::getNumberOfFaults() > 0) << text;
        plain += isPlain;
        warned += KTFAULTS::getNumberOfFaults() > 0;
    }
    EXPECT_GT(plain, 300u);
    EXPECT_GT(warned, 1000u);
}

TEST(KerningTest, FilesOfTheFontToolAreNotChecked) {
    std::string text = std::string(42, ' ') + "\n";
    for (unsigned int key = 0; key < kKerningKeys; ++key) {
        if (std::strchr(" #=", kerningCharacter(key)) && key < kKerningCharacters) continue;
        char name[kKerningKeySize];
        text += std::string(kerningKey(key, name)) + " = -7\n";
    }
    KerningValues values;
    EXPECT_TRUE(readKernings(parserOf(text), values));
    EXPECT_EQ(expectValuesOfParser(text), kKerningKeys - 3);
}

}  // namespace
}  // namespace keltra::test
