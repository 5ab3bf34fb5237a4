#include <algorithm>

#include "tools/samples/parts.h"

namespace keltra::samples {
namespace {

constexpr int kInfluences = 4;

// The line along which a body is drawn: a smooth curve through its points,
// with a frame that does not twist.
class Spine {
   public:
    struct Station {
        Vec3 point;
        Vec3 tangent;
        Vec3 back;  // away from the belly
        Vec3 right;
    };

    // `belly` is where the belly looks at the start. From the part `rollFrom` of
    // the length to `rollTo` the back turns upwards.
    Spine(const std::vector<Vec3> &points, Vec3 belly, int steps, float rollFrom, float rollTo) {
        const float last = static_cast<float>(points.size() - 1);
        for (int i = 0; i <= steps; ++i) {
            const float t = last * static_cast<float>(i) / static_cast<float>(steps);
            Station s;
            s.point = onCurve(points, t);
            s.tangent = normalized(onCurve(points, std::min(t + 0.02f, last)) -
                                   onCurve(points, std::max(t - 0.02f, 0.0f)));
            const Vec3 before = stations_.empty() ? belly * -1.0f : stations_.back().back;
            const float part = static_cast<float>(i) / static_cast<float>(steps);
            const float roll = std::min(std::max((part - rollFrom) / (rollTo - rollFrom), 0.0f), 1.0f);
            const Vec3 wanted = mix(before, Vec3{0.0f, 1.0f, 0.0f}, roll * roll);
            s.back = normalized(wanted - s.tangent * dot(wanted, s.tangent));
            s.right = cross(s.tangent, s.back);
            stations_.push_back(s);
        }
    }

    int steps() const { return static_cast<int>(stations_.size()) - 1; }
    const Station &at(int i) const { return stations_[static_cast<size_t>(i)]; }

    // Point of the surface at step i, `degrees` around from the back.
    Vec3 surface(int i, float degrees, float width, float height) const {
        const Station &s = at(i);
        return s.point + s.back * (cosine(degrees) * height) + s.right * (sine(degrees) * width);
    }

   private:
    // Catmull-Rom through the points.
    static Vec3 onCurve(const std::vector<Vec3> &points, float t) {
        const int count = static_cast<int>(points.size());
        const int k = std::min(static_cast<int>(t), count - 2);
        const auto p = [&](int i) {
            return points[static_cast<size_t>(std::min(std::max(i, 0), count - 1))];
        };
        const float f = t - static_cast<float>(k);
        const Vec3 a = p(k) * 2.0f, b = p(k + 1) - p(k - 1);
        const Vec3 c = p(k - 1) * 2.0f - p(k) * 5.0f + p(k + 1) * 4.0f - p(k + 2);
        const Vec3 d = p(k) * 3.0f - p(k - 1) - p(k + 1) * 3.0f + p(k + 2);
        return (a + (b + (c + d * f) * f) * f) * 0.5f;
    }

