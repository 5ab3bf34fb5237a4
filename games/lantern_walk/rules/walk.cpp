// SPDX-License-Identifier: Zlib
#include "games/lantern_walk/rules/walk.h"

#include <algorithm>
#include <cmath>

namespace lantern_walk {
namespace {

constexpr float kWalkingSpeed = 2.4f, kRunningSpeed = 4.2f, kAcceleration = 9.0f;
constexpr float kRunFrom = 3.5f;    // units that are left
constexpr float kRunAfter = 0.6f;   // seconds of steering
constexpr float kTurning = 540.0f;  // degrees a second
constexpr float kWalkingCost = 0.004f;
constexpr float kFilling = 0.7f;  // of a lamp a second
constexpr float kLitAfter = 0.7f;
constexpr float kWellReach = kWellRadius + 1.0f;
constexpr float kPostRadius = 0.6f, kInFront = 1.2f;
constexpr float kStuckFor = 0.8f, kProgress = 0.1f;
constexpr float kDegrees = 57.29578f;

}  // namespace

void Walk::start(int evening) {
    *this = Walk();
    number = std::clamp(evening, 0, kEvenings - 1);
    const Evening &layout = getEvening();
    left = layout.dusk;
    at = layout.start;
    for (int i = 0; i < layout.lanterns; ++i) lanterns[i].at = layout.lantern[i];
    moths.start(layout);
}

bool Walk::resume(const Snapshot &kept) {
    if (kept.evening < 0 || kept.evening >= kEvenings) return false;
    const Evening &layout = lantern_walk::getEvening(kept.evening);
    const int all = (1 << layout.lanterns) - 1;
    const bool isInside =
        kept.at.x >= kWestEnd && kept.at.x <= kEastEnd && kept.at.z >= kNorthEnd && kept.at.z <= kSouthEnd;
    if (kept.lit < 0 || kept.lit > all || !isInside) return false;
    if (!(kept.left > 0.0f && kept.left <= layout.dusk && kept.oil >= 0.0f && kept.oil <= 1.0f)) return false;
    start(kept.evening);
    left = kept.left;
    oil = kept.oil;
    at = kept.at;
    for (int i = 0; i < layout.lanterns; ++i) lanterns[i].isLit = (kept.lit >> i & 1) != 0;
    return true;
}

Snapshot Walk::snapshot() const {
    Snapshot kept;
    kept.evening = number;
    kept.left = left;
    kept.oil = oil;
    kept.at = at;
    for (int i = 0; i < getEvening().lanterns; ++i) kept.lit |= lanterns[i].isLit ? 1 << i : 0;
    return kept;
}

void Walk::setGoal(Goal kind, Place place) {
    if (deed == Deed::kRefill) deed = Deed::kNone;
    goal = kind;
    goalAt.x = std::clamp(place.x, kWestEnd, kEastEnd);
    goalAt.z = std::clamp(place.z, kNorthEnd, kSouthEnd);
    nearest = distance(at, goalAt) + 2.0f * kProgress;
    stuck = 0.0f;
}

void Walk::goTo(Place place) { setGoal(Goal::kPlace, place); }

void Walk::goToLantern(int lantern) {
    if (lantern < 0 || lantern >= getEvening().lanterns) return;
    goalLantern = lantern;
    // To the viewer's side of it, where the lantern does not hide him.
    setGoal(Goal::kLantern, {lanterns[lantern].at.x, lanterns[lantern].at.z + kInFront});
}

void Walk::goToWell() { setGoal(Goal::kWell, kWell); }

void Walk::steer(float x, float z) { steerX = x, steerZ = z; }

bool Walk::act() {
    if (deed != Deed::kNone || phase != Phase::kWalking) return false;
    int nearest = -1;
    float within = kReach + 0.6f;
    for (int i = 0; i < getEvening().lanterns; ++i) {
        const float away = distance(at, lanterns[i].at);
        if (lanterns[i].isLit || away > within) continue;
        within = away;
        nearest = i;
    }
    if (nearest >= 0) return startLighting(nearest);
    if (distance(at, kWell) > kWellReach + 0.4f) return false;
    goal = Goal::kNone;
    deed = Deed::kRefill;
    return true;
}

bool Walk::chase(int moth) {
    if (moth < 0) moth = moths.findNear(at, kMothReach);
    if (!moths.chase(moth)) return false;
    tell(Event::kMothAway, moth);
    return true;
}

void Walk::advance(float seconds) {
    if (phase != Phase::kWalking) return;
    left -= seconds;
    if (deed == Deed::kLight) {
        work(seconds);
    } else {
        move(seconds);
        if (deed == Deed::kRefill) work(seconds);
    }
    steerX = steerZ = 0.0f;
    const int putOut = moths.advance(seconds, lanterns, getEvening().lanterns);
    if (putOut >= 0) tell(Event::kPutOut, putOut);
    if (deed != Deed::kLight && countLit() == getEvening().lanterns) return end(Phase::kWon, Event::kWon);
    if (left <= 0.0f) end(Phase::kLost, Event::kLost);
}

void Walk::move(float seconds) {
    if (steerX != 0.0f || steerZ != 0.0f) {
        goal = Goal::kNone;
        deed = Deed::kNone;
        steered += seconds;
        moveBy(steerX, steerZ, seconds, steered > kRunAfter);
        return;
    }
    steered = 0.0f;
    const float away = distance(at, goalAt);
    const float near = goal == Goal::kLantern ? 0.3f : goal == Goal::kWell ? kWellReach : 0.15f;
    if (goal == Goal::kNone) {
        speed = std::max(0.0f, speed - 2.0f * kAcceleration * seconds);
    } else if (away <= near || stuck > kStuckFor) {
        arrive();
    } else {
        const float wanted = std::min(seconds, (away - 0.5f * near) / kWalkingSpeed);
        moveBy(goalAt.x - at.x, goalAt.z - at.z, wanted, away > kRunFrom);
        // Something stands where he was sent to, or in the way, and he comes no nearer: he stops in front of
        // it.
        stuck += seconds;
        if (away < nearest - kProgress) {
            nearest = away;
            stuck = 0.0f;
        }
    }
}

void Walk::moveBy(float x, float z, float seconds, bool isFar) {
    const float length = std::sqrt(x * x + z * z);
    if (!(length > 0.0f)) return;
    const float wanted = isFar ? kRunningSpeed : kWalkingSpeed;
    speed += std::clamp(wanted - speed, -kAcceleration * seconds, kAcceleration * seconds);
    turnTo(std::atan2(x, z) * kDegrees, seconds);
    at.x += x / length * speed * seconds;
    at.z += z / length * speed * seconds;
    oil = std::max(0.0f, oil - kWalkingCost * seconds);
    for (int i = 0; i < kObstacles; ++i) pushOut(getObstacle(i));
    for (int i = 0; i < getEvening().lanterns; ++i) pushOut({lanterns[i].at, kPostRadius});
    at.x = std::clamp(at.x, kWestEnd, kEastEnd);
    at.z = std::clamp(at.z, kNorthEnd, kSouthEnd);
}

// Out of the circle, and a little around it, so that he comes past what stands in the way.
void Walk::pushOut(const Obstacle &obstacle) {
    const float x = at.x - obstacle.at.x, z = at.z - obstacle.at.z;
    const float away = std::sqrt(x * x + z * z);
    if (away >= obstacle.radius) return;
    if (away < 0.01f) {
        at.x += obstacle.radius;
        return;
    }
    const float sine = std::sin(heading / kDegrees), cosine = std::cos(heading / kDegrees);
    const float side = sine * z - cosine * x >= 0.0f ? -0.04f : 0.04f;
    const float scale = obstacle.radius / away;
    at.x = obstacle.at.x + (x - side * z) * scale;
    at.z = obstacle.at.z + (z + side * x) * scale;
}

void Walk::turnTo(float degrees, float seconds) {
    const float turn = std::remainder(degrees - heading, 360.0f);
    heading = std::remainder(heading + std::clamp(turn, -kTurning * seconds, kTurning * seconds), 360.0f);
}

void Walk::arrive() {
    const Goal reached = goal;
    const bool isThere = stuck <= kStuckFor;
    goal = Goal::kNone;
    stuck = 0.0f;
    if (!isThere) return;
    if (reached == Goal::kLantern && !lanterns[goalLantern].isLit) startLighting(goalLantern);
    if (reached == Goal::kWell) deed = Deed::kRefill;
}

bool Walk::startLighting(int lantern) {
    if (oil < kLightCost) {
        tell(Event::kNoOil, lantern);
        return false;
    }
    goal = Goal::kNone;
    speed = 0.0f;
    deed = Deed::kLight;
    deedTime = 0.0f;
    deedLantern = lantern;
    return true;
}

void Walk::work(float seconds) {
    speed = std::max(0.0f, speed - 2.0f * kAcceleration * seconds);
    if (deed == Deed::kRefill) {
        turnTo(std::atan2(kWell.x - at.x, kWell.z - at.z) * kDegrees, seconds);
        oil = std::min(1.0f, oil + kFilling * seconds);
        if (oil < 1.0f) return;
        deed = Deed::kNone;
        tell(Event::kRefilled, 0);
        return;
    }
    Lantern &lantern = lanterns[deedLantern];
    turnTo(std::atan2(lantern.at.x - at.x, lantern.at.z - at.z) * kDegrees, seconds);
    deedTime += seconds;
    if (deedTime >= kLitAfter && deedTime - seconds < kLitAfter) {
        lantern.isLit = true;
        oil = std::max(0.0f, oil - kLightCost);
        tell(Event::kLit, deedLantern);
    }
    if (deedTime >= kLightTime) deed = Deed::kNone;
}

void Walk::end(Phase how, Event event) {
    phase = how;
    goal = Goal::kNone;
    deed = Deed::kNone;
    speed = 0.0f;
    tell(event, number);
}

int Walk::countLit() const {
    int lit = 0;
    for (int i = 0; i < getEvening().lanterns; ++i) lit += lanterns[i].isLit;
    return lit;
}

int Walk::getStars() const {
    if (phase != Phase::kWon) return 0;
    const float part = left / getEvening().dusk;
    return part > 0.5f ? 3 : part > 0.25f ? 2 : 1;
}

void Walk::tell(Event event, int index) {
    if (eventCount == kMostEvents) return;
    events[eventCount].event = event;
    events[eventCount].index = index;
    ++eventCount;
}

Happening Walk::take() {
    if (eventCount == 0) return Happening();
    const Happening oldest = events[0];
    --eventCount;
    for (int i = 0; i < eventCount; ++i) events[i] = events[i + 1];
    return oldest;
}

}  // namespace lantern_walk
