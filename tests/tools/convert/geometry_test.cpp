// SPDX-License-Identifier: Zlib
#include "tools/convert/geometry.h"

#include <assimp/mesh.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>

#include "tools/convert/normals.h"

namespace keltra::convert {
namespace {

/// A mesh of triangles over the given points.
class MeshOf {
   public:
    MeshOf(const std::vector<aiVector3D> &points, const std::vector<std::vector<unsigned>> &faces)
        : mesh(new aiMesh) {
        mesh->mNumVertices = static_cast<unsigned>(points.size());
        mesh->mVertices = new aiVector3D[points.size()];
        std::copy(points.begin(), points.end(), mesh->mVertices);
        mesh->mNumFaces = static_cast<unsigned>(faces.size());
        mesh->mFaces = new aiFace[faces.size()];
        for (std::size_t f = 0; f < faces.size(); ++f) {
            mesh->mFaces[f].mNumIndices = static_cast<unsigned>(faces[f].size());
            mesh->mFaces[f].mIndices = new unsigned[faces[f].size()];
            std::copy(faces[f].begin(), faces[f].end(), mesh->mFaces[f].mIndices);
        }
    }
    void setNormals(const aiVector3D &normal) {
        mesh->mNormals = new aiVector3D[mesh->mNumVertices];
        std::fill_n(mesh->mNormals, mesh->mNumVertices, normal);
    }
    void setUVs(unsigned channel, const aiVector3D &uv) {
        mesh->mTextureCoords[channel] = new aiVector3D[mesh->mNumVertices];
        std::fill_n(mesh->mTextureCoords[channel], mesh->mNumVertices, uv);
    }