    std::vector<Station> stations_;
};

// Half width and half height of the body at a part of its length.
struct Girth {
    float at, width, height;
};

Girth girthAt(const std::vector<Girth> &table, float part) {
    size_t k = 1;
    while (k + 1 < table.size() && part > table[k].at) {
        ++k;
    }
    const Girth &low = table[k - 1], &high = table[k];
    const float t = (part - low.at) / (high.at - low.at);
    return {part, mix(low.width, high.width, t), mix(low.height, high.height, t)};
}

// Puts the skin on: `along` tells for each vertex where it sits, 0 at the
// first bone and 1 at the last; weights are those of a cubic B-spline, whose
// four neighbours always sum to one.
void bindSkin(Node *node, const std::vector<float> &along, const std::vector<std::string> &bones) {
    MeshData &mesh = node->mesh;
    mesh.influences = kInfluences;
    mesh.boneNames = bones;
    const int last = static_cast<int>(bones.size()) - 1;
    for (float part : along) {
        const float at = std::min(std::max(part, 0.0f), 1.0f) * static_cast<float>(last);
        const int k = static_cast<int>(at);
        const float t = at - static_cast<float>(k), s = 1.0f - t;
        const float first = onGrid(s * s * s / 6.0f);
        const float second = onGrid((3.0f * t * t * t - 6.0f * t * t + 4.0f) / 6.0f);
        const float fourth = onGrid(t * t * t / 6.0f);
        const float weights[] = {first, second, 1.0f - first - second - fourth, fourth};
        for (int i = 0; i < kInfluences; ++i) {
            const int bone = std::min(std::max(k + i - 1, 0), last);
            mesh.influenceBones.push_back(static_cast<uint8_t>(bone));
            mesh.influenceWeights.push_back(weights[i]);
        }
    }
}

// A chain of bones on the spine: mesh records without geometry, unrotated, so
// that an application may set their rotations outright.
Node makeBones(const Spine &spine, const std::vector<std::string> &names, float end, Node tip) {
    const int last = static_cast<int>(names.size()) - 1;
    const auto station = [&](int i) {
        const float part = end * static_cast<float>(i) / static_cast<float>(last);
        const int step = static_cast<int>(part * static_cast<float>(spine.steps()) + 0.5f);
        return onGrid(spine.at(step).point);
    };
    Node chain;
    for (int i = last; i >= 0; --i) {
        Node bone;
        bone.kind = NodeKind::kMesh;
        bone.mesh.hidden = true;
        bone.name = names[static_cast<size_t>(i)];
        bone.position = i == 0 ? station(0) : station(i) - station(i - 1);
        if (i < last) {
            bone.children.push_back(chain);
        } else {
            bone.children = tip.children;
            for (Node &child : bone.children) {
                child.position = child.position - station(last);
            }
        }
        chain = bone;
    }
    return chain;
}

std::vector<std::string> boneNames(const std::string &prefix, int count) {
    std::vector<std::string> names;
    for (int i = 1; i <= count; ++i) {
        names.push_back(prefix + std::to_string(i));
    }
    return names;
}

// A body under construction: geometry, and where each vertex sits.
class Body {
   public:
    Body(const Spine &spine, float end) : spine_(spine), end_(end) {}

    void tube(int sides, const std::vector<Girth> &girth, float vRepeats) {
        const int steps = spine_.steps();
        mesh_.patch(
            sides, steps,
            [&](int i, int j) {
                const Girth g = girthAt(girth, part(j));
                const float degrees = 360.0f * static_cast<float>(i % sides) / static_cast<float>(sides);
                return spine_.surface(j, degrees, g.width, g.height);
            },
            [&](int i, int j) {
                return Vec2{static_cast<float>(i) / static_cast<float>(sides), part(j) * vRepeats};
            });
        for (int j = 0; j <= steps; ++j) {
            along_.insert(along_.end(), static_cast<size_t>(sides + 1), part(j) / end_);
        }
    }

    // Closes the tube at its last station with a blunt point.
    void cap(int sides, const Girth &girth, Vec3 tip) {
        for (int i = 0; i < sides; ++i) {
            const float turn = 360.0f / static_cast<float>(sides);
            mesh_.triangle(
                spine_.surface(spine_.steps(), turn * static_cast<float>(i), girth.width, girth.height),
                spine_.surface(spine_.steps(), turn * static_cast<float>((i + 1) % sides), girth.width,
                               girth.height),
                tip);
        }
        sitAt(1.0f);
    }

    // A thin plate, drawn from both sides.
    void plate(Vec3 a, Vec3 b, Vec3 c, float where) {
        mesh_.triangle(a, b, c);
        mesh_.triangle(b, a, c);
        sitAt(where);
    }

    void horn(Vec3 base, Vec3 tip, float radius) {
        mesh_.spike(base, tip, radius, 5);
        sitAt(1.0f);
    }

    // Vertices added since the last call sit there on the chain of bones.
    void sitAt(float where) { along_.resize(mesh_.vertexCount(), where); }

    Node finish(const std::string &name, const std::string &material,
                const std::vector<std::string> &bones) const {
        Node node = mesh_.finish(name, material);
        bindSkin(&node, along_, bones);
        return node;
    }

