// SPDX-License-Identifier: Zlib
// Picking: tap a paper lantern and it lights up, tap the lamplighter and he waves. What can be tapped has an
// auxId of its own; a lantern and the light around it share one.

#include <GLES/gl.h>
#include <SDL.h>
#include <keltra/keltra.h>

#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "examples/support/example.h"

namespace {

// Of runs with a given number of frames, which must repeat exactly.
constexpr float kFrameTime = 1.0f / 30.0f;
constexpr float kRate = 24.0f;          // keyframes a second
constexpr unsigned kFigureCode = 1000;  // lanterns count from 1

struct Tap {
    int x, y;       // pixels, counted from 0 at the top left
    unsigned code;  // what a scripted tap must hit
};
// For runs with a given number of frames: a lantern, the figure, a lantern, the sky, a lantern, and again.
const Tap kScript[] = {{141, 92, 3}, {118, 210, kFigureCode}, {40, 245, 7}, {120, 15, 0}, {46, 145, 5}};
constexpr int kScriptLength = sizeof kScript / sizeof kScript[0];

struct Garden {
    KTNODE *stage = nullptr, *figure = nullptr;
    std::vector<KTMESH *> lanterns;  // the child of each is the light around it
    KTANIM *wave = nullptr;          // the list of animations owns it
    float waved = 1000.0f;           // seconds since the figure was tapped
};

KTMESH *findMesh(KTNODE *root, const std::string &name) {
    KTNODE *node = root->findByNameInHierarchy(name.c_str());
    return node != nullptr && node->getType() == KT_MESH ? static_cast<KTMESH *>(node) : nullptr;
}

bool load(Garden *garden) {
    garden->stage = KELTRA::load("garden.kte");
    garden->figure = KELTRA::load("figure.kte");
    garden->wave = new KTANIM;
    if (garden->stage == nullptr || garden->figure == nullptr || !garden->wave->load("figure_wave.kta"))
        return false;
    KTMESH *skin = findMesh(garden->figure, "figureSkin");
    KTNODE *sky = garden->stage->findByNameInHierarchy("sky");
    if (skin == nullptr || sky == nullptr || !sky->unlink()) return false;
    KELTRA::setSkybox(sky);
    KTOPENGL::setGlobalAmbientLight(0.36f, 0.33f, 0.48f, 1.0f);
    garden->wave->setTranslating(true);
    garden->wave->apply(0, garden->figure);
    garden->figure->setPosition(0.0f, 0.0f, 1.9f);
    skin->setAuxId(kFigureCode);
    for (unsigned code = 1; KTMESH *lantern = findMesh(garden->stage, "lantern" + std::to_string(code));
         ++code) {
        lantern->setAuxId(code);
        lantern->getChild(0)->setAuxId(code);
        garden->lanterns.push_back(lantern);
    }
    for (KTTEXTURE *texture = KTTEXTURE::getFirst(); texture != nullptr; texture = texture->getNext())
        texture->setFilter(true, true, false);
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

// Picks in the frame just drawn and reacts. `select` counts rows from 1. Returns the code.
unsigned handleTap(Garden *garden, const Tap &tap) {
    const unsigned code = KELTRA::select(tap.x, tap.y + 1);
    if (code == kFigureCode) garden->waved = 0.0f;
    if (code >= 1 && code <= garden->lanterns.size()) toggle(garden->lanterns[code - 1]);
    return code;
}

// True once the program is to end; taps are appended.
bool handleEvents(std::vector<Tap> *taps) {
    SDL_Event event;
    while (SDL_PollEvent(&event)) {
        const bool escape = event.type == SDL_KEYDOWN && event.key.keysym.sym == SDLK_ESCAPE;
        if (event.type == SDL_QUIT || escape) return true;
        if (event.type == SDL_MOUSEBUTTONDOWN) taps->push_back({event.button.x, event.button.y, 0});
    }
    return false;
}

bool run(const example::Options &options, Garden *garden) {
    const bool scripted = options.frames > 0;
    KTCAMERA camera;
    camera.setTargetNode(&camera);  // itself: it looks at its fixed target
    camera.setPosition(0.0f, 3.2f, 10.4f);
    camera.setTarget(0.0f, 2.75f, 0.0f);
    bool ok = true;
    std::vector<Tap> taps;
    for (int frame = 1; ok && !handleEvents(&taps); ++frame) {
        // 2. Per frame: the figure waves once after a tap.
        garden->waved += scripted ? kFrameTime : std::fmax(KELTRA::getFPSfactor(), 0.0f);
        const unsigned keyframe = static_cast<unsigned>(garden->waved * kRate);
        if (keyframe < garden->wave->getNumberOfFrames()) garden->wave->apply(keyframe, garden->figure);
        // 3. Draw. Taps are picked in a frame that is not shown, since picking changes a pixel.
        if (scripted) taps.assign(1, kScript[(frame - 1) % kScriptLength]);
        if (!taps.empty()) ok = draw(*garden, &camera);
        for (const Tap &tap : taps) ok = (handleTap(garden, tap) == tap.code || !scripted) && ok;
        taps.clear();
        ok = ok && draw(*garden, &camera) && KELTRA::begin2D() && KELTRA::end2D();
        if (ok && frame == options.frames && !options.shot.empty()) ok = example::saveShot(options.shot);
        ok = ok && KELTRA::swap() && glGetError() == GL_NO_ERROR;
        if (frame == options.frames) break;
    }
    return ok;
}

}  // namespace

int main(int argc, char **argv) {
    example::Options options;
    int exitCode = 0;
    if (!example::parse(argc, argv, "Lights the lantern that is tapped", &options, &exitCode))
        return exitCode;

    // 1. Start.
    KTSETTINGS settings;
    settings.setKTEPath(options.data.c_str());
    settings.setKTAPath(options.data.c_str());
    settings.setTexturePath(options.data.c_str());
    if (!KELTRA::init(&settings)) {
        std::fprintf(stderr, "04_picking: the engine does not start\n");
        return 1;
    }
    Garden garden;
    const bool ok = load(&garden) && run(options, &garden);
    if (!ok) std::fprintf(stderr, "04_picking: no frame, no hit, or no files in %s\n", options.data.c_str());

    // 4. Stop: the lists that own nodes and animations destroy them.
    KELTRA::setSkybox(nullptr);
    return KELTRA::free() && ok ? 0 : 1;
}
