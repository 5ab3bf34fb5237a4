#include "tools/samples/parts.h"

namespace keltra::samples {
namespace {

const Color kAmber = {1.0f, 0.64f, 0.32f, 1.0f};

Vec3 rgb(Color c) { return {c.r, c.g, c.b}; }

// A halo floats a little before its light, so that the lamp does not cut it
// in two; the application turns it to the viewer. Radius 0 sorts it by its
// light alone, after the glass that it lies over.
Node halo(const std::string &name, const std::string &material, float size) {
    MeshBuilder mesh;
    mesh.billboard({0.0f, 0.0f, 0.75f}, size, size);
    Node node = mesh.finish(name, material);
    node.mesh.radius = 0.0f;
    return node;
}

// The six-sided lamp that both kinds of lantern share, its flame at the
// origin of the node.
void addLamp(Node *lantern, const std::string &number) {
    Turn six;
    six.sides = 6;
    six.repeats = 6.0f;
    six.vScale = 1.0f / 0.9f;
    MeshBuilder glass;
    glass.lathe({{0.36f, -0.45f}, {0.46f, 0.45f}}, false, six);
    lantern->children.push_back(glass.finish("glass" + number, "glass"));

    six.repeats = 3.0f;
    six.vScale = 1.0f;
    MeshBuilder metal;
    metal.lathe({{0.0f, -0.62f}, {0.42f, -0.5f}, {0.42f, -0.42f}, {0.0f, -0.42f}}, false, six);
    metal.lathe({{0.0f, 0.42f}, {0.68f, 0.42f}, {0.62f, 0.52f}, {0.26f, 0.74f}, {0.08f, 1.05f}, {0.0f, 1.3f}},
                false, six);
    lantern->children.push_back(metal.finish("lamp" + number, "bronze"));

    MeshBuilder flame;
    six.repeats = 1.0f;
    flame.lathe({{0.0f, -0.36f}, {0.16f, -0.12f}, {0.0f, 0.3f}}, true, six);
    lantern->children.push_back(flame.finish("flame" + number, "flame"));

    lantern->children.push_back(pointLight("lantern" + number, {}, rgb(kAmber)));
    lantern->children.push_back(halo("halo" + number, "halo", 2.1f));
}

Node standingLantern(int number, float degrees, float radius) {
    const float height = 2.9f;
    Node lantern = plainNode("standing" + std::to_string(number), polar(degrees, radius, height));
    Turn turn;
    turn.sides = 6;
    turn.repeats = 2.0f;
    turn.vScale = 0.3f;
    MeshBuilder post;
    post.lathe({{0.75f, 0.0f},
                {0.75f, 0.25f},
                {0.5f, 0.4f},
                {0.34f, 0.55f},
                {0.24f, 1.9f},
                {0.48f, 2.15f},
                {0.48f, 2.3f},
                {0.0f, 2.32f}},
               false, turn);
    post.place(0, 0.0f, {0.0f, -height, 0.0f});
    lantern.children.push_back(post.finish("post" + std::to_string(number), "column", {0, -1.5f, 0}));
    addLamp(&lantern, std::to_string(number));
    return lantern;
}

Node hangingLantern(int number, float degrees) {
    const float distance = kColumnRadius * cosine(kArchStep * 0.5f);
    Node lantern = plainNode("hanging" + std::to_string(number), polar(degrees, distance, 6.6f));
    MeshBuilder chain;
    chain.box({-0.04f, 1.2f, -0.04f}, {0.04f, 2.3f, 0.04f}, 1.0f);
    lantern.children.push_back(chain.finish("chain" + std::to_string(number), "bronze"));
    addLamp(&lantern, std::to_string(number));
    return lantern;
}

Node makeMoonlight() {
    Node light;
    light.kind = NodeKind::kLight;
    light.name = "moonlight";
    light.position = {0.0f, 6.0f, 0.0f};
    light.light.type = LightType::kDirectional;
    light.light.direction = {-0.3f, -0.6f, 0.75f};
    light.light.color = {0.50f, 0.48f, 0.80f};
    return light;
}

}  // namespace

void addLanterns(Node *root) {
    Node lights = plainNode("lights");
    lights.children.push_back(makeMoonlight());
    lights.children.push_back(pointLight("poolLight", {0.0f, 0.2f, 2.4f}, {0.30f, 0.90f, 0.85f}));
    lights.children.push_back(standingLantern(1, 31.0f, 7.7f));
    lights.children.push_back(standingLantern(2, -31.0f, 7.7f));
    lights.children.push_back(standingLantern(3, 121.0f, 8.6f));
    lights.children.push_back(standingLantern(4, -121.0f, 8.6f));
    lights.children.push_back(hangingLantern(5, 144.0f));
    lights.children.push_back(hangingLantern(6, 180.0f));
    lights.children.push_back(hangingLantern(7, 216.0f));
    for (int i = 0; i < 10; ++i) {
        const float degrees = 137.5f * static_cast<float>(i);
        Node fly = plainNode("firefly" + std::to_string(i + 1),
                             polar(degrees, 5.0f + 0.8f * static_cast<float>(i % 6),
                                   1.6f + 0.55f * static_cast<float>((i * 7) % 10)));
        fly.children.push_back(halo("spark" + std::to_string(i + 1), "spark", 0.22f));
        lights.children.push_back(fly);
    }
    root->children.push_back(lights);
}

}  // namespace keltra::samples
