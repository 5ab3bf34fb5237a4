// SPDX-License-Identifier: Zlib
// keltra-view FILE: shows a scene or a model in the engine, with its frame time, triangles and memory.

#include <keltra/fault.h>

#include "tools/formats/version.h"
#include "tools/support/own_screen.h"
#include "tools/support/shot.h"
#include "tools/view/failure.h"
#include "tools/view/gl_calls.h"
#include "tools/view/viewer.h"

#include <SDL.h>
#include <CLI/CLI.hpp>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

namespace {

using keltra::support::Shot;
using keltra::view::failure;
using keltra::view::Viewer;

constexpr int kFailed = 1, kUsage = 2;
constexpr int kShotFrames = 25;             // before a picture if --frames is not given
constexpr int kPictures = 12;               // of a turntable
constexpr float kFixedStep = 1.0f / 25.0f;  // seconds per frame of repeatable runs
constexpr double kShortestFrame = 1.0 / 60.0, kLongestFrame = 0.25;

volatile std::sig_atomic_t stopSignal = 0;

extern "C" void noteSignal(int number) { stopSignal = number; }

struct Arguments {
    keltra::view::ViewerSettings viewer;
    int frames = 0;
    std::string shot, turntable;
};

// SDL keeps handlers that were set before it starts.
void catchSignals() {
    struct sigaction action = {};
    action.sa_handler = noteSignal;
    for (int number : {SIGINT, SIGTERM, SIGHUP}) sigaction(number, &action, nullptr);
}

void describe(CLI::App *app, Arguments *arguments) {
    app->set_version_flag("--version", std::string("keltra-view ") + keltra::formats::projectVersion());
    app->add_option("FILE", arguments->viewer.file, "Scene of the engine, or a model")->required();
    app->add_option("--clip", arguments->viewer.clips, "Animation to play; may be given several times")
        ->type_name("FILE.kta")
        ->allow_extra_args(false);
    CLI::Option *frames = app->add_option("--frames", arguments->frames, "Draw that many frames and end")
                              ->check(CLI::Range(1, 1000000));
    CLI::Option *shot =
        app->add_option("--shot", arguments->shot, "Save the last frame")->type_name("FILE.png");
    app->add_option("--turntable", arguments->turntable, "Save twelve pictures around the model and end")
        ->type_name("DIR")
        ->excludes(frames)
        ->excludes(shot);
    app->add_option("--panel", arguments->viewer.panel, "Description of the interface")
        ->type_name("FILE.xml");
    app->footer(
        "A drag turns the model; the wheel, a drag with another button and the strip at the right zoom.\n"
        "Arrows and +/- do the same. Space plays, n and p choose a clip, ',' and '.' step through it,\n"
        "w b v s l c show wires, boxes, normals, bones, lights and culled faces, Tab folds the panel,\n"
        "i hides the figures, r resets the view, Escape ends.\n\n"
        "Examples:\n"
        "  keltra-view fox.glb\n"
        "  keltra-view figure.kte --clip walk.kta --clip wave.kta\n"
        "  keltra-view fox.glb --turntable pictures");
}

// The folder of panel and font: beside the program, where the build installs them, or in the build folder.
std::string dataFolder() {
    std::error_code error;
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", error);
    const std::string beside = (program.parent_path() / "../share/keltra/").string();
    for (const std::string &folder :
         {beside, std::string(KELTRA_VIEW_INSTALLED_DATA), std::string(KELTRA_VIEW_BUILT_DATA)})
        if (std::filesystem::exists(folder + "panel.xml", error)) return folder;
    throw failure(KELTRA_VIEW_INSTALLED_DATA, "the viewer's panel is missing");
}

void save(const Shot &shot, const std::string &path) {
    std::string reason;
    if (!keltra::support::saveShot(shot, path, &reason)) throw failure(path, reason);
}

// All pictures are drawn before the first is written.
void makeTurntable(const Arguments &arguments) {
    Viewer viewer(arguments.viewer);
    std::vector<Shot> shots;
    for (int i = 0; i < kPictures && !stopSignal; ++i) {
        viewer.portrait(360.0f * static_cast<float>(i) / static_cast<float>(kPictures),
                        [&shots] { shots.push_back(keltra::support::takeShot()); });
    }
    if (stopSignal) return;
    std::error_code error;
    std::filesystem::create_directories(arguments.turntable, error);
    if (error) throw failure(arguments.turntable, error.message());
    for (std::size_t i = 0; i < shots.size(); ++i) {
        const std::string number = std::to_string(i);
        save(shots[i], arguments.turntable + (number.size() < 2 ? "/0" : "/") + number + ".png");
    }
}

void drawFrames(const Arguments &arguments) {
    const int frames = arguments.frames > 0 ? arguments.frames : kShotFrames;
    Viewer viewer(arguments.viewer);
    Shot shot;
    int drawn = 0;
    while (drawn < frames && !stopSignal) {
        ++drawn;
        const bool last = drawn == frames && !arguments.shot.empty();
        if (!viewer.frame(kFixedStep, [&] {
                if (last) shot = keltra::support::takeShot();
            }))
            return;
    }
    if (!shot.pixels.empty()) save(shot, arguments.shot);
}

// Runs until the user ends the program, at 60 frames per second at most.
void show(const Arguments &arguments) {
    using Clock = std::chrono::steady_clock;
    Viewer viewer(arguments.viewer);
    double seconds = 0.0;
    for (Clock::time_point before = Clock::now();
         !stopSignal && viewer.frame(std::min(seconds, kLongestFrame));) {
        const auto passed = [before] { return std::chrono::duration<double>(Clock::now() - before).count(); };
        const double rest = kShortestFrame - passed();
        if (rest > 0.001) SDL_Delay(static_cast<Uint32>(rest * 1000.0));
        seconds = passed();
        before = Clock::now();
    }
}

// What the engine goes on without; errors end the program with a message of their own.
void printWarning(const KTFAULT *fault, void *) {
    if (fault->severity != KT_FAULT_WARNING) return;
    char sentence[1024];
    KTFAULTS::format(fault, sentence, sizeof sentence);
    std::fprintf(stderr, "keltra-view: %s\n", sentence);
}

// Pictures need nobody who looks at the screen, so one in memory does.
void run(Arguments arguments, char **argv) {
    arguments.viewer.repeatable =
        arguments.frames > 0 || !arguments.shot.empty() || !arguments.turntable.empty();
    if (keltra::support::isWithoutDisplay()) {
        if (!arguments.viewer.repeatable)
            throw failure("no display", "only pictures are drawn without one, see --shot and --turntable");
        throw failure("no display", keltra::support::restartOnOwnScreen(argv));
    }
    KTFAULTS::setHandler(printWarning, nullptr);
    arguments.viewer.data = dataFolder();
    if (arguments.viewer.panel.empty()) arguments.viewer.panel = arguments.viewer.data + "panel.xml";
    arguments.viewer.glCalls = keltra::view::glCallsMade;
    if (!arguments.turntable.empty())
        makeTurntable(arguments);
    else if (arguments.viewer.repeatable)
        drawFrames(arguments);
    else
        show(arguments);
}

}  // namespace

int main(int argc, char **argv) {
    CLI::App app("Shows a scene or a model in the engine, with its costs", "keltra-view");
    Arguments arguments;
    describe(&app, &arguments);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError &error) {
        return app.exit(error) == 0 ? 0 : kUsage;
    }
    catchSignals();
    try {
        run(arguments, argv);
    } catch (const std::exception &error) {
        if (!stopSignal) std::fprintf(stderr, "keltra-view: %s\n", error.what());
        if (!stopSignal) return kFailed;
    }
    return stopSignal ? 128 + stopSignal : 0;
}
