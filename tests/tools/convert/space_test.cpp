// SPDX-License-Identifier: Zlib
// The unit of a model's lengths, and which of its axes is up.

#include <gtest/gtest.h>
#include <zip.h>

#include "tests/tools/convert/support/convert_fixture.h"
#include "tests/tools/convert/support/fbx_builder.h"

namespace keltra::test {
namespace {

/// Three corners at different distances along the axes, so that the place of each tells the model's rotation.
constexpr char kCorners[] = "v 1 0 0\nv 0 2 0\nv 0 0 3\nf 1 2 3\n";

class SpaceTest : public ConvertTest {
   protected:
    /// The corner at this distance from the origin.
    static Point cornerAt(const Made &made, double distance) {
        for (const Point &corner : shapeOf(poseWithoutWindow(made.root())).corners)
            if (std::abs(length(corner) - distance) < 1e-3) return corner;
        ADD_FAILURE() << "no corner is " << distance << " away from the origin";
        return {};
    }

    /// Where the corners on the model's axes are.
    static void expectAxes(const Made &made, const Point &x, const Point &y, const Point &z) {
        ASSERT_NE(made.root(), nullptr);
        EXPECT_LT(length(cornerAt(made, 1.0) - x), 1e-3) << "X";
        EXPECT_LT(length(cornerAt(made, 2.0) - y * 2.0), 1e-3) << "Y";
        EXPECT_LT(length(cornerAt(made, 3.0) - z * 3.0), 1e-3) << "Z";
    }
    static void expectAsItWas(const Made &made) { expectAxes(made, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}); }
    static void expectZUp(const Made &made) { expectAxes(made, {1, 0, 0}, {0, 0, -1}, {0, 1, 0}); }

    static Tweak up(char axis) {
        return [axis](convert::Options &options) { options.up = axis; };
    }
    static Tweak scaledBy(double factor) {
        return [factor](convert::Options &options) { options.scale = factor; };
    }

    /// Boxes in the places of the corners, in a file of these settings.
    static std::string fbx(const std::vector<std::pair<std::string, double>> &settings, double size = 1.0) {
        FbxBuilder model;
        for (const auto &[name, value] : settings) model.setting(name, value);
        FbxNode node;
        for (const Point &at : {Point{1, 0, 0}, Point{0, 2, 0}, Point{0, 0, 3}}) {
            node.name = "box" + std::to_string(static_cast<int>(length(at)));
            node.kind = "Mesh";
            node.translation = at * size;
            model.box(model.node(node), 1e-3 * size);
        }
        return model.text();
    }
    /// As above, by the first corner of each box.
    static void expectBoxes(const Made &made, const Point &x, const Point &y, const Point &z) {
        ASSERT_NE(made.root(), nullptr);
        const std::vector<Point> corners = shapeOf(poseWithoutWindow(made.root())).corners;
        const auto nearest = [&corners](const Point &at) {
            double least = 1e9;
            for (const Point &corner : corners) least = std::min(least, length(corner - at));
            return least;
        };
        EXPECT_LT(nearest(x), 0.01) << "X";
        EXPECT_LT(nearest(y * 2.0), 0.01) << "Y";
        EXPECT_LT(nearest(z * 3.0), 0.01) << "Z";
    }

