// Hashing keys: 16 rows of 64, indexed piece code * 64 + square. Row 0
// doubles as the en-passant keys (by square) and the castling keys (by the
// whole rights value 0..15); en-passant squares never fall on ranks 1-2, so the
// two uses never share an entry.
#pragma once

#include "board/position.h"

extern uint64_t ZOBRIST[1024];

// Fills ZOBRIST with the fixed multiply-with-carry sequence; warns with
// "bad hashcode" when two keys are too close. Returns the number of warnings.
int init_zobrist();

inline uint64_t piece_key(int code, int sq)
{
    return ZOBRIST[code * 64 + sq];
}

// Both keys from scratch, as the position reader computes them.
void compute_keys(const Position* pos, uint64_t* key, uint64_t* pawn_key);
