// SPDX-License-Identifier: Zlib
// Frames of Lantern Walk, from what the player asked for to the end of the swap: engine, kit and game.

#include <SDL.h>
#include <keltra/keltra.h>

#include <cstdio>
#include <cstdlib>

#include "games/lantern_walk/player.h"
#include "tests/count/region.h"
#include "tests/count/silent.h"

namespace {

constexpr float kStep = 1.0f / 15.0f;
constexpr int kFirst = 8, kFrames = 30;  // the first ones upload textures
constexpr int kMostFrames = 2600;        // of an evening

using lantern_walk::Game;
using lantern_walk::GameOptions;
using lantern_walk::SavedGame;
using lantern_walk::Screen;

void run(Game *game, const std::function<void(const Game &, KTINPUT *)> &play) {
    count::require(game->frame(play) && KELTRA::swap(), "frame of the game");
}

// Goes on with what was saved.
void begin(Game *game, const char *data, const SavedGame &saved) {
    const char *const file = "/tmp/keltra_count.sav";
    GameOptions options;
    options.data = data;
    options.save = file;
    options.step = kStep;
    options.isFilmShown = false;
    count::require(lantern_walk::saveGame(file, saved) && game->start(options), "start of the game");
    std::remove(file);
    std::srand(1);
    for (int start : {SDLK_RIGHT, SDLK_RETURN}) {  // to "Continue"
        run(game, [start](const Game &, KTINPUT *input) { input->putKey(start, 0, true); });
        run(game, [start](const Game &, KTINPUT *input) { input->putKey(start, 0, false); });
    }
    count::require(game->getScreen() == Screen::kWalk, "a walk");
}

// Goes on with a walk; `key` is struck or held in each frame that counts. Returns how it stands then.
lantern_walk::Snapshot countFrames(const char *row, const char *data, const lantern_walk::Snapshot &walk,
                                   int key, bool isHeld) {
    SavedGame saved;
    saved.hasWalk = true;
    saved.walk = walk;
    Game game;
    begin(&game, data, saved);
    for (int frame = 0; frame < kFirst + kFrames; ++frame) {
        const bool counts = frame >= kFirst;
        run(&game, [=](const Game &, KTINPUT *input) {
            if (frame == kFirst) input->putKey(key, 0, true);
            if (frame == kFirst + 1 && !isHeld) input->putKey(key, 0, false);
            if (counts) count::start(row, 1, count::Kind::kGame);
        });
        if (counts) count::stop();
    }
    count::require(game.getScreen() == Screen::kWalk, "still a walk");
    return game.getWalk().snapshot();
}

// Every frame of the third evening, until the player has won it by keys; no picture is drawn that could be
// tapped.
void countEvening(const char *row, const char *data) {
    SavedGame saved;
    saved.stars[0] = saved.stars[1] = 1;
    saved.next = 2;
    Game game;
    begin(&game, data, saved);
    lantern_walk::Player player(lantern_walk::Means::kKeys);
    for (int frame = 0; frame < kMostFrames && game.getScreen() == Screen::kWalk; ++frame) {
        run(&game, [&](const Game &shown, KTINPUT *input) {
            player.play(shown, input);
            count::start(row, 1, count::Kind::kGame);
        });
        count::stop();
    }
    count::require(game.getScreen() == Screen::kWon && game.getWalk().getEveningNumber() == 2,
                   "the third evening was won");
}

}  // namespace

void count::countGame(const char *data) {
    KTSETTINGS settings;
    settings.setKTEPath(data);
    settings.setKTAPath(data);
    settings.setTexturePath(data);
    settings.setFontPath(data);
    lantern_walk::Snapshot walk;
    walk.evening = 2;
    walk.lit = 0x2db;
    walk.left = 60.0f;
    walk.oil = 0.55f;
    walk.at = {0.2f, 8.0f};
    count::require(KELTRA::init(&settings), "start of the engine");
    lantern_walk::Snapshot end = countFrames("frame of the game, walking", data, walk, SDLK_UP, true);
    count::require(end.at.z < walk.at.z - 5.0f, "a walk along the garden");
    count::require(KELTRA::free() && KELTRA::init(&settings), "start of the engine");
    walk.at = {2.4f, 5.6f};  // before a dark lantern, with most of the others lit
    walk.lit = 0x2fd;
    end = countFrames("frame of the game, lighting", data, walk, SDLK_RETURN, false);
    count::require(end.lit == 0x2ff, "a lantern that was lit");
    count::require(KELTRA::free() && KELTRA::init(&settings), "start of the engine");
    countEvening("frame of the game, an evening", data);
    count::require(KELTRA::free(), "end of the engine");
}
