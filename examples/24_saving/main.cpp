// SPDX-License-Identifier: Zlib
// Saving: a garden whose lanterns stay as they were left. Each tap is written at once to garden.sav in the
// current folder, so that a pulled battery loses nothing. Next: sprites (25_sprites).

#include <keltra/keltra.h>
#include <keltra/kit/kit.h>

#include <cstdio>
#include <string>
#include <vector>

#include "examples/support/example.h"

namespace {

struct Garden {
    KTNODE *stage = nullptr;
    std::vector<KTMESH *> lanterns;  // the child of each is the light around it
    std::string file;
    KTSAVE save;
    KTLABEL *told = nullptr;
};

std::string nameOf(std::size_t index) { return "lantern" + std::to_string(index + 1); }

void show(KTMESH *lantern, bool lit) {
    static_cast<KTMESH *>(lantern->getChild(0))->setDisplayStatus(lit);
    KTMATERIAL *paper = lantern->getMaterial();
    paper->setEmission(paper->getDiffuse() * (lit ? 0.8f : 0.0f));
}

bool load(Garden *garden) {
    garden->stage = example::loadWithSky("garden.kte");
    if (!garden->stage) return false;
    KTOPENGL::setGlobalAmbientLight(0.36f, 0.33f, 0.48f, 1.0f);
    while (KTNODE *lantern = garden->stage->findByNameInHierarchy(nameOf(garden->lanterns.size()).c_str())) {
        lantern->setAuxId(static_cast<unsigned>(garden->lanterns.size() + 1));
        lantern->getChild(0)->setAuxId(lantern->getAuxId());
        garden->lanterns.push_back(static_cast<KTMESH *>(lantern));
    }
    example::smoothTextures();
    garden->told = new KTLABEL;
    garden->told->setFont(example::loadFont());
    garden->told->setPosition(8.0f, 298.0f);
    return true;
}

// A file that is not there is an ordinary beginning; a damaged one is told about, and forgotten.
void resume(Garden *garden) {
    if (vnfFileExists(garden->file.c_str()) && !garden->save.read(garden->file.c_str())) garden->save.clear();
    for (std::size_t i = 0; i < garden->lanterns.size(); ++i)
        show(garden->lanterns[i], garden->save.getInt(nameOf(i).c_str()) != 0);
    garden->told->write("^c8886Visit %d", garden->save.getInt("visits") + 1);
}

bool tap(Garden *garden, unsigned code) {
    if (code < 1 || code > garden->lanterns.size()) return true;
    const std::string name = nameOf(code - 1);
    const bool lit = garden->save.getInt(name.c_str()) == 0;
    show(garden->lanterns[code - 1], lit);
    return garden->save.setInt(name.c_str(), lit) && garden->save.write(garden->file.c_str());
}

bool draw(const Garden &garden, KTCAMERA *camera) {
    return KELTRA::clear(true, true, false) && KELTRA::begin3D(camera) && garden.stage->pass() &&
           KELTRA::end3D();
}

}  // namespace

int main(int argc, char **argv) {
    example::Options options;
    int exitCode = 0;
    if (!example::parse(argc, argv, "Shows a garden that remembers", &options, &exitCode)) return exitCode;

    // 1. Start. A run with a given number of frames begins anew, in a file of its own, and leaves nothing.
    const bool isScripted = options.frames > 0;
    Garden garden;
    bool ok = example::start(options) && load(&garden);
    garden.file = "garden.sav";
    if (isScripted)
        garden.file = "scripted_" + std::to_string(options.frames) + "_" +
                      std::to_string(KTSETTINGS::getSDLColorDepth()) + ".sav";
    if (ok) resume(&garden);
    KTCAMERA camera;
    example::lookAt(&camera, 0.0f, 3.2f, 10.4f, 0.0f, 2.75f, 0.0f);
    KTINPUT input;
    for (int frame = 1; ok && !input.hasQuit(); ++frame) {
        // 2. Per frame. In a run with a given number of frames, a lantern in each fourth one, and the file is
        // read again.
        input.update(KELTRA::getFPSfactor());
        if (isScripted && frame % 4 == 0) ok = tap(&garden, static_cast<unsigned>(frame / 4 * 4 % 9 + 1));
        if (isScripted && frame % 4 == 2) resume(&garden);

        // 3. Draw. A tap is picked in a frame that is not shown, since picking changes a pixel.
        if (input.hasTapped())
            ok = draw(garden, &camera) && tap(&garden, KTVIEW::pick(input.getPoint())) && ok;
        ok = ok && draw(garden, &camera) && KELTRA::begin2D() && garden.told->pass() && KELTRA::end2D();
        input.dispatch();
        if (!example::endFrame(options, frame, &ok)) break;
    }

    // 4. Stop.
    garden.save.setInt("visits", garden.save.getInt("visits") + 1);
    ok = ok && garden.save.write(garden.file.c_str());
    if (isScripted) std::remove(garden.file.c_str());
    return example::stop(ok);
}