    /// A 3MF file: a triangle of these sides in an archive.
    std::string threeMf(const std::string &unit) {
        const std::string path = folder.path("model.3mf");
        const std::string texts[][2] = {
            {"[Content_Types].xml",
             "<?xml version=\"1.0\"?><Types xmlns=\"http://schemas.openxmlformats.org/package/2006/"
             "content-types\"><Default Extension=\"rels\" ContentType=\"application/"
             "vnd.openxmlformats-package.relationships+xml\"/><Default Extension=\"model\" "
             "ContentType=\"application/vnd.ms-package.3dmanufacturing-3dmodel+xml\"/></Types>"},
            {"_rels/.rels",
             "<?xml version=\"1.0\"?><Relationships xmlns=\"http://schemas.openxmlformats.org/package/2006/"
             "relationships\"><Relationship Target=\"/3D/3dmodel.model\" Id=\"r\" Type=\"http://"
             "schemas.microsoft.com/3dmanufacturing/2013/01/3dmodel\"/></Relationships>"},
            {"3D/3dmodel.model",
             "<?xml version=\"1.0\"?>\n<model " + unit +
                 " xmlns=\"http://schemas.microsoft.com/3dmanufacturing/core/2015/02\"><resources>"
                 "<object id=\"1\" type=\"model\"><mesh><vertices><vertex x=\"100\" y=\"0\" z=\"0\"/>"
                 "<vertex x=\"0\" y=\"200\" z=\"0\"/><vertex x=\"0\" y=\"0\" z=\"300\"/></vertices>"
                 "<triangles><triangle v1=\"0\" v2=\"1\" v3=\"2\"/></triangles></mesh></object></resources>"
                 "<build><item objectid=\"1\"/></build></model>"}};
        zip_t *archive = zip_open(path.c_str(), ZIP_CREATE | ZIP_TRUNCATE, nullptr);
        for (const auto &[name, text] : texts)
            zip_file_add(archive, name.c_str(), zip_source_buffer(archive, text.data(), text.size(), 0), 0);
        EXPECT_EQ(zip_close(archive), 0);
        return path;
    }

    static std::string collada(const std::string &asset) {
        return "<?xml version=\"1.0\"?>\n<COLLADA xmlns=\"http://www.collada.org/2005/11/COLLADASchema\" "
               "version=\"1.4.1\"><asset>" +
               asset +
               "</asset><library_geometries><geometry id=\"g\"><mesh><source id=\"p\"><float_array id=\"a\" "
               "count=\"9\">1 0 0 0 2 0 0 0 3</float_array><technique_common><accessor source=\"#a\" "
               "count=\"3\" stride=\"3\"><param name=\"X\" type=\"float\"/><param name=\"Y\" type=\"float\"/>"
               "<param name=\"Z\" type=\"float\"/></accessor></technique_common></source><vertices id=\"v\">"
               "<input semantic=\"POSITION\" source=\"#p\"/></vertices><triangles count=\"1\"><input "
               "semantic=\"VERTEX\" source=\"#v\" offset=\"0\"/><p>0 1 2</p></triangles></mesh></geometry>"
               "</library_geometries><library_visual_scenes><visual_scene id=\"s\"><node id=\"n\">"
               "<instance_geometry url=\"#g\"/></node></visual_scene></library_visual_scenes>"
               "<scene><instance_visual_scene url=\"#s\"/></scene></COLLADA>";
    }

