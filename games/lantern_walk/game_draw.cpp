// SPDX-License-Identifier: Zlib
// How a frame of the game is drawn, and what a tap on the scene means.

#include <GLES/gl.h>

#include "games/lantern_walk/game.h"
#include "games/lantern_walk/view/nodes.h"

namespace lantern_walk {

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

// What was tapped, in what was just drawn: a moth, a lantern, the well; otherwise the ground.
void Game::pick() {
    hasTap = false;
    const unsigned code = KTVIEW::pick(tap);
    Place place;
    if (code >= kMothCode && code < kMothCode + kMostMoths) {
        walk.chase(static_cast<int>(code - kMothCode));
    } else if (code >= kLanternCode && code < kLanternCode + kMostLanterns) {
        walk.goToLantern(static_cast<int>(code - kLanternCode));
    } else if (code == kWellCode) {
        walk.goToWell();
    } else if (world.toGround(tap, &place)) {
        walk.goTo(place);
    }
}

}  // namespace lantern_walk
