// SPDX-License-Identifier: Zlib
// Landscape mode: the device lies on its side. One line of the settings file turns the picture; points of the
// 2D pass, and those of the kit, are turned with it: 320 to the right, 240 down. A tap on the meadow calls
// the boy. Next: what stays when the battery is empty (24_saving).

#include <keltra/keltra.h>
#include <keltra/kit/kit.h>

#include <cmath>

#include "examples/support/example.h"

namespace {

constexpr float kPace = 1.36f, kDegree = 180.0f / 3.14159265f;

struct Show {
    KTNODE *stage = nullptr, *boy = nullptr;
    KTCLIP walk, wave;
    KTPLAYER player;
    KTLABEL *name = nullptr;
    R3XVECTOR3D goal{-3.0f, 0.0f, 1.0f};
};

bool load(Show *show) {
    show->stage = example::loadWithSky("meadow.kte");
    show->boy = KELTRA::load("figure.kte");
    if (!show->stage || !show->boy || !show->walk.load("figure_walk.kta") ||
        !show->wave.load("figure_wave.kta"))
        return false;
    KTOPENGL::setGlobalAmbientLight(0.34f, 0.34f, 0.38f, 1.0f);
    example::smoothTextures();
    show->name = new KTLABEL;
    show->name->setFont(example::loadFont());
    show->name->write("^c8888Tap the grass");
    show->player.setTranslating(true);  // the hips move up and down
    return show->player.bind(show->boy) && show->player.play(&show->walk);
}

// Where the ray through a point of the picture meets the ground.
void call(Show *show, const KTVIEW &view, const R3XVECTOR2D &point) {
    const KTRAY ray = view.getRay(point);
    float distance = 0.0f;
    if (!KTVIEW::hitsPlane(ray, R3XPLANE(0.0f, 1.0f, 0.0f, 0.0f), &distance) || distance > 40.0f) return;
    show->goal = ray.origin + ray.direction * distance;
    show->player.play(&show->walk, true, 0.25f);
}

void walk(Show *show, float seconds) {
    const R3XVECTOR3D way = show->goal - show->boy->getPosition();
    const float left = way.length(), step = kPace * seconds;
    if (left > step) {
        show->boy->setRotation(0.0f, std::atan2(way.x, way.z) * kDegree, 0.0f);
        show->boy->move(way * (step / left));
    } else if (show->player.getClip() == &show->walk) {
        show->boy->setRotation(0.0f, 0.0f, 0.0f);
        show->player.play(&show->wave, true, 0.3f);
    }
    show->player.update(seconds);
}

}  // namespace

int main(int argc, char **argv) {
    example::Options options;
    int exitCode = 0;
    if (!example::parse(argc, argv, "Shows the landscape mode", &options, &exitCode)) return exitCode;

    // 1. Start.
    Show show;
    bool ok = example::start(options, "landscape.cfg") && load(&show);
    KTCAMERA camera;
    example::lookAt(&camera, 0.0f, 3.0f, 7.5f, 0.0f, 1.5f, 0.0f);
    KTVIEW view;
    KTINPUT input;
    KTCLOCK clock;
    clock.setStep(options.step);
    for (int frame = 1; ok && !input.hasQuit(); ++frame) {
        // 2. Per frame. In a run with a given number of frames, somebody taps in the tenth one.
        const float seconds = clock.tick();
        input.update(clock.getRealSeconds());
        if (input.hasTapped()) call(&show, view, input.getPoint());
        if (options.frames > 0 && frame == 10) call(&show, view, R3XVECTOR2D(210.0f, 185.0f));
        walk(&show, seconds);

        // 3. Draw, with the label above his head.
        ok = KELTRA::clear(true, true, false) && KELTRA::begin3D(&camera) && show.stage->pass() &&
             show.boy->pass();
        view.take();
        R3XVECTOR2D head;
        if (ok && view.toScreen(show.boy->getPosition() + R3XVECTOR3D(0.0f, 3.3f, 0.0f), &head))
            show.name->setPosition(std::floor(head.x) - 44.0f, std::floor(head.y) - 16.0f);
        ok = ok && KELTRA::end3D() && KELTRA::begin2D() && show.name->pass() && KELTRA::end2D();
        input.dispatch();
        if (!example::endFrame(options, frame, &ok)) break;
    }

    // 4. Stop.
    return example::stop(ok);
}
