#include <algorithm>
#include <vector>

#include "tools/samples/figure_parts.h"
#include "tools/samples/paint.h"
#include "tools/samples/shapes.h"

namespace keltra::samples {
namespace {

constexpr int kInfluences = 2;

// Which bones hold a vertex: `share` belongs to the second.
struct Hold {
    int first = kHips;
    int second = kHips;
    float share = 0.0f;
};

Hold only(int bone) { return {bone, bone, 0.0f}; }

// A cross-section, half widths to the right and to the front.
struct Ring {
    Vec3 center;
    float right, front;
    Hold hold;
};

// Where a vertex lies in its area: `across` and `up` from 0 to 1.
Vec2 inArea(const TextureArea &area, float across, float up) {
    const float x = static_cast<float>(area.x) + 0.5f + across * static_cast<float>(area.width - 1);
    const float y = static_cast<float>(area.y) + 0.5f + (1.0f - up) * static_cast<float>(area.height - 1);
    const float scale = 1.0f / static_cast<float>(kFigureTextureSize);
    return {x * scale, 1.0f - y * scale};
}

float fraction(int i, int count) { return static_cast<float>(i) / static_cast<float>(count); }

// The figure's one mesh under construction, with the hold of every vertex.
class Body {
   public:
    // As MeshBuilder::patch; `hold` is called like the others.
    template <typename Point, typename HoldAt>
    void patch(int across, int along, const TextureArea &area, Point point, HoldAt hold) {
        mesh_.patch(across, along, point,
                    [&](int i, int j) { return inArea(area, fraction(i, across), fraction(j, along)); });
        for (int j = 0; j <= along; ++j) {
            for (int i = 0; i <= across; ++i) {
                holds_.push_back(hold(i, j));
            }
        }
    }

    // A round limb through its rings. `front` is the direction at the middle of the area; the seam lies
    // behind.
    void tube(int sides, const std::vector<Ring> &rings, const TextureArea &area, Vec3 front) {
        const Vec3 up = normalized(rings.back().center - rings.front().center);
        const Vec3 right = normalized(cross(up, front));
        const Vec3 ahead = cross(right, up);
        patch(
            sides, static_cast<int>(rings.size()) - 1, area,
            [&](int i, int j) {
                const Ring &ring = rings[static_cast<size_t>(j)];
                const float turn = aroundFromBehind(i, sides);
                return ring.center + right * (sine(turn) * ring.right) + ahead * (cosine(turn) * ring.front);
            },
            [&](int, int j) { return rings[static_cast<size_t>(j)].hold; });
    }

    void ball(int sides, int rings, Vec3 center, Vec3 half, const TextureArea &area, int bone) {
        patch(
            sides, rings, area,
            [&](int i, int j) {
                const float turn = aroundFromBehind(i, sides), up = 180.0f * fraction(j, rings) - 90.0f;
                const float reach = cosine(up);
                return center +
                       Vec3{sine(turn) * reach * half.x, sine(up) * half.y, cosine(turn) * reach * half.z};
            },
            [&](int, int) { return only(bone); });
    }

    Node finish() const {
        Node node = mesh_.finish("figureSkin", "figure");
        MeshData &mesh = node.mesh;
        mesh.influences = kInfluences;
        for (const FigureJoint &joint : kFigureJoints) {
            mesh.boneNames.push_back(joint.name);
        }
        for (const Hold &hold : holds_) {
            const float share = onGrid(hold.share);
            mesh.influenceBones.push_back(static_cast<uint8_t>(hold.first));
            mesh.influenceBones.push_back(static_cast<uint8_t>(hold.second));
            mesh.influenceWeights.push_back(1.0f - share);
            mesh.influenceWeights.push_back(share);
        }
        return node;
    }

    // Degrees of side i; the first and the last fall together exactly, so that the seam is smooth.
    static float aroundFromBehind(int i, int sides) { return 180.0f + 360.0f * fraction(i % sides, sides); }

