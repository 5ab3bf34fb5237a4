// SPDX-License-Identifier: Zlib
// Particles in code: a camp fire, rain, and a burst of sparks at a tap. All emitters share 1,024 particles.
// Next: the device on its side (23_landscape).

#include <keltra/keltra.h>
#include <keltra/kit/kit.h>

#include <cmath>

#include "examples/22_weather/emitters.h"
#include "examples/support/example.h"

namespace {

struct Show {
    KTNODE world;
    KTLIGHT *light = nullptr;
    KTEMITTER *burst = nullptr;
    float time = 0.0f, sinceBurst = 0.0f;
};

void build(Show *show) {
    KTNODE *world = &show->world;
    KTMATERIAL *grass =
        KTSHAPES::makeMaterial("grass", 0.8f, 0.85f, 0.8f, example::loadTexture("scene_grass_d.tga"));
    KTMATERIAL *wood = KTSHAPES::makeMaterial("wood", 0.5f, 0.32f, 0.2f);
    KTMATERIAL *stone = KTSHAPES::makeMaterial("stone", 0.55f, 0.55f, 0.6f);
    example::place(KTSHAPES::makePlane(14.0f, 14.0f, 20, 20, 5.0f), grass, world, 0.0f, 0.0f, 0.0f);
    for (int i = 0; i < 9; ++i) {
        const float angle = 0.698f * static_cast<float>(i);
        example::place(KTSHAPES::makeSphere(0.2f, 8, 6), stone, world, 0.95f * std::sin(angle), 0.1f,
                       0.95f * std::cos(angle));
        if (i % 2) continue;
        KTNODE *log = example::place(KTSHAPES::makeCylinder(0.11f, 0.09f, 1.1f, 8), wood, world,
                                     0.22f * std::sin(angle), 0.42f, 0.22f * std::cos(angle));
        log->setRotation(-32.0f * std::cos(angle), 0.0f, 32.0f * std::sin(angle));
    }
    show->light = example::addLight(world, 1.9f, 1.0f, 0.4f, 1.7f);
    show->light->setPosition(0.0f, 1.0f, 0.4f);
    addFireAndRain(world);
    show->burst = makeEmitter(0, 120, 100, 60, 12, "spark.tga");
    show->burst->setGravity(0.0f, -4.0f, 0.0f);
    show->burst->setColorStart(1.0f, 0.9f, 0.5f);
    show->burst->setColorEnd(0.9f, 0.3f, 0.6f);
    KTOPENGL::setGlobalAmbientLight(0.16f, 0.18f, 0.28f, 1.0f);
    KTOPENGL::setBackgroundColor(0.07f, 0.08f, 0.15f, 1.0f);
}

// Particles start anew at their end: a burst is taken away before that.
void update(Show *show, float seconds, bool tapped) {
    show->time += seconds;
    show->sinceBurst += seconds;
    const float flicker = 0.12f * std::sin(17.0f * show->time) + 0.08f * std::sin(29.0f * show->time + 1.0f);
    show->light->setDiffuse(1.9f + flicker, 1.0f + 0.6f * flicker, 0.4f, 1.0f);
    if (!show->burst->isRoot() && show->sinceBurst > 1.4f) show->burst->unlink();
    if (!tapped && show->sinceBurst < 2.5f) return;
    if (show->burst->isRoot()) show->burst->link(&show->world);
    show->burst->setPosition(1.3f * std::sin(2.0f * show->time), 3.6f, 0.0f);
    show->burst->initialize();  // all anew, from the center
    show->sinceBurst = 0.0f;
}

}  // namespace

int main(int argc, char **argv) {
    example::Options options;
    int exitCode = 0;
    if (!example::parse(argc, argv, "Shows fire, rain and sparks", &options, &exitCode)) return exitCode;

    // 1. Start. Emitters go by the engine's time, which is the clock's once it is started.
    KTCLOCK clock;
    clock.setStep(options.step);
    clock.start();
    bool ok = example::start(options);
    Show show;
    if (ok) build(&show);
    show.sinceBurst = 1.6f;
    KTCAMERA camera;
    example::lookAt(&camera, 0.0f, 2.4f, 8.2f, 0.0f, 2.0f, 0.0f);
    KTINPUT input;
    for (int frame = 1; ok && !input.hasQuit(); ++frame) {
        // 2. Per frame.
        const float seconds = clock.tick();
        input.update(clock.getRealSeconds());
        update(&show, seconds, input.hasTapped());

        // 3. Draw.
        ok = KELTRA::clear(true, true, false) && KELTRA::begin3D(&camera) && show.world.pass() &&
             KELTRA::end3D() && KELTRA::begin2D() && KELTRA::end2D();
        input.dispatch();
        if (!example::endFrame(options, frame, &ok)) break;
    }

    // 4. Stop.
    return example::stop(ok);
}
