// SPDX-License-Identifier: Zlib
#include <gmock/gmock.h>
#include <keltra/fault.h>
#include <keltra/foundation.h>
#include <keltra/settings.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <functional>
#include <string>

#include "tests/support/allocations.h"
#include "tests/support/same_verdict.h"
#include "tests/support/special_files.h"

namespace keltra::test {
namespace {

using ::testing::HasSubstr;

class SettingsFileTest : public ::testing::Test {
   protected:
    bool load(const std::string &text) {
        const bool loaded = settings.load(folder.write("settings.txt", text).c_str());
        expectSameVerdict("settings", text, loaded);
        return loaded;
    }

    const TempFolder folder;
    KTSETTINGS settings;
};

struct IntKey {
    const char *key;
    int (KTSETTINGS::*get)() const;
};

constexpr IntKey kIntKeys[] = {
    {"KELTRA_windowX", &KTSETTINGS::getWindowX},
    {"KELTRA_windowY", &KTSETTINGS::getWindowY},
    {"KELTRA_colorDepth", &KTSETTINGS::getColorDepth},
    {"KELTRA_zetaDepth", &KTSETTINGS::getZetaDepth},
    {"KELTRA_stencilDepth", &KTSETTINGS::getStencilDepth},
    {"KELTRA_renderingElements", &KTSETTINGS::getRenderingElements},
    {"KELTRA_shadowMapSize", &KTSETTINGS::getShadowMapSize},
    {"KELTRA_FBOSizeX", &KTSETTINGS::getFBOSizeX},
    {"KELTRA_FBOSizeY", &KTSETTINGS::getFBOSizeY},
    {"KELTRA_waterSize", &KTSETTINGS::getWaterSize},
    {"KELTRA_audioChannels", &KTSETTINGS::getAudioChannels},
    {"KELTRA_audioBuffers", &KTSETTINGS::getAudioBuffers},
    {"KELTRA_audioElements", &KTSETTINGS::getAudioElements},
};

struct BoolKey {
    const char *key;
    bool (KTSETTINGS::*get)() const;
};

constexpr BoolKey kBoolKeys[] = {
    {"KELTRA_fullScreen", &KTSETTINGS::isFullScreen},
    {"KELTRA_resizable", &KTSETTINGS::isResizable},
    {"KELTRA_landscape", &KTSETTINGS::isLandscape},
    {"KELTRA_CAVESplashScreen", &KTSETTINGS::isCAVESplashScreen},
    {"KELTRA_useShaders", &KTSETTINGS::getShaders},
};

struct StringKey {
    const char *key;
    const char *(KTSETTINGS::*get)() const;
};

constexpr StringKey kStringKeys[] = {
    {"KELTRA_title", &KTSETTINGS::getTitle},
    {"KELTRA_ktePath", &KTSETTINGS::getKTEPath},
    {"KELTRA_ktaPath", &KTSETTINGS::getKTAPath},
    {"KELTRA_mpgPath", &KTSETTINGS::getMPGPath},
    {"KELTRA_texturePath", &KTSETTINGS::getTexturePath},
    {"KELTRA_shaderPath", &KTSETTINGS::getShaderPath},
    {"KELTRA_fontPath", &KTSETTINGS::getFontPath},
};

TEST_F(SettingsFileTest, EveryKeyReachesItsMember) {
    std::string text;
    int value = 1000;
    for (const IntKey &key : kIntKeys) text += std::string(key.key) + " = " + std::to_string(++value) + "\n";
    for (const StringKey &key : kStringKeys)
        text += std::string(key.key) + " = \"" + (key.key + std::strlen("KELTRA_")) + "/\"\n";
    ASSERT_TRUE(load(text));

    value = 1000;
    for (const IntKey &key : kIntKeys) EXPECT_EQ((settings.*key.get)(), ++value) << key.key;
    for (const StringKey &key : kStringKeys)
        EXPECT_EQ((settings.*key.get)(), std::string(key.key + std::strlen("KELTRA_")) + "/") << key.key;
}

TEST_F(SettingsFileTest, EveryBooleanKeyKeepsTheLow8Bits) {
    const struct {
        const char *number;
        bool expected;
    } cases[] = {{"1", true},  {"0", false},    {"255", true}, {"256", false}, {"257", true},
                 {"-1", true}, {"-256", false}, {"2", true},   {"true", false}};
    for (const BoolKey &key : kBoolKeys) {
        for (const auto &[number, expected] : cases) {
            ASSERT_TRUE(load(std::string(key.key) + "=" + number + "\n"));
            EXPECT_EQ((settings.*key.get)(), expected) << key.key << " = " << number;
        }
    }
}

TEST_F(SettingsFileTest, ThereIsNoKeyForTheForcedBuffer) {
    ASSERT_TRUE(load("KELTRA_forceFBO = 1\n"));
    EXPECT_FALSE(settings.getForceFBO());
}

TEST_F(SettingsFileTest, TextsLoseTheirBlanks) {
    ASSERT_TRUE(load("KELTRA_title = \"My \tEngine\"\n"));
    EXPECT_STREQ(settings.getTitle(), "MyEngine");
}

TEST_F(SettingsFileTest, TextsReachFromTheFirstToTheLastQuote) {
    ASSERT_TRUE(load("KELTRA_title = ab \"cd\" ef \"gh\" ij\n"));
    EXPECT_STREQ(settings.getTitle(), "cd\"ef\"gh");
}

TEST_F(SettingsFileTest, AnEmptyTextIsTaken) {
    KTFAULTS::clear();
    ASSERT_TRUE(load("KELTRA_title = \"\"\n"));
    EXPECT_STREQ(settings.getTitle(), "");
    EXPECT_EQ(KTFAULTS::getLast(), nullptr);
}

// Deliberate: not found, yet overwritten; settings files rely on it.
TEST_F(SettingsFileTest, ASingleQuoteLeavesTheRawRestOfTheLine) {
    ASSERT_TRUE(load("KELTRA_ktePath = \"my files/\nKELTRA_title = none\n"));
    EXPECT_STREQ(settings.getKTEPath(), "\"myfiles/");
    EXPECT_STREQ(settings.getTitle(), "none");
}

TEST_F(SettingsFileTest, CommentsAreIgnored) {
    ASSERT_TRUE(
        load("# KELTRA_windowX = 1\n"
             "KELTRA_windowY = 480 # KELTRA_colorDepth = 24\n"
             "KELTRA_windowX = 640#1\n"
             "KELTRA_title = \"a#b\"\n"));
    EXPECT_EQ(settings.getWindowX(), 640);
    EXPECT_EQ(settings.getWindowY(), 480);
    EXPECT_EQ(settings.getColorDepth(), 16);
    EXPECT_STREQ(settings.getTitle(), "\"a") << "the closing quote was in the comment";
}

TEST_F(SettingsFileTest, AKeyMatchesInsideAnotherWord) {
    ASSERT_TRUE(load("notKELTRA_windowX=77\nKELTRA_windowX=88\n"));
    EXPECT_EQ(settings.getWindowX(), 77);
}

TEST_F(SettingsFileTest, AKeyMatchesAcrossBlanks) {
    ASSERT_TRUE(load("  KEL TRA_win\tdowX   =   1 2 3\n"));
    EXPECT_EQ(settings.getWindowX(), 123);
}

TEST_F(SettingsFileTest, KeysAreCaseSensitive) {
    ASSERT_TRUE(load("keltra_windowx = 1\nKELTRA_WINDOWX = 2\n"));
    EXPECT_EQ(settings.getWindowX(), 240);
}

TEST_F(SettingsFileTest, TheFirstLineWithTheKeyCounts) {
    ASSERT_TRUE(load("KELTRA_windowX = 1\nKELTRA_windowX = 2\n"));
    EXPECT_EQ(settings.getWindowX(), 1);
}

TEST_F(SettingsFileTest, AnyOneCharacterSeparates) {
    ASSERT_TRUE(load("KELTRA_windowX:1\nKELTRA_windowY 23\nKELTRA_colorDepth==4\n"));
    EXPECT_EQ(settings.getWindowX(), 1);
    EXPECT_EQ(settings.getWindowY(), 3) << "the blank is gone, so a digit separates";
    EXPECT_EQ(settings.getColorDepth(), 0) << "an equals sign is no number";
}

TEST_F(SettingsFileTest, AKeyAtTheVeryEndReadsAsZeroAndEmpty) {
    ASSERT_TRUE(load("KELTRA_windowX"));
    EXPECT_EQ(settings.getWindowX(), 0);
    ASSERT_TRUE(load("KELTRA_title"));
    EXPECT_STREQ(settings.getTitle(), "");
}

TEST_F(SettingsFileTest, KeysThatAreNotFoundLeaveTheirMembers) {
    settings.setWindowX(999);
    settings.setTitle("kept");
    ASSERT_TRUE(load("nothing = 1\n"));
    EXPECT_EQ(settings.getWindowX(), 999);
    EXPECT_STREQ(settings.getTitle(), "kept");
    EXPECT_EQ(settings.getWindowY(), 320);
}

TEST_F(SettingsFileTest, AMissingFileChangesNothing) {
    KTSETTINGS before = settings;
    EXPECT_FALSE(settings.load(folder.path("missing.txt").c_str()));
    EXPECT_FALSE(settings.load(nullptr));
    EXPECT_FALSE(settings.load(""));
    EXPECT_EQ(std::memcmp(&before.record, &settings.record, sizeof before.record), 0);
}

TEST_F(SettingsFileTest, AnEmptyFileIsOneWithoutKeys) {
    KTSETTINGS before = settings;
    const std::string log = folder.path("run.log");
    ASSERT_TRUE(vnfOpenLog(log.c_str()));
    EXPECT_TRUE(load(""));
    vnfCloseLog();
    vnfOpenLog(nullptr);
    EXPECT_EQ(std::memcmp(&before.record, &settings.record, sizeof before.record), 0);
    const std::vector<std::uint8_t> bytes = readFile(log);
    EXPECT_THAT(std::string(bytes.begin(), bytes.end()), HasSubstr("vnfOpenParser: file '"));
}

TEST_F(SettingsFileTest, AFolderIsAFileWithoutKeys) {
    KTSETTINGS before = settings;
    settings.load(folder.prefix().c_str());
    EXPECT_EQ(std::memcmp(&before.record, &settings.record, sizeof before.record), 0);
}

TEST_F(SettingsFileTest, OverLongValuesStayInsideTheirArrays) {
    const std::string longText(100000, 'x');
    ASSERT_TRUE(load("KELTRA_title=" + longText + "\"\nKELTRA_windowX=99999999999999999999\n"));
    EXPECT_EQ(std::string(settings.getTitle()), std::string(255 - std::strlen("KELTRA_title="), 'x'));
    EXPECT_EQ(settings.getWindowX(), 2147483647);
    EXPECT_EQ(settings.getWindowY(), 320);
    // The rest of an over-long line is skipped: no line of its own begins there.
    ASSERT_TRUE(load(std::string(300, ' ') + "KELTRA_windowX = 5\nKELTRA_windowY = 6\n"));
    EXPECT_EQ(settings.getWindowX(), 2147483647);
    EXPECT_EQ(settings.getWindowY(), 6);
}

TEST_F(SettingsFileTest, LinesMayEndAsOnAnySystem) {
    ASSERT_TRUE(load("KELTRA_windowX = 1\r\nKELTRA_title = \"a\"\r\nKELTRA_windowY = 2"));
    EXPECT_EQ(settings.getWindowX(), 1);
    EXPECT_EQ(settings.getWindowY(), 2);
    EXPECT_STREQ(settings.getTitle(), "a");
}

TEST_F(SettingsFileTest, BytesThatAreNoTextDoNoHarm) {
    std::string bytes;
    for (int i = 0; i < 5000; ++i) bytes += static_cast<char>(i * 37);
    EXPECT_TRUE(load(bytes));
    EXPECT_TRUE(load(std::string("KELTRA_windowX=\0KELTRA_windowY=7\n", 33)));
    EXPECT_EQ(settings.getWindowX(), 0);
    EXPECT_EQ(settings.getWindowY(), 320) << "the line ends at its zero byte";
}

// What is not a regular file, of any name, is refused by the engine as by keltra-info, and never waited
// for.
TEST_F(SettingsFileTest, FoldersDevicesAndPipesAreNotRead) {
    for (const std::string &path : specialFiles(folder)) {
        KTFAULTS::clear();
        EXPECT_FALSE(settings.load(path.c_str())) << path;
        ASSERT_NE(KTFAULTS::getLast(), nullptr) << path;
        EXPECT_EQ(KTFAULTS::getLast()->code, KT_FAULT_FILE_KIND) << path;
        EXPECT_EQ(KTFAULTS::getLast()->severity, KT_FAULT_ERROR) << path;
    }
    EXPECT_EQ(settings.getWindowX(), 240);
}

TEST_F(SettingsFileTest, TwoGibibytesAreTooMany) {
    const std::string path = folder.write("large", "KELTRA_windowX=1\n");
    std::filesystem::resize_file(path, std::uintmax_t{1} << 31);
    EXPECT_FALSE(settings.load(path.c_str()));
    EXPECT_EQ(KTFAULTS::getLast()->code, KT_FAULT_FILE_SIZE);
    EXPECT_EQ(settings.getWindowX(), 240);
}

TEST_F(SettingsFileTest, OutOfMemoryIsAFailure) {
    if (!Allocations::canFail()) GTEST_SKIP() << "a sanitizer owns malloc";
    const std::string path = folder.write("settings", "KELTRA_windowX=1\n" + std::string(70000, '#'));
    Allocations::failNextFrom(70000);
    EXPECT_FALSE(settings.load(path.c_str()));
    Allocations::clear();
    EXPECT_EQ(KTFAULTS::getLast()->code, KT_FAULT_OUT_OF_MEMORY);
    EXPECT_EQ(settings.getWindowX(), 240);
    EXPECT_TRUE(settings.load(path.c_str()));
    EXPECT_EQ(settings.getWindowX(), 1);
}

}  // namespace
}  // namespace keltra::test
