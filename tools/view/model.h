#ifndef KELTRA_VIEW_MODEL_H
#define KELTRA_VIEW_MODEL_H

// The model that is shown, and everything that came with it.

#include <keltra/keltra.h>
#include "tools/view/extent.h"
#include "tools/view/source.h"

#include <memory>
#include <string>
#include <vector>

namespace keltra::view {

class Model {
   public:
    // Loads a scene from the stage; the engine runs. Throws Failure, with what was loaded earlier as it was;
    // `file` is what the message calls it.
    Model(const Source &source, const Stage &stage, const std::string &file);
    ~Model();
    Model(const Model &) = delete;
    Model &operator=(const Model &) = delete;

    KTNODE *scene() const { return root; }
    // Every node, in the order of creation; a sky too.
    const std::vector<KTNODE *> &allNodes() const { return nodes; }
    bool hasLights() const;
    float skyRadius() const;  // 0 without a sky

    // Adds what is drawn in the present pose, in world space.
    void measure(std::vector<R3XVECTOR3D> &points) const;

   private:
    void takeSky();

    const Stage &stage;
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
