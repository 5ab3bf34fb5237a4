// SPDX-License-Identifier: Zlib
// Attachments: the lamplighter's boy walks through the evening garden with a lantern in his hand. It hangs
// below the bone of the hand and moves with it, its light and its glow too; a tap lets him change hands.
// Next: a board game (17_board).

#include <keltra/keltra.h>
#include <keltra/kit/kit.h>

#include "examples/support/example.h"

namespace {

struct Show {
    KTNODE *garden = nullptr, *boy = nullptr, *lantern = nullptr, *glow = nullptr;
    KTCLIP walk;
    KTPLAYER player;
    bool isLeft = false;
};

// A roof, a floor and paper between them that shines; its node is where the handle is.
KTNODE *makeLantern(KTNODE **glow) {
    KTMATERIAL *iron = KTSHAPES::makeMaterial("iron", 0.32f, 0.26f, 0.24f);
    KTMATERIAL *paper = KTSHAPES::makeMaterial("lit paper", 0.5f, 0.35f, 0.15f);
    paper->setEmission(1.0f, 0.78f, 0.35f, 1.0f);
    KTMATERIAL *halo =
        KTSHAPES::makeMaterial("glow", 0.0f, 0.0f, 0.0f, example::loadTexture("garden_glow_d.tga"));
    halo->setEmission(1.0f, 0.7f, 0.3f, 1.0f);
    halo->setTransparency(0.95f);  // below 1 a texture shows its own alpha
    KTNODE *lantern = new KTNODE;
    example::place(KTSHAPES::makeCylinder(0.015f, 0.015f, 0.2f, 6), iron, lantern, 0.0f, -0.10f, 0.0f);
    example::place(KTSHAPES::makeCylinder(0.2f, 0.03f, 0.12f, 8), iron, lantern, 0.0f, -0.24f, 0.0f);
    example::place(KTSHAPES::makeCylinder(0.13f, 0.16f, 0.26f, 8, false), paper, lantern, 0.0f, -0.42f, 0.0f);
    example::place(KTSHAPES::makeCylinder(0.15f, 0.15f, 0.05f, 8), iron, lantern, 0.0f, -0.57f, 0.0f);
    *glow = example::place(KTSHAPES::makeQuad(1.7f, 1.7f), halo, lantern, 0.0f, -0.42f, 0.0f);
    KTLIGHT *light = example::addLight(lantern, 1.5f, 1.0f, 0.45f, 2.0f);
    light->setPosition(0.0f, -0.42f, 0.0f);
    light->setExclusive(true);  // it counts even where four others are nearer
    return lantern;
}

bool load(Show *show) {
    show->garden = example::loadWithSky("garden.kte");
    show->boy = KELTRA::load("figure.kte");
    if (!show->garden || !show->boy || !show->walk.load("figure_walk.kta")) return false;
    KTOPENGL::setGlobalAmbientLight(0.22f, 0.20f, 0.32f, 1.0f);
    show->lantern = makeLantern(&show->glow);
    example::smoothTextures();
    show->player.setTranslating(true);  // the hips move up and down
    show->boy->setPosition(-1.5f, 0.0f, 1.4f);
    show->boy->setRotation(0.0f, 25.0f, 0.0f);
    return show->player.bind(show->boy) && show->player.play(&show->walk) &&
           show->player.attach(show->lantern, "rightHand");
}

bool update(Show *show, const KTCAMERA &camera, float seconds, bool tapped) {
    bool ok = true;
    if (tapped) {
        show->isLeft = !show->isLeft;
        ok = show->player.attach(show->lantern, show->isLeft ? "leftHand" : "rightHand");
    }
    show->player.update(seconds);
    // He walks in a circle, 1.36 feet a second.
    show->boy->rotate(0.0f, 22.0f * seconds, 0.0f);
    const R3XMATRIX place = KTVIEW::getWorldMatrix(*show->boy);
    show->boy->move(place.rotate(R3XVECTOR4D(0.0f, 0.0f, 1.36f * seconds, 0.0f)));
    // A lantern hangs down whatever the hand does: what turns the hand is taken back.
    R3XMATRIX hand = KTVIEW::getWorldMatrix(*show->lantern->getParent());
    const R3XVECTOR3D at = hand.getTranslation();
    R3XMATRIX upright;
    upright.setTranslation(at.x, at.y, at.z);
    show->lantern->transformMode = 1;  // its explicit matrix counts
    show->lantern->setMatrix(upright * hand.inverse());
    KTSHAPES::faceEye(show->glow, camera.getPosition() - at);
    return ok;
}

}  // namespace

int main(int argc, char **argv) {
    example::Options options;
    int exitCode = 0;
    if (!example::parse(argc, argv, "Shows a lantern in a hand", &options, &exitCode)) return exitCode;

    // 1. Start.
    Show show;
    bool ok = example::start(options) && load(&show);
    KTCAMERA camera;
    example::lookAt(&camera, 1.0f, 2.6f, 9.6f, 0.0f, 2.1f, 1.5f);
    KTINPUT input;
    KTCLOCK clock;
    clock.setStep(options.step);
    for (int frame = 1; ok && !input.hasQuit(); ++frame) {
        // 2. Per frame.
        const float seconds = clock.tick();
        input.update(clock.getRealSeconds());
        ok = update(&show, camera, seconds, input.hasTapped());

        // 3. Draw.
        ok = ok && KELTRA::clear(true, true, false) && KELTRA::begin3D(&camera) && show.garden->pass() &&
             show.boy->pass() && KELTRA::end3D() && KELTRA::begin2D() && KELTRA::end2D();
        input.dispatch();
        if (!example::endFrame(options, frame, &ok)) break;
    }

    // 4. Stop.
    return example::stop(ok);
}
