// Who attacks a square: the test, the checker and the least valuable attacker.
#pragma once

#include "board/position.h"

// 1 if any man of `by_side` attacks `sq` with the position's occupancy.
int is_square_attacked(const Position* pos, int sq, int by_side);

// Square of an attacker of `side` on `sq` (sliders blocked by `occ`), looking
// at pawns, knights, bishops, rooks, queens, king in that order; 64 if none.
int find_attacker(const Position* pos, int sq, int side, Bitboard occ);

// Like find_attacker, but only men inside `mask` count and `mask` blocks the
// sliders; the search order makes this the least valuable attacker.
int least_attacker(const Position* pos, int sq, int side, Bitboard mask);

inline int in_check(const Position* pos, int side)
{
    return is_square_attacked(pos, pos->king_square[side], side ^ 1);
}
