// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TESTS_DOCS_INTERFACE_FIXTURE_H
#define KELTRA_TESTS_DOCS_INTERFACE_FIXTURE_H

// Widgets below one node, on a real screen; frames are drawn and the pen is handed over as docs/interface.md
// says.

#include "tests/support/engine_fixture.h"

namespace keltra::test {

class InterfaceClaims : public EngineTest {
   protected:
    void SetUp() override {
        EngineTest::SetUp();
        root = new KTNODE;
        KTTEXTURE *glyphs = new KTTEXTURE;
        glyphs->setFilter(false, false, true);
        ASSERT_TRUE(glyphs->create(64, 64, 4));
        glyphs->modify(std::string(64 * 64 * 4, '\xff').c_str(), true);
        font = new KTFONT;
        font->setTexture(glyphs);
    }

    template <class Widget>
    Widget *add(float x, float y, KTNODE *parent = nullptr) {
        Widget *widget = new Widget;
        widget->setPosition(x, y);
        widget->link(parent ? parent : root);
        return widget;
    }
    /// Draws a frame; what `after` draws comes between the pass and `end2D`.
    Image draw(const std::function<void()> &after = nullptr) {
        return frame2D([&] {
            root->pass();
            if (after) after();
        });
    }
    /// Hands the pen over after the frame that was drawn last; `id` is what reported itself.
    bool pen(int x, int y, int pressed, char key = 0) {
        return KTELEMENT::manageGUIEvents(key, x, y, pressed, 0, &id);
    }

    KTNODE *root = nullptr;
    KTFONT *font = nullptr;
    unsigned int id = 0;
};

}  // namespace keltra::test

#endif
