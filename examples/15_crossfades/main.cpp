// SPDX-License-Identifier: Zlib
// From one animation to another: the boy on the left fades from walking on the spot to waving and back; the
// one on the right walks on and waves meanwhile, as a layer for his chest and arms above the walk. A tap lets
// both wave. Next: something in their hands (16_attachments).

#include <keltra/keltra.h>
#include <keltra/kit/kit.h>

#include "examples/support/example.h"

namespace {

constexpr float kFade = 0.35f;  // seconds

struct Show {
    KTNODE *stage = nullptr, *left = nullptr, *right = nullptr;
    KTCLIP walk, wave;
    KTPLAYER leftPlayer, rightPlayer;
    float sinceWave = 0.0f;
};

bool load(Show *show) {
    show->stage = example::loadWithSky("meadow.kte");
    show->left = KELTRA::load("figure.kte");
    show->right = KELTRA::load("figure.kte");
    if (!show->stage || !show->left || !show->right || !show->walk.load("figure_walk.kta") ||
        !show->wave.load("figure_wave.kta"))
        return false;
    KTOPENGL::setGlobalAmbientLight(0.34f, 0.34f, 0.38f, 1.0f);
    example::smoothTextures();
    show->left->setPosition(-0.85f, 0.0f, 0.0f);
    show->right->setPosition(0.85f, 0.0f, 0.0f);
    if (!show->leftPlayer.bind(show->left) || !show->rightPlayer.bind(show->right)) return false;
    for (KTPLAYER *player : {&show->leftPlayer, &show->rightPlayer}) {
        player->setTranslating(true);  // the hips move up and down
        if (!player->play(&show->walk)) return false;
    }
    show->rightPlayer.setTime(0.5f * show->walk.getLength());  // out of step
    return true;
}

bool wave(Show *show) {
    show->sinceWave = 0.0f;
    // Once, and faded in; of the layer only bones from the chest on, among them the arms.
    return show->leftPlayer.play(&show->wave, false, kFade) &&
           show->rightPlayer.playLayer(0, &show->wave, KT_LAYER_REPLACE, "chest", false, kFade);
}

bool animate(Show *show, float seconds, bool tapped) {
    bool ok = true;
    show->sinceWave += seconds;
    if (tapped || show->sinceWave > 4.0f) ok = wave(show);
    if (show->leftPlayer.getClip() == &show->wave && show->leftPlayer.hasEnded())
        ok = show->leftPlayer.play(&show->walk, true, kFade) && ok;
    show->leftPlayer.update(seconds);
    show->rightPlayer.update(seconds);
    return ok;
}

}  // namespace

int main(int argc, char **argv) {
    example::Options options;
    int exitCode = 0;
    if (!example::parse(argc, argv, "Shows cross-fades and layers", &options, &exitCode)) return exitCode;

    // 1. Start.
    Show show;
    bool ok = example::start(options) && load(&show);
    show.sinceWave = 3.6f;  // they wave soon
    KTCAMERA camera;
    example::lookAt(&camera, 0.5f, 2.3f, 6.6f, 0.0f, 1.45f, 0.0f);
    KTINPUT input;
    KTCLOCK clock;
    clock.setStep(options.step);
    for (int frame = 1; ok && !input.hasQuit(); ++frame) {
        // 2. Per frame.
        const float seconds = clock.tick();
        input.update(clock.getRealSeconds());
        ok = animate(&show, seconds, input.hasTapped());

        // 3. Draw.
        ok = ok && KELTRA::clear(true, true, false) && KELTRA::begin3D(&camera) && show.stage->pass() &&
             show.left->pass() && show.right->pass() && KELTRA::end3D() && KELTRA::begin2D() &&
             KELTRA::end2D();
        input.dispatch();
        if (!example::endFrame(options, frame, &ok)) break;
    }

    // 4. Stop.
    return example::stop(ok);
}
