// SPDX-License-Identifier: Zlib
// Frames of the examples. Their own programs run, with this file in the place of the command line.

#include <keltra/keltra.h>

#include <cstdlib>
#include <string>

#include "examples/support/example.h"
#include "tests/count/region.h"
#include "tests/count/silent.h"

int runScene(int argc, char **argv);
int runCharacter(int argc, char **argv);
int runInterface(int argc, char **argv);
int runParticles(int argc, char **argv);

namespace {

constexpr int kFrames = 24, kFirst = 5;  // the first ones upload textures

std::string folder;
const char *row = nullptr;
int frame = 0;
bool open = false;

void start() {
    if (open || ++frame < kFirst || frame >= kFrames) return;
    open = true;
    count::start(row, 1);
}

void stop() {
    if (open) count::stop();
    open = false;
}

void run(const char *name, int (*example)(int, char **), bool fromSwap) {
    row = name;
    frame = 0;
    std::srand(1);
    count::onClear = fromSwap ? nullptr : start;
    count::onSwap = stop;
    count::afterSwap = fromSwap ? start : nullptr;
    count::require(example(0, nullptr) == 0, name);
    count::onClear = count::onSwap = count::afterSwap = nullptr;
}

}  // namespace

bool example::parse(int, char **, const char *, Options *options, int *) {
    options->frames = kFrames;
    options->step = kFrameTime;
    options->data = folder;
    return true;
}

bool example::saveShot(const std::string &) { return false; }

void count::countExamples(const char *data) {
    folder = data;
    run("frame of the demo", runScene, false);
    run("frame of 20 characters", runCharacter, true);
    run("frame of 1,024 particles", runParticles, false);
    run("frame of the interface", runInterface, false);
}
