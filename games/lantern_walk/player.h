// SPDX-License-Identifier: Zlib
#ifndef KELTRA_LANTERN_WALK_PLAYER_H
#define KELTRA_LANTERN_WALK_PLAYER_H

// A player that finishes the game by what any player has: the pen, the pad and the buttons. It reads how
// things stand from the rules and where they are on the screen from the view.

#include "games/lantern_walk/game.h"

namespace lantern_walk {

/// What the player uses.
enum class Means { kBoth, kPen, kKeys };

/// How quick it is, and what it knows.
struct Habits {
    int patience = 6;         // frames from one deed to the next
    float pageTime = 0.8f;    // seconds that a page is looked at
    float hintTime = 0.0f;    // seconds at the beginning of an evening
    bool knowsGarden = true;  // otherwise only what it has seen in this evening
};

class Player {
   public:
    explicit Player(Means chosen = Means::kBoth, Habits own = Habits()) : means(chosen), habits(own) {}
    /// Somebody who plays for the first time, by pen, ten frames a second: reads each page, thinks for a
    /// second before each deed, and looks for the lanterns.
    static Player newcomer();
    /// Once a frame, after the events were read.
    void play(const Game &game, KTINPUT *input);
    /// How often it used the pen and keys.
    int getTaps() const { return taps; }
    int getKeys() const { return keys; }

   private:
    enum class Target { kLantern, kWell, kPlace };

    void playPage(const Game &game, KTINPUT *input);
    void playWalk(const Game &game, KTINPUT *input);
    bool chase(const Game &game, KTINPUT *input);
    void choose(const Walk &walk);
    void look(const Game &game);
    bool knowsNext(const Walk &walk) const;
    void goByPen(const Game &game, KTINPUT *input);
    void goAlongByPen(const Game &game, KTINPUT *input);
    void lead(const Game &game, KTINPUT *input);
    void stopLeading(KTINPUT *input);
    void goByPad(const Walk &walk, KTINPUT *input);
    static bool find(const Game &game, R3XVECTOR3D place, R3XVECTOR2D *point);
    bool touch(const Game &game, R3XVECTOR3D place, KTINPUT *input);
    void press(R3XVECTOR2D point, KTINPUT *input);
    void putPen(R3XVECTOR2D point, KTINPUT *input);
    void lift(KTINPUT *input);
    void hold(KTINPUT *input, bool up, bool down, bool left, bool right);
    void strike(KTINPUT *input, int key);
    Place getTargetPlace(const Walk &walk) const;
    R3XVECTOR3D getTapPlace(const Game &game) const;

    Means means;
    Habits habits;
    bool seen[kMostLanterns] = {}, hasSeenWell = false;
    int evening = -1;
    int stage = 0;  // of the way along which it looks for lanterns
    Screen shown = Screen::kFilm;
    Target target = Target::kLantern;
    int lantern = -1, tries = 0, taps = 0, keys = 0, struck = 0;
    int waiting = 0;  // frames until it does something again
    bool isDown = false, isLeading = false, held[4] = {};
    int penX = 0, penY = 0;
};

}  // namespace lantern_walk

#endif
