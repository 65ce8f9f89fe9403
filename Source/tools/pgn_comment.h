// The evaluation that a chess program's PGN comment gives the move before
// it: "{book}", "{+0.23/9 0.150s}", "{-M5/30}" or "{[%eval 35,20]}".
#pragma once

#include <cstdint>

// The value of a move that carries no evaluation.
constexpr int16_t NO_EVAL = -30000;

// Reads a closed comment (its text without the outer braces). Returns true
// and sets `*eval` when the comment decides the move's evaluation:
// - "book" anywhere: NO_EVAL;
// - "eval " then a number (centipawns from White's side, cut at the first
//   comma): the number, negated for a Black move;
// - a "/": the token before it, the mover's own score: "-M" in it gives
//   -9000, "+M" 9000, otherwise its decimal value in pawns times 100,
//   truncated.
// Returns false, leaving `*eval` alone, for any other comment.
bool comment_eval(const char* text, bool white_moved, int16_t* eval);

// Pawns as written ("-1.25", "+0.4", "3") to centipawns, truncated toward
// zero and kept within the range of a stored evaluation.
int pawns_to_centipawns(const char* text);
