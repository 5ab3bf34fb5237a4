// SPDX-License-Identifier: Zlib
#ifndef KELTRA_VIEW_BACKDROP_H
#define KELTRA_VIEW_BACKDROP_H

class KTTEXTURE;

namespace keltra::view {

// The background: a vertical gradient of greys, dithered because a 16-bit screen has few of them.
class Backdrop {
   public:
    // The engine must be running; its list of textures owns the texture.
    Backdrop();
    // Between `clear` and `begin3D`.
    void draw() const;

   private:
    KTTEXTURE *texture;
};

}  // namespace keltra::view

#endif
