// SPDX-License-Identifier: Zlib
// Lantern Walk: a lamplighter's boy lights the lanterns of a garden before the dusk is over.

#include <keltra/keltra.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "examples/support/example.h"
#include "games/lantern_walk/game.h"
#include "games/lantern_walk/player.h"

namespace {

struct Options {
    int frames = 0;
    std::string shot;
    bool isPlayed = false, isLandscape = false, isFilmLeftOut = false;
    lantern_walk::GameOptions game;
};

// Of runs with a given number of frames, which must repeat exactly.
constexpr float kFrameTime = 1.0f / 30.0f;
constexpr int kShotFrames = 60;

void printFault(const KTFAULT *fault, void *) {
    char sentence[1024];
    KTFAULTS::format(fault, sentence, sizeof sentence);
    std::fprintf(stderr, "%s\n", sentence);
}

void complete(Options *options) {
    if (!options->shot.empty() && options->frames == 0) options->frames = kShotFrames;
    std::string &data = options->game.data;
    if (data.empty() || data.back() != '/') data += '/';
    if (options->frames > 0 && options->game.step <= 0.0f) options->game.step = kFrameTime;
    options->game.isFilmShown = !options->isFilmLeftOut;
    // Runs that repeat exactly begin anew and leave nothing behind.
    const char *home = std::getenv("HOME");
    if (options->game.save.empty() && options->game.step <= 0.0f && !options->isPlayed && home)
        options->game.save = std::string(home) + "/.lantern_walk";
}

bool parse(int argc, char **argv, Options *options, int *exitCode) {
    // Beside the program, in the build folder as where it is installed.
    options->game.data = (std::filesystem::path(argv[0]).parent_path() / "data" / "").string();
    CLI::App app("Lantern Walk: light all lanterns before the dusk is over");
    app.add_option("--frames", options->frames, "Frames to draw; until the game is left when left out")
        ->check(CLI::Range(1, 1000000));
    app.add_option("--shot", options->shot, "Save the last frame to this PNG file");
    app.add_option("--data", options->game.data, "Folder of the game's files");
    app.add_option("--save", options->game.save, "File of the saved game");
    app.add_option("--step", options->game.step, "Seconds that each frame takes; by the clock when left out")
        ->check(CLI::Range(0.001, 1.0));
    app.add_flag("--play", options->isPlayed, "The game plays itself");
    app.add_flag("--landscape", options->isLandscape, "Turn the picture by 90 degrees");
    app.add_flag("--no-film", options->isFilmLeftOut, "Begin with the title");
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError &error) {
        *exitCode = app.exit(error);
        return false;
    }
    complete(options);
    return true;
}

bool run(const Options &options) {
    lantern_walk::Game game;
    lantern_walk::Player player;
    if (!game.start(options.game)) {
        std::fprintf(stderr, "lantern_walk: files are missing in %s\n", options.game.data.c_str());
        return false;
    }
    std::function<void(const lantern_walk::Game &, KTINPUT *)> play;
    if (options.isPlayed)
        play = [&player](const lantern_walk::Game &shown, KTINPUT *input) { player.play(shown, input); };
    for (int frame = 1; !game.isOver(); ++frame) {
        const bool last = frame == options.frames;
        bool ok = game.frame(play);
        if (ok && last && !options.shot.empty()) ok = example::saveShot(options.shot);
        ok = KELTRA::swap() && ok;
        if (!ok) {
            std::fprintf(stderr, "lantern_walk: frame %d could not be drawn\n", frame);
            return false;
        }
        if (last) break;
    }
    return true;
}

}  // namespace

int main(int argc, char **argv) {
    KTFAULTS::setHandler(printFault, nullptr);
    Options options;
    int exitCode = 0;
    if (!parse(argc, argv, &options, &exitCode)) return exitCode;
    KTSETTINGS settings;
    settings.setLandscape(options.isLandscape);
    settings.setKTEPath(options.game.data.c_str());
    settings.setKTAPath(options.game.data.c_str());
    settings.setTexturePath(options.game.data.c_str());
    settings.setFontPath(options.game.data.c_str());
    if (!KELTRA::init(&settings)) {
        std::fprintf(stderr, "lantern_walk: the engine does not start\n");
        return 1;
    }
    const bool ok = run(options);
    KELTRA::setSkybox(nullptr);
    return KELTRA::free() && ok ? 0 : 1;
}
