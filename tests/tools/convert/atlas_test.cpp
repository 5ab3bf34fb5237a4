// SPDX-License-Identifier: Zlib
// Small pictures in one texture.

#include "tools/convert/atlas.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <string>

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
    EXPECT_EQ(atlas.image.width * atlas.image.height, 256u * 128u);
    for (std::size_t i = 0; i < pictures.size(); ++i)
        for (const float u : {0.0f, 0.5f, 1.0f})
            for (const float v : {0.0f, 0.5f, 1.0f})
                EXPECT_EQ(colorAt(atlas.image, atlas.places[i].u(u), atlas.places[i].v(v)),
                          pictures[i].pixels[0])
                    << i << ": " << u << ", " << v;
}

/// Each pixel is the mean of four, as the engine makes the levels of a texture.
Image halved(const Image &image) {
    Image half(image.width / 2, image.height / 2);
    for (unsigned y = 0; y < half.height; ++y)
        for (unsigned x = 0; x < half.width; ++x) {
            unsigned sum[3] = {};
            for (const unsigned row : {2 * y, 2 * y + 1})
                for (const unsigned column : {2 * x, 2 * x + 1}) {
                    const Rgba &pixel = image.at(column, row);
                    sum[0] += pixel.r, sum[1] += pixel.g, sum[2] += pixel.b;
                }
            half.at(x, y) = {std::uint8_t(sum[0] / 4), std::uint8_t(sum[1] / 4), std::uint8_t(sum[2] / 4),
                             255};
        }
    return half;
}

/// Whether the four pixels that a smooth filter mixes at texture coordinates all have the colour.
bool isOnly(const Image &image, float u, float v, Rgba color) {
    const float x = u * static_cast<float>(image.width) - 0.5f;
    const float y = (1.0f - v) * static_cast<float>(image.height) - 0.5f;
    for (const float column : {std::floor(x), std::ceil(x)})
        for (const float row : {std::floor(y), std::ceil(y)}) {
            if (column < 0.0f || row < 0.0f || column >= static_cast<float>(image.width) ||
                row >= static_cast<float>(image.height))
                return false;  // the other side of the texture, which repeats
            if (!(image.at(static_cast<unsigned>(column), static_cast<unsigned>(row)) == color)) return false;
        }
    return true;
}

TEST(AtlasTest, SmallerLevelsDoNotMixNeighboursUntil16Pixels) {
    for (const convert::Border border : {convert::Border::kInside, convert::Border::kOutside}) {
        std::vector<Image> pictures;
        for (const unsigned side : {64, 16, 64, 128, 32, 64, 16, 128, 8})
            pictures.push_back(
                plain(side, side == 128 ? 64 : side, static_cast<std::uint8_t>(25 * pictures.size())));
        std::vector<const Image *> list;
        for (const Image &picture : pictures) list.push_back(&picture);
        const convert::Atlas atlas = convert::packAtlas(list, 512, border);
        ASSERT_EQ(atlas.places.size(), pictures.size());
        Image level = atlas.image;
        for (unsigned step = 1; step <= 4; step *= 2, level = halved(level))
            for (std::size_t i = 0; i < pictures.size(); ++i) {
                if (step > 1 && std::min(pictures[i].width, pictures[i].height) / step < 16) continue;
                for (const float u : {0.0f, 0.3f, 1.0f})
                    for (const float v : {0.0f, 0.6f, 1.0f})
                        EXPECT_TRUE(
                            isOnly(level, atlas.places[i].u(u), atlas.places[i].v(v), pictures[i].pixels[0]))
                            << "picture " << i << ", a " << step << "th: " << u << ", " << v;
            }
    }
}

