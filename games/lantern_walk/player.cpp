// SPDX-License-Identifier: Zlib
#include "games/lantern_walk/player.h"

#include <SDL.h>

#include <algorithm>
#include <cmath>
#include <iterator>

namespace lantern_walk {
namespace {

constexpr int kMostTries = 3;                                  // taps on one thing, before the pad is taken
constexpr float kBelow = 1.6f;                                 // units below a lantern: at its post
constexpr float kThere = 0.7f, kBeside = 1.4f;                 // of a lantern that he is led to; of the well
constexpr float kSide = 14.0f, kTop = 30.0f, kBottom = 30.0f;  // of the screen, where nothing is tapped
// To and fro through the garden, from its south to its north.
constexpr Place kTour[] = {{0.0f, 8.0f},   {6.0f, 7.5f},   {6.5f, 2.0f},    {-5.0f, 5.0f},
                           {-6.0f, 0.0f},  {1.0f, -3.0f},  {6.5f, -5.5f},   {0.0f, -7.0f},
                           {-6.0f, -8.0f}, {5.5f, -10.5f}, {-3.0f, -11.0f}, {0.0f, -3.0f}};
constexpr int kPad[4] = {SDLK_UP, SDLK_DOWN, SDLK_LEFT, SDLK_RIGHT};

bool isDry(const Walk &walk) { return walk.getOil() < kLightCost + 0.02f; }

}  // namespace

Player Player::newcomer() {
    Habits habits;
    habits.patience = 10;
    habits.pageTime = 4.0f;
    habits.hintTime = 3.0f;
    habits.knowsGarden = false;
    return Player(Means::kPen, habits);
}

void Player::play(const Game &game, KTINPUT *input) {
    lift(input);
    if (shown == Screen::kWalk) look(game);
    if (game.getScreen() != shown) {
        shown = game.getScreen();
        stopLeading(input);
        hold(input, false, false, false, false);
        lantern = -1;
        waiting = 0;
        stage = 0;
    }
    if (waiting > 0) {
        --waiting;
    } else if (shown == Screen::kWalk) {
        if (game.getScreenTime() > habits.hintTime) playWalk(game, input);
    } else if (game.getScreenTime() > habits.pageTime) {
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
    waiting = habits.patience;
    const bool isByPen = means == Means::kPen || (means == Means::kBoth && shown == Screen::kTitle);
    if (shown == Screen::kEnd || !game.getPage()) return;
    if (isByPen)
        press(game.getPage()->getMiddle(0), input);
    else
        strike(input, SDLK_RETURN);
}

void Player::playWalk(const Game &game, KTINPUT *input) {
    const Walk &walk = game.getWalk();
    if (isLeading) {
        lead(game, input);
        return;
    }
    if (chase(game, input) || walk.getDeed() != Deed::kNone) return;
    const bool isDone =
        target == Target::kWell ? walk.getOil() > 0.9f : lantern < 0 || walk.getLantern(lantern).isLit;
    if (lantern < 0 || isDone || (target == Target::kLantern && isDry(walk))) {
        hold(input, false, false, false, false);
        choose(walk);
    }
    if (lantern < 0 && target == Target::kLantern) return;
    if (means != Means::kKeys && walk.hasGoal()) return;
    if (means != Means::kKeys && tries < kMostTries)
        goByPen(game, input);
    else if (means == Means::kPen)
        lead(game, input);
    else
        goByPad(walk, input);
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
        waiting = habits.patience;
        return true;
    }
    return false;
}

// What it has seen: lanterns and the well, where they are on the screen.
void Player::look(const Game &game) {
    const Walk &walk = game.getWalk();
    R3XVECTOR2D point;
    if (walk.getEveningNumber() != evening) std::fill(std::begin(seen), std::end(seen), habits.knowsGarden);
    evening = walk.getEveningNumber();  // one that is tried again is remembered
    for (int i = 0; i < walk.getEvening().lanterns; ++i)
        seen[i] = seen[i] || find(game, game.getWorld().getLanternPlace(i), &point);
    hasSeenWell = hasSeenWell || habits.knowsGarden || find(game, {kWell.x, 0.6f, kWell.z}, &point);
    if (target == Target::kPlace && distance(walk.getPlace(), kTour[stage]) < 1.5f)
        stage = (stage + 1) % static_cast<int>(std::size(kTour));
}

bool Player::knowsNext(const Walk &walk) const {
    if (isDry(walk)) return hasSeenWell;
    for (int i = 0; i < walk.getEvening().lanterns; ++i)
        if (seen[i] && !walk.getLantern(i).isLit) return true;
    return false;
}

// The well when the lamp is empty, otherwise the dark lantern that is nearest, of those that it knows; when
// it knows none, on along the tour.
void Player::choose(const Walk &walk) {
    tries = 0;
    lantern = -1;
    target = isDry(walk) ? Target::kWell : Target::kLantern;
    if (!knowsNext(walk) && !habits.knowsGarden) {
        target = Target::kPlace;
        tries = kMostTries;
        return;
    }
    float nearest = 1000.0f;
    for (int i = 0; i < walk.getEvening().lanterns; ++i) {
        const float away = distance(walk.getPlace(), walk.getLantern(i).at);
        if (walk.getLantern(i).isLit || !seen[i] || away >= nearest) continue;
        nearest = away;
        lantern = i;
    }
}

Place Player::getTargetPlace(const Walk &walk) const {
    if (target == Target::kPlace) return kTour[stage];
    return target == Target::kWell ? kWell : walk.getLantern(lantern).at;
}

// What is tapped: the lantern, once its post, in case that something is before it; the well's edge that is
// nearest.
R3XVECTOR3D Player::getTapPlace(const Game &game) const {
    if (target == Target::kLantern)
        return game.getWorld().getLanternPlace(lantern) -
               R3XVECTOR3D(0.0f, tries % 4 == 1 ? kBelow : 0.0f, 0.0f);
    const Place at = game.getWalk().getPlace();
    const float part = 0.8f * kWellRadius / distance(at, kWell);
    return {kWell.x + part * (at.x - kWell.x), 0.0f, kWell.z + part * (at.z - kWell.z)};
}

void Player::goByPen(const Game &game, KTINPUT *input) {
    waiting = habits.patience;
    const bool isShown = touch(game, getTapPlace(game), input);
    tries = isShown ? tries + 1 : kMostTries;
    if (!isShown && means == Means::kBoth) goAlongByPen(game, input);  // the pad does the rest
}

// Toward what is not in view: to a place on the ground.
void Player::goAlongByPen(const Game &game, KTINPUT *input) {
    const Place goal = getTargetPlace(game.getWalk()), at = game.getWalk().getPlace();
    ++tries;
    for (float part = 1.0f; part > 0.05f; part -= 0.1f) {
        const R3XVECTOR3D ground(at.x + part * (goal.x - at.x) - 1.0f, 0.0f,
                                 at.z + part * (goal.z + 1.5f - at.z));
        if (touch(game, ground, input)) return;
    }
}

// What is not in view, or has something before it: the pen is held on the ground, toward the goal, until the
// boy is there; then it is tapped again.
void Player::lead(const Game &game, KTINPUT *input) {
    if (target == Target::kPlace && knowsNext(game.getWalk())) return stopLeading(input);
    const Place at = game.getWalk().getPlace();
    Place goal = getTargetPlace(game.getWalk());
    if (target == Target::kLantern) goal.z += 1.5f;
    const float left = distance(goal, at);
    R3XVECTOR2D point;
    bool isShown = false;
    for (float way = left; way > 0.5f && !isShown; way -= 0.25f)
        isShown = find(game, {at.x + (goal.x - at.x) * way / left, 0.0f, at.z + (goal.z - at.z) * way / left},
                       &point);
    if (left < (target == Target::kWell ? kWellRadius + kBeside : kThere) || !isShown)
        return stopLeading(input);
    putPen(point, input);
    taps += !isLeading;
    isLeading = true;
}

void Player::stopLeading(KTINPUT *input) {
    if (isLeading) input->putPen(penX, penY, false);
    isLeading = false;
    tries = 0;
    waiting = habits.patience;
}

void Player::goByPad(const Walk &walk, KTINPUT *input) {
    const Place goal = getTargetPlace(walk), at = walk.getPlace();
    const float x = goal.x - at.x, z = goal.z - at.z;
    const float reach = target == Target::kWell ? kWellRadius + 0.8f : kReach;
    if (distance(goal, at) < reach) {
        hold(input, false, false, false, false);
        strike(input, SDLK_RETURN);
        waiting = habits.patience;
        return;
    }
    const bool isAcross = std::fabs(x) > 0.4f * std::fabs(z), isAlong = std::fabs(z) > 0.4f * std::fabs(x);
    hold(input, isAlong && z < 0.0f, isAlong && z > 0.0f, isAcross && x < 0.0f, isAcross && x > 0.0f);
}

// Where a place is shown; false when that is not on the part of the screen that the interface leaves free.
bool Player::find(const Game &game, R3XVECTOR3D place, R3XVECTOR2D *point) {
    const R3XVECTOR2D size = getScreenSize();
    return game.getWorld().getView().toScreen(place, point) && point->x >= kSide &&
           point->x <= size.x - kSide && point->y >= kTop && point->y <= size.y - kBottom;
}

bool Player::touch(const Game &game, R3XVECTOR3D place, KTINPUT *input) {
    R3XVECTOR2D point;
    if (!find(game, place, &point)) return false;
    press(point, input);
    return true;
}

void Player::press(R3XVECTOR2D point, KTINPUT *input) {
    putPen(point, input);
    isDown = true;
    ++taps;
}

void Player::putPen(R3XVECTOR2D point, KTINPUT *input) {
    penX = static_cast<int>(point.x);
    penY = static_cast<int>(point.y);
    if (KTSETTINGS::isSDLLandscape()) {
        // From the turned picture to pixels of the window.
        const int across = penX;
        penX = penY;
        penY = KTSETTINGS::getSDLWindowY() - across;
    }
    input->putPen(penX, penY, true);
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
