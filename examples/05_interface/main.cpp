// SPDX-License-Identifier: Zlib
// An interface in front of a scene. One XML file describes all of it; the program finds the widgets by name,
// hands them pen and keys, and acts on what they report. Next: particles
// (06_particles).

#include <keltra/keltra.h>
#include <keltra/kit/kit.h>

#include <cmath>

#include "examples/05_interface/script.h"
#include "examples/05_interface/widgets.h"
#include "examples/support/example.h"

namespace {

constexpr float kDegree = 3.14159265f / 180.0f, kLow = 3.0f, kHigh = 12.0f;  // radians; heights of the view

// Acts on the widget that reported itself, if any.
void act(Show *show, unsigned id) {
    if (id == show->reset->getId()) {
        show->orbit->setValue(0.0f);
        show->height->setValue(0.6f);
        note(*show, "View reset.");
    } else if (id == show->flash->getId()) {
        show->flashing = 1.0f;
        note(*show, "Lightning!");
    } else if (id == show->lights->getId()) {
        light(show, show->lights->isClicked());
        note(*show, show->lights->isClicked() ? "Lamps lit." : "Lamps out.");
    }
}

void update(Show *show, KTCAMERA *camera, float seconds) {
    const float orbit = show->orbit->getValue();
    const float height = kHigh + (kLow - kHigh) * show->height->getValue();
    camera->setPosition(21.0f * std::sin(orbit * kDegree), height, 21.0f * std::cos(orbit * kDegree));
    show->flashing = std::fmax(show->flashing - 1.8f * seconds, 0.0f);
    show->court.turn(orbit, show->flashing);
    show->readout->write("^c8638Orbit ^c8888%d   ^c8638Height ^c8888%.1f",
                         static_cast<int>(std::lround(orbit)), static_cast<double>(height));
}

bool draw(const Show &show, KTCAMERA *camera) {
    return KELTRA::clear(true, true, false) && KELTRA::begin3D(camera) && show.court.scene->pass() &&
           KELTRA::end3D() && KELTRA::begin2D() && show.interface->pass() && KELTRA::end2D();
}

}  // namespace

int main(int argc, char **argv) {
    example::Options options;
    int exitCode = 0;
    if (!example::parse(argc, argv, "Shows an interface from an XML file", &options, &exitCode))
        return exitCode;

    // 1. Start.
    Show show;
    bool ok = example::start(options, "scene.cfg") && show.court.load() && loadInterface(&show);
    KTCAMERA camera;
    camera.setTargetNode(&camera);  // itself: it looks at its fixed target
    camera.setTarget(0.0f, 6.4f, 0.0f);
    KTINPUT input;
    KTCLOCK clock;
    clock.setStep(options.step);
    clock.start();  // the caret of the field blinks by it
    for (int frame = 1; ok && !input.hasQuit(); ++frame) {
        // 2. Per frame.
        update(&show, &camera, clock.tick());
        if (options.frames > 0)
            playScript(frame, &input);
        else
            input.update(clock.getRealSeconds());

        // 3. Draw, then hand over the input: widgets are looked for in the list that was just drawn.
        ok = draw(show, &camera);
        if (unsigned id = input.dispatch()) act(&show, id);
        if (!example::endFrame(options, frame, &ok)) break;
    }

    // 4. Stop: the lists that own nodes, fonts and textures destroy them.
    return example::stop(ok);
}
