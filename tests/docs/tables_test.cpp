#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <keltra/keltra.h>

#include <cstdlib>
#include <map>
#include <set>

#include "core/settings_file.h"
#include "formats/kerning.h"
#include "gui/gui_file.h"
#include "math/fixed.h"
#include "scene/emitter_file.h"
#include "tests/docs/document.h"

namespace keltra::test {
namespace {

using ::testing::ElementsAreArray;
using Names = std::vector<std::string>;

TEST(TablesTest, SettingsKeysHaveTheirKindsAndDefaults) {
    const KTSETTINGS settings;
    std::map<std::string, Names> keys;
    for (const SettingsKey &key : kSettingsKeys) {
        const auto &record = settings.record;
        if (key.integer) keys[key.name] = {"integer", std::to_string(record.*key.integer)};
        if (key.boolean) keys[key.name] = {"boolean", record.*key.boolean ? "1" : "0"};
        if (key.text) keys[key.name] = {"string", record.*key.text};
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
    if (kind == EmitterValue::kSize) return {"x", "y"};
    if (kind == EmitterValue::kVector) return {"x", "y", "z"};
    return {"value"};
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
        for (const std::string &name : quoted(row[0])) EXPECT_TRUE(isGuiObject(name.c_str())) << name;
    for (const auto &row : document.table("## Properties")) {
        const char *const *attributes = guiAttributes(quoted(row[0]).at(0).c_str());
        ASSERT_TRUE(attributes) << row[0];
        Names names;
        for (; *attributes; ++attributes) names.push_back(*attributes);
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
