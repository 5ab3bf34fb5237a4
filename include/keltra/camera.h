// SPDX-License-Identifier: Zlib
#ifndef KELTRA_CAMERA_H
#define KELTRA_CAMERA_H

#include <keltra/node.h>

/** A node whose render loads the view matrix. The projection belongs to the display (`KTOPENGL::resize`). A
 * camera looks along its rotation (about Z, then X, then Y), at a fixed point (`targetNode` = itself,
 * `target` = point), or at another node (`targetNode`). Parents do not move a camera. */
class KT_API KTCAMERA : public KTNODE {
   public:
    /** At the origin, without a target. */
    KTCAMERA();
    KTCAMERA(const KTCAMERA &other);
    KTCAMERA &operator=(const KTCAMERA &) = default;
    ~KTCAMERA() override;

    /** Rotation in degrees about X, Y, Z applied before everything else; without effect on a camera with a
     * target. */
    void setPreRotation(float x, float y, float z) { preRotation.set(x, y, z); }
    void setPreRotation(R3XVECTOR3D degrees) { preRotation = degrees; }
    R3XVECTOR3D getPreRotation() const { return preRotation; }
    /** Up vector of a camera with a target; (0, 1, 0) at first. */
    void setUpDirection(const R3XVECTOR3D &up) { upDirection = up; }
    R3XVECTOR3D getUpDirection() const { return upDirection; }
    /** The view matrix of this camera's last render. */
    R3XMATRIX *getThisCameraMatrix() { return &thisCameraMatrix; }

    /** View matrix, eye point and camera of the last render of any camera. The camera is null once it is
     * destroyed. */
    static R3XMATRIX *getCameraMatrix() { return &cameraMatrix; }
    static R3XVECTOR3D getCameraPosition() { return cameraPosition; }
    static KTCAMERA *getThisPassCamera() { return thisPassCamera; }

    /** Moves by a step given in view space of the camera that rendered last, this one or another. The step in
     * world space is left in `direction`. */
    void moveDoom(float x, float y, float z);
    void moveDoom(R3XVECTOR3D step);
    /** Loads the view matrix into the model-view stack and makes this the current camera. Always true. */
    bool render(void *data) override;

    R3XVECTOR3D preRotation;
    R3XVECTOR3D upDirection;
    R3XMATRIX thisCameraMatrix;

    static R3XMATRIX cameraMatrix;
    static R3XVECTOR3D cameraPosition;
    static KTCAMERA *thisPassCamera;

   private:
    void lookAt(R3XVECTOR3D eye, R3XVECTOR3D point);
};

#endif
