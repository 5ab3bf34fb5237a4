// SPDX-License-Identifier: Zlib
#include "formats/fault.h"

#include <gtest/gtest.h>

#include <cstring>
#include <initializer_list>
#include <string>

#include "formats/gui.h"

namespace keltra {
namespace {

std::string nearest(const std::string &wanted, std::initializer_list<std::string> known) {
    NearestName name(wanted.c_str());
    for (const std::string &one : known) name.offer(one.c_str());
    return name.name();
}

TEST(NearestName, DiffersInAThirdOfTheLettersAtMost) {
    EXPECT_EQ(nearest("ab", {"ac", "a", "abc", "ba"}), "");
    EXPECT_EQ(nearest("ab", {"ab"}), "ab");
    EXPECT_EQ(nearest("abc", {"xbc"}), "xbc");
    EXPECT_EQ(nearest("abc", {"xyc"}), "");
    EXPECT_EQ(nearest("abcdef", {"xycdef"}), "xycdef");
    EXPECT_EQ(nearest("abcdef", {"xyzdef"}), "");
    EXPECT_EQ(nearest("", {"a", ""}), "");
}

TEST(NearestName, CountsLettersChangedAddedLeftOutAndSwapped) {
    for (const char *wanted : {"bitton", "buttton", "buton", "utton", "xbutton"})
        EXPECT_EQ(nearest(wanted, {"button"}), "button") << wanted;
    for (const char *wanted : {"bac", "acb", "xabc"}) EXPECT_EQ(nearest(wanted, {"abc"}), "abc") << wanted;
    EXPECT_EQ(nearest("abcdef", {"badcef"}), "badcef") << "two swaps are two steps";
    EXPECT_EQ(nearest("abcdef", {"badcfe"}), "") << "three are three";
}

TEST(NearestName, IsTheFirstOfTheNearest) {
    EXPECT_EQ(nearest("botton", {"xytton", "bottom", "button", "bottun"}), "bottom");
    EXPECT_EQ(nearest("botton", {"bottom", "botton"}), "botton");
}

TEST(NearestName, HasFewerThanSixtyFourLetters) {
    const std::string longest(63, 'a'), other = std::string(62, 'a') + "b", longer(64, 'a');
    EXPECT_EQ(nearest(longest, {other}), other);
    EXPECT_EQ(nearest(longest, {longer}), "");
    EXPECT_EQ(nearest(longer, {longest, longer}), "");
}

TEST(GuiRootMissing, LiesAtTheBeginning) { EXPECT_EQ(guiRootMissing().offset, 0u); }

TEST(LineAt, CountsEveryKindOfLineEndOnce) {
    const std::string text = "a\rb\r\nc\nd";
    const unsigned int lines[] = {1, 1, 2, 2, 2, 3, 3, 4};
    for (std::size_t offset = 0; offset < text.size(); ++offset)
        EXPECT_EQ(lineAt(text.data(), text.size(), offset), lines[offset]) << offset;
    EXPECT_EQ(lineAt(text.data(), text.size(), 1000), 4u);
    EXPECT_EQ(lineAt(text.data(), 4, 4), 3u) << "a carriage return at the end";
    EXPECT_EQ(lineAt("", 0, 1), 1u);
    EXPECT_EQ(lineAt("\na", 2, 1), 2u);
    EXPECT_EQ(lineAt("a\n", 1, 2), 1u) << "behind the end";
}

TEST(IntegerFlaw, IsThatOfAWholeNumberWithinTheLimits) {
    for (const char *text : {"-5", "0", "7", " 7", "+7", "0000000000007"})
        EXPECT_TRUE(integerFlaw(text, -5, 7) == FaultText()) << text;
    EXPECT_TRUE(integerFlaw(" -5", -5, 7) == FaultText());
    EXPECT_TRUE(integerFlaw(" 10", 10, 10) == FaultText());
    for (const char *text : {"-6", "8", "99999999999999999999", "-99999999999999999999"})
        EXPECT_TRUE(integerFlaw(text, -5, 7) == KT_TEXT("%ld to %ld")) << text;
    for (const char *text : {"", " ", "x", "7x", "7 ", "0x7", "-"})
        EXPECT_TRUE(integerFlaw(text, -5, 7) == KT_TEXT("a whole number")) << text;
}

}  // namespace
}  // namespace keltra
