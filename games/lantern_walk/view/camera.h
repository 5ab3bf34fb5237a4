// SPDX-License-Identifier: Zlib
#ifndef KELTRA_LANTERN_WALK_CAMERA_H
#define KELTRA_LANTERN_WALK_CAMERA_H

// From where the garden is seen: always from the south, following the boy, or slowly to and fro before the
// title. From one to the other the view glides.

#include <keltra/keltra.h>
#include <keltra/kit/flow.h>

namespace lantern_walk {

class Eye {
   public:
    Eye();
    /// Behind the boy; glides there within so many seconds, 0 for at once.
    void follow(float seconds);
    /// Before the boy, who stands at that place.
    void showTitle(float seconds);
    /// `south`: how much of his way leads toward the viewer, 0 to 1.
    void update(R3XVECTOR3D boy, float south, float seconds, float time);
    KTCAMERA *getCamera() { return &camera; }
    /// Degrees about y, by which flat things face the viewer.
    float getAzimuth() const { return azimuth; }

   private:
    struct Aim {
        R3XVECTOR3D eye, target;
    };
    void go(bool toTitle, float seconds);
    static Aim aimAtTitle(R3XVECTOR3D boy, float time);

    KTCAMERA camera;
    Aim followed, former, shown;
    KTTWEEN change;
    float azimuth = 0.0f;
    bool isTitle = true, isPlaced = false;
};

}  // namespace lantern_walk

#endif
