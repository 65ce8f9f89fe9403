// Static evaluation: a tapered score from the side to move's view.
#pragma once

#include "board/position.h"

struct EvalCaches;

// With `trace` 1 or 2 the breakdown is printed afterwards. From ply 2 on, cached scores are used. `threats`, when
// given, receives the two per-side values the search's static pruning reads
// (White's first).
int evaluate(const Position* pos, EvalCaches* caches, int side_to_move, int ply, int trace, int16_t* threats);

// Builds the fixed tables the evaluation needs (the king-pawn-king table).
void init_evaluation();
