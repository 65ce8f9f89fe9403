// Endgame tablebases in the Syzygy format: what the engine asks of them.
#pragma once

#include "board/position.h"

#include <cstdint>

// Where the -tbx switch looks: the usual places of a Linux installation,
// the 3-5 man set and the 6-man set beside it.
constexpr const char* TB_DEFAULT_DIRECTORIES = "/usr/share/syzygy;/usr/share/syzygy/6-Piece";

// Largest piece count (kings included) among the tables found; 0 for none.
extern uint32_t tb_largest;

// (Re)initialises from a list of directories separated by ";" or ":";
// an empty list or "<empty>" uses no tables.
void tb_init(const char* path);

// The search depths from which positions of five men or fewer, and of six
// men, are probed (the options SyzygyProbeDepth5 and SyzygyProbeDepth6).
void tb_set_probe_depths(int depth5, int depth6);

// Win/draw/loss of the position for the side to move: 0 loss, 1 loss saved
// by the fifty-move rule, 2 draw, 3 win spoilt by it, 4 win; -1 when not
// probed (too shallow, too many men, castling rights) or not found.
int tb_probe_wdl(const Position* pos, int depth);

// The result at the root with the position's real fifty-move count, and the
// move the distance-to-zero tables prefer (0 when none); -1 as above.
int tb_probe_root(const Position* pos, Move* move);

// For people testing the engine: the value (-2..2) and the signed distance
// to zeroing the tables give for the position with its fifty-move count
// taken as zero; false when no table holds it.
bool tb_probe_full(const Position* pos, int* wdl, int* dtz);
