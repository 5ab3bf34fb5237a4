// SPDX-License-Identifier: Zlib
#include "examples/support/example.h"

#include <keltra/fault.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <filesystem>

#include "tools/support/shot.h"

namespace example {
namespace {

constexpr int kShotFrames = 60;

void printFault(const KTFAULT *fault, void *) {
    char sentence[1024];
    KTFAULTS::format(fault, sentence, sizeof sentence);
    std::fprintf(stderr, "%s\n", sentence);
}

}  // namespace

bool parse(int argc, char **argv, const char *description, Options *options, int *exitCode) {
    KTFAULTS::setHandler(printFault, nullptr);
    // Beside the program, in the build folder as where it is installed.
    options->data = (std::filesystem::path(argv[0]).parent_path() / "data" / "").string();
    CLI::App app(description);
    app.add_option("--frames", options->frames, "Frames to draw; until the window is closed when left out")
        ->check(CLI::Range(1, 1000000));
    app.add_option("--shot", options->shot, "Save the last frame to this PNG file");
    app.add_option("--data", options->data, "Folder of the sample files");
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError &error) {
        *exitCode = app.exit(error);
        return false;
    }
    if (!options->shot.empty() && options->frames == 0) options->frames = kShotFrames;
    options->step = options->frames > 0 ? kFrameTime : 0.0f;
    if (options->data.empty() || options->data.back() != '/') options->data += '/';
    return true;
}

bool saveShot(const std::string &path) {
    std::string reason;
    if (!keltra::support::saveShot(keltra::support::takeShot(), path, &reason)) {
        std::fprintf(stderr, "cannot write %s: %s\n", path.c_str(), reason.c_str());
        return false;
    }
    std::printf("picture: %s\n", path.c_str());
    return true;
}

}  // namespace example
