// SPDX-License-Identifier: Zlib
#ifndef KELTRA_PLANE_H
#define KELTRA_PLANE_H

#include <keltra/vector.h>

#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wshadow"  // parameters are named after the components that they set
#endif

/** The plane a*x + b*y + c*z + d = 0, with the normal (a, b, c). */
class KT_API R3XPLANE {
   public:
    /** All four values 0. */
    R3XPLANE() : a(0.0f), b(0.0f), c(0.0f), d(0.0f) {}
    R3XPLANE(float a, float b, float c, float d) : a(a), b(b), c(c), d(d) {}
    R3XPLANE(const R3XVECTOR3D &normal, float d) : a(normal.x), b(normal.y), c(normal.z), d(d) {}
    /** Through three points, counter-clockwise seen from the front; a degenerate triangle gives a zero
     * normal. */
    R3XPLANE(const R3XVECTOR3D &p1, const R3XVECTOR3D &p2, const R3XVECTOR3D &p3);
    R3XPLANE(const R3XPLANE &) = default;
    /** Returns a copy of the new value. */
    R3XPLANE operator=(const R3XPLANE &other);

    /** Positive in front of the plane, in units of the normal's length. */
    float signedDistance(const R3XVECTOR3D &p) const;
    /** The same signed value: negative for points behind the plane. */
    float distance(const R3XVECTOR3D &p) const { return signedDistance(p); }
    /** True when the plane faces someone who looks along `direction`, edge-on included. */
    bool isFrontFacingTo(const R3XVECTOR3D &direction) const;

    float a, b, c, d;
};

#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif

#endif