   private:
    MeshBuilder mesh_;
    std::vector<Hold> holds_;
};

constexpr Vec3 kForward = {0.0f, 0.0f, 1.0f};
constexpr Vec3 kUpward = {0.0f, 1.0f, 0.0f};

const Vec3 kHeadCenter = {0.0f, 1.86f, 0.0f};
const Vec3 kHeadHalf = {0.50f, 0.455f, 0.455f};

// The tunic bends with the back; its skirt gives way to the thighs.
Hold tunicHold(Vec3 point) {
    if (point.y < 0.78f) {
        const float low = ramp(0.80f, 0.50f, point.y), aside = clamp01(std::fabs(point.x) / 0.26f);
        return {kHips, point.x > 0.0f ? kThigh : kThigh + kSide, 0.42f * low * aside};
    }
    if (point.y < 1.02f) return {kHips, kSpine, ramp(0.80f, 1.0f, point.y)};
    return {kSpine, kChest, ramp(1.02f, 1.20f, point.y)};
}

void addTunic(Body *body) {
    struct Cut {
        float y, right, front;
    };
    // The hem is turned in, so that no one looks through below it.
    const Cut cuts[] = {{0.61f, 0.24f, 0.22f},  {0.55f, 0.36f, 0.34f}, {0.59f, 0.38f, 0.36f},
                        {0.72f, 0.34f, 0.315f}, {0.84f, 0.30f, 0.27f}, {0.93f, 0.30f, 0.27f},
                        {1.08f, 0.325f, 0.28f}, {1.22f, 0.31f, 0.26f}, {1.34f, 0.225f, 0.20f},
                        {1.44f, 0.15f, 0.14f}};
    const int sides = 12, along = static_cast<int>(sizeof(cuts) / sizeof(cuts[0])) - 1;
    const auto point = [&](int i, int j) {
        const float turn = Body::aroundFromBehind(i, sides);
        return Vec3{sine(turn) * cuts[j].right, cuts[j].y, cosine(turn) * cuts[j].front};
    };
    body->patch(sides, along, kTunicArea, point, [&](int i, int j) { return tunicHold(point(i, j)); });
}

// From the shoulder's ball, which turns inside the tunic, down to the cuff; a mitten with its thumb.
void addArm(Body *body, float side) {
    const int offset = side > 0.0f ? 0 : kSide;
    const int upper = kUpperArm + offset, fore = kForearm + offset, hand = kHand + offset;
    const Vec3 shoulder = kFigureJoints[upper].place;
    const Vec3 down = normalized(kFigureJoints[hand].place - shoulder);
    const auto at = [&](float distance) { return shoulder + down * distance; };
    const float elbow = length(kFigureJoints[fore].place - shoulder);
    const float wrist = length(kFigureJoints[hand].place - shoulder);
    const auto bend = [&](float share) { return Hold{upper, fore, share}; };
    body->tube(7,
               {{at(-0.15f), 0.0f, 0.0f, only(upper)},
                {at(-0.10f), 0.11f, 0.11f, only(upper)},
                {at(0.0f), 0.145f, 0.15f, only(upper)},
                {at(elbow - 0.12f), 0.13f, 0.13f, only(upper)},
                {at(elbow - 0.05f), 0.125f, 0.125f, bend(0.25f)},
                {at(elbow), 0.125f, 0.125f, bend(0.5f)},
                {at(elbow + 0.05f), 0.125f, 0.125f, bend(0.75f)},
                {at(elbow + 0.12f), 0.13f, 0.13f, only(fore)},
                {at(wrist - 0.03f), 0.155f, 0.155f, only(fore)},
                {at(wrist), 0.155f, 0.155f, only(fore)},
                {at(wrist - 0.02f), 0.09f, 0.09f, only(fore)}},
               kSleeveArea, kForward);
    body->tube(6,
               {{at(wrist - 0.08f), 0.07f, 0.07f, only(fore)},
                {at(wrist), 0.085f, 0.085f, {fore, hand, 0.5f}},
                {at(wrist + 0.06f), 0.105f, 0.115f, only(hand)},
                {at(wrist + 0.13f), 0.11f, 0.125f, only(hand)},
                {at(wrist + 0.20f), 0.085f, 0.095f, only(hand)},
                {at(wrist + 0.24f), 0.0f, 0.0f, only(hand)}},
               kMittenArea, kForward);
    body->ball(5, 3, at(wrist + 0.07f) + Vec3{-0.02f * side, 0.0f, 0.11f}, {0.045f, 0.065f, 0.055f},
               kMittenArea, hand);
}

void addLeg(Body *body, float side) {
    const int offset = side > 0.0f ? 0 : kSide;
    const int thigh = kThigh + offset, shin = kShin + offset, foot = kFoot + offset;
    const Vec3 hip = kFigureJoints[thigh].place;
    const Vec3 knee = kFigureJoints[shin].place, ankle = kFigureJoints[foot].place;
    const auto at = [&](float y) { return Vec3{hip.x, y, 0.0f}; };
    const auto bend = [&](float share) { return Hold{shin, thigh, share}; };
    body->tube(7,
               {{at(ankle.y + 0.08f), 0.11f, 0.11f, only(shin)},
                {at(knee.y - 0.08f), 0.125f, 0.125f, only(shin)},
                {at(knee.y - 0.03f), 0.127f, 0.127f, bend(0.3f)},
                {at(knee.y + 0.02f), 0.13f, 0.13f, bend(0.6f)},
                {at(knee.y + 0.08f), 0.135f, 0.135f, only(thigh)},
                {at(hip.y), 0.15f, 0.15f, only(thigh)},
                {at(hip.y + 0.12f), 0.08f, 0.08f, only(thigh)},
                {at(hip.y + 0.15f), 0.0f, 0.0f, only(thigh)}},
               kTrouserArea, kForward);
    // The boot's shaft, rolled over at its top, and its foot.
    body->tube(7,
               {{at(ankle.y - 0.05f), 0.115f, 0.115f, only(foot)},
                {at(ankle.y + 0.04f), 0.125f, 0.125f, {foot, shin, 0.5f}},
                {at(ankle.y + 0.13f), 0.14f, 0.14f, only(shin)},
                {at(ankle.y + 0.17f), 0.165f, 0.165f, only(shin)},
                {at(ankle.y + 0.22f), 0.165f, 0.165f, only(shin)},
                {at(ankle.y + 0.20f), 0.12f, 0.12f, only(shin)}},
               kBootArea, kForward);
    const auto sole = [&](float y, float z) { return Vec3{hip.x, y, z}; };
    body->tube(7,
               {{sole(0.10f, -0.16f), 0.0f, 0.0f, only(foot)},
                {sole(0.10f, -0.14f), 0.09f, 0.085f, only(foot)},
                {sole(0.11f, -0.05f), 0.125f, 0.11f, only(foot)},
                {sole(0.11f, 0.08f), 0.135f, 0.11f, only(foot)},
                {sole(0.10f, 0.20f), 0.14f, 0.10f, only(foot)},
                {sole(0.085f, 0.28f), 0.095f, 0.075f, only(foot)},
                {sole(0.08f, 0.31f), 0.0f, 0.0f, only(foot)}},
               kBootArea, kUpward);
}

// Tufts over the forehead, long at the back: a shell a little outside of the head.
void addHair(Body *body) {
    const int sides = 16, along = 5;
    body->patch(
        sides, along, kHairArea,
        [&](int i, int j) {
            const float turn = Body::aroundFromBehind(i, sides), front = cosine(turn);
            const float tuft = i % 2 ? 7.0f : -7.0f;
            const float rim =
                (front > 0.0f ? mix(-14.0f, 33.0f, ramp(0.12f, 0.7f, front)) : mix(-14.0f, -44.0f, -front)) +
                tuft;
            const float up = mix(rim, 90.0f, fraction(j, along)), reach = cosine(up);
            const float wide = 1.085f + 0.025f * (1.0f - fraction(j, along));
            return kHeadCenter + Vec3{sine(turn) * reach * kHeadHalf.x, sine(up) * kHeadHalf.y,
                                      cosine(turn) * reach * kHeadHalf.z} *
                                     wide;
        },
        [](int, int) { return only(kHead); });
}

// A rolled brim and a long felt cone that bends to the back, with a pompon.
void addCap(Body *body) {
    const auto ring = [](float y, float back, float half, Hold hold) {
        return Ring{{0.0f, y, -back}, half * 1.04f, half * 0.98f, hold};
    };
    const Hold head = only(kHead), tip = only(kCapTip);
    body->tube(
        14,
        {ring(2.06f, 0.02f, 0.46f, head), ring(2.03f, 0.02f, 0.535f, head), ring(2.09f, 0.02f, 0.575f, head),
         ring(2.17f, 0.02f, 0.55f, head), ring(2.19f, 0.03f, 0.475f, head), ring(2.32f, 0.04f, 0.425f, head),
         ring(2.46f, 0.07f, 0.345f, {kHead, kCap, 0.5f}), ring(2.60f, 0.11f, 0.265f, only(kCap)),
         ring(2.73f, 0.17f, 0.19f, {kCap, kCapTip, 0.5f}), ring(2.85f, 0.25f, 0.125f, tip),
         ring(2.94f, 0.33f, 0.07f, tip)},
        kCapArea, kForward);
    body->ball(8, 5, {0.0f, 2.97f, -0.37f}, {0.125f, 0.125f, 0.125f}, kWoolArea, kCapTip);
}

// Wound once around the neck; one end hangs down the back on the left.
void addScarf(Body *body) {
    const int sides = 12, along = 6;
    body->patch(
        sides, along, kScarfArea,
        [&](int i, int j) {
            const float turn = Body::aroundFromBehind(i, sides),
                        slope = 180.0f - 360.0f * fraction(j % along, along);
            // Outside runs up while j grows.
            const float out = 0.205f - 0.105f * cosine(slope), up = 0.09f * sine(slope);
            return Vec3{sine(turn) * out * 1.08f, 1.43f + up - 0.02f * cosine(turn), cosine(turn) * out};
        },
        [](int, int) {
            return Hold{kChest, kHead, 0.25f};
        });
    const auto end = [](float y, float back, float half, Hold hold) {
        return Ring{{0.15f, y, -back}, half, 0.035f, hold};
    };
    body->tube(
        6,
        {end(0.72f, 0.40f, 0.0f, only(kScarfEnd)), end(0.725f, 0.40f, 0.13f, only(kScarfEnd)),
         end(0.86f, 0.385f, 0.125f, only(kScarfEnd)), end(1.0f, 0.37f, 0.12f, {kScarfEnd, kScarf, 0.5f}),
         end(1.15f, 0.35f, 0.115f, only(kScarf)), end(1.32f, 0.29f, 0.11f, only(kScarf)),
         end(1.42f, 0.22f, 0.10f, {kScarf, kChest, 0.6f}), end(1.44f, 0.20f, 0.0f, only(kChest))},
        kScarfArea, {0.0f, 0.0f, -1.0f});
}

}  // namespace

Node makeFigureBody() {
    Body body;
    addTunic(&body);
    for (float side : {1.0f, -1.0f}) {
        addArm(&body, side);
        addLeg(&body, side);
    }
    body.ball(16, 10, kHeadCenter, kHeadHalf, kHeadArea, kHead);
    body.ball(6, 4, kHeadCenter + Vec3{0.0f, -0.06f, 0.455f}, {0.06f, 0.05f, 0.06f}, kSkinArea, kHead);
    for (float side : {1.0f, -1.0f}) {
        body.ball(5, 4, kHeadCenter + Vec3{0.51f * side, -0.05f, 0.03f}, {0.06f, 0.10f, 0.08f}, kSkinArea,
                  kHead);
    }
    addHair(&body);
    addCap(&body);
    addScarf(&body);
    return body.finish();
}

}  // namespace keltra::samples
