// SPDX-License-Identifier: Zlib
// A skinned character and its animations: twenty figures march, and wave at a tap or after a while. A frame
// skins sixteen meshes; the four figures passed last are not drawn. Next: what a tap hits (04_picking).

#include <keltra/keltra.h>
#include <keltra/kit/kit.h>

#include <cmath>

#include "examples/support/example.h"

namespace {

constexpr float kSwitchAfter = 4.0f;  // seconds
constexpr int kColumns = 4, kRows = 5, kFigures = kColumns * kRows;
constexpr float kStride = 1.36f;  // of a circle of the walk, which has two steps
constexpr float kGroundRepeat = 4.0f;

struct Show {
    KTNODE *stage = nullptr, *ground = nullptr;
    KTNODE *figures[kFigures];
    KTCLIP walk, wave;  // shared by all figures
    KTPLAYER players[kFigures];
    float walked = 0.0f, sinceSwitch = 0.0f;  // seconds
};

// The figures march out of step: each is five frames ahead of the one before it.
bool play(Show *show, const KTCLIP &clip) {
    bool ok = true;
    for (int i = 0; i < kFigures; ++i) {
        ok = ok && show->players[i].play(&clip);
        show->players[i].setTime((5.0f * static_cast<float>(i) + 0.001f) / clip.getFrameRate());
    }
    show->sinceSwitch = 0.0f;
    return ok;
}

// One file a figure: they share the material and have bones of their own.
bool loadFigures(Show *show) {
    for (int i = 0; i < kFigures; ++i) {
        KTNODE *figure = show->figures[i] = KELTRA::load("figure.kte");
        if (figure == nullptr || !show->players[i].bind(figure)) return false;
        show->players[i].setTranslating(true);  // the hips move up and down
        const int row = i / kColumns, column = i % kColumns;
        const float x = 1.5f * (static_cast<float>(column) - 1.5f + (row % 2 ? 0.2f : -0.2f));
        figure->setPosition(x, 0.0f, 2.0f - 2.6f * static_cast<float>(row));
    }
    return show->walk.load("figure_walk.kta") && show->wave.load("figure_wave.kta") && play(show, show->walk);
}

bool load(Show *show) {
    show->stage = example::loadWithSky("meadow.kte");
    if (show->stage == nullptr || !loadFigures(show)) return false;
    show->ground = show->stage->findByNameInHierarchy("ground");
    if (show->ground == nullptr) return false;
    KTOPENGL::setGlobalAmbientLight(0.30f, 0.30f, 0.34f, 1.0f);
    example::smoothTextures();
    return true;
}

void animate(Show *show, float seconds, bool tapped) {
    const bool isWalking = show->players[0].getClip() == &show->walk;
    show->sinceSwitch += seconds;
    if (tapped || show->sinceSwitch > kSwitchAfter) play(show, isWalking ? show->wave : show->walk);
    for (KTPLAYER &player : show->players) player.update(seconds);
    if (show->players[0].getClip() != &show->walk) return;
    show->walked += seconds;  // the figures stay in the picture, the ground moves below them
    const float circles = show->walked / show->walk.getLength();
    show->ground->setPosition(0.0f, 0.0f, -std::fmod(circles * kStride, kGroundRepeat));
}

bool draw(const Show &show, KTCAMERA *camera) {
    bool ok = KELTRA::clear(true, true, false) && KELTRA::begin3D(camera) && show.stage->pass();
    for (KTNODE *figure : show.figures) ok = ok && figure->pass();
    return ok && KELTRA::end3D() && KELTRA::begin2D() && KELTRA::end2D();
}

}  // namespace

int main(int argc, char **argv) {
    example::Options options;
    int exitCode = 0;
    if (!example::parse(argc, argv, "Shows a character that walks and waves", &options, &exitCode))
        return exitCode;

    // 1. Start.
    Show show;
    bool ok = example::start(options) && load(&show);
    KTCAMERA camera;
    example::lookAt(&camera, 1.4f, 4.8f, 12.2f, -0.25f, 2.2f, -1.0f);
    KTINPUT input;
    KTCLOCK clock;
    clock.setStep(options.step);
    for (int frame = 1; ok && !input.hasQuit(); ++frame) {
        // 2. Per frame.
        const float seconds = clock.tick();
        input.update(clock.getRealSeconds());
        animate(&show, seconds, input.hasTapped());

        // 3. Draw.
        ok = draw(show, &camera);
        input.dispatch();
        if (!example::endFrame(options, frame, &ok)) break;
    }

    // 4. Stop: the lists that own nodes destroy them.
    return example::stop(ok);
}
