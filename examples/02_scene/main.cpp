// SPDX-License-Identifier: Zlib
// A scene from files: textured, with more lights than the GL has, opaque and transparent meshes, two skinned
// ones, and a camera that moves slowly from side to side. Next: a character (03_character).

#include <keltra/keltra.h>
#include <keltra/kit/kit.h>

#include <cmath>
#include <string>
#include <vector>

#include "examples/support/example.h"

namespace {

constexpr float kDegree = 3.14159265f / 180.0f;

struct MovingNodes {  // found once
    std::vector<KTNODE *> neck, tail, halos, fireflies;
    KTNODE *water = nullptr;
};

// Nodes `prefix` with a number behind it, from 1 up to the last that there is.
std::vector<KTNODE *> findAll(KTNODE *root, const char *prefix) {
    std::vector<KTNODE *> found;
    for (int i = 1;; ++i) {
        found.push_back(root->findByNameInHierarchy((prefix + std::to_string(i)).c_str()));
        if (found.back() == nullptr) return found.pop_back(), found;
    }
}

// What a scene file does not hold: how far lamps reach, which light always counts, the sky, the filters.
bool prepare(KTNODE *scene, MovingNodes *moving) {
    std::vector<KTNODE *> lights = findAll(scene, "lantern");
    lights.push_back(scene->findByNameInHierarchy("poolLight"));
    lights.push_back(scene->findByNameInHierarchy("moonlight"));
    for (KTNODE *light : lights) {
        if (light == nullptr || light->getType() != KT_LIGHT) return false;
        const bool moon = light == lights.back();
        static_cast<KTLIGHT *>(light)->setExclusive(moon);
        if (!moon) static_cast<KTLIGHT *>(light)->setAttenuation(0.9f, 0.0f, 0.06f);
    }
    KTNODE *sky = scene->findByNameInHierarchy("sky");
    moving->water = scene->findByNameInHierarchy("water");
    if (sky == nullptr || !sky->unlink() || moving->water == nullptr) return false;
    KELTRA::setSkybox(sky);
    KTOPENGL::setGlobalAmbientLight(0.34f, 0.29f, 0.46f, 1.0f);
    example::smoothTextures();
    moving->neck = findAll(scene, "neck");
    moving->tail = findAll(scene, "tail");
    moving->halos = findAll(scene, "halo");
    moving->fireflies = findAll(scene, "firefly");
    return true;
}

// Bends a chain of bones, each a little later than the one before.
void sway(const std::vector<KTNODE *> &bones, float time, float degrees) {
    float phase = 0.0f;
    for (KTNODE *bone : bones) {
        phase += 0.6f;
        bone->setRotation(degrees * std::sin(1.1f * time - phase), 0.0f,
                          1.3f * degrees * std::sin(0.8f * time - phase + 1.0f));
    }
}

void animate(const MovingNodes &moving, KTCAMERA *camera, float time) {
    const float azimuth = 36.0f * std::sin(0.22f * time - 0.55f);  // degrees
    camera->setPosition(21.0f * std::sin(azimuth * kDegree), 5.8f + 0.5f * std::sin(0.31f * time),
                        21.0f * std::cos(azimuth * kDegree));
    sway(moving.neck, time, 1.6f);
    sway(moving.tail, time + 2.0f, 3.0f);
    moving.water->setRotation(0.0f, 2.0f * time, 0.0f);
    // Halos are flat: they keep facing the viewer.
    for (KTNODE *halo : moving.halos) halo->setRotation(0.0f, azimuth, 0.0f);
    float phase = 0.0f;
    for (KTNODE *fly : moving.fireflies) {
        phase += 2.4f;
        fly->setRotation(0.0f, azimuth, 0.0f);
        fly->setOrigin(std::sin(0.7f * time + phase), 0.5f * std::sin(1.3f * time + 2.0f * phase),
                       std::cos(0.6f * time + phase));
    }
}

}  // namespace

int main(int argc, char **argv) {
    example::Options options;
    int exitCode = 0;
    if (!example::parse(argc, argv, "Shows the sample scene", &options, &exitCode)) return exitCode;

    // 1. Start.
    bool ok = example::start(options, "scene.cfg");
    KTNODE *scene = ok ? KELTRA::load("scene.kte") : nullptr;
    MovingNodes moving;
    ok = scene != nullptr && prepare(scene, &moving);
    KTCAMERA camera;
    camera.setTargetNode(&camera);  // itself: it looks at its fixed target
    camera.setTarget(0.0f, 5.4f, 0.0f);
    KTINPUT input;
    KTCLOCK clock;
    clock.setStep(options.step);
    float time = 0.0f;
    for (int frame = 1; ok && !input.hasQuit(); ++frame) {
        // 2. Per frame.
        time += clock.tick();
        input.update(clock.getRealSeconds());
        animate(moving, &camera, time);

        // 3. Draw.
        ok = KELTRA::clear(true, true, false) && KELTRA::begin3D(&camera) && scene->pass() &&
             KELTRA::end3D() && KELTRA::begin2D() && KELTRA::end2D();
        if (!example::endFrame(options, frame, &ok)) break;
    }

    // 4. Stop: the lists that own nodes, materials and textures destroy them.
    return example::stop(ok);
}
