// SPDX-License-Identifier: Zlib
// Picking: tap a paper lantern and it lights up, tap the lamplighter and he waves. What can be tapped has an
// auxId of its own; a lantern and the light around it share one. Next: an interface (05_interface).

#include <keltra/keltra.h>
#include <keltra/kit/kit.h>

#include <string>
#include <vector>

#include "examples/support/example.h"

namespace {

constexpr unsigned kFigureCode = 1000;  // lanterns count from 1

// For runs with a given number of frames: a lantern, the figure, a lantern, the sky, a lantern, and again.
const struct {
    int x, y;       // pixels, counted from 0 at the top left
    unsigned code;  // what must be hit
} kScript[] = {{141, 92, 3}, {118, 210, kFigureCode}, {40, 245, 7}, {120, 15, 0}, {46, 145, 5}};

struct Garden {
    KTNODE *stage = nullptr, *figure = nullptr;
    std::vector<KTMESH *> lanterns;  // the child of each is the light around it
    KTCLIP wave;
    KTPLAYER player;
};

KTMESH *findMesh(KTNODE *root, const std::string &name) {
    KTNODE *node = root->findByNameInHierarchy(name.c_str());
    return node != nullptr && node->isOfClass(KT_MESH) ? static_cast<KTMESH *>(node) : nullptr;
}

bool load(Garden *garden) {
    garden->stage = example::loadWithSky("garden.kte");
    garden->figure = KELTRA::load("figure.kte");
    if (!garden->stage || !garden->figure || !garden->wave.load("figure_wave.kta")) return false;
    KTMESH *skin = findMesh(garden->figure, "figureSkin");
    if (skin == nullptr) return false;
    KTOPENGL::setGlobalAmbientLight(0.36f, 0.33f, 0.48f, 1.0f);
    garden->player.bind(garden->figure);
    garden->player.setTranslating(true);
    garden->player.play(&garden->wave, false);
    garden->player.setRate(0.0f);  // he waits in the first frame
    garden->figure->setPosition(0.0f, 0.0f, 1.9f);
    skin->setAuxId(kFigureCode);
    for (unsigned code = 1; KTMESH *lantern = findMesh(garden->stage, "lantern" + std::to_string(code));
         ++code) {
        lantern->setAuxId(code);
        lantern->getChild(0)->setAuxId(code);
        garden->lanterns.push_back(lantern);
    }
    example::smoothTextures();
    return true;
}

void toggle(KTMESH *lantern) {
    KTMESH *halo = static_cast<KTMESH *>(lantern->getChild(0));
    const bool lit = !halo->isHidden();
    halo->setDisplayStatus(!lit);
    KTMATERIAL *paper = lantern->getMaterial();
    paper->setEmission(paper->getDiffuse() * (lit ? 0.0f : 0.8f));
}

bool draw(const Garden &garden, KTCAMERA *camera) {
    return KELTRA::clear(true, true, false) && KELTRA::begin3D(camera) && garden.stage->pass() &&
           garden.figure->pass() && KELTRA::end3D();
}

// Picks in the frame just drawn and reacts. Returns the code.
unsigned handleTap(Garden *garden, float x, float y) {
    const unsigned code = KTVIEW::pick(R3XVECTOR2D(x, y));
    if (code == kFigureCode) {
        garden->player.play(&garden->wave, false);
        garden->player.setRate(1.0f);
    }
    if (code >= 1 && code <= garden->lanterns.size()) toggle(garden->lanterns[code - 1]);
    return code;
}

}  // namespace

int main(int argc, char **argv) {
    example::Options options;
    int exitCode = 0;
    if (!example::parse(argc, argv, "Lights the tapped lantern", &options, &exitCode)) return exitCode;

    // 1. Start.
    Garden garden;
    bool ok = example::start(options) && load(&garden);
    KTCAMERA camera;
    example::lookAt(&camera, 0.0f, 3.2f, 10.4f, 0.0f, 2.75f, 0.0f);
    KTINPUT input;
    KTCLOCK clock;
    clock.setStep(options.step);
    for (int frame = 1; ok && !input.hasQuit(); ++frame) {
        // 2. Per frame.
        garden.player.update(clock.tick());
        input.update(clock.getRealSeconds());
        // 3. Draw. A tap is picked in a frame that is not shown, since picking changes a pixel.
        const auto &scripted = kScript[(frame - 1) % 5];
        if (options.frames > 0)
            ok = draw(garden, &camera) &&
                 handleTap(&garden, float(scripted.x), float(scripted.y)) == scripted.code;
        else if (input.hasTapped())
            ok = draw(garden, &camera) && handleTap(&garden, input.getPoint().x, input.getPoint().y) != ~0u;
        ok = ok && draw(garden, &camera) && KELTRA::begin2D() && KELTRA::end2D();
        input.dispatch();
        if (!example::endFrame(options, frame, &ok)) break;
    }

    // 4. Stop: the list that owns nodes destroys them.
    return example::stop(ok);
}
