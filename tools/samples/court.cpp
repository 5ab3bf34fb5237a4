#include <algorithm>
#include <cstdlib>

#include "tools/samples/noise.h"
#include "tools/samples/parts.h"

namespace keltra::samples {
namespace {

constexpr float kPavingEdge = 14.0f;
constexpr float kMasonryTexel = 4.0f;  // units per repeat of the masonry

// One slice of a body turned about the pool. Slices keep their own nearest
// lights, so that each lantern lights the stones around it.
Node slice(const std::string &name, const std::string &material, const std::vector<Vec2> &profile, Turn turn,
           int number, int count) {
    const float step = 360.0f / static_cast<float>(count);
    turn.from = step * static_cast<float>(number);
    turn.to = turn.from + step;
    MeshBuilder mesh;
    mesh.lathe(profile, false, turn);
    const Vec2 inner = profile.front(), outer = profile.back();
    const Vec3 center =
        polar(turn.from + step * 0.5f, (inner.x + outer.x) * 0.5f, (inner.y + outer.y) * 0.5f);
    return mesh.finish(name + std::to_string(number), material, center);
}

// Flat ring in cells small enough for the lanterns' pools of light to show.
std::vector<Vec2> flatRing(float outer, float inner, float y, int cells) {
    std::vector<Vec2> profile;
    for (int i = 0; i <= cells; ++i) {
        profile.push_back({mix(outer, inner, static_cast<float>(i) / static_cast<float>(cells)), y});
    }
    return profile;
}

void addFloor(Node *court) {
    Turn turn;
    turn.sides = 4;
    turn.repeats = 1.0f;
    turn.vScale = 1.0f / 5.6f;
    for (int i = 0; i < 12; ++i) {
        court->children.push_back(slice("innerPaving", "paving", flatRing(9.8f, 5.4f, 0.0f, 5), turn, i, 12));
        court->children.push_back(
            slice("outerPaving", "paving", flatRing(kPavingEdge, 9.8f, 0.0f, 4), turn, i, 12));
    }
    turn.sides = 4;
    turn.repeats = 3.0f;
    turn.vScale = 1.0f / kMasonryTexel;
    const std::vector<Vec2> steps = {{15.6f, -1.2f}, {15.6f, -0.8f},       {14.8f, -0.8f},
                                     {14.8f, -0.4f}, {kPavingEdge, -0.4f}, {kPavingEdge, 0.0f}};
    for (int i = 0; i < 8; ++i) {
        court->children.push_back(slice("steps", "masonry", steps, turn, i, 8));
    }
}

void addPool(Node *court) {
    Turn turn;
    turn.sides = 5;
    turn.repeats = 2.0f;
    turn.vScale = 1.0f / kMasonryTexel;
    const std::vector<Vec2> rim = {{5.5f, 0.0f},  {5.5f, 0.7f},         {5.7f, 0.7f},
                                   {5.7f, 0.95f}, {kPoolRadius, 0.95f}, {kPoolRadius, -0.8f}};
    for (int i = 0; i < 6; ++i) {
        court->children.push_back(slice("poolRim", "rim", rim, turn, i, 6));
    }
    turn.sides = 24;
    turn.repeats = 6.0f;
    turn.vScale = 1.0f / 3.0f;
    MeshBuilder bottom;
    bottom.lathe(flatRing(kPoolRadius, 0.0f, -0.8f, 2), true, turn);
    court->children.push_back(bottom.finish("poolFloor", "mosaic", {0.0f, -0.8f, 0.0f}));

    const int cells = 10;  // a square net, cut to the circle by moving its points
    MeshBuilder water;
    water.patch(
        cells, cells,
        [](int i, int j) {
            const float x = static_cast<float>(2 * i - cells) / cells;
            const float z = static_cast<float>(cells - 2 * j) / cells;
            const float rx = x * std::sqrt(1.0f - z * z * 0.5f);
            const float rz = z * std::sqrt(1.0f - x * x * 0.5f);
            const float wave = static_cast<float>(hashNoise(i, j, 601)) / 65536.0f - 0.5f;
            return Vec3{rx * kPoolRadius, kWaterLevel + wave * 0.10f, rz * kPoolRadius};
        },
        [](int i, int j) {
            return Vec2{static_cast<float>(i) * 1.6f / cells, static_cast<float>(j) * 1.6f / cells};
        });
    court->children.push_back(water.finish("water", "water", {0.0f, kWaterLevel, 0.0f}));
}

constexpr int kShaftSides = 9;
constexpr float kShaftFoot = 0.8f;
constexpr float kShaftTop = 5.4f;

Vec3 onShaft(int side, float y) {
    const float radius = mix(0.74f, 0.62f, (y - kShaftFoot) / (kShaftTop - kShaftFoot));
    return polar(360.0f * static_cast<float>(side) / kShaftSides, radius, y);
}

// How much higher or lower than its height a broken shaft ends on that side.
float breakAt(int side) {
    const float degrees = 360.0f * static_cast<float>(side) / kShaftSides;
    return 0.55f * sine(degrees + 40.0f) + 0.2f * sine(degrees * 3.0f);
}

void addShaft(MeshBuilder *mesh, float top, bool broken) {
    const int cells = 3;
    mesh->patch(
        kShaftSides, cells,
        [&](int i, int j) {
            const Vec3 p = onShaft(i, mix(kShaftFoot, top, static_cast<float>(j) / cells));
            return broken && j == cells ? p + Vec3{0.0f, breakAt(i), 0.0f} : p;
        },
        [&](int i, int j) {
            return Vec2{2.0f * static_cast<float>(i) / kShaftSides,
                        mix(kShaftFoot, top, static_cast<float>(j) / cells) * 0.25f};
        });
    if (!broken) return;
    mesh->patch(
        kShaftSides, 1,
        [&](int i, int j) {
            return j == 0 ? onShaft(i, top) + Vec3{0.0f, breakAt(i), 0.0f} : Vec3{0.0f, top, 0.0f};
        },
        [](int i, int j) {
            return Vec2{static_cast<float>(i) * 0.1f, static_cast<float>(j) * 0.1f};
        });
}

Node makeColumn(int number, float degrees, float top) {
    const bool broken = top < kShaftTop;
    Turn turn;
    turn.sides = kShaftSides;
    turn.repeats = 2.0f;
    turn.vScale = 0.25f;
    MeshBuilder mesh;
    mesh.box({-0.95f, 0.0f, -0.95f}, {0.95f, 0.35f, 0.95f}, kMasonryTexel);
    mesh.lathe({{0.9f, 0.35f}, {0.98f, 0.55f}, {0.76f, kShaftFoot}}, true, turn);
    addShaft(&mesh, top, broken);
    if (!broken) {
        mesh.lathe({{0.62f, kShaftTop}, {0.66f, 5.55f}, {0.95f, 5.8f}}, true, turn);
        mesh.box({-1.0f, 5.8f, -1.0f}, {1.0f, kSpringing, 1.0f}, kMasonryTexel);
    }
    const Vec3 foot = polar(degrees, kColumnRadius, 0.0f);
    mesh.place(0, degrees, foot);
    return mesh.finish("column" + std::to_string(number), "column", foot + Vec3{0.0f, top * 0.5f, 0.0f});
}

// The slanting moulding below a cornice: four sides from `low` up to `high`,
// x and z of which are half the width and half the depth.
void addMoulding(MeshBuilder *mesh, Vec3 low, Vec3 high) {
    static const Vec2 kCorner[] = {{-1, 1}, {1, 1}, {1, -1}, {-1, -1}, {-1, 1}};
    for (int side = 0; side < 4; ++side) {
        mesh->patch(
            1, 1,
            [&](int i, int j) {
                const Vec2 corner = kCorner[side + i];
                const Vec3 half = j == 0 ? low : high;
                return Vec3{corner.x * half.x, half.y, corner.y * half.z};
            },
            [&](int i, int j) {
                const float width = side % 2 == 0 ? high.x : high.z;
                return Vec2{static_cast<float>(i) * width * 2.0f / kMasonryTexel,
                            static_cast<float>(j) * 0.125f};
            });
    }
}

// The block of wall that stands on a column between two arches.
Node makePier(int number, float degrees) {
    MeshBuilder mesh;
    mesh.box({-0.85f, kSpringing, -0.75f}, {0.85f, 9.9f, 0.75f}, kMasonryTexel);
    addMoulding(&mesh, {0.85f, 9.5f, 0.75f}, {1.0f, 9.9f, 1.0f});
    mesh.box({-1.0f, 9.9f, -1.0f}, {1.0f, 10.6f, 1.0f}, kMasonryTexel);
    const Vec3 foot = polar(degrees, kColumnRadius, 0.0f);
    mesh.place(0, degrees, foot);
    return mesh.finish("pier" + std::to_string(number), "masonry", foot + Vec3{0, 8.0f, 0});
}

// An arch of wall, in cells numbered from its left end. A broken one has only
// some of them and no cornice.
class Arch {
   public:
    Arch(int first, int last) : first_(first), last_(last) {}

