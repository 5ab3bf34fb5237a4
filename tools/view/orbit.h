// SPDX-License-Identifier: Zlib
#ifndef KELTRA_VIEW_ORBIT_H
#define KELTRA_VIEW_ORBIT_H

// The camera's orbit around the model: view matrix and clipping planes. The view matrix moves the model to
// the origin and scales very large or very small models into the range of 16.16.

#include <keltra/matrix.h>
#include "tools/view/extent.h"

namespace keltra::view {

// The rows of the screen that panel and overlay leave free for the model.
struct FreeRows {
    int top, bottom;
};

class Orbit {
   public:
    static constexpr float kAngleOfView = 45.0f;  // degrees, vertical

    Orbit(int width, int height);

    // Looks at another model and keeps angles and zoom. `sky` is the radius of a sky around the eye, in the
    // model's units, 0 for none. A model with a sky is a landscape: the camera looks at its core and stays
    // within the sky.
    void frame(const Extent &extent, float sky = 0.0f);
    // Moves the picture to the middle of these rows and keeps the zoom.
    void setFreeRows(FreeRows rows);
    // Fits the model between the free rows again, with the default angles.
    void reset();
    // Degrees by which the near side of the model moves to the right and down.
    void turn(float right, float down);
    void look(float yaw, float pitch);
    // Divides the distance by a factor.
    void zoom(float factor);
    // The zoom from 0, nearest, to 1, farthest.
    void setZoomShare(float share);
    float zoomShare() const;

    // From the model's world to the eye, for a `KTCAMERA` with transform mode 1.
    R3XMATRIX view() const;
    float scale() const { return size; }                  // in the view matrix; 1 for models of usual size
    R3XVECTOR3D centre() const { return model.centre; }   // in the model's world
    float radius() const { return size * model.radius; }  // as the eye sees it
    float distance() const { return fitDistance * away; }
    float nearPlane() const;
    float farPlane() const;
    float yaw() const { return yawAngle; }
    float pitch() const { return pitchAngle; }

   private:
    void fit();

    int width, height;
    FreeRows rows;
    Extent model;
    float skyRadius = 0.0f;
    float size = 1.0f;
    float fitDistance = 1.0f;  // at which the model fills the free rows
    float farthest = 1.0f;     // largest distance as a multiple of fitDistance
    float away = 1.0f;         // present distance as a multiple of fitDistance
    float yawAngle, pitchAngle;
};

}  // namespace keltra::view

#endif
