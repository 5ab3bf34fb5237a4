// SPDX-License-Identifier: Zlib
#ifndef KELTRA_EXAMPLES_RULES_H
#define KELTRA_EXAMPLES_RULES_H

// The game alone, without a picture: eight by eight squares. A stone that is put down turns all
// stones of the other player that then lie in a row between two of its own colour; it has to turn one at
// least.

constexpr int kSide = 8;

struct Board {
    int stones[kSide][kSide] = {};  // 1 and -1 for the two players, 0 for none

    Board() {
        stones[3][4] = stones[4][3] = 1;
        stones[3][3] = stones[4][4] = -1;
    }
    // How many stones are turned; 0: not allowed. They are turned when `isDone` is set.
    int put(int column, int row, int player, bool isDone) {
        if (column < 0 || column >= kSide || row < 0 || row >= kSide || stones[row][column] != 0) return 0;
        int turned = 0;
        for (int dy = -1; dy <= 1; ++dy) {
            for (int dx = -1; dx <= 1; ++dx) {
                const int length = countBetween(column, row, dx, dy, player);
                turned += length;
                for (int i = 1; isDone && i <= length; ++i) stones[row + i * dy][column + i * dx] = player;
            }
        }
        if (isDone && turned > 0) stones[row][column] = player;
        return turned;
    }
    int count(int player) const {
        int found = 0;
        for (const auto &row : stones)
            for (int stone : row) found += stone == player;
        return found;
    }
    // The move that turns most; corners are worth more, and what is beside them less. False without a move.
    bool choose(int player, int *column, int *row) {
        int best = -100;
        for (int i = 0; i < kSide * kSide; ++i) {
            const int x = i % kSide, y = i / kSide, turned = put(x, y, player, false);
            const int value = turned + (isEdge(x) && isEdge(y) ? 20 : 0) -
                              (isEdge(x - 1) || isEdge(x + 1) || isEdge(y - 1) || isEdge(y + 1) ? 4 : 0);
            if (turned == 0 || value <= best) continue;
            best = value;
            *column = x;
            *row = y;
        }
        return best > -100;
    }

   private:
    static bool isEdge(int place) { return place == 0 || place == kSide - 1; }
    int countBetween(int column, int row, int dx, int dy, int player) const {
        for (int length = 0;; ++length) {
            column += dx;
            row += dy;
            if (column < 0 || column >= kSide || row < 0 || row >= kSide || stones[row][column] == 0)
                return 0;
            if (stones[row][column] == player) return length;
        }
    }
};

#endif
