// SPDX-License-Identifier: Zlib
// Compares converted clips with their models: each vertex that the engine shows has the position that the
// model's own matrices give.

#include <cstdio>
#include <map>
#include <set>

#include "tests/support/engine_fixture.h"
#include "tests/tools/convert/support/clips.h"
#include "tests/tools/convert/support/engine_pose.h"
#include "tests/tools/convert/support/model_package.h"
#include "tests/tools/convert/support/source_pose.h"

namespace keltra::test {
namespace {

constexpr double kBound = 0.002;  // of the model's size
constexpr unsigned kFramesAClip = 10;

// Models that are always checked.
const char *const kAlways[] = {
    "BVH/Boxing_Toes.bvh",
    "CSM/ThomasFechten.csm",
    "Collada/box_nested_animation.dae",
    "FBX/animation_with_skeleton.fbx",
    "FBX/huesitos.fbx",
    "MDL/MDL (HL1)/man.mdl",
    "X/BCN_Epileptic.X",
    "X/Testwuson.X",
    "glTF2/2CylinderEngine-glTF-Binary/2CylinderEngine.glb",
    "glTF2/simple_skin/simple_skin.gltf",
};

// Models that the engine cannot show exactly, and the word that the report must contain.
constexpr char kScales[] = "animated scales", kInfluences[] = "influences", kBindPose[] = "bind pose";
const std::map<std::string, std::string> kInexact = {
    {"ASE/anim2.ASE", kScales},
    // Skeletons without clips, whose rest pose is not their bind pose.
    {"Collada/cameras.dae", kBindPose},
    {"Collada/lights.dae", kBindPose},
    {"FBX/animation_with_skeleton.fbx", kInfluences},  // up to six per vertex
};
constexpr std::size_t kMostInfluences = 4;

struct Row {
    std::string model, note;
    unsigned clips = 0, frames = 0;
    double largest = 0.0;  // of the model's size
};

bool mentions(const convert::Report &report, const std::string &word) {
    std::string all;
    for (const convert::Dropped &dropped : report.dropped) all += dropped.what + " " + dropped.why + "\n";
    for (const std::string &text : report.warnings) all += text + "\n";
    for (const std::string &text : report.notes) all += text + "\n";
    return all.find(word) != std::string::npos;
}

class PoseTest : public EngineTest {
   protected:
    // Before the engine has a window: each file is imported in a forked process.
    static void SetUpTestSuite() {
        models = {std::begin(kAlways), std::end(kAlways)};
        for (const std::string &file : packageFiles()) {
            const ModelKind kind = kindOfModel(packagePath(file));
            if (kind.shaped && (kind.skinned || kind.moving)) models.insert(file);
        }
    }

    Shape drawn(KTNODE *root) {
        return shapeOf(drawInRounds(root, [this, root] {
            EXPECT_TRUE(KELTRA::clear(true, true, false));
            EXPECT_TRUE(KELTRA::begin3D(&camera));
            EXPECT_TRUE(root->pass());
            EXPECT_TRUE(KELTRA::end3D());
            expectNoGlError();
            EXPECT_TRUE(KELTRA::swap());
        }));
    }

    static void note(Row &row, const Deviation &deviation) {
        std::printf("%s", deviation.outliers.c_str());
        row.largest = std::max(row.largest, deviation.largest);
    }

    /// A model without clips is compared in its rest pose.
    void checkRest(const SourcePose &source, Loaded &loaded, double scale, Row &row) {
        Moments expected, actual;
        expected.add(scaled(source.at(-1, 0.0), scale));
        actual.add(drawn(loaded.root()));
        note(row, compare(source, expected, actual, kBound, "  " + row.model));
    }

    void checkClips(const SourcePose &source, Loaded &loaded, const convert::Report &report, Row &row) {
        for (const Clip &clip : clipsOf(report, source)) {
            const std::set<unsigned> frames = spreadFrames(clip, kFramesAClip);
            const Deviation deviation = compareClip(source, loaded, clip, report.scale, frames, kBound,
                                                    [this](KTNODE *root) { return drawn(root); });
            std::printf("  %s, clip \"%s\" of %u frames: %.4f %%\n", row.model.c_str(), clip.name.c_str(),
                        clip.frames, 100.0 * deviation.largest);
            note(row, deviation);
            ++row.clips;
            row.frames += static_cast<unsigned>(frames.size());
        }
        if (row.clips == 0) checkRest(source, loaded, report.scale, row);
    }

    Row checkModel(const std::string &model) {
        Row row;
        row.model = model;
        convert::Options options;
        options.model = packagePath(model);
        options.name = "model";
        convert::Conversion conversion;
        try {
            conversion = convert::convertModel(options, [](const char *, double) {});
        } catch (const convert::Refusal &refusal) {
            ADD_FAILURE() << model << " is refused: " << refusal.what();
            row.note = refusal.what();
            return row;
        }
        SourcePose source(options.model);
        Loaded loaded(conversion);
        if (!loaded.root()) {
            ADD_FAILURE() << model << ": the engine does not load it";
            return row;
        }
        checkClips(source, loaded, conversion.report, row);
        judge(row, conversion.report);
        const auto declared = kInexact.find(model);
        if (declared != kInexact.end() && declared->second == kInfluences)
            checkWithoutLightInfluences(source, loaded, conversion.report, row);
        return row;
    }

    /// The reported influences are the only difference: without them the poses are exact.
    void checkWithoutLightInfluences(SourcePose &source, Loaded &loaded, const convert::Report &report,
                                     Row &row) {
        source.keepHeaviest(kMostInfluences);
        Row rest;
        rest.model = row.model + " with the heaviest";
        checkClips(source, loaded, report, rest);
        EXPECT_LT(rest.largest, kBound) << rest.model;
        char text[64];
        std::snprintf(text, sizeof text, "; without them %.4f %%", 100.0 * rest.largest);
        row.note += text;
    }

    static void judge(Row &row, const convert::Report &report) {
        const auto declared = kInexact.find(row.model);
        if (declared == kInexact.end()) {
            EXPECT_LT(row.largest, kBound) << row.model;
            return;
        }
        row.note = "inexact: " + declared->second;
        EXPECT_TRUE(mentions(report, declared->second)) << row.model << ": the report does not say why";
        EXPECT_GE(row.largest, kBound) << row.model << " is exact by now: take it off the list";
    }

    static std::set<std::string> models;
    KTCAMERA camera;
};

std::set<std::string> PoseTest::models;

TEST_F(PoseTest, TheEngineShowsEveryMovingModelWhereItsOwnMatricesPutIt) {
    std::vector<Row> rows;
    for (const std::string &model : models) rows.push_back(checkModel(model));

    std::printf("%-66s %5s %6s %9s\n", "model", "clips", "frames", "largest %");
    for (const Row &row : rows)
        std::printf("%-66s %5u %6u %9.4f %s\n", row.model.c_str(), row.clips, row.frames, 100.0 * row.largest,
                    row.note.c_str());
    EXPECT_GE(rows.size(), 50u) << "the package has more moving models than that";
}

}  // namespace
}  // namespace keltra::test
