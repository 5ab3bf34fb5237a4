// SPDX-License-Identifier: Zlib
// Pictures of every widget in its states, in portrait and landscape.

#include "tests/support/golden_fixture.h"
#include "tests/support/temp_file.h"
#include "tools/formats/tga_writer.h"

namespace {

using keltra::test::Image;
using keltra::test::matchesGolden;

constexpr keltra::test::Tolerance kTolerance = {8, 0.05};

// A distinct glyph for each character: its code in the dots of a cell.
keltra::formats::Image glyphs() {
    keltra::formats::Image image(256, 256);
    for (unsigned y = 0; y < 256; ++y) {
        for (unsigned x = 0; x < 256; ++x) {
            const unsigned code = 32 + y / 16 * 16 + x / 16, column = x % 16, row = y % 16;
            const bool inside = column >= 2 && column < 10 && row >= 3 && row < 13;
            const bool edge = column == 2 || row == 12 || (code >> ((column / 3 + row / 3) % 7) & 1);
            image.at(x, y) = {255, 255, 255,
                              static_cast<std::uint8_t>(code > 32 && inside && edge ? 255 : 0)};
        }
    }
    return image;
}

keltra::formats::Image stripes() {
    keltra::formats::Image image(32, 32);
    for (unsigned y = 0; y < 32; ++y) {
        for (unsigned x = 0; x < 32; ++x) {
            const auto shade = static_cast<std::uint8_t>(8 * y);
            image.at(x, y) = {shade, static_cast<std::uint8_t>(x < 16 ? 255 : 60), 120, 255};
        }
    }
    return image;
}

constexpr char kStart[] =
    "<root><font><name value='f'/><texture value='glyphs.tga'/></font><font><name value='none'/></font>";

class Interface : public keltra::test::GoldenTest {
   protected:
    void prepare(KTSETTINGS &values) override {
        values.setKTEPath(folder.prefix().c_str());
        values.setTexturePath(folder.prefix().c_str());
        folder.write("glyphs.tga", keltra::formats::writeTga(glyphs(), {true, 32, false}));
        folder.write("stripes.tga", keltra::formats::writeTga(stripes(), {true, 24, false}));
    }
    void load(const std::string &elements) {
        folder.write("gui.xml", kStart + elements + "</root>");
        root = KELTRA::load("gui.xml");
        ASSERT_NE(root, nullptr);
        for (KTFONT *font = KTFONT::getFirst(); font; font = font->getNext()) {
            for (int c = 32; c < 127; ++c) font->setKerning(static_cast<char>(c), 5);
        }
    }
    template <class Widget>
    Widget *find(const char *name) {
        return static_cast<Widget *>(root->findByNameInHierarchy(name));
    }
    Image picture() {
        return frame2D([&] { root->pass(); });
    }
    void point(int x, int y, int pressed, char key = 0) {
        unsigned int id = 0;
        KTELEMENT::manageGUIEvents(key, x, y, pressed, 0, &id);
    }

