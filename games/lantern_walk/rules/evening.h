// SPDX-License-Identifier: Zlib
#ifndef KELTRA_LANTERN_WALK_EVENING_H
#define KELTRA_LANTERN_WALK_EVENING_H

// The garden as the rules know it: where things stand, and what differs from evening to evening. Sizes are
// units of the models, times seconds.

namespace lantern_walk {

struct Place {
    float x = 0.0f, z = 0.0f;
};

struct Obstacle {
    Place at;
    float radius;
};

constexpr int kEvenings = 3;
constexpr int kMostLanterns = 10;
constexpr int kMostMoths = 3;

struct Evening {
    float dusk;  // how long it lasts
    int lanterns, moths;
    float firstMoth;  // when it comes
    Place start;
    Place lantern[kMostLanterns];  // of the posts
};

/// Of 0 to 2; others count as the nearest.
const Evening &getEvening(int number);

constexpr Place kWell = {4.9f, -1.6f};
constexpr float kWellRadius = 1.9f;
constexpr float kWestEnd = -8.9f, kEastEnd = 8.9f, kNorthEnd = -13.9f, kSouthEnd = 10.5f;

constexpr int kObstacles = 7;
/// The well and the stones. Posts are obstacles too.
const Obstacle &getObstacle(int index);

float distance(Place one, Place other);

}  // namespace lantern_walk

#endif
