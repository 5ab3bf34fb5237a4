// SPDX-License-Identifier: Zlib
#include <gtest/gtest.h>

#include "examples/17_board/rules.h"

namespace keltra::test {
namespace {

TEST(BoardTest, TurnsTheStonesInBetween) {
    Board board;
    EXPECT_EQ(board.put(3, 2, 1, false), 1);
    EXPECT_EQ(board.count(1), 2) << "only asked";
    EXPECT_EQ(board.put(3, 2, 1, true), 1);
    EXPECT_EQ(board.count(1), 4);
    EXPECT_EQ(board.count(-1), 1);
    EXPECT_EQ(board.stones[3][3], 1);
}

TEST(BoardTest, RefusesSquaresThatAreTakenTurnNothingOrAreNone) {
    Board board;
    EXPECT_EQ(board.put(3, 3, 1, true), 0);
    EXPECT_EQ(board.put(0, 0, 1, true), 0);
    EXPECT_EQ(board.put(4, 2, 1, true), 0) << "beside one's own";
    for (int outside : {-1, kSide}) {
        EXPECT_EQ(board.put(outside, 2, 1, true), 0);
        EXPECT_EQ(board.put(3, outside, 1, true), 0);
    }
    EXPECT_EQ(board.count(1) + board.count(-1), 4);
}

TEST(BoardTest, TurnsInAllDirectionsAtOnce) {
    Board board;
    for (auto &row : board.stones)
        for (int &stone : row) stone = 0;
    for (int i = 0; i < 9; ++i) {
        board.stones[2 + i / 3][2 + i % 3] = -1;
        board.stones[1 + i / 3 * 2][1 + i % 3 * 2] = 1;
    }
    board.stones[3][3] = 0;
    EXPECT_EQ(board.put(3, 3, 1, true), 8);
    EXPECT_EQ(board.count(-1), 0);
}

TEST(BoardTest, AGameComesToItsEnd) {
    Board board;
    int player = 1, passed = 0, moves = 0;
    while (passed < 2) {
        int column = -1, row = -1;
        if (board.choose(player, &column, &row)) {
            EXPECT_GT(board.put(column, row, player, true), 0);
            passed = 0;
            ++moves;
        } else {
            ++passed;
        }
        player = -player;
    }
    EXPECT_EQ(board.count(1) + board.count(-1), moves + 4);
    EXPECT_GT(moves, 40);
}

}  // namespace
}  // namespace keltra::test
