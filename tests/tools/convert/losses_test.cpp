// SPDX-License-Identifier: Zlib
// What is lost of a model is in the report, whatever loses it: the importer, a file that is not there, or the
// engine's formats.

#include "tests/tools/convert/support/convert_fixture.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <filesystem>

namespace keltra::test {
namespace {

using convert::Dropped;
using convert::Report;

constexpr char kTriangle[] =
    "v 0 0 0\nv 2 0 0\nv 0 1 0\nvt 0 0\nvt 1 0\nvt 0 1\nvn 0 0 1\nusemtl red\nf 1/1/1 2/2/1 3/3/1\n";

std::uint64_t countOf(const std::vector<Dropped> &list, const std::string &what) {
    std::uint64_t count = 0;
    for (const Dropped &entry : list)
        if (entry.what == what) count += entry.count;
    return count;
}

class LossesTest : public ConvertTest {
   protected:
    void put(const std::string &name, const std::string &text) {
        std::filesystem::create_directories(std::filesystem::path(folder.path(name)).parent_path());
        folder.write(name, text);
    }
    Report reportOf(const std::string &name, const Tweak &tweak = nullptr) {
        return convertFile(folder.path(name), tweak).report;
    }
    bool read(const Report &report, const std::string &name) {
        return std::find(report.inputs.begin(), report.inputs.end(), folder.path(name)) !=
               report.inputs.end();
    }
};

TEST_F(LossesTest, AMaterialLibraryThatIsMissingIsReported) {
    put("a/hero.obj", "mtllib paint.mtl\n" + std::string(kTriangle));
    const Report report = reportOf("a/hero.obj");
    EXPECT_EQ(report.missing, 1u);
    EXPECT_TRUE(mentions(report, "material library paint.mtl is missing"));
}

TEST_F(LossesTest, AMaterialLibraryIsFoundInOtherLetters) {
    put("a/hero.obj", "mtllib C:\\art\\Paint.MTL\n" + std::string(kTriangle));
    put("a/paint.mtl", "newmtl red\nKd 1 0 0\n");
    const Report report = reportOf("a/hero.obj");
    EXPECT_EQ(report.missing, 0u);
    EXPECT_TRUE(read(report, "a/hero.obj"));
    EXPECT_TRUE(read(report, "a/paint.mtl"));
}

TEST_F(LossesTest, FilesOutsideOfTheModelsFolderAreNotRead) {
    put("secret/paint.mtl", "newmtl red\nKd 1 0 0\n");
    put("a/hero.obj", "mtllib ../secret/paint.mtl\n" + std::string(kTriangle));
    const Report report = reportOf("a/hero.obj");
    EXPECT_FALSE(read(report, "secret/paint.mtl"));
    EXPECT_GE(report.missing, 1u);
    EXPECT_TRUE(mentions(report, "it lies outside of the model's folder"));
    const Report allowed =
        reportOf("a/hero.obj", [&](convert::Options &o) { o.folders = {folder.path("secret")}; });
    EXPECT_EQ(allowed.missing, 0u);
    EXPECT_TRUE(mentions(report, "paint.mtl"));
}

TEST_F(LossesTest, LinksDoNotLeadOutOfTheModelsFolder) {
    put("secret/paint.mtl", "newmtl red\nKd 1 0 0\n");
    put("a/hero.obj", "mtllib paint.mtl\n" + std::string(kTriangle));
    std::filesystem::create_symlink(folder.path("secret/paint.mtl"), folder.path("a/paint.mtl"));
    EXPECT_EQ(reportOf("a/hero.obj").missing, 1u);
    std::filesystem::remove(folder.path("a/paint.mtl"));
    put("a/real.mtl", "newmtl red\nKd 1 0 0\n");
    std::filesystem::create_symlink("real.mtl", folder.path("a/paint.mtl"));
    EXPECT_EQ(reportOf("a/hero.obj").missing, 0u);
}

TEST_F(LossesTest, ABufferOutsideOfTheModelsFolderIsARefusalThatSaysSo) {
    GltfBuilder builder;
    builder.node({{"mesh", builder.mesh(triangleMesh())}});
    nlohmann::json document = nlohmann::json::parse(builder.text());
    put("secret/data.bin", std::string(4096, '\0'));
    document["buffers"][0]["uri"] = "../secret/data.bin";
    put("a/hero.gltf", document.dump());
    try {
        reportOf("a/hero.gltf");
        ADD_FAILURE() << "it is converted";
    } catch (const convert::Refusal &refusal) {
        EXPECT_NE(std::string(refusal.what()).find("lies outside of its folder"), std::string::npos)
            << refusal.what();
    }
}

TEST_F(LossesTest, APipeInPlaceOfAFileDoesNotBlock) {
    put("a/hero.obj", "mtllib paint.mtl\n" + std::string(kTriangle));
    ASSERT_EQ(mkfifo(folder.path("a/paint.mtl").c_str(), 0600), 0);
    reportOf("a/hero.obj");
}

TEST_F(LossesTest, WhatTheImporterSkipsIsReported) {
    put("hero.obj", std::string(kTriangle) + "f\n");
    EXPECT_GE(countOf(reportOf("hero.obj").dropped, "skipped by the importer"), 1u);
    put("good.obj", kTriangle);
    EXPECT_EQ(countOf(reportOf("good.obj").dropped, "skipped by the importer"), 0u);
}

TEST_F(LossesTest, TextureCoordinatesThatDoNotFitAreReported) {
    GltfMesh mesh = triangleMesh();
    mesh.uvs = {0.0f, 0.0f, 1e6f, 0.0f, 0.0f, 1.0f};
    GltfBuilder builder;
    builder.node({{"mesh", builder.mesh(mesh)}});
    put("far.gltf", builder.text());
    EXPECT_EQ(countOf(reportOf("far.gltf").changed, "texture coordinates"), 1u);
}

TEST_F(LossesTest, LightsThatAreTooBrightAreReported) {
    GltfBuilder builder;
    builder.node({{"mesh", builder.mesh(triangleMesh())}});
    builder.document()["extensionsUsed"] = {"KHR_lights_punctual"};
    builder.document()["extensions"]["KHR_lights_punctual"]["lights"] = {
        {{"type", "point"}, {"intensity", 40.0}, {"color", {1.0, 1.0, 1.0}}}};
    builder.node({{"extensions", {{"KHR_lights_punctual", {{"light", 0}}}}}});
    put("lit.gltf", builder.text());
    EXPECT_EQ(countOf(reportOf("lit.gltf").changed, "lights"), 1u);
}

TEST_F(LossesTest, NoNameLeadsOutOfTheOutputFolder) {
    const char *const hostile[] = {"../../evil", "/etc/evil", "..",   "a/../../evil",
                                   "..\\evil",   "evil\n",    ".evil"};
    for (const char *name : hostile) {
        GltfBuilder builder;
        const int node = builder.node({{"name", name}, {"mesh", builder.mesh(triangleMesh())}});
        builder.clip(name, {{node, "translation", {0.0f, 1.0f}, {0, 0, 0, 1, 1, 1}}});
        builder.document()["materials"] = {
            {{"name", name}, {"pbrMetallicRoughness", {{"baseColorTexture", {{"index", 0}}}}}}};
        builder.document()["textures"] = {{{"source", 0}}};
        builder.document()["images"] = {{{"uri", std::string(name) + ".png"}, {"name", name}}};
        builder.document()["meshes"][0]["primitives"][0]["material"] = 0;
        put("hero.gltf", builder.text());
        const convert::Conversion made = convertFile(folder.path("hero.gltf"));
        EXPECT_EQ(made.files.size(), 3u) << name;
        for (const convert::OutputFile &file : made.files) {
            EXPECT_EQ(file.name.find_first_of("/\\\n"), std::string::npos) << file.name;
            EXPECT_NE(file.name[0], '.') << file.name;
        }
    }
}

}  // namespace
}  // namespace keltra::test
