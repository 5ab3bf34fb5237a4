// SPDX-License-Identifier: Zlib
// What scene files have no place for, as calls of the application: the code is compiled, and sets what the
// model says.

#include <gtest/gtest.h>

#include <sys/wait.h>
#include <cstdlib>

#include "tests/tools/convert/support/convert_fixture.h"
#include "tools/convert/setup_code.h"

namespace keltra::test {
namespace {

using nlohmann::json;

class SetupCodeTest : public ConvertTest {
   protected:
    /// Boxes, a lamp and an empty node with properties that scene files cannot hold.
    Made makeRoom() {
        GltfBuilder model;
        json &document = model.document();
        document["extensionsUsed"] = {"KHR_lights_punctual"};
        document["extensions"]["KHR_lights_punctual"]["lights"] = {{{"type", "point"}, {"range", 2.0}}};
        model.node(
            {{"name", "door \"1\""}, {"mesh", model.mesh(boxMesh())}, {"extras", {{"keltra_aux_id", 7}}}});
        model.node({{"name", "lamp"}, {"extensions", {{"KHR_lights_punctual", {{"light", 0}}}}}});
        model.node({{"name", "spawn"}, {"extras", {{"keltra_helper", 0.5}, {"keltra_aux_id", 3}}}});
        model.node({{"name", "zone"},
                    {"translation", {1, 2, 3}},
                    {"mesh", model.mesh(boxMesh(1.0f, 2.0f, 3.0f))},
                    {"extras", {{"keltra_helper", true}}}});
        return make("room.gltf", model.text(), [](convert::Options &options) { options.setup = true; });
    }
    static std::string callOf(const convert::Report &report, const std::string &name,
                              const std::string &kind) {
        for (const convert::SetupCall &entry : report.setup)
            if (entry.name == name && entry.kind == kind) return entry.call;
        return "";
    }
};

TEST_F(SetupCodeTest, EachPropertyBecomesACall) {
    const Made made = makeRoom();
    const convert::Report &report = made.report();
    EXPECT_EQ(callOf(report, "door \"1\"", "node"), "setAuxId(7u)");
    EXPECT_EQ(callOf(report, "lamp", "light"), "setAttenuation(1.0f, 0.0f, 3.75f)");
    EXPECT_EQ(callOf(report, "spawn", "helper"),
              "setMin(R3XVECTOR3D(-0.5f, -0.5f, -0.5f)), helper->setMax(R3XVECTOR3D(0.5f, 0.5f, 0.5f)), "
              "helper->radius = 0.8660254f, helper->setAuxId(3u)");
    EXPECT_EQ(callOf(report, "zone", "helper"),
              "setMin(R3XVECTOR3D(-1.0f, -2.0f, -3.0f)), helper->setMax(R3XVECTOR3D(1.0f, 2.0f, 3.0f)), "
              "helper->radius = 3.741657f");
    EXPECT_EQ(report.tally().dropped, 0u);
    ASSERT_NE(made.root()->findByNameInHierarchy("spawn"), nullptr);
    EXPECT_EQ(made.root()->findByNameInHierarchy("spawn")->getAuxId(), 3u);
    EXPECT_EQ(made.root()->findByNameInHierarchy("zone")->getType(), unsigned{KT_NODE});
}

TEST_F(SetupCodeTest, AFilterIsSetOnceForATexture) {
    convert::Report report;
    report.setup = {convert::filterCall("a_d.tga", true, false, true)};
    EXPECT_NE(convert::setupHeader("a", report).find("KTTEXTURE::findByFilename(\"a_d.tga\")"),
              std::string::npos);
    EXPECT_NE(convert::setupHeader("a", report).find("setFilter(true, false, true)"), std::string::npos);
}

TEST_F(SetupCodeTest, TheCodeCompilesAsCpp11) {
    const Made made = makeRoom();
    convert::Report strange = made.report();
    strange.setup.push_back(
        convert::auxIdCall("a\"b\\c\n?\?/\xc3\xa4"
                           "1",
                           4294967295u));
    strange.setup.push_back(convert::filterCall("a_d.tga", true, true, false));
    const std::string header = folder.write("room_setup.h", convert::setupHeader("room-1", strange));
    folder.write("main.cpp", "#include \"room_setup.h\"\nvoid use(KTNODE *root) { setup_room_1(root); }\n");
    folder.write("empty.h", convert::setupHeader("empty", convert::Report()));
    folder.write("empty.cpp", "#include \"empty.h\"\nvoid use(KTNODE *root) { setup_empty(root); }\n");
    for (const char *source : {"main.cpp", "empty.cpp"}) {
        const std::string command =
            KELTRA_CXX " -std=c++11 -fsyntax-only -Wall -Wextra -Werror -I'" KELTRA_INCLUDE "' '" +
            folder.path(source) + "'";
        EXPECT_EQ(std::system(command.c_str()), 0) << source;
    }
}

}  // namespace
}  // namespace keltra::test
