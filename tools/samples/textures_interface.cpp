#include "tools/samples/interface.h"
#include "tools/samples/paint.h"

namespace keltra::samples {
namespace {

// Brushed slate, darker toward the bottom, under a bright edge.
Image paintPanel() {
    const int width = 128, height = 64;
    return painted(width, height, [=](int x, int y) {
        const float down = static_cast<float>(y) / height;
        const float brushed = cloudNoise(x / 8, y, width / 8, height, 4, 2, 801) - 0.5f;
        const Vec3 slate =
            mix(Vec3{50, 44, 76}, Vec3{24, 21, 42}, ramp(0.0f, 1.0f, down)) + Vec3{8, 8, 10} * brushed;
        return grained(y == 0 ? Vec3{150, 104, 70} : slate, x, y, 4.0f);
    });
}

// How much of a pixel lies in a disc, its edge smoothed.
float inDisc(int x, int y, float centerX, float centerY, float radius) {
    const float dx = static_cast<float>(x) + 0.5f - centerX, dy = static_cast<float>(y) + 0.5f - centerY;
    return clamp01(radius + 0.5f - std::sqrt(dx * dx + dy * dy));
}

Image paintCrescent() {
    return painted(32, 32, [](int x, int y) {
        const float moon = inDisc(x, y, 15.0f, 16.5f, 12.0f) * (1.0f - inDisc(x, y, 20.5f, 12.5f, 10.5f));
        const float star = inDisc(x, y, 23.0f, 11.0f, 2.2f);
        return grained({255, 206, 128}, x, y, 0.0f, std::max(moon, star));
    });
}

}  // namespace

std::vector<SampleFile> makeInterfaceFiles() {
    return {{"panel.tga", writeTga(paintPanel(), {true, 24, false})},
            {"crescent.tga", writeTga(paintCrescent(), {true, 32, false})}};
}

}  // namespace keltra::samples
