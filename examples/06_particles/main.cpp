// SPDX-License-Identifier: Zlib
// Three particle emitters in a scene: a fountain, smoke and sparks, each from an XML file. A slider of the
// interface sets the height of the fountain. Next: a film (07_video).

#include <keltra/keltra.h>
#include <keltra/kit/kit.h>

#include <string>

#include "examples/support/example.h"

namespace {

constexpr float kLowest = 6.0f, kHighest = 44.0f;  // speeds of the fountain

struct Show {
    KTNODE *scene = nullptr;
    KTEMITTER *fountain = nullptr, *smoke = nullptr, *sparks = nullptr;
    KTHSCROLLBAR *height = nullptr;
};

// The place of an emitter is in its file. As a child of the scene it is drawn with it; the list of nodes owns
// it.
KTEMITTER *loadEmitter(const std::string &path, KTNODE *scene) {
    KTEMITTER *emitter = new KTEMITTER;
    if (!emitter->load(path.c_str()) || !emitter->link(scene)) return nullptr;
    emitter->getTexture()->setFilter(true, true, true);
    return emitter;
}

bool loadScene(Show *show) {
    show->scene = KELTRA::load("scene.kte");
    if (show->scene == nullptr) return false;
    // The serpent, the only skinned mesh of the scene, is removed: the fountain takes its place in the water.
    for (const char *name : {"sky", "HumanoidRoot"}) {
        KTNODE *node = show->scene->findByNameInHierarchy(name);
        if (node == nullptr || !node->unlink()) return false;
    }
    KELTRA::setSkybox(KTNODE::findByName("sky"));
    // Lamps reach as far as their light fades; without that, all of them together light the whole court.
    for (KTNODE *node = KTNODE::getFirstNode(); node != nullptr; node = node->getNextNode()) {
        if (!node->isOfClass(KT_LIGHT)) continue;
        KTLIGHT *light = static_cast<KTLIGHT *>(node);
        const bool isMoon = node == KTNODE::findByName("moonlight");
        light->setExclusive(isMoon);
        if (!isMoon) light->setAttenuation(0.9f, 0.0f, 0.06f);
    }
    KTOPENGL::setGlobalAmbientLight(0.34f, 0.29f, 0.46f, 1.0f);
    example::smoothTextures();
    return true;
}

bool loadEmitters(Show *show, const std::string &folder) {
    show->fountain = loadEmitter(folder + "fountain.xml", show->scene);
    show->smoke = loadEmitter(folder + "smoke.xml", show->scene);
    show->sparks = loadEmitter(folder + "sparks.xml", show->scene);
    return show->fountain != nullptr && show->smoke != nullptr && show->sparks != nullptr;
}

void makeSlider(Show *show) {
    show->height = new KTHSCROLLBAR;
    show->height->setPosition(40.0f, 300.0f);
    show->height->setSizes(160, 10);
    show->height->setColor(0.25f, 0.2f, 0.35f, 1.0f);
    show->height->setCursorSize(24);
    show->height->setMinValue(kLowest);
    show->height->setMaxValue(kHighest);
    show->height->setValue(static_cast<float>(show->fountain->getMaximumVelocity()));
}

bool draw(const Show &show, KTCAMERA *camera) {
    return KELTRA::clear(true, true, false) && KELTRA::begin3D(camera) && show.scene->pass() &&
           KELTRA::end3D() && KELTRA::begin2D() && show.height->pass() && KELTRA::end2D();
}

}  // namespace

int main(int argc, char **argv) {
    example::Options options;
    int exitCode = 0;
    if (!example::parse(argc, argv, "Shows a fountain, smoke and sparks", &options, &exitCode))
        return exitCode;

    // 1. Start. Emitters go by the engine's time, which is the clock's once it is started.
    KTCLOCK clock;
    clock.setStep(options.step);
    clock.setShortest(1.0f / 30.0f);
    clock.start();
    Show show;
    bool ok = example::start(options, "scene.cfg") && loadScene(&show) && loadEmitters(&show, options.data);
    if (ok) makeSlider(&show);
    KTCAMERA camera;
    example::lookAt(&camera, 0.0f, 6.3f, 21.0f, 0.0f, 5.4f, 0.0f);
    KTINPUT input;
    for (int frame = 1; ok && !input.hasQuit(); ++frame) {
        // 2. Per frame. Drops that are in the air keep the speed they started with.
        clock.tick();
        input.update(clock.getRealSeconds());
        show.fountain->setMaximumVelocity(static_cast<unsigned>(show.height->getValue()));

        // 3. Draw, then hand over the input: the slider is looked for in the list that was just drawn.
        ok = draw(show, &camera);
        input.dispatch();
        if (!example::endFrame(options, frame, &ok)) break;
    }

    // 4. Stop: the list that owns nodes destroys the emitters, and they their textures.
    return example::stop(ok);
}
