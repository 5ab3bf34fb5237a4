// SPDX-License-Identifier: Zlib
#ifndef KELTRA_MATH_SINE_H
#define KELTRA_MATH_SINE_H

namespace keltra {

struct SineCosine {
    float sine, cosine;
};

// Of an angle in radians: the double-precision results of the C library, rounded to floats. Without a
// floating-point unit they are computed in integers below 1,024 radians, with the same bits.
SineCosine sineCosine(float radians);
SineCosine sineCosineByIntegers(float radians);

// degrees * 0.0055555557f * 3.1415927f, and (1 - cosine) + cosine of a cosine, rounded after each operation.
float radiansByIntegers(float degrees);
float unitByIntegers(float cosine);

struct Rotation {
    float sine, cosine;
    float unit;  // (1 - cosine) + cosine, which is 1 or the float below
};

// The same for an angle in degrees, which is `degrees * 0.0055555557f * 3.1415927f` radians. Angles seen
// before are kept in a small table: most nodes of a scene stand still, and bones are walked more than once a
// frame.
const Rotation &rotationOf(float degrees);

}  // namespace keltra

#endif
