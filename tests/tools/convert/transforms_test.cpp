// SPDX-License-Identifier: Zlib
// Trees of nodes with every kind of transform: each vertex must keep its position in the world.

#include <gtest/gtest.h>

#include <array>
#include <random>

#include "tests/tools/convert/support/convert_fixture.h"
#include "tests/tools/convert/support/source_pose.h"

namespace keltra::test {
namespace {

using nlohmann::json;

constexpr double kBound = 1e-4;  // of the model's size
constexpr double kDegree = 3.14159265358979323846 / 180.0;

/// A corner pyramid without any symmetry: a wrong axis or mirror cannot hide.
GltfMesh cornerMesh() {
    GltfMesh mesh;
    const float corners[4][3] = {{0, 0, 0}, {3, 0, 0}, {0, 2, 0}, {0, 0, 1}};
    const unsigned faces[4][3] = {{0, 2, 1}, {0, 1, 3}, {0, 3, 2}, {1, 2, 3}};
    for (const auto &face : faces) {
        for (unsigned corner : face) {
            mesh.indices.push_back(static_cast<std::uint32_t>(mesh.positions.size() / 3));
            mesh.positions.insert(mesh.positions.end(), corners[corner], corners[corner] + 3);
        }
    }
    const float normals[4][3] = {{0, 0, -1}, {0, -1, 0}, {-1, 0, 0}, {2.0f / 7, 3.0f / 7, 6.0f / 7}};
    for (const auto &normal : normals)
        for (int k = 0; k < 3; ++k) mesh.normals.insert(mesh.normals.end(), normal, normal + 3);
    return mesh;
}

std::array<double, 4> axisTurn(double degrees, double x, double y, double z) {
    const double s = std::sin(0.5 * degrees * kDegree);
    return {s * x, s * y, s * z, std::cos(0.5 * degrees * kDegree)};
}

std::array<double, 4> product(std::array<double, 4> a, std::array<double, 4> b) {
    return {a[3] * b[0] + a[0] * b[3] + a[1] * b[2] - a[2] * b[1],
            a[3] * b[1] - a[0] * b[2] + a[1] * b[3] + a[2] * b[0],
            a[3] * b[2] + a[0] * b[1] - a[1] * b[0] + a[2] * b[3],
            a[3] * b[3] - a[0] * b[0] - a[1] * b[1] - a[2] * b[2]};
}

/// About x, then y, then z, as the engine's nodes turn: R = Rx Ry Rz.
std::array<double, 4> eulerTurn(double x, double y, double z) {
    return product(product(axisTurn(x, 1, 0, 0), axisTurn(y, 0, 1, 0)), axisTurn(z, 0, 0, 1));
}

/// A matrix of column vectors in double precision.
struct Frame {
    double m[3][4] = {{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}};

    Frame operator*(const Frame &b) const {
        Frame result;
        for (int r = 0; r < 3; ++r) {
            for (int c = 0; c < 4; ++c) {
                result.m[r][c] = c == 3 ? m[r][3] : 0.0;
                for (int k = 0; k < 3; ++k) result.m[r][c] += m[r][k] * b.m[k][c];
            }
        }
        return result;
    }
    Point operator*(Point p) const {
        double v[3];
        for (int r = 0; r < 3; ++r) v[r] = m[r][0] * p.x + m[r][1] * p.y + m[r][2] * p.z + m[r][3];
        return {v[0], v[1], v[2]};
    }
};

Frame turnAbout(int axis, double degrees) {
    const int u = (axis + 1) % 3, v = (axis + 2) % 3;
    Frame frame;
    frame.m[u][u] = frame.m[v][v] = std::cos(degrees * kDegree);
    frame.m[u][v] = -std::sin(degrees * kDegree);
    frame.m[v][u] = std::sin(degrees * kDegree);
    return frame;
}

/// As the engine's documents say: translate by position plus origin, then rotate about x, then y, then z.
Frame documentedFrame(const KTNODE *node) {
    Frame frame;
    for (; node; node = node->getParent()) {
        const R3XVECTOR3D place = node->getPosition() + node->getOrigin(), turn = node->getRotation();
        Frame local;
        local.m[0][3] = place.x;
        local.m[1][3] = place.y;
        local.m[2][3] = place.z;
        frame = local * turnAbout(0, turn.x) * turnAbout(1, turn.y) * turnAbout(2, turn.z) * frame;
    }
    return frame;
}

class TransformsTest : public ConvertTest {
   protected:
    double any(double low, double high) { return std::uniform_real_distribution<double>(low, high)(random); }

