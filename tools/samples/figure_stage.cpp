#include "tools/samples/figure.h"
#include "tools/samples/figure_parts.h"
#include "tools/samples/paint.h"
#include "tools/samples/shapes.h"

namespace keltra::samples {
namespace {

constexpr float kGroundHalf = 48.0f;
constexpr int kGroundCells = 16;
constexpr float kGroundTexel = 4.0f;  // units a repeat
constexpr float kSkyRadius = 60.0f;

Material matte(const std::string &name, const std::string &texture, Vec3 tone, float ambient) {
    Material m;
    m.name = name;
    m.texture = texture;
    m.ambient = {tone.x * ambient, tone.y * ambient, tone.z * ambient, 1.0f};
    m.diffuse = {tone.x, tone.y, tone.z, 1.0f};
    m.specular = {0.0f, 0.0f, 0.0f, 1.0f};
    return m;
}

Material shining(const std::string &name, const std::string &texture, Vec3 tone, float transparency) {
    Material m = matte(name, texture, {0.0f, 0.0f, 0.0f}, 0.0f);
    m.emission = {tone.x, tone.y, tone.z, 1.0f};
    m.transparency = transparency;
    return m;
}

Node makeGround() {
    MeshBuilder mesh;
    // Light is reckoned at the corners: they stand close in the middle, where lamps are near.
    const auto at = [](int i) {
        const float t = 2.0f * static_cast<float>(i) / static_cast<float>(kGroundCells) - 1.0f;
        return kGroundHalf * t * std::fabs(t);
    };
    mesh.patch(
        kGroundCells, kGroundCells,
        [&](int i, int j) {
            return Vec3{at(i), 0.0f, -at(j)};
        },
        [&](int i, int j) {
            return Vec2{at(i) / kGroundTexel, at(j) / kGroundTexel};
        });
    return mesh.finish("ground", "meadow");
}

// A ring seen from inside: it runs to the left while it looks to run to the right.
Node makeSky(const std::string &material) {
    MeshBuilder mesh;
    const int sides = 24;
    const float bottom = -16.0f, top = 44.0f;
    mesh.patch(
        sides, 1,
        [&](int i, int j) {
            const float turn = 360.0f * static_cast<float>(i % sides) / static_cast<float>(sides);
            return polar(-turn, kSkyRadius, j ? top : bottom);
        },
        [&](int i, int j) {
            return Vec2{4.0f * static_cast<float>(i) / static_cast<float>(sides), j ? 0.995f : 0.005f};
        });
    Node sky = plainNode("sky");
    sky.children.push_back(mesh.finish("dome", material));
    return sky;
}

Node makeSun(const std::string &name, Vec3 direction, Vec3 color) {
    Node sun = pointLight(name, direction * -30.0f, color);
    sun.light.type = LightType::kDirectional;
    sun.light.direction = direction;
    return sun;
}

constexpr int kLanterns = 9;

struct LanternPlace {
    Vec3 center;
    Vec3 tone;
};

const LanternPlace kLanternPlaces[kLanterns] = {
    {{-2.35f, 4.95f, -0.6f}, {0.86f, 0.24f, 0.20f}}, {{-0.80f, 4.55f, -0.6f}, {0.92f, 0.52f, 0.16f}},
    {{0.80f, 4.55f, -0.6f}, {0.90f, 0.78f, 0.24f}},  {{2.35f, 4.95f, -0.6f}, {0.40f, 0.72f, 0.30f}},
    {{-1.95f, 3.05f, -1.2f}, {0.80f, 0.34f, 0.56f}}, {{1.95f, 3.05f, -1.2f}, {0.26f, 0.62f, 0.66f}},
    {{-2.10f, 0.62f, 0.6f}, {0.34f, 0.46f, 0.82f}},  {{2.10f, 0.62f, 0.6f}, {0.58f, 0.38f, 0.80f}},
    {{1.25f, 0.55f, 1.9f}, {0.92f, 0.64f, 0.44f}},
};

Node makeLantern(const std::string &number, const LanternPlace &place) {
    MeshBuilder mesh;
    Turn turn;
    turn.sides = 12;
    turn.repeats = 1.0f;
    turn.vScale = 0.62f;
    mesh.lathe({{0.0f, -0.50f},
                {0.20f, -0.50f},
                {0.22f, -0.42f},
                {0.42f, -0.26f},
                {0.50f, 0.0f},
                {0.42f, 0.26f},
                {0.22f, 0.42f},
                {0.20f, 0.50f},
                {0.0f, 0.50f}},
               true, turn);
    Node lantern = mesh.finish("lantern" + number, "paper" + number);
    lantern.position = onGrid(place.center);
    MeshBuilder glow;
    glow.billboard({0.0f, 0.0f, 0.0f}, 1.45f, 1.45f);
    Node halo = glow.finish("halo" + number, "halo" + number);
    halo.mesh.hidden = true;  // until the lantern is lit
    lantern.children.push_back(halo);
    return lantern;
}

// Two bamboo poles and the ropes between them.
Node makePoles() {
    MeshBuilder mesh;
    Turn turn;
    turn.sides = 7;
    turn.vScale = 0.5f;
    for (float side : {-1.0f, 1.0f}) {
        const size_t first = mesh.vertexCount();
        mesh.lathe({{0.10f, 0.0f}, {0.08f, 6.4f}, {0.0f, 6.45f}}, false, turn);
        mesh.place(first, 0.0f, {3.0f * side, 0.0f, -0.6f});
        const size_t low = mesh.vertexCount();
        mesh.lathe({{0.08f, 0.0f}, {0.07f, 4.2f}, {0.0f, 4.25f}}, false, turn);
        mesh.place(low, 0.0f, {1.95f * side + 0.62f * side, 0.0f, -1.2f});
        mesh.box({side > 0 ? 1.85f : -2.62f, 3.98f, -1.24f}, {side > 0 ? 2.62f : -1.85f, 4.06f, -1.16f},
                 1.0f);
        mesh.box({1.95f * side - 0.015f, 3.5f, -1.215f}, {1.95f * side + 0.015f, 4.0f, -1.185f}, 1.0f);
    }
    // The rope sags between the poles and carries four lanterns.
    const Vec3 rope[] = {{-3.0f, 6.2f, -0.6f}, {-2.35f, 5.72f, -0.6f}, {-0.8f, 5.30f, -0.6f},
                         {0.8f, 5.30f, -0.6f}, {2.35f, 5.72f, -0.6f},  {3.0f, 6.2f, -0.6f}};
    for (size_t i = 0; i + 1 < sizeof(rope) / sizeof(rope[0]); ++i) {
        const Vec3 a = rope[i], b = rope[i + 1], thick = {0.0f, 0.022f, 0.0f};
        mesh.triangle(a - thick, b - thick, b + thick);
        mesh.triangle(a - thick, b + thick, a + thick);
        if (i == 0) continue;
        mesh.box({a.x - 0.015f, kLanternPlaces[i - 1].center.y + 0.48f, -0.615f},
                 {a.x + 0.015f, a.y, -0.585f}, 1.0f);
    }
    return mesh.finish("poles", "bamboo");
}

// A sky: bands from the horizon up, and rows of hills before it, all as painters do them from far to near.
struct SkyColors {
    Vec3 low, middle, high;
    Vec3 farHills, nearHills, meadow;
    Vec3 cloud;
    float stars;
};

Image paintHorizon(const SkyColors &colors) {
    const int width = 256, height = 256;
    return painted(width, height, [=](int x, int y) {
        const float turn = 360.0f * static_cast<float>(x) / width;
        const float up = 1.0f - (static_cast<float>(y) + 0.5f) / height - 0.27f;  // 0 at the horizon
        Vec3 color = mix(colors.low, colors.middle, ramp(0.0f, 0.26f, up));
        color = mix(color, colors.high, ramp(0.2f, 0.62f, up));
        const float cloud = cloudNoise(x, (y * 2) % height, width, height, 64, 4, 501);
        color = mix(color, colors.cloud, 0.8f * ramp(0.54f, 0.74f, cloud) * ramp(0.04f, 0.2f, up));
        if (hashNoise(x, y, 511) > 65536 - 260 && up > 0.15f)
            color = mix(color, Vec3{255, 250, 230}, colors.stars);
        const float farRidge = 0.085f + 0.03f * sine(2.0f * turn + 20.0f) + 0.018f * sine(5.0f * turn);
        const float nearRidge = 0.035f + 0.02f * sine(3.0f * turn + 140.0f) + 0.008f * sine(7.0f * turn);
        color = mix(color, colors.farHills, ramp(farRidge + 0.008f, farRidge - 0.008f, up));
        color = mix(color, colors.nearHills, ramp(nearRidge + 0.008f, nearRidge - 0.008f, up));
        color = mix(color, colors.meadow, ramp(0.02f, -0.03f, up));
        return grained(color, x, y, 5.0f);
    });
}

}  // namespace

Image paintDaySky() {
    return paintHorizon({{250, 232, 200},
                         {166, 208, 226},
                         {84, 150, 206},
                         {140, 172, 160},
                         {104, 148, 104},
                         {98, 131, 58},
                         {255, 250, 238},
                         0.0f});
}

Image paintDuskSky() {
    return paintHorizon({{214, 122, 110},
                         {104, 72, 124},
                         {32, 34, 82},
                         {72, 54, 96},
                         {42, 42, 72},
                         {66, 91, 62},
                         {150, 88, 122},
                         0.8f});
}

Image paintMeadow() {
    const int size = 128;
    return painted(size, size, [=](int x, int y) {
        const float blades = cloudNoise(x, y, size, size, 4, 2, 521);
        const float patches = cloudNoise(x, y, size, size, 32, 3, 531);
        Vec3 color = mix(Vec3{84, 138, 62}, Vec3{150, 182, 82}, patches) * (0.76f + 0.42f * blades);
        // A flower in some of the cells: five petals' worth of pixels around a dark eye.
        const int cell = 16, cx = x / cell, cy = y / cell, pick = hashNoise(cx, cy, 541);
        if (pick % 5 == 0) {
            const float dx = static_cast<float>(x % cell) - 4.0f - static_cast<float>(pick / 7 % 8);
            const float dy = static_cast<float>(y % cell) - 4.0f - static_cast<float>(pick / 61 % 8);
            const float r = dx * dx + dy * dy;
            const Vec3 petals = pick % 3 ? Vec3{250, 244, 232} : Vec3{244, 206, 92};
            if (r < 6.5f) color = r < 1.2f ? Vec3{214, 150, 50} : petals;
        }
        return grained(color, x, y, 8.0f);
    });
}

// Ribs run around it; dark wood at both ends.
Image paintPaper() {
    const int size = 64;
    return painted(size, size, [=](int x, int y) {
        const float up = 1.0f - (static_cast<float>(y) + 0.5f) / size;
        if (up < 0.26f || up > 0.86f) return grained({72, 48, 34}, x, y, 6.0f);
        const float rib = std::fabs(sine((up - 0.26f) * 360.0f * 8.0f));
        const float fibre = static_cast<float>(hashNoise(x, y / 3, 551)) / 65536.0f;
        return grained(Vec3{255, 244, 226} * (0.66f + 0.28f * rib + 0.06f * fibre), x, y, 4.0f);
    });
}

Scene makeMeadow() {
    Scene scene;
    scene.materials = {matte("meadow", "meadow.tga", {1.0f, 1.0f, 1.0f}, 1.0f),
                       shining("daysky", "daysky.tga", {1.0f, 1.0f, 1.0f}, 1.0f)};
    scene.root = plainNode("stage");
    scene.root.children.push_back(makeSky("daysky"));
    scene.root.children.push_back(makeGround());
    scene.root.children.push_back(
        makeSun("sun", normalized({-0.62f, -0.66f, -0.46f}), {0.62f, 0.56f, 0.44f}));
    scene.root.children.push_back(
        makeSun("skylight", normalized({0.7f, -0.3f, 0.1f}), {0.12f, 0.16f, 0.22f}));
    return scene;
}

Scene makeGarden() {
    Scene scene;
    scene.materials = {matte("meadow", "meadow.tga", {1.0f, 1.0f, 1.0f}, 1.0f),
                       shining("dusksky", "dusksky.tga", {1.0f, 1.0f, 1.0f}, 1.0f),
                       matte("bamboo", "[none]", {0.62f, 0.50f, 0.30f}, 0.9f)};
    scene.root = plainNode("stage");
    scene.root.children.push_back(makeSky("dusksky"));
    scene.root.children.push_back(makeGround());
    scene.root.children.push_back(makePoles());
    for (int i = 0; i < kLanterns; ++i) {
        const std::string number = std::to_string(i + 1);
        const LanternPlace &place = kLanternPlaces[i];
        scene.materials.push_back(matte("paper" + number, "paper.tga", place.tone, 0.9f));
        const Vec3 warm = mix(place.tone, Vec3{1.0f, 0.8f, 0.5f}, 0.35f);
        scene.materials.push_back(shining("halo" + number, "lampglow.tga", warm, 0.95f));
        scene.root.children.push_back(makeLantern(number, place));
    }
    scene.root.children.push_back(makeSun("moon", normalized({0.5f, -0.7f, -0.5f}), {0.26f, 0.30f, 0.44f}));
    return scene;
}

}  // namespace keltra::samples