    keltra::test::TempFolder folder;
    KTNODE *root = nullptr;
};

class InterfaceLandscape : public Interface {
    void prepare(KTSETTINGS &values) override {
        Interface::prepare(values);
        values.setLandscape(true);
    }
};

std::string at(int x, int y, int width, int height) {
    return "<position x='" + std::to_string(x) + "' y='" + std::to_string(y) + "'/><size width='" +
           std::to_string(width) + "' height='" + std::to_string(height) + "'/>";
}

std::string boxesAndLabels() {
    return "<box>" + at(8, 8, 64, 64) + "</box><box>" + at(80, 8, 64, 64) +
           "<texture value='stripes.tga'/></box><box>" + at(152, 8, 64, 64) +
           "<color r='0.9' g='0.2' b='0.1' a='0.4'/><texture value='stripes.tga'/></box><box>" +
           at(40, 50, 120, 40) + "<color r='0.1' g='0.6' b='0.2' a='0.5'/></box><label>" + at(8, 100, 1, 1) +
           "<usefont ref='f'/><write value='label ^c8008red^c0804 half'/></label><label>" + at(8, 120, 1, 1) +
           "<usefont ref='f'/><write value='two&#10;lines^x0020away^y0008down'/></label>";
}

TEST_F(Interface, BoxesAndLabels) {
    load(boxesAndLabels());
    EXPECT_TRUE(matchesGolden(picture(), "gui_boxes", kTolerance));
}

TEST_F(InterfaceLandscape, BoxesAndLabels) {
    load(boxesAndLabels());
    EXPECT_TRUE(matchesGolden(picture(), "gui_boxes_landscape", kTolerance));
}

std::string buttons() {
    return "<button>" + at(8, 8, 100, 24) +
           "<name value='up'/><title value='normal'/><usefont ref='f'/></button><button>" +
           at(120, 8, 100, 24) +
           "<name value='down'/><title value='pressed'/><usefont ref='f'/></button><button>" +
           at(8, 40, 100, 24) + "<title value='much too long'/><usefont ref='f'/></button><button>" +
           at(120, 40, 40, 24) + "<title value='too long'/><usefont ref='f'/></button><button>" +
           at(170, 40, 50, 24) + "<title value='none'/></button><button>" + at(8, 72, 212, 40) +
           "<title value='textured'/><usefont ref='f'/><texture value='stripes.tga'/></button><text>" +
           at(8, 120, 100, 24) + "<name value='idle'/><usefont ref='f'/></text><text>" +
           at(120, 120, 100, 24) + "<name value='focused'/><usefont ref='f'/></text><hslider>" +
           at(8, 170, 120, 4) + "<name value='bar'/></hslider><vslider>" + at(150, 160, 4, 90) +
           "<name value='column'/></vslider><hslider>" + at(8, 200, 120, 4) +
           "<name value='hidden'/></hslider>";
}

void setStates(KTBUTTON *down, KTTEXTFIELD *idle, KTTEXTFIELD *focused, KTHSCROLLBAR *bar,
               KTVSCROLLBAR *column, KTHSCROLLBAR *hidden) {
    down->setClickedStatus(true);
    idle->setCaption("idle");
    focused->setCaption("typed");
    focused->caretTimer = 0.5f;
    focused->manageKey(0);
    bar->setValue(1.0f);
    column->setCursorSize(40);
    column->setValue(0.25f);
    hidden->setDisplayStatus(false);
}

TEST_F(Interface, ButtonsFieldsAndBars) {
    load(buttons());
    setStates(find<KTBUTTON>("down"), find<KTTEXTFIELD>("idle"), find<KTTEXTFIELD>("focused"),
              find<KTHSCROLLBAR>("bar"), find<KTVSCROLLBAR>("column"), find<KTHSCROLLBAR>("hidden"));
    EXPECT_TRUE(matchesGolden(picture(), "gui_buttons", kTolerance));
}

TEST_F(InterfaceLandscape, ButtonsFieldsAndBars) {
    load(buttons());
    setStates(find<KTBUTTON>("down"), find<KTTEXTFIELD>("idle"), find<KTTEXTFIELD>("focused"),
              find<KTHSCROLLBAR>("bar"), find<KTVSCROLLBAR>("column"), find<KTHSCROLLBAR>("hidden"));
    EXPECT_TRUE(matchesGolden(picture(), "gui_buttons_landscape", kTolerance));
}

std::string windows() {
    return "<window><name value='back'/><title value='back'/>" + at(8, 30, 140, 100) +
           "<usefont ref='f'/><write value='a window with text that is longer than it is high, so that its "
           "bar is shown and what "
           "is in it can be scrolled'/><button>" +
           at(100, 60, 80, 24) +
           "<title value='cut'/><usefont ref='f'/></button></window><window><name value='front'/><title "
           "value='front'/>" +
           at(90, 110, 130, 60) +
           "<usefont ref='f'/><color r='0.1' g='0.4' b='0.1' a='0.8'/><write value='short'/></window>" +
           "<window><name value='folded'/><title value='folded'/>" + at(8, 220, 140, 60) +
           "<usefont ref='f'/></window>";
}

TEST_F(Interface, WindowsOverlapFoldAndClip) {
    load(windows());
    find<KTWINDOW>("folded")->minmaximize();
    EXPECT_TRUE(matchesGolden(picture(), "gui_windows", kTolerance));
}

TEST_F(InterfaceLandscape, WindowsOverlapFoldAndClip) {
    load(windows());
    find<KTWINDOW>("folded")->minmaximize();
    EXPECT_TRUE(matchesGolden(picture(), "gui_windows_landscape", kTolerance));
}

TEST_F(Interface, AWindowIsRaisedMovedAndScrolled) {
    load(windows());
    picture();
    KTWINDOW *back = find<KTWINDOW>("back");
    static_cast<KTVSCROLLBAR *>(back->getChild(1))->setValue(0.5f);
    point(20, 20, 1);
    point(50, 40, 1);
    point(50, 40, 0);
    EXPECT_EQ(back->getPosition(), R3XVECTOR3D(38, 50, 0));
    picture();
    EXPECT_TRUE(matchesGolden(picture(), "gui_scrolled", kTolerance));
}

}  // namespace
