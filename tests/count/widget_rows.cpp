// SPDX-License-Identifier: Zlib
#include <keltra/keltra.h>

#include "tests/count/region.h"

namespace {

constexpr unsigned int kButtons = 10;
constexpr char kText[] = "The quick brown fox jumps over the lazy dog.";
constexpr unsigned int kGlyphs = sizeof kText - 1;
constexpr char kCaption[] = "Lantern";

void countButtons(KTFONT &font) {
    count::require(font.stringLength(kCaption) < 120, "a caption that fits");
    KTNODE root;
    KTBUTTON buttons[kButtons];
    for (unsigned int i = 0; i < kButtons; ++i) {
        buttons[i].setSizes(120, 20);
        buttons[i].setPosition(5.0f, static_cast<float>(25 * i));
        buttons[i].setCaption(kCaption);
        buttons[i].setFont(&font);
        buttons[i].link(&root);
    }
    for (int frame = 0; frame < 2; ++frame) {
        KELTRA::begin2D();
        root.pass();
        if (frame == 0) {
            KELTRA::end2D();
            continue;
        }
        const count::Region region("button of 7 glyphs, drawn", kButtons);
        KELTRA::end2D();
    }
    count::require(KTELEMENT::getNumberOfPassedElements() == kButtons, "buttons");
}

}  // namespace

void count::countWidgets() {
    KTTEXTURE texture;
    require(texture.load("font.tga"), "font.tga");
    KTFONT font;
    font.setTexture(&texture);
    KELTRA::begin2D();
    font.putString(0, 0, "%s", kText);
    {
        const Region region("glyph of a string", kGlyphs);
        font.putString(0, 0, "%s", kText);
    }
    KELTRA::end2D();
    countButtons(font);
}
