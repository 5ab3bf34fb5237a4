// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TESTS_WINDOW_FIXTURE_H
#define KELTRA_TESTS_WINDOW_FIXTURE_H

#include <keltra/window.h>

#include "tests/gui/gui_fixture.h"

namespace keltra::test {

class WindowTest : public GuiTest {
   protected:
    /// Gives the window a text of so many lines more than one.
    void fill(int breaks) {
        window.setFont(font);
        window.clear();
        for (int i = 0; i < breaks; ++i) window.write("a\n");
        window.write("b");
        ASSERT_TRUE(window.format());
    }

    KTWINDOW window;
};

}  // namespace keltra::test

#endif
