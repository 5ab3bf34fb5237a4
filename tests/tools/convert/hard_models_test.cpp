// SPDX-License-Identifier: Zlib
// Models with something wrong or unusual in their shapes, names and files.

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <set>

#include "formats/scene_record.h"
#include "tests/tools/convert/support/convert_fixture.h"
#include "tests/tools/convert/support/source_pose.h"
#include "tools/formats/fault_text.h"
#include "tools/formats/tga_writer.h"

namespace keltra::test {
namespace {

using nlohmann::json;

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

std::size_t trianglesOf(const Made &made) {
    std::size_t count = 0;
    for (KTMESH *mesh : meshesOf(made.root())) count += mesh->getNumberOfFaces();
    return count;
}

void visit(KTNODE *node, const std::function<void(KTNODE *)> &visitor) {
    visitor(node);
    for (unsigned i = 0; i < node->getNumberOfChildren(); ++i) visit(node->getChild(i), visitor);
}

std::vector<std::string> namesOf(const Made &made) {
    std::vector<std::string> names;
    visit(made.root(), [&names](KTNODE *node) { names.push_back(node->getName()); });
    return names;
}

/// Two triangles in one mesh: the first as given, the second good.
GltfMesh withGoodTriangle(const Floats &first) {
    GltfMesh mesh = triangleMesh(4.0f);
    mesh.positions.insert(mesh.positions.end(), first.begin(), first.end());
    mesh.indices.insert(mesh.indices.end(), {3, 4, 5});
    return mesh;
}

std::string gltfOf(const GltfMesh &mesh, json node = json::object()) {
    GltfBuilder model;
    node["mesh"] = model.mesh(mesh);
    model.node(node);
    return model.text();
}

class HardModelsTest : public ConvertTest {
   protected:
    void expectPlaces(const Made &made, const std::string &fileName, double bound = 1e-4) {
        const SourcePose source(folder.path(fileName));
        std::vector<std::vector<Point>> expected = {source.at(-1, 0.0).corners};
        for (Point &point : expected[0]) point = point * made.report().scale;
        const double near = bound * extent(expected);
        const std::vector<std::vector<Point>> actual = {shapeOf(poseWithoutWindow(made.root())).corners};
        ASSERT_FALSE(actual[0].empty());
        EXPECT_EQ(findGap(actual, {}, expected, near).outliers, 0u);
        EXPECT_EQ(findGap(expected, source.solidCorners(), actual, near).outliers, 0u);
    }
};

// --- shapes

TEST_F(HardModelsTest, TrianglesWithoutFiniteCornersAreLeftOut) {
    for (float bad : {kNan, kInfinity, -kInfinity}) {
        const Made made = make("bad.gltf", gltfOf(withGoodTriangle({0, 0, 0, bad, 0, 0, 0, 1, 0})));
        ASSERT_NE(made.root(), nullptr);
        EXPECT_EQ(trianglesOf(made), 1u);
        EXPECT_FALSE(made.report().dropped.empty());
        for (KTMESH *mesh : meshesOf(made.root())) {
            EXPECT_TRUE(std::isfinite(mesh->getRadius()));
            EXPECT_TRUE(std::isfinite(mesh->getMinimum().x) && std::isfinite(mesh->getMaximum().x));
        }
        EXPECT_TRUE(std::isfinite(made.report().size));
    }
}

TEST_F(HardModelsTest, NothingButBrokenTrianglesIsRefused) {
    GltfMesh mesh = triangleMesh();
    std::fill(mesh.positions.begin(), mesh.positions.end(), kNan);
    expectRefused("nan.gltf", gltfOf(mesh));
    expectRefused("nan.obj", "v nan nan nan\nv nan nan nan\nv nan nan nan\nf 1 2 3\n");
}

TEST_F(HardModelsTest, BrokenTransformsDoNotReachTheScene) {
    const Made made = make("place.obj", "v 0 0 0\nv 1 0 0\nv 0 1e39 0\nv 0 1 0\nf 1 2 4\nf 1 2 3\n");
    ASSERT_NE(made.root(), nullptr);
    EXPECT_EQ(trianglesOf(made), 1u);
}

TEST_F(HardModelsTest, TrianglesWithoutAreaAreLeftOut) {
    GltfMesh mesh = withGoodTriangle({7, 7, 7, 7, 7, 7, 7, 7, 7});
    mesh.indices.insert(mesh.indices.end(), {0, 0, 1, 2, 2, 2});
    const Made made = make("flat.gltf", gltfOf(mesh));
    ASSERT_NE(made.root(), nullptr);
    EXPECT_EQ(trianglesOf(made), 1u);
    EXPECT_FALSE(made.report().dropped.empty());
}

TEST_F(HardModelsTest, NothingToShowIsRefused) {
    expectRefused("empty.gltf", GltfBuilder().text());
    GltfBuilder nodes;
    nodes.node({{"name", "alone"}});
    expectRefused("node.gltf", nodes.text());
    for (int mode : {0, 1, 3}) {  // points, lines, a line strip
        GltfMesh mesh = triangleMesh();
        mesh.mode = mode;
        if (mode == 1) mesh.indices = {0, 1, 1, 2};
        expectRefused("thin.gltf", gltfOf(mesh));
    }
    expectRefused("lines.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nl 1 2 3\n");
    expectRefused("nothing.obj", "");
    expectRefused("words.txt", "this is no model\n");
}

TEST_F(HardModelsTest, AMissingFileAndAFolderAreRefused) {
    EXPECT_THROW(convertFile(folder.path("gone.obj")), convert::Refusal);
    EXPECT_THROW(convertFile(folder.path(".")), convert::Refusal);
}

TEST_F(HardModelsTest, LinesBesideTrianglesAreLeftOutAndSaid) {
    const Made made = make("mixed.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\nl 1 2\np 3\n");
    ASSERT_NE(made.root(), nullptr);
    EXPECT_EQ(trianglesOf(made), 1u);
    EXPECT_FALSE(made.report().dropped.empty());
}

TEST_F(HardModelsTest, ModelsWithoutNormalsGetSome) {
    GltfMesh box = boxMesh();
    box.normals.clear();
    const Made made = make("box.gltf", gltfOf(box));
    ASSERT_NE(made.root(), nullptr);
    expectNormalsAgree(poseWithoutWindow(made.root()));
}

TEST_F(HardModelsTest, NormalsThatAreNoneAreMade) {
    for (float bad : {0.0f, kNan, kInfinity}) {
        GltfMesh box = boxMesh();
        std::fill(box.normals.begin(), box.normals.end(), bad);
        const Made made = make("box.gltf", gltfOf(box));
        ASSERT_NE(made.root(), nullptr);
        expectNormalsAgree(poseWithoutWindow(made.root()));
    }
}

TEST_F(HardModelsTest, ATextureCoordinateThatIsNoNumberDoesNotReachTheScene) {
    GltfMesh mesh = triangleMesh();
    mesh.uvs = {0, 0, kNan, kInfinity, 0, 1};
    const Made made = make("uv.gltf", gltfOf(mesh));
    ASSERT_NE(made.root(), nullptr);
    for (KTMESH *posed : meshesOf(made.root()))
        for (unsigned i = 0; i < 2 * posed->getNumberOfUVs(); ++i)
            EXPECT_NE(posed->uvs[i], std::numeric_limits<std::int32_t>::min());
}

// --- sizes

TEST_F(HardModelsTest, ModelsBeyondTheRangeOfFixedPointAreScaledIntoIt) {
    for (float half : {5e5f, 5e9f, 5e-5f, 1e-12f}) {
        SCOPED_TRACE(half);
        const Made made = make("box.gltf", gltfOf(boxMesh(half, 0.5f * half, 0.25f * half)));
        ASSERT_NE(made.root(), nullptr);
        EXPECT_NE(made.report().scale, 1.0);
        EXPECT_TRUE(mentions(made.report(), "multiplied"));
        EXPECT_LT(made.report().size, 32768.0);
        EXPECT_GT(made.report().size, 0.1);
        expectPlaces(made, "box.gltf", 2e-4);
        expectNormalsAgree(poseWithoutWindow(made.root()));
    }
}

TEST_F(HardModelsTest, AFarPlaceCountsAsSize) {
    const Made made = make("far.gltf", gltfOf(boxMesh(), {{"translation", {4e6, 0, 0}}}));
    ASSERT_NE(made.root(), nullptr);
    for (const PosedMesh &posed : poseWithoutWindow(made.root()))
        for (const Point &point : posed.positions) EXPECT_LT(std::abs(point.x), 32768.0);
}

TEST_F(HardModelsTest, TheScaleThatIsAskedForCounts) {
    const Made made = make("box.gltf", gltfOf(boxMesh(), {{"translation", {10, 0, 0}}}),
                           [](convert::Options &options) { options.scale = 2.5; });
    ASSERT_NE(made.root(), nullptr);
    EXPECT_EQ(made.report().scale, 2.5);
    expectPlaces(made, "box.gltf");
}

// --- trees

TEST_F(HardModelsTest, ChainsDeeperThanTheEngineWalksStandWhereTheyStood) {
    for (int depth : {40, 300}) {
        SCOPED_TRACE(depth);
        GltfBuilder model;
        const int mesh = model.mesh(boxMesh());
        int node = -1;
        for (int i = 0; i < depth; ++i) {
            json properties{{"name", "link" + std::to_string(i)},
                            {"translation", {1.0, 0.1, 0}},
                            {"rotation", {0, 0, 0.02, std::sqrt(1 - 0.02 * 0.02)}}};
            if (i % 50 == 0 || i == depth - 1) properties["mesh"] = mesh;
            node = model.node(properties, node);
        }
        const Made made = make("chain.gltf", model.text());
        ASSERT_NE(made.root(), nullptr);
        expectPlaces(made, "chain.gltf");
    }
}

TEST_F(HardModelsTest, AMeshUsedByManyNodesStandsAtEach) {
    GltfBuilder model;
    const int mesh = model.mesh(boxMesh());
    for (int i = 0; i < 30; ++i) model.node({{"mesh", mesh}, {"translation", {3 * i, i, 0}}});
    const Made made = make("many.gltf", model.text());
    ASSERT_NE(made.root(), nullptr);
    expectPlaces(made, "many.gltf");
    EXPECT_EQ(trianglesOf(made), 30u * 12u);
}

// --- names

TEST_F(HardModelsTest, NamesAreCutAndStayDifferent) {
    GltfBuilder model;
    const int mesh = model.mesh(boxMesh());
    const std::string name(400, 'n');
    for (const char *ending : {"a", "b", "c"}) model.node({{"mesh", mesh}, {"name", name + ending}});
    const Made made = make("names.gltf", model.text());
    ASSERT_NE(made.root(), nullptr);
    const std::vector<std::string> names = namesOf(made);
    EXPECT_EQ(std::set<std::string>(names.begin(), names.end()).size(), names.size());
    EXPECT_EQ(trianglesOf(made), 36u);
}

TEST_F(HardModelsTest, NodesOfOneNameGetNamesOfTheirOwn) {
    GltfBuilder model;
    const int mesh = model.mesh(boxMesh());
    for (int i = 0; i < 4; ++i) model.node({{"mesh", mesh}, {"name", "box"}, {"translation", {3 * i, 0, 0}}});
    const Made made = make("twins.gltf", model.text());
    ASSERT_NE(made.root(), nullptr);
    const std::vector<std::string> names = namesOf(made);
    EXPECT_EQ(std::set<std::string>(names.begin(), names.end()).size(), names.size());
    expectPlaces(made, "twins.gltf");
}

TEST_F(HardModelsTest, NamesThatAreNoTextAreMadeText) {
    const Made made =
        make("bytes.obj", std::string("o a\xff\xfe\x80z\nv 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n"));
    ASSERT_NE(made.root(), nullptr);
    for (const std::string &name : namesOf(made))
        for (char c : name) EXPECT_TRUE(static_cast<unsigned char>(c) < 0x80 && c >= ' ') << name;
}

TEST_F(HardModelsTest, ANodeThatIsCalledLikeTheFrameOfReferenceKeepsItsPlace) {
    GltfBuilder model;
    const int mesh = model.mesh(boxMesh());
    const int root = model.node({{"name", "HumanoidRoot"}, {"mesh", mesh}, {"translation", {5, 6, 7}}});
    model.node({{"name", "arm"}, {"mesh", mesh}, {"translation", {1, 2, 3}}}, root);
    const Made made = make("human.gltf", model.text());
    ASSERT_NE(made.root(), nullptr);
    expectPlaces(made, "human.gltf");
}

// --- files

TEST_F(HardModelsTest, AnyFileNameWillDo) {
    for (const char *name : {"a b.gltf", "it's.gltf", "say \"so\".gltf", "two\nlines.gltf", "-o.gltf",
                             "%s%n.gltf", "\xc3\xa9\xff.gltf"}) {
        const Made made = make(name, gltfOf(boxMesh()));
        EXPECT_EQ(trianglesOf(made), 12u) << name;
    }
}

TEST_F(HardModelsTest, AMissingMaterialFileDoesNoHarm) {
    const Made made = make("lone.obj", "mtllib gone.mtl\nusemtl gone\nv 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n");
    ASSERT_NE(made.root(), nullptr);
    for (KTMESH *mesh : meshesOf(made.root())) EXPECT_NE(mesh->getMaterial(), nullptr);
}

TEST_F(HardModelsTest, AMissingTextureIsSaidAndStoodInFor) {
    folder.write("paint.mtl", std::string("newmtl paint\nmap_Kd gone picture.png\n"));
    const Made made = make("painted.obj",
                           "mtllib paint.mtl\nusemtl paint\nv 0 0 0\nv 1 0 0\nv 0 1 0\n"
                           "vt 0 0\nvt 1 0\nvt 0 1\nf 1/1 2/2 3/3\n");
    ASSERT_NE(made.root(), nullptr);
    ASSERT_EQ(made.report().textures.size(), 1u);
    EXPECT_TRUE(made.report().textures[0].missing);
    EXPECT_TRUE(mentions(made.report(), "gone picture.png"));
    EXPECT_FALSE(readFile(made.loaded->path(made.report().textures[0].file)).empty());
}

TEST_F(HardModelsTest, TheFilesAreWhatTheReportSays) {
    GltfBuilder model;
    const int node = model.node({{"mesh", model.mesh(boxMesh())}, {"name", "box"}});
    model.clip("turn", {{node, "translation", {0, 1}, {0, 0, 0, 1, 2, 3}}});
    const Made made = make("box.gltf", model.text());
    std::multiset<std::string> said = {made.report().sceneFile}, written;
    for (const convert::ClipReport &clip : made.report().clips) said.insert(clip.file);
    for (const convert::TextureReport &texture : made.report().textures) said.insert(texture.file);
    for (const convert::OutputFile &file : made.conversion.files) written.insert(file.name);
    EXPECT_EQ(said, written);
    EXPECT_EQ(made.conversion.files.back().name, made.report().sceneFile) << "the scene comes last";
    SceneFault fault{};
    const std::vector<std::uint8_t> &scene = made.conversion.files.back().bytes;
    EXPECT_TRUE(checkScene(scene.data(), scene.size(), fault)) << formats::textOf(fault);
}

/// A leaf whose surfaces have these flags, in AC3D's format.
std::string leafOf(const std::vector<std::string> &flags) {
    std::string text =
        "AC3Db\nMATERIAL \"m\" rgb 1 1 1 amb 1 1 1 emis 0 0 0 spec 0 0 0 shi 0 trans 0\n"
        "OBJECT world\nkids 1\nOBJECT poly\nname \"leaf\"\ntexture \"leaf.tga\"\n"
        "numvert 4\n0 0 0\n1 0 0\n0 1 0\n0 0 1\nnumsurf " +
        std::to_string(flags.size()) + "\n";
    for (std::size_t i = 0; i < flags.size(); ++i)
        text += "SURF " + flags[i] + "\nmat 0\nrefs 3\n0 0 0\n1 1 0\n" + std::to_string(2 + i % 2) + " 0 1\n";
    return text + "kids 0\n";
}

class Ac3dTest : public HardModelsTest {
   protected:
    void putLeaf(std::uint8_t alpha) {
        formats::Image leaf(4, 4);
        for (formats::Rgba &pixel : leaf.pixels) pixel = {20, 120, 30, 255};
        leaf.pixels[5].a = alpha;
        const std::vector<std::uint8_t> bytes = formats::writeTga(leaf, {false, 32, false});
        folder.write("leaf.tga", bytes.data(), bytes.size());
    }
};

// The format has no word for it: programs that show it blend every picture that has alpha.
TEST_F(Ac3dTest, TheAlphaOfPicturesCounts) {
    putLeaf(0);
    const Made made = make("leaf.ac", leafOf({"0x10"}));
    ASSERT_EQ(made.report().textures.size(), 1u);
    EXPECT_EQ(made.report().textures[0].bits, 32u);
    EXPECT_FALSE(mentions(made.report(), "alpha"));
    const std::vector<KTMESH *> meshes = meshesOf(made.root());
    ASSERT_FALSE(meshes.empty());
    EXPECT_LT(meshes[0]->getMaterial()->getTransparency(), 1.0f);
}

TEST_F(Ac3dTest, TwoSidedSurfacesAreDrawnOrCounted) {
    putLeaf(255);
    EXPECT_EQ(trianglesOf(make("one.ac", leafOf({"0x10", "0x10"}))), 2u);
    EXPECT_EQ(trianglesOf(make("two.ac", leafOf({"0x30", "0x20"}))), 4u);
    const Made mixed = make("mixed.ac", leafOf({"0x30", "0x10"}));
    EXPECT_EQ(trianglesOf(mixed), 2u);
    EXPECT_TRUE(mentions(mixed.report(), "two-sided surfaces"));
    EXPECT_EQ(mixed.report().tally().dropped, 1u);
}

}  // namespace
}  // namespace keltra::test
