// SPDX-License-Identifier: Zlib
#ifndef KELTRA_CONVERT_UV_PLACE_H
#define KELTRA_CONVERT_UV_PLACE_H

#include <algorithm>

namespace keltra::convert {

// Where texture coordinates from 0 to 1 go: a picture's place in an atlas.
struct UvPlace {
    float scaleU = 1.0f, scaleV = 1.0f, offsetU = 0.0f, offsetV = 0.0f;

    bool isWhole() const { return scaleU == 1.0f && scaleV == 1.0f && offsetU == 0.0f && offsetV == 0.0f; }
    float u(float value) const { return offsetU + scaleU * std::clamp(value, 0.0f, 1.0f); }
    float v(float value) const { return offsetV + scaleV * std::clamp(value, 0.0f, 1.0f); }
};

}  // namespace keltra::convert

#endif
