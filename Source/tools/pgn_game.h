// One game as the PGN scanner collects it: the move texts as they stand in
// the file and the evaluation each move's comment gave, from the point of
// view of the side that made the move.
#pragma once

#include <cstdint>

constexpr int PGN_MOVE_SIZE = 14;   // 13 characters and the terminator
constexpr int PGN_MAX_PLIES = 1024; // longer games keep their first plies
constexpr int PGN_NAME_SIZE = 64;

// Result codes.
constexpr int WHITE_WON = 0;
constexpr int BLACK_WON = 1;
constexpr int NO_WINNER = 2; // a draw, an unknown result, or no Result tag yet

struct PgnPly {
    char text[PGN_MOVE_SIZE];
    int16_t eval; // NO_EVAL when the move has none
};

struct PgnGame {
    PgnPly plies[PGN_MAX_PLIES];
    int count;
    int result;
    char white[PGN_NAME_SIZE];
    char black[PGN_NAME_SIZE];
};
