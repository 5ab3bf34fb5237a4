// SPDX-License-Identifier: Zlib
#ifndef KELTRA_LANTERN_WALK_PLAYER_H
#define KELTRA_LANTERN_WALK_PLAYER_H

// A player that finishes the game by what any player has: the pen, the pad and the buttons. It reads how
// things stand from the rules and where they are on the screen from the view.

#include "games/lantern_walk/game.h"

namespace lantern_walk {

/// What the player uses.
enum class Means { kBoth, kPen, kKeys };

class Player {
   public:
    explicit Player(Means chosen = Means::kBoth) : means(chosen) {}
    /// Once a frame, after the events were read.
    void play(const Game &game, KTINPUT *input);
    /// How often it used the pen and keys.
    int getTaps() const { return taps; }
    int getKeys() const { return keys; }

   private:
    enum class Target { kLantern, kWell };

    void playPage(const Game &game, KTINPUT *input);
    void playWalk(const Game &game, KTINPUT *input);
    bool chase(const Game &game, KTINPUT *input);
    void choose(const Walk &walk);
    void goByPen(const Game &game, KTINPUT *input);
    void goByPad(const Walk &walk, KTINPUT *input);
    bool touch(const Game &game, R3XVECTOR3D place, KTINPUT *input);
    void press(R3XVECTOR2D point, KTINPUT *input);
    void lift(KTINPUT *input);
    void hold(KTINPUT *input, bool up, bool down, bool left, bool right);
    void strike(KTINPUT *input, int key);
    Place getTargetPlace(const Walk &walk) const;

    void goAlongByPen(const Game &game, KTINPUT *input);

    Means means;
    Screen shown = Screen::kFilm;
    Target target = Target::kLantern;
    int lantern = -1, tries = 0, taps = 0, keys = 0, struck = 0;
    int waiting = 0;  // frames until it does something again
    bool isDown = false, held[4] = {};
    int penX = 0, penY = 0;
};

}  // namespace lantern_walk

#endif
