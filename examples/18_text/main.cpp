// SPDX-License-Identifier: Zlib
// Text: solid letters cut from a font's glyphs, a sign of flat ones in the scene, and lines on the screen:
// two fonts, with and without kerning, colours, and a text that is wrapped at a width. Next: every widget
// (19_widgets).

#include <keltra/keltra.h>
#include <keltra/kit/kit.h>

#include <cmath>

#include "examples/support/example.h"

namespace {

const char *const kTale =
    "Fonts are baked by keltra-font: a texture of ^c8758cells^c8888, and a file of ^c5878kerning^c8888, by "
    "which "
    "each letter is narrower than its cell. Escapes ^c8658colour^c8888 and ^y-003move^y0003 what follows.";

struct Show {
    KTNODE world;
    KTMESH *title = nullptr, *sign = nullptr;
    KTFONT *sans = nullptr, *serif = nullptr, loose;  // the last is without kerning
    char tale[2 * 256 + 1];                           // wrapped; twice the length always suffices
    float time = 0.0f;
};

void build(Show *show) {
    show->sans = example::loadFont();
    show->serif = example::loadFont("serif");
    show->loose.setTexture(show->sans->getTexture());
    show->sans->format(kTale, show->tale, 216);

    // Cells of 32 pixels: of twice the detail, for letters that are not drawn on the screen.
    KTFONT *large = example::loadFont("title");
    large->setCharSizeX(32);
    large->setCharSizeY(32);
    KTMATERIAL *gold = KTSHAPES::makeMaterial("gold", 1.0f, 0.80f, 0.36f);
    show->title = example::place(KTSHAPES::makeSolidText(*large, "Vesper", 1.3f, 0.32f), gold, &show->world,
                                 0.0f, 1.35f, 0.0f);
    // Flat letters: a square each, which shows the alpha of the font's texture.
    large->getTexture()->setFilter(true, false, true);
    KTMATERIAL *ink = KTSHAPES::makeMaterial("ink", 0.0f, 0.0f, 0.0f, large->getTexture());
    ink->setEmission(0.66f, 0.80f, 1.0f, 1.0f);
    ink->setTransparency(0.999f);
    show->sign = example::place(KTSHAPES::makeText(*large, "a sign\nin the scene", 0.62f), ink, &show->world,
                                0.0f, 0.02f, 0.0f);
    example::addLight(&show->world, 1.0f, 0.8f, 0.6f, 0.0f)->setPosition(-4.0f, 5.0f, 6.0f);
    example::addLight(&show->world, 0.5f, 0.25f, 0.7f, 5.0f)->setPosition(4.0f, -1.0f, 3.0f);
    KTOPENGL::setGlobalAmbientLight(0.24f, 0.20f, 0.34f, 1.0f);
    KTOPENGL::setBackgroundColor(0.11f, 0.09f, 0.19f, 1.0f);
}

void update(Show *show, float seconds) {
    show->time += seconds;
    show->title->setRotation(6.0f * std::sin(0.9f * show->time), 34.0f * std::sin(0.7f * show->time), 0.0f);
    show->sign->setRotation(-20.0f, 24.0f * std::sin(0.7f * show->time + 2.0f), 0.0f);
}

// Text is drawn at once, between begin2D and end2D. What comes from outside is an argument, never the format.
bool write(Show *show, float seconds) {
    return show->sans->putString(12, 164, "^c6668with kerning^x0012^c8888AVATAR, Toil") &&
           show->loose.putString(12, 182, "^c6668without") && show->loose.putString(124, 182, "AVATAR") &&
           show->serif->putString(12, 200, "^c8748Another font: ^c8888%.1f seconds", double(seconds)) &&
           show->sans->putString(12, 226, "%s", show->tale);
}

}  // namespace

int main(int argc, char **argv) {
    example::Options options;
    int exitCode = 0;
    if (!example::parse(argc, argv, "Shows text in the scene and before it", &options, &exitCode))
        return exitCode;

    // 1. Start.
    Show show;
    bool ok = example::start(options);
    if (ok) build(&show);
    KTCAMERA camera;
    example::lookAt(&camera, 0.0f, 0.0f, 7.4f, 0.0f, -0.7f, 0.0f);
    KTINPUT input;
    KTCLOCK clock;
    clock.setStep(options.step);
    for (int frame = 1; ok && !input.hasQuit(); ++frame) {
        // 2. Per frame.
        update(&show, clock.tick());
        input.update(clock.getRealSeconds());

        // 3. Draw.
        ok = KELTRA::clear(true, true, false) && KELTRA::begin3D(&camera) && show.world.pass() &&
             KELTRA::end3D() && KELTRA::begin2D() && write(&show, show.time) && KELTRA::end2D();
        input.dispatch();
        if (!example::endFrame(options, frame, &ok)) break;
    }

    // 4. Stop.
    return example::stop(ok);
}
