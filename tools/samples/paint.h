#ifndef KELTRA_SAMPLES_PAINT_H
#define KELTRA_SAMPLES_PAINT_H

// What the texture painters share: float colours, ramps and the way they end
// up in an image.

#include <algorithm>
#include <cmath>

#include "tools/formats/tga_writer.h"
#include "tools/formats/vec.h"
#include "tools/samples/noise.h"

namespace keltra::samples {

using namespace formats;

inline float clamp01(float t) { return std::min(std::max(t, 0.0f), 1.0f); }

// 0 below `low`, 1 above `high`, smooth between.
inline float ramp(float low, float high, float t) {
    const float s = clamp01((t - low) / (high - low));
    return s * s * (3.0f - 2.0f * s);
}

// Colours are vectors of 0 .. 255 while they are mixed.
inline uint8_t toByte(float value) {
    return static_cast<uint8_t>(std::min(std::max(value + 0.5f, 0.0f), 255.0f));
}

// A screen of 5-6-5 bits shows steps of 8: a grain of about that size turns
// them into texture.
inline Rgba grained(Vec3 color, int x, int y, float grain, float alpha = 1.0f) {
    const float n = (static_cast<float>(hashNoise(x, y, 977)) / 65536.0f - 0.5f) * grain;
    return {toByte(color.x + n), toByte(color.y + n), toByte(color.z + n), toByte(alpha * 255.0f)};
}

// Calls paint(x, y) for every pixel, x from the left, y from the top.
template <typename Paint>
Image painted(int width, int height, Paint paint) {
    Image image(static_cast<unsigned>(width), static_cast<unsigned>(height));
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            image.at(static_cast<unsigned>(x), static_cast<unsigned>(y)) = paint(x, y);
        }
    }
    return image;
}

}  // namespace keltra::samples

#endif  // KELTRA_SAMPLES_PAINT_H
