// SPDX-License-Identifier: Zlib
// How a frame of the game is drawn, and what a tap on the scene means.

#include <GLES/gl.h>

#include "games/lantern_walk/game.h"
#include "games/lantern_walk/view/nodes.h"

namespace lantern_walk {
namespace {

constexpr float kTapRadius = 16.0f, kMothRadius = 22.0f;  // pixels; moths are small, and fly on
constexpr float kBeyond = 6.0f;  // units behind the wall; a tap on the sky sends him nowhere

// The nearest of the things that are shown within so many pixels of a point; -1 for none. `findPlace` is
// false for those that do not count.
template <class Places>
int findShown(const KTVIEW &view, R3XVECTOR2D tap, int count, float within, const Places &findPlace) {
    int nearest = -1;
    for (int i = 0; i < count; ++i) {
        R3XVECTOR3D place;
        R3XVECTOR2D point;
        if (!findPlace(i, &place) || !view.toScreen(place, &point)) continue;
        const float away = (point - tap).length();
        if (away >= within) continue;
        within = away;
        nearest = i;
    }
    return nearest;
}

}  // namespace

bool Game::draw() {
    bool ok = KELTRA::clear(true, true, false) && KELTRA::begin3D(world.getCamera());
    if (screen != Screen::kFilm) world.draw();
    ok = ok && KELTRA::end3D();
    if (hasTap) pick();
    ok = ok && KELTRA::begin2D();
    drawPages();
    ok = ok && KELTRA::end2D();
    reported = input.dispatch();
    return ok && glGetError() == GL_NO_ERROR;
}

void Game::drawPages() {
    if (screen == Screen::kFilm) return film.pass();
    if (screen == Screen::kWalk || screen == Screen::kPause) hud.pass();
    // A ring where the ground was tapped: it covers the pixel that picking has changed.
    if (ringTime > 0.0f && screen == Screen::kWalk) {
        const int side = 34 - static_cast<int>(24.0f * ringTime / kRingTime);
        ring->setSizes(side, side);
        ring->setPosition(tap.x - static_cast<float>(side / 2), tap.y - static_cast<float>(side / 2));
        ring->setColor(1.0f, 0.86f, 0.56f, 0.9f * ringTime / kRingTime);
        ring->pass();
    }
    if (const Page *page = getPage()) page->pass();
}

// A dark lantern that is shown near the tap, though something may be before it: the halo of a lit one is
// large. -1 for none.
int Game::findDarkLantern() const {
    return findShown(world.getView(), tap, walk.getEvening().lanterns, kTapRadius,
                     [this](int i, R3XVECTOR3D *place) {
                         *place = world.getLanternPlace(i);
                         return !walk.getLantern(i).isLit;
                     });
}

int Game::findMoth() const {
    const Moths &moths = walk.getMoths();
    return findShown(world.getView(), tap, moths.getCount(), kMothRadius, [&](int i, R3XVECTOR3D *place) {
        *place = world.getMothPlace(i);
        return moths.get(i).mood == MothMood::kComing || moths.get(i).mood == MothMood::kCircling;
    });
}

// What was tapped, in what was just drawn: a moth, a lantern, the well; otherwise the ground. Lit lanterns
// have nothing to be tapped for.
void Game::pick() {
    hasTap = false;
    const unsigned code = KTVIEW::pick(tap);
    const int lantern = code >= kLanternCode && code < kLanternCode + kMostLanterns
                            ? static_cast<int>(code - kLanternCode)
                            : -1;
    const bool isDark = lantern >= 0 && !walk.getLantern(lantern).isLit;
    const int dark = isDark ? lantern : findDarkLantern();
    const int moth =
        code >= kMothCode && code < kMothCode + kMostMoths ? static_cast<int>(code - kMothCode) : findMoth();
    Place place;
    const bool isGround = world.toGround(tap, &place);
    if (moth >= 0) {
        walk.chase(moth);
    } else if (isDark || (dark >= 0 && code != kWellCode)) {
        walk.goToLantern(dark);
    } else if (code == kWellCode || (isGround && distance(place, kWell) < kWellRadius)) {
        walk.goToWell();
    } else if (isGround && place.z > kNorthEnd - kBeyond) {
        walk.goTo(place);
    }
}

}  // namespace lantern_walk
