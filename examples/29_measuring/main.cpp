// SPDX-License-Identifier: Zlib
// Measuring a frame: how long its parts take, as bars, beside what it draws: entries of the render list,
// meshes in view, lights, video memory. A drag turns the view, which changes them. This is the last lesson;
// docs/kit.md and docs/performance.md go on.

#include <keltra/keltra.h>
#include <keltra/kit/kit.h>

#include "examples/29_measuring/meter.h"
#include "examples/support/example.h"

namespace {

const char *const kNames[kParts] = {"update", "pass", "draw", "swap"};
constexpr float kColors[kParts][3] = {
    {0.45f, 0.75f, 0.45f}, {0.45f, 0.65f, 0.95f}, {0.95f, 0.65f, 0.3f}, {0.7f, 0.5f, 0.85f}};

struct Show {
    KTNODE *scene = nullptr;
    KTNODE panel;
    KTBOX *bars[kParts];
    KTLABEL *text = nullptr;
};

bool load(Show *show) {
    show->scene = example::loadScene();
    if (!show->scene) return false;
    KTBOX *back = new KTBOX;
    back->setSizes(240, 104);
    back->setPosition(0.0f, 216.0f);
    back->setThickness(0);
    back->setColor(0.08f, 0.07f, 0.15f, 0.8f);
    back->link(&show->panel);
    for (int part = 0; part < kParts; ++part) {
        KTBOX *bar = show->bars[part] = new KTBOX;
        bar->setThickness(0);
        bar->setColor(kColors[part][0], kColors[part][1], kColors[part][2], 1.0f);
        bar->setPosition(70.0f, 6.0f + 17.0f * static_cast<float>(part));
        bar->link(back);
    }
    show->text = new KTLABEL;
    show->text->setFont(example::loadFont());
    show->text->setPosition(6.0f, 2.0f);
    show->text->link(back);
    return true;
}

// Four pixels for a millisecond. Called after the 3D pass, while its list stands.
void tell(Show *show, const Meter &meter, const KTVIEW &view) {
    for (int part = 0; part < kParts; ++part)
        show->bars[part]->setSizes(
            2 + static_cast<int>(4.0f * (meter.get(part) < 40.0f ? meter.get(part) : 40.0f)), 10);
    show->text->write(
        "^c8888%s\n%s\n%s\n%s\n^c8886%u entries, %u meshes in view\n%u lights, %u KB of textures", kNames[0],
        kNames[1], kNames[2], kNames[3], KTELEMENT::getNumberOfPassedElements(),
        view.findSeen(show->scene, nullptr, 0), KTELEMENT::getNumberOfLights(),
        KTENGINESTATE::getUsedVideoMemory() / 1024);
}

}  // namespace

int main(int argc, char **argv) {
    example::Options options;
    int exitCode = 0;
    if (!example::parse(argc, argv, "Shows what a frame takes", &options, &exitCode)) return exitCode;

    // 1. Start.
    Show show;
    bool ok = example::start(options, "scene.cfg") && load(&show);
    KTCAMERA camera;
    KTORBIT orbit;
    orbit.setCenter(R3XVECTOR3D(0.0f, 5.0f, 0.0f));
    orbit.setDistance(21.0f);
    orbit.setAngles(-18.0f, 4.0f);
    KTVIEW view;
    KTINPUT input;
    KTCLOCK clock;
    clock.setStep(options.step);
    Meter meter(options.frames > 0);
    for (int frame = 1; ok && !input.hasQuit(); ++frame) {
        // 2. Per frame.
        meter.begin();
        input.update(clock.tick());
        orbit.drag(input.getDrag());
        orbit.update(&camera);
        meter.end(kUpdate);

        // 3. Draw: a pass fills the render list, the end of it draws the list.
        ok = KELTRA::clear(true, true, false) && KELTRA::begin3D(&camera) && show.scene->pass();
        view.take();
        meter.end(kPass);
        ok = ok && KELTRA::end3D();
        tell(&show, meter, view);
        ok = ok && KELTRA::begin2D() && show.panel.pass() && KELTRA::end2D();
        input.dispatch();
        meter.end(kDraw);
        if (!example::endFrame(options, frame, &ok)) break;
        meter.end(kSwap);
    }

    // 4. Stop.
    return example::stop(ok);
}
