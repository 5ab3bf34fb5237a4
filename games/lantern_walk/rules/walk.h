// SPDX-License-Identifier: Zlib
#ifndef KELTRA_LANTERN_WALK_WALK_H
#define KELTRA_LANTERN_WALK_WALK_H

// The rules of one evening: where the boy is and goes, his oil, the lanterns, the moths and the time that is
// left. Nothing here draws or asks a clock: what it is told and the seconds that pass decide all.

#include "games/lantern_walk/rules/evening.h"
#include "games/lantern_walk/rules/moths.h"

namespace lantern_walk {

enum class Phase { kWalking, kWon, kLost };
enum class Deed { kNone, kLight, kRefill };
enum class Event { kNone, kLit, kPutOut, kRefilled, kNoOil, kMothAway, kWon, kLost };

constexpr float kReach = 1.6f;      // how near he lights a lantern, from its post
constexpr float kLightCost = 0.2f;  // of a full lamp
constexpr float kLightTime = 1.3f;  // of the wave that lights
constexpr float kMothReach = 5.0f;

/// What happened, and to which lantern or moth.
struct Happening {
    Event event = Event::kNone;
    int index = 0;
};

/// What is kept of an evening when the game is left.
struct Snapshot {
    int evening = 0, lit = 0;  // a bit for each lantern
    float left = 0.0f, oil = 0.0f;
    Place at;
};

class Walk {
   public:
    void start(int evening);
    /// Goes on with what `snapshot` told. False, with nothing changed, for one that no evening can have.
    bool resume(const Snapshot &kept);
    Snapshot snapshot() const;

    // --- what the player asks for

    void goTo(Place place);
    /// To a lantern, which is lit then, and to the well, where the lamp is filled.
    void goToLantern(int lantern);
    void goToWell();
    /// As long as it is not (0, 0) he goes that way, whatever else he was asked; for one step.
    void steer(float x, float z);
    /// Lights the lantern or draws the oil that is in reach. False when nothing is.
    bool act();
    /// Chases a moth away; -1: the nearest one in reach.
    bool chase(int moth);

    void advance(float seconds);
    /// Takes the oldest event.
    Happening take();

    // --- how things stand

    Phase getPhase() const { return phase; }
    int getEveningNumber() const { return number; }
    const Evening &getEvening() const { return lantern_walk::getEvening(number); }
    int countLit() const;
    const Lantern &getLantern(int lantern) const { return lanterns[lantern]; }
    const Moths &getMoths() const { return moths; }
    Place getPlace() const { return at; }
    float getHeading() const { return heading; }  // degrees about y, 0 looks along +z
    float getSpeed() const { return speed; }      // units a second
    float getOil() const { return oil; }          // 0 to 1
    float getTimeLeft() const { return left; }
    Deed getDeed() const { return deed; }
    bool hasGoal() const { return goal != Goal::kNone; }
    Place getGoal() const { return goalAt; }
    /// Of an evening that is won: 1 to 3.
    int getStars() const;

   private:
    enum class Goal { kNone, kPlace, kLantern, kWell };

    void tell(Event event, int index);
    void setGoal(Goal kind, Place place);
    void move(float seconds);
    void moveBy(float x, float z, float seconds, bool isFar);
    void pushOut(const Obstacle &obstacle);
    void turnTo(float degrees, float seconds);
    void arrive();
    bool startLighting(int lantern);
    void work(float seconds);
    void end(Phase end, Event event);

    int number = 0;
    Phase phase = Phase::kWalking;
    float left = 0.0f, oil = 1.0f;
    Place at;
    float heading = 180.0f, speed = 0.0f;
    Goal goal = Goal::kNone;
    Place goalAt;
    int goalLantern = 0;
    float steerX = 0.0f, steerZ = 0.0f, steered = 0.0f, stuck = 0.0f;
    float nearest = 0.0f;  // to the goal, so far
    Deed deed = Deed::kNone;
    float deedTime = 0.0f;
    int deedLantern = 0;
    Lantern lanterns[kMostLanterns];
    Moths moths;
    static constexpr int kMostEvents = 8;
    Happening events[kMostEvents];
    int eventCount = 0;
};

}  // namespace lantern_walk

#endif
