#ifndef KELTRA_VIEW_ORBIT_H
#define KELTRA_VIEW_ORBIT_H

// The eye's place around the model, and what of it the engine needs: view matrix and clipping planes. The
// model is brought to the origin and, when it is very large or very small, to a size that 16.16 holds well.

#include <keltra/matrix.h>
#include "tools/view/extent.h"

namespace keltra::view {

// Rows of the screen between which the model is framed: others lie under the panel.
struct FreeRows {
    int top, bottom;
};

class Orbit {
   public:
    static constexpr float kAngleOfView = 45.0f;  // degrees, upright

    Orbit(int width, int height);

    // Looks at another model; the angles stay, the zoom too. `sky` is the radius of a sky around the eye, in
    // the model's units, 0 for none: such a model is a landscape, seen from within: its core is looked at,
    // and nothing shows behind its sky.
    void frame(const Extent &extent, float sky = 0.0f);
    // Keeps the zoom: what is drawn moves to the middle of these rows.
    void setFreeRows(FreeRows rows);
    // Fits the model between the free rows again, seen from the front.
    void reset();
    // Degrees. The model's near side follows: to the right, and down.
    void turn(float right, float down);
    void look(float yaw, float pitch);
    // Divides the distance by a factor.
    void zoom(float factor);
    // The zoom as a share of its range: 0 nearest, 1 farthest.
    void setZoomShare(float share);
    float zoomShare() const;

    // From the model's world to the eye, as `KTCAMERA` takes it while its transform mode is 1.
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
    float farthest = 1.0f;     // the largest distance as a multiple of it
    float away = 1.0f;         // the present one
    float yawAngle, pitchAngle;
};

}  // namespace keltra::view

#endif
