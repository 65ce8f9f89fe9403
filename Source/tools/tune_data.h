// -mktune: quiet training positions for the evaluation tuner. Each input
// line labelled with an evaluation ("ce") and a game result ("gr") is
// searched; the position at the end of the principal variation is written
// to "tune_new.epd" with the labels carried over to the side to move there.
#pragma once

#include "board/position.h"

// Whether a labelled position is worth searching: a result in 0..1, an
// evaluation within +-1200 that does not contradict a won, lost or drawn
// result too much.
bool tune_keeps(int ce, double gr);

// Plays `pv` on `pos` up to its end or its first move that is not legal
// there, and writes the position reached as "<fen> ce %d; gr %0.1f;" with
// -ce and 1 - gr when an odd number of moves changed the side to move.
// Returns the moves played.
int tune_record(Position* pos, const Move* pv, int ce, double gr, char* line, int size);

struct TuneRun {
    bool opened;  // both files could be opened
    int written;  // positions written
    double error; // mean absolute error of the logistic prediction, 0 without positions
};

// The whole run from `path` to `out_path`, searching with the limits in force.
TuneRun make_tune_data(const char* path, const char* out_path);
