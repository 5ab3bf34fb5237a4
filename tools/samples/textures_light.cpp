#include "tools/samples/paint.h"
#include "tools/samples/textures.h"

namespace keltra::samples {
namespace {

// Distance from the middle of a square image, 1 at the middle of its edges.
float fromMiddle(int x, int y, int size) {
    const float half = static_cast<float>(size) * 0.5f;
    const float dx = (static_cast<float>(x) + 0.5f - half) / half;
    const float dy = (static_cast<float>(y) + 0.5f - half) / half;
    return std::sqrt(dx * dx + dy * dy);
}

// Colour of the evening sky by height: 0 horizon .. 1 zenith.
Vec3 duskColor(float height) {
    struct Stop {
        float at;
        Vec3 color;
    };
    static const Stop kStops[] = {{0.00f, {248, 176, 118}}, {0.10f, {226, 122, 116}}, {0.22f, {158, 82, 134}},
                                  {0.38f, {92, 58, 128}},   {0.60f, {46, 38, 96}},    {1.00f, {20, 20, 58}}};
    for (size_t i = 1; i < sizeof(kStops) / sizeof(kStops[0]); ++i) {
        if (height <= kStops[i].at) {
            const Stop &low = kStops[i - 1];
            const Stop &high = kStops[i];
            return mix(low.color, high.color, (height - low.at) / (high.at - low.at));
        }
    }
    return {20, 20, 58};
}

// Brightness of the star field at a pixel: single stars, some with a faint
// neighbourhood so that magnification keeps them round.
float starLight(int x, int y, int width) {
    float light = 0.0f;
    for (int dy = -1; dy <= 1; ++dy) {
        for (int dx = -1; dx <= 1; ++dx) {
            const int sx = (x + dx + width) % width, sy = y + dy;
            const int chance = hashNoise(sx, sy, 401);
            if (chance >= 260) continue;
            const float power = 0.35f + 0.65f * static_cast<float>(chance) / 260.0f;
            const int distance = dx * dx + dy * dy;
            light += power * (distance == 0 ? 1.0f : distance == 1 ? 0.28f : 0.08f);
        }
    }
    return clamp01(light);
}

}  // namespace

Image paintSky() {
    const int width = 512, height = 256;
    return painted(width, height, [=](int x, int y) {
        const float up = 1.0f - (static_cast<float>(y) + 0.5f) / height;
        Vec3 color = duskColor(up);
        color = mix(color, Vec3{255, 246, 226}, starLight(x, y, width) * ramp(0.2f, 0.6f, up));
        // Long thin clouds: the noise is stretched four times sideways.
        const float n = cloudNoise(x / 4 + 7, y, width / 4, height, 32, 4, 411);
        const float fine = cloudNoise(x / 2, y, width / 2, height, 16, 3, 421);
        const float cover = ramp(0.52f, 0.74f, n * 0.75f + fine * 0.25f) * (1.0f - ramp(0.42f, 0.72f, up));
        const Vec3 lit = mix(Vec3{255, 196, 140}, Vec3{150, 92, 146}, ramp(0.05f, 0.4f, up));
        return grained(mix(color, lit, cover * 0.7f), x, y, 7.0f);
    });
}

Image paintMoon() {
    const int size = 128;
    return painted(size, size, [=](int x, int y) {
        const float r = fromMiddle(x, y, size);
        const float seas = cloudNoise(x, y, size, size, 32, 4, 431);
        const float craters = cloudNoise(x, y, size, size, 8, 2, 441);
        Vec3 color = mix(Vec3{255, 246, 216}, Vec3{206, 188, 178}, ramp(0.44f, 0.62f, seas));
        color = color * (0.92f + 0.12f * craters);
        // The disc fills three fifths; a thin halo fades out around it.
        const float disc = 1.0f - ramp(0.585f, 0.615f, r);
        const float fall = clamp01((1.0f - r) / 0.4f);
        const float halo = 0.34f * fall * fall;
        const Vec3 mixed = mix(Vec3{255, 214, 178}, color, disc);
        return grained(mixed, x, y, 4.0f, std::max(disc, halo));
    });
}

Image paintGlow() {
    const int size = 64;
    return painted(size, size, [=](int x, int y) {
        const float fall = clamp01(1.0f - fromMiddle(x, y, size));
        const float grain = (static_cast<float>(hashNoise(x, y, 451)) / 65536.0f - 0.5f) * 0.02f;
        const float alpha = fall * fall * (0.45f + 0.55f * fall);
        return grained({255, 255, 255}, x, y, 0.0f, fall > 0.02f ? clamp01(alpha + grain * fall) : 0.0f);
    });
}

Image paintMist() {
    const int width = 128, height = 64;
    return painted(width, height, [=](int x, int y) {
        const float up = 1.0f - (static_cast<float>(y) + 0.5f) / height;
        const float n = cloudNoise(x, y, width, height, 32, 4, 461);
        const float alpha = clamp01((1.0f - up) * (1.0f - up) * (0.55f + 0.9f * n));
        return grained({255, 255, 255}, x, y, 0.0f, y == 0 ? 0.0f : alpha);
    });
}

Image paintBronze() {
    const int size = 64;
    return painted(size, size, [=](int x, int y) {
        const float rough = cloudNoise(x, y, size, size, 16, 3, 471);
        const float patina = ramp(0.55f, 0.75f, cloudNoise(x, y, size, size, 32, 3, 481));
        const Vec3 metal = Vec3{140, 98, 58} * (0.7f + 0.6f * rough);
        return grained(mix(metal, Vec3{70, 128, 112}, patina), x, y, 8.0f);
    });
}

Image paintPane() {
    const int size = 64;
    return painted(size, size, [=](int x, int y) {
        const bool frame = x < 5 || x >= size - 5 || y < 5 || y >= size - 5;
        const bool bar = x >= 30 && x < 34;
        const float r = fromMiddle(x, y, size);
        const Vec3 glass = mix(Vec3{255, 232, 160}, Vec3{255, 150, 54}, clamp01(r));
        return grained(frame || bar ? Vec3{70, 44, 26} : glass, x, y, 6.0f);
    });
}

}  // namespace keltra::samples
