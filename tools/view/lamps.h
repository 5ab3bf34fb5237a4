#ifndef KELTRA_VIEW_LAMPS_H
#define KELTRA_VIEW_LAMPS_H

class KTLIGHT;

namespace keltra::view {

// The light in which a model without lights of its own is shown: a key light from above left and a weaker,
// cooler one from the right, both fixed to the viewer.
class Lamps {
   public:
    // The engine runs; the list of nodes owns the lights.
    Lamps();
    // Begins with another model: no light of the one before shines on.
    void begin(bool modelHasLights);
    // Between `begin3D` and `end3D`.
    void pass() const;

   private:
    KTLIGHT *key, *fill;
    bool lit = true;
};

}  // namespace keltra::view

#endif
