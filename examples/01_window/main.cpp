// SPDX-License-Identifier: Zlib
// The smallest program: start the engine, clear the screen, stop. Next: a scene from files
// (02_scene).

#include <GLES/gl.h>
#include <keltra/keltra.h>
#include <keltra/kit/input.h>

#include "examples/support/example.h"

int main(int argc, char **argv) {
    example::Options options;
    int exitCode = 0;
    if (!example::parse(argc, argv, "Opens the window and clears it", &options, &exitCode)) return exitCode;

    // 1. Start: null stands for the default settings, 240 x 320 pixels of 16 bits.
    bool ok = KELTRA::init(nullptr);
    KTOPENGL::setBackgroundColor(0.95f, 0.45f, 0.30f, 1.0f);

    KTINPUT input;
    for (int frame = 1; ok && !input.hasQuit(); ++frame) {
        // 2. Per frame: nothing moves here. Escape, or closing the window, ends the program.
        input.update(KELTRA::getFPSfactor());

        // 3. Draw; `endFrame` swaps.
        ok = KELTRA::clear(true, true, false) && KELTRA::begin3D(nullptr) && KELTRA::end3D() &&
             KELTRA::begin2D() && KELTRA::end2D();
        if (!example::endFrame(options, frame, &ok)) break;
    }

    // 4. Stop.
    return example::stop(ok);
}
