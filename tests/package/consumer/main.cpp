// SPDX-License-Identifier: Zlib
// Loads the scene file that is its argument and draws three frames, with calls of SDL and GL of its own.
#include <SDL.h>

#include <keltra/keltra.h>
#include <keltra/kit/kit.h>

#include <cstdio>

int main(int argc, char **argv) {
    if (argc != 2 || KTVERSION::getNumber() != KELTRA_VERSION_NUMBER) return 1;
    if (!KELTRA::init(nullptr)) return 2;
    KTNODE *scene = KELTRA::load(argv[1]);
    KTCAMERA *camera = new KTCAMERA;
    camera->setPosition(0.0f, 5.8f, 21.0f);
    KTINPUT input;
    bool good = scene != nullptr && input.findAction("left") == KT_ACTION_LEFT;
    for (int frame = 0; good && frame < 3; ++frame) {
        KELTRA::updateTimer();
        input.update(KELTRA::getFPSfactor());
        KELTRA::clear(true, true, false);
        KELTRA::begin3D(camera);
        scene->pass();
        KELTRA::end3D();
        KELTRA::begin2D();
        KELTRA::end2D();
        input.dispatch();
        good = KELTRA::swap() && glGetError() == GL_NO_ERROR;
    }
    KELTRA::free();
    std::printf("keltra %s: %s\n", KTVERSION::getString(), good ? "drawn" : "not drawn");
    return good ? 0 : 3;
}