    Node make(int number, float degrees) {
        wallFace(1.0f);
        wallFace(-1.0f);
        // The ring of wedges stands out from the wall; the wall behind it hides that it has no outer side.
        bow(kInner, kDepth + kRelief, kInner, -kDepth - kRelief, 0.3f);
        bow(kInner, kDepth + kRelief, kRing, kDepth + kRelief, 0.125f);
        bow(kRing, -kDepth - kRelief, kInner, -kDepth - kRelief, 0.125f);
        if (first_ == 0 && last_ == kCells) {
            addMoulding(&mesh_, {kHalf, kTop - 0.4f, kDepth}, {kHalf, kTop, 0.85f});
            mesh_.box({-kHalf, kTop, -0.85f}, {kHalf, kTop + 0.5f, 0.85f}, kMasonryTexel);
        } else {
            brokenEnd();
        }
        const float distance = kColumnRadius * cosine(kArchStep * 0.5f);
        const Vec3 foot = polar(degrees, distance, 0.0f);
        mesh_.place(0, degrees, foot);
        return mesh_.finish("arch" + std::to_string(number), "masonry", foot + Vec3{0, 8.5f, 0});
    }

   private:
    static constexpr int kCells = 10;
    static constexpr float kInner = 2.65f, kRing = 3.15f, kHalf = 3.5f;
    static constexpr float kDepth = 0.55f, kRelief = 0.12f, kTop = 9.9f;

