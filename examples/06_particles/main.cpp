// SPDX-License-Identifier: Zlib
// Three particle emitters in a scene: a fountain, smoke and sparks, each from an XML file. A slider of the
// interface sets the height of the fountain.

#include <GLES/gl.h>
#include <SDL.h>
#include <keltra/keltra.h>

#include <cstdio>
#include <string>

#include "examples/05_interface/pen.h"
#include "examples/support/example.h"

namespace {

constexpr unsigned kFrameTime = 33;                // milliseconds; emitters go by the real time
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
    KTOPENGL::setGlobalAmbientLight(0.40f, 0.35f, 0.52f, 1.0f);
    for (KTTEXTURE *texture = KTTEXTURE::getFirst(); texture != nullptr; texture = texture->getNext())
        texture->setFilter(true, true, false);
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

    // 1. Start.
    KTSETTINGS settings;
    bool ok = settings.load((options.data + "scene.cfg").c_str());
    settings.setKTEPath(options.data.c_str());
    settings.setTexturePath(options.data.c_str());
    if (!ok || !KELTRA::init(&settings)) {
        std::fprintf(stderr, "06_particles: no scene.cfg in %s, or no screen\n", options.data.c_str());
        return 1;
    }
    Show show;
    ok = loadScene(&show) && loadEmitters(&show, options.data);
    if (!ok) std::fprintf(stderr, "06_particles: files are missing in %s\n", options.data.c_str());
    if (ok) makeSlider(&show);
    {
        KTCAMERA camera;
        camera.setTargetNode(&camera);  // itself: it looks at its fixed target
        camera.setPosition(0.0f, 6.3f, 21.0f);
        camera.setTarget(0.0f, 5.4f, 0.0f);
        Pen pen;
        for (int frame = 1; ok && readPen(&pen); ++frame) {
            // 2. Per frame. Drops that are in the air keep the speed they started with.
            const unsigned begin = SDL_GetTicks();
            const bool last = frame == options.frames;
            show.fountain->setMaximumVelocity(static_cast<unsigned>(show.height->getValue()));

            // 3. Draw, then hand over the input: the slider is looked for in the list that was just drawn.
            ok = draw(show, &camera);
            unsigned int id = 0;
            KTELEMENT::manageGUIEvents(pen.key, pen.x, pen.y, pen.pressed, 0, &id);
            if (ok && last && !options.shot.empty()) ok = example::saveShot(options.shot);
            ok = ok && KELTRA::swap() && glGetError() == GL_NO_ERROR;
            if (!ok) std::fprintf(stderr, "06_particles: frame %d could not be drawn\n", frame);
            if (last) break;
            const unsigned spent = SDL_GetTicks() - begin;
            if (spent < kFrameTime) SDL_Delay(kFrameTime - spent);
        }
    }

    // 4. Stop: the list that owns nodes destroys the emitters, and they their textures.
    KELTRA::setSkybox(nullptr);
    return KELTRA::free() && ok ? 0 : 1;
}
