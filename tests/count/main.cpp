// SPDX-License-Identifier: Zlib
// keltra_count FOLDER GAME: does each operation of the table a number of times, under qemu-arm with
// tests/count/plugin.c. FOLDER and GAME, with a slash at their ends, hold the files of the examples and of
// the game.

#include <keltra/keltra.h>

#include <cstdio>
#include <cstdlib>

#include "tests/count/region.h"

// The marker comes last: only the return from here counts, the same for every row.
void count::start(const char *row, unsigned int operations, Kind kind) {
    static const char *const names[] = {"frame", "load", "game"};
    std::printf("%s\t%u\t%s\n", row, operations, names[static_cast<int>(kind)]);
    std::fflush(stdout);
    asm volatile("orr r11, r11, r11" ::: "memory");
}

void count::require(bool right, const char *what) {
    if (right) return;
    std::fprintf(stderr, "keltra_count: wrong result: %s\n", what);
    std::exit(1);
}

int main(int argc, char **argv) {
    if (argc != 3) return 2;
    const char *data = argv[1];
    // The examples start the engine themselves.
    count::countExamples(data);
    count::countGame(argv[2]);
    KTSETTINGS settings;
    settings.setKTEPath(data);
    settings.setKTAPath(data);
    settings.setTexturePath(data);
    settings.setFontPath(data);
    count::require(KELTRA::init(&settings), "start of the engine");
    count::countMath();
    count::countPass();
    count::countLights();
    count::countDrawing();
    count::countSkins();
    count::countParticles();
    count::countWidgets();
    count::countLists();
    count::countAnimation(data);
    count::countLoading(data);
    return KELTRA::free() ? 0 : 1;
}