    std::unique_ptr<aiMesh> mesh;
};

MeshOf triangle() { return MeshOf({{0, 0, 0}, {2, 0, 0}, {0, 1, 0}}, {{0, 1, 2}}); }

std::vector<formats::MeshData> build(const MeshOf &source, const Matrix &bake = Matrix(),
                                     const Skin *skin = nullptr, Rejects *rejects = nullptr) {
    MeshBuilder builder;
    Rejects ignored;
    builder.add(*source.mesh, bake, skin, 0, rejects ? *rejects : ignored);
    std::vector<Joint> joints(1000);
    for (std::size_t j = 0; j < joints.size(); ++j) joints[j].name = "bone" + std::to_string(j);
    return builder.finish(joints);
}

/// Rows of `count` points each, two rows: a strip of 2 * (count - 1) triangles over 2 * count vertices.
MeshOf strip(unsigned count) {
    std::vector<aiVector3D> points;
    for (unsigned i = 0; i < count; ++i) {
        points.emplace_back(float(i), 0.0f, 0.0f);
        points.emplace_back(float(i), 1.0f, 0.0f);
    }
    std::vector<std::vector<unsigned>> faces;
    for (unsigned i = 0; i + 2 < 2 * count; ++i)
        faces.push_back({i, i + (i % 2 ? 2u : 1u), i + (i % 2 ? 1u : 2u)});
    MeshOf mesh(points, faces);
    mesh.setNormals({0, 0, 1});
    return mesh;
}

TEST(Geometry, EqualVerticesAreShared) {
    const MeshOf source({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {1, 0, 0}, {1, 1, 0}, {-0.0f, 1, 0}},
                        {{0, 1, 2}, {3, 4, 5}});
    const auto meshes = build(source);
    ASSERT_EQ(meshes.size(), 1u);
    EXPECT_EQ(meshes[0].vertices.size(), 4u);
    EXPECT_EQ(meshes[0].faces.size(), 2u);
    EXPECT_TRUE(meshes[0].uvs.empty());
}

TEST(Geometry, BoundsAreThoseOfTheVerticesAndTheRadiusIsAboutTheOrigin) {
    const auto meshes = build(triangle());
    EXPECT_EQ(meshes[0].minimum, (formats::Vec3{0, 0, 0}));
    EXPECT_EQ(meshes[0].maximum, (formats::Vec3{2, 1, 0}));
    EXPECT_EQ(meshes[0].radius, 2.0f);
}

TEST(Geometry, AMirrorTurnsTheWinding) {
    Matrix mirror;
    mirror.a1 = -1.0;
    const auto meshes = build(triangle(), mirror);
    ASSERT_EQ(meshes[0].faces.size(), 1u);
    const formats::MeshData &mesh = meshes[0];
    const formats::Vec3 a = mesh.vertices[mesh.faces[0][0]], b = mesh.vertices[mesh.faces[0][1]],
                        c = mesh.vertices[mesh.faces[0][2]];
    EXPECT_GT(formats::cross(b - a, c - a).z, 0.0f);
    EXPECT_GT(mesh.faceNormals[0].z, 0.99f);
    for (const formats::Vec3 &normal : mesh.normals) EXPECT_GT(normal.z, 0.99f);
}

TEST(Geometry, AMeshMayHaveExactly65535Vertices) {
    MeshOf source = strip(32768);  // 65536 vertices, of which the last stands in the last triangle only
    source.mesh->mNumFaces -= 1;
    const auto one = build(source);
    source.mesh->mNumFaces += 1;
    ASSERT_EQ(one.size(), 1u);
    EXPECT_EQ(one[0].vertices.size(), 65535u);

    const auto two = build(source);
    ASSERT_EQ(two.size(), 2u);
    EXPECT_EQ(two[0].vertices.size(), 65535u);
    EXPECT_EQ(two[1].vertices.size(), 3u);
    EXPECT_EQ(two[0].faces.size() + two[1].faces.size(), 65534u);
}

TEST(Geometry, AMeshMayHaveExactly65535Triangles) {
    std::vector<std::vector<unsigned>> faces(65536, {0, 1, 2});
    const MeshOf source({{0, 0, 0}, {2, 0, 0}, {0, 1, 0}}, faces);
    const auto meshes = build(source);
    ASSERT_EQ(meshes.size(), 2u);
    EXPECT_EQ(meshes[0].faces.size(), 65535u);
    EXPECT_EQ(meshes[1].faces.size(), 1u);
}

TEST(Geometry, WhatIsNoTriangleIsCounted) {
    const float nan = std::numeric_limits<float>::quiet_NaN(), inf = std::numeric_limits<float>::infinity();
    const MeshOf source({{0, 0, 0}, {2, 0, 0}, {0, 1, 0}, {nan, 0, 0}, {0, inf, 0}, {1, 0, 0}},
                        {{0, 1, 2}, {0, 1, 3}, {4, 1, 2}, {0, 1, 5}, {0, 0, 2}, {0, 1, 99}, {0, 1}, {2}});
    Rejects rejects;
    const auto meshes = build(source, Matrix(), nullptr, &rejects);
    ASSERT_EQ(meshes.size(), 1u);
    EXPECT_EQ(meshes[0].faces.size(), 1u);
    EXPECT_EQ(rejects.notFinite, 2u);
    EXPECT_EQ(rejects.degenerate, 2u);
    EXPECT_EQ(rejects.badIndex, 1u);
    EXPECT_EQ(rejects.linesAndPoints, 2u);
}

TEST(Geometry, NormalsThatAreNoneBecomeTheTriangles) {
    MeshOf source = triangle();
    source.setNormals({0, 0, 0});
    source.mesh->mNormals[1].x = std::numeric_limits<float>::quiet_NaN();
    const auto meshes = build(source);
    for (const formats::Vec3 &normal : meshes[0].normals) EXPECT_EQ(normal, (formats::Vec3{0, 0, 1}));
}

TEST(Geometry, AbsentNormalsAreSmoothOverFlatEdgesAndSharpOverSteepOnes) {
    // Two walls of a right angle, and a third face that continues the second at 20 degrees.
    const float dx = std::cos(0.35f), dy = std::sin(0.35f);
    const MeshOf source({{0, 0, 0}, {0, 0, 1}, {0, 1, 0}, {1, 0, 0}, {1 + dx, dy, 0}, {1, 0, 1}},
                        {{0, 1, 2}, {0, 3, 1}, {3, 5, 1}, {3, 4, 5}});
    const std::vector<Vector> normals = cornerNormals(*source.mesh);
    EXPECT_NEAR(normals[0] * faceNormal(*source.mesh, 0).Normalize(), 1.0, 1e-6);  // sharp
    const Vector third = faceNormal(*source.mesh, 3).Normalize();
    EXPECT_LT(normals[9] * third, 0.999);  // smoothed with its neighbours
    EXPECT_GT(normals[9] * third, 0.9);
}

/// A tetrahedron about the middle of the first octant, seen from outside.
MeshOf tetrahedron() {
    return MeshOf({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}}, {{0, 2, 1}, {0, 1, 3}, {0, 3, 2}, {1, 2, 3}});
}

void setCornerNormals(MeshOf &source, float sign) {
    aiMesh &mesh = *source.mesh;
    mesh.mNormals = new aiVector3D[mesh.mNumVertices];
    for (unsigned i = 0; i < mesh.mNumVertices; ++i)
        mesh.mNormals[i] = (mesh.mVertices[i] - aiVector3D(0.25f, 0.25f, 0.25f)).Normalize() * sign;
}

/// Fronts and normals look away from the inside.
void expectOutward(const formats::MeshData &mesh) {
    for (std::size_t f = 0; f < mesh.faces.size(); ++f) {
        const formats::Vec3 out = mesh.vertices[mesh.faces[f][0]] - formats::Vec3{0.25f, 0.25f, 0.25f};
        EXPECT_GT(formats::dot(mesh.faceNormals[f], out), 0.0f);
        EXPECT_GT(formats::dot(mesh.normals[mesh.faces[f][0]], out), 0.0f);
    }
}

void expectMadeOutward(const MeshOf &source, unsigned flippedMeshes) {
    Rejects rejects;
    const auto meshes = build(source, Matrix(), nullptr, &rejects);
    EXPECT_EQ(rejects.insideOut, flippedMeshes);
    expectOutward(meshes[0]);
}

TEST(Geometry, NormalsThatLookIntoABodyAreTurned) {
    MeshOf source = tetrahedron();
    setCornerNormals(source, -1.0f);
    expectMadeOutward(source, 1);
}

TEST(Geometry, TrianglesThatLookIntoABodyAreTurned) {
    MeshOf source = tetrahedron();
    setCornerNormals(source, 1.0f);
    for (unsigned f = 0; f < 4; ++f)
        std::swap(source.mesh->mFaces[f].mIndices[0], source.mesh->mFaces[f].mIndices[1]);
    expectMadeOutward(source, 1);
}

TEST(Geometry, ABodyWhoseNormalsLookOutIsLeftAlone) {
    MeshOf source = tetrahedron();
    setCornerNormals(source, 1.0f);
    expectMadeOutward(source, 0);
}

TEST(Geometry, TheNormalsOfAnOpenSurfaceTellWhichSideIsSeen) {
    MeshOf source = triangle();
    source.setNormals({0, 0, -1});
    const auto meshes = build(source);
    EXPECT_LT(meshes[0].faceNormals[0].z, 0.0f);
    EXPECT_LT(meshes[0].normals[0].z, 0.0f);
}

TEST(Geometry, TextureCoordinatesAreOnePairAVertexAndFinite) {
    MeshOf source = triangle();
    source.setUVs(0, {0.25f, 40000.0f, 0.0f});
    source.mesh->mTextureCoords[0][2].x = std::numeric_limits<float>::quiet_NaN();
    const auto meshes = build(source);
    ASSERT_EQ(meshes[0].uvs.size(), meshes[0].vertices.size());
    EXPECT_EQ(meshes[0].uvs[0].x, 0.25f);
    EXPECT_EQ(meshes[0].uvs[0].y, 16384.0f);
    EXPECT_EQ(meshes[0].uvs[2].x, 0.0f);
}

VertexSkin follows(std::initializer_list<std::pair<unsigned, float>> bones) {
    VertexSkin skin;
    unsigned i = 0;
    for (const auto &[joint, weight] : bones) skin.joints[i] = joint, skin.weights[i++] = weight;
    return skin;
}

TEST(Geometry, SkinsStoreAsManyInfluencesAsTheirBusiestVertexHas) {
    Skin skin{
        0, 0, "", Matrix(), {follows({{7, 1.0f}}), follows({{9, 0.75f}, {7, 0.25f}}), follows({{7, 1.0f}})}};
    const auto meshes = build(triangle(), Matrix(), &skin);
    ASSERT_EQ(meshes.size(), 1u);
    EXPECT_EQ(meshes[0].influences, 2u);
    EXPECT_EQ(meshes[0].boneNames, (std::vector<std::string>{"bone7", "bone9"}));
    EXPECT_EQ(meshes[0].influenceBones, (std::vector<std::uint8_t>{0, 0, 1, 0, 0, 0}));
    EXPECT_EQ(meshes[0].influenceWeights, (std::vector<float>{1.0f, 0.0f, 0.75f, 0.25f, 1.0f, 0.0f}));
}

TEST(Geometry, SkinsOfMoreThanAHundredBonesAreSplit) {
    const MeshOf source = strip(150);
    Skin skin{0, 0, "", Matrix(), {}};
    for (unsigned i = 0; i < 300; ++i) skin.vertices.push_back(follows({{i / 2, 1.0f}}));
    const auto meshes = build(source, Matrix(), &skin);
    std::size_t faces = 0;
    ASSERT_EQ(meshes.size(), 2u);
    for (const formats::MeshData &mesh : meshes) {
        EXPECT_LE(mesh.boneNames.size(), 100u);
        faces += mesh.faces.size();
    }
    EXPECT_EQ(meshes[0].boneNames.size(), 100u);
    EXPECT_EQ(faces, 298u);
}

}  // namespace
}  // namespace keltra::convert
