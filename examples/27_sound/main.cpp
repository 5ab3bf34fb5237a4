// SPDX-License-Identifier: Zlib
// Sound beside the engine: SDL 1.2 plays what a small mixer makes. A chime plays a tune by itself; tap its
// tubes to play another. Where there is no audio device it is silent, and all the rest goes on. Next: a film
// of what is on the screen (28_capture).

#include <keltra/keltra.h>
#include <keltra/kit/kit.h>

#include <cmath>
#include <cstdio>

#include "examples/27_sound/mixer.h"
#include "examples/support/example.h"

namespace {

constexpr int kTubes = 8;
constexpr float kHertz[kTubes] = {293.7f, 329.6f, 392.0f, 440.0f, 493.9f, 587.3f, 659.3f, 784.0f};
constexpr char kTune[] = "024-324-54675---764-5-24312-0---";  // tubes, and rests
constexpr float kBeat = 0.28f;                                // seconds

struct Chime {
    KTNODE world, *stage = nullptr, *tubes[kTubes];
    KTMATERIAL *metal[kTubes];
    float sinceStruck[kTubes];
    float time = 0.0f;
    int beat = 0;
    Mixer mixer;
};

bool build(Chime *chime) {
    KTMATERIAL *wood = KTSHAPES::makeMaterial("wood", 0.45f, 0.28f, 0.18f);
    KTMATERIAL *cord = KTSHAPES::makeMaterial("cord", 0.6f, 0.55f, 0.5f);
    example::place(KTSHAPES::makeCylinder(0.13f, 0.13f, 4.5f, 10), wood, &chime->world, 0.0f, 3.2f, 0.0f)
        ->setRotation(0.0f, 0.0f, 90.0f);
    for (int i = 0; i < kTubes; ++i) {
        const float part = static_cast<float>(i) / (kTubes - 1), length = 3.1f - 1.7f * part;
        KTMATERIAL *metal = chime->metal[i] =
            KTSHAPES::makeMaterial("metal", 0.90f - 0.55f * part, 0.46f + 0.16f * part, 0.20f + 0.72f * part);
        KTNODE *tube = chime->tubes[i] = new KTNODE;  // at the upper end, about which it swings
        tube->setPosition(0.52f * (static_cast<float>(i) - 3.5f), 3.1f, 0.0f);
        tube->link(&chime->world);
        example::place(KTSHAPES::makeCylinder(0.02f, 0.02f, 0.6f, 6), cord, tube, 0.0f, -0.3f, 0.0f);
        example::place(KTSHAPES::makeCylinder(0.16f, 0.16f, length, 14), metal, tube, 0.0f,
                       -0.6f - 0.5f * length, 0.0f)
            ->setAuxId(static_cast<unsigned>(i + 1));
        chime->sinceStruck[i] = 100.0f;
    }
    chime->world.setPosition(0.0f, 1.7f, 2.2f);
    chime->stage = example::loadWithSky("garden.kte");
    if (!chime->stage) return false;
    example::smoothTextures();
    example::addLight(&chime->world, 0.5f, 0.4f, 0.35f, 0.0f)->setPosition(-3.0f, 5.0f, 6.0f);
    KTOPENGL::setGlobalAmbientLight(0.36f, 0.33f, 0.48f, 1.0f);
    return true;
}

// The mixer runs in a thread of its own: it waits meanwhile.
void strike(Chime *chime, int tube) {
    if (tube < 0 || tube >= kTubes) return;
    chime->sinceStruck[tube] = 0.0f;
    SDL_LockAudio();
    chime->mixer.strike(kHertz[tube]);
    SDL_UnlockAudio();
}

void update(Chime *chime, float seconds) {
    chime->time += seconds;
    for (; chime->time > kBeat * static_cast<float>(chime->beat); ++chime->beat)
        strike(chime, kTune[static_cast<unsigned>(chime->beat) % (sizeof kTune - 1)] - '0');
    for (int i = 0; i < kTubes; ++i) {
        const float since = chime->sinceStruck[i] += seconds, ring = std::exp(-1.6f * since);
        chime->tubes[i]->setRotation(14.0f * ring * std::sin(7.0f * since), 0.0f, 0.0f);
        chime->metal[i]->setEmission(chime->metal[i]->getDiffuse() * (0.7f * ring));
    }
}

bool draw(Chime *chime, KTCAMERA *camera) {
    return KELTRA::clear(true, true, false) && KELTRA::begin3D(camera) && chime->stage->pass() &&
           chime->world.pass() && KELTRA::end3D();
}

}  // namespace

int main(int argc, char **argv) {
    example::Options options;
    int exitCode = 0;
    if (!example::parse(argc, argv, "Plays a chime", &options, &exitCode)) return exitCode;

    // 1. Start: sound after the engine, which starts SDL.
    Chime chime;
    bool ok = example::start(options) && build(&chime);
    if (ok && !startSound(&chime.mixer)) std::printf("It is silent: %s\n", SDL_GetError());
    KTCAMERA camera;
    example::lookAt(&camera, 0.0f, 3.2f, 10.4f, 0.0f, 2.75f, 0.0f);
    KTINPUT input;
    KTCLOCK clock;
    clock.setStep(options.step);
    for (int frame = 1; ok && !input.hasQuit(); ++frame) {
        // 2. Per frame.
        update(&chime, clock.tick());
        input.update(clock.getRealSeconds());

        // 3. Draw. A tap is picked in a frame that is not shown, since picking changes a pixel.
        if (input.hasTapped() && draw(&chime, &camera))
            strike(&chime, static_cast<int>(KTVIEW::pick(input.getPoint())) - 1);
        ok = draw(&chime, &camera) && KELTRA::begin2D() && KELTRA::end2D();
        input.dispatch();
        if (!example::endFrame(options, frame, &ok)) break;
    }

    // 4. Stop: sound before the engine.
    stopSound();
    return example::stop(ok);
}
