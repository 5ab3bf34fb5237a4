// SPDX-License-Identifier: Zlib
// Animations of further files for one skeleton, and Collada's one timeline.

#include <gtest/gtest.h>

#include "tests/tools/convert/support/convert_fixture.h"
#include "tests/tools/convert/support/fbx_builder.h"

namespace keltra::test {
namespace {

constexpr double kBound = 1e-3, kFps = 25.0;
constexpr unsigned kFrames = 21;

class FurtherClipsTest : public ConvertTest {
   protected:
    /// An arm of three bones with a skin, or without one for a file of animations. All lengths are
    /// multiplied.
    static FbxBuilder arm(bool isSkinned, double unit = 1.0, const std::string &hand = "hand") {
        FbxBuilder model;
        FbxNode node;
        node.name = "shoulder";
        node.parent = model.node(node);
        node.name = "arm", node.translation = Point{0, 2, 0.5} * unit, node.preRotation = {0, 30, 90};
        node.parent = model.node(node);
        node.name = hand, node.translation = Point{0.3, 1.5, 0} * unit, node.preRotation = {};
        model.node(node);
        model.setting("UnitScaleFactor", 100.0 / unit);
        FbxNode body;
        body.name = "body", body.kind = "Mesh";
        if (isSkinned) model.skin(model.node(body), 1.0 * unit, {{0, 0.25}, {1, 0.25}, {2, 0.5}});
        return model;
    }
    static void addClip(FbxBuilder &model, double unit = 1.0) {
        FbxTrack turn{1, "Lcl Rotation", {}, {}}, bend{2, "Lcl Rotation", {}, {}},
            move{1, "Lcl Translation", {}, {}};
        for (unsigned f = 0; f < kFrames; ++f) {
            const double t = f / double(kFrames - 1);
            for (FbxTrack *track : {&turn, &bend, &move}) track->seconds.push_back(f / kFps);
            turn.values.push_back({50 * t, -30 * t, 20 * t});
            bend.values.push_back({0, 0, 80 * t});
            move.values.push_back(Point{t, 2 + t, 0.5} * unit);
        }
        model.clip("mixamo.com", {turn, bend, move});
    }

    Made convertWith(const FbxBuilder &model, const std::vector<std::pair<std::string, std::string>> &files) {
        std::vector<std::string> paths;
        for (const auto &[name, text] : files) paths.push_back(folder.write(name, text));
        return make("hero.fbx", model.text(), [&paths](convert::Options &options) { options.clips = paths; });
    }

