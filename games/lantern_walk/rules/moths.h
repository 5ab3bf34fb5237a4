// SPDX-License-Identifier: Zlib
#ifndef KELTRA_LANTERN_WALK_MOTHS_H
#define KELTRA_LANTERN_WALK_MOTHS_H

// Moths: they come from beyond the hedges to lanterns that are lit, circle, and put them out.

#include <cstdint>

#include "games/lantern_walk/rules/evening.h"

namespace lantern_walk {

enum class MothMood { kAway, kComing, kCircling, kFleeing };

struct Moth {
    MothMood mood = MothMood::kAway;
    int lantern = 0;  // where to
    Place at;
    float left = 0.0f;  // seconds until the mood changes: away, circling, fleeing
};

/// The paper glows, and moths see it.
struct Lantern {
    Place at;
    bool isLit = false;
};

constexpr float kCirclingTime = 9.0f;

/// Plain state: a copy is a whole one.
class Moths {
   public:
    void start(const Evening &evening);
    /// Moves all on. Returns the lantern that was put out in this step; -1 for none.
    int advance(float seconds, Lantern *lanterns, int count);
    /// It flees, unless it is away already: false then.
    bool chase(int moth);
    /// The nearest one that is there; -1 when none is within the distance.
    int findNear(Place place, float within) const;
    int getCount() const { return count; }
    const Moth &get(int moth) const { return moths[moth]; }

   private:
    int choose(const Lantern *lanterns, int lanternCount);
    int advanceOne(Moth *moth, float seconds, Lantern *lanterns, int lanternCount);
    void rest(Moth *moth);
    std::uint32_t random();

    Moth moths[kMostMoths];
    int count = 0;
    std::uint32_t seed = 1;
};

}  // namespace lantern_walk

#endif
