// SPDX-License-Identifier: Zlib
#include "games/lantern_walk/save.h"

#include <keltra/foundation.h>
#include <keltra/kit/save.h>

namespace lantern_walk {
namespace {

constexpr unsigned kVersion = 1;
const char *const kStars[kEvenings] = {"stars1", "stars2", "stars3"};

// What no run of this game has written is not believed, whatever the checksum says.
bool isPossible(const SavedGame &game) {
    if (game.next < 0 || game.next > kEvenings) return false;
    for (int stars : game.stars) {
        if (stars < 0 || stars > 3) return false;
    }
    Walk trial;
    return !game.hasWalk || trial.resume(game.walk);
}

}  // namespace

bool saveGame(const std::string &path, const SavedGame &game) {
    KTSAVE save(kVersion);
    bool ok = save.setInt("next", game.next) && save.setInt("landscape", game.isLandscape) &&
              save.setInt("walk", game.hasWalk);
    for (int i = 0; i < kEvenings; ++i) ok = ok && save.setInt(kStars[i], game.stars[i]);
    ok = ok && save.setInt("evening", game.walk.evening) && save.setInt("lit", game.walk.lit) &&
         save.setFloat("left", game.walk.left) && save.setFloat("oil", game.walk.oil) &&
         save.setFloat("x", game.walk.at.x) && save.setFloat("z", game.walk.at.z);
    return ok && save.write(path.c_str());
}

bool loadGame(const std::string &path, SavedGame *game) {
    KTSAVE save(kVersion);
    if (!vnfFileExists(path.c_str()) || !save.read(path.c_str())) return false;
    SavedGame read;
    read.next = save.getInt("next");
    read.isLandscape = save.getInt("landscape") != 0;
    read.hasWalk = save.getInt("walk") != 0;
    for (int i = 0; i < kEvenings; ++i) read.stars[i] = save.getInt(kStars[i]);
    read.walk.evening = save.getInt("evening");
    read.walk.lit = save.getInt("lit");
    read.walk.left = save.getFloat("left");
    read.walk.oil = save.getFloat("oil");
    read.walk.at.x = save.getFloat("x");
    read.walk.at.z = save.getFloat("z");
    if (!isPossible(read)) return false;
    *game = read;
    return true;
}

}  // namespace lantern_walk
