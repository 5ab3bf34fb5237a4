// SPDX-License-Identifier: Zlib
#include "games/lantern_walk/rules/moths.h"

namespace lantern_walk {
namespace {

constexpr float kSpeed = 2.2f, kFleeingSpeed = 5.0f;
constexpr float kNear = 0.4f;
constexpr float kFleeingTime = 2.5f, kShortestRest = 8.0f, kBetween = 12.0f;

// Moves toward a place; true when it is there.
bool approach(Place *at, Place goal, float step) {
    const float left = distance(*at, goal);
    if (left <= step || left <= kNear) return true;
    at->x += (goal.x - at->x) * step / left;
    at->z += (goal.z - at->z) * step / left;
    return false;
}

}  // namespace

void Moths::start(const Evening &evening) {
    count = evening.moths;
    seed = 7u + static_cast<std::uint32_t>(evening.lanterns);
    for (int i = 0; i < kMostMoths; ++i) {
        moths[i] = Moth();
        moths[i].left = evening.firstMoth + kBetween * static_cast<float>(i);
    }
}

int Moths::advance(float seconds, Lantern *lanterns, int lanternCount) {
    int putOut = -1;
    for (int i = 0; i < count; ++i) {
        const int lantern = advanceOne(&moths[i], seconds, lanterns, lanternCount);
        if (lantern >= 0) putOut = lantern;
    }
    return putOut;
}

int Moths::advanceOne(Moth *moth, float seconds, Lantern *lanterns, int lanternCount) {
    moth->left -= seconds;
    switch (moth->mood) {
        case MothMood::kAway:
            if (moth->left > 0.0f) return -1;
            moth->lantern = choose(lanterns, lanternCount);
            if (moth->lantern < 0) return -1;
            moth->at.x = random() % 2 ? kWestEnd - 4.0f : kEastEnd + 4.0f;
            moth->at.z = lanterns[moth->lantern].at.z - 3.0f;
            moth->mood = MothMood::kComing;
            return -1;
        case MothMood::kComing:
            if (!lanterns[moth->lantern].isLit) {
                rest(moth);
            } else if (approach(&moth->at, lanterns[moth->lantern].at, kSpeed * seconds)) {
                moth->mood = MothMood::kCircling;
                moth->left = kCirclingTime;
            }
            return -1;
        case MothMood::kCircling: {
            if (lanterns[moth->lantern].isLit && moth->left > 0.0f) return -1;
            const bool putsOut = lanterns[moth->lantern].isLit;
            lanterns[moth->lantern].isLit = false;
            moth->mood = MothMood::kFleeing;
            moth->left = kFleeingTime;
            return putsOut ? moth->lantern : -1;
        }
        case MothMood::kFleeing:
            approach(&moth->at, {moth->at.x < 0.0f ? 2.0f * kWestEnd : 2.0f * kEastEnd, moth->at.z - 4.0f},
                     kFleeingSpeed * seconds);
            if (moth->left <= 0.0f) rest(moth);
            return -1;
    }
    return -1;
}

bool Moths::chase(int moth) {
    if (moth < 0 || moth >= count) return false;
    if (moths[moth].mood != MothMood::kComing && moths[moth].mood != MothMood::kCircling) return false;
    moths[moth].mood = MothMood::kFleeing;
    moths[moth].left = kFleeingTime;
    return true;
}

int Moths::findNear(Place place, float within) const {
    int nearest = -1;
    for (int i = 0; i < count; ++i) {
        if (moths[i].mood != MothMood::kComing && moths[i].mood != MothMood::kCircling) continue;
        const float away = distance(moths[i].at, place);
        if (away > within) continue;
        within = away;
        nearest = i;
    }
    return nearest;
}

// A lit lantern, -1 when all are dark.
int Moths::choose(const Lantern *lanterns, int lanternCount) {
    int lit = 0;
    for (int i = 0; i < lanternCount; ++i) lit += lanterns[i].isLit;
    if (lit == 0) return -1;
    int nth = static_cast<int>(random() % static_cast<std::uint32_t>(lit));
    for (int i = 0; i < lanternCount; ++i) {
        if (lanterns[i].isLit && nth-- == 0) return i;
    }
    return -1;
}

void Moths::rest(Moth *moth) {
    moth->mood = MothMood::kAway;
    moth->left = kShortestRest + static_cast<float>(random() % 8u);
}

// A run repeats exactly: numbers of its own, not those of `rand`, which emitters use.
std::uint32_t Moths::random() {
    seed = seed * 1664525u + 1013904223u;
    return seed >> 16;
}

}  // namespace lantern_walk
