// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TESTS_GUI_FILE_FIXTURE_H
#define KELTRA_TESTS_GUI_FILE_FIXTURE_H

#include <string>

#include "tests/support/engine_fixture.h"
#include "tests/support/same_verdict.h"
#include "tests/support/temp_file.h"
#include "tools/formats/tga_writer.h"

namespace keltra::test {

/// The engine with a folder of its own for descriptions, textures and kerning files.
class GuiFileTest : public EngineTest {
   protected:
    void prepare(KTSETTINGS &values) override {
        values.setKTEPath(folder.prefix().c_str());
        values.setTexturePath(folder.prefix().c_str());
        values.setFontPath(folder.prefix().c_str());
        folder.write("glyphs.tga", formats::writeTga(formats::Image(16, 16), {true, 32, false}));
        folder.write("kerning.txt", "KELTRA_kerning_A = 5\nKELTRA_kerning_SPACE = 9\n");
    }

    /// Loads the text as a file, elements of "root".
    KTNODE *load(const std::string &elements) { return loadText("<root>" + elements + "</root>"); }
    // A new file each time: writing over an old one makes some file systems wait for the disk.
    KTNODE *loadText(const std::string &text) {
        const std::string name = "gui" + std::to_string(++loads) + ".xml";
        folder.write(name, text);
        KTNODE *root = KELTRA::load(name.c_str());
        expectSameVerdict("gui", text, root != nullptr);
        return root;
    }
    /// The only widget of a description, of the class's type code, with the font "small" before it.
    template <class Widget>
    Widget *loadOne(const std::string &element, unsigned type) {
        KTNODE *root = load("<font><name value='small'/></font>" + element);
        KTNODE *widget = root ? root->getChild(0) : nullptr;
        if (!widget || widget->getType() != type) {
            ADD_FAILURE() << element;
            return nullptr;
        }
        return static_cast<Widget *>(widget);
    }
    KTBOX *loadBox(const std::string &properties) {
        return loadOne<KTBOX>("<box>" + properties + "</box>", KT_BOX);
    }
    KTBUTTON *loadButton(const std::string &properties) {
        return loadOne<KTBUTTON>("<button>" + properties + "</button>", KT_BUTTON);
    }
    KTWINDOW *loadWindow(const std::string &properties) {
        return loadOne<KTWINDOW>("<window>" + properties + "</window>", KT_WINDOW);
    }
    KTLABEL *loadLabel(const std::string &properties) {
        return loadOne<KTLABEL>("<label>" + properties + "</label>", KT_LABEL);
    }

    static std::vector<unsigned> countAll() {
        return {KTNODE::getNumberOfNodes(), KTFONT::getNumberOfFonts(), KTTEXTURE::getNumberOfTextures()};
    }

    TempFolder folder;
    int loads = 0;
};

inline std::string repeat(const std::string &text, unsigned count) {
    std::string result;
    for (unsigned i = 0; i < count; ++i) result += text;
    return result;
}

}  // namespace keltra::test

#endif
