// SPDX-License-Identifier: Zlib
// A film of the screen: a flight through the court, of which each picture is saved, however long that takes.
// The clock goes in steps of a picture, so that the film runs evenly. At the end stands the command that
// makes a film of them, as lesson 07_video takes it. Next: what a frame takes (29_measuring).

#include <keltra/keltra.h>
#include <keltra/kit/kit.h>

#include <cstdio>
#include <filesystem>
#include <string>

#include "examples/support/example.h"

namespace {

constexpr int kRate = 25, kPictures = 250;  // a second, and in all

struct Show {
    KTNODE *scene = nullptr;
    KTRAIL rail;
    KTNODE panel;
    KTBOX *bar = nullptr;
    KTLABEL *told = nullptr;
};

bool load(Show *show) {
    show->scene = example::loadScene();
    if (!show->scene) return false;

    const R3XVECTOR3D head(0.5f, 8.5f, 0.0f);
    show->rail.addPoint(R3XVECTOR3D(-7.0f, 3.0f, 14.0f), R3XVECTOR3D(0.0f, 4.5f, 0.0f), 2.5f);
    show->rail.addPoint(R3XVECTOR3D(4.0f, 5.0f, 13.0f), head, 2.5f);
    show->rail.addPoint(R3XVECTOR3D(6.5f, 8.0f, 8.5f), head, 2.5f);
    show->rail.addPoint(R3XVECTOR3D(-1.0f, 10.5f, 14.0f), R3XVECTOR3D(0.0f, 6.5f, 0.0f), 2.5f);
    show->rail.addPoint(R3XVECTOR3D(-5.0f, 6.5f, 20.0f), R3XVECTOR3D(0.0f, 5.5f, 0.0f), 2.5f);
    return true;
}

void buildPanel(Show *show) {
    KTBOX *boxes[2];
    for (KTBOX *&box : boxes) {
        box = new KTBOX;
        box->setThickness(0);
        box->link(&show->panel);
    }
    boxes[0]->setSizes(240, 30);
    boxes[0]->setPosition(0.0f, 290.0f);
    boxes[0]->setColor(0.08f, 0.07f, 0.15f, 0.85f);
    show->bar = boxes[1];
    show->bar->setPosition(0.0f, 290.0f);
    show->bar->setColor(0.85f, 0.45f, 0.15f, 1.0f);
    show->told = new KTLABEL;
    show->told->setFont(example::loadFont());
    show->told->setPosition(8.0f, 298.0f);
    show->told->link(&show->panel);
}

std::string nameOf(const std::string &folder, int picture) {
    char number[16];
    std::snprintf(number, sizeof number, "/%04d.tga", picture);
    return folder + number;
}

}  // namespace

int main(int argc, char **argv) {
    example::Options options;
    int exitCode = 0;
    if (!example::parse(argc, argv, "Saves the pictures of a film", &options, &exitCode)) return exitCode;

    // 1. Start. A run with a given number of frames leaves nothing behind.
    const bool isScripted = options.frames > 0;
    Show show;
    bool ok = example::start(options, "scene.cfg") && load(&show);
    std::string folder = "capture";
    if (isScripted)
        folder += "_" + std::to_string(KTSETTINGS::getSDLColorDepth()) + "_" + std::to_string(options.frames);
    std::error_code failed;
    std::filesystem::create_directory(folder, failed);
    ok = ok && !failed;
    if (ok) buildPanel(&show);
    KTCAMERA camera;
    camera.setTargetNode(&camera);  // itself: it looks at its fixed target
    KTINPUT input;
    KTCLOCK clock;
    clock.setStep(1.0f / kRate);  // whatever the system's clock says
    int frame = 1;
    for (; ok && !input.hasQuit(); ++frame) {
        // 2. Per frame.
        show.rail.update(&camera, clock.tick());
        input.update(clock.getRealSeconds());
        show.bar->setSizes(240 * frame / (isScripted ? options.frames : kPictures), 4);
        show.told->write("^c8888Picture %d", frame);

        // 3. Draw. Saved is what has been drawn so far: the scene, without the interface.
        ok = KELTRA::clear(true, true, false) && KELTRA::begin3D(&camera) && show.scene->pass() &&
             KELTRA::end3D() && KTVIEW::saveScreenshot(nameOf(folder, frame).c_str()) && KELTRA::begin2D() &&
             show.panel.pass() && KELTRA::end2D();
        input.dispatch();
        if (!example::endFrame(options, frame, &ok) || (!isScripted && frame == kPictures)) break;
    }

    // 4. Stop.
    if (isScripted) std::filesystem::remove_all(folder, failed);
    const char *const command =
        "ffmpeg -framerate %d -i %s/%%04d.tga -vf scale=96:128,pad=128:128:-1:-1 "
        "-c:v mpeg1video -b:v 900k -f mpeg1video film.m1v\n";
    if (!isScripted) std::printf(command, kRate, folder.c_str());
    return example::stop(ok);
}
