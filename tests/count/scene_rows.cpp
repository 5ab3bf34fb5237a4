// SPDX-License-Identifier: Zlib
#include <keltra/keltra.h>

#include <memory>
#include <vector>

#include "scene/light_order.h"
#include "tests/count/region.h"

namespace {

constexpr unsigned int kMeshes = 100, kLights = 20, kAngles = 24;

// A root with meshes below it. The angles are some of a small set, as in a scene that stands still.
class Scene {
   public:
    explicit Scene(unsigned int axes, unsigned int lights = 0) {
        for (unsigned int i = 0; i < lights; ++i) add(new KTLIGHT, i, 0);
        for (unsigned int i = 0; i < kMeshes; ++i) {
            KTMESH *mesh = new KTMESH;
            mesh->radius = 1.5f;
            mesh->setMaterial(&material);
            add(mesh, lights + i, axes);
        }
        // No element of the view's matrix is zero.
        camera.setPosition(3.0f, 2.5f, 40.0f);
        camera.setRotation(12.0f, 25.0f, 5.0f);
        KTOPENGL::setProfile(KT_PROFILE_NORMAL);
        KELTRA::begin3D(&camera);
    }

    void pass() {
        KTELEMENT::reset();
        KTMESH::reset();
        root.pass();
    }

    KTMATERIAL material;
    KTNODE root;

   private:
    void add(KTNODE *node, unsigned int i, unsigned int axes) {
        const auto spread = [i](unsigned int factor) {
            return static_cast<float>(i * factor % 101) * 0.43f - 20.0f;
        };
        const auto angle = [i](unsigned int shift) {
            return static_cast<float>((i + shift) % kAngles) * 13.7f + 3.1f;
        };
        nodes.emplace_back(node);
        node->setPosition(spread(37), spread(59), spread(83));
        node->setRotation(axes > 1 ? angle(5) : 0.0f, axes > 0 ? angle(0) : 0.0f,
                          axes > 1 ? angle(11) : 0.0f);
        node->link(&root);
    }

    KTCAMERA camera;
    std::vector<std::unique_ptr<KTNODE>> nodes;
};

void countPassOf(const char *row, unsigned int axes) {
    Scene scene(axes);
    scene.pass();
    KTELEMENT::reset();
    KTMESH::reset();
    {
        const count::Region region(row, kMeshes);
        KTELEMENT::pass(&scene.root);
    }
    count::require(KTELEMENT::getNumberOfPassedElements() == kMeshes, "pass");
}

void countEnd(const char *row, bool transparent) {
    Scene scene(1);
    scene.material.setTransparency(transparent ? 0.5f : 1.0f);
    scene.pass();
    KELTRA::end3D();
    scene.pass();
    {
        const count::Region region(row, kMeshes);
        KELTRA::end3D();
    }
    count::require(KTELEMENT::numberOfTransparencies == (transparent ? kMeshes : 0), "transparent meshes");
}

}  // namespace

void count::countPass() {
    countPassOf("pass of a mesh node", 0);
    countPassOf("pass of a mesh node turned about 1 axis", 1);
    countPassOf("pass of a mesh node turned about 3 axes", 3);
}

void count::countLights() {
    Scene scene(0, kLights);
    scene.pass();
    KTLIGHT::lightingOn();
    KTELEMENT::sort3D();
    {
        const Region region("nearest 4 of 20 lights, for a mesh", kMeshes);
        // As in a frame, with what is left for its end.
        keltra::LightOrder order;
        order.prepare(*KTELEMENT::element[kLights].node);
        for (unsigned int i = 0; i < kMeshes; ++i) KTLIGHT::activateNearest(&KTELEMENT::element[kLights + i]);
    }
    for (unsigned int i = 0; i < kMeshes; ++i)
        require(KTELEMENT::element[kLights + i].getNearestLight(3) != nullptr, "nearest lights");
    KTLIGHT::lightingOff();
}

void count::countDrawing() {
    countEnd("end3D, for an opaque mesh without lights", false);
    countEnd("end3D, for a transparent mesh", true);
}
