// SPDX-License-Identifier: Zlib
// Back sides of two-sided materials, and fewer triangles.

#include <gtest/gtest.h>

#include <cmath>
#include <set>
#include <tuple>

#include "formats/limits.h"
#include "tests/tools/convert/support/convert_fixture.h"
#include "tools/convert/geometry.h"
#include "tools/convert/simplify.h"
#include "tools/convert/two_sided.h"

namespace keltra::test {
namespace {

using convert::addBackSides;
using convert::BackSides;
using convert::isClosed;
using convert::simplify;
using formats::MeshData;
using formats::Vec3;

void addQuad(MeshData &mesh, unsigned a, unsigned b, unsigned c, unsigned d) {
    const auto index = [](unsigned i) { return static_cast<std::uint16_t>(i); };
    for (const formats::Face &face :
         {formats::Face{index(a), index(b), index(c)}, {index(a), index(c), index(d)}}) {
        const Vec3 &at = mesh.vertices[face[0]];
        mesh.faces.push_back(face);
        mesh.faceNormals.push_back(
            formats::normalized(formats::cross(mesh.vertices[face[1]] - at, mesh.vertices[face[2]] - at)));
    }
}

/// A field of `side` x `side` squares, facing along z.
MeshData field(unsigned side) {
    MeshData mesh;
    for (unsigned y = 0; y <= side; ++y)
        for (unsigned x = 0; x <= side; ++x) {
            mesh.vertices.push_back({float(x), float(y), 0.0f});
            mesh.normals.push_back({0.0f, 0.0f, 1.0f});
        }
    for (unsigned y = 0; y < side; ++y)
        for (unsigned x = 0; x < side; ++x) {
            const unsigned a = y * (side + 1) + x;
            addQuad(mesh, a, a + 1, a + side + 2, a + side + 1);
        }
    return mesh;
}

/// A ball of radius 1 with one seam of its texture, and two bones: one above, one below.
MeshData ball(unsigned rings) {
    MeshData mesh;
    mesh.influences = 2;
    mesh.boneNames = {"low", "high"};
    const double step = 3.14159265358979 / rings;
    for (unsigned r = 0; r <= rings; ++r)
        for (unsigned s = 0; s <= 2 * rings; ++s) {
            const double polar = r == rings ? 3.14159265358979 : r * step, turn = (s % (2 * rings)) * step;
            const double sine = r == 0 || r == rings ? 0.0 : std::sin(polar);
            const Vec3 at = {float(sine * std::cos(turn)), float(sine * std::sin(turn)),
                             float(std::cos(polar))};
            mesh.vertices.push_back(at);
            mesh.normals.push_back(at);
            mesh.uvs.push_back({float(s) / float(2 * rings), float(r) / float(rings)});
            mesh.influenceBones.insert(mesh.influenceBones.end(), {0, 1});
            const float high = at.z > 0.0f ? 1.0f : 0.0f;
            mesh.influenceWeights.insert(mesh.influenceWeights.end(), {1.0f - high, high});
        }
    for (unsigned r = 0; r < rings; ++r)
        for (unsigned s = 0; s < 2 * rings; ++s) {
            const unsigned a = r * (2 * rings + 1) + s, below = a + 2 * rings + 1;
            addQuad(mesh, a, below, below + 1, a + 1);
        }
    // The triangles at the poles have no area.
    MeshData clean = mesh;
    clean.faces.clear();
    clean.faceNormals.clear();
    for (std::size_t f = 0; f < mesh.faces.size(); ++f) {
        const Vec3 a = mesh.vertices[mesh.faces[f][0]], b = mesh.vertices[mesh.faces[f][1]];
        const Vec3 c = mesh.vertices[mesh.faces[f][2]];
        if (!(formats::length(formats::cross(b - a, c - a)) > 1e-6f)) continue;
        clean.faces.push_back(mesh.faces[f]);
        clean.faceNormals.push_back(mesh.faceNormals[f]);
    }
    return clean;
}

/// A cube of flat sides: no vertex is shared by two sides.
MeshData cube(unsigned perSide) {
    MeshData mesh;
    for (int axis = 0; axis < 3; ++axis)
        for (const float sign : {-1.0f, 1.0f}) {
            const unsigned first = static_cast<unsigned>(mesh.vertices.size());
            for (unsigned v = 0; v <= perSide; ++v)
                for (unsigned u = 0; u <= perSide; ++u) {
                    const float a = 2.0f * float(u) / float(perSide) - 1.0f;
                    const float b = (2.0f * float(v) / float(perSide) - 1.0f) * sign;
                    const float at[3] = {sign, a, b};
                    mesh.vertices.push_back({at[(3 - axis) % 3], at[(4 - axis) % 3], at[(5 - axis) % 3]});
                    const float n[3] = {sign, 0.0f, 0.0f};
                    mesh.normals.push_back({n[(3 - axis) % 3], n[(4 - axis) % 3], n[(5 - axis) % 3]});
                }
            for (unsigned v = 0; v < perSide; ++v)
                for (unsigned u = 0; u < perSide; ++u) {
                    const unsigned a = first + v * (perSide + 1) + u;
                    addQuad(mesh, a, a + 1, a + perSide + 2, a + perSide + 1);
                }
        }
    return mesh;
}

void expectWhole(const MeshData &mesh) {
    EXPECT_EQ(mesh.normals.size(), mesh.vertices.size());
    EXPECT_EQ(mesh.faceNormals.size(), mesh.faces.size());
    EXPECT_EQ(mesh.influenceBones.size(), mesh.vertices.size() * mesh.influences);
    EXPECT_EQ(mesh.influenceWeights.size(), mesh.vertices.size() * mesh.influences);
    for (std::size_t f = 0; f < mesh.faces.size(); ++f)
        for (const std::uint16_t corner : mesh.faces[f]) {
            ASSERT_LT(corner, mesh.vertices.size());
            EXPECT_GT(formats::dot(mesh.faceNormals[f], mesh.normals[corner]), 0.0f) << f;
        }
}

using Corner = std::tuple<float, float, float, float, float, float>;
std::set<Corner> corners(const MeshData &mesh) {
    std::set<Corner> all;
    for (std::size_t v = 0; v < mesh.vertices.size(); ++v)
        all.insert({mesh.vertices[v].x, mesh.vertices[v].y, mesh.vertices[v].z, mesh.uvs[v].x, mesh.uvs[v].y,
                    mesh.influenceWeights[v * mesh.influences]});
    return all;
}

TEST(Closed, KnowsWhatHasAnInside) {
    EXPECT_TRUE(isClosed(ball(6)));
    EXPECT_TRUE(isClosed(cube(2)));
    EXPECT_FALSE(isClosed(field(3)));
    MeshData open = cube(2);
    open.faces.pop_back();
    EXPECT_FALSE(isClosed(open));
    MeshData torn = cube(2);
    std::swap(torn.faces[0][0], torn.faces[0][1]);
    EXPECT_FALSE(isClosed(torn));
}

TEST(BackSides, AreTrianglesWithNormalsOfTheirOwn) {
    std::vector<MeshData> meshes = {field(2)};
    addBackSides(meshes, 0);
    ASSERT_EQ(meshes.size(), 1u);
    EXPECT_EQ(meshes[0].faces.size(), 16u);
    EXPECT_EQ(meshes[0].vertices.size(), 18u);
    expectWhole(meshes[0]);
    EXPECT_EQ(meshes[0].normals[17].z, -1.0f);
}

TEST(BackSides, FollowTheBonesOfTheFront) {
    std::vector<MeshData> meshes = {ball(4)};
    const std::size_t count = meshes[0].influenceWeights.size();
    addBackSides(meshes, 0);
    EXPECT_EQ(meshes[0].influenceWeights.size(), 2 * count);
    EXPECT_EQ(meshes[0].boneNames.size(), 2u);
    EXPECT_EQ(meshes[0].influenceWeights[count + 5], meshes[0].influenceWeights[5]);
    EXPECT_TRUE(isClosed(meshes[0]));
}

TEST(BackSides, TakeAMeshOfTheirOwnWhereThereIsNoRoom) {
    std::vector<MeshData> meshes = {field(150), field(1)};
    ASSERT_GT(meshes[0].faces.size() * 2, kMaxCount / 2);
    meshes[0] = field(180);
    addBackSides(meshes, 0);
    ASSERT_EQ(meshes.size(), 3u);
    EXPECT_EQ(meshes[1].faces.size(), meshes[0].faces.size());
    EXPECT_EQ(meshes[1].normals[0].z, -1.0f);
    EXPECT_EQ(meshes[2].faces.size(), 2u);
    expectWhole(meshes[1]);
}

TEST(Simplify, KeepsSeamsWeightsAndTheInside) {
    MeshData mesh = ball(24);
    const std::set<Corner> before = corners(mesh);
    const std::size_t count = mesh.faces.size();
    const float error = simplify(mesh, 0.25, false);
    EXPECT_LE(mesh.faces.size(), count / 4 + 1);
    EXPECT_GE(mesh.faces.size(), count / 5);
    EXPECT_LT(error, 0.05f);
    expectWhole(mesh);
    EXPECT_TRUE(isClosed(mesh));
    for (const Corner &corner : corners(mesh)) EXPECT_EQ(before.count(corner), 1u);
    // No triangle crosses the seam of the texture.
    for (const formats::Face &face : mesh.faces) {
        float low = 1.0f, high = 0.0f;
        for (const std::uint16_t c : face) {
            low = std::min(low, mesh.uvs[c].x);
            high = std::max(high, mesh.uvs[c].x);
        }
        EXPECT_LT(high - low, 0.7f);
    }
}

TEST(Simplify, FlatSidesBecomeFewTriangles) {
    MeshData mesh = cube(8);
    EXPECT_LT(simplify(mesh, 0.02, false), 0.01f);
    EXPECT_LE(mesh.faces.size(), 24u);
    EXPECT_GE(mesh.faces.size(), 12u);
    expectWhole(mesh);
    float area = 0.0f;
    for (const formats::Face &face : mesh.faces)
        area += 0.5f * formats::length(formats::cross(mesh.vertices[face[1]] - mesh.vertices[face[0]],
                                                      mesh.vertices[face[2]] - mesh.vertices[face[0]]));
    EXPECT_NEAR(area, 24.0f, 1e-3f);
    for (std::size_t f = 0; f < mesh.faces.size(); ++f)
        for (const std::uint16_t corner : mesh.faces[f])
            EXPECT_GT(formats::dot(mesh.faceNormals[f], mesh.normals[corner]), 0.99f);
}

TEST(Simplify, OpenEdgesStayWhereAnotherMeshContinues) {
    MeshData free = field(10);
    for (Vec3 &v : free.vertices) v.z = 0.01f * std::sin(v.x + 1.0f) * std::cos(v.y + 1.0f);
    MeshData kept = free;
    simplify(free, 0.01, false);
    simplify(kept, 0.01, true);
    const auto edge = [](const MeshData &mesh) {
        return std::count_if(mesh.vertices.begin(), mesh.vertices.end(), [](const Vec3 &v) {
            return v.x == 0.0f || v.y == 0.0f || v.x == 10.0f || v.y == 10.0f;
        });
    };
    EXPECT_EQ(edge(kept), 40);
    EXPECT_LT(edge(free), 12);
    EXPECT_LT(kept.faces.size(), 60u);
}

TEST(Simplify, AShareOfOneChangesNothing) {
    MeshData mesh = ball(4);
    const std::size_t count = mesh.faces.size();
    EXPECT_EQ(simplify(mesh, 1.0, false), 0.0f);
    EXPECT_EQ(mesh.faces.size(), count);
    MeshData one = field(1);
    simplify(one, 0.1, true);
    EXPECT_GE(one.faces.size(), 1u);
}

class MeshPassesTest : public ConvertTest {
   protected:
    /// The report of a model of one mesh whose material has two sides.
    convert::Report convertTwoSided(const GltfMesh &mesh, const char *alpha, const Tweak &tweak = nullptr) {
        GltfBuilder model;
        model.node({{"mesh", model.mesh(mesh)}});
        nlohmann::json material = {{"doubleSided", true}, {"alphaMode", alpha}};
        if (std::string(alpha) == "BLEND")
            material["pbrMetallicRoughness"]["baseColorFactor"] = {1.0, 1.0, 1.0, 0.5};
        model.document()["materials"] = {material};
        model.document()["meshes"][0]["primitives"][0]["material"] = 0;
        const Made made = make("model.gltf", model.text(), tweak);
        expectNormalsAgree(poseWithoutWindow(made.root()));
        return made.report();
    }
};

TEST_F(MeshPassesTest, OpenMeshesOfTwoSidedMaterialsGetBackSides) {
    const convert::Report report = convertTwoSided(triangleMesh(), "OPAQUE");
    EXPECT_EQ(report.triangles, 2u);
    EXPECT_TRUE(mentions(report, "two-sided meshes") || report.changed.at(0).what == "two-sided meshes");
}

TEST_F(MeshPassesTest, ClosedOnesDoNot) {
    const convert::Report report = convertTwoSided(boxMesh(), "OPAQUE");
    EXPECT_EQ(report.triangles, 12u);
    EXPECT_EQ(report.changed.at(0).count, 1u);
}

TEST_F(MeshPassesTest, TheEngineDrawsBothSidesOfTransparentOnes) {
    const convert::Report report = convertTwoSided(triangleMesh(), "BLEND");
    EXPECT_EQ(report.triangles, 1u);
    EXPECT_TRUE(report.changed.empty());
}

TEST_F(MeshPassesTest, AnOptionChoosesAllOrNone) {
    const auto choose = [](BackSides sides) { return [sides](convert::Options &o) { o.backSides = sides; }; };
    EXPECT_EQ(convertTwoSided(boxMesh(), "OPAQUE", choose(BackSides::kAll)).triangles, 24u);
    const convert::Report none = convertTwoSided(triangleMesh(), "OPAQUE", choose(BackSides::kNone));
    EXPECT_EQ(none.triangles, 1u);
    EXPECT_EQ(none.dropped.at(0).what, "back sides of meshes");
}

TEST_F(MeshPassesTest, SimplifiesToAShareOrToANumber) {
    GltfMesh mesh;
    const MeshData source = ball(16);
    for (const Vec3 &v : source.vertices) mesh.positions.insert(mesh.positions.end(), {v.x, v.y, v.z});
    for (const formats::Face &face : source.faces)
        mesh.indices.insert(mesh.indices.end(), face.begin(), face.end());
    for (const double wanted : {0.5, 300.0}) {
        const auto tweak = [wanted](convert::Options &o) { o.simplify = wanted; };
        const convert::Report report = convertTwoSided(mesh, "OPAQUE", tweak);
        const double target = wanted < 1.0 ? wanted * double(source.faces.size()) : wanted;
        EXPECT_LE(double(report.triangles), target + 1.0);
        EXPECT_GE(double(report.triangles), target * 0.8);
        EXPECT_EQ(report.changed.back().what, "triangles");
    }
}

}  // namespace
}  // namespace keltra::test
