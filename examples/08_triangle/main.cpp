// SPDX-License-Identifier: Zlib
// A mesh from arrays: one triangle. It is white; three coloured lamps near its corners light each of them in
// another colour, and the GL mixes between them. Next: pictures on a mesh (09_textures).

#include <keltra/keltra.h>
#include <keltra/kit/kit.h>

#include "examples/support/example.h"

namespace {

// Three corners counter-clockwise, seen from the front, and the one face that they make.
constexpr float kVertices[] = {-1.5f, -1.2f, 0.0f, 1.5f, -1.2f, 0.0f, 0.0f, 1.4f, 0.0f};
constexpr std::uint16_t kFaces[] = {0, 1, 2};

void build(KTNODE *world, KTNODE *turning) {
    // Without normals, those of the faces are taken.
    const KTARRAYS arrays = {kVertices, nullptr, nullptr, 3, kFaces, 1};
    KTMATERIAL *white = KTSHAPES::makeMaterial("white", 1.0f, 1.0f, 1.0f);
    // Only fronts are drawn: a second triangle, turned around, is the back.
    example::place(KTSHAPES::makeArrays(arrays), white, turning, 0.0f, 0.0f, 0.0f);
    example::place(KTSHAPES::makeArrays(arrays), white, turning, 0.0f, 0.0f, 0.0f)->setRotation(0, 180, 0);
    turning->link(world);
    for (int i = 0; i < 3; ++i) {
        KTLIGHT *lamp =
            example::addLight(world, i == 0 ? 3.6f : 0.0f, i == 1 ? 3.2f : 0.0f, i == 2 ? 3.6f : 0.2f, 0.8f);
        lamp->setPosition(kVertices[3 * i] * 1.1f, kVertices[3 * i + 1] * 1.1f, 0.9f);
    }
    KTOPENGL::setGlobalAmbientLight(0.06f, 0.06f, 0.09f, 1.0f);
    KTOPENGL::setBackgroundColor(0.07f, 0.07f, 0.11f, 1.0f);
}

}  // namespace

int main(int argc, char **argv) {
    example::Options options;
    int exitCode = 0;
    if (!example::parse(argc, argv, "Shows a triangle made of arrays", &options, &exitCode)) return exitCode;

    // 1. Start.
    bool ok = example::start(options);
    KTNODE world, turning;
    if (ok) build(&world, &turning);
    KTCAMERA camera;
    camera.setPosition(0.0f, 0.0f, 5.5f);
    KTINPUT input;
    KTCLOCK clock;
    clock.setStep(options.step);
    for (int frame = 1; ok && !input.hasQuit(); ++frame) {
        // 2. Per frame.
        turning.rotate(0.0f, 12.0f * clock.tick(), 0.0f);
        input.update(clock.getRealSeconds());

        // 3. Draw.
        ok = KELTRA::clear(true, true, false) && KELTRA::begin3D(&camera) && world.pass() &&
             KELTRA::end3D() && KELTRA::begin2D() && KELTRA::end2D();
        if (!example::endFrame(options, frame, &ok)) break;
    }

    // 4. Stop.
    return example::stop(ok);
}
