// Reading and writing positions as FEN text (the four board fields).
#pragma once

#include "board/position.h"

#include <cstddef>

constexpr const char* START_FEN = "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq -";

// Sets the position from the first four FEN fields and resets the owner's ply
// counters. Returns 0, or -1 when a castling right without its king and rook
// had to be removed ("Illegal EPD - %s"). The counters are not read: `fifty`
// is always 0 afterwards.
int set_position(Position* pos, const char* text);

// The board part of set_position: the owner's counters are left alone.
int read_fen(Position* pos, const char* text);

// Writes placement, side, castling and en-passant fields (no counters).
void write_fen(const Position* pos, char* text);

// Why the position cannot be played (missing or extra kings, the side not to
// move in check, impossible material, a bogus en-passant square), or nullptr.
const char* position_problem(const Position* pos);
