// SPDX-License-Identifier: Zlib
// Runs the program on every file of the package of models: each is converted or refused with a reason in one
// line.

#include <gtest/gtest.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <mutex>
#include <thread>

#include "tests/scene/scene_parts.h"
#include "tests/tools/convert/support/clips.h"
#include "tests/tools/convert/support/converter_run.h"
#include "tests/tools/convert/support/model_package.h"
#include "tests/tools/convert/support/model_table.h"

namespace keltra::test {
namespace {

#if defined(__SANITIZE_ADDRESS__)
constexpr double kTimeLimit = 250.0;  // seconds per file
#else
constexpr double kTimeLimit = 50.0;
#endif
constexpr unsigned kWorkers = 2;
constexpr double kBound = 0.0005;  // of a model's size

struct Model {
    std::string name, path;
};

class CorpusTest : public SceneTest {
   protected:
    /// Converts all models, a few at once, each into its own folder.
    std::map<std::string, ConverterRun> convertAll(const std::vector<Model> &models, double timeLimit) {
        std::map<std::string, ConverterRun> runs;
        std::vector<std::string> faults;
        std::mutex guard;  // of the two, and of the engine
        std::atomic<std::size_t> next{0};
        const auto work = [&] {
            for (std::size_t i; (i = next++) < models.size();) {
                const TempFolder target;
                const std::string output = target.path("converted");
                ConverterRun run = runConverter(models[i].path, output, timeLimit);
                const std::lock_guard<std::mutex> lock(guard);
                const std::string fault = judgeRun(run, models[i].path, output);
                if (!fault.empty()) faults.push_back(models[i].name + ": " + fault);
                runs.emplace(models[i].name, std::move(run));
            }
        };
        std::vector<std::thread> workers;
        for (unsigned w = 0; w < kWorkers; ++w) workers.emplace_back(work);
        for (std::thread &worker : workers) worker.join();
        for (const std::string &fault : faults) ADD_FAILURE() << fault;
        return runs;
    }

    static void printSummary(const std::map<std::string, ConverterRun> &runs) {
        unsigned converted = 0;
        const std::pair<const std::string, ConverterRun> *slowest = nullptr;
        for (const auto &run : runs) {
            converted += run.second.exitCode == 0;
            if (!slowest || run.second.seconds > slowest->second.seconds) slowest = &run;
        }
        std::printf("%zu files, %u converted; the slowest, %s, took %.1f s\n", runs.size(), converted,
                    slowest ? slowest->first.c_str() : "none", slowest ? slowest->second.seconds : 0.0);
    }
};

TEST_F(CorpusTest, EveryFileOfThePackageIsConvertedOrRefusedInOneLine) {
    std::vector<Model> models;
    for (const std::string &file : packageFiles()) models.push_back({file, packagePath(file)});
    const std::map<std::string, ConverterRun> runs = convertAll(models, kTimeLimit);
    printSummary(runs);
    ASSERT_EQ(runs.size(), models.size());
    EXPECT_GE(
        std::count_if(runs.begin(), runs.end(), [](const auto &run) { return run.second.exitCode == 0; }),
        300);
    if (!std::getenv("KELTRA_UPDATE_MODELS")) return;
    const std::vector<std::uint8_t> page = readFile(KELTRA_MODEL_TABLE);
    const std::string text = modelPage({page.begin(), page.end()}, runs);
    std::ofstream file(KELTRA_MODEL_TABLE, std::ios::binary | std::ios::trunc);
    file << text;
    ASSERT_TRUE(file.flush()) << "cannot write " << KELTRA_MODEL_TABLE;
}

TEST_F(CorpusTest, FilesThatEndEarlyAreConvertedOrRefusedInOneLine) {
    const char *const whole[] = {
        "3DS/fels.3ds",
        "AC/Wuson.ac",
        "ASE/anim.ASE",
        "B3D/WusonBlitz.b3d",
        "BLEND/Suzanne_248.blend",
        "BVH/Boxing_Toes.bvh",
        "CSM/ThomasFechten.csm",
        "Collada/duck.dae",
        "FBX/huesitos.fbx",
        "FBX/phong_cube.fbx",
        "LWO/LWO2/sphere_with_mat_gloss_10pc.lwo",
        "MDL/MDL (HL1)/man.mdl",
        "OBJ/spider.obj",
        "PLY/cube_binary.ply",
        "STL/Spider_binary.stl",
        "X/Testwuson.X",
        "X/test_cube_compressed.x",
        "glTF2/2CylinderEngine-glTF-Binary/2CylinderEngine.glb",
        "glTF2/simple_skin/simple_skin.gltf",
    };
    std::vector<Model> models;
    for (const char *file : whole) {
        const std::vector<std::uint8_t> bytes = readFile(packagePath(file));
        ASSERT_FALSE(bytes.empty()) << file;
        const std::string ending = std::filesystem::path(file).extension().string();
        for (unsigned share : {10u, 50u, 90u, 99u}) {
            const std::string name =
                std::filesystem::path(file).stem().string() + "-" + std::to_string(share) + ending;
            models.push_back({name, folder.write(name, bytes.data(), bytes.size() * share / 100)});
        }
    }
    const std::map<std::string, ConverterRun> runs = convertAll(models, 0.3 * kTimeLimit);
    printSummary(runs);
    EXPECT_EQ(runs.size(), models.size());
}

TEST_F(CorpusTest, AnImporterThatDoesNotEndIsStopped) {
    // The importer of this format waits for the end of a header that has none.
    const std::string model =
        folder.write("cut.ply", std::string("ply\nformat ascii 1.0\nelement vertex 3\n"));
    const TempFolder target;
    const ConverterRun run = runConverter(model, target.path("converted"), 0.1 * kTimeLimit);
    EXPECT_EQ(judgeRun(run, model, target.path("converted")), "");
    EXPECT_EQ(run.exitCode, 1);
}

// Moving models are posed in a window by convert_pose_test.
TEST_F(CorpusTest, EveryModelThatDoesNotMoveStandsWhereItStood) {
    unsigned compared = 0;
    double largest = 0.0;
    for (const std::string &file : packageFiles()) {
        const ModelKind kind = kindOfModel(packagePath(file));
        if (!kind.shaped || kind.skinned || kind.moving) continue;
        convert::Options options;
        options.model = packagePath(file);
        options.name = "model";
        const convert::Conversion conversion = convert::convertModel(options, [](const char *, double) {});
        const SourcePose source(options.model);
        const Loaded loaded(conversion);
        ASSERT_NE(loaded.root(), nullptr) << file;
        Moments expected, actual;
        expected.add(scaled(source.at(-1, 0.0), conversion.report.scale));
        actual.add(shapeOf(poseWithoutWindow(loaded.root())));
        const Deviation deviation = compare(source, expected, actual, kBound, file);
        EXPECT_LT(deviation.largest, kBound) << deviation.outliers;
        largest = std::max(largest, deviation.largest);
        ++compared;
    }
    std::printf("%u models that do not move, the largest distance %.4f %%\n", compared, 100.0 * largest);
    EXPECT_GE(compared, 240u);
}

}  // namespace
}  // namespace keltra::test
