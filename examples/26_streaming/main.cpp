// SPDX-License-Identifier: Zlib
// Streaming: a walk along a road without an end. Pieces of it are read ahead, one in a frame, and destroyed
// behind, with their materials and textures; memory stays as it is, however long the walk. Fog hides where
// they come from. Next: sound (27_sound).

#include <keltra/keltra.h>
#include <keltra/kit/kit.h>

#include "examples/12_distance/fog.h"
#include "examples/26_streaming/road.h"

namespace {

constexpr float kSpeed = 2.2f, kStride = 1.36f;  // units a second; of the walk at its own rate

struct Show {
    KTNODE world;
    Fog fog;
    Road road;
    KTNODE *boy = nullptr, panel;
    KTCLIP walk;
    KTPLAYER player;
    KTLABEL *told = nullptr;
};

// Of textures that have not been drawn yet: another filter uploads a texture anew.
void smoothNewTextures() {
    for (KTTEXTURE *texture = KTTEXTURE::getFirst(); texture != nullptr; texture = texture->getNext())
        if (!texture->isLoaded()) texture->setFilter(true, true, false);
}

bool load(Show *show) {
    KTNODE *around = new KTNODE;
    makeSky()->link(around);
    KELTRA::setSkybox(around);
    show->fog.link(&show->world);
    show->boy = KELTRA::load("figure.kte");
    if (!show->boy || !show->walk.load("figure_walk.kta") || !show->player.bind(show->boy)) return false;
    show->boy->setRotation(0.0f, 180.0f, 0.0f);
    show->player.setTranslating(true);
    show->player.setSmooth(true);
    show->player.play(&show->walk);
    show->player.setRate(kSpeed / kStride);
    example::addLight(&show->world, 0.7f, 0.6f, 0.55f, 0.0f)->setPosition(5.0f, 9.0f, 6.0f);
    KTOPENGL::setGlobalAmbientLight(0.56f, 0.50f, 0.60f, 1.0f);
    KTBOX *back = new KTBOX;
    back->setSizes(240, 46);
    back->setPosition(0.0f, 274.0f);
    back->setThickness(0);
    back->setColor(0.08f, 0.07f, 0.15f, 0.75f);
    back->link(&show->panel);
    show->told = new KTLABEL;
    show->told->setFont(example::loadFont());
    show->told->setPosition(8.0f, 280.0f);
    show->told->link(&show->panel);
    if (!show->road.advance(6.0f)) return false;
    smoothNewTextures();
    return true;
}

bool update(Show *show, float seconds) {
    show->player.update(seconds);
    const int before = show->road.getNumberRead();
    if (!show->road.advance(kSpeed * seconds)) return false;
    if (show->road.getNumberRead() != before) smoothNewTextures();
    show->told->write("^c8748%d pieces read^c8888, %d are there\n%u nodes, %u KB of textures",
                      show->road.getNumberRead(), kAlive, KTNODE::getNumberOfNodes(),
                      KTENGINESTATE::getUsedVideoMemory() / 1024);
    return true;
}

}  // namespace

int main(int argc, char **argv) {
    example::Options options;
    int exitCode = 0;
    if (!example::parse(argc, argv, "Shows a road without an end", &options, &exitCode)) return exitCode;

    // 1. Start.
    Show show;
    bool ok = example::start(options) && load(&show);
    KTCAMERA camera;
    example::lookAt(&camera, 1.0f, 3.3f, 8.4f, -0.1f, 2.1f, -4.0f);
    KTINPUT input;
    KTCLOCK clock;
    clock.setStep(options.step);
    for (int frame = 1; ok && !input.hasQuit(); ++frame) {
        // 2. Per frame.
        ok = update(&show, clock.tick());
        input.update(clock.getRealSeconds());

        // 3. Draw: lights and the fog first.
        ok = ok && KELTRA::clear(true, true, false) && KELTRA::begin3D(&camera) && show.world.pass() &&
             show.road.pass() && show.boy->pass() && KELTRA::end3D();
        glDisable(GL_FOG);
        ok = ok && KELTRA::begin2D() && show.panel.pass() && KELTRA::end2D();
        input.dispatch();
        if (!example::endFrame(options, frame, &ok)) break;
    }

    // 4. Stop.
    return example::stop(ok);
}
