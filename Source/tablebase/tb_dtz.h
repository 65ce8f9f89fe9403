// Distances to the next capture or pawn move for positions of the engine's
// board, and the choice of a move at the root from them.
//
// A distance is in plies with the sign of the result: 1..100 a win that
// zeroes in that many plies, above 100 a win the fifty-move rule spoils
// (the count then carries 100 extra), 0 a draw, and the same below zero for
// losses. Distances assume a fifty-move counter of zero.
#pragma once

#include "board/position.h"

// The position's value (-2..2) and distance; false when the tables cannot
// tell. The position is copied: moves are made and taken back on the copy.
bool tb_position_dtz(const Position* pos, int* wdl, int* dtz);

// The root's distance and its best move: the one that keeps a win and
// zeroes soonest (a mate before everything), keeps a draw, or else resists
// longest. *move is 0 when there is no legal move.
bool tb_root_move(const Position* pos, Move* move, int* dtz);
