// SPDX-License-Identifier: Zlib
#ifndef KELTRA_LANTERN_WALK_SAVE_H
#define KELTRA_LANTERN_WALK_SAVE_H

// What is kept from one run to the next. A file holds the old or the new state whole, never a part of either.

#include <string>

#include "games/lantern_walk/rules/walk.h"

namespace lantern_walk {

struct SavedGame {
    int next = 0;               // evening that comes; kEvenings after the last
    int stars[kEvenings] = {};  // 0 for an evening that is not won yet
    bool isLandscape = false;
    bool hasWalk = false;  // left in the middle of an evening, which `walk` holds
    Snapshot walk;

    bool isBegun() const { return hasWalk || (next > 0 && next < kEvenings); }
};

/// Writes beside the file, and replaces it when all is on the disk. False, with the file as it was, when that
/// fails.
bool saveGame(const std::string &path, const SavedGame &game);
/// False, with `game` unchanged, for a file that is missing, damaged or of another version.
bool loadGame(const std::string &path, SavedGame *game);

}  // namespace lantern_walk

#endif
