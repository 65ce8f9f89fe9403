// Static exchange evaluation: the material outcome of a capture sequence on
// one square, each side recapturing with its least valuable attacker.
#pragma once

#include "board/position.h"

constexpr int SEE_VALUE[8] = {0, 100, 335, 335, 535, 1035, 10000, 0};

// With from = 64: what `side` gains by starting captures on `to` (never below
// 0). With a from-square: the value of that particular capture (may be negative).
int swap(const Position* pos, int side, int from, int to);

// What `side` gains by capturing a man of `target_type` on `to` when only the
// men inside `occ` take part; never below 0.
int swap_gain(const Position* pos, int side, int to, int target_type, Bitboard occ);
