// SPDX-License-Identifier: Zlib
// Distance: a sky around the eye, and fog of its colour. What is farther than the fog reaches is not drawn at
// all (`KTELEMENT::clippingOn`), and nobody sees it go. The fog is the GL's; a node of the program's own
// switches it on when the sky has been drawn. A tap shows what is there without it. Next: ways to move a
// camera (13_cameras).

#include <GLES/gl.h>
#include <keltra/keltra.h>
#include <keltra/kit/kit.h>

#include <cmath>

#include "examples/12_distance/fog.h"
#include "examples/support/example.h"

namespace {

constexpr float kRow = 3.0f;  // units between two rows of trees
constexpr int kRows = 24;

struct Wood {
    KTNODE world, trees;
    Fog fog;
};

void build(Wood *wood) {
    KTNODE *around = new KTNODE;
    makeSky()->link(around);
    KELTRA::setSkybox(around);
    KTMATERIAL *grass =
        KTSHAPES::makeMaterial("grass", 0.75f, 0.8f, 0.62f, example::loadTexture("scene_grass_d.tga"));
    KTMATERIAL *stone =
        KTSHAPES::makeMaterial("stone", 0.9f, 0.82f, 0.85f, example::loadTexture("scene_paving_d.tga"));
    KTMATERIAL *bark = KTSHAPES::makeMaterial("bark", 0.36f, 0.26f, 0.22f);
    KTMATERIAL *leaves =
        KTSHAPES::makeMaterial("leaves", 0.8f, 0.95f, 0.8f, example::loadTexture("scene_cypress_d.tga"));
    wood->fog.link(&wood->world);
    wood->trees.link(&wood->world);
    example::place(KTSHAPES::makePlane(90.0f, 90.0f, 24, 24, 30.0f), grass, &wood->trees, 0.0f, 0.0f, -30.0f);
    example::place(KTSHAPES::makePlane(2.0f, 90.0f, 2, 45), stone, &wood->trees, 0.0f, 0.02f, -30.0f);
    for (int i = 0; i < 2 * kRows; ++i) {
        const float side = i % 2 ? 1.0f : -1.0f, chance = std::sin(37.0f * float(i % 6) + 1.0f);
        const float x = side * (2.6f + 0.9f * std::fabs(chance)), z = -kRow * float(i / 2) + 0.5f * chance;
        const float height = 4.6f + 1.4f * chance;
        example::place(KTSHAPES::makeCylinder(0.2f, 0.16f, 1.4f, 8, false), bark, &wood->trees, x, 0.7f, z);
        example::place(KTSHAPES::makeCylinder(1.25f, 0.0f, height, 12), leaves, &wood->trees, x,
                       0.8f + 0.5f * height, z);
    }
    example::addLight(&wood->world, 0.75f, 0.6f, 0.5f, 0.0f)->setPosition(6.0f, 9.0f, 4.0f);
    KTOPENGL::setGlobalAmbientLight(0.50f, 0.46f, 0.56f, 1.0f);
    KTELEMENT::setClippingRadius(kReach);
}

}  // namespace

int main(int argc, char **argv) {
    example::Options options;
    int exitCode = 0;
    if (!example::parse(argc, argv, "Shows a sky and fog", &options, &exitCode)) return exitCode;

    // 1. Start.
    Wood wood;
    bool ok = example::start(options);
    if (ok) build(&wood);
    KTCAMERA camera;
    example::lookAt(&camera, 0.0f, 1.7f, 4.0f, 0.0f, 2.6f, -6.0f);
    KTINPUT input;
    KTCLOCK clock;
    clock.setStep(options.step);
    for (int frame = 1; ok && !input.hasQuit(); ++frame) {
        // 2. Per frame: the trees come closer; the pattern repeats after three rows.
        const float z = wood.trees.getPosition().z + 1.5f * clock.tick();
        wood.trees.setPosition(0.0f, 0.0f, z > 3.0f * kRow ? z - 3.0f * kRow : z);
        input.update(clock.getRealSeconds());
        if (input.hasTapped()) wood.fog.isOn = !wood.fog.isOn;
        wood.fog.isOn ? KTELEMENT::clippingOn() : KTELEMENT::clippingOff();

        // 3. Draw. The fog is taken off before the interface, and for the next frame's sky.
        ok = KELTRA::clear(true, true, false) && KELTRA::begin3D(&camera) && wood.world.pass() &&
             KELTRA::end3D();
        glDisable(GL_FOG);
        ok = ok && KELTRA::begin2D() && KELTRA::end2D();
        input.dispatch();
        if (!example::endFrame(options, frame, &ok)) break;
    }

    // 4. Stop.
    KTELEMENT::clippingOff();
    return example::stop(ok);
}
