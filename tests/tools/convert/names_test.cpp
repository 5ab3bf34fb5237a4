// SPDX-License-Identifier: Zlib
#include "tools/convert/names.h"

#include <gtest/gtest.h>

#include <set>

namespace keltra::convert {
namespace {

TEST(CleanText, KeepsValidCharactersOfEveryLength) {
    const std::string text =
        "plain \"quoted\" \xC3\xA9 \xE2\x82\xAC \xF0\x9F\x98\x80 \xF4\x8F\xBF\xBF \xED\x9F\xBF";
    EXPECT_EQ(cleanText(text), text);
    EXPECT_EQ(cleanText(""), "");
}

TEST(CleanText, ReplacesControlCharacters) {
    EXPECT_EQ(cleanText("a\nb\tc\x1B[0m\x7F"), "a_b_c_[0m_");
    EXPECT_EQ(cleanText(std::string("a\0b", 3)), "a_b");
    EXPECT_EQ(cleanText("\xC2\x85\xC2\xA0"),
              "_\xC2\xA0");  // one of the second set; a blank that does not break
}

TEST(CleanText, ReplacesBytesThatAreNoUtf8) {
    EXPECT_EQ(cleanText("\x80z"), "_z");                        // a continuation without a beginning
    EXPECT_EQ(cleanText("\xC0\x80"), "__");                     // longer than it has to be
    EXPECT_EQ(cleanText("\xC1\xBF"), "__");                     //
    EXPECT_EQ(cleanText("\xE0\x9F\xBF"), "___");                //
    EXPECT_EQ(cleanText("\xF0\x8F\xBF\xBF"), "____");           //
    EXPECT_EQ(cleanText("\xED\xA0\x80"), "___");                // half of a surrogate pair
    EXPECT_EQ(cleanText("\xF4\x90\x80\x80"), "____");           // beyond the last code point
    EXPECT_EQ(cleanText("\xF5\x80\x80\x80"), "____");           //
    EXPECT_EQ(cleanText("\xFF\xFE"), "__");                     //
    EXPECT_EQ(cleanText("\xE2\x82"), "__");                     // cut short
    EXPECT_EQ(cleanText("\xE2\x82x"), "__x");                   //
    EXPECT_EQ(cleanText("caf\xE9 \xC3\xA9"), "caf_ \xC3\xA9");  // Latin-1 beside UTF-8
}

TEST(FileName, KeepsWhatAnySystemTakes) {
    EXPECT_EQ(fileName("Hero-2_b.c"), "Hero-2_b.c");
    EXPECT_EQ(fileName("a b/c\\d:e*f?\"<>|"), "a_b_c_d_e_f_____");
    EXPECT_EQ(fileName("caf\xC3\xA9\xF0\x9F\x98\x80!"), "caf___");
}

TEST(FileName, IsNeverEmptyHiddenOrEndsInADot) {
    EXPECT_EQ(fileName(""), "_");
    EXPECT_EQ(fileName("."), "_");
    EXPECT_EQ(fileName(".."), "__");
    EXPECT_EQ(fileName(".hidden"), "_hidden");
    EXPECT_EQ(fileName("end."), "end_");
}

TEST(FileName, HasAtMostSixtyFourCharacters) {
    EXPECT_EQ(fileName(std::string(65, 'x')), std::string(64, 'x'));
    EXPECT_EQ(fileName(std::string(63, 'x') + ".tga"), std::string(63, 'x') + "_");
}

TEST(FileName, IsNoDeviceOfWindows) {
    for (const char *device : {"con", "PRN", "Aux", "nul", "com1", "COM9", "lpt0", "con.tga", "nul.a.b"})
        EXPECT_EQ(fileName(device), std::string("_") + device);
    for (const char *harmless : {"cone", "com", "com10", "comx", "icon", "lpt"})
        EXPECT_EQ(fileName(harmless), harmless);
}

TEST(FileStem, IsTheFileWithoutFolderAndExtension) {
    const char *const cases[][2] = {
        {"models/hero.fbx", "hero"},
        {"C:\\models\\big hero.tar.obj", "big_hero.tar"},
        {"hero", "hero"},
        {"a.b/hero", "hero"},
        {".obj", "_obj"},
        {"folder/", "_"},
        {"", "_"},
        {"con.obj", "_con"},
    };
    for (const auto &[path, stem] : cases) EXPECT_EQ(fileStem(path), stem) << path;
}

// What names are given for the wanted ones, with "bone" in the place of empty ones.
std::vector<std::string> given(Names &names, const std::vector<std::string> &wanted) {
    std::vector<std::string> result;
    for (const std::string &name : wanted) result.push_back(names.take(name, "bone"));
    return result;
}

using Strings = std::vector<std::string>;

TEST(Names, GivesEachNameOnce) {
    Names names;
    EXPECT_EQ(given(names, {"arm", "arm", "arm", "Arm"}), (Strings{"arm", "arm.2", "arm.3", "Arm"}));
    EXPECT_EQ(names.changed(), 2u);
}

TEST(Names, UsesTheOtherNameForAnEmptyOne) {
    Names names;
    EXPECT_EQ(given(names, {"", ""}), (Strings{"bone", "bone.2"}));
    EXPECT_EQ(names.take("", ""), "_");
    EXPECT_EQ(names.changed(), 3u);
}

TEST(Names, CleansWhatItGives) {
    Names names;
    EXPECT_EQ(names.take("a\nb", "x"), "a_b");
    EXPECT_EQ(names.take("a\tb", "x"), "a_b.2");
}

TEST(Names, StepsOverNumbersThatAreTaken) {
    Names names;
    names.take("arm.2", "");
    names.take("arm.3", "");
    EXPECT_EQ(names.take("arm", ""), "arm");
    EXPECT_EQ(names.take("arm", ""), "arm.4");
    EXPECT_EQ(names.take("arm.2", ""), "arm.2.2");
}

TEST(Names, TakesLettersOfBothCasesForOneIfAsked) {
    Names names(kLongestName, false);
    EXPECT_EQ(names.take("Wall", "", ".tga"), "Wall.tga");
    EXPECT_EQ(names.take("wall", "", ".tga"), "wall.2.tga");
    EXPECT_EQ(names.take("WALL", "", ".TGA"), "WALL.3.TGA");
    // Beyond ASCII nothing is folded.
    EXPECT_EQ(names.take("\xC3\xA9", "", ".tga"), "\xC3\xA9.tga");
    EXPECT_EQ(names.take("\xC3\x89", "", ".tga"), "\xC3\x89.tga");
    EXPECT_EQ(names.changed(), 2u);
}

TEST(Names, NumberAndEndingNeverPushANameOverTheLongest) {
    Names names(10);
    EXPECT_EQ(names.take("abcdefghijkl", ""), "abcdefghij");
    EXPECT_EQ(names.take("abcdefghijkl", ""), "abcdefgh.2");
    EXPECT_EQ(names.take("abcdefghij", "", ".tga"), "abcdef.tga");
    EXPECT_EQ(names.take("abcdefghij", "", ".tga"), "abcd.2.tga");
    EXPECT_EQ(names.take("abcdefghij", ""), "abcdefgh.3");
}

TEST(Names, CutsBetweenCharacters) {
    Names names(5);
    EXPECT_EQ(names.take("abc\xE2\x82\xAC", ""), "abc");
    EXPECT_EQ(names.take("ab\xE2\x82\xAC", ""), "ab\xE2\x82\xAC");
    EXPECT_EQ(names.take("ab\xE2\x82\xAC", ""), "ab.2");
    Names files(255);
    const std::string longest = files.take(std::string(254, 'x') + "\xC3\xA9", "");
    EXPECT_EQ(longest, std::string(254, 'x'));
}

TEST(Names, FiftyThousandOfOneNameAreAllDifferent) {
    Names names;
    std::set<std::string> given;
    for (int i = 0; i < 50000; ++i) given.insert(names.take("node", ""));
    EXPECT_EQ(given.size(), 50000u);
    EXPECT_EQ(given.count("node.50000"), 1u);
}

}  // namespace
}  // namespace keltra::convert
