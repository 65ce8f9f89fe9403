// Moves read the long way: every legal move writes its four texts and each
// is compared with the input in the parser's form. The tests hold the real
// parser, which skips most of that work, to this answer.
#pragma once

#include "board/position.h"

// Returns how many legal moves match `text`; `found` gets the last of them.
int matches_the_long_way(const Position* pos, const char* text, Move* found);
