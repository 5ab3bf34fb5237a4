// SPDX-License-Identifier: Zlib
// The smallest program: start the engine, clear the screen, stop.

#include <GLES/gl.h>
#include <keltra/keltra.h>

#include <cstdio>

#include "examples/support/example.h"

int main(int argc, char **argv) {
    example::Options options;
    int exitCode = 0;
    if (!example::parse(argc, argv, "Opens the window and clears it", &options, &exitCode)) return exitCode;

    // 1. Start: null stands for the default settings, 240 x 320 pixels of 16 bits.
    if (!KELTRA::init(nullptr)) {
        std::fprintf(stderr, "01_window: the engine does not start\n");
        return 1;
    }
    KTOPENGL::setBackgroundColor(0.95f, 0.45f, 0.30f, 1.0f);

    bool ok = true;
    for (int frame = 1; ok && !example::quitRequested(); ++frame) {
        // 2. Per frame: nothing moves here.
        const bool last = frame == options.frames;

        // 3. Draw.
        ok = KELTRA::clear(true, true, false) && KELTRA::begin3D(nullptr) && KELTRA::end3D() &&
             KELTRA::begin2D() && KELTRA::end2D();
        if (ok && last && !options.shot.empty()) ok = example::saveShot(options.shot);
        ok = ok && KELTRA::swap() && glGetError() == GL_NO_ERROR;
        if (last) break;
    }
    if (!ok) std::fprintf(stderr, "01_window: a frame could not be drawn\n");

    // 4. Stop.
    return KELTRA::free() && ok ? 0 : 1;
}
