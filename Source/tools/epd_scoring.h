// How an engine's move scores against the answers an EPD test suite gives:
// "bm" (best moves), "am" (a move to avoid) and "c0" (moves with points, as
// in the Strategic Test Suite). The operands come from split_epd, so blanks
// inside them are already gone.
#pragma once

#include "board/position.h"

// Whether a suite line (without its line end) can hold a position: lines
// that begin with a blank, "#" or ";", and lines of nine characters or
// fewer, are comments or leftovers.
bool is_suite_position_line(const char* line, int length);

// Every piece of the "bm" operand, cut at blanks, commas, semicolons, quotes
// and line ends, that names `best` in `pos` counts one. "Nf3,Nc3" holds two
// pieces; "Nf3Nc3" (written "bm Nf3 Nc3;") is one piece that names no move.
int bm_hits(const Position* pos, const char* bm, Move best);

// 1 when the whole "am" operand names a move of `pos` other than `best`.
int am_hit(const Position* pos, const char* am, Move best);

struct C0Result {
    int points;   // the points of the piece that names `best`, else 0
    int possible; // the largest points value of the operand
};

// Scores a "c0" operand such as "f5=10,Be5+=2" (quotes kept or not). An
// operand without "=" scores nothing.
C0Result c0_points(const Position* pos, const char* c0, Move best);
