// SPDX-License-Identifier: Zlib
#include <keltra/kit/shapes.h>

#include <cmath>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "tests/support/allocations.h"
#include "tests/support/engine_fixture.h"

namespace keltra::test {
namespace {

using Mesh = std::unique_ptr<KTMESH>;

R3XVECTOR3D at(const std::int32_t *values, unsigned i) {
    return R3XVECTOR3D(values[3 * i], values[3 * i + 1], values[3 * i + 2]) * (1.0f / 65536.0f);
}

// A font whose cells have 8 x 8 pixels, of 16 x 16 on the screen: 'A' is a filled square of 4 x 4 in the
// middle of its cell, 'B' the same with a hole of 2 x 2, 'C' two pixels that touch at a corner.
class KitTextTest : public EngineTest {
   protected:
    static constexpr unsigned kSide = 128, kCell = 8;

    void SetUp() override {
        EngineTest::SetUp();
        pixels.assign(kSide * kSide * 4, 0);
        fill('A', 2, 2, 4, 255);
        fill('B', 2, 2, 4, 255);
        fill('B', 3, 3, 2, 0);
        fill('C', 2, 2, 1, 255);
        fill('C', 3, 3, 1, 255);
        texture.setFilter(false, false, true);
        ASSERT_TRUE(texture.create(kSide, kSide, 4));
        texture.modify(pixels.data(), true);  // makes the bitmap
        ASSERT_TRUE(texture.modify(pixels.data(), true));
        font.setTexture(&texture);
        for (char c = ' '; c < 127; ++c) font.setKerning(c, 6);  // an advance of 10
        KTFAULTS::clear();
    }

    void fill(char c, unsigned x, unsigned y, unsigned side, int alpha) {
        const unsigned cell = static_cast<unsigned>(c - ' ');
        const unsigned left = cell % 16 * kCell, low = (15 - cell / 16) * kCell;
        for (unsigned row = y; row < y + side; ++row)
            for (unsigned column = x; column < x + side; ++column)
                pixels[4 * ((low + row) * kSide + left + column) + 3] = static_cast<char>(alpha);
    }

