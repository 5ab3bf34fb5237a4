#include "tools/samples/figure_parts.h"
#include "tools/samples/paint.h"

namespace keltra::samples {
namespace {

const Vec3 kSkinTone = {246, 200, 162};
const Vec3 kHairTone = {150, 78, 38};
const Vec3 kCapTone = {196, 52, 48};
const Vec3 kTunicTone = {226, 168, 62};
const Vec3 kTrouserTone = {62, 92, 116};
const Vec3 kLeather = {120, 74, 46};
const Vec3 kScarfTone = {48, 142, 136};
const Vec3 kWool = {246, 236, 214};

// A pixel of an area: 0 .. 1 from its left and from its bottom, and the pixel itself.
struct Spot {
    float across, up;
    int x, y;
};

// How much of an ellipse covers a point, its edge a pixel or two wide.
float ellipse(float x, float y, float halfX, float halfY, float edge) {
    const float r = std::sqrt(x * x / (halfX * halfX) + y * y / (halfY * halfY));
    return 1.0f - ramp(1.0f - edge, 1.0f + edge, r);
}

float weave(const Spot &spot, unsigned seed) {
    return 0.93f + 0.14f * static_cast<float>(hashNoise(spot.x / 2, spot.y, seed)) / 65536.0f;
}

// Both halves of the face at once: `aside` is the distance from its middle. All in degrees on the head.
Vec3 paintFace(Vec3 color, float aside, float longitude, float latitude) {
    const float cheek = ellipse(aside - 37.0f, latitude + 17.0f, 15.0f, 12.0f, 0.85f);
    color = mix(color, Vec3{240, 128, 108}, 0.62f * cheek);
    const float eyeX = aside - 21.0f, eyeY = latitude - 0.5f;
    const float eye = ellipse(eyeX, eyeY, 6.6f, 11.5f, 0.16f);
    const Vec3 iris = mix(Vec3{38, 24, 22}, Vec3{112, 70, 40}, ramp(2.0f, -10.0f, eyeY));
    color = mix(color, iris, eye);
    // The light stands at the same side of both eyes.
    const float fromLight = longitude > 0.0f ? eyeX : -eyeX;
    color = mix(color, Vec3{255, 255, 255}, ellipse(fromLight + 2.2f, eyeY - 4.2f, 2.6f, 3.8f, 0.3f));
    color = mix(color, Vec3{220, 200, 180}, 0.7f * ellipse(fromLight - 2.4f, eyeY + 5.0f, 1.5f, 2.2f, 0.4f));
    const float browArc = latitude - (19.0f - 0.03f * (aside - 20.0f) * (aside - 20.0f));
    const float brow = ellipse(aside - 20.0f, browArc * 4.0f, 9.0f, 8.0f, 0.3f);
    color = mix(color, kHairTone * 0.75f, brow);
    const float smile = latitude - (-31.0f + 0.055f * aside * aside);
    const float mouth = ellipse(aside, smile * 5.0f, 10.5f, 9.0f, 0.35f);
    return mix(color, Vec3{136, 52, 44}, mouth);
}

Vec3 paintHead(const Spot &spot) {
    const float longitude = spot.across * 360.0f - 180.0f, aside = std::fabs(longitude);
    const float latitude = spot.up * 180.0f - 90.0f;
    Vec3 color = kSkinTone * (1.0f - 0.30f * ramp(-34.0f, -66.0f, latitude));
    color = mix(color, kSkinTone * 0.86f, ramp(26.0f, 40.0f, latitude));  // shaded by the hair
    return paintFace(color, aside, longitude, latitude);
}

Vec3 paintHair(const Spot &spot) {
    const float strand = static_cast<float>(hashNoise(spot.x, 0, 301)) / 65536.0f;
    return kHairTone * (0.72f + 0.45f * strand) * (0.86f + 0.28f * spot.up);
}

Vec3 paintCap(const Spot &spot) {
    if (spot.up < 0.40f) {  // the brim of wool
        const float rib = 0.80f + 0.20f * std::fabs(sine(spot.across * 360.0f * 14.0f));
        return kWool * rib * (0.84f + 0.4f * spot.up);
    }
    Vec3 color = kCapTone * weave(spot, 311);
    // Two rows of diamonds.
    const float cell = spot.across * 12.0f, row = spot.up < 0.62f ? 0.53f : 0.72f;
    const float x = cell - std::floor(cell) - 0.5f, y = (spot.up - row) * 5.0f;
    if (std::fabs(x) + std::fabs(y) < 0.26f) color = Vec3{248, 206, 96};
    return color * (0.80f + 0.28f * spot.up);
}

Vec3 paintTunic(const Spot &spot) {
    Vec3 color = kTunicTone * weave(spot, 321);
    const float front = std::fabs(spot.across - 0.5f);
    if (spot.up > 0.10f && spot.up < 0.30f) {  // the hem's border
        const float cell = spot.across * 18.0f, zigzag = std::fabs(cell - std::floor(cell) - 0.5f) * 0.16f;
        const float y = spot.up - 0.16f;
        color = std::fabs(y - zigzag) < 0.028f ? Vec3{250, 232, 190} : Vec3{174, 72, 50} * weave(spot, 322);
    }
    if (spot.up > 0.425f && spot.up < 0.565f) {
        color = kLeather * (0.75f + 0.2f * weave(spot, 323));
        const bool buckle = front < 0.042f, hole = front < 0.022f && std::fabs(spot.up - 0.495f) < 0.035f;
        if (buckle && !hole) color = Vec3{250, 214, 110};
    } else if (spot.up > 0.6f && spot.up < 0.95f) {
        const float step = (spot.up - 0.6f) * 8.0f, y = (step - std::floor(step) - 0.5f) / 8.0f;
        const float button = ellipse(front * 140.0f, y * 60.0f, 2.2f, 2.2f, 0.3f);
        color = mix(color, kTunicTone * 0.72f, front < 0.006f ? 0.8f : 0.0f);
        color = mix(color, Vec3{120, 60, 40}, button);
    }
    const float folds = 0.06f * sine(spot.across * 360.0f * 7.0f) * (1.0f - spot.up);
    return color * (0.92f + 0.14f * spot.up + folds - 0.25f * ramp(0.06f, 0.0f, spot.up));
}

Vec3 paintSleeve(const Spot &spot) {  // up is the cuff
    if (spot.up > 0.78f) return Vec3{174, 72, 50} * weave(spot, 331);
    return kTunicTone * weave(spot, 332) * (1.0f - 0.1f * spot.up);
}

Vec3 paintTrousers(const Spot &spot) {
    return kTrouserTone * weave(spot, 341) * (0.9f + 0.15f * std::fabs(sine(spot.across * 360.0f * 4.0f)));
}

Vec3 paintBoots(const Spot &spot) {
    const float shine = 0.25f * ellipse(spot.across - 0.5f, spot.up - 0.7f, 0.22f, 0.2f, 0.9f);
    const Vec3 color = spot.across < 0.12f || spot.across > 0.88f ? kLeather * 0.6f : kLeather;
    return color * (0.92f + shine) * weave(spot, 351);
}

Vec3 paintScarf(const Spot &spot) {
    const float stripe = spot.up * 5.0f;
    const bool light = stripe - std::floor(stripe) < 0.36f;
    return (light ? kWool : kScarfTone) * weave(spot, 371);
}

struct Cloth {
    TextureArea area;
    Vec3 (*paint)(const Spot &spot);
};

const Cloth kCloths[] = {
    {kHeadArea, paintHead},
    {kCapArea, paintCap},
    {kTunicArea, paintTunic},
    {kSleeveArea, paintSleeve},
    {kTrouserArea, paintTrousers},
    {kBootArea, paintBoots},
    {kMittenArea,
     [](const Spot &spot) {
         return Vec3{188, 60, 52} * weave(spot, 361);
     }},
    {kScarfArea, paintScarf},
    {kHairArea, paintHair},
    {kSkinArea, [](const Spot &) { return kSkinTone * 0.97f; }},
    {kWoolArea, [](const Spot &spot) { return kWool * (0.5f + 0.5f * weave(spot, 381)); }},
};

}  // namespace

Image paintFigure() {
    Image image(kFigureTextureSize, kFigureTextureSize);
    for (const Cloth &cloth : kCloths) {
        const TextureArea &area = cloth.area;
        for (int y = 0; y < area.height; ++y) {
            for (int x = 0; x < area.width; ++x) {
                const Spot spot = {static_cast<float>(x) / static_cast<float>(area.width - 1),
                                   1.0f - static_cast<float>(y) / static_cast<float>(area.height - 1), x, y};
                image.at(static_cast<unsigned>(area.x + x), static_cast<unsigned>(area.y + y)) =
                    grained(cloth.paint(spot), area.x + x, area.y + y, 4.0f);
            }
        }
    }
    return image;
}

}  // namespace keltra::samples
