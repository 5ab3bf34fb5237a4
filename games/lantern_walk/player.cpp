// SPDX-License-Identifier: Zlib
#include "games/lantern_walk/player.h"

#include <SDL.h>

#include <cmath>

namespace lantern_walk {
namespace {

constexpr int kPatience = 6;                                   // frames between two taps
constexpr int kMostTries = 3;                                  // taps on one thing, before the pad is taken
constexpr float kBelow = 1.6f;                                 // units below a lantern: at its post
constexpr int kMostRounds = 12;                                // of looking at it from somewhere else
constexpr float kPageTime = 0.8f;                              // seconds that a page is looked at
constexpr float kSide = 14.0f, kTop = 30.0f, kBottom = 30.0f;  // of the screen, where nothing is tapped
const int kPad[4] = {SDLK_UP, SDLK_DOWN, SDLK_LEFT, SDLK_RIGHT};

}  // namespace

void Player::play(const Game &game, KTINPUT *input) {
    lift(input);
    if (game.getScreen() != shown) {
        shown = game.getScreen();
        hold(input, false, false, false, false);
        lantern = -1;
        waiting = 0;
    }
    if (waiting > 0) {
        --waiting;
    } else if (shown == Screen::kWalk) {
        playWalk(game, input);
    } else if (game.getScreenTime() > kPageTime) {
        playPage(game, input);
    }
}

// What was pressed in the last frame is let go of.
void Player::lift(KTINPUT *input) {
    if (isDown) input->putPen(penX, penY, false);
    if (struck) input->putKey(struck, 0, false);
    isDown = false;
    struck = 0;
}

// The title by pen, the others by the first button, where both may be used. The last page stays; the film
// goes by.
void Player::playPage(const Game &game, KTINPUT *input) {
    waiting = kPatience;
    const bool isByPen = means == Means::kPen || (means == Means::kBoth && shown == Screen::kTitle);
    if (shown == Screen::kEnd || !game.getPage()) return;
    if (isByPen)
        press(game.getPage()->getMiddle(0), input);
    else
        strike(input, SDLK_RETURN);
}

void Player::playWalk(const Game &game, KTINPUT *input) {
    const Walk &walk = game.getWalk();
    if (chase(game, input) || walk.getDeed() != Deed::kNone) return;
    const bool isDone =
        target == Target::kWell ? walk.getOil() > 0.9f : lantern < 0 || walk.getLantern(lantern).isLit;
    const bool isDry = target == Target::kLantern && walk.getOil() < kLightCost + 0.02f;
    if (lantern < 0 || isDone || isDry) {
        hold(input, false, false, false, false);
        choose(walk);
    }
    if (lantern < 0 && target == Target::kLantern) return;
    const bool isByPen = means == Means::kPen || (means == Means::kBoth && tries < kMostTries);
    if (isByPen ? walk.hasGoal() : means == Means::kBoth && walk.hasGoal()) return;
    if (!isByPen)
        goByPad(walk, input);
    else
        tries < kMostTries || tries % 2 ? goByPen(game, input) : goAlongByPen(game, input);
}

// A moth that is seen is tapped; for one that is near, the second button is enough.
bool Player::chase(const Game &game, KTINPUT *input) {
    const Moths &moths = game.getWalk().getMoths();
    for (int i = 0; i < moths.getCount(); ++i) {
        if (moths.get(i).mood != MothMood::kCircling) continue;
        const bool isNear = distance(moths.get(i).at, game.getWalk().getPlace()) < kMothReach;
        const bool isTouched = means != Means::kKeys && touch(game, game.getWorld().getMothPlace(i), input);
        if (!isTouched && (!isNear || means == Means::kPen)) continue;
        if (!isTouched) strike(input, SDLK_SPACE);
        waiting = kPatience;
        return true;
    }
    return false;
}

// The well when the lamp is empty, otherwise the dark lantern that is nearest.
void Player::choose(const Walk &walk) {
    tries = 0;
    lantern = -1;
    target = walk.getOil() < kLightCost + 0.02f ? Target::kWell : Target::kLantern;
    float nearest = 1000.0f;
    for (int i = 0; i < walk.getEvening().lanterns; ++i) {
        const float away = distance(walk.getPlace(), walk.getLantern(i).at);
        if (walk.getLantern(i).isLit || away >= nearest) continue;
        nearest = away;
        lantern = i;
    }
}

Place Player::getTargetPlace(const Walk &walk) const {
    return target == Target::kWell ? kWell : walk.getLantern(lantern).at;
}

void Player::goByPen(const Game &game, KTINPUT *input) {
    const R3XVECTOR3D place = target == Target::kWell
                                  ? R3XVECTOR3D(kWell.x, 0.6f, kWell.z + 1.5f)
                                  : game.getWorld().getLanternPlace(lantern) -
                                        R3XVECTOR3D(0.0f, tries % 4 == 1 ? kBelow : 0.0f, 0.0f);
    waiting = kPatience;
    const bool isShown = touch(game, place, input);
    tries = isShown || tries >= kMostTries ? (tries + 1) % kMostRounds : kMostTries;
    if (!isShown && means == Means::kBoth) goAlongByPen(game, input);  // the pad does the rest
}

// Toward what is not in view, or has something before it: to a place on the ground, now to one side, now to
// the other, and each time farther; then it is tapped again.
void Player::goAlongByPen(const Game &game, KTINPUT *input) {
    const Place goal = getTargetPlace(game.getWalk()), at = game.getWalk().getPlace();
    const float way = 1.0f + 0.5f * static_cast<float>(tries - kMostTries);
    const float side = tries % 4 < 2 ? way : -way;
    waiting = kPatience;
    ++tries;
    for (float part = 1.0f; part > 0.05f; part -= 0.1f) {
        const R3XVECTOR3D ground(at.x + part * (goal.x - at.x) + side, 0.0f,
                                 at.z + part * (goal.z + 1.5f - at.z));
        if (touch(game, ground, input)) return;
    }
}

void Player::goByPad(const Walk &walk, KTINPUT *input) {
    const Place goal = getTargetPlace(walk), at = walk.getPlace();
    const float x = goal.x - at.x, z = goal.z - at.z;
    const float reach = target == Target::kWell ? kWellRadius + 0.8f : kReach;
    if (distance(goal, at) < reach) {
        hold(input, false, false, false, false);
        strike(input, SDLK_RETURN);
        waiting = kPatience;
        return;
    }
    const bool isAcross = std::fabs(x) > 0.4f * std::fabs(z), isAlong = std::fabs(z) > 0.4f * std::fabs(x);
    hold(input, isAlong && z < 0.0f, isAlong && z > 0.0f, isAcross && x < 0.0f, isAcross && x > 0.0f);
}

// False when the place is not on the part of the screen that the interface leaves free.
bool Player::touch(const Game &game, R3XVECTOR3D place, KTINPUT *input) {
    R3XVECTOR2D point;
    const R3XVECTOR2D size = getScreenSize();
    if (!game.getWorld().getView().toScreen(place, &point)) return false;
    if (point.x < kSide || point.x > size.x - kSide || point.y < kTop || point.y > size.y - kBottom)
        return false;
    press(point, input);
    return true;
}

void Player::press(R3XVECTOR2D point, KTINPUT *input) {
    penX = static_cast<int>(point.x);
    penY = static_cast<int>(point.y);
    if (KTSETTINGS::isSDLLandscape()) {
        // From the turned picture to pixels of the window.
        const int across = penX;
        penX = penY;
        penY = KTSETTINGS::getSDLWindowY() - across;
    }
    input->putPen(penX, penY, true);
    isDown = true;
    ++taps;
}

void Player::hold(KTINPUT *input, bool up, bool down, bool left, bool right) {
    const bool wanted[4] = {up, down, left, right};
    for (int i = 0; i < 4; ++i) {
        if (wanted[i] == held[i]) continue;
        input->putKey(kPad[i], 0, wanted[i]);
        held[i] = wanted[i];
        keys += wanted[i];
    }
}

void Player::strike(KTINPUT *input, int key) {
    input->putKey(key, 0, true);
    struck = key;
    ++keys;
}

}  // namespace lantern_walk
