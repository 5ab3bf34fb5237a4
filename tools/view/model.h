// SPDX-License-Identifier: Zlib
#ifndef KELTRA_VIEW_MODEL_H
#define KELTRA_VIEW_MODEL_H

// The model that is shown, with all objects that were loaded with it.

#include <keltra/keltra.h>
#include "tools/view/extent.h"
#include "tools/view/source.h"

#include <memory>
#include <string>
#include <vector>

namespace keltra::view {

class Model {
   public:
    // Loads a scene from the links; the engine must be running. On failure leaves earlier models unchanged
    // and throws Failure with `file` in the message.
    Model(const Source &source, const LinkFolder &links, const std::string &file);
    ~Model();
    Model(const Model &) = delete;
    Model &operator=(const Model &) = delete;

    KTNODE *scene() const { return root; }
    // Every node in the order of creation, also those of a sky.
    const std::vector<KTNODE *> &allNodes() const { return nodes; }
    bool hasLights() const;
    float skyRadius() const;  // 0 without a sky

    // Appends the vertices that are drawn in the present pose, in world space.
    void measure(std::vector<R3XVECTOR3D> &points) const;

   private:
    void takeSky();

    const LinkFolder &links;
    std::string key;
    KTNODE *root;
    KTNODE *sky = nullptr;
    std::vector<KTNODE *> nodes;
    std::vector<KTMATERIAL *> materials;
    std::vector<KTSHADER *> shaders;
    std::vector<KTTEXTURE *> textures;
};

}  // namespace keltra::view

#endif