    // Point of the bow after cell i, counted from the left.
    static Vec3 onBow(int i, float radius, float z) {
        const float turn = 180.0f - 180.0f * static_cast<float>(i) / kCells;
        return {cosine(turn) * radius, kSpringing + sine(turn) * radius, z};
    }

    // Broken masonry ends in steps from course to course.
    Vec3 onTop(int i, float z) const {
        const float x = cosine(180.0f - 180.0f * static_cast<float>(i) / kCells) * kHalf;
        const bool whole = first_ == 0 && last_ == kCells;
        const int torn = whole ? kCells : std::min(std::abs(i - (first_ == 0 ? last_ : first_)), 4);
        return {x, whole ? kTop : kTop - 0.28f * static_cast<float>(4 - torn), z};
    }

    static Vec2 wallUv(Vec3 p) { return {p.x / kMasonryTexel, p.y / kMasonryTexel}; }

    template <typename Low, typename High>
    void strip(Low low, High high) {
        mesh_.patch(
            last_ - first_, 1, [&](int i, int j) { return j == 0 ? low(first_ + i) : high(first_ + i); },
            [&](int i, int j) { return wallUv(j == 0 ? low(first_ + i) : high(first_ + i)); });
    }

    void wallFace(float side) {
        const float z = side * kDepth;
        const auto low = [=](int i) { return onBow(i, kInner, z); };
        const auto high = [=](int i) { return onTop(i, z); };
        if (side > 0.0f) {
            strip(low, high);
        } else {
            strip(high, low);
        }
        for (float left : {-1.0f, 1.0f}) {  // the corner beside the springing
            if ((left < 0.0f && first_ != 0) || (left > 0.0f && last_ != kCells)) continue;
            const Vec3 corner = {left * kHalf, kSpringing, z};
            const Vec3 foot = {left * kInner, kSpringing, z};
            const Vec3 top = {left * kHalf, kTop, z};
            const bool turnedOver = left * side > 0.0f;
            fill(turnedOver ? foot : corner, turnedOver ? corner : foot, top);
        }
    }

