// SPDX-License-Identifier: Zlib
// Lights and attenuation: three lamps circle over a courtyard at night. Each lights what is near it; the four
// nearest light an object, and vertices are lit, so ground that lamps move over is made of small squares.
// Next: what one sees through (11_transparency).

#include <keltra/keltra.h>
#include <keltra/kit/kit.h>

#include <cmath>

#include "examples/support/example.h"

namespace {

constexpr int kLamps = 3, kPillars = 8;
constexpr float kTurn = 6.2831853f;

struct Lamp {
    KTNODE *node;
    float radius, height, speed, phase;
};

// A lamp is a light and a small bright ball with a glow around it, below one node.
KTNODE *makeLamp(KTNODE *world, float r, float g, float b, KTTEXTURE *glow) {
    KTNODE *lamp = new KTNODE;
    lamp->link(world);
    example::addLight(lamp, 2.2f * r, 2.2f * g, 2.2f * b, 2.2f);  // half as strong 2.2 units away
    KTMATERIAL *bulb = KTSHAPES::makeMaterial("bulb", 0.0f, 0.0f, 0.0f);
    bulb->setEmission(0.5f + 0.5f * r, 0.5f + 0.5f * g, 0.5f + 0.5f * b, 1.0f);
    example::place(KTSHAPES::makeSphere(0.13f), bulb, lamp, 0.0f, 0.0f, 0.0f);
    KTMATERIAL *halo = KTSHAPES::makeMaterial("halo", 0.0f, 0.0f, 0.0f, glow);
    halo->setEmission(r, g, b, 1.0f);
    halo->setTransparency(0.95f);  // below 1 a texture shows its own alpha
    example::place(KTSHAPES::makeQuad(3.0f, 3.0f), halo, lamp, 0.0f, 0.0f, 0.0f);
    return lamp;
}

void build(KTNODE *world, Lamp *lamps) {
    KTMATERIAL *paving =
        KTSHAPES::makeMaterial("paving", 0.9f, 0.9f, 1.0f, example::loadTexture("scene_paving_d.tga"));
    KTMATERIAL *stone =
        KTSHAPES::makeMaterial("stone", 1.0f, 0.95f, 0.9f, example::loadTexture("scene_column_d.tga"));
    example::place(KTSHAPES::makePlane(16.0f, 16.0f, 24, 24, 4.0f), paving, world, 0.0f, 0.0f, 0.0f);
    for (int i = 0; i < kPillars; ++i) {
        const float angle = kTurn * static_cast<float>(i) / kPillars;
        const float x = 4.6f * std::sin(angle), z = 4.6f * std::cos(angle);
        const float height = i % 3 == 1 ? 1.4f : 3.0f;  // some are broken
        example::place(KTSHAPES::makeCylinder(0.42f, 0.36f, height, 14), stone, world, x, 0.5f * height, z);
        example::place(KTSHAPES::makeBox(1.1f, 0.3f, 1.1f), stone, world, x, 0.15f, z);
    }
    KTMATERIAL *brass = KTSHAPES::makeMaterial("brass", 0.9f, 0.85f, 0.8f);
    example::place(KTSHAPES::makeSphere(1.0f, 24, 16), brass, world, 0.0f, 1.0f, 0.0f);
    KTTEXTURE *glow = example::loadTexture("scene_glow_d.tga");
    lamps[0] = {makeLamp(world, 1.0f, 0.55f, 0.15f, glow), 2.3f, 1.5f, 0.7f, 0.3f};
    lamps[1] = {makeLamp(world, 0.2f, 0.55f, 1.0f, glow), 3.3f, 0.9f, -0.5f, 1.2f};
    lamps[2] = {makeLamp(world, 0.9f, 0.2f, 0.6f, glow), 3.0f, 2.2f, 0.4f, 3.9f};
    KTOPENGL::setGlobalAmbientLight(0.13f, 0.13f, 0.22f, 1.0f);
    KTOPENGL::setBackgroundColor(0.03f, 0.03f, 0.08f, 1.0f);
}

}  // namespace

int main(int argc, char **argv) {
    example::Options options;
    int exitCode = 0;
    if (!example::parse(argc, argv, "Shows lamps and how far they reach", &options, &exitCode))
        return exitCode;

    // 1. Start.
    bool ok = example::start(options);
    KTNODE world;
    Lamp lamps[kLamps];
    if (ok) build(&world, lamps);
    KTCAMERA camera;
    KTORBIT orbit;
    orbit.setCenter(R3XVECTOR3D(0.0f, 0.8f, 0.0f));
    orbit.setDistance(12.0f);
    orbit.setAngles(20.0f, 24.0f);
    KTINPUT input;
    KTCLOCK clock;
    clock.setStep(options.step);
    float time = 0.0f;
    for (int frame = 1; ok && !input.hasQuit(); ++frame) {
        // 2. Per frame: the lamps circle, and a drag turns the view.
        time += clock.tick();
        input.update(clock.getRealSeconds());
        orbit.drag(input.getDrag());
        orbit.update(&camera);
        for (const Lamp &lamp : lamps) {
            const float angle = lamp.phase + lamp.speed * time;
            lamp.node->setPosition(lamp.radius * std::sin(angle), lamp.height + 0.2f * std::sin(2.0f * time),
                                   lamp.radius * std::cos(angle));
            KTSHAPES::faceEye(lamp.node, camera.getPosition(), false);  // halos are flat
        }

        // 3. Draw.
        ok = KELTRA::clear(true, true, false) && KELTRA::begin3D(&camera) && world.pass() &&
             KELTRA::end3D() && KELTRA::begin2D() && KELTRA::end2D();
        input.dispatch();
        if (!example::endFrame(options, frame, &ok)) break;
    }

    // 4. Stop.
    return example::stop(ok);
}
