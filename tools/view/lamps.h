// SPDX-License-Identifier: Zlib
#ifndef KELTRA_VIEW_LAMPS_H
#define KELTRA_VIEW_LAMPS_H

class KTLIGHT;

namespace keltra::view {

// The lights for a model without lights: a key light from above left and a weaker, cooler fill light from the
// right, both fixed to the camera.
class Lamps {
   public:
    // The engine must be running; its list of nodes owns the lights.
    Lamps();
    // Prepares for another model: switches the lights of the last one off.
    void begin(bool modelHasLights);
    // Between `begin3D` and `end3D`.
    void pass() const;

   private:
    KTLIGHT *key, *fill;
    bool lit = true;
};

}  // namespace keltra::view

#endif
