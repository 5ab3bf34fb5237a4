// SPDX-License-Identifier: Zlib
// Models larger than the engine's meshes, and how long they take.

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <cstdio>

#include "tests/tools/convert/support/convert_fixture.h"
#include "tools/convert/model.h"

namespace keltra::test {
namespace {

constexpr unsigned kMostOfAMesh = 65535;  // vertices, and triangles

#if defined(__SANITIZE_ADDRESS__)
constexpr double kLongest = 25.0;  // seconds, beyond reading
#else
constexpr double kLongest = 5.0;
#endif

double height(unsigned x, unsigned y) { return 0.5 * std::sin(0.05 * x) * std::cos(0.07 * y); }

double secondsSince(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

double area(Point a, Point b, Point c) { return 0.5 * length(cross(b - a, c - a)); }

class LargeModelTest : public ConvertTest {
   protected:
    /// Hills of width x depth squares, two triangles each, with texture coordinates and a material.
    std::string writeObj(unsigned width, unsigned depth) {
        std::string text = "mtllib hills.mtl\nusemtl grass\n";
        char line[128];
        for (unsigned y = 0; y <= depth; ++y) {
            for (unsigned x = 0; x <= width; ++x) {
                std::snprintf(line, sizeof line, "v %.4f %.4f %.4f\nvt %.5f %.5f\n", 0.1 * x, height(x, y),
                              0.1 * y, double(x) / width, double(y) / depth);
                text += line;
            }
        }
        for (unsigned y = 0; y < depth; ++y) {
            for (unsigned x = 0; x < width; ++x) {
                const unsigned a = y * (width + 1) + x + 1, b = a + width + 1;
                std::snprintf(line, sizeof line, "f %u/%u %u/%u %u/%u\nf %u/%u %u/%u %u/%u\n", a, a, b, b,
                              a + 1, a + 1, a + 1, a + 1, b, b, b + 1, b + 1);
                text += line;
            }
        }
        folder.write("hills.mtl", std::string("newmtl grass\nKd 0.2 0.6 0.1\n"));
        return folder.write("hills.obj", text);
    }
};

TEST_F(LargeModelTest, AHundredThousandTrianglesTakeAFewSecondsBeyondReading) {
    convert::Options options;
    options.model = writeObj(250, 200);
    options.name = "hills";
    const auto silent = [](const char *, double) {};

    auto start = std::chrono::steady_clock::now();
    { const convert::Model model(options, silent); }
    const double reading = secondsSince(start);
    start = std::chrono::steady_clock::now();
    const convert::Conversion conversion = convert::convertModel(options, silent);
    const double all = secondsSince(start);

    std::printf("100,000 triangles: %.2f s to read, %.2f s in all\n", reading, all);
    EXPECT_EQ(conversion.report.triangles, 100000u);
    EXPECT_LE(all, reading + kLongest);
}

TEST_F(LargeModelTest, MoreVerticesThanAMeshHoldsBecomeSeveralMeshesWithTheSameTriangles) {
    constexpr unsigned kWidth = 599, kDepth = 499;
    GltfMesh hills;
    double expected = 0.0;
    std::vector<Point> points;
    for (unsigned y = 0; y <= kDepth; ++y) {
        for (unsigned x = 0; x <= kWidth; ++x) {
            const float at[3] = {0.1f * x, static_cast<float>(height(x, y)), 0.1f * y};
            hills.positions.insert(hills.positions.end(), at, at + 3);
            points.push_back({at[0], at[1], at[2]});
        }
    }
    for (unsigned y = 0; y < kDepth; ++y) {
        for (unsigned x = 0; x < kWidth; ++x) {
            const unsigned a = y * (kWidth + 1) + x, b = a + kWidth + 1;
            hills.indices.insert(hills.indices.end(), {a, b, a + 1, a + 1, b, b + 1});
            expected +=
                area(points[a], points[b], points[a + 1]) + area(points[a + 1], points[b], points[b + 1]);
        }
    }
    ASSERT_EQ(points.size(), 300000u);
    GltfBuilder model;
    model.node({{"mesh", model.mesh(hills)}});

    const Made made = make("hills.gltf", model.text());
    ASSERT_NE(made.root(), nullptr);
    double found = 0.0;
    std::size_t triangles = 0;
    for (const PosedMesh &posed : poseWithoutWindow(made.root())) {
        EXPECT_LE(posed.mesh->getNumberOfVertices(), kMostOfAMesh);
        EXPECT_LE(posed.mesh->getNumberOfFaces(), kMostOfAMesh);
        triangles += posed.mesh->getNumberOfFaces();
        const std::uint16_t *face = posed.mesh->faces;
        for (unsigned f = 0; f < posed.mesh->getNumberOfFaces(); ++f, face += 3)
            found += area(posed.positions[face[0]], posed.positions[face[1]], posed.positions[face[2]]);
    }
    EXPECT_EQ(triangles, hills.indices.size() / 3);
    EXPECT_EQ(made.report().triangles, hills.indices.size() / 3);
    const double scale = made.report().scale;
    EXPECT_NEAR(found, expected * scale * scale, 1e-3 * expected * scale * scale);
}

}  // namespace
}  // namespace keltra::test
