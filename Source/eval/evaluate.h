// Static evaluation: a tapered score from the side to move's view.
#pragma once

struct SearchThread;

// Returns -10001 at once when `skip`. With `trace` 1 or 2 the breakdown is
// printed afterwards. From ply 2 on, cached scores are used.
int evaluate(SearchThread* thread, int side_to_move, int ply, int skip, int trace);

// Builds the fixed tables the evaluation needs (the king-pawn-king table).
void init_evaluation();

// The phase and scale factor of the last evaluation made by `thread` without
// the caches (for the tuner's update).
double last_eval_phase();
