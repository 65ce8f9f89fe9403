// Endgame tablebases in the Syzygy format: what the engine asks of them.
#pragma once

#include "board/position.h"

#include <cstdint>

// Largest piece count (kings included) among the tables found; 0 for none.
extern uint32_t tb_largest;

// (Re)initialises from a list of directories separated by ";" or ":".
void tb_init(const char* path);

// Win/draw/loss of the position for the side to move: 0 loss, 1 loss saved
// by the fifty-move rule, 2 draw, 3 win spoilt by it, 4 win; -1 when not
// probed (too many men, castling rights, too shallow) or not found.
int tb_probe_wdl(const Position* pos, int depth);

// The result at the root and the move the distance-to-zero tables prefer.
int tb_probe_root(const Position* pos, Move* move);
