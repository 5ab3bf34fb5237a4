// SPDX-License-Identifier: Zlib
// What examples do with the engine; their command line is in example.cpp.
#include "examples/support/example.h"

#include <GLES/gl.h>
#include <keltra/keltra.h>
#include <keltra/kit/input.h>

#include <cstdio>
#include <cstdlib>

namespace example {

bool start(const Options &options, const char *settingsFile) {
    const char *const folder = options.data.c_str();
    KTSETTINGS settings;
    if (settingsFile && !settings.load((options.data + settingsFile).c_str())) {
        std::fprintf(stderr, "there is no %s in %s\n", settingsFile, folder);
        return false;
    }
    settings.setKTEPath(folder);
    settings.setKTAPath(folder);
    settings.setTexturePath(folder);
    settings.setFontPath(folder);
    if (KELTRA::init(&settings)) return true;
    std::fprintf(stderr, "the engine does not start\n");
    return false;
}

KTNODE *loadWithSky(const char *file) {
    KTNODE *scene = KELTRA::load(file);
    KTNODE *sky = scene ? scene->findByNameInHierarchy("sky") : nullptr;
    if (!sky || !sky->unlink()) return nullptr;
    KELTRA::setSkybox(sky);
    return scene;
}

KTNODE *loadScene() {
    KTNODE *scene = loadWithSky("scene.kte");
    if (!scene) return nullptr;
    KTOPENGL::setGlobalAmbientLight(0.34f, 0.29f, 0.46f, 1.0f);
    for (KTNODE *node = KTNODE::getFirstNode(); node != nullptr; node = node->getNextNode())
        if (node->isOfClass(KT_LIGHT) && node != KTNODE::findByName("moonlight"))
            static_cast<KTLIGHT *>(node)->setAttenuation(0.9f, 0.0f, 0.06f);
    smoothTextures();
    return scene;
}

void smoothTextures() {
    for (KTTEXTURE *texture = KTTEXTURE::getFirst(); texture != nullptr; texture = texture->getNext())
        texture->setFilter(true, true, false);
}

namespace {

template <class Object>
Object *require(Object *object, const char *what) {
    if (object) return object;
    std::fprintf(stderr, "there is no %s\n", what);
    std::exit(1);
}

}  // namespace

KTTEXTURE *loadTexture(const char *file) {
    KTTEXTURE *texture = new KTTEXTURE;
    require(texture->load(file) ? texture : nullptr, file);
    texture->setFilter(true, true, false);
    return texture;
}

KTFONT *loadFont(const char *name) {
    KTTEXTURE *glyphs = loadTexture((std::string(name) + ".tga").c_str());
    glyphs->setFilter(false, false, true);
    KTFONT *font = new KTFONT;
    font->setTexture(glyphs);
    return require(font->loadKerning((std::string(name) + ".txt").c_str()) ? font : nullptr, name);
}

void lookAt(KTCAMERA *camera, float x, float y, float z, float targetX, float targetY, float targetZ) {
    camera->setTargetNode(camera);  // itself: its fixed target counts
    camera->setPosition(x, y, z);
    camera->setTarget(targetX, targetY, targetZ);
}

KTMESH *place(KTMESH *mesh, KTMATERIAL *material, KTNODE *parent, float x, float y, float z) {
    require(mesh, "mesh");
    mesh->setMaterial(material);
    mesh->setPosition(x, y, z);
    mesh->link(parent);
    return mesh;
}

KTLIGHT *addLight(KTNODE *parent, float r, float g, float b, float reach) {
    KTLIGHT *light = new KTLIGHT;
    light->setDiffuse(r, g, b, 1.0f);
    if (reach > 0.0f) light->setAttenuation(1.0f, 0.0f, 1.0f / (reach * reach));
    light->link(parent);
    return light;
}

void playSteps(const PenStep *steps, std::size_t count, int frame, KTINPUT *input) {
    for (const PenStep *step = steps; step != steps + count; ++step) {
        if (step->frame != frame) continue;
        input->putPen(step->x, step->y, step->pressed != 0);
        if (step->key) input->putKey(0, step->key, true);
    }
}

void destroyTree(KTNODE *root) {
    if (!root) return;
    for (unsigned int i = root->getNumberOfChildren(); i-- > 0;) {
        KTNODE *child = root->getChild(i);
        if (!child) continue;
        child->unlink();
        destroyTree(child);
    }
    delete root;
}

bool endFrame(const Options &options, int frame, bool *ok) {
    const bool last = frame == options.frames;
    if (*ok && last && !options.shot.empty()) *ok = saveShot(options.shot);
    *ok = *ok && KELTRA::swap() && glGetError() == GL_NO_ERROR;
    if (!*ok) std::fprintf(stderr, "frame %d could not be drawn\n", frame);
    return *ok && !last;
}

int stop(bool ok) {
    if (!ok) std::fprintf(stderr, "the example ends with an error; are its files there?\n");
    KELTRA::setSkybox(nullptr);
    const bool freed = KELTRA::isActive() && KELTRA::free();
    return ok && freed ? 0 : 1;
}

}  // namespace example
