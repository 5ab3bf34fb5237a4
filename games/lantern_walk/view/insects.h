// SPDX-License-Identifier: Zlib
#ifndef KELTRA_LANTERN_WALK_INSECTS_H
#define KELTRA_LANTERN_WALK_INSECTS_H

// Moths, which flap and circle.

#include <keltra/keltra.h>

#include "games/lantern_walk/rules/moths.h"

namespace lantern_walk {

class MothView {
   public:
    bool load(KTNODE *stage);
    /// Shows those that are there.
    void update(const Moths &moths, float time, float azimuth);
    void hideAll();
    R3XVECTOR3D getPlace(int moth) const { return parts[moth].body->getPosition(); }

   private:
    struct Parts {
        KTMESH *body, *left, *right;
    };
    static void show(const Parts &part, bool status);

    Parts parts[kMostMoths] = {};
};

}  // namespace lantern_walk

#endif
