// Writing one scanned game as EPD lines. The game is replayed from the
// standard start position; a move text that does not parse ends it there.
//   1: an annotated listing that marks mistakes (" ? ", with an "am" EPD)
//      and their refutations (" ! ", with a "bm" EPD, also written to
//      `side_file`);
//   2: labelled training positions "bm ..; ce ..; gr ..;" from ply 16 on;
//   3: opening positions "bm ..; ce ..;" until the evaluation leaves +-500;
//   4: rook endings with one pawn, labelled "tune" with the result.
#pragma once

#include "tools/pgn_game.h"

#include <cstdio>

// Writes `game` by `variant` (1..4); returns the positions written (for
// variant 1 the "bm" lines).
int write_game_epd(FILE* out, FILE* side_file, const PgnGame* game, int variant);

// Whether ply `i` of `n` is a mistake by the evaluations of the plies
// around it: the opponent's view before the move (ply i - 1) lies in
// -999..249, and one, three and seven plies later the opponent's view has
// risen by more than a margin that grows with its size.
bool is_mistake(const PgnPly* plies, int n, int i);