    std::vector<char> pixels;
    KTTEXTURE texture;
    KTFONT font;
};

// Each edge of a closed body belongs to two faces, which run along it in opposite directions.
void expectClosed(const KTMESH &mesh) {
    using Place = std::tuple<std::int32_t, std::int32_t, std::int32_t>;
    std::map<std::pair<Place, Place>, int> edges;
    const auto place = [&mesh](unsigned i) {
        const std::int32_t *v = mesh.vertices + 3 * i;
        return Place(v[0], v[1], v[2]);
    };
    for (unsigned i = 0; i < mesh.getNumberOfFaces(); ++i)
        for (unsigned corner = 0; corner < 3; ++corner)
            ++edges[{place(mesh.faces[3 * i + corner]), place(mesh.faces[3 * i + (corner + 1) % 3])}];
    for (const auto &[edge, times] : edges) {
        const auto back = edges.find({edge.second, edge.first});
        ASSERT_NE(back, edges.end()) << "an open edge";
        EXPECT_EQ(times, back->second);
    }
}

void expectNormalsOfFaces(const KTMESH &mesh) {
    for (unsigned i = 0; i < mesh.getNumberOfFaces(); ++i) {
        const R3XVECTOR3D normal(mesh.faceNormals + 3 * i);
        EXPECT_NEAR(normal.length(), 1.0f, 1e-3f) << "face " << i << " has no area";
        for (int corner = 0; corner < 3; ++corner)
            EXPECT_NEAR(normal % at(mesh.vertexNormals, mesh.faces[3 * i + corner]), 1.0f, 1e-2f);
    }
}

TEST_F(KitTextTest, HasASquareForEachGlyphWithItsPlaceInTheTexture) {
    const Mesh mesh(KTSHAPES::makeText(font, "A C", 2.0f));
    ASSERT_TRUE(mesh);
    EXPECT_EQ(mesh->getNumberOfVertices(), 8u);
    EXPECT_EQ(mesh->getNumberOfFaces(), 4u);
    // 'C' is number 35: column 3 of row 2, counted from the top.
    const std::int32_t *uv = mesh->uvs + 2 * 4;
    EXPECT_EQ(uv[0], 3 * 4096);
    EXPECT_EQ(uv[1], 13 * 4096);
    EXPECT_EQ(uv[4], 3 * 4096 + 4096 * 10 / 16);  // as wide as its advance
    EXPECT_EQ(uv[5], 14 * 4096);
    expectNormalsOfFaces(*mesh);
}

TEST_F(KitTextTest, IsAsHighAsAskedForAroundTheOriginWithKerning) {
    const Mesh mesh(KTSHAPES::makeText(font, "AA", 2.0f));
    ASSERT_TRUE(mesh);
    // A pixel is an eighth of a unit; the text is 2 * 10 pixels wide.
    EXPECT_FLOAT_EQ(mesh->minimum.y, -1.0f);
    EXPECT_FLOAT_EQ(mesh->maximum.y, 1.0f);
    EXPECT_FLOAT_EQ(mesh->minimum.x, -1.25f);
    EXPECT_FLOAT_EQ(mesh->maximum.x, 1.25f);
}

TEST_F(KitTextTest, CentersLines) {
    const Mesh mesh(KTSHAPES::makeText(font, "AAA\nA", 1.6f));
    ASSERT_TRUE(mesh);
    EXPECT_NEAR(mesh->minimum.y, -1.6f, 1e-4f);
    EXPECT_NEAR(mesh->maximum.y, 1.6f, 1e-4f);
    EXPECT_NEAR(at(mesh->vertices, 0).x, -1.5f, 1e-4f);   // 30 pixels of a tenth
    EXPECT_NEAR(at(mesh->vertices, 12).x, -0.5f, 1e-4f);  // 10 pixels
}

TEST_F(KitTextTest, CutsSolidLettersAlongTheirOutlines) {
    const Mesh mesh(KTSHAPES::makeSolidText(font, "A", 1.6f, 0.4f));
    ASSERT_TRUE(mesh);
    expectClosed(*mesh);
    expectNormalsOfFaces(*mesh);
    EXPECT_NEAR(mesh->minimum.z, -0.2f, 1e-4f);
    EXPECT_NEAR(mesh->maximum.z, 0.2f, 1e-4f);
    // Four pixels of 0.2 units: the outline lies halfway beyond the last one.
    EXPECT_NEAR(mesh->maximum.y - mesh->minimum.y, 0.8f, 0.01f);
    EXPECT_NEAR(mesh->maximum.x - mesh->minimum.x, 0.8f, 0.01f);
    EXPECT_NEAR(mesh->minimum.y, -0.4f, 0.01f);
    EXPECT_EQ(mesh->getNumberOfUVs(), mesh->getNumberOfVertices());
}

TEST_F(KitTextTest, KeepsHolesAndJoinsCorners) {
    const Mesh solid(KTSHAPES::makeSolidText(font, "A", 1.6f, 0.4f));
    const Mesh holed(KTSHAPES::makeSolidText(font, "B", 1.6f, 0.4f));
    const Mesh joined(KTSHAPES::makeSolidText(font, "C", 1.6f, 0.4f));
    ASSERT_TRUE(solid && holed && joined);
    for (const Mesh *mesh : {&holed, &joined}) {
        expectClosed(**mesh);
        expectNormalsOfFaces(**mesh);
    }
    // The walls of a hole look into it: toward the middle of the cell.
    unsigned inward = 0;
    for (unsigned i = 0; i < holed->getNumberOfFaces(); ++i) {
        const R3XVECTOR3D normal(holed->faceNormals + 3 * i);
        const R3XVECTOR3D place = at(holed->vertices, holed->faces[3 * i]);
        // The cell's left edge is 5 pixels left of the middle of the text.
        if (std::fabs(normal.z) < 0.1f && normal % (R3XVECTOR3D(0.3f, 0.0f, 0.0f) - place) > 0.0f) ++inward;
    }
    EXPECT_EQ(inward, 16u);  // eight squares around the hole, a wall of two faces in each
}

TEST_F(KitTextTest, BuildsEachLetterOfTheSampleFont) {
    KTTEXTURE::setPath(KELTRA_EXAMPLE_DATA);
    KTFONT::setPath(KELTRA_EXAMPLE_DATA);
    KTTEXTURE glyphs;
    ASSERT_TRUE(glyphs.load("font.tga"));
    KTFONT sample;
    sample.setTexture(&glyphs);
    ASSERT_TRUE(sample.loadKerning("font.txt"));
    for (char c = '!'; c < 127; ++c) {
        SCOPED_TRACE(c);
        const Mesh mesh(KTSHAPES::makeSolidText(sample, std::string(1, c).c_str(), 1.0f, 0.2f));
        ASSERT_TRUE(mesh);
        expectClosed(*mesh);
        EXPECT_LT(mesh->getNumberOfFaces(), 800u);
    }
    sample.setTexture(&texture);
}

TEST_F(KitTextTest, RefusesWhatShowsNothing) {
    EXPECT_EQ(KTSHAPES::makeText(font, nullptr, 1.0f), nullptr);
    EXPECT_EQ(KTFAULTS::getLast()->code, KT_FAULT_NULL);
    for (const char *text : {"", " ", "\n \n", "\x1f\x80\xff"}) {
        KTFAULTS::clear();
        EXPECT_EQ(KTSHAPES::makeText(font, text, 1.0f), nullptr);
        ASSERT_NE(KTFAULTS::getLast(), nullptr);
        EXPECT_EQ(KTFAULTS::getLast()->code, KT_FAULT_ARGUMENT);
        EXPECT_EQ(KTSHAPES::makeSolidText(font, text, 1.0f, 1.0f), nullptr);
    }
    for (float size : {0.0f, -1.0f, std::nanf("")}) {
        EXPECT_EQ(KTSHAPES::makeText(font, "A", size), nullptr);
        EXPECT_EQ(KTSHAPES::makeSolidText(font, "A", size, 1.0f), nullptr);
        EXPECT_EQ(KTSHAPES::makeSolidText(font, "A", 1.0f, size), nullptr);
    }
    // 'D' has no pixels: there is no letter to cut.
    KTFAULTS::clear();
    EXPECT_EQ(KTSHAPES::makeSolidText(font, "D", 1.0f, 1.0f), nullptr);
    EXPECT_NE(KTFAULTS::getLast(), nullptr);
    // As many squares as a mesh has vertices.
    EXPECT_EQ(KTSHAPES::makeText(font, std::string(20000, 'A').c_str(), 1.0f), nullptr);
}

TEST_F(KitTextTest, SolidTextNeedsAPictureWithAlpha) {
    KTFONT bare;
    EXPECT_EQ(KTSHAPES::makeSolidText(bare, "A", 1.0f, 1.0f), nullptr);
    EXPECT_EQ(KTFAULTS::getLast()->code, KT_FAULT_STATE);
    EXPECT_TRUE(Mesh(KTSHAPES::makeText(bare, "A", 1.0f)));  // the texture is the material's matter
    KTTEXTURE plain;
    ASSERT_TRUE(plain.create(kSide, kSide, 3));
    bare.setTexture(&plain);
    EXPECT_EQ(KTSHAPES::makeSolidText(bare, "A", 1.0f, 1.0f), nullptr);
    KTTEXTURE unread;
    bare.setTexture(&unread);
    EXPECT_EQ(KTSHAPES::makeSolidText(bare, "A", 1.0f, 1.0f), nullptr);
    bare.setTexture(&texture);
}

TEST_F(KitTextTest, EndsWithoutMemory) {
    if (!Allocations::canFail()) GTEST_SKIP() << "a sanitizer owns malloc";
    for (long nth = 1;; ++nth) {
        SCOPED_TRACE(nth);
        KTFAULTS::clear();
        Allocations::failNth(nth);
        const Mesh mesh(KTSHAPES::makeSolidText(font, "A", 1.0f, 1.0f));
        const bool failed = Allocations::hasFailed();
        Allocations::clear();
        EXPECT_EQ(mesh == nullptr, failed);
        if (!failed) {
            EXPECT_GT(nth, 2);
            return;
        }
        ASSERT_NE(KTFAULTS::getLast(), nullptr);
        EXPECT_EQ(KTFAULTS::getLast()->code, KT_FAULT_OUT_OF_MEMORY);
    }
}

}  // namespace
}  // namespace keltra::test
