// SPDX-License-Identifier: Zlib
// Valid descriptions with as many names as possible: their cost grows with their size only.

#include "tests/gui/gui_file_fixture.h"
#include "tests/support/cpu_time.h"
#include "tests/support/emulated.h"

namespace keltra::test {
namespace {

class GuiFileCostTest : public GuiFileTest {
   protected:
    /// Without asking keltra-info, which takes longer than the engine.
    KTNODE *loadAlone(const std::string &elements) {
        folder.write("large.xml", "<root>" + elements + "</root>");
        return KELTRA::load("large.xml");
    }
};

TEST_F(GuiFileCostTest, FiftyThousandTextures) {
    const unsigned count = 50000 / sampled(5);
    std::string properties;
    for (unsigned i = 0; i < count; ++i) properties += "<texture value='t" + std::to_string(i) + "'/>";
    const CpuTime time;
    EXPECT_NE(loadAlone("<box>" + properties + "</box>"), nullptr);
    EXPECT_EQ(KTTEXTURE::getNumberOfTextures(), count);
    EXPECT_LT(time.seconds(), kLongestSeconds);
}

TEST_F(GuiFileCostTest, ThousandsOfFontsAndLabelsThatUseThem) {
    std::string text;
    for (int i = 0; i < 8000; ++i) text += "<font><name value='f" + std::to_string(i) + "'/></font>";
    text += "<label>" + repeat("<usefont ref='f7999'/>", 60000 / sampled(6)) + "</label>";
    const CpuTime time;
    KTNODE *root = loadAlone(text);
    ASSERT_NE(root, nullptr);
    EXPECT_EQ(static_cast<KTLABEL *>(root->getChild(0))->font, KTFONT::findByName("f7999"));
    EXPECT_LT(time.seconds(), kLongestSeconds);
}

TEST_F(GuiFileCostTest, AFontThatIsBeingReadIsFoundByThePresentName) {
    KTNODE *root = load(
        "<font><name value='a'/></font>"
        "<label><font><name value='b'/><usefont ref='b'/></font></label>"
        "<label><font><name value='c'/><name value='d'/><usefont ref='c'/></font><usefont ref='d'/></label>"
        "<label><font><name value='a'/><usefont ref='a'/></font></label>");
    ASSERT_NE(root, nullptr);
    const auto fontOf = [root](unsigned index) {
        return static_cast<KTLABEL *>(root->getChild(index))->font;
    };
    EXPECT_EQ(fontOf(0), KTFONT::findByName("b"));
    EXPECT_EQ(fontOf(1), nullptr) << "properties come before the objects that are nested";
    EXPECT_EQ(fontOf(2), KTFONT::findByName("a"));
    EXPECT_EQ(KTFONT::findByName("c"), nullptr);
}

}  // namespace
}  // namespace keltra::test
