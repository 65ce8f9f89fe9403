// The printed breakdown of an evaluation (console "eval").
#pragma once

#include "board/bitboard.h"
#include "eval/score.h"

// Snapshot points: after pawns, knights, bishops, rooks, queens, king,
// passed pawns and the rest.
constexpr int EVAL_GROUPS = 8;

struct EvalBreakdown {
    Score snapshot[EVAL_GROUPS + 1][2];
    Score material[2][7]; // per side and piece type
    double phase;
    float scale;
    Bitboard hung;
    int shown_score; // side to move's view, without contempt
};

// Level 1: groups, hung pieces and the score line; level 2 adds every
// parameter and the piece-square tables.
void print_eval_breakdown(const EvalBreakdown& b, int level);

