// SPDX-License-Identifier: Zlib
// A board game: tap a square, and the stones in between turn over; the other side answers. The square under
// the pen is where its ray meets the plane of the board, which needs no picking. The rules, in a file of
// their own, know nothing of the picture: each frame the stones turn toward what the rules say. Next: text
// (18_text).

#include <keltra/keltra.h>
#include <keltra/kit/kit.h>

#include <cmath>

#include "examples/17_board/table.h"
#include "examples/support/example.h"

namespace {

bool isTurning(const Table &table) {
    for (int i = 0; i < kSide * kSide; ++i)
        if (table.board.stones[i / kSide][i % kSide] != 0 &&
            std::fmod(table.turned[i / kSide][i % kSide], 180.0f) != 0.0f)
            return true;
    return false;
}

void move(Table *table, int column, int row) {
    if (table->board.put(column, row, table->player, true) == 0) return;
    table->turned[row][column] = table->player > 0 ? 0.0f : 180.0f;
    table->player = -table->player;
    table->sinceMove = 0.0f;
}

// Runs with a given number of frames begin in the middle of a game.
void beginLater(Table *table) {
    int column = 0, row = 0;
    for (int i = 0; i < 22; ++i, table->player = -table->player)
        if (table->board.choose(table->player, &column, &row))
            table->board.put(column, row, table->player, true);
    for (int i = 0; i < kSide * kSide; ++i)
        table->turned[i / kSide][i % kSide] = table->board.stones[i / kSide][i % kSide] < 0 ? 180.0f : 0.0f;
}

// Stones turn about the line from left to right, and rise meanwhile.
void update(Table *table, float seconds, bool isPlayed) {
    table->sinceMove += seconds;
    for (int i = 0; i < kSide * kSide; ++i) {
        const int row = i / kSide, column = i % kSide, stone = table->board.stones[row][column];
        KTNODE *node = table->stones[row][column];
        if (stone == 0) continue;
        if (!node->getParent()) node->link(&table->world);
        float &angle = table->turned[row][column];
        angle = stone > 0 ? std::fmax(0.0f, angle - 240.0f * seconds)
                          : std::fmin(180.0f, angle + 240.0f * seconds);
        node->setRotation(angle, 0.0f, 0.0f);
        node->setPosition(placeOfSquare(column), 0.11f + 0.7f * std::sin(angle * 0.0174533f),
                          placeOfSquare(row));
    }
    int column = 0, row = 0;
    const bool canMove = table->board.choose(table->player, &column, &row);
    if (!canMove && table->board.choose(-table->player, &column, &row)) table->player = -table->player;
    if (canMove && (table->player < 0 || isPlayed) && !isTurning(*table) && table->sinceMove > 0.2f)
        move(table, column, row);
    table->told->write("^c8868You %d   ^c7688Other %d", table->board.count(1), table->board.count(-1));
}

}  // namespace

int main(int argc, char **argv) {
    example::Options options;
    int exitCode = 0;
    if (!example::parse(argc, argv, "Shows a board game", &options, &exitCode)) return exitCode;

    // 1. Start.
    Table table;
    bool ok = example::start(options);
    if (ok) buildTable(&table);
    if (options.frames > 0) beginLater(&table);
    KTCAMERA camera;
    example::lookAt(&camera, 0.0f, 11.5f, 11.0f, 0.0f, -0.4f, 0.6f);
    KTVIEW view;
    KTINPUT input;
    KTCLOCK clock;
    clock.setStep(options.step);
    for (int frame = 1; ok && !input.hasQuit(); ++frame) {
        // 2. Per frame. A run with a given number of frames plays both sides.
        update(&table, clock.tick(), options.frames > 0);
        input.update(clock.getRealSeconds());

        // 3. Draw.
        ok = KELTRA::clear(true, true, false) && KELTRA::begin3D(&camera) && table.world.pass();
        view.take();
        ok = ok && KELTRA::end3D() && KELTRA::begin2D() && table.told->pass() && KELTRA::end2D();
        input.dispatch();
        const KTRAY ray = view.getRay(input.getPoint());
        float distance = 0.0f;
        if (input.hasTapped() && table.player > 0 &&
            KTVIEW::hitsPlane(ray, R3XPLANE(0, 1, 0, 0), &distance)) {
            const R3XVECTOR3D at = ray.origin + ray.direction * distance;
            move(&table, static_cast<int>(std::floor(at.x + 0.5f * kSide)),
                 static_cast<int>(std::floor(at.z + 0.5f * kSide)));
        }
        if (!example::endFrame(options, frame, &ok)) break;
    }

    // 4. Stop.
    return example::stop(ok);
}
