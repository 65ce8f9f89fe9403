// The console picture of a position.
#pragma once

#include "board/position.h"

// FEN line, eight ranks (Black pawns as "o", empty squares as "+" or "-" by
// square colour) and the side to move, straight to stdout.
void print_board(const Position* pos);
