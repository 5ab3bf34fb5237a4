// SPDX-License-Identifier: Zlib
#include "games/lantern_walk/save.h"

#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <cstring>
#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

namespace lantern_walk {
namespace {

constexpr int kVersion = 1;
constexpr std::size_t kMostBytes = 512;

std::uint32_t checksum(const char *text, std::size_t length) {
    std::uint32_t sum = 2166136261u;  // FNV-1a
    for (std::size_t i = 0; i < length; ++i) sum = (sum ^ static_cast<unsigned char>(text[i])) * 16777619u;
    return sum;
}

bool flush(std::FILE *file) {
    if (std::fflush(file) != 0) return false;
#ifdef _WIN32
    return _commit(_fileno(file)) == 0;
#else
    return fsync(fileno(file)) == 0;
#endif
}

// Numbers are written exactly: as integers, or as floats in hexadecimal.
int print(char *text, const SavedGame &game) {
    const Snapshot &walk = game.walk;
    return std::snprintf(text, kMostBytes, "lantern_walk %d\n%d %d %d %d %d %d\n%d %d %a %a %a %a\n", kVersion,
                         game.next, game.stars[0], game.stars[1], game.stars[2], game.isLandscape,
                         game.hasWalk, walk.evening, walk.lit, static_cast<double>(walk.left),
                         static_cast<double>(walk.oil), static_cast<double>(walk.at.x),
                         static_cast<double>(walk.at.z));
}

bool isPossible(const SavedGame &game) {
    if (game.next < 0 || game.next > kEvenings) return false;
    for (int stars : game.stars) {
        if (stars < 0 || stars > 3) return false;
    }
    Walk trial;
    return !game.hasWalk || trial.resume(game.walk);
}

bool scan(const char *text, SavedGame *game) {
    int version = 0, isLandscape = 0, hasWalk = 0;
    Snapshot &walk = game->walk;
    const int found = std::sscanf(text, "lantern_walk %d %d %d %d %d %d %d %d %d %a %a %a %a", &version, &game->next,
                                  &game->stars[0], &game->stars[1], &game->stars[2], &isLandscape, &hasWalk,
                                  &walk.evening, &walk.lit, &walk.left, &walk.oil, &walk.at.x, &walk.at.z);
    game->isLandscape = isLandscape != 0;
    game->hasWalk = hasWalk != 0;
    return found == 13 && version == kVersion && isPossible(*game);
}

}  // namespace

bool saveGame(const std::string &path, const SavedGame &game) {
    char text[kMostBytes + 16];
    int length = print(text, game);
    length += std::snprintf(text + length, 16, "%08" PRIx32 "\n", checksum(text, static_cast<std::size_t>(length)));
    const std::string fresh = path + ".new";
    std::FILE *file = std::fopen(fresh.c_str(), "wb");
    if (!file) return false;
    const std::size_t size = static_cast<std::size_t>(length);
    bool ok = std::fwrite(text, 1, size, file) == size && flush(file);
    ok = std::fclose(file) == 0 && ok;
#ifdef _WIN32
    if (ok) std::remove(path.c_str());  // rename does not replace there
#endif
    ok = ok && std::rename(fresh.c_str(), path.c_str()) == 0;
    if (!ok) std::remove(fresh.c_str());
    return ok;
}

bool loadGame(const std::string &path, SavedGame *game) {
    std::FILE *file = std::fopen(path.c_str(), "rb");
    if (!file) return false;
    char text[kMostBytes + 1];
    const std::size_t length = std::fread(text, 1, kMostBytes, file);
    std::fclose(file);
    const std::size_t sumLength = 9;  // eight digits and the end of the line
    if (length <= sumLength || std::memchr(text, 0, length)) return false;
    text[length] = 0;
    char sum[16];
    std::snprintf(sum, sizeof sum, "%08" PRIx32 "\n", checksum(text, length - sumLength));
    if (std::strcmp(text + length - sumLength, sum) != 0) return false;
    SavedGame read;
    if (!scan(text, &read)) return false;
    *game = read;
    return true;
}

}  // namespace lantern_walk
