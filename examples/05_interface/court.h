// SPDX-License-Identifier: Zlib
#ifndef KELTRA_EXAMPLES_COURT_H
#define KELTRA_EXAMPLES_COURT_H

// The sample scene behind the interface, and the parts of it that the interface controls.

#include <keltra/keltra.h>

#include <string>
#include <vector>

#include "examples/support/example.h"

template <class Node>
bool find(KTNODE *root, const char *name, unsigned type, Node **node) {
    KTNODE *found = root->findByNameInHierarchy(name);
    *node = found && found->getType() == type ? static_cast<Node *>(found) : nullptr;
    return *node != nullptr;
}

struct Court {
    KTNODE *scene = nullptr;
    std::vector<KTLIGHT *> lanterns;
    std::vector<KTMESH *> flames;

    bool load() {
        KTNODE *sky;
        scene = KELTRA::load("scene.kte");
        if (scene == nullptr || !find(scene, "sky", KT_NODE, &sky)) return false;
        sky->unlink();
        KELTRA::setSkybox(sky);
        findAll("lantern", KT_LIGHT, &lanterns);
        findAll("flame", KT_MESH, &flames);
        findAll("halo", KT_MESH, &flames);
        example::smoothTextures();
        return !lanterns.empty();
    }

    // A lantern that is off has no range.
    void light(bool lit) {
        for (KTLIGHT *lantern : lanterns) lantern->setAttenuation(lit ? 0.9f : 1000.0f, 0.0f, 0.06f);
        for (KTMESH *flame : flames) flame->setDisplayStatus(lit);
    }

    // Turns what is flat to the viewer, and lights everything alike by `flash`.
    void turn(float degrees, float flash) {
        KTOPENGL::setGlobalAmbientLight(0.34f + flash, 0.29f + flash, 0.46f + flash, 1.0f);
        for (KTMESH *flame : flames) flame->setRotation(0.0f, degrees, 0.0f);
    }

   private:
    template <class Node>
    void findAll(const char *prefix, unsigned type, std::vector<Node *> *nodes) {
        Node *node;
        for (int i = 1; find(scene, (prefix + std::to_string(i)).c_str(), type, &node); ++i)
            nodes->push_back(node);
    }
};

#endif