    json randomNode(int mesh, bool mirrors) {
        json node;
        node["mesh"] = mesh;
        node["translation"] = {any(-5, 5), any(-5, 5), any(-5, 5)};
        std::array<double, 4> turn{any(-1, 1), any(-1, 1), any(-1, 1), any(-1, 1)};
        const double size =
            std::sqrt(turn[0] * turn[0] + turn[1] * turn[1] + turn[2] * turn[2] + turn[3] * turn[3]);
        for (double &part : turn) part /= size;
        node["rotation"] = turn;
        json scale = json::array();
        for (int k = 0; k < 3; ++k) scale.push_back(any(0.3, 2.0) * (mirrors && any(0, 1) < 0.4 ? -1 : 1));
        node["scale"] = scale;
        return node;
    }

    void expectSamePlaces(const std::string &text) {
        const Made made = make("tree.gltf", text);
        ASSERT_NE(made.root(), nullptr);
        const SourcePose source(folder.path("tree.gltf"));
        std::vector<std::vector<Point>> expected = {source.at(-1, 0.0).corners};
        for (Point &point : expected[0]) point = point * made.report().scale;
        const double near = kBound * extent(expected);
        const std::vector<PosedMesh> meshes = poseWithoutWindow(made.root());

        std::vector<Point> passed, documented, final;
        for (const PosedMesh &posed : meshes) {
            passed.insert(passed.end(), posed.positions.begin(), posed.positions.end());
            const Frame frame = documentedFrame(posed.mesh);
            const R3XMATRIX matrix = posed.mesh->getFinalMatrix(nullptr);
            for (unsigned v = 0; v < posed.mesh->getNumberOfVertices(); ++v) {
                const std::int32_t *fixed = posed.mesh->vertices + 3 * v;
                const Point local{fixed[0] / 65536.0, fixed[1] / 65536.0, fixed[2] / 65536.0};
                documented.push_back(frame * local);
                Frame whole;
                for (int r = 0; r < 3; ++r)
                    for (int c = 0; c < 4; ++c) whole.m[r][c] = matrix.m[4 * c + r];
                final.push_back(whole * local);
            }
        }
        for (const std::vector<Point> &actual : {passed, documented, final}) {
            ASSERT_FALSE(actual.empty());
            EXPECT_EQ(findGap({actual}, {}, expected, near).outliers, 0u);
            EXPECT_EQ(findGap(expected, {}, {actual}, near).outliers, 0u);
        }
        expectNormalsAgree(meshes);
    }