    /// The file of 3D Studio with one triangle.
    static std::string threeDs() {
        const auto bytes = [](const void *data, std::size_t size) {
            return std::string(static_cast<const char *>(data), size);
        };
        const auto chunk = [&bytes](std::uint16_t id, const std::string &content) {
            const std::uint32_t size = static_cast<std::uint32_t>(content.size() + 6);
            return bytes(&id, 2) + bytes(&size, 4) + content;
        };
        const std::uint16_t three = 3, one = 1, faces[] = {0, 1, 2, 0};
        const float places[] = {1, 0, 0, 0, 2, 0, 0, 0, 3};
        const std::string mesh = chunk(0x4110, bytes(&three, 2) + bytes(places, sizeof places)) +
                                 chunk(0x4120, bytes(&one, 2) + bytes(faces, sizeof faces));
        return chunk(0x4d4d, chunk(0x3d3d, chunk(0x4000, std::string("box", 4) + chunk(0x4100, mesh))));
    }
};

// --- units

TEST_F(SpaceTest, FbxHasCentimetresUnlessItSaysOtherwise) {
    for (const auto &[factor, size] :
         {std::pair(1.0, 100.0), std::pair(100.0, 1.0), std::pair(2.54, 100 / 2.54)}) {
        const Made made = make("unit.fbx", fbx({{"UnitScaleFactor", factor}}, size));
        expectBoxes(made, {1, 0, 0}, {0, 1, 0}, {0, 0, 1});
        EXPECT_NEAR(made.report().scale, 0.01 * factor, 1e-6);
        EXPECT_EQ(mentions(made.report(), "a unit of its file is"), factor != 100.0);
    }
}

TEST_F(SpaceTest, AUnitThatIsNoneCountsAsAMetre) {
    for (const double factor : {-1.0, 1e20}) {
        const Made made = make("unit.fbx", fbx({{"UnitScaleFactor", factor}}));
        expectBoxes(made, {1, 0, 0}, {0, 1, 0}, {0, 0, 1});
        EXPECT_TRUE(mentions(made.report(), "is taken for a metre"));
    }
}

TEST_F(SpaceTest, GltfHasMetres) {
    GltfBuilder model;
    GltfMesh mesh;
    mesh.positions = {1, 0, 0, 0, 2, 0, 0, 0, 3};
    mesh.indices = {0, 1, 2};
    model.node({{"name", "n"}, {"mesh", model.mesh(mesh)}});
    const Made made = make("metres.gltf", model.text());
    expectAsItWas(made);
    EXPECT_FALSE(mentions(made.report(), "a unit of its file is"));
}

TEST_F(SpaceTest, ColladaNamesItsUnit) {
    const Made inches =
        make("inches.dae", collada("<unit name=\"inch\" meter=\"0.0254\"/>"), scaledBy(1 / 0.0254));
    expectAsItWas(inches);
    EXPECT_TRUE(mentions(inches.report(), "a unit of its file is 0.0254 m"));
    const Made metres = make("metres.dae", collada("<unit name=\"metre\" meter=\"1\"/>"));
    expectAsItWas(metres);
    EXPECT_FALSE(mentions(metres.report(), "a unit of its file is"));
    expectAsItWas(make("silent.dae", collada("")));
}

TEST_F(SpaceTest, ThreeMfNamesItsUnit) {
    const std::pair<std::string, double> units[] = {
        {"", 1e-3},
        {"unit=\"micron\"", 1e-6},
        {"unit='millimeter'", 1e-3},
        {"xml:lang=\"en\" unit = \"centimeter\"", 1e-2},
        {"unit=\"inch\"", 0.0254},
        {"unit=\"foot\"", 0.3048},
        {"unit=\"meter\"", 1.0},
        {"unit=\"parsec\"", 1e-3},
    };
    for (const auto &[unit, metres] : units) {
        Made made;
        made.conversion = convertFile(threeMf(unit), scaledBy(0.01 / metres));
        EXPECT_NEAR(made.report().scale, 0.01, 1e-9) << unit;
        made.loaded = std::make_unique<Loaded>(made.conversion);
        expectZUp(made);
        EXPECT_EQ(mentions(made.report(), "a unit of its file is"), metres != 1.0) << unit;
    }
}

TEST_F(SpaceTest, TheScaleThatIsAskedForMultiplies) {
    const Made made = make("unit.fbx", fbx({{"UnitScaleFactor", 1.0}}, 50.0), scaledBy(2.0));
    expectBoxes(made, {1, 0, 0}, {0, 1, 0}, {0, 0, 1});
    EXPECT_NEAR(made.report().scale, 0.02, 1e-9);
}

TEST_F(SpaceTest, AModelThatIsSmallInMetresIsStillMadeLarger) {
    const Made made = make("small.fbx", fbx({{"UnitScaleFactor", 1.0}}));
    EXPECT_NEAR(made.report().scale, 1.0, 1e-6);
    EXPECT_TRUE(mentions(made.report(), "to fit"));
}

// --- axes

TEST_F(SpaceTest, AnAxisCanBeChosen) {
    expectAsItWas(make("model.obj", kCorners));
    expectAsItWas(make("model.obj", kCorners, up('Y')));
    expectZUp(make("model.obj", kCorners, up('Z')));
    expectAxes(make("model.obj", kCorners, up('X')), {0, 1, 0}, {-1, 0, 0}, {0, 0, 1});
}

TEST_F(SpaceTest, ColladaNamesItsAxis) {
    expectZUp(make("z.dae", collada("<up_axis>Z_UP</up_axis>")));
    expectAsItWas(make("z.dae", collada("<up_axis>Z_UP</up_axis>"), up('Y')));
    expectZUp(make("y.dae", collada("<up_axis>Y_UP</up_axis>"), up('Z')));
    expectAxes(make("x.dae", collada("<up_axis>X_UP</up_axis>")), {0, 1, 0}, {-1, 0, 0}, {0, 0, 1});
}

TEST_F(SpaceTest, In3dsZIsUpAndTheImporterKnows) {
    expectZUp(make("model.3ds", threeDs()));
    expectZUp(make("model.3ds", threeDs(), up('Z')));
    expectAsItWas(make("model.3ds", threeDs(), up('Y')));
}

TEST_F(SpaceTest, InSmdZIsUp) {
    const std::string text =
        "version 1\nnodes\n0 \"root\" -1\nend\nskeleton\ntime 0\n0 0 0 0 0 0 0\nend\ntriangles\nskin.tga\n"
        "0 1 0 0 0 0 1 0 0\n0 0 2 0 0 0 1 0 0\n0 0 0 3 0 0 1 0 0\nend\n";
    expectZUp(make("model.smd", text));
    expectAsItWas(make("model.smd", text, up('Y')));
}

TEST_F(SpaceTest, FbxNamesItsAxes) {
    // As 3ds Max writes them.
    const Made z =
        make("z.fbx", fbx({{"UpAxis", 2}, {"FrontAxis", 1}, {"FrontAxisSign", -1}, {"CoordAxis", 0}}));
    expectBoxes(z, {1, 0, 0}, {0, 0, -1}, {0, 1, 0});
    EXPECT_TRUE(mentions(z.report(), "Y is not up in its file"));
    const Made x =
        make("x.fbx", fbx({{"UpAxis", 0}, {"FrontAxis", 2}, {"CoordAxis", 1}, {"CoordAxisSign", -1}}));
    expectBoxes(x, {0, 1, 0}, {-1, 0, 0}, {0, 0, 1});
    const Made back =
        make("back.fbx", fbx({{"UpAxis", 2}, {"FrontAxis", 1}, {"CoordAxis", 0}, {"CoordAxisSign", -1}}));
    expectBoxes(back, {-1, 0, 0}, {0, 0, 1}, {0, 1, 0});
}

TEST_F(SpaceTest, FbxAxesThatContradictEachOtherCountByTheFirst) {
    // A mirror.
    expectBoxes(make("m.fbx", fbx({{"UpAxis", 2}, {"FrontAxis", 1}, {"CoordAxis", 0}})), {1, 0, 0},
                {0, 0, -1}, {0, 1, 0});
    // One axis twice.
    expectBoxes(make("t.fbx", fbx({{"UpAxis", 2}, {"FrontAxis", 2}, {"CoordAxis", 2}})), {1, 0, 0},
                {0, 0, -1}, {0, 1, 0});
    // Below.
    expectBoxes(make("b.fbx", fbx({{"UpAxis", 2}, {"UpAxisSign", -1}, {"FrontAxis", 2}})), {-1, 0, 0},
                {0, 0, -1}, {0, -1, 0});
    // No axes.
    for (const double none : {-1.0, 3.0, 7.0})
        expectBoxes(make("n.fbx", fbx({{"UpAxis", none}})), {1, 0, 0}, {0, 1, 0}, {0, 0, 1});
    // Up, and the others anyhow.
    expectBoxes(make("y.fbx", fbx({{"UpAxis", 1}, {"FrontAxis", 0}, {"CoordAxis", 2}})), {1, 0, 0}, {0, 1, 0},
                {0, 0, 1});
}

TEST_F(SpaceTest, AChosenAxisOverrulesTheFile) {
    const auto settings = {
        std::pair<std::string, double>{"UpAxis", 2.0}, {"FrontAxis", 1}, {"FrontAxisSign", -1}};
    expectBoxes(make("z.fbx", fbx(settings), up('Y')), {1, 0, 0}, {0, 1, 0}, {0, 0, 1});
    expectBoxes(make("z.fbx", fbx({}), up('Z')), {1, 0, 0}, {0, 0, -1}, {0, 1, 0});
}

}  // namespace
}  // namespace keltra::test
