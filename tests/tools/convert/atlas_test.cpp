// SPDX-License-Identifier: Zlib
// Small pictures in one texture.

#include "tools/convert/atlas.h"

#include <gtest/gtest.h>

#include "tests/tools/convert/support/convert_fixture.h"
#include "tools/formats/kte_reader.h"

namespace keltra::test {
namespace {

using formats::Image;
using formats::Rgba;
using nlohmann::json;

Image plain(unsigned width, unsigned height, std::uint8_t grey) {
    Image image(width, height);
    for (Rgba &pixel : image.pixels) pixel = {grey, grey, grey, 255};
    return image;
}

/// The colour at texture coordinates, without smoothing.
Rgba colorAt(const Image &image, float u, float v) {
    const unsigned x = std::min(static_cast<unsigned>(u * static_cast<float>(image.width)), image.width - 1);
    const unsigned y =
        std::min(static_cast<unsigned>((1.0f - v) * static_cast<float>(image.height)), image.height - 1);
    return image.at(x, y);
}

TEST(AtlasTest, EveryPictureIsFoundInItsPlace) {
    std::vector<Image> pictures;
    for (const auto &[width, height] :
         std::vector<std::pair<unsigned, unsigned>>{{64, 64}, {16, 32}, {128, 8}, {1, 1}, {32, 32}, {4, 128}})
        pictures.push_back(plain(width, height, static_cast<std::uint8_t>(20 * (pictures.size() + 1))));
    std::vector<const Image *> list;
    for (const Image &picture : pictures) list.push_back(&picture);
    const convert::Atlas atlas = convert::packAtlas(list, 512);
    ASSERT_EQ(atlas.places.size(), pictures.size());
    EXPECT_EQ(atlas.image.width * atlas.image.height, 256u * 256u);
    for (std::size_t i = 0; i < pictures.size(); ++i)
        for (const float u : {0.0f, 0.5f, 1.0f})
            for (const float v : {0.0f, 0.5f, 1.0f})
                EXPECT_EQ(colorAt(atlas.image, atlas.places[i].u(u), atlas.places[i].v(v)),
                          pictures[i].pixels[0])
                    << i << ": " << u << ", " << v;
}

TEST(AtlasTest, ThePictureStaysUpright) {
    Image picture = plain(2, 2, 0);
    picture.at(0, 0) = {255, 0, 0, 255};  // upper left
    const Image other = plain(2, 2, 90);
    const convert::Atlas atlas = convert::packAtlas({&other, &picture}, 64);
    ASSERT_EQ(atlas.places.size(), 2u);
    EXPECT_EQ(colorAt(atlas.image, atlas.places[1].u(0.0f), atlas.places[1].v(1.0f)).r, 255);
    EXPECT_EQ(colorAt(atlas.image, atlas.places[1].u(0.0f), atlas.places[1].v(0.0f)).r, 0);
}

TEST(AtlasTest, WhatDoesNotFitStaysOutside) {
    const Image picture = plain(32, 32, 9);
    EXPECT_EQ(convert::packAtlas(std::vector<const Image *>(9, &picture), 64).places.size(), 4u);
    EXPECT_TRUE(convert::packAtlas({}, 512).places.empty());
}

class AtlasModelTest : public ConvertTest {
   protected:
    /// Two boxes, each with a picture of its own; the second one's coordinates reach to `reach`.
    convert::Conversion convertBoxes(float reach, bool fit) {
        GltfBuilder model;
        json &document = model.document();
        for (unsigned i = 0; i < 2; ++i) {
            const std::string file = "skin" + std::to_string(i) + ".tga";
            const std::vector<std::uint8_t> bytes =
                formats::writeTga(plain(16, 16, std::uint8_t(50 + 100 * i)), {});
            folder.write(file, bytes.data(), bytes.size());
            document["images"].push_back({{"uri", file}});
            document["textures"].push_back({{"source", i}});
            document["materials"].push_back(
                {{"name", "m" + std::to_string(i)},
                 {"pbrMetallicRoughness", {{"baseColorTexture", {{"index", i}}}}}});
            GltfMesh box = boxMesh();
            for (std::size_t v = 0; v < box.positions.size() / 3; ++v) {
                box.uvs.push_back(v % 2 == 0 ? 0.0f : i == 1 ? reach : 1.0f);
                box.uvs.push_back(v % 3 == 0 ? 0.0f : 1.0f);
            }
            const int mesh = model.mesh(box);
            document["meshes"][mesh]["primitives"][0]["material"] = i;
            model.node({{"name", "box" + std::to_string(i)}, {"mesh", mesh}});
        }
        return convertFile(folder.write("boxes.gltf", model.text()),
                           [fit](convert::Options &options) { options.fit = fit; });
    }
};

TEST_F(AtlasModelTest, SmallPicturesShareATexture) {
    const convert::Conversion conversion = convertBoxes(1.0f, true);
    ASSERT_EQ(conversion.report.textures.size(), 1u);
    EXPECT_EQ(conversion.report.textures[0].width * conversion.report.textures[0].height, 2u * 16u * 16u);
    EXPECT_EQ(conversion.report.textureMemory, 4u * 2u * 16u * 16u);
    const auto file = formats::readKte(conversion.files.back().bytes);
    ASSERT_TRUE(file);
    EXPECT_EQ(file->scene.materials[0].texture, conversion.report.textures[0].file);
    EXPECT_EQ(file->scene.materials[1].texture, conversion.report.textures[0].file);
    float low[2] = {1.0f, 1.0f}, high[2] = {0.0f, 0.0f};
    for (unsigned i = 0; i < 2; ++i) {
        for (const formats::Vec2 &uv : file->scene.root.children.at(i).mesh.uvs) {
            low[i] = std::min(low[i], uv.x);
            high[i] = std::max(high[i], uv.x);
        }
    }
    EXPECT_LT(std::min(high[0], high[1]), std::max(low[0], low[1])) << "they overlap";
}

TEST_F(AtlasModelTest, NotARepeatedOneAndNotWithoutFit) {
    EXPECT_EQ(convertBoxes(3.0f, true).report.textures.size(), 2u);
    EXPECT_EQ(convertBoxes(1.0f, false).report.textures.size(), 2u);
}

}  // namespace
}  // namespace keltra::test
