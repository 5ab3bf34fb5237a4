#include "tools/samples/paint.h"
#include "tools/samples/textures.h"

namespace keltra::samples {
namespace {

// Overlapping round scales in staggered rows: 1 at the lit upper rim of a
// scale, 0 in the shadow under its neighbour.
float scaleRelief(int x, int y, int cell) {
    const int row = y / cell;
    const int across = (x + (row % 2) * cell / 2) % cell;
    const float half = static_cast<float>(cell) * 0.5f;
    const float dx = (static_cast<float>(across) + 0.5f - half) / half;
    const float dy = (static_cast<float>(y % cell) + 0.5f) / static_cast<float>(cell);
    const float rim = dy - (1.0f - dx * dx) * 0.75f;  // the scale ends at 0
    return rim > 0.0f ? 0.15f : clamp01(1.0f + rim * 0.9f);
}

}  // namespace

Image paintScales() {
    const int size = 128;
    return painted(size, size, [=](int x, int y) {
        const float around = (static_cast<float>(x) + 0.5f) / size;
        const float fromBelly = std::fabs(around - 0.5f);  // 0 belly .. 0.5 back
        const float mottle = cloudNoise(x, y, size, size, 32, 3, 51);
        const float relief = scaleRelief(x, y, 16);
        Vec3 back = mix(Vec3{18, 104, 100}, Vec3{52, 176, 138}, mottle);
        back = mix(back, Vec3{24, 66, 110}, ramp(0.36f, 0.5f, fromBelly));
        back = back * (0.42f + 0.8f * relief);
        // Belly plates are bands across, each darker towards its lower edge.
        const float band = static_cast<float>(y % 16) / 16.0f;
        const Vec3 belly = mix(Vec3{246, 206, 122}, Vec3{176, 110, 58}, band * band);
        const float seam = ramp(0.13f, 0.17f, fromBelly);
        return grained(mix(belly, back, seam), x, y, 8.0f);
    });
}

Image paintFin() {
    const int size = 32;
    return painted(size, size, [=](int x, int y) {
        const float t = 1.0f - static_cast<float>(y) / (size - 1);
        const float rib = x % 8 < 2 ? 0.7f : 1.0f;
        return grained(mix(Vec3{150, 44, 62}, Vec3{250, 150, 84}, t) * rib, x, y, 8.0f);
    });
}

Image paintGrass() {
    const int size = 128;
    return painted(size, size, [=](int x, int y) {
        const float blades = cloudNoise(x, y, size, size, 4, 2, 61);
        const float patches = cloudNoise(x, y, size, size, 32, 3, 71);
        const Vec3 color = mix(Vec3{58, 92, 84}, Vec3{132, 146, 96}, patches);
        return grained(color * (0.55f + 0.75f * blades), x, y, 10.0f);
    });
}

Image paintCypress() {
    const int size = 64;
    return painted(size, size, [=](int x, int y) {
        const float tufts = cloudNoise(x, y, size, size, 8, 3, 62);
        const float light = 0.4f + 0.9f * tufts;
        return grained(Vec3{44, 78, 66} * light, x, y, 10.0f);
    });
}

Image paintWater() {
    const int size = 128;
    return painted(size, size, [=](int x, int y) {
        const float a = cloudNoise(x, y, size, size, 32, 3, 81);
        const float b = cloudNoise((x + 37) % size, (y + 71) % size, size, size, 32, 3, 91);
        // Bright where either field crosses its middle: a net of light.
        const float net = 1.0f - ramp(0.0f, 0.07f, std::min(std::fabs(a - 0.5f), std::fabs(b - 0.5f)));
        const Vec3 deep = mix(Vec3{24, 92, 120}, Vec3{44, 138, 156}, a);
        return grained(mix(deep, Vec3{190, 246, 236}, net * 0.75f), x, y, 8.0f);
    });
}

}  // namespace keltra::samples
