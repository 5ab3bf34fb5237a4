// SPDX-License-Identifier: Zlib
// What the engine draws of a model whose pictures share a texture, beside what it draws of the same with a
// texture for each.

#include <gtest/gtest.h>

#include "tests/support/engine_fixture.h"
#include "tests/support/temp_file.h"
#include "tests/tools/convert/support/engine_pose.h"
#include "tests/tools/convert/support/gltf_builder.h"
#include "tools/convert/convert.h"
#include "tools/formats/tga_writer.h"

namespace keltra::test {
namespace {

using nlohmann::json;

class AtlasPictureTest : public EngineTest {
   protected:
    /// Boxes of one node, side by side, whose pictures have very different colours. Each side of a box shows
    /// the whole picture.
    std::string boxes(unsigned count, unsigned side) {
        GltfBuilder model;
        json primitives;
        for (unsigned i = 0; i < count; ++i) {
            formats::Image image(side, side);
            for (unsigned y = 0; y < side; ++y)
                for (unsigned x = 0; x < side; ++x) {
                    const unsigned light = 120 + 100 * ((x * 4 / side + y * 4 / side) % 2);
                    const auto on = [&](unsigned bit) {
                        return static_cast<std::uint8_t>((i + 1) >> bit & 1 ? light : 0);
                    };
                    image.at(x, y) = {on(0), on(1), on(2), 255};
                }
            const std::string file = "skin" + std::to_string(i) + ".tga";
            const std::vector<std::uint8_t> bytes = formats::writeTga(image, {});
            folder.write(file, bytes.data(), bytes.size());
            json &document = model.document();
            document["images"].push_back({{"uri", file}});
            document["textures"].push_back({{"source", i}});
            document["materials"].push_back(
                {{"name", "m" + std::to_string(i)},
                 {"pbrMetallicRoughness", {{"baseColorTexture", {{"index", i}}}}}});
            GltfMesh mesh = boxMesh(0.9f, 0.9f, 0.9f);
            for (std::size_t v = 0; v < mesh.positions.size() / 3; ++v) {
                mesh.positions[v * 3] += 2.0f * static_cast<float>(i % 3) - 2.0f;
                mesh.positions[v * 3 + 1] += 2.0f * static_cast<float>(i / 3) - 1.0f;
                mesh.uvs.push_back(v % 4 == 1 || v % 4 == 2 ? 1.0f : 0.0f);
                mesh.uvs.push_back(v % 4 >= 2 ? 1.0f : 0.0f);
            }
            primitives.push_back(document["meshes"][model.mesh(mesh)]["primitives"][0]);
            primitives.back()["material"] = i;
        }
        model.document()["meshes"] = {{{"primitives", primitives}}};
        model.node({{"name", "boxes"}, {"mesh", 0}});
        return folder.write("boxes.gltf", model.text());
    }

    struct Drawn {
        std::vector<Image> pictures;  // from near to far
        int draws = 0;                // of one
        std::size_t textures = 0;
    };
    static Drawn draw(const std::string &path, bool atlas) {
        convert::Options options;
        options.model = path;
        options.name = "model";
        options.atlas = atlas;
        const convert::Conversion conversion = convert::convertModel(options, [](const char *, double) {});
        Drawn drawn;
        drawn.textures = conversion.report.textures.size();
        const Loaded loaded(conversion);
        if (!loaded.root()) return drawn;
        KTCAMERA *const camera = new KTCAMERA;
        KTLIGHT *const light = new KTLIGHT;
        light->setPosition(0.0f, 3.0f, 20.0f);
        for (const float distance : {7.0f, 14.0f, 28.0f, 56.0f}) {
            camera->setPosition(distance * 0.3f, distance * 0.2f, distance);
            camera->setTarget(0.0f, 0.0f, 0.0f);
            camera->setTargetNode(camera);
            GlRecorder::clear();
            drawn.pictures.push_back(frame3D(camera, [&] {
                light->pass();
                loaded.root()->pass();
            }));
            drawn.draws = GlRecorder::count("glDrawElements");
        }
        delete light;
        delete camera;
        return drawn;
    }

    TempFolder folder;
};

/// The share of pixels whose colour differs clearly.
double wrongShare(const Image &one, const Image &other) {
    std::size_t wrong = 0;
    for (int y = 0; y < one.height; ++y)
        for (int x = 0; x < one.width; ++x)
            for (int c = 0; c < 3; ++c)
                if (std::abs(one.at(x, y)[static_cast<std::size_t>(c)] -
                             other.at(x, y)[static_cast<std::size_t>(c)]) > 24) {
                    ++wrong;
                    break;
                }
    return static_cast<double>(wrong) / (one.width * one.height);
}

// Six pictures of 32 x 32 keep their pixels; four of 256 x 256 become a little smaller, to fill one exactly.
TEST_F(AtlasPictureTest, ItLooksTheSame) {
    for (const auto &[count, side] : {std::pair(6u, 32u), std::pair(4u, 256u)}) {
        const std::string path = boxes(count, side);
        const Drawn apart = draw(path, false), together = draw(path, true);
        EXPECT_EQ(apart.textures, count);
        EXPECT_EQ(together.textures, 1u);
        EXPECT_EQ(apart.draws, static_cast<int>(count));
        EXPECT_EQ(together.draws, 1u);
        ASSERT_EQ(apart.pictures.size(), 4u);
        ASSERT_EQ(together.pictures.size(), 4u);
        for (std::size_t i = 0; i < 4; ++i) {
            const Difference difference = compare(apart.pictures[i], together.pictures[i]);
            EXPECT_TRUE(difference.sameSize);
            EXPECT_LT(difference.mean, 0.6) << side << ", view " << i;
            EXPECT_LT(wrongShare(apart.pictures[i], together.pictures[i]), 0.005) << side << ", view " << i;
        }
        // The view itself is not empty: the boxes are seen in front of the background.
        EXPECT_GT(compare(apart.pictures[0], apart.pictures[3]).mean, 5.0);
    }
}

}  // namespace
}  // namespace keltra::test
