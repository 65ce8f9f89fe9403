// The prober's core: what the tables store for a position given as
// bitboards, and its win/draw/loss once captures are taken into account.
//
// Values are from the side to move's view: -2 loss, -1 loss that the
// fifty-move rule saves, 0 draw, 1 win that the rule spoils, 2 win. The
// tables leave out positions with en-passant rights and may store anything
// no better than a capture achieves, so the stored value alone is only
// right once the captures have been tried.
#pragma once

#include "tablebase/tb_board.h"

// Builds the fixed index tables (first call only); false if they came out wrong.
bool tb_core_init();

// The value stored for the position (no captures tried). False when no
// table holds the material or the table cannot be read.
bool tb_stored_wdl(const TbBoard* b, int* wdl);

// The stored distance to the next capture or pawn move, in plies, for a
// position whose value `wdl` is known (not a draw). False as above; with
// *other_side the table keeps only the other side to move and nothing was read.
bool tb_stored_dtz(const TbBoard* b, int wdl, int* plies, bool* other_side);

// The position's value with every capture (en passant included) tried.
// *capture_best tells that a capture is the best move, or as good as
// anything else while winning, or the only kind of move there is.
bool tb_resolve_wdl(const TbBoard* b, int* wdl, bool* capture_best);
