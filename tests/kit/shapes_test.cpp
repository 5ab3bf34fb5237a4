// SPDX-License-Identifier: Zlib
#include <keltra/kit/shapes.h>

#include <cmath>
#include <limits>
#include <memory>
#include <vector>

#include "tests/support/allocations.h"
#include "tests/support/engine_fixture.h"

namespace keltra::test {
namespace {

using Mesh = std::unique_ptr<KTMESH>;

R3XVECTOR3D at(const std::int32_t *values, unsigned i) {
    return R3XVECTOR3D(values[3 * i], values[3 * i + 1], values[3 * i + 2]) * (1.0f / 65536.0f);
}

// Of a body around the origin: faces look away from it, normals of vertices agree with their faces and have
// length 1, and each vertex is used.
void expectSound(const Mesh &mesh, bool isClosed = true) {
    ASSERT_TRUE(mesh);
    ASSERT_GT(mesh->getNumberOfFaces(), 0u);
    std::vector<bool> used(mesh->getNumberOfVertices());
    for (unsigned i = 0; i < mesh->getNumberOfFaces(); ++i) {
        const std::uint16_t *face = mesh->faces + 3 * i;
        const R3XVECTOR3D normal(mesh->faceNormals + 3 * i);
        EXPECT_NEAR(normal.length(), 1.0f, 1e-3f) << "face " << i << " has no area";
        const R3XVECTOR3D middle =
            (at(mesh->vertices, face[0]) + at(mesh->vertices, face[1]) + at(mesh->vertices, face[2])) *
            (1 / 3.0f);
        if (isClosed) {
            EXPECT_GT(normal % middle, 0.0f) << "face " << i << " looks inward";
        }
        for (int corner = 0; corner < 3; ++corner) {
            ASSERT_LT(face[corner], used.size());
            used[face[corner]] = true;
            EXPECT_GT(normal % at(mesh->vertexNormals, face[corner]), 0.3f);
        }
    }
    float farthest = 0.0f;
    for (unsigned i = 0; i < mesh->getNumberOfVertices(); ++i) {
        EXPECT_NEAR(at(mesh->vertexNormals, i).length(), 1.0f, 1e-3f);
        farthest = std::fmax(farthest, at(mesh->vertices, i).length());
    }
    EXPECT_NEAR(mesh->getRadius(), farthest, 1e-4f);
    EXPECT_EQ(mesh->getNumberOfUVs(), mesh->getNumberOfVertices());
}

class KitShapesTest : public EngineTest {
   protected:
    void SetUp() override {
        EngineTest::SetUp();
        KTFAULTS::clear();
    }
};

TEST_F(KitShapesTest, BodiesLookOutward) {
    expectSound(Mesh(KTSHAPES::makeBox(1, 2, 3)));
    for (unsigned slices : {3u, 12u, 40u}) {
        expectSound(Mesh(KTSHAPES::makeSphere(2, slices, slices == 3 ? 2 : slices / 2)));
        expectSound(Mesh(KTSHAPES::makeCylinder(1, 1, 2, slices)));
        expectSound(Mesh(KTSHAPES::makeCylinder(1, 0.25f, 2, slices)));
    }
}

TEST_F(KitShapesTest, AConeHasOneEnd) {
    const Mesh cone(KTSHAPES::makeCylinder(1, 0, 2, 8)), tube(KTSHAPES::makeCylinder(1, 1, 2, 8, false));
    ASSERT_TRUE(cone && tube);
    EXPECT_EQ(cone->getNumberOfVertices(), 18u + 8u);
    EXPECT_EQ(tube->getNumberOfVertices(), 18u);
    EXPECT_EQ(tube->getNumberOfFaces(), 16u);
    EXPECT_NEAR(at(cone->vertexNormals, 0).length(), 1.0f, 1e-3f);
}

TEST_F(KitShapesTest, PlanesAndQuads) {
    const Mesh plane(KTSHAPES::makePlane(4, 2, 4, 2, 8)), quad(KTSHAPES::makeQuad(2, 1));
    expectSound(plane, false);
    expectSound(quad, false);
    EXPECT_EQ(plane->getMinimum(), R3XVECTOR3D(-2, 0, -1));
    EXPECT_EQ(plane->getMaximum(), R3XVECTOR3D(2, 0, 1));
    EXPECT_EQ(plane->getNumberOfFaces(), 16u);
    EXPECT_EQ(at(plane->vertexNormals, 3), R3XVECTOR3D(0, 1, 0));
    EXPECT_EQ(plane->uvs[2 * 4], 8 << 16) << "repeated eight times along x";
    EXPECT_EQ(plane->uvs[1], 4 << 16) << "and as densely along z";
    EXPECT_EQ(at(quad->vertexNormals, 0), R3XVECTOR3D(0, 0, 1));
}

TEST_F(KitShapesTest, ArraysAreCopied) {
    float vertices[] = {0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, -1};
    const std::uint16_t faces[] = {0, 1, 2, 0, 2, 3};
    const Mesh mesh(KTSHAPES::makeArrays({vertices, nullptr, nullptr, 4, faces, 2}));
    ASSERT_TRUE(mesh);
    vertices[0] = 9;
    EXPECT_EQ(at(mesh->vertices, 0), R3XVECTOR3D(0, 0, 0));
    EXPECT_EQ(at(mesh->vertexNormals, 1), R3XVECTOR3D(0, 0, 1)) << "of its only face";
    EXPECT_NEAR(at(mesh->vertexNormals, 2).z, std::sqrt(0.5f), 1e-4f) << "between both";
    EXPECT_EQ(mesh->getNumberOfUVs(), 0u);
    const std::uint16_t wrong[] = {0, 1, 4};
    EXPECT_EQ(KTSHAPES::makeArrays({vertices, nullptr, nullptr, 4, wrong, 1}), nullptr);
    EXPECT_EQ(KTSHAPES::makeArrays({nullptr, nullptr, nullptr, 4, wrong, 1}), nullptr);
    EXPECT_EQ(KTSHAPES::makeArrays({vertices, nullptr, nullptr, 4, nullptr, 1}), nullptr);
    EXPECT_EQ(KTSHAPES::makeArrays({vertices, nullptr, nullptr, 65536, faces, 1}), nullptr);
    EXPECT_EQ(KTFAULTS::getNumberOfFaults(), 4u);
}

TEST_F(KitShapesTest, SizesAndCountsOutOfRangeAreRefused) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ(KTSHAPES::makePlane(0, 1), nullptr);
    EXPECT_EQ(KTSHAPES::makePlane(1, 1, 0, 1), nullptr);
    EXPECT_EQ(KTSHAPES::makePlane(1, 1, 1, 257), nullptr);
    EXPECT_EQ(KTSHAPES::makePlane(1, 1, 256, 256), nullptr) << "too many vertices";
    EXPECT_EQ(KTSHAPES::makeQuad(nan, 1), nullptr);
    EXPECT_EQ(KTSHAPES::makeBox(1, -1, 1), nullptr);
    EXPECT_EQ(KTSHAPES::makeSphere(1, 2), nullptr);
    EXPECT_EQ(KTSHAPES::makeSphere(1, 12, 1), nullptr);
    EXPECT_EQ(KTSHAPES::makeCylinder(0, 0, 1), nullptr);
    EXPECT_EQ(KTSHAPES::makeCylinder(nan, 1, 1), nullptr);
    EXPECT_EQ(KTSHAPES::makeCylinder(1, 1, 1, 0xffffffffu), nullptr);
    EXPECT_EQ(KTSHAPES::merge(nullptr, nullptr), nullptr);
    EXPECT_EQ(KTFAULTS::getNumberOfFaults(), 12u);
}

TEST_F(KitShapesTest, WithoutMemoryThereIsNone) {
    if (!Allocations::canFail()) GTEST_SKIP() << "a sanitizer owns malloc";
    const unsigned nodes = KTNODE::getNumberOfNodes();
    for (long nth = 1; nth <= 2; ++nth) {
        Allocations::failNth(nth);
        EXPECT_EQ(KTSHAPES::makeBox(1, 1, 1), nullptr);
        EXPECT_TRUE(Allocations::hasFailed());
        EXPECT_EQ(Allocations::live(), 0);
        Allocations::clear();
        EXPECT_EQ(KTFAULTS::getLast()->code, KT_FAULT_OUT_OF_MEMORY);
    }
    EXPECT_EQ(KTNODE::getNumberOfNodes(), nodes);
}

TEST_F(KitShapesTest, MeshesOfOneMaterialAreMerged) {
    KTMATERIAL *const red = KTSHAPES::makeMaterial("red", 1, 0, 0), *const blue = KTSHAPES::makeMaterial(
                                                                        "blue", 0, 0, 1);
    KTNODE root, middle;
    root.setPosition(50, 0, 0);
    middle.link(&root);
    middle.setPosition(0, 3, 0);
    middle.setRotation(0, 90, 0);
    Mesh parts[4];
    for (Mesh &part : parts) {
        part.reset(KTSHAPES::makeQuad(2, 2));
        part->setMaterial(&part == &parts[2] ? blue : red);
        part->link(&middle);
    }
    parts[1]->setPosition(0, 0, 5);
    parts[3]->setDisplayStatus(false);
    const Mesh merged(KTSHAPES::merge(&root, red));
    ASSERT_TRUE(merged);
    EXPECT_EQ(merged->getNumberOfVertices(), 8u) << "not the blue one, not the hidden one";
    EXPECT_EQ(merged->getMaterial(), red);
    EXPECT_NEAR(merged->getMaximum().x, 5.0f, 1e-3f) << "turned: z is x now";
    EXPECT_NEAR(merged->getMaximum().y, 4.0f, 1e-3f);
    EXPECT_NEAR(at(merged->vertexNormals, 0).x, 1.0f, 1e-3f);
    EXPECT_TRUE(parts[0]->isHidden() && parts[1]->isHidden());
    EXPECT_FALSE(parts[2]->isHidden());
    EXPECT_EQ(KTSHAPES::merge(&root, red), nullptr) << "there is none left";
}

TEST_F(KitShapesTest, CellsAreCountedFromTheUpperLeft) {
    const KTBOXCOORD cell = KTSHAPES::getCell(4, 2, 5);
    const float expected[8] = {0.25f, 0.5f, 0.5f, 0.5f, 0.25f, 0.0f, 0.5f, 0.0f};
    for (int i = 0; i < 8; ++i) EXPECT_EQ(cell.coord[i], expected[i]) << i;
    EXPECT_EQ(KTSHAPES::getCell(4, 2, 13).coord[1], 0.5f) << "they go around";
    EXPECT_EQ(KTSHAPES::getCell(0, 0, 3).coord[1], 1.0f);
    const Mesh quad(KTSHAPES::makeQuad(1, 1)), box(KTSHAPES::makeBox(1, 1, 1));
    ASSERT_TRUE(KTSHAPES::setCell(quad.get(), 4, 2, 5));
    EXPECT_EQ(quad->uvs[0], 0x4000);
    EXPECT_EQ(quad->uvs[1], 0) << "lower left";
    EXPECT_EQ(quad->uvs[4], 0x8000);
    EXPECT_EQ(quad->uvs[5], 0x8000) << "upper right";
    EXPECT_FALSE(KTSHAPES::setCell(box.get(), 4, 2, 5));
    EXPECT_FALSE(KTSHAPES::setCell(nullptr, 4, 2, 5));
}

TEST_F(KitShapesTest, ABillboardFacesTheEye) {
    KTNODE board;
    board.setPosition(1, 2, 3);
    const R3XVECTOR3D eyes[] = {{1, 2, 9}, {6, 5, 3}, {-3, 9, -4}, {1, -7, 2}};
    for (const R3XVECTOR3D &eye : eyes) {
        KTSHAPES::faceEye(&board, eye, false);
        R3XVECTOR3D way = eye - board.getPosition();
        way.normalize();
        KT_glMatrixMode(GL_MODELVIEW);
        const R3XVECTOR3D front = board.getFinalMatrix(nullptr).rotate(R3XVECTOR4D(0, 0, 1, 0));
        EXPECT_NEAR(front.distance(way), 0.0f, 1e-3f);
        KTSHAPES::faceEye(&board, eye);
        EXPECT_EQ(board.getRotation().x, 0.0f) << "upright";
    }
    KTSHAPES::faceEye(nullptr, R3XVECTOR3D());
}

TEST_F(KitShapesTest, AFrameOfSpritesAndBillboardsAllocatesNothing) {
    KTMESH *const quad = KTSHAPES::makeQuad(1.0f, 1.0f);
    ASSERT_NE(quad, nullptr);
    Allocations::startCounting();
    for (unsigned int i = 0; i < 5; ++i) {
        KTSHAPES::setCell(quad, 4, 2, i);
        KTSHAPES::getCell(4, 2, i);
        KTSHAPES::faceEye(quad, R3XVECTOR3D(static_cast<float>(i), 2, 9));
    }
    EXPECT_EQ(Allocations::stopCounting(), 0);
}

}  // namespace
}  // namespace keltra::test