    float part(int step) const { return static_cast<float>(step) / static_cast<float>(spine_.steps()); }

   private:
    const Spine &spine_;
    float end_;  // part of the spine at which the last bone sits
    MeshBuilder mesh_;
    std::vector<float> along_;
};

// Fins along the back, every third station, tallest in the middle.
void addCrest(Body *body, const Spine &spine, const std::vector<Girth> &girth, float from, float to,
              float end, float tallest) {
    for (int j = 2; j + 3 <= spine.steps(); j += 2) {
        const float part = body->part(j);
        if (part < from || part > to) continue;
        const float middle = (part - from) / (to - from);
        const float tall = tallest * (0.45f + 2.2f * middle * (1.0f - middle));
        const Girth low = girthAt(girth, part), high = girthAt(girth, body->part(j + 2));
        const Spine::Station &s = spine.at(j);
        const Vec3 a = s.point + s.back * (low.height * 0.9f);
        const Vec3 b = spine.at(j + 2).point + spine.at(j + 2).back * (high.height * 0.9f);
        const Vec3 tip = mix(a, b, 0.35f) + s.back * tall - s.tangent * (tall * 0.35f);
        body->plate(a, b, tip, part / end);
    }
}

Node octahedron(const std::string &name, const std::string &material, Vec3 at, float radius) {
    MeshBuilder mesh;
    Turn turn;
    turn.sides = 5;
    mesh.lathe({{0.0f, -radius}, {radius, 0.0f}, {0.0f, radius}}, true, turn);
    Node node = mesh.finish(name, material);
    node.position = onGrid(at);
    return node;
}

// Horns, jaw and side fins, all carried by the last bone.
void addHead(Body *body, Body *fins, const Spine &spine, int skull) {
    const Spine::Station &s = spine.at(skull);
    for (float side : {-1.0f, 1.0f}) {
        const Vec3 out = s.right * side;
        const Vec3 root = s.point + s.back * 0.42f + out * 0.36f;
        const Vec3 bend = root + s.back * 0.62f - s.tangent * 0.55f + out * 0.30f;
        fins->horn(root, bend + s.back * 0.45f - s.tangent * 0.7f, 0.22f);
        const Vec3 cheek = s.point + out * 0.55f;
        fins->plate(cheek + s.back * 0.3f - s.tangent * 0.1f, cheek - s.back * 0.35f,
                    cheek + out * 0.95f - s.tangent * 0.85f + s.back * 0.35f, 1.0f);
        fins->plate(cheek - s.back * 0.05f, cheek - s.back * 0.5f,
                    cheek + out * 0.65f - s.tangent * 0.7f - s.back * 0.5f, 1.0f);
    }
    // The lower jaw hangs open under the snout.
    const Vec3 hinge = s.point - s.back * 0.42f + s.tangent * 0.1f;
    const Vec3 chin = hinge + s.tangent * 1.15f - s.back * 0.62f;
    const Vec3 left = hinge - s.right * 0.36f, right = hinge + s.right * 0.36f;
    const Vec3 low = hinge - s.back * 0.24f - s.tangent * 0.15f;
    const Vec3 high = hinge + s.back * 0.1f;
    body->plate(left, low, chin, 1.0f);
    body->plate(low, right, chin, 1.0f);
    body->plate(right, high, chin, 1.0f);
    body->plate(high, left, chin, 1.0f);
}

Node makeNeck() {
    const std::vector<Vec3> line = {{-0.9f, -1.0f, -1.6f}, {-1.9f, 0.9f, -1.1f}, {-2.1f, 2.9f, -0.2f},
                                    {-0.7f, 4.6f, 0.4f},   {1.0f, 6.0f, 0.2f},   {1.5f, 7.7f, -0.3f},
                                    {0.6f, 9.1f, -0.1f},   {-0.6f, 9.6f, 0.9f},  {-1.5f, 9.3f, 2.1f}};
    const std::vector<Girth> girth = {{0.0f, 1.15f, 1.15f},  {0.25f, 1.08f, 1.08f}, {0.5f, 0.9f, 0.9f},
                                      {0.68f, 0.66f, 0.66f}, {0.78f, 0.55f, 0.56f}, {0.83f, 0.66f, 0.6f},
                                      {0.89f, 0.74f, 0.6f},  {0.94f, 0.5f, 0.4f},   {0.98f, 0.42f, 0.34f},
                                      {1.0f, 0.3f, 0.22f}};
    const int steps = 34, sides = 10;
    const float end = 0.86f;
    const Spine spine(line, {0.75f, 0.0f, 0.65f}, steps, 0.5f, 0.85f);
    const std::vector<std::string> bones = boneNames("neck", 11);
    Body body(spine, end), fins(spine, end);
    body.tube(sides, girth, 8.0f);
    const Spine::Station &nose = spine.at(steps);
    body.cap(sides, girth.back(), nose.point + nose.tangent * 0.1f);
    addHead(&body, &fins, spine, 29);
    addCrest(&fins, spine, girth, 0.08f, 0.84f, end, 1.0f);

    Node head;
    const Spine::Station &brow = spine.at(31);
    for (float side : {-1.0f, 1.0f}) {
        const Vec3 at = brow.point + brow.back * 0.34f + brow.right * (side * 0.42f);
        head.children.push_back(octahedron(side < 0.0f ? "eyeLeft" : "eyeRight", "eye", at, 0.17f));
    }
    Node skeleton = plainNode("HumanoidRoot");
    skeleton.children.push_back(makeBones(spine, bones, end, head));
    skeleton.children.push_back(body.finish("serpentNeck", "scales", bones));
    skeleton.children.push_back(fins.finish("serpentFins", "fin", bones));
    Node serpent = plainNode("serpent");
    serpent.children.push_back(skeleton);
    return serpent;
}

Node makeTail() {
    const std::vector<Vec3> line = {{0.6f, -1.0f, -1.8f}, {1.9f, 0.7f, -1.6f}, {2.9f, 1.3f, -0.4f},
                                    {3.2f, 0.2f, 1.0f},   {2.7f, -0.5f, 2.1f}, {1.7f, 0.3f, 2.9f},
                                    {1.3f, 1.4f, 3.0f},   {1.6f, 2.3f, 2.8f}};
    const std::vector<Girth> girth = {
        {0.0f, 0.95f, 0.95f}, {0.4f, 0.7f, 0.7f}, {0.8f, 0.3f, 0.3f}, {1.0f, 0.06f, 0.06f}};
    const float end = 0.95f;
    const Spine spine(line, {1.0f, 0.0f, 0.6f}, 20, 0.75f, 1.5f);
    const std::vector<std::string> bones = boneNames("tail", 7);
    Body body(spine, end), fluke(spine, end);
    body.tube(8, girth, 6.0f);
    const Spine::Station &tip = spine.at(spine.steps());
    const Vec3 stem = tip.point - tip.tangent * 0.55f;
    const Vec3 wide = normalized(tip.right - tip.back * 0.9f);
    for (float side : {-1.0f, 1.0f}) {
        const Vec3 out = wide * side;
        fluke.plate(stem, tip.point + tip.tangent * 0.15f, tip.point + out * 0.95f + tip.tangent * 0.95f,
                    1.0f);
        fluke.plate(stem, tip.point + out * 0.95f + tip.tangent * 0.95f,
                    tip.point + out * 0.75f + tip.tangent * 0.05f, 1.0f);
    }
    addCrest(&fluke, spine, girth, 0.05f, 0.8f, end, 0.6f);
    Node skeleton = plainNode("HumanoidRoot");
    skeleton.children.push_back(makeBones(spine, bones, end, Node()));
    skeleton.children.push_back(body.finish("serpentTail", "scales", bones));
    skeleton.children.push_back(fluke.finish("serpentFluke", "fin", bones));
    Node tail = plainNode("serpentTailRoot");
    tail.children.push_back(skeleton);
    return tail;
}

}  // namespace

void addSerpent(Node *root) {
    root->children.push_back(makeNeck());
    root->children.push_back(makeTail());
}

}  // namespace keltra::samples
