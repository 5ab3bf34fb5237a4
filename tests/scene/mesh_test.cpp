// SPDX-License-Identifier: Zlib
#include <keltra/mesh.h>

#include <gtest/gtest.h>
#include <keltra/material.h>
#include <keltra/opengl.h>

#include <memory>

#include "tests/scene/scene_parts.h"
#include "tests/support/allocations.h"

namespace keltra::test {
namespace {

class MeshTest : public SceneTest {};

TEST_F(MeshTest, StartsEmpty) {
    KTMESH mesh;
    EXPECT_EQ(mesh.getType(), 3u);
    EXPECT_STREQ(mesh.getTypeName(), "mesh");
    EXPECT_EQ(std::string(mesh.getName()), "[mesh " + std::to_string(mesh.getId()) + "]");
    EXPECT_EQ(mesh.getRadius(), -1.0f);
    EXPECT_EQ(mesh.getMinimum(), R3XVECTOR3D(0, 0, 0));
    EXPECT_EQ(mesh.getMaximum(), R3XVECTOR3D(0, 0, 0));
    EXPECT_EQ(mesh.getMaterial(), nullptr);
    EXPECT_FALSE(mesh.getShadowCaster());
    EXPECT_FALSE(mesh.isClosed());
    EXPECT_FALSE(mesh.isHidden());
    EXPECT_FALSE(mesh.isSkinned());
    EXPECT_EQ(mesh.getNumberOfVertices(), 0u);
    EXPECT_EQ(mesh.getNumberOfUVs(), 0u);
    EXPECT_EQ(mesh.getNumberOfFaces(), 0u);
    EXPECT_EQ(mesh.getNumberOfBones(), 0u);
    EXPECT_EQ(mesh.getVertexNormalPtr(), nullptr);
    EXPECT_EQ(mesh.getFaceNormalPtr(), nullptr);
}

TEST_F(MeshTest, DisplayStatusIsTheOppositeOfHidden) {
    KTMESH mesh;
    mesh.setDisplayStatus(false);
    EXPECT_TRUE(mesh.isHidden());
    mesh.setDisplayStatus(true);
    EXPECT_FALSE(mesh.isHidden());
    mesh.setShadowCaster(true);
    EXPECT_TRUE(mesh.getShadowCaster());
}

TEST_F(MeshTest, CountsItsUseOfTheMaterial) {
    KTMATERIAL first, second;
    {
        KTMESH mesh;
        mesh.setMaterial(&first);
        EXPECT_EQ(first.getReferences(), 1);
        mesh.setMaterial(&first);
        EXPECT_EQ(first.getReferences(), 1);
        mesh.setMaterial(&second);
        EXPECT_EQ(first.getReferences(), 0);
        EXPECT_EQ(second.getReferences(), 1);
    }
    EXPECT_EQ(second.getReferences(), 0);
}

TEST_F(MeshTest, TakesNullAsNoMaterial) {
    KTMATERIAL material;
    KTMESH mesh;
    mesh.setMaterial(nullptr);
    mesh.setMaterial(&material);
    mesh.setMaterial(nullptr);
    EXPECT_EQ(mesh.getMaterial(), nullptr);
    EXPECT_EQ(material.getReferences(), 0);
}

TEST_F(MeshTest, ACopyHoldsNoUseOfTheMaterialUntilItIsGivenOne) {
    KTMATERIAL material, other;
    KTMESH mesh;
    mesh.setMaterial(&material);
    {
        KTMESH copy(mesh);
        EXPECT_EQ(copy.getMaterial(), &material);
        EXPECT_EQ(material.getReferences(), 1);
        copy.setMaterial(&other);
        EXPECT_EQ(material.getReferences(), 1);
        EXPECT_EQ(other.getReferences(), 1);
        KTMESH assigned;
        assigned.setMaterial(&other);
        assigned = mesh;
        EXPECT_EQ(other.getReferences(), 1);
        EXPECT_EQ(assigned.getMaterial(), &material);
    }
    EXPECT_EQ(material.getReferences(), 1);
    EXPECT_EQ(other.getReferences(), 0);
}

TEST_F(MeshTest, ADestroyedMaterialIsForgottenByMeshesAndCopies) {
    auto material = std::make_unique<KTMATERIAL>();
    KTMESH mesh;
    mesh.setMaterial(material.get());
    KTMESH copy(mesh);
    material.reset();
    EXPECT_EQ(mesh.getMaterial(), nullptr);
    EXPECT_EQ(copy.getMaterial(), nullptr);
    KTMATERIAL next;
    mesh.setMaterial(&next);
    EXPECT_EQ(next.getReferences(), 1);
}

TEST_F(MeshTest, ACopyKeepsTheBuffersWhenTheOriginalGoes) {
    KTMESH *mesh = loadMesh(folder, skinNode("mesh", {"a", "b"}));
    ASSERT_NE(mesh, nullptr);
    const std::int32_t x = mesh->vertices[3 * 2], normal = mesh->vertexNormals[2];
    KTMESH copy(*mesh);
    KTMESH assigned;
    assigned = *mesh;
    EXPECT_EQ(copy.vertices, mesh->vertices);
    delete mesh;
    for (const KTMESH *kept : {&copy, &assigned}) {
        EXPECT_EQ(kept->vertices[3 * 2], x);
        EXPECT_EQ(kept->getVertexNormalPtr()[2], normal);
        EXPECT_EQ(kept->getFaceNormalPtr()[2], 1.5f);
        EXPECT_EQ(kept->faces[5], 3);
        EXPECT_EQ(kept->influenceWeights[1], 0.5f);
        EXPECT_EQ(kept->influenceBonesFloat[1], 1.0f);
        EXPECT_STREQ(kept->bones[1].name, "b");
        EXPECT_EQ(kept->skinnedNormals[0], 0);
    }
}

TEST_F(MeshTest, AnOriginalKeepsItsBuffersWhenACopyGoesOrIsAssigned) {
    KTMESH *mesh = loadMesh(folder, stripNode("mesh"));
    ASSERT_NE(mesh, nullptr);
    { KTMESH copy(*mesh); }
    KTMESH other;
    other = *mesh;
    other = KTMESH();
    *mesh = *mesh;
    EXPECT_EQ(other.vertices, nullptr);
    EXPECT_EQ(mesh->vertices[3 * 2], 65536);
    EXPECT_EQ(mesh->getNumberOfFaces(), 2u);
}

TEST(MeshPoolTest, IsMadeOnceOfIdentities) {
    ASSERT_TRUE(KTMESH::init());
    EXPECT_FALSE(KTMESH::init());
    for (unsigned i = 0; i < KTMESH::maxSkins * KTMESH::maxBones; ++i) {
        for (int k = 0; k < 16; ++k) ASSERT_EQ(KTMESH::boneMatrices[i].m[k], k % 5 == 0 ? 1.0f : 0.0f);
    }
    EXPECT_TRUE(KTMESH::free());
    EXPECT_EQ(KTMESH::boneMatrices, nullptr);
    EXPECT_TRUE(KTMESH::free());
    EXPECT_TRUE(KTMESH::init());
    EXPECT_TRUE(KTMESH::free());
}

TEST(MeshPoolTest, InitFailsWithoutMemoryAndWorksLater) {
    if (!Allocations::canFail()) GTEST_SKIP() << "a sanitizer owns malloc";
    Allocations::failNext(KTMESH::maxSkins * KTMESH::maxBones * sizeof(R3XMATRIX));
    EXPECT_FALSE(KTMESH::init());
    Allocations::clear();
    EXPECT_EQ(KTMESH::boneMatrices, nullptr);
    EXPECT_TRUE(KTMESH::init());
    EXPECT_TRUE(KTMESH::free());
}

TEST_F(MeshTest, ResetFreesTheSlotsAndSwitchesOffOnlyTheArraysThatAreOn) {
    KTMESH mesh;
    KTMESH::slotMesh[0] = &mesh;
    KTMESH::usedSlots = 1;
    KTMESH::reset();
    EXPECT_EQ(KTMESH::usedSlots, 0u);
    EXPECT_EQ(KTMESH::slotMesh[0], nullptr);
    KTOPENGL::vertexArrayOn();
    KTOPENGL::textureArrayOn();
    GlRecorder::clear();
    KTMESH::reset();
    EXPECT_EQ(GlRecorder::count("glDisableClientState"), 2);
    EXPECT_EQ(GlRecorder::count("glDisableClientState", {GL_VERTEX_ARRAY}), 1);
    EXPECT_EQ(GlRecorder::count("glDisableClientState", {GL_TEXTURE_COORD_ARRAY}), 1);
    KTOPENGL::normalArrayOn();
    KTOPENGL::colorArrayOn();
    KTMESH::reset();
    KTMESH::reset();
    EXPECT_EQ(GlRecorder::count("glDisableClientState"), 4);
}

TEST_F(MeshTest, ADestroyedMeshLeavesItsSlotEmpty) {
    auto mesh = std::make_unique<KTMESH>();
    KTMESH::slotMesh[3] = mesh.get();
    mesh.reset();
    EXPECT_EQ(KTMESH::slotMesh[3], nullptr);
}

TEST_F(MeshTest, ShowNormalsIsASwitch) {
    KTMESH::showNormals();
    EXPECT_TRUE(KTMESH::normalsShown);
    KTMESH::hideNormals();
    EXPECT_FALSE(KTMESH::normalsShown);
}

}  // namespace
}  // namespace keltra::test
