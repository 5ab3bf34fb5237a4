// SPDX-License-Identifier: Zlib
#include "tests/tools/convert/support/fbx_builder.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>

namespace keltra::test {
namespace {

using Matrix = FbxBuilder::Matrix;

constexpr double kTicks = 46186158000.0;  // of the format, a second
constexpr double kRadians = 3.14159265358979323846 / 180.0;

// Identifiers of objects: each kind has its own range, of a thousand for each parent where it needs one.
constexpr std::int64_t kModels = 1000000, kGeometry = 2000000, kAttributes = 3000000, kSkins = 4000000,
                       kClusters = 5000000, kStacks = 6000000, kLayers = 7000000, kCurveNodes = 8000000,
                       kCurves = 9000000;

template <class... Values>
std::string line(const char *format, Values... values) {
    char text[256];
    std::snprintf(text, sizeof text, format, values...);
    return text;
}

template <class Value>
std::string list(const char *name, const std::vector<Value> &values, const char *format) {
    std::string text = line("%s: *%zu {\na: ", name, values.size());
    for (std::size_t i = 0; i < values.size(); ++i) text += (i ? "," : "") + line(format, values[i]);
    return text + "\n}\n";
}

std::string vectorProperty(const char *name, const Point &v) {
    return line("P: \"%s\", \"Vector3D\", \"Vector\", \"\",%.12g,%.12g,%.12g\n", name, v.x, v.y, v.z);
}

std::string matrixList(const char *name, const Matrix &m) {
    std::vector<double> values;
    for (unsigned column = 0; column < 4; ++column)
        for (unsigned row = 0; row < 4; ++row) values.push_back(m[row][column]);
    return list(name, values, "%.15g");
}

std::string connection(std::int64_t child, std::int64_t parent) {
    return line("C: \"OO\",%lld,%lld\n", static_cast<long long>(child), static_cast<long long>(parent));
}

std::string connection(std::int64_t child, std::int64_t parent, const char *property) {
    return line("C: \"OP\",%lld,%lld, \"%s\"\n", static_cast<long long>(child),
                static_cast<long long>(parent), property);
}

std::vector<Point> corners(double half) {
    std::vector<Point> points;
    for (int i = 0; i < 8; ++i)
        points.push_back({i & 1 ? half : -half, i & 2 ? half : -half, i & 4 ? half : -half});
    return points;
}

Matrix moved(const Point &by) {
    Matrix m;
    m.a4 = by.x, m.b4 = by.y, m.c4 = by.z;
    return m;
}

Matrix sized(const Point &by) {
    Matrix m;
    m.a1 = by.x, m.b2 = by.y, m.c3 = by.z;
    return m;
}

Matrix turned(char axis, double degrees) {
    const double c = std::cos(degrees * kRadians), s = std::sin(degrees * kRadians);
    Matrix m;
    if (axis == 'x') m.b2 = c, m.b3 = -s, m.c2 = s, m.c3 = c;
    if (axis == 'y') m.a1 = c, m.a3 = s, m.c1 = -s, m.c3 = c;
    if (axis == 'z') m.a1 = c, m.a2 = -s, m.b1 = s, m.b2 = c;
    return m;
}

// About x first.
Matrix turned(const Point &degrees) {
    return turned('z', degrees.z) * turned('y', degrees.y) * turned('x', degrees.x);
}

Matrix inverseOf(Matrix m) { return m.Inverse(); }

}  // namespace

Point operator*(const Matrix &m, const Point &p) {
    return {m.a1 * p.x + m.a2 * p.y + m.a3 * p.z + m.a4, m.b1 * p.x + m.b2 * p.y + m.b3 * p.z + m.b4,
            m.c1 * p.x + m.c2 * p.y + m.c3 * p.z + m.c4};
}

int FbxBuilder::node(const FbxNode &node) {
    nodes.push_back(node);
    return static_cast<int>(nodes.size()) - 1;
}

void FbxBuilder::box(int node, double half) { boxes.push_back({node, half, {}}); }

void FbxBuilder::skin(int node, double half, const std::vector<FbxInfluence> &influences) {
    boxes.push_back({node, half, influences});
}

void FbxBuilder::clip(const std::string &name, const std::vector<FbxTrack> &tracks) {
    clips.push_back({name, tracks});
}

void FbxBuilder::setting(const std::string &name, double value) { settings.push_back({name, value}); }

// --- where things stand

Point FbxBuilder::valueOf(int node, const char *property, const Point &rest, int clip, double seconds) const {
    if (clip < 0) return rest;
    for (const FbxTrack &track : clips[static_cast<std::size_t>(clip)].tracks) {
        if (track.node != node || track.property != property) continue;
        if (seconds <= track.seconds.front()) return track.values.front();
        for (std::size_t k = 1; k < track.seconds.size(); ++k) {
            if (seconds > track.seconds[k]) continue;
            const double t = (seconds - track.seconds[k - 1]) / (track.seconds[k] - track.seconds[k - 1]);
            return track.values[k - 1] + (track.values[k] - track.values[k - 1]) * t;
        }
        return track.values.back();
    }
    return rest;
}

// T * Roff * Rp * Rpre * R * Rpost^-1 * Rp^-1 * Soff * Sp * S * Sp^-1
Matrix FbxBuilder::local(int index, int clip, double seconds) const {
    const FbxNode &n = nodes[static_cast<std::size_t>(index)];
    const Point t = valueOf(index, "Lcl Translation", n.translation, clip, seconds);
    const Point r = valueOf(index, "Lcl Rotation", n.rotation, clip, seconds);
    const Point s = valueOf(index, "Lcl Scaling", n.scaling, clip, seconds);
    return moved(t) * moved(n.rotationOffset) * moved(n.rotationPivot) * turned(n.preRotation) * turned(r) *
           inverseOf(turned(n.postRotation)) * inverseOf(moved(n.rotationPivot)) * moved(n.scalingOffset) *
           moved(n.scalingPivot) * sized(s) * inverseOf(moved(n.scalingPivot));
}

Matrix FbxBuilder::world(int index, int clip, double seconds) const {
    const int parent = nodes[static_cast<std::size_t>(index)].parent;
    const Matrix own = local(index, clip, seconds);
    return parent < 0 ? own : world(parent, clip, seconds) * own;
}

std::vector<Point> FbxBuilder::vertices(int clip, double seconds) const {
    std::vector<Point> points;
    for (const Box &box : boxes) {
        const Matrix rest = world(box.node, -1, 0.0);
        for (const Point &corner : corners(box.half)) {
            Point sum;
            for (const FbxInfluence &influence : box.influences)
                sum = sum + (world(influence.node, clip, seconds) *
                             inverseOf(world(influence.node, -1, 0.0)) * rest * corner) *
                                influence.weight;
            points.push_back(box.influences.empty() ? world(box.node, clip, seconds) * corner : sum);
        }
    }
    return points;
}

// --- the file

std::string FbxBuilder::skinObjects(std::size_t b) const {
    const Box &box = boxes[b];
    const long long skin = kSkins + static_cast<std::int64_t>(b);
    std::string text = line("Deformer: %lld, \"Deformer::\", \"Skin\" {\nVersion: 101\n}\n", skin);
    for (std::size_t i = 0; i < box.influences.size(); ++i) {
        const long long cluster = kClusters + static_cast<std::int64_t>(b * 1000 + i);
        const Matrix link = world(box.influences[i].node, -1, 0.0);
        text += line("Deformer: %lld, \"SubDeformer::\", \"Cluster\" {\nVersion: 100\n", cluster);
        text += list("Indexes", std::vector<int>{0, 1, 2, 3, 4, 5, 6, 7}, "%d");
        text += list("Weights", std::vector<double>(8, box.influences[i].weight), "%.12g");
        text += matrixList("Transform", inverseOf(link) * world(box.node, -1, 0.0));
        text += matrixList("TransformLink", link) + "}\n";
    }
    return text;
}

std::string FbxBuilder::clipObjects(std::size_t c) const {
    const long long stack = kStacks + static_cast<std::int64_t>(c);
    std::string text =
        line("AnimationStack: %lld, \"AnimStack::%s\", \"\" {\n}\n", stack, clips[c].name.c_str());
    text += line("AnimationLayer: %lld, \"AnimLayer::Base\", \"\" {\n}\n",
                 static_cast<long long>(kLayers + static_cast<std::int64_t>(c)));
    for (std::size_t t = 0; t < clips[c].tracks.size(); ++t) {
        const FbxTrack &track = clips[c].tracks[t];
        const std::int64_t index = static_cast<std::int64_t>(c * 1000 + t);
        text += line("AnimationCurveNode: %lld, \"AnimCurveNode::%c\", \"\" {\n}\n",
                     static_cast<long long>(kCurveNodes + index), track.property[4]);
        std::vector<long long> times;
        for (const double at : track.seconds) times.push_back(std::llround(at * kTicks));
        for (int axis = 0; axis < 3; ++axis) {
            std::vector<double> values;
            for (const Point &v : track.values) values.push_back(axis == 0 ? v.x : axis == 1 ? v.y : v.z);
            text += line("AnimationCurve: %lld, \"AnimCurve::\", \"\" {\nDefault: 0\nKeyVer: 4008\n",
                         static_cast<long long>(kCurves + index * 3 + axis));
            text += list("KeyTime", times, "%lld") + list("KeyValueFloat", values, "%.9g") + "}\n";
        }
    }
    return text;
}

std::string FbxBuilder::objects() const {
    std::string text = "Objects: {\n";
    for (std::size_t n = 0; n < nodes.size(); ++n) {
        const FbxNode &node = nodes[n];
        text += line("Model: %lld, \"Model::%s\", \"%s\" {\nVersion: 232\nProperties70: {\n",
                     static_cast<long long>(kModels + static_cast<std::int64_t>(n)), node.name.c_str(),
                     node.kind.c_str());
        const std::pair<const char *, const Point *> optional[] = {
            {"RotationOffset", &node.rotationOffset}, {"RotationPivot", &node.rotationPivot},
            {"PreRotation", &node.preRotation},       {"PostRotation", &node.postRotation},
            {"ScalingOffset", &node.scalingOffset},   {"ScalingPivot", &node.scalingPivot}};
        for (const auto &[name, value] : optional)
            if (length(*value) > 0.0) text += vectorProperty(name, *value);
        text += "P: \"RotationActive\", \"bool\", \"\", \"\",1\n";
        text += "P: \"InheritType\", \"enum\", \"\", \"\",1\n";
        text += vectorProperty("Lcl Translation", node.translation);
        text += vectorProperty("Lcl Rotation", node.rotation);
        text += vectorProperty("Lcl Scaling", node.scaling) + "}\n}\n";
        if (node.kind == "LimbNode")
            text += line(
                "NodeAttribute: %lld, \"NodeAttribute::\", \"LimbNode\" {\n"
                "TypeFlags: \"Skeleton\"\n}\n",
                static_cast<long long>(kAttributes + static_cast<std::int64_t>(n)));
    }
    for (std::size_t b = 0; b < boxes.size(); ++b) {
        std::vector<double> values;
        for (const Point &p : corners(boxes[b].half)) values.insert(values.end(), {p.x, p.y, p.z});
        text += line("Geometry: %lld, \"Geometry::\", \"Mesh\" {\n",
                     static_cast<long long>(kGeometry + static_cast<std::int64_t>(b)));
        text += list("Vertices", values, "%.12g");
        text += list("PolygonVertexIndex", std::vector<int>{0, 2, 3, -2, 4, 5, 7, -7, 0, 1, 5, -5,
                                                            2, 6, 7, -4, 0, 4, 6, -3, 1, 3, 7, -6},
                     "%d");
        text += "GeometryVersion: 124\n}\n";
        if (!boxes[b].influences.empty()) text += skinObjects(b);
    }
    for (std::size_t c = 0; c < clips.size(); ++c) text += clipObjects(c);
    return text + "}\n";
}

std::string FbxBuilder::connections() const {
    std::string text = "Connections: {\n";
    const auto model = [](int node) { return node < 0 ? 0 : kModels + node; };
    for (std::size_t n = 0; n < nodes.size(); ++n) {
        const int index = static_cast<int>(n);
        text += connection(model(index), model(nodes[n].parent));
        if (nodes[n].kind == "LimbNode") text += connection(kAttributes + index, model(index));
    }
    for (std::size_t b = 0; b < boxes.size(); ++b) {
        const std::int64_t index = static_cast<std::int64_t>(b);
        text += connection(kGeometry + index, model(boxes[b].node));
        if (boxes[b].influences.empty()) continue;
        text += connection(kSkins + index, kGeometry + index);
        for (std::size_t i = 0; i < boxes[b].influences.size(); ++i) {
            const std::int64_t cluster = kClusters + index * 1000 + static_cast<std::int64_t>(i);
            text += connection(cluster, kSkins + index);
            text += connection(model(boxes[b].influences[i].node), cluster);
        }
    }
    for (std::size_t c = 0; c < clips.size(); ++c) {
        const std::int64_t clip = static_cast<std::int64_t>(c);
        text += connection(kLayers + clip, kStacks + clip);
        for (std::size_t t = 0; t < clips[c].tracks.size(); ++t) {
            const FbxTrack &track = clips[c].tracks[t];
            const std::int64_t index = clip * 1000 + static_cast<std::int64_t>(t);
            text += connection(kCurveNodes + index, kLayers + clip);
            text += connection(kCurveNodes + index, model(track.node), track.property.c_str());
            const char *const axes[] = {"d|X", "d|Y", "d|Z"};
            for (int axis = 0; axis < 3; ++axis)
                text += connection(kCurves + index * 3 + axis, kCurveNodes + index, axes[axis]);
        }
    }
    return text + "}\n";
}

std::string FbxBuilder::text() const {
    std::vector<Setting> all = {
        {"UpAxis", 1},    {"UpAxisSign", 1},    {"FrontAxis", 2},          {"FrontAxisSign", 1},
        {"CoordAxis", 0}, {"CoordAxisSign", 1}, {"UnitScaleFactor", 100.0}};
    for (const Setting &setting : settings) {
        const auto known = std::find_if(all.begin(), all.end(),
                                        [&](const Setting &other) { return other.name == setting.name; });
        (known == all.end() ? all.emplace_back() : *known) = setting;
    }
    std::string text =
        "; FBX 7.4.0 project file\nFBXHeaderExtension: {\nFBXHeaderVersion: 1003\nFBXVersion: 7400\n}\n"
        "GlobalSettings: {\nVersion: 1000\nProperties70: {\n";
    for (const Setting &setting : all) {
        const bool isAxis = setting.name.find("Axis") != std::string::npos;
        text += line("P: \"%s\", \"%s\", \"%s\", \"\",%.12g\n", setting.name.c_str(),
                     isAxis ? "int" : "double", isAxis ? "Integer" : "Number", setting.value);
    }
    return text + "}\n}\n" + objects() + connections();
}

}  // namespace keltra::test
