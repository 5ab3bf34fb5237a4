// SPDX-License-Identifier: Zlib
// Three ways to move a camera: along a rail, behind somebody who walks, and around a point by drags. A tap
// goes on to the next. Next: nodes that move with others (14_planets).

#include <keltra/keltra.h>
#include <keltra/kit/kit.h>

#include "examples/support/example.h"

namespace {

constexpr float kTurning = 26.0f;  // degrees a second
constexpr float kPace = 1.36f;     // feet a second, as the walk's strides are

struct Show {
    KTNODE *stage = nullptr, *figure = nullptr;
    KTCLIP walk;
    KTPLAYER player;
    KTRAIL rail;
    KTFOLLOW follow;
    KTORBIT orbit;
    int mode = 0;  // rail, follow, orbit
};

bool load(Show *show) {
    show->stage = example::loadWithSky("meadow.kte");
    show->figure = KELTRA::load("figure.kte");
    if (!show->stage || !show->figure || !show->walk.load("figure_walk.kta")) return false;
    KTOPENGL::setGlobalAmbientLight(0.34f, 0.34f, 0.38f, 1.0f);
    example::smoothTextures();
    show->figure->setPosition(1.5f, 0.0f, 0.0f);
    show->player.setTranslating(true);  // the hips move up and down
    // From high above down to him, in two seconds.
    show->rail.addPoint(R3XVECTOR3D(-9.0f, 9.0f, 12.0f), R3XVECTOR3D(0.0f, 1.0f, 0.0f), 0.8f);
    show->rail.addPoint(R3XVECTOR3D(0.0f, 6.0f, 13.0f), R3XVECTOR3D(1.0f, 1.2f, 0.5f), 0.7f);
    show->rail.addPoint(R3XVECTOR3D(6.0f, 3.6f, 11.0f), R3XVECTOR3D(2.0f, 1.4f, 1.2f), 0.5f);
    show->rail.addPoint(R3XVECTOR3D(7.6f, 2.4f, 8.4f), R3XVECTOR3D(2.2f, 1.7f, 1.8f), 0.5f);
    show->follow.setNode(show->figure);
    show->follow.setOffset(R3XVECTOR3D(1.2f, 2.6f, -5.0f));  // he looks along +z, so behind him is -z
    show->orbit.setDistance(6.5f);
    return show->player.bind(show->figure) && show->player.play(&show->walk);
}

// He walks in a circle: forward, and a little to the left.
void walk(Show *show, float seconds) {
    show->player.update(seconds);
    show->figure->rotate(0.0f, kTurning * seconds, 0.0f);
    const R3XVECTOR3D forward =
        KTVIEW::getWorldMatrix(*show->figure).rotate(R3XVECTOR4D(0.0f, 0.0f, 1.0f, 0.0f));
    show->figure->move(forward * (kPace * seconds));
}

void moveCamera(Show *show, const KTINPUT &input, KTCAMERA *camera, float seconds) {
    if (input.hasTapped() || (show->mode == 0 && show->rail.hasEnded())) {
        show->mode = show->mode % 2 + 1;
        show->orbit.setAngles(40.0f, 15.0f);
    }
    if (show->mode == 0) show->rail.update(camera, seconds);
    if (show->mode == 1) show->follow.update(camera, seconds);
    if (show->mode == 2) {
        show->orbit.drag(input.getDrag());
        show->orbit.setCenter(show->figure->getPosition() + R3XVECTOR3D(0.0f, 1.3f, 0.0f));
        show->orbit.update(camera);
    }
}

}  // namespace

int main(int argc, char **argv) {
    example::Options options;
    int exitCode = 0;
    if (!example::parse(argc, argv, "Shows ways to move a camera", &options, &exitCode)) return exitCode;

    // 1. Start.
    Show show;
    bool ok = example::start(options) && load(&show);
    KTCAMERA camera;
    KTINPUT input;
    KTCLOCK clock;
    clock.setStep(options.step);
    for (int frame = 1; ok && !input.hasQuit(); ++frame) {
        // 2. Per frame.
        const float seconds = clock.tick();
        input.update(clock.getRealSeconds());
        walk(&show, seconds);
        moveCamera(&show, input, &camera, seconds);

        // 3. Draw.
        ok = KELTRA::clear(true, true, false) && KELTRA::begin3D(&camera) && show.stage->pass() &&
             show.figure->pass() && KELTRA::end3D() && KELTRA::begin2D() && KELTRA::end2D();
        input.dispatch();
        if (!example::endFrame(options, frame, &ok)) break;
    }

    // 4. Stop.
    return example::stop(ok);
}
