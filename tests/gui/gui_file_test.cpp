// SPDX-License-Identifier: Zlib
#include <climits>
#include <cstring>

#include "tests/gui/gui_file_fixture.h"

namespace keltra::test {
namespace {

// --- the document

TEST_F(GuiFileTest, EveryObjectElementMakesItsWidget) {
    KTNODE *root = load("<window/><button/><text/><label/><box/><vslider/><hslider/>");
    ASSERT_NE(root, nullptr);
    EXPECT_EQ(root->getType(), unsigned(KT_NODE));
    EXPECT_TRUE(root->isRoot());
    const unsigned types[] = {KT_WINDOW, KT_BUTTON,     KT_TEXTFIELD, KT_LABEL,
                              KT_BOX,    KT_VSCROLLBAR, KT_HSCROLLBAR};
    ASSERT_EQ(root->getNumberOfChildren(), 7u);
    for (unsigned i = 0; i < 7; ++i) {
        EXPECT_EQ(root->getChild(i)->getType(), types[i]);
        EXPECT_EQ(root->getChild(i)->getParent(), root);
    }
}

TEST_F(GuiFileTest, TheRootIsNamedAfterTheFile) {
    KTNODE *root = load("");
    ASSERT_NE(root, nullptr);
    EXPECT_STREQ(root->getName(), folder.path("gui1.xml").c_str());
    EXPECT_EQ(root->getNumberOfChildren(), 0u);
}

TEST_F(GuiFileTest, LoadXmlTakesThePathAsItIs) {
    folder.write("plain", "<root><box/></root>");
    EXPECT_NE(KELTRA::loadXML(folder.path("plain").c_str()), nullptr);
    EXPECT_EQ(KELTRA::loadXML("plain"), nullptr);
    EXPECT_EQ(KELTRA::loadXML(nullptr), nullptr);
}

TEST_F(GuiFileTest, WithoutARootElementThereIsNothing) {
    const std::vector<unsigned> before = countAll();
    EXPECT_EQ(loadText("<interface><root><box/></root></interface>"), nullptr);
    EXPECT_EQ(loadText("<Root><box/></Root>"), nullptr);
    EXPECT_EQ(countAll(), before);
}

TEST_F(GuiFileTest, OnlyTheFirstRootCounts) {
    KTNODE *root =
        loadText("<?xml version='1.0'?><!-- c --><other/><root><box/></root><root><box/><box/></root>");
    ASSERT_NE(root, nullptr);
    EXPECT_EQ(root->getNumberOfChildren(), 1u);
}

TEST_F(GuiFileTest, CommentsTextAndUnknownElementsMakeNothing) {
    KTNODE *root =
        load("<!-- c -->text<box><!-- d -->more<name value='b'/></box><Box/><slider/><![CDATA[<box/>]]>");
    ASSERT_NE(root, nullptr);
    ASSERT_EQ(root->getNumberOfChildren(), 1u);
    EXPECT_STREQ(root->getChild(0)->getName(), "b");
}

TEST_F(GuiFileTest, EveryAttributeThatIsAnotherIsTold) {
    KTFAULTS::clear();
    EXPECT_NE(load("<box><size width='1' height='2'/></box>"), nullptr);
    EXPECT_EQ(KTFAULTS::getNumberOfFaults(), 0u);
    EXPECT_NE(load("<box><size breadth='1' depth='2'/></box>"), nullptr);
    EXPECT_EQ(KTFAULTS::getNumberOfFaults(), 4u) << "two are unknown and two are missing";
    KTFAULTS::clear();
}

TEST_F(GuiFileTest, WidgetsNestAsTheirElements) {
    KTNODE *root = load(
        "<window><position x='10' y='20'/><box><position x='3' y='4'/><button><position x='1' "
        "y='2'/></button></box>"
        "</window>");
    ASSERT_NE(root, nullptr);
    KTNODE *window = root->getChild(0);
    ASSERT_EQ(window->getNumberOfChildren(), 3u) << "title bar, scroll bar, box";
    KTNODE *box = window->getChild(2);
    ASSERT_EQ(box->getType(), unsigned(KT_BOX));
    ASSERT_EQ(box->getNumberOfChildren(), 1u);
    EXPECT_EQ(box->getChild(0)->getType(), unsigned(KT_BUTTON));
    EXPECT_EQ(box->getChild(0)->getPosition(), R3XVECTOR3D(1, 2, 0));
    EXPECT_TRUE(static_cast<KTBUTTON *>(box->getChild(0))->checkBoundaries(14, 26));
    EXPECT_FALSE(static_cast<KTBUTTON *>(box->getChild(0))->checkBoundaries(13, 26));
}

// Elements that are not objects are transparent: what is nested in them belongs to the widget around them.
TEST_F(GuiFileTest, AGroupPassesItsContentsToTheWidgetAround) {
    KTNODE *root = load("<group><position x='7' y='8'/><name value='top'/><box/></group>");
    ASSERT_NE(root, nullptr);
    EXPECT_EQ(root->getPosition(), R3XVECTOR3D(7, 8, 0));
    EXPECT_STREQ(root->getName(), "top");
    EXPECT_EQ(root->getNumberOfChildren(), 1u);
}

TEST_F(GuiFileTest, BoxPropertiesPassAPlainNodeBy) {
    KTNODE *root = load(
        "<group><size width='1' height='2'/><color r='1' g='1' b='1' a='1'/><texture "
        "value='glyphs.tga'/><title value='t'/>"
        "<usefont ref='f'/><write value='w'/><kind value='switch'/><kerning value='kerning.txt'/></group>");
    ASSERT_NE(root, nullptr);
    EXPECT_EQ(KTTEXTURE::getNumberOfTextures(), 0u);
}

// --- properties

TEST_F(GuiFileTest, NamesOf256CharactersAreIgnored) {
    EXPECT_STREQ(loadBox("<name value='" + std::string(255, 'n') + "'/>")->getName(),
                 std::string(255, 'n').c_str());
    KTBOX *box = loadBox("<name value='short'/><name value='" + std::string(256, 'n') + "'/><name/>");
    EXPECT_STREQ(box->getName(), "short");
}

TEST_F(GuiFileTest, TitlesGoToWindowsAndButtonsOnly) {
    EXPECT_STREQ(loadButton("<title value='go'/>")->getCaption(), "go");
    KTWINDOW *window = loadWindow("<title value='main'/><title value='" + std::string(256, 't') + "'/>");
    EXPECT_STREQ(window->getTitleBar()->getCaption(), "main");
    EXPECT_STREQ(window->getCaption(), "");
    KTTEXTFIELD *field = loadOne<KTTEXTFIELD>("<text><title value='x'/></text>", KT_TEXTFIELD);
    EXPECT_STRNE(field->getCaption(), "x");
}

TEST_F(GuiFileTest, APositionNeedsBothCoordinatesAndKeepsTheThird) {
    EXPECT_EQ(loadBox("<position x='5'/><position y='6'/>")->getPosition(), R3XVECTOR3D(0, 0, 0));
    EXPECT_EQ(loadBox("<position x='-5' y='6.9'/>")->getPosition(), R3XVECTOR3D(-5, 6, 0));
    EXPECT_EQ(loadBox("<position x='abc' y='12px'/>")->getPosition(), R3XVECTOR3D(0, 12, 0));
    EXPECT_EQ(loadBox("<position x='99999999999' y='-99999999999'/>")->getPosition(),
              R3XVECTOR3D(static_cast<float>(INT_MAX), static_cast<float>(INT_MIN), 0));
}

TEST_F(GuiFileTest, ASizeResizesAWindowWithItsParts) {
    KTWINDOW *window = loadWindow("<size width='200' height='100'/>");
    EXPECT_EQ(window->sizeX, 200);
    EXPECT_EQ(window->sizeY, 100);
    EXPECT_EQ(window->getTitleBar()->sizeX, 200);
    EXPECT_EQ(window->getChild(1)->getPosition(), R3XVECTOR3D(192, 16, 0));
    EXPECT_EQ(static_cast<KTBOX *>(window->getChild(1))->sizeY, 68);
}

TEST_F(GuiFileTest, ASizeIsSetDirectlyOnOtherWidgets) {
    KTBOX *box = loadBox("<size width='1'/><size width='7' height='99999999999'/>");
    EXPECT_EQ(box->sizeX, 7);
    EXPECT_EQ(box->sizeY, INT_MAX);
    KTHSCROLLBAR *bar =
        loadOne<KTHSCROLLBAR>("<hslider><size width='128' height='6'/></hslider>", KT_HSCROLLBAR);
    EXPECT_EQ(bar->sizeX, 128);
    EXPECT_EQ(bar->getCursor()->getPosition().x, 24.0f) << "the cursor stays where it was";
}

TEST_F(GuiFileTest, AColorNeedsFourChannelsAndReadsWhatItCan) {
    const R3XVECTOR4D plain(0.5f, 0.5f, 0.5f, 1.0f);
    EXPECT_EQ(loadBox("<color r='1' g='0.5' b='0'/>")->getColor(), plain);
    EXPECT_EQ(loadBox("<color r='1' g='0.5' b='0' a='x'/>")->getColor(), R3XVECTOR4D(1, 0.5f, 0, 0));
    EXPECT_EQ(loadBox("<color r='2' g='-1' b='1e-1' a='0.25f'/>")->getColor(),
              R3XVECTOR4D(2, -1, 0.1f, 0.25f));
    EXPECT_EQ(loadBox("<color r='nan' g='inf' b='-inf' a='1e60'/>")->getColor(), R3XVECTOR4D(0, 0, 0, 0));
}

TEST_F(GuiFileTest, KindsAreForButtonsOnly) {
    EXPECT_EQ(loadButton("<kind value='normal'/>")->getEventType(), KT_BUTTON_NORMAL);
    EXPECT_EQ(loadButton("<kind value='inverted'/>")->getEventType(), KT_BUTTON_INVERTED);
    EXPECT_EQ(loadButton("<kind value='switch'/>")->getEventType(), KT_BUTTON_SWITCH);
    EXPECT_EQ(loadButton("<kind value='switch'/><kind value='normal'/>")->getEventType(), KT_BUTTON_NORMAL);
    EXPECT_EQ(
        loadButton("<kind value='switch'/><kind value='Normal'/><kind value=''/><kind/>")->getEventType(),
        KT_BUTTON_SWITCH);
    EXPECT_EQ(loadWindow("<kind value='switch'/>")->getEventType(), KT_BUTTON_NORMAL);
}

TEST_F(GuiFileTest, AnInvertedButtonReportsOnPress) {
    KTNODE *root = load("<button><kind value='inverted'/></button>");
    ASSERT_NE(root, nullptr);
    frame2D([&] { root->pass(); });
    unsigned int id = 0;
    KTELEMENT::manageGUIEvents(0, 5, 5, 1, 0, &id);
    EXPECT_EQ(id, root->getChild(0)->getId());
    KTELEMENT::manageGUIEvents(0, 5, 5, 0, 0, &id);
    EXPECT_EQ(id, 0u);
}

// --- fonts, textures, text

TEST_F(GuiFileTest, AFontIsNoPartOfTheTree) {
    KTNODE *root =
        load("<font><name value='small'/><texture value='glyphs.tga'/><kerning value='kerning.txt'/></font>");
    ASSERT_NE(root, nullptr);
    EXPECT_EQ(root->getNumberOfChildren(), 0u);
    KTFONT *font = KTFONT::findByName("small");
    ASSERT_NE(font, nullptr);
    EXPECT_EQ(font->getKerning('A'), 5);
    EXPECT_EQ(font->getKerning(' '), 9);
    ASSERT_NE(font->getTexture(), nullptr);
    EXPECT_EQ(font->getTexture()->getReferences(), 1);
    EXPECT_FALSE(font->getTexture()->isMipmapped());
    EXPECT_STRNE(root->getName(), "small");
}

TEST_F(GuiFileTest, AFontLeavesAnEarlierTexturesFilterAlone) {
    KTBOX *box =
        loadBox("<texture value='glyphs.tga'/><font><name value='f'/><texture value='glyphs.tga'/></font>");
    EXPECT_EQ(KTFONT::findByName("f")->getTexture(), box->texture);
    EXPECT_TRUE(box->texture->isMipmapped());
}

// Properties that are not of fonts apply to the widget around the font.
TEST_F(GuiFileTest, OtherPropertiesInsideAFontApplyToTheWidgetAround) {
    KTBUTTON *button = loadButton(
        "<name value='b'/><font><name value='f'/><position x='3' y='4'/><size width='5' height='6'/><title "
        "value='t'/>"
        "<color r='1' g='0' b='0' a='1'/><kind value='switch'/><usefont ref='f'/></font>");
    EXPECT_STREQ(button->getName(), "b");
    EXPECT_EQ(button->getPosition(), R3XVECTOR3D(3, 4, 0));
    EXPECT_EQ(button->sizeX, 5);
    EXPECT_STREQ(button->getCaption(), "t");
    EXPECT_EQ(button->getColor(), R3XVECTOR4D(1, 0, 0, 1));
    EXPECT_EQ(button->getEventType(), KT_BUTTON_SWITCH);
    EXPECT_EQ(button->font, KTFONT::findByName("f"));
}

TEST_F(GuiFileTest, WidgetsInsideAFontBelongToTheWidgetAround) {
    KTBOX *box = loadBox("<font><button><name value='inner'/></button></font>");
    ASSERT_EQ(box->getNumberOfChildren(), 1u);
    EXPECT_STREQ(box->getChild(0)->getName(), "inner");
}

TEST_F(GuiFileTest, FontsAreUsedByName) {
    KTNODE *root = load(
        "<font><name value='small'/></font>"
        "<window><usefont ref='small'/></window><button><usefont "
        "ref='small'/></button><text><usefont ref='small'/>"
        "</text><label><usefont ref='small'/></label><box><usefont ref='small'/></box>");
    ASSERT_NE(root, nullptr);
    KTFONT *font = KTFONT::findByName("small");
    ASSERT_NE(font, nullptr);
    EXPECT_EQ(static_cast<KTWINDOW *>(root->getChild(0))->font, font);
    EXPECT_EQ(static_cast<KTWINDOW *>(root->getChild(0))->getTitleBar()->font, font);
    EXPECT_EQ(static_cast<KTBUTTON *>(root->getChild(1))->font, font);
    EXPECT_EQ(static_cast<KTTEXTFIELD *>(root->getChild(2))->font, font);
    EXPECT_EQ(static_cast<KTLABEL *>(root->getChild(3))->font, font);
}

TEST_F(GuiFileTest, AnUnknownFontGivesNone) {
    KTBUTTON *button = loadButton("<usefont ref='small'/><usefont/>");
    EXPECT_NE(button->font, nullptr);
    EXPECT_EQ(loadButton("<usefont ref='small'/><usefont ref='large'/>")->font, nullptr);
}

TEST_F(GuiFileTest, ATextureFileIsSharedByAllThatNameIt) {
    KTNODE *root =
        load("<box><texture value='glyphs.tga'/></box><button><texture value='glyphs.tga'/></button>");
    ASSERT_NE(root, nullptr);
    EXPECT_EQ(KTTEXTURE::getNumberOfTextures(), 1u);
    KTTEXTURE *texture = KTTEXTURE::getFirst();
    EXPECT_EQ(static_cast<KTBOX *>(root->getChild(0))->texture, texture);
    EXPECT_EQ(static_cast<KTBOX *>(root->getChild(1))->texture, texture);
    EXPECT_EQ(texture->getReferences(), 2);
    EXPECT_TRUE(texture->isMipmapped());
}

TEST_F(GuiFileTest, ATextureThatCannotBeReadIsAssignedAllTheSame) {
    KTBOX *box = loadBox("<texture value='missing.tga'/>");
    ASSERT_NE(box->texture, nullptr);
    EXPECT_EQ(box->texture->getBitmap(), nullptr);
    EXPECT_EQ(box->texture->getReferences(), 1);
    frame2D([&] { box->pass(); });
}

TEST_F(GuiFileTest, AWindowsTextReplacesTheEarlierOne) {
    KTWINDOW *window = loadWindow("<usefont ref='small'/><write value='one'/><write value='two&#10;three'/>");
    EXPECT_STREQ(window->text, "two\nthree");
    EXPECT_STREQ(window->formattedText, "two\nthree");
    EXPECT_EQ(window->lineCount, 16);
}

TEST_F(GuiFileTest, ALabelNeedsItsFontBeforeItsText) {
    EXPECT_STREQ(loadLabel("<usefont ref='small'/><write value='text'/>")->text, "text");
    EXPECT_STREQ(loadLabel("<write value='text'/><usefont ref='small'/>")->text, "");
}

// The value is a format string without arguments.
TEST_F(GuiFileTest, AFormatNeitherReadsNorWritesMemory) {
    const char *const cases[][2] = {{"100%%", "100%"},      {"%s%n%d", "%s%n%d"},
                                    {"%%d", "%d"},          {"%%%%", "%%"},
                                    {"%%%s", "%%s"},        {"%", "%"},
                                    {"a%%", "a%"},          {"%1000000d", "%1000000d"},
                                    {"%*.*f%c", "%*.*f%c"}, {"", ""},
                                    {"50 % s", "50 % s"}};
    for (const auto &one : cases) {
        const std::string properties = std::string("<usefont ref='small'/><write value='") + one[0] + "'/>";
        EXPECT_STREQ(loadLabel(properties)->text, one[1]);
        EXPECT_STREQ(loadWindow(properties)->text, one[1]);
    }
}

TEST_F(GuiFileTest, OverlongTextEndsInsideItsArray) {
    for (unsigned length : {255u, 256u, 3967u, 3968u, 4063u, 4064u, 4095u, 4096u, 5000u, 1000000u}) {
        const std::string properties =
            "<usefont ref='small'/><write value='" + std::string(length, 'x') + "'/>";
        EXPECT_EQ(std::strlen(loadLabel(properties)->text), 255u) << length;
        EXPECT_EQ(std::strlen(loadWindow(properties)->text), length < 3968 ? length : 0u) << length;
    }
}

}  // namespace
}  // namespace keltra::test
