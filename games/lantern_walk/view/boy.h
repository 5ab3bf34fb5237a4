// SPDX-License-Identifier: Zlib
#ifndef KELTRA_LANTERN_WALK_BOY_H
#define KELTRA_LANTERN_WALK_BOY_H

// The lamplighter's boy: walking, running, standing and waving, one fading into the other; the lamp in his
// hand, and the light that it gives while it has oil.

#include <keltra/keltra.h>
#include <keltra/kit/clip.h>

#include "games/lantern_walk/rules/walk.h"

namespace lantern_walk {

class BoyView {
   public:
    bool load(KTNODE *stage);
    /// Waves once, from the next update on.
    void wave() { isWaving = true; }
    /// `speed` in units a second, the heading in degrees.
    void place(Place at, float heading, float speed);
    void setOil(float part) { oil = part; }
    void update(float seconds, float time, float azimuth);
    void pass() const;
    R3XVECTOR3D getPlace() const { return figure->getPosition(); }

   private:
    enum class Gait { kNone, kStand, kWalk, kRun, kWave };
    void choose();

    KTNODE *figure = nullptr;
    KTMESH *lamp = nullptr, *glow = nullptr, *pool = nullptr, *shadow = nullptr;
    KTLIGHT *light = nullptr;
    KTCLIP walk, greeting;
    KTPLAYER player;
    Gait gait = Gait::kNone;
    float speed = 0.0f, oil = 1.0f, shownOil = 1.0f;
    bool isWaving = false;
};

}  // namespace lantern_walk

#endif
