#include "tools/samples/paint.h"
#include "tools/samples/parts.h"

namespace keltra::samples {
namespace {

constexpr float kGround = -1.2f;

// The dome is seen from inside, so it turns the other way. Heights are spread
// so that most of the picture covers the part near the horizon.
Node makeSky() {
    const int sides = 20, rings = 7;
    MeshBuilder dome;
    dome.patch(
        sides, rings,
        [](int i, int j) {
            static const float kElevation[] = {-12, 0, 4, 9, 16, 28, 50, 90};
            const float e = kElevation[j];
            return polar(-360.0f * static_cast<float>(i) / sides, cosine(e) * 400.0f, sine(e) * 400.0f);
        },
        [](int i, int j) {
            static const float kHeight[] = {0.004f, 0.004f, 0.12f, 0.24f, 0.36f, 0.52f, 0.72f, 0.996f};
            return Vec2{2.0f * static_cast<float>(i) / sides, kHeight[j]};
        });
    Node sky = plainNode("sky");
    sky.children.push_back(dome.finish("skyDome", "sky"));
    return sky;
}

// A ring of hills, seen from inside.
Node makeRidge(const char *name, const char *material, float radius, float low, float high, unsigned seed) {
    const int sides = 60;
    MeshBuilder ridge;
    ridge.patch(
        sides, 1,
        [&](int i, int j) {
            const int k = i % sides;
            const float rise =
                static_cast<float>(valueNoise(k, 0, 4, 15, 1, seed) * 2 +
                                   valueNoise(k, 0, 2, 30, 1, seed + 1) + hashNoise(k, 0, seed + 2) / 2) /
                (3.5f * 65536.0f);
            const float top = mix(low, high, ramp(0.2f, 0.8f, rise));
            return polar(-360.0f * static_cast<float>(i) / sides, radius, j == 0 ? -12.0f : top);
        },
        [](int i, int j) {
            return Vec2{static_cast<float>(i) * 0.25f, static_cast<float>(j)};
        });
    return ridge.finish(name, material);
}

Node makeMist() {
    const int sides = 20;
    MeshBuilder mist;
    mist.patch(
        sides, 1,
        [](int i, int j) {
            return polar(-360.0f * static_cast<float>(i) / sides, 58.0f, j == 0 ? kGround - 1.0f : 9.0f);
        },
        [](int i, int j) {
            return Vec2{3.0f * static_cast<float>(i) / sides, j == 0 ? 0.02f : 0.98f};
        });
    return mist.finish("mist", "mist");
}

Node makeMoon() {
    MeshBuilder disc;
    disc.billboard({0.0f, 0.0f, 0.0f}, 45.0f, 45.0f);
    Node moon = disc.finish("moonDisc", "moon");
    moon.position = {17.0f, 70.0f, -290.0f};
    return moon;
}

Node makeGround(int sector) {
    const float step = 45.0f;
    const float from = step * static_cast<float>(sector);
    MeshBuilder ground;
    Turn turn;
    turn.sides = 4;
    turn.from = from;
    turn.to = from + step;
    turn.repeats = 3.0f;
    turn.vScale = 1.0f / 7.0f;
    ground.lathe({{130.0f, kGround - 3.0f},
                  {60.0f, kGround - 0.5f},
                  {30.0f, kGround},
                  {20.0f, kGround},
                  {15.5f, kGround}},
                 true, turn);
    return ground.finish("ground" + std::to_string(sector), "grass",
                         polar(from + step * 0.5f, 24.0f, kGround));
}

Node makeCypress(int number, float degrees, float radius, float height) {
    MeshBuilder tree;
    Turn turn;
    turn.sides = 7;
    turn.repeats = 3.0f;
    turn.vScale = 0.35f;
    const float w = height * 0.13f;
    tree.lathe({{w * 0.25f, 0.0f},
                {w * 0.9f, height * 0.12f},
                {w, height * 0.3f},
                {w * 0.7f, height * 0.65f},
                {0.0f, height}},
               true, turn);
    const Vec3 foot = polar(degrees, radius, kGround - 0.2f);
    tree.place(0, 0.0f, foot);
    return tree.finish("cypress" + std::to_string(number), "cypress", foot + Vec3{0.0f, height * 0.4f, 0.0f});
}

}  // namespace

void addLandscape(Node *root) {
    root->children.push_back(makeSky());
    Node land = plainNode("landscape");
    land.children.push_back(makeRidge("farRidge", "farRidge", 240.0f, 8.0f, 32.0f, 501));
    land.children.push_back(makeRidge("nearRidge", "nearRidge", 160.0f, 2.0f, 19.0f, 511));
    for (int i = 0; i < 8; ++i) {
        land.children.push_back(makeGround(i));
    }
    struct Tree {
        float degrees, radius, height;
    };
    static const Tree kTrees[] = {{200, 20, 12}, {208, 25, 14}, {152, 21, 11}, {146, 27, 15}, {166, 34, 12},
                                  {231, 22, 11}, {118, 23, 12}, {252, 28, 14}, {100, 29, 13}, {186, 38, 11}};
    int number = 0;
    for (const Tree &tree : kTrees) {
        land.children.push_back(makeCypress(++number, tree.degrees, tree.radius, tree.height));
    }
    land.children.push_back(makeMoon());
    land.children.push_back(makeMist());
    root->children.push_back(land);
}

}  // namespace keltra::samples
