#ifndef KELTRA_VIEW_BACKDROP_H
#define KELTRA_VIEW_BACKDROP_H

class KTTEXTURE;

namespace keltra::view {

// The quiet grey behind a model: lighter where its feet are, as in a photographer's studio. A screen of 16
// bits has few greys, so what is between them is dithered.
class Backdrop {
   public:
    // The engine runs; the list of textures owns the texture.
    Backdrop();
    // Between `clear` and `begin3D`.
    void draw() const;

   private:
    KTTEXTURE *texture;
};

}  // namespace keltra::view

#endif