TEST(AtlasTest, PixelsStayAsTheyAreWithTheBorderOutside) {
    Image picture(16, 8);
    for (std::size_t i = 0; i < picture.pixels.size(); ++i)
        picture.pixels[i] = {static_cast<std::uint8_t>(i), static_cast<std::uint8_t>(7 * i), 3, 255};
    const Image other = plain(32, 32, 90);
    const convert::Atlas atlas = convert::packAtlas({&picture, &other}, 512, convert::Border::kOutside);
    ASSERT_EQ(atlas.places.size(), 2u);
    for (unsigned y = 0; y < 8; ++y)
        for (unsigned x = 0; x < 16; ++x) {
            const float u = (static_cast<float>(x) + 0.5f) / 16.0f;
            const float v = 1.0f - (static_cast<float>(y) + 0.5f) / 8.0f;
            EXPECT_EQ(colorAt(atlas.image, atlas.places[0].u(u), atlas.places[0].v(v)), picture.at(x, y));
        }
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

/// Boxes with a picture each.
class AtlasModelTest : public ConvertTest {
   protected:
    // A level down: pictures that are missing are looked for beside the model's folder too, where other tests
    // have theirs.
    const std::string kModelFolder = "model/";

    AtlasModelTest() { std::filesystem::create_directory(folder.path("model")); }

    /// A material with a picture of its own; none is written for `side` 0.
    unsigned material(unsigned side, Rgba color = {200, 100, 50, 255}) {
        json &document = model.document();
        const unsigned index = document.contains("materials") ? unsigned(document["materials"].size()) : 0;
        const std::string file = "skin" + std::to_string(index) + ".tga";
        Image image(side, side);
        for (Rgba &pixel : image.pixels) pixel = color;
        if (side > 1 && color.a != 255) image.pixels[0].a = 255;
        const std::vector<std::uint8_t> bytes =
            side > 0 ? formats::writeTga(image, {false, color.a == 255 ? 24u : 32u, false})
                     : std::vector<std::uint8_t>();
        if (side > 0) folder.write(kModelFolder + file, bytes.data(), bytes.size());
        document["images"].push_back({{"uri", file}});
        document["textures"].push_back({{"source", index}});
        document["materials"].push_back(
            {{"name", "m" + std::to_string(index)},
             {"alphaMode", color.a == 255 ? "OPAQUE" : "BLEND"},
             {"pbrMetallicRoughness", {{"baseColorTexture", {{"index", index}}}}}});
        return index;
    }
    GltfMesh box(float reach = 1.0f) {
        GltfMesh mesh = boxMesh();
        for (std::size_t v = 0; v < mesh.positions.size() / 3; ++v) {
            mesh.uvs.push_back(v % 2 == 0 ? 0.0f : reach);
            mesh.uvs.push_back(v % 3 == 0 ? 0.0f : 1.0f);
        }
        return mesh;
    }
    /// A node of its own.
    void add(unsigned material, float reach = 1.0f) {
        const int mesh = model.mesh(box(reach));
        model.document()["meshes"][mesh]["primitives"][0]["material"] = material;
        model.node({{"name", "box" + std::to_string(mesh)}, {"mesh", mesh}});
    }
    /// Primitives of one mesh, one for each material.
    int together(const std::vector<unsigned> &materials, const GltfMesh &shape) {
        const int mesh = model.mesh(shape);
        json &primitives = model.document()["meshes"][mesh]["primitives"];
        primitives[0]["material"] = materials[0];
        for (std::size_t i = 1; i < materials.size(); ++i) {
            const int other = model.mesh(shape);
            json primitive = model.document()["meshes"][other]["primitives"][0];
            primitive["material"] = materials[i];
            model.document()["meshes"][mesh]["primitives"].push_back(primitive);
            model.document()["meshes"].erase(other);
        }
        return mesh;
    }
    convert::Conversion convertIt(const Tweak &tweak) {
        return convertFile(folder.write(kModelFolder + "boxes.gltf", model.text()), tweak);
    }
    convert::Conversion withAtlas(unsigned most = 512) {
        return convertIt([most](convert::Options &options) {
            options.atlas = true;
            options.maxTexture = most;
        });
    }
    /// Two boxes, each with a picture of its own; the second one's coordinates reach to `reach`.
    convert::Conversion convertBoxes(float reach, bool fit) {
        model = GltfBuilder();
        add(material(16, {50, 50, 50, 255}));
        add(material(16, {150, 150, 150, 255}), reach);
        return convertIt([fit](convert::Options &options) { options.fit = fit; });
    }
    static std::uint64_t apart(const convert::Report &report, const std::string &word) {
        std::uint64_t count = 0;
        for (const convert::Dropped &entry : report.apart)
            if (entry.why.find(word) != std::string::npos) count += entry.count;
        return count;
    }
    static std::uint64_t changed(const convert::Report &report, const std::string &what) {
        std::uint64_t count = 0;
        for (const convert::Dropped &entry : report.changed)
            if (entry.what == what) count += entry.count;
        return count;
    }

    GltfBuilder model;
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

TEST_F(AtlasModelTest, LargePicturesShareOneToo) {
    for (unsigned i = 0; i < 4; ++i) add(material(256, {std::uint8_t(40 * i), 0, 0, 255}));
    const convert::Conversion conversion = withAtlas();
    ASSERT_EQ(conversion.report.textures.size(), 1u);
    EXPECT_EQ(conversion.report.textures[0].width, 512u);
    EXPECT_EQ(conversion.report.textures[0].height, 512u);
    EXPECT_EQ(conversion.report.textures[0].bits, 24u);
    EXPECT_EQ(changed(conversion.report, "pictures"), 4u);
    EXPECT_TRUE(conversion.report.apart.empty());
}

TEST_F(AtlasModelTest, TheLongestSideIsThatOfEachPicture) {
    for (unsigned i = 0; i < 16; ++i) add(material(256, {std::uint8_t(10 * i), 0, 0, 255}));
    const convert::Conversion conversion = withAtlas(128);
    ASSERT_EQ(conversion.report.textures.size(), 1u);
    EXPECT_EQ(conversion.report.textures[0].width, 512u);
    EXPECT_EQ(conversion.report.textureMemory, 4u * 512 * 512);
}

TEST_F(AtlasModelTest, SeveralAreMadeWhereOneIsFull) {
    for (unsigned i = 0; i < 10; ++i) add(material(256, {std::uint8_t(20 * i), 0, 0, 255}));
    const convert::Conversion conversion = withAtlas();
    EXPECT_EQ(conversion.report.textures.size(), 3u);
    EXPECT_EQ(changed(conversion.report, "pictures"), 10u);
    EXPECT_EQ(conversion.report.textureMemory, 4u * 10 * 256 * 256);
}

TEST_F(AtlasModelTest, OpaquePicturesStayAmongThemselves) {
    for (unsigned i = 0; i < 2; ++i) {
        add(material(32, {std::uint8_t(90 * i), 0, 0, 255}));
        add(material(32, {std::uint8_t(90 * i), 0, 0, 128}));
    }
    const convert::Conversion conversion = withAtlas();
    ASSERT_EQ(conversion.report.textures.size(), 2u);
    EXPECT_EQ(conversion.report.textures[0].bits, 24u);
    EXPECT_EQ(conversion.report.textures[1].bits, 32u);
}

TEST_F(AtlasModelTest, TheReportSaysWhatStaysApartAndWhy) {
    for (unsigned i = 0; i < 2; ++i) add(material(32, {std::uint8_t(90 * i), 0, 0, 255}));
    add(material(64), 2.0f);             // repeated
    add(material(0));                    // missing
    add(material(512, {1, 2, 3, 255}));  // as large as a texture can be
    const unsigned filtered = material(16);
    model.document()["materials"][filtered]["extras"] = {{"keltra_filter", "linear"}};
    add(filtered);
    const convert::Conversion conversion = withAtlas();
    const convert::Report &report = conversion.report;
    EXPECT_EQ(report.textures.size(), 5u);
    EXPECT_EQ(apart(report, "repeat"), 1u);
    EXPECT_EQ(apart(report, "missing"), 1u);
    EXPECT_EQ(apart(report, "fits"), 1u);
    EXPECT_EQ(apart(report, "filter"), 1u);
    EXPECT_EQ(report.tally().missing, 1u);
}

TEST_F(AtlasModelTest, EqualMaterialsOfANodeAreDrawnAtOnce) {
    std::vector<unsigned> materials;
    for (unsigned i = 0; i < 3; ++i) materials.push_back(material(64, {std::uint8_t(70 * i), 9, 9, 255}));
    model.document()["materials"][2]["pbrMetallicRoughness"]["baseColorFactor"] = {0.5, 0.5, 0.5, 1.0};
    model.node({{"name", "house"}, {"mesh", together(materials, box())}});
    const convert::Report before = convertIt(nullptr).report;
    EXPECT_EQ(before.meshes, 3u);
    const convert::Conversion conversion = withAtlas();
    EXPECT_EQ(conversion.report.meshes, 2u) << "one material is darker";
    EXPECT_EQ(conversion.report.materials, before.materials - 1);
    EXPECT_EQ(conversion.report.triangles, before.triangles);
    EXPECT_EQ(changed(conversion.report, "meshes"), 1u);
    EXPECT_EQ(changed(conversion.report, "materials"), 1u);
    const auto file = formats::readKte(conversion.files.back().bytes);
    ASSERT_TRUE(file);
    EXPECT_EQ(file->scene.materials.size(), before.materials - 1);
}

TEST_F(AtlasModelTest, NodesKeepTheirMeshes) {
    for (unsigned i = 0; i < 2; ++i) add(material(64, {std::uint8_t(70 * i), 9, 9, 255}));
    const convert::Conversion conversion = withAtlas();
    EXPECT_EQ(conversion.report.meshes, 2u);
    EXPECT_EQ(changed(conversion.report, "materials"), 1u);
}

TEST_F(AtlasModelTest, SkinsOfANodeBecomeOne) {
    GltfMesh shape = box();
    for (std::size_t v = 0; v < shape.positions.size() / 3; ++v) {
        const auto bone = static_cast<std::uint16_t>(v % 2);
        shape.joints.insert(shape.joints.end(), {bone, 0, 0, 0});
        shape.weights.insert(shape.weights.end(), {1.0f, 0.0f, 0.0f, 0.0f});
    }
    const int low = model.node({{"name", "low"}}), high = model.node({{"name", "high"}}, low);
    const std::vector<unsigned> materials = {material(64), material(64, {9, 9, 9, 255})};
    model.node({{"name", "hero"}, {"mesh", together(materials, shape)}, {"skin", model.skin({low, high})}});
    EXPECT_EQ(convertIt(nullptr).report.skins, 2u);
    const convert::Conversion conversion = withAtlas();
    EXPECT_EQ(conversion.report.skins, 1u);
    EXPECT_EQ(conversion.report.triangles, 24u);
}

}  // namespace
}  // namespace keltra::test