    std::mt19937 random{20};
};

TEST_F(TransformsTest, RandomTreesStandWhereTheyStood) {
    for (unsigned seed = 1; seed <= 20; ++seed) {
        SCOPED_TRACE(seed);
        random.seed(seed);
        GltfBuilder model;
        const int mesh = model.mesh(cornerMesh());
        for (int a = 0; a < 2; ++a) {
            const int top = model.node(randomNode(mesh, seed % 2 == 0));
            for (int b = 0; b < 2; ++b) {
                const int middle = model.node(randomNode(mesh, seed % 2 == 0), top);
                for (int c = 0; c < 2; ++c) model.node(randomNode(mesh, seed % 2 == 0), middle);
            }
        }
        expectSamePlaces(model.text());
    }
}

TEST_F(TransformsTest, TurnsAtThePolesOfTheAnglesAreKept) {
    const double turns[][3] = {{0, 90, 0},    {0, -90, 0},     {30, 90, 0},       {30, 90, 40},
                               {30, -90, 40}, {-170, 90, 170}, {10, 89.9999, 20}, {10, -90.0001, 20},
                               {180, 0, 0},   {0, 180, 0},     {0, 0, 180},       {180, 90, 180}};
    for (const auto &turn : turns) {
        SCOPED_TRACE(testing::Message() << turn[0] << ", " << turn[1] << ", " << turn[2]);
        GltfBuilder model;
        const int mesh = model.mesh(cornerMesh());
        const int top = model.node({{"mesh", mesh}, {"rotation", eulerTurn(turn[0], turn[1], turn[2])}});
        model.node({{"mesh", mesh},
                    {"translation", {4, 1, 2}},
                    {"rotation", eulerTurn(-turn[0], turn[1], turn[2] + 5)}},
                   top);
        expectSamePlaces(model.text());
    }
}

TEST_F(TransformsTest, ShearFromScalesAboveTurnsIsInTheVertices) {
    GltfBuilder model;
    const int mesh = model.mesh(cornerMesh());
    const int wide = model.node({{"mesh", mesh}, {"scale", {4.0, 1.0, 0.5}}});
    const int turned = model.node({{"mesh", mesh}, {"rotation", eulerTurn(0, 0, 45)}}, wide);
    const int narrow =
        model.node({{"mesh", mesh}, {"rotation", eulerTurn(20, 30, 40)}, {"scale", {1.0, 3.0, 1.0}}}, turned);
    model.node({{"mesh", mesh}, {"rotation", eulerTurn(50, 10, 70)}, {"translation", {1, 2, 3}}}, narrow);
    expectSamePlaces(model.text());
}

TEST_F(TransformsTest, MirroredNodesKeepTheirOutside) {
    for (const auto &scale : std::vector<std::array<double, 3>>{
             {-1, 1, 1}, {1, -1, 1}, {1, 1, -1}, {-1, -1, 1}, {-1, -1, -1}, {-2, 0.5, 3}}) {
        SCOPED_TRACE(testing::Message() << scale[0] << ", " << scale[1] << ", " << scale[2]);
        GltfBuilder model;
        const int mesh = model.mesh(cornerMesh());
        const int top = model.node({{"mesh", mesh}, {"scale", scale}});
        model.node({{"mesh", mesh}, {"translation", {1, 2, 3}}, {"rotation", eulerTurn(25, 35, 45)}}, top);
        model.node({{"mesh", mesh}, {"translation", {-9, 0, 0}}, {"scale", scale}}, top);
        expectSamePlaces(model.text());
    }
}

TEST_F(TransformsTest, GivenMatricesWithShearAreKept) {
    GltfBuilder model;
    const int mesh = model.mesh(cornerMesh());
    // Columns: x, a sheared y, a short z, a place.
    model.node({{"mesh", mesh}, {"matrix", {1, 0, 0, 0, 0.8, 1, 0, 0, 0, 0.3, 0.5, 0, 7, 8, 9, 1}}});
    expectSamePlaces(model.text());
}

TEST_F(TransformsTest, AFlatNodeDoesNoHarm) {
    GltfBuilder model;
    const int mesh = model.mesh(cornerMesh());
    model.node({{"mesh", mesh}});
    model.node({{"mesh", mesh}, {"translation", {6, 0, 0}}, {"scale", {1.0, 1.0, 0.0}}});
    const Made made = make("flat.gltf", model.text());
    ASSERT_NE(made.root(), nullptr);
    for (const PosedMesh &posed : poseWithoutWindow(made.root())) {
        for (const Point &point : posed.positions) {
            EXPECT_LE(std::abs(point.x), 9.001);
            EXPECT_LE(std::abs(point.y), 2.001);
            EXPECT_LE(std::abs(point.z), 1.001);
        }
    }
}

}  // namespace
}  // namespace keltra::test
