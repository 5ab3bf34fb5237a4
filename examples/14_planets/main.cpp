// SPDX-License-Identifier: Zlib
// Hierarchy: a sun, planets that circle it, and moons that circle them. A node moves with its parent: each
// orbit is a plain node that turns, with the planet beside it and the next orbit below that. Next: from one
// animation to another (15_crossfades).

#include <keltra/keltra.h>
#include <keltra/kit/kit.h>

#include <cmath>
#include <vector>

#include "examples/support/example.h"

namespace {

struct Orbit {
    KTNODE *node;
    float degreesPerSecond;
};

struct Sky {
    KTNODE world;
    KTMESH *glow = nullptr;
    std::vector<Orbit> orbits;
};

// A body beside its parent, on an orbit of its own. Returns the body, around which moons go.
KTNODE *addBody(Sky *sky, KTNODE *parent, float distance, float size, float speed, float phase,
                KTMATERIAL *material) {
    KTNODE *orbit = new KTNODE;
    orbit->link(parent);
    orbit->setRotation(4.0f * std::sin(7.0f * distance), phase, 0.0f);  // each a little tilted
    sky->orbits.push_back({orbit, speed});
    return example::place(KTSHAPES::makeSphere(size, 20, 14), material, orbit, distance, 0.0f, 0.0f);
}

void addStars(KTNODE *world) {
    KTMATERIAL *light = KTSHAPES::makeMaterial("star", 0.0f, 0.0f, 0.0f);
    light->setEmission(0.85f, 0.88f, 1.0f, 1.0f);
    KTNODE *stars = new KTNODE;
    unsigned int seed = 7;  // numbers from -0.5 up to 0.5, the same on every machine
    const auto next = [&seed] { return float((seed = seed * 1103515245u + 12345u) >> 22) / 1024.0f - 0.5f; };
    for (int i = 0; i < 160; ++i) {
        const float x = next(), y = next(), size = i % 9 == 0 ? 0.34f : 0.2f;
        KTMESH *star = example::place(KTSHAPES::makeQuad(size, size), light, stars, 100.0f * x, 100.0f * y,
                                      -40.0f - 40.0f * next());
        KTSHAPES::faceEye(star, R3XVECTOR3D(0.0f, 0.0f, 0.0f), false);
    }
    example::place(KTSHAPES::merge(stars, light), light, world, 0.0f, 0.0f, 0.0f);  // one call of the GL
}

void build(Sky *sky) {
    KTMATERIAL *fire = KTSHAPES::makeMaterial("fire", 0.0f, 0.0f, 0.0f);
    fire->setEmission(1.0f, 0.85f, 0.45f, 1.0f);
    KTMATERIAL *corona =
        KTSHAPES::makeMaterial("corona", 0.0f, 0.0f, 0.0f, example::loadTexture("scene_glow_d.tga"));
    corona->setEmission(1.0f, 0.65f, 0.25f, 1.0f);
    corona->setTransparency(0.98f);
    example::place(KTSHAPES::makeSphere(1.1f, 24, 16), fire, &sky->world, 0.0f, 0.0f, 0.0f);
    sky->glow = example::place(KTSHAPES::makeQuad(8.0f, 8.0f), corona, &sky->world, 0.0f, 0.0f, 0.0f);
    sky->glow->radius =
        0.0f;  // what is transparent is sorted by the far end of its sphere: here by its middle
    example::addLight(&sky->world, 1.3f, 1.2f, 1.05f, 0.0f);  // in the middle of the sun
    KTMATERIAL *rock = KTSHAPES::makeMaterial("rock", 0.75f, 0.62f, 0.5f);
    KTMATERIAL *sea =
        KTSHAPES::makeMaterial("sea", 0.45f, 0.7f, 1.0f, example::loadTexture("scene_water_d.tga"));
    KTTEXTURE *bands = example::loadTexture("scene_sky_d.tga");
    KTMATERIAL *giant = KTSHAPES::makeMaterial("giant", 1.0f, 0.9f, 0.8f, bands);
    KTMATERIAL *ring = KTSHAPES::makeMaterial("ring", 0.9f, 0.8f, 0.65f);
    ring->setEmission(0.36f, 0.30f, 0.24f, 1.0f);
    ring->setTransparency(0.6f);
    addBody(sky, &sky->world, 1.9f, 0.22f, 70.0f, 200.0f, rock);
    KTNODE *blue = addBody(sky, &sky->world, 3.1f, 0.42f, 40.0f, 330.0f, sea);
    addBody(sky, blue, 0.8f, 0.13f, 120.0f, 40.0f, rock);
    KTNODE *large = addBody(sky, &sky->world, 4.9f, 0.8f, 18.0f, 78.0f, giant);
    example::place(KTSHAPES::makeCylinder(1.5f, 1.5f, 0.02f, 32), ring, large, 0.0f, 0.0f, 0.0f)
        ->setRotation(18.0f, 0.0f, 8.0f);
    addBody(sky, large, 1.9f, 0.16f, 80.0f, 100.0f, rock);
    addStars(&sky->world);
    KTOPENGL::setGlobalAmbientLight(0.10f, 0.10f, 0.16f, 1.0f);
    KTOPENGL::setBackgroundColor(0.02f, 0.02f, 0.06f, 1.0f);
}

}  // namespace

int main(int argc, char **argv) {
    example::Options options;
    int exitCode = 0;
    if (!example::parse(argc, argv, "Shows planets and their moons", &options, &exitCode)) return exitCode;

    // 1. Start.
    bool ok = example::start(options);
    Sky sky;
    if (ok) build(&sky);
    KTCAMERA camera;
    KTORBIT view;
    view.setDistance(14.5f);
    view.setAngles(0.0f, 26.0f);
    KTINPUT input;
    KTCLOCK clock;
    clock.setStep(options.step);
    for (int frame = 1; ok && !input.hasQuit(); ++frame) {
        // 2. Per frame: only the orbits turn; all below them follows.
        const float seconds = clock.tick();
        input.update(clock.getRealSeconds());
        for (const Orbit &orbit : sky.orbits)
            orbit.node->rotate(0.0f, orbit.degreesPerSecond * seconds, 0.0f);
        view.update(&camera);
        KTSHAPES::faceEye(sky.glow, camera.getPosition(), false);

        // 3. Draw.
        ok = KELTRA::clear(true, true, false) && KELTRA::begin3D(&camera) && sky.world.pass() &&
             KELTRA::end3D();
        if (!example::endFrame(options, frame, &ok)) break;
    }

    // 4. Stop.
    return example::stop(ok);
}
