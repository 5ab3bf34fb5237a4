// SPDX-License-Identifier: Zlib
#include "math/sparse.h"

#if defined(KELTRA_SOFT_ARM)

float keltra::multiplyAddWithZeros(float a, float b, float c) {
    if ((isZero(a) && isFinite(b)) || (isZero(b) && isFinite(a))) return isOrdinary(c) ? c : a * b + c;
    return sum(a * b, c);
}

#endif
