// SPDX-License-Identifier: Zlib
#ifndef KELTRA_LANTERN_WALK_LANTERNS_H
#define KELTRA_LANTERN_WALK_LANTERNS_H

// The paper lanterns on their posts. A lit one glows, has a halo and a pool of light below, and lights what
// is near; all four come and go slowly.

#include <keltra/keltra.h>

#include "games/lantern_walk/rules/walk.h"

namespace lantern_walk {

class LanternView {
   public:
    bool load(KTNODE *stage);
    /// Puts the posts where the evening has them, and the others away.
    void arrange(const Evening &evening);
    /// Glows at once as `lit` says, a bit for each.
    void light(int lit);
    void setLit(int lantern, bool isLit) { wanted[lantern] = isLit ? 1.0f : 0.0f; }
    /// Moves the glow on. Halos face a viewer at that azimuth (degrees); `time` makes flames flicker.
    void update(float seconds, float time, float azimuth);
    /// Those between the eye and the boy become clear.
    void clearView(R3XVECTOR3D eye, R3XVECTOR3D boy);
    /// Passes the lights of those that glow.
    void passLights() const;
    /// How many are lit, with parts of those that are just going on or out.
    float getGlow() const;
    /// Where it hangs.
    R3XVECTOR3D getPlace(int lantern) const;

   private:
    struct Parts {
        KTNODE *post;
        KTMESH *west, *east;  // the pole, on either side
        KTMESH *paper, *halo, *pool;
        KTLIGHT *light;
        R3XVECTOR4D color;
    };
    void show(int lantern, float flicker) const;

    Parts parts[kMostLanterns] = {};
    float glow[kMostLanterns] = {}, wanted[kMostLanterns] = {};
    float opacity[kMostLanterns], wantedOpacity[kMostLanterns];
    int count = 0;
};

}  // namespace lantern_walk

#endif