    static void expectMoves(const FbxBuilder &expected, const Made &made, unsigned clip) {
        ASSERT_NE(made.root(), nullptr);
        ASSERT_GT(made.report().clips.size(), clip);
        ASSERT_EQ(made.report().clips[clip].frames, kFrames);
        KTANIM *animation = made.loaded->animation(made.report().clips[clip].file);
        ASSERT_NE(animation, nullptr);
        std::vector<std::vector<Point>> wanted, actual;
        for (unsigned f = 0; f < kFrames; ++f) {
            ASSERT_TRUE(animation->apply(f, made.root()));
            wanted.push_back(expected.vertices(0, f / kFps));
            actual.push_back(shapeOf(poseWithoutWindow(made.root())).corners);
        }
        EXPECT_LT(findGap(wanted, {}, actual, kBound).largest, kBound * extent(wanted));
    }
};

TEST_F(FurtherClipsTest, MoveTheModelAsIfTheyWereItsOwn) {
    FbxBuilder whole = arm(true), walk = arm(false);
    addClip(whole), addClip(walk);
    const Made made = convertWith(arm(true), {{"walk.fbx", walk.text()}, {"run.fbx", walk.text()}});
    ASSERT_EQ(made.report().clips.size(), 2u);
    EXPECT_EQ(made.report().clips[0].file, "model_walk.kta");
    EXPECT_EQ(made.report().clips[1].file, "model_run.kta");
    expectMoves(whole, made, 0);
    expectMoves(whole, made, 1);
}

TEST_F(FurtherClipsTest, AnotherUnitIsNoHindrance) {
    FbxBuilder whole = arm(true), walk = arm(false, 100.0);
    addClip(whole), addClip(walk, 100.0);
    expectMoves(whole, convertWith(arm(true), {{"walk.fbx", walk.text()}}), 0);
}

TEST_F(FurtherClipsTest, StandBesideTheModelsOwn) {
    FbxBuilder whole = arm(true);
    addClip(whole);
    const Made made = convertWith(whole, {{"walk.fbx", whole.text()}});
    ASSERT_EQ(made.report().clips.size(), 2u);
    expectMoves(whole, made, 0);
    expectMoves(whole, made, 1);
}

TEST_F(FurtherClipsTest, BonesWithoutACounterpartAreNamed) {
    FbxBuilder walk = arm(false, 1.0, "claw");
    addClip(walk);
    const Made made = convertWith(arm(true), {{"walk.fbx", walk.text()}});
    ASSERT_EQ(made.report().clips.size(), 1u);
    EXPECT_TRUE(mentions(made.report(), "animated bones of walk.fbx"));
    EXPECT_TRUE(mentions(made.report(), "claw"));
}

TEST_F(FurtherClipsTest, FilesThatFitInNothingAreWarnedOf) {
    FbxBuilder other;
    FbxNode node;
    node.name = "wheel";
    other.node(node);
    other.clip("roll", {{0, "Lcl Rotation", {0, 1}, {{0, 0, 0}, {90, 0, 0}}}});
    const Made made = convertWith(arm(true), {{"roll.fbx", other.text()}, {"still.fbx", arm(true).text()}});
    EXPECT_TRUE(made.report().clips.empty());
    EXPECT_TRUE(mentions(made.report(), "the animations of roll.fbx move no node that the model has"));
    EXPECT_TRUE(mentions(made.report(), "still.fbx has no animation"));
}

TEST_F(FurtherClipsTest, AFileThatCannotBeReadIsNamed) {
    try {
        convertWith(arm(true), {{"walk.fbx", "nothing"}});
        ADD_FAILURE() << "it is converted";
    } catch (const convert::Refusal &refusal) {
        EXPECT_NE(std::string(refusal.what()).find("walk.fbx: "), std::string::npos) << refusal.what();
    }
}

// --- Collada

std::string source(const std::string &id, const std::string &values, unsigned count,
                   const char *type = "float") {
    const bool isName = std::string(type) == "name";
    const std::string array = isName ? "Name_array" : "float_array";
    return "<source id=\"" + id + "\"><" + array + " id=\"" + id + "-a\" count=\"" + std::to_string(count) +
           "\">" + values + "</" + array + "><technique_common><accessor source=\"#" + id + "-a\" count=\"" +
           std::to_string(count) + "\" stride=\"1\"><param name=\"P\" type=\"" + type +
           "\"/></accessor></technique_common></source>";
}

/// From the first value to the last in straight lines, one key a frame.
std::string track(const std::string &target, double from, double to, double seconds) {
    const std::string id = target.substr(target.find('/') + 1);
    std::string times, values, kinds;
    const unsigned count = static_cast<unsigned>(std::lround(seconds * kFps)) + 1;
    for (unsigned f = 0; f < count; ++f) {
        times += std::to_string(f / kFps) + " ";
        values += std::to_string(from + (to - from) * f / (count - 1)) + " ";
        kinds += "LINEAR ";
    }
    std::string key = "box-" + id;
    std::replace(key.begin(), key.end(), '.', '_');
    return "<animation id=\"" + key + "\">" + source(key + "-i", times, count) +
           source(key + "-o", values, count) + source(key + "-n", kinds, count, "name") + "<sampler id=\"" +
           key + "-s\"><input semantic=\"INPUT\" source=\"#" + key +
           "-i\"/><input semantic=\"OUTPUT\" source=\"#" + key +
           "-o\"/><input semantic=\"INTERPOLATION\" source=\"#" + key +
           "-n\"/></sampler><channel source=\"#" + key + "-s\" target=\"" + target + "\"/></animation>";
}

/// One animation with the channels of both.
std::string joined(std::string first, std::string second) {
    first.erase(first.rfind("</animation>"));
    second.erase(0, second.find('>') + 1);
    // Samplers come before channels.
    const std::size_t channel = first.find("<channel"), other = second.find("<channel");
    return first.substr(0, channel) + second.substr(0, other) + first.substr(channel) + second.substr(other);
}

std::string collada(const std::string &animations, const std::string &clips = "") {
    return "<?xml version=\"1.0\"?>\n<COLLADA xmlns=\"http://www.collada.org/2005/11/COLLADASchema\" "
           "version=\"1.4.1\"><asset/><library_animations>" +
           animations + "</library_animations>" + clips +
           "<library_geometries><geometry id=\"g\"><mesh><source id=\"p\"><float_array id=\"a\" "
           "count=\"9\">1 0 0 0 2 0 0 0 3</float_array><technique_common><accessor source=\"#a\" "
           "count=\"3\" stride=\"3\"><param name=\"X\" type=\"float\"/><param name=\"Y\" type=\"float\"/>"
           "<param name=\"Z\" type=\"float\"/></accessor></technique_common></source><vertices id=\"v\">"
           "<input semantic=\"POSITION\" source=\"#p\"/></vertices><triangles count=\"1\"><input "
           "semantic=\"VERTEX\" source=\"#v\" offset=\"0\"/><p>0 1 2</p></triangles></mesh></geometry>"
           "</library_geometries><library_visual_scenes><visual_scene id=\"s\"><node id=\"box\" name=\"box\">"
           "<translate sid=\"location\">1 2 3</translate><rotate sid=\"rotationZ\">0 0 1 20</rotate>"
           "<rotate sid=\"rotationY\">0 1 0 0</rotate><rotate sid=\"rotationX\">1 0 0 0</rotate>"
           "<scale sid=\"scale\">1 1 1</scale><instance_geometry url=\"#g\"/></node>"
           "</visual_scene></library_visual_scenes><scene><instance_visual_scene "
           "url=\"#s\"/></scene></COLLADA>";
}

TEST_F(FurtherClipsTest, ColladaAnimationsWithoutClipsAreOne) {
    // An animation of two channels keeps the importer from merging them. X before Z, as the order says
    // nothing.
    const std::string tracks =
        track("box/rotationX.ANGLE", 0, 50, 0.4) +
        joined(track("box/location.X", 1, 5, 0.8), track("box/location.Y", 2, 0, 0.8)) +
        track("box/rotationZ.ANGLE", 20, 80, 0.6) + track("box/rotationY.ANGLE", 0, 40, 0.2);
    const Made made = make("box.dae", collada(tracks));
    ASSERT_NE(made.root(), nullptr);
    ASSERT_EQ(made.report().clips.size(), 1u);
    EXPECT_TRUE(mentions(made.report(), "share one timeline"));
    ASSERT_EQ(made.report().clips[0].frames, kFrames);
    KTANIM *animation = made.loaded->animation(made.report().clips[0].file);
    ASSERT_NE(animation, nullptr);
    FbxBuilder reference;  // for its matrices: about X first, then Y, then Z
    FbxNode node;
    for (unsigned f = 0; f < kFrames; ++f) {
        const double t = f / kFps;
        node.translation = {1 + 4 * std::min(t / 0.8, 1.0), 2 - 2 * std::min(t / 0.8, 1.0), 3};
        node.rotation = {50 * std::min(t / 0.4, 1.0), 40 * std::min(t / 0.2, 1.0),
                         20 + 60 * std::min(t / 0.6, 1.0)};
        const FbxBuilder::Matrix expected = reference.world(reference.node(node), -1, 0.0);
        ASSERT_TRUE(animation->apply(f, made.root()));
        const std::vector<Point> corners = shapeOf(poseWithoutWindow(made.root())).corners;
        for (const Point &corner : {Point{1, 0, 0}, Point{0, 2, 0}, Point{0, 0, 3}}) {
            double least = 1e9;
            for (const Point &at : corners) least = std::min(least, length(at - expected * corner));
            EXPECT_LT(least, 5e-3) << "frame " << f;
        }
    }
}

TEST_F(FurtherClipsTest, ColladaClipsStayApart) {
    const std::string tracks =
        joined(track("box/location.X", 1, 5, 0.8), track("box/location.Y", 2, 0, 0.8)) +
        joined(track("box/rotationZ.ANGLE", 20, 80, 0.6), track("box/rotationX.ANGLE", 0, 9, 0.6));
    const Made made =
        make("box.dae",
             collada(tracks,
                     "<library_animation_clips><animation_clip id=\"a\" name=\"slide\"><instance_animation "
                     "url=\"#box-location_X\"/></animation_clip><animation_clip id=\"b\" name=\"turn\">"
                     "<instance_animation url=\"#box-rotationZ_ANGLE\"/></animation_clip>"
                     "</library_animation_clips>"));
    EXPECT_EQ(made.report().clips.size(), 2u);
    EXPECT_FALSE(mentions(made.report(), "share one timeline"));
}

}  // namespace
}  // namespace keltra::test
