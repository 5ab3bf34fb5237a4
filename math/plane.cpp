// SPDX-License-Identifier: Zlib
#include <keltra/plane.h>

R3XPLANE::R3XPLANE(const R3XVECTOR3D &p1, const R3XVECTOR3D &p2, const R3XVECTOR3D &p3) {
    R3XVECTOR3D normal = ((p2 - p1) ^ (p3 - p1)).normalize();
    a = normal.x;
    b = normal.y;
    c = normal.z;
    d = -(normal % p1);
}

R3XPLANE R3XPLANE::operator=(const R3XPLANE &other) {
    a = other.a;
    b = other.b;
    c = other.c;
    d = other.d;
    return *this;
}

float R3XPLANE::signedDistance(const R3XVECTOR3D &p) const { return a * p.x + b * p.y + c * p.z + d; }

bool R3XPLANE::isFrontFacingTo(const R3XVECTOR3D &direction) const {
    return a * direction.x + b * direction.y + c * direction.z <= 0.0f;
}
