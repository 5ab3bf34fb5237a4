// SPDX-License-Identifier: Zlib
// Sprites, and a 2D game on one page: catch falling stars with a basket, by pen or by the direction pad.
// Sprites are boxes of the interface that show cells of one picture, which is painted here. Next: a road
// without an end (26_streaming).

#include <keltra/keltra.h>
#include <keltra/kit/kit.h>

#include <cmath>

#include "examples/25_sprites/atlas.h"
#include "examples/support/example.h"

namespace {

constexpr int kWidth = 240, kHeight = 320, kStars = 9;

struct Game {
    KTNODE screen;
    KTBOX *basket = nullptr;
    KTLABEL *score = nullptr;
    struct Star {
        KTBOX *box;
        float x, y, speed, phase;
    } stars[kStars];
    float place = 104.0f;  // of the basket's left edge, in pixels
    int caught = 0;
    unsigned seed = 3;
};

KTBOX *addSprite(KTNODE *screen, KTTEXTURE *atlas, Cell cell) {
    KTBOX *sprite = new KTBOX;
    sprite->setSizes(kCell, kCell);
    sprite->setThickness(0);
    sprite->setColor(1.0f, 1.0f, 1.0f, 0.999f);  // other than 1: the picture's alpha shows
    sprite->setTexture(atlas);
    sprite->setBoxCoords(KTSHAPES::getCell(4, 1, cell));
    sprite->link(screen);
    return sprite;
}

float random(Game *game) { return float((game->seed = game->seed * 1103515245u + 12345u) >> 22) / 1024.0f; }

bool build(Game *game) {
    KTTEXTURE *atlas = paintAtlas();
    if (!atlas) return false;
    KTBOX *sky = addSprite(&game->screen, example::loadTexture("garden_dusksky_d.tga"), kStarWide);
    sky->setSizes(kWidth, kHeight);
    sky->setBoxCoords(KTBOXCOORD());  // all of the picture
    for (int i = 0; i < 5; ++i)
        addSprite(&game->screen, atlas, kCloud)
            ->setPosition(52.0f * float(i) - 6.0f, 40.0f + 57.0f * float(i * 2 % 5));
    for (Game::Star &star : game->stars) {
        star.box = addSprite(&game->screen, atlas, kStarWide);
        star.x = random(game) * (kWidth - kCell);
        star.y = random(game) * -kHeight + 200.0f;
        star.speed = 50.0f + 60.0f * random(game);
        star.phase = random(game);
    }
    game->basket = addSprite(&game->screen, atlas, kBasket);
    game->score = new KTLABEL;
    game->score->setFont(example::loadFont());
    game->score->setPosition(8.0f, 4.0f);
    game->score->link(&game->screen);
    return true;
}

void update(Game *game, const KTINPUT &input, float goal, float seconds) {
    if (input.isPenDown()) goal = input.getPoint().x - 0.5f * kCell;
    if (input.isHeld(KT_ACTION_LEFT)) goal = 0.0f;
    if (input.isHeld(KT_ACTION_RIGHT)) goal = kWidth - kCell;
    const float most = 220.0f * seconds;  // pixels
    game->place += std::fmax(-most, std::fmin(goal - game->place, most));
    game->basket->setPosition(std::floor(game->place), kHeight - 40.0f);
    for (Game::Star &star : game->stars) {
        star.y += star.speed * seconds;
        star.phase += 3.0f * seconds;
        const bool isCaught =
            std::fabs(star.x - game->place) < 22.0f && std::fabs(star.y - kHeight + 52.0f) < 8.0f;
        game->caught += isCaught;
        if (isCaught || star.y > kHeight) star.y = -40.0f, star.x = random(game) * (kWidth - kCell);
        star.box->setPosition(std::floor(star.x), std::floor(star.y));
        star.box->setBoxCoords(KTSHAPES::getCell(4, 1, unsigned(star.phase) % 2 ? kStarNarrow : kStarWide));
    }
    game->score->write("^c8886Stars: %d", game->caught);
}

}  // namespace

int main(int argc, char **argv) {
    example::Options options;
    int exitCode = 0;
    if (!example::parse(argc, argv, "Shows sprites in a game", &options, &exitCode)) return exitCode;

    // 1. Start.
    Game game;
    bool ok = example::start(options) && build(&game);
    KTINPUT input;
    KTCLOCK clock;
    clock.setStep(options.step);
    for (int frame = 1; ok && !input.hasQuit(); ++frame) {
        // 2. Per frame.
        const float seconds = clock.tick();
        input.update(clock.getRealSeconds());
        update(&game, input, options.frames > 0 ? game.stars[1].x : game.place,
               seconds);  // scripted: a star's

        // 3. Draw: there is no 3D pass.
        ok = KELTRA::clear(true, true, false) && KELTRA::begin2D() && game.screen.pass() && KELTRA::end2D();
        input.dispatch();
        if (!example::endFrame(options, frame, &ok)) break;
    }

    // 4. Stop.
    return example::stop(ok);
}
