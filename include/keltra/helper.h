// SPDX-License-Identifier: Zlib
#ifndef KELTRA_HELPER_H
#define KELTRA_HELPER_H

#include <keltra/node.h>

/** A node that marks a place or a volume for the application and its tools. It draws nothing. */
class KT_API KTHELPER : public KTNODE {
   public:
    /** Radius 1, from (-1, -1, -1) to (1, 1, 1), orange. */
    KTHELPER();
    KTHELPER(const KTHELPER &other);
    KTHELPER &operator=(const KTHELPER &) = default;
    ~KTHELPER() override;

    /** RGBA from 0 to 1, for the application. */
    void setColor(R3XVECTOR4D rgba) { color = rgba; }
    R3XVECTOR4D getColor() const { return color; }
    /** Corners of the volume. */
    void setMin(R3XVECTOR3D corner) { min = corner; }
    void setMax(R3XVECTOR3D corner) { max = corner; }
    /** Draws nothing and returns true. */
    bool render(void *data) override;

    float radius;
    float size;  ///< kept at 1; nothing reads it
    R3XVECTOR4D color;
    R3XVECTOR3D offset;  ///< kept at (0, 0, 0)
    R3XVECTOR3D scale;   ///< kept at (1, 1, 1)
    R3XVECTOR3D min;
    R3XVECTOR3D max;
};

#endif
