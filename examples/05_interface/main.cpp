// SPDX-License-Identifier: Zlib
// An interface in front of a scene. One XML file describes all of it; the program finds the widgets by name,
// hands them pen and keys, and acts on what they report.

#include <GLES/gl.h>
#include <keltra/keltra.h>

#include <cmath>
#include <cstdio>

#include "examples/05_interface/court.h"
#include "examples/05_interface/pen.h"
#include "examples/support/example.h"

namespace {

// Of runs with a given number of frames, which must repeat exactly.
constexpr float kFrameTime = 1.0f / 30.0f;
constexpr float kDegree = 3.14159265f / 180.0f, kLow = 3.0f, kHigh = 12.0f;  // radians; heights of the view

struct Show {
    Court court;
    KTNODE *interface = nullptr;
    KTBUTTON *reset, *flash, *lights;
    KTTEXTFIELD *serpent;
    KTHSCROLLBAR *orbit;
    KTVSCROLLBAR *height;
    KTLABEL *readout;
    KTWINDOW *journal;
    float flashing = 0.0f;
};

// Adds a line to the journal and scrolls down to it; a full journal begins anew.
void note(const Show &show, const char *line) {
    if (!show.journal->write("^x0006%s\n", line)) show.journal->clear();
    show.journal->format();
    show.journal->updateScroll();
    show.journal->scrollBar->setValue(1.0f);
}

void light(Show *show, bool lit) {
    show->court.light(lit);
    show->lights->setColor(lit ? R3XVECTOR4D(0.8f, 0.3f, 0.0f, 1.0f) : show->reset->getColor());
}

bool loadInterface(Show *show) {
    KTNODE *root = show->interface = KELTRA::load("interface.xml");
    KTBOX *plain[3];
    if (!root || !find(root, "panel", KT_BOX, &plain[0]) || !find(root, "emblem", KT_BOX, &plain[1]) ||
        !find(root, "strip", KT_BOX, &plain[2]) || !find(root, "reset", KT_BUTTON, &show->reset) ||
        !find(root, "flash", KT_BUTTON, &show->flash) || !find(root, "lanterns", KT_BUTTON, &show->lights) ||
        !find(root, "serpent", KT_TEXTFIELD, &show->serpent) ||
        !find(root, "orbit", KT_HSCROLLBAR, &show->orbit) ||
        !find(root, "height", KT_VSCROLLBAR, &show->height) ||
        !find(root, "readout", KT_LABEL, &show->readout) ||
        !find(root, "journal", KT_WINDOW, &show->journal)) {
        return false;
    }
    // Settings that a description does not have: borders, ranges and first values.
    for (KTBOX *box : plain) box->setThickness(0);
    for (KTBUTTON *button : {show->reset, show->flash, show->lights}) button->setThickness(1);
    show->orbit->setMinValue(-36.0f);
    show->orbit->setMaxValue(36.0f);
    show->orbit->setValue(0.0f);
    show->height->setValue(0.6f);
    show->serpent->setCaption("");
    light(show, false);
    note(*show, "Moonrise.");
    note(*show, "Lamps out.");
    return true;
}

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
    KTSETTINGS settings;
    bool ok = settings.load((options.data + "scene.cfg").c_str());
    settings.setKTEPath(options.data.c_str());
    settings.setTexturePath(options.data.c_str());
    settings.setFontPath(options.data.c_str());
    if (!ok || !KELTRA::init(&settings)) {
        std::fprintf(stderr, "05_interface: no scene.cfg in %s, or no screen\n", options.data.c_str());
        return 1;
    }
    Show show;
    ok = show.court.load() && loadInterface(&show);
    if (!ok) std::fprintf(stderr, "05_interface: files are missing in %s\n", options.data.c_str());
    {
        KTCAMERA camera;
        camera.setTargetNode(&camera);  // itself: it looks at its fixed target
        camera.setTarget(0.0f, 6.4f, 0.0f);
        Pen pen;
        for (int frame = 1; ok && readPen(&pen); ++frame) {
            // 2. Per frame.
            const bool last = frame == options.frames;
            update(&show, &camera, options.frames > 0 ? kFrameTime : KELTRA::getFPSfactor());

            // 3. Draw, then hand over the input: widgets are looked for in the list that was just drawn.
            ok = draw(show, &camera);
            if (options.frames > 0) playPen(frame, &pen);
            unsigned int id = 0;
            KTELEMENT::manageGUIEvents(pen.key, pen.x, pen.y, pen.pressed, 0, &id);
            if (id) act(&show, id);
            if (ok && last && !options.shot.empty()) ok = example::saveShot(options.shot);
            ok = ok && KELTRA::swap() && glGetError() == GL_NO_ERROR;
            if (!ok) std::fprintf(stderr, "05_interface: frame %d could not be drawn\n", frame);
            if (last) break;
        }
    }

    // 4. Stop: the lists that own nodes, fonts and textures destroy them.
    KELTRA::setSkybox(nullptr);
    return KELTRA::free() && ok ? 0 : 1;
}
