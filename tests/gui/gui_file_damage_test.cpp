// SPDX-License-Identifier: Zlib
#include <tinyxml.h>

#include "tests/gui/gui_file_fixture.h"
#include "tests/support/emulated.h"
#include "tests/support/same_verdict.h"
#include "tests/support/small_stack.h"

namespace keltra::test {
namespace {

class GuiFileDamageTest : public GuiFileTest {
   protected:
    /// One of each object and property.
    static std::string everything() {
        return "<?xml version=\"1.0\"?><!-- all --><root><font><name value=\"f\"/><texture "
               "value=\"glyphs.tga\"/><kerning "
               "value=\"kerning.txt\"/></font><window><name value=\"w\"/><title value=\"T\"/><position "
               "x=\"1\" y=\"2\"/><size "
               "width=\"90\" height=\"80\"/><usefont ref=\"f\"/><color r=\"1\" g=\"0.5\" b=\"0\" "
               "a=\"0.5\"/><write "
               "value=\"^c8008t%d&#10;&amp;\"/><button><kind value=\"switch\"/><texture "
               "value=\"glyphs.tga\"/></button><text/>"
               "<label><usefont ref=\"f\"/><write "
               "value=\"l\"/></label></window><vslider/><hslider/><box/></root>";
    }

    void show(KTNODE *root) {
        frame2D([&] { root->pass(); });
        unsigned int id = 0;
        KTELEMENT::manageGUIEvents('a', 5, 5, 1, 0, &id);
        KTELEMENT::manageGUIEvents('b', 50, 40, 1, 0, &id);
        KTELEMENT::manageGUIEvents(0, 50, 40, 0, 0, &id);
    }
};

TEST_F(GuiFileDamageTest, EveryTruncationIsRefusedAndLeavesNothing) {
    const std::string whole = everything();
    ASSERT_NE(loadText(whole), nullptr);
    const std::vector<unsigned> before = countAll();
    for (std::size_t size = 0; size < whole.size(); size += sampled(4)) {
        ASSERT_EQ(loadText(whole.substr(0, size)), nullptr) << size;
        ASSERT_EQ(countAll(), before) << size;
    }
}

TEST_F(GuiFileDamageTest, EveryDamagedByteIsRefusedOrGivesAnInterface) {
    const std::string whole = everything();
    for (std::size_t at = 0; at < whole.size(); at += sampled(24)) {
        for (char value : {'\0', '<', '>', '"', '/', '&', '%', '^', '9', '-', '\xFF'}) {
            std::string damaged = whole;
            damaged[at] = value;
            const std::vector<unsigned> before = countAll();
            KTNODE *root = loadText(damaged);
            if (root == nullptr) {
                ASSERT_EQ(countAll(), before) << at;
            } else if (value == '9' && at % 8 == 0) {
                show(root);
            }
        }
        KTFONT::cleanUp();
        KTNODE::cleanUp();
        KTTEXTURE::cleanUp();
    }
}

TEST_F(GuiFileDamageTest, DeepNestingIsRefusedOnTheDevicesStack) {
    for (unsigned depth : {63u, 64u, 300u, 100000u}) {
        const std::string text = "<root>" + repeat("<box>", depth) + repeat("</box>", depth) + "</root>";
        folder.write("deep.xml", text);
        const std::vector<unsigned> before = countAll();
        KTNODE *root = nullptr;
        ASSERT_TRUE(runOnSmallStack([&] { root = KELTRA::load("deep.xml"); }));
        EXPECT_EQ(root != nullptr, depth == 63) << depth;
        expectSameVerdict("gui", text, root != nullptr);
        EXPECT_EQ(countAll() == before, root == nullptr) << depth;
    }
}

TEST_F(GuiFileDamageTest, AWholeInterfaceLoadsOnTheDevicesStack) {
    folder.write("whole.xml", "<root>" + repeat("<box>", 60) +
                                  "<window><font><name value='f'/></font><usefont ref='f'/><write value='" +
                                  std::string(3000, 'x') + "'/></window>" + repeat("</box>", 60) + "</root>");
    KTNODE *root = nullptr;
    ASSERT_TRUE(runOnSmallStack([&] { root = KELTRA::load("whole.xml"); }));
    EXPECT_NE(root, nullptr);
}

TEST_F(GuiFileDamageTest, ADocumentOfTheCallersMayNestDeeper) {
    TiXmlElement outermost("box");
    TiXmlElement *innermost = &outermost;
    for (int i = 1; i < 1000; ++i) innermost = innermost->LinkEndChild(new TiXmlElement("box"))->ToElement();
    KTNODE parent;
    ASSERT_TRUE(runOnSmallStack([&] { EXPECT_EQ(KELTRA::recursiveLoadXML(&parent, &outermost), 0); }));
    unsigned depth = 0;
    for (KTNODE *node = &parent; node->getNumberOfChildren(); node = node->getChild(0)) ++depth;
    EXPECT_EQ(depth, 64u);
    KTNODE::cleanUp();
}

TEST_F(GuiFileDamageTest, ACommentIsNoRoot) {
    EXPECT_EQ(loadText("<!--root-->"), nullptr);
    KTNODE *root = loadText("<!--root--><root><box/></root>");
    ASSERT_NE(root, nullptr);
    EXPECT_EQ(root->getNumberOfChildren(), 1u);
}

TEST_F(GuiFileDamageTest, NullAndOtherNodesMakeNothing) {
    KTNODE parent;
    const TiXmlElement box("box");
    const TiXmlComment comment;
    const std::vector<unsigned> before = countAll();
    EXPECT_EQ(KELTRA::recursiveLoadXML(nullptr, &box), 0);
    EXPECT_EQ(KELTRA::recursiveLoadXML(&parent, nullptr), 0);
    EXPECT_EQ(KELTRA::recursiveLoadXML(&parent, &comment), 0);
    EXPECT_EQ(countAll(), before);
    EXPECT_EQ(KELTRA::recursiveLoadXML(&parent, &box), 0);
    EXPECT_EQ(parent.getNumberOfChildren(), 1u);
}

TEST_F(GuiFileDamageTest, ThousandsOfWidgetsGiveTheFirstOnes) {
    KTNODE *root = load(repeat("<label/>", 2000));
    ASSERT_NE(root, nullptr);
    EXPECT_EQ(root->getNumberOfChildren(), 2000u);
    show(root);
    KTNODE *boxes = load("<box>" + repeat("<button/>", 20000) + "</box><box/>");
    ASSERT_NE(boxes, nullptr);
    EXPECT_EQ(boxes->getNumberOfChildren(), 1u);
    EXPECT_EQ(boxes->getChild(0)->getNumberOfChildren(), 8191u);
}

TEST_F(GuiFileDamageTest, HugeAttributesAreCutOrIgnored) {
    const std::string huge(1000000 / sampled(10), '7');
    for (const char *property : {"name", "title", "texture", "kerning", "write", "kind"}) {
        KTNODE *root = load("<font><name value='f'/></font><window><usefont ref='f'/><" +
                            std::string(property) + " value='" + huge + "'/></window>");
        ASSERT_NE(root, nullptr) << property;
        show(root);
    }
    KTNODE *root = load("<window><position x='" + huge + "' y='-" + huge + "'/></window>");
    ASSERT_NE(root, nullptr);
    show(root);
    KTBOX *box = loadBox("<color r='" + huge + "' g='0." + huge + "' b='1e" + huge + "' a='x" + huge + "'/>");
    EXPECT_EQ(box->getColor(), R3XVECTOR4D(0.0f, 0.7777778f, 0.0f, 0.0f));
}

TEST_F(GuiFileDamageTest, ExtremeSizesAndPositionsAreDrawn) {
    const char *const numbers[] = {"0", "-1", "-2147483648", "2147483647", "99999999999"};
    for (std::size_t i = 0; i < std::size(numbers); i += sampled(2)) {
        for (const char *widget : {"window", "button", "text", "label", "box", "vslider", "hslider"}) {
            const std::string value = std::string("='") + numbers[i] + "' ";
            KTNODE *root =
                load("<font><name value='f'/><texture value='glyphs.tga'/></font><" + std::string(widget) +
                     "><position x" + value + "y" + value + "/><size width" + value + "height" + value +
                     "/><usefont ref='f'/><write value='text'/></" + widget + ">");
            ASSERT_NE(root, nullptr);
            show(root);
        }
    }
}

}  // namespace
}  // namespace keltra::test
