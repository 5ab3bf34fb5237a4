// SPDX-License-Identifier: Zlib
#include <keltra/glbridge.h>
#include <keltra/matrix.h>

#include "tests/count/region.h"

namespace {

constexpr unsigned int kTimes = 64;

R3XMATRIX anyPlace() {
    R3XMATRIX place;
    place.setRotation(33.0f, 0.36f, 0.48f, 0.8f);
    place.setTranslation(1.5f, -20.25f, 3.7f);
    return place;
}

void countRotations() {
    KT_glLoadMatrixf(anyPlace().m);
    {
        const count::Region region("KT_glRotatef, 33 degrees about y", kTimes);
        for (unsigned int i = 0; i < kTimes; ++i) KT_glRotatef(33.0f, 0.0f, 1.0f, 0.0f);
    }
    R3XMATRIX rotation;
    {
        const count::Region region("setRotation, 33 degrees about y", kTimes);
        for (unsigned int i = 0; i < kTimes; ++i) rotation.setRotation(33.0f, 0.0f, 1.0f, 0.0f);
    }
    count::require(rotation.m[5] == 1.0f && rotation.m[0] > 0.83f && rotation.m[0] < 0.84f, "rotation");
    {
        const count::Region region("setRotation, angle not seen before", kTimes);
        for (unsigned int i = 0; i < kTimes; ++i)
            rotation.setRotation(static_cast<float>(i) * 1.37f + 0.1f, 0.0f, 1.0f, 0.0f);
    }
}

}  // namespace

void count::countMath() {
    countRotations();
    const R3XMATRIX a = anyPlace();
    R3XMATRIX b = a, product, inverse;
    b.setTranslation(-3.25f, 8.5f, 0.1f);
    const R3XVECTOR3D point(0.7f, -12.5f, 3.3f);
    R3XVECTOR4D moved;
    {
        const Region region("matrix product", kTimes);
        for (unsigned int i = 0; i < kTimes; ++i) product = a * b;
    }
    {
        const Region region("matrix inverse", kTimes);
        for (unsigned int i = 0; i < kTimes; ++i) inverse = a.inverse();
    }
    {
        const Region region("matrix and point", kTimes);
        for (unsigned int i = 0; i < kTimes; ++i) moved = a.transform(point);
    }
    require(product.m[15] == 1.0f && inverse.m[15] == 1.0f && moved.w == 1.0f, "product");
}
