#include <cmath>

#include "tools/samples/paint.h"
#include "tools/samples/particles.h"

namespace keltra::samples {

namespace {

constexpr int kSize = 64;
constexpr float kRadius = 0.2071f;  // of the largest disc in the right quarter of a square

// 0 in the middle of that disc, 1 at its edge and beyond.
float fromDisc(int x, int y) {
    const float u = (static_cast<float>(x) + 0.5f) / kSize - (1.0f - kRadius);
    const float v = (static_cast<float>(y) + 0.5f) / kSize - 0.5f;
    return std::min(std::sqrt(u * u + v * v) / kRadius, 1.0f);
}

// White, for the particles' own colour; the shape is its alpha.
Rgba shaped(float alpha) { return {255, 255, 255, toByte(alpha * 255.0f)}; }

Image paintDrop() {
    return painted(kSize, kSize,
                   [](int x, int y) { return shaped(ramp(0.0f, 0.6f, 1.0f - fromDisc(x, y))); });
}

// A hot point in a wide glow.
Image paintSpark() {
    return painted(kSize, kSize, [](int x, int y) {
        const float fall = 1.0f - fromDisc(x, y);
        return shaped(std::min(1.0f, 0.55f * fall + ramp(0.45f, 0.8f, fall)));
    });
}

Image paintPuff() {
    return painted(kSize, kSize, [](int x, int y) {
        const float fall = 1.0f - fromDisc(x, y);
        const float billow = cloudNoise(x, y, kSize, kSize, 16, 3, 733);
        return shaped(ramp(0.0f, 0.75f, fall) * (0.45f + 0.55f * billow));
    });
}

}  // namespace

std::vector<SampleFile> makeParticleFiles() {
    return {{"drop.tga", writeTga(paintDrop(), {true, 32, false})},
            {"spark.tga", writeTga(paintSpark(), {true, 32, false})},
            {"puff.tga", writeTga(paintPuff(), {true, 32, false})}};
}

}  // namespace keltra::samples
