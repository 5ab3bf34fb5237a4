// SPDX-License-Identifier: Zlib
// Transparency and order: panes of coloured glass turn around a lamp. What is transparent is drawn after all
// else, from back to front, so that each pane tints what is behind it; the far ends of their bounding spheres
// count. Next: sky and fog (12_distance).

#include <keltra/keltra.h>
#include <keltra/kit/kit.h>

#include <cmath>

#include "examples/support/example.h"

namespace {

constexpr int kPanes = 7;
constexpr float kTurn = 6.2831853f;
constexpr float kColors[kPanes][3] = {{1.0f, 0.25f, 0.2f},  {1.0f, 0.6f, 0.1f},  {0.95f, 0.9f, 0.2f},
                                      {0.3f, 0.85f, 0.35f}, {0.2f, 0.7f, 0.95f}, {0.35f, 0.35f, 0.95f},
                                      {0.85f, 0.3f, 0.85f}};

void build(KTNODE *world, KTNODE *ring, KTNODE **panes) {
    KTMATERIAL *ground =
        KTSHAPES::makeMaterial("ground", 0.75f, 0.7f, 0.75f, example::loadTexture("scene_mosaic_d.tga"));
    example::place(KTSHAPES::makePlane(9.0f, 9.0f, 16, 16, 3.0f), ground, world, 0.0f, -1.4f, 0.0f);
    KTMATERIAL *stand = KTSHAPES::makeMaterial("stand", 0.5f, 0.42f, 0.35f);
    example::place(KTSHAPES::makeCylinder(0.45f, 0.25f, 0.9f, 16), stand, world, 0.0f, -0.95f, 0.0f);
    KTMATERIAL *flame = KTSHAPES::makeMaterial("flame", 0.0f, 0.0f, 0.0f);
    flame->setEmission(1.0f, 0.95f, 0.8f, 1.0f);
    example::place(KTSHAPES::makeSphere(0.5f, 20, 14), flame, world, 0.0f, 0.0f, 0.0f);
    example::addLight(world, 1.2f, 1.1f, 0.9f, 4.0f);
    ring->link(world);
    for (int i = 0; i < kPanes; ++i) {
        const float *c = kColors[i];
        KTMATERIAL *glass = KTSHAPES::makeMaterial("glass", c[0], c[1], c[2]);
        glass->setEmission(0.35f * c[0], 0.35f * c[1], 0.35f * c[2], 1.0f);
        glass->setTransparency(0.45f);  // 1 is opaque; both sides of what is transparent are drawn
        const float angle = kTurn * static_cast<float>(i) / kPanes;
        panes[i] = example::place(KTSHAPES::makeBox(1.25f, 2.3f, 0.08f), glass, ring, 1.9f * std::sin(angle),
                                  0.0f, 1.9f * std::cos(angle));
        panes[i]->setRotation(0.0f, angle * 360.0f / kTurn, 0.0f);
    }
    KTOPENGL::setGlobalAmbientLight(0.3f, 0.28f, 0.36f, 1.0f);
    KTOPENGL::setBackgroundColor(0.16f, 0.13f, 0.22f, 1.0f);
}

}  // namespace

int main(int argc, char **argv) {
    example::Options options;
    int exitCode = 0;
    if (!example::parse(argc, argv, "Shows panes of glass", &options, &exitCode)) return exitCode;

    // 1. Start.
    bool ok = example::start(options);
    KTNODE world, ring;
    KTNODE *panes[kPanes];
    if (ok) build(&world, &ring, panes);
    KTCAMERA camera;
    example::lookAt(&camera, 0.0f, 1.9f, 7.2f, 0.0f, -0.15f, 0.0f);
    KTINPUT input;
    KTCLOCK clock;
    clock.setStep(options.step);
    float time = 0.0f;
    for (int frame = 1; ok && !input.hasQuit(); ++frame) {
        // 2. Per frame: the ring turns, and the panes rise and sink a little.
        time += clock.tick();
        input.update(clock.getRealSeconds());
        ring.setRotation(0.0f, 20.0f * time, 0.0f);
        for (int i = 0; i < kPanes; ++i)
            panes[i]->setOrigin(0.0f, 0.18f * std::sin(time + 1.8f * float(i)), 0.0f);

        // 3. Draw: the order in which nodes are passed does not matter.
        ok = KELTRA::clear(true, true, false) && KELTRA::begin3D(&camera) && world.pass() &&
             KELTRA::end3D() && KELTRA::begin2D() && KELTRA::end2D();
        if (!example::endFrame(options, frame, &ok)) break;
    }

    // 4. Stop.
    return example::stop(ok);
}