    void fill(Vec3 a, Vec3 b, Vec3 c) {
        const Vec3 corner[] = {a, b, c, c};
        mesh_.patch(
            1, 1, [&](int i, int j) { return j == 0 ? corner[i] : c; },
            [&](int i, int j) { return wallUv(j == 0 ? corner[i] : c); });
    }

    void bow(float lowRadius, float lowZ, float highRadius, float highZ, float vRepeats) {
        mesh_.patch(
            last_ - first_, 1,
            [&](int i, int j) {
                return j == 0 ? onBow(first_ + i, lowRadius, lowZ) : onBow(first_ + i, highRadius, highZ);
            },
            [&](int i, int j) {
                return Vec2{static_cast<float>(i) * 0.25f, static_cast<float>(j) * vRepeats};
            });
    }

    void brokenEnd() {
        const int end = first_ == 0 ? last_ : first_;
        const float side = first_ == 0 ? 1.0f : -1.0f;
        const Vec3 a = onBow(end, kInner, side * kDepth), b = onBow(end, kInner, -side * kDepth);
        const Vec3 c = onTop(end, side * kDepth), d = onTop(end, -side * kDepth);
        mesh_.patch(
            1, 1, [&](int i, int j) { return j == 0 ? (i == 0 ? a : b) : (i == 0 ? c : d); },
            [](int i, int j) {
                return Vec2{static_cast<float>(i) * 0.25f, static_cast<float>(j) * 0.5f};
            });
        strip([this](int i) { return onTop(i, kDepth); }, [this](int i) { return onTop(i, -kDepth); });
    }

    MeshBuilder mesh_;
    int first_, last_;
};

void addRubble(Node *court) {
    struct Block {
        float degrees, radius, turn, size;
    };
    static const Block kBlocks[] = {{66, 12.6f, 20, 0.8f},
                                    {71, 11.9f, 65, 0.5f},
                                    {290, 12.4f, 50, 0.9f},
                                    {283, 11.6f, 10, 0.55f},
                                    {47, 12.2f, 35, 0.45f}};
    int number = 0;
    for (const Block &block : kBlocks) {
        MeshBuilder mesh;
        const float s = block.size;
        mesh.box({-s, 0.0f, -s * 0.7f}, {s, s * 0.9f, s * 0.7f}, kMasonryTexel);
        const Vec3 foot = polar(block.degrees, block.radius, 0.0f);
        mesh.place(0, block.turn, foot);
        court->children.push_back(mesh.finish("rubble" + std::to_string(++number), "masonry", foot));
    }
}

}  // namespace

void addCourt(Node *root) {
    Node court = plainNode("court");
    addFloor(&court);
    addPool(&court);
    struct Place {
        float degrees, top;
        bool pier;
    };
    static const Place kPlaces[] = {{54, 1.9f, false},  {90, 5.4f, false}, {126, 5.4f, true},
                                    {162, 5.4f, true},  {198, 5.4f, true}, {234, 5.4f, true},
                                    {270, 5.4f, false}, {306, 3.0f, false}};
    int number = 0;
    for (const Place &place : kPlaces) {
        court.children.push_back(makeColumn(++number, place.degrees, place.top));
        if (place.pier) {
            court.children.push_back(makePier(number, place.degrees));
        }
    }
    court.children.push_back(Arch(7, 10).make(1, 108.0f));
    court.children.push_back(Arch(0, 10).make(2, 144.0f));
    court.children.push_back(Arch(0, 10).make(3, 180.0f));
    court.children.push_back(Arch(0, 10).make(4, 216.0f));
    court.children.push_back(Arch(0, 4).make(5, 252.0f));
    addRubble(&court);
    root->children.push_back(court);
}

}  // namespace keltra::samples
