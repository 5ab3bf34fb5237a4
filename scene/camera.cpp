// SPDX-License-Identifier: Zlib
#include <keltra/camera.h>

#include <keltra/glbridge.h>

#include "scene/local_transform.h"

R3XMATRIX KTCAMERA::cameraMatrix;
R3XVECTOR3D KTCAMERA::cameraPosition;
KTCAMERA *KTCAMERA::thisPassCamera = nullptr;

KTCAMERA::KTCAMERA() : upDirection(0.0f, 1.0f, 0.0f) {
    joinClass(KT_CAMERA);
    setIdentity(KT_CAMERA, "[camera %d]");
}

KTCAMERA::KTCAMERA(const KTCAMERA &other) : KTNODE(other) {
    joinClass(KT_CAMERA);
    *this = other;
}

KTCAMERA::~KTCAMERA() {
    if (thisPassCamera == this) thisPassCamera = nullptr;
}

void KTCAMERA::moveDoom(float x, float y, float z) {
    const float *m = cameraMatrix.m;
    direction.set(m[0] * x + m[1] * y + m[2] * z,  //
                  m[4] * x + m[5] * y + m[6] * z,  //
                  m[8] * x + m[9] * y + m[10] * z);
    position += direction;
}

void KTCAMERA::moveDoom(R3XVECTOR3D step) { moveDoom(step.x, step.y, step.z); }

bool KTCAMERA::render(void *) {
    KT_glLoadIdentity();
    keltra::applyRotation(preRotation);
    R3XVECTOR3D eye = transformMode == 1 ? matrix.getTranslation() : position;
    if (targetNode == this) {
        lookAt(eye, target);
    } else if (targetNode) {
        setTargetNode(targetNode);  // the application may have written it to the field
        R3XVECTOR3D point = targetNode->getFinalMatrix(nullptr).getTranslation();
        KT_glLoadIdentity();
        lookAt(eye, point);
    } else if (transformMode == 1) {
        // Deliberate: the matrix is not inverted; applications give a view matrix.
        KT_glMultMatrixf(matrix.m);
    } else {
        // Deliberate: Z, X, Y, unlike the X, Y, Z of other nodes; first-person views turn about Y, then look
        // up or down.
        KT_glRotatef(-rotation.z, 0.0f, 0.0f, 1.0f);
        KT_glRotatef(-rotation.x, 1.0f, 0.0f, 0.0f);
        KT_glRotatef(-rotation.y, 0.0f, 1.0f, 0.0f);
        KT_glTranslatef(-position.x, -position.y, -position.z);
    }
    cameraPosition = eye;
    KT_glGetFloatv(0, cameraMatrix.m);
    thisCameraMatrix = cameraMatrix;
    thisPassCamera = this;
    return true;
}

// Replaces the model-view matrix, a pre-rotation in it too. Without a direction to look in (the eye on the
// point, or the up vector along the view) the axes that cannot be made are zero.
void KTCAMERA::lookAt(R3XVECTOR3D eye, R3XVECTOR3D point) {
    R3XVECTOR3D z = eye - point;
    z.normalize();
    R3XVECTOR3D x = upDirection ^ z;
    R3XVECTOR3D y = z ^ x;
    x.normalize();
    y.normalize();
    const float view[16] = {x.x, y.x, z.x, 0.0f, x.y,  y.y,  z.y,  0.0f,
                            x.z, y.z, z.z, 0.0f, 0.0f, 0.0f, 0.0f, 1.0f};
    KT_glLoadMatrixf(view);
    KT_glTranslatef(-eye.x, -eye.y, -eye.z);
}
