// SPDX-License-Identifier: Zlib
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <keltra/keltra.h>

#include <cstdlib>
#include <map>
#include <set>

#include "core/settings_members.h"
#include "formats/emitter.h"
#include "formats/gui.h"
#include "formats/kerning.h"
#include "formats/settings.h"
#include "math/fixed.h"
#include "tests/docs/document.h"

namespace keltra::test {
namespace {

using ::testing::ElementsAreArray;
using Names = std::vector<std::string>;

TEST(TablesTest, SettingsKeysHaveTheirKindsAndDefaults) {
    const KTSETTINGS settings;
    std::map<std::string, Names> keys;
    for (std::size_t i = 0; i < kSettingsKeyCount; ++i) {
        const auto &record = settings.record;
        const SettingMember member = settingMember(i);
        Names &key = keys[kSettingsKeys[i].name];
        if (member.integer) key = {"integer", std::to_string(record.*member.integer)};
        if (member.boolean) key = {"boolean", record.*member.boolean ? "1" : "0"};
        if (member.text) key = {"string", record.*member.text};
    }
    const auto rows = readDocument("docs/formats/settings.md").table("## Keys");
    EXPECT_EQ(rows.size(), keys.size());
    for (const auto &row : rows) {
        const std::string key = quoted(row[0]).at(0);
        ASSERT_TRUE(keys.count(key)) << key;
        const Names text = quoted(row[2]);
        const std::string value = !text.empty() ? text[0] : row[2] == "empty" ? "" : row[2];
        EXPECT_THAT((Names{row[1], value}), ElementsAreArray(keys[key])) << key;
    }
}

Names attributesOf(EmitterValue kind) {
    Names names;
    for (XmlNames name = emitterAttributes(kind); *name; name = nextName(name)) names.push_back(name);
    return names;
}

TEST(TablesTest, EmitterElementsHaveTheirAttributes) {
    std::map<std::string, Names> elements;
    for (const EmitterSetting &setting : kEmitterSettings)
        elements[setting.name] = attributesOf(setting.kind);
    std::set<std::string> documented;
    for (const auto &row : readDocument("docs/formats/emitter.md").table("# Emitter files")) {
        for (const std::string &name : quoted(row[0])) {
            ASSERT_TRUE(elements.count(name)) << name;
            EXPECT_THAT(quoted(row[1]), ElementsAreArray(elements[name])) << name;
            documented.insert(name);
        }
    }
    EXPECT_EQ(documented.size(), elements.size());
}

TEST(TablesTest, InterfaceElementsHaveTheirAttributes) {
    const Document document = readDocument("docs/formats/gui.md");
    for (const auto &row : document.table("## Objects"))
        for (const std::string &name : quoted(row[0])) EXPECT_GE(guiObject(name.c_str()), 0) << name;
    for (const auto &row : document.table("## Properties")) {
        const int property = guiProperty(quoted(row[0]).at(0).c_str());
        ASSERT_GE(property, 0) << row[0];
        Names names;
        for (XmlNames name = kGuiProperties[property].attributes; *name; name = nextName(name))
            names.push_back(name);
        EXPECT_THAT(quoted(row[1]), ElementsAreArray(names)) << row[0];
    }
}

TEST(TablesTest, NamedKerningKeysAreThoseOfTheLoader) {
    Names keys;
    char text[kKerningKeySize];
    for (unsigned int i = kKerningCharacters; i < kKerningKeys; ++i) keys.push_back(kerningKey(i, text));
    Names documented;
    for (const auto &row : readDocument("docs/formats/kerning.md").table("## Keys"))
        if (row[0] != "`KELTRA_kerning_` and the character") documented.push_back(quoted(row[0]).at(0));
    EXPECT_THAT(documented, ElementsAreArray(keys));
}

TEST(TablesTest, FloatsBecomeTheFixedNumbersOfTheTable) {
    int rowsOfNumbers = 0;
    for (const auto &row : readDocument("docs/conventions.md").table("## Numbers")) {
        const long long fixed = std::atoll(row[1].c_str());
        char *end;
        const float value = std::strtof(row[0].c_str(), &end);
        if (*end) {
            for (float beyond : {-32768.01f, 32768.0f, HUGE_VALF, -HUGE_VALF, std::nanf("")})
                EXPECT_EQ(toFixed(beyond), fixed) << beyond;
            continue;
        }
        ++rowsOfNumbers;
        EXPECT_EQ(toFixed(value), fixed) << row[0];
    }
    EXPECT_EQ(rowsOfNumbers, 4);
}

}  // namespace
}  // namespace keltra::test
